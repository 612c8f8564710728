#include "FakeNotification.h"

#include "notification.h"

#include <memory>

struct _notification {
    int index = 0;
    PostedNotification state{"", "", 0, false, 0};
};

namespace {
bool g_failCreate = false;
int g_applistResult = NOTIFICATION_ERROR_NONE;
int g_postResult = NOTIFICATION_ERROR_NONE;
std::vector<FakeNotificationCall> g_calls;
std::vector<PostedNotification> g_posted;
// Handles stay allocated to the end of the process: the code under test may keep them.
std::vector<std::unique_ptr<_notification>> *g_handles = new std::vector<std::unique_ptr<_notification>>();

void Record(const char *name, notification_h noti, std::vector<std::string> args = {})
{
    g_calls.push_back({name, noti != nullptr ? noti->index : -1, std::move(args)});
}
}  // namespace

extern "C" notification_h notification_create(notification_type_e type)
{
    g_calls.push_back({"notification_create", -1, {std::to_string(type)}});
    if (g_failCreate)
        return nullptr;
    g_handles->push_back(std::make_unique<_notification>());
    g_handles->back()->index = static_cast<int>(g_handles->size()) - 1;
    return g_handles->back().get();
}

extern "C" int notification_set_text(notification_h noti, notification_text_type_e type, const char *text,
                                     const char *key, int args_type, ...)
{
    Record("notification_set_text", noti,
           {std::to_string(type), text != nullptr ? text : "(null)", key != nullptr ? key : "(null)",
            std::to_string(args_type)});
    if (noti == nullptr)
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    (type == NOTIFICATION_TEXT_TYPE_TITLE ? noti->state.title : noti->state.content) = text != nullptr ? text : "";
    return NOTIFICATION_ERROR_NONE;
}

extern "C" int notification_set_display_applist(notification_h noti, int applist)
{
    Record("notification_set_display_applist", noti, {std::to_string(applist)});
    if (noti != nullptr)
        noti->state.applist = applist;
    return g_applistResult;
}

extern "C" int notification_set_auto_remove(notification_h noti, bool auto_remove)
{
    Record("notification_set_auto_remove", noti, {auto_remove ? "1" : "0"});
    if (noti != nullptr)
        noti->state.autoRemove = auto_remove;
    return NOTIFICATION_ERROR_NONE;
}

extern "C" int notification_set_hide_timeout(notification_h noti, int timeout)
{
    Record("notification_set_hide_timeout", noti, {std::to_string(timeout)});
    if (noti != nullptr)
        noti->state.hideTimeout = timeout;
    return NOTIFICATION_ERROR_NONE;
}

extern "C" int notification_post(notification_h noti)
{
    Record("notification_post", noti);
    if (noti == nullptr)
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    g_posted.push_back(noti->state);
    return g_postResult;
}

extern "C" int notification_free(notification_h noti)
{
    Record("notification_free", noti);
    return noti != nullptr ? NOTIFICATION_ERROR_NONE : NOTIFICATION_ERROR_INVALID_PARAMETER;
}

namespace FakeNotification {
void Reset()
{
    g_failCreate = false;
    g_applistResult = NOTIFICATION_ERROR_NONE;
    g_postResult = NOTIFICATION_ERROR_NONE;
    g_calls.clear();
    g_posted.clear();
}

void FailCreate() { g_failCreate = true; }
void SetDisplayApplistResult(int result) { g_applistResult = result; }
void SetPostResult(int result) { g_postResult = result; }
std::vector<FakeNotificationCall> Calls() { return g_calls; }

std::vector<std::string> CallNames()
{
    std::vector<std::string> names;
    for (const FakeNotificationCall &call : g_calls)
        names.push_back(call.name);
    return names;
}

std::vector<PostedNotification> Posted() { return g_posted; }
}  // namespace FakeNotification
