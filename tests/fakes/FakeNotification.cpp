#include "FakeNotification.h"

#include "notification.h"

struct _notification {};

namespace {
bool g_failCreate = false;
int g_applistResult = NOTIFICATION_ERROR_NONE;
int g_postResult = NOTIFICATION_ERROR_NONE;
std::vector<std::string> g_calls;
// One handle for every create: it stays valid, since the code under test may keep it.
_notification g_handle;

int Record(int result, const char *name, notification_h noti, std::vector<std::string> args = {})
{
    std::string call = std::string(name) + "(" + (noti != nullptr ? "handle" : "null");
    for (const std::string &arg : args)
        call += ", " + arg;
    g_calls.push_back(call + ")");
    return noti != nullptr ? result : NOTIFICATION_ERROR_INVALID_PARAMETER;
}

std::string Text(const char *text)
{
    return text != nullptr ? text : "(null)";
}
}  // namespace

extern "C" notification_h notification_create(notification_type_e type)
{
    g_calls.push_back("notification_create(" + std::to_string(type) + ")");
    return g_failCreate ? nullptr : &g_handle;
}

extern "C" int notification_set_text(notification_h noti, notification_text_type_e type, const char *text,
                                     const char *key, int args_type, ...)
{
    return Record(NOTIFICATION_ERROR_NONE, "notification_set_text", noti,
                  {std::to_string(type), Text(text), Text(key), std::to_string(args_type)});
}

extern "C" int notification_set_display_applist(notification_h noti, int applist)
{
    return Record(g_applistResult, "notification_set_display_applist", noti, {std::to_string(applist)});
}

extern "C" int notification_set_auto_remove(notification_h noti, bool auto_remove)
{
    return Record(NOTIFICATION_ERROR_NONE, "notification_set_auto_remove", noti, {std::to_string(auto_remove)});
}

extern "C" int notification_set_hide_timeout(notification_h noti, int timeout)
{
    return Record(NOTIFICATION_ERROR_NONE, "notification_set_hide_timeout", noti, {std::to_string(timeout)});
}

extern "C" int notification_post(notification_h noti)
{
    return Record(g_postResult, "notification_post", noti);
}

extern "C" int notification_free(notification_h noti)
{
    return Record(NOTIFICATION_ERROR_NONE, "notification_free", noti);
}

namespace FakeNotification {
void Reset()
{
    g_failCreate = false;
    g_applistResult = g_postResult = NOTIFICATION_ERROR_NONE;
    g_calls.clear();
}

void FailCreate()
{
    g_failCreate = true;
}
void SetDisplayApplistResult(int result)
{
    g_applistResult = result;
}
void SetPostResult(int result)
{
    g_postResult = result;
}
std::vector<std::string> Calls()
{
    return g_calls;
}
}  // namespace FakeNotification
