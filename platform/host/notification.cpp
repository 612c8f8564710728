// Host notification service: a posted notification becomes one freedesktop Notify call on the
// session bus (summary = title, body = content, expire timeout = hide timeout).
#include "notification.h"

#include <errno.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <string>
#include <vector>

struct _notification {
    notification_type_e type = NOTIFICATION_TYPE_NOTI;
    std::string title;
    std::string content;
    int applist = 0;
    bool autoRemove = false;
    int hideTimeout = 0;  // seconds; 0 lets the server decide
};

namespace {
// Handles not yet freed. Never destroyed, so that a handle its owner keeps to the end of the
// process is still reachable then.
std::vector<notification_h> &Live()
{
    static auto *live = new std::vector<notification_h>();
    return *live;
}

bool IsLive(notification_h noti)
{
    return noti != nullptr && std::find(Live().begin(), Live().end(), noti) != Live().end();
}

const char *AppName()
{
    return program_invocation_short_name != nullptr && *program_invocation_short_name != '\0'
               ? program_invocation_short_name
               : "kelvo-util";
}
}  // namespace

extern "C" notification_h notification_create(notification_type_e type)
{
    if (type != NOTIFICATION_TYPE_NOTI && type != NOTIFICATION_TYPE_ONGOING)
        return nullptr;
    notification_h noti = new _notification();
    noti->type = type;
    Live().push_back(noti);
    return noti;
}

extern "C" int notification_set_text(notification_h noti, notification_text_type_e type, const char *text,
                                     const char *key, int args_type, ...)
{
    // The translation key and the variable list are for translated texts, which the host does
    // not have: the text is shown as given.
    (void)key;
    (void)args_type;
    if (!IsLive(noti))
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    std::string value = text != nullptr ? text : "";
    switch (type) {
    case NOTIFICATION_TEXT_TYPE_TITLE:
        noti->title = value;
        return NOTIFICATION_ERROR_NONE;
    case NOTIFICATION_TEXT_TYPE_CONTENT:
        noti->content = value;
        return NOTIFICATION_ERROR_NONE;
    default:
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    }
}

extern "C" int notification_set_display_applist(notification_h noti, int applist)
{
    if (!IsLive(noti))
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    noti->applist = applist;
    return NOTIFICATION_ERROR_NONE;
}

extern "C" int notification_set_auto_remove(notification_h noti, bool auto_remove)
{
    if (!IsLive(noti))
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    noti->autoRemove = auto_remove;
    return NOTIFICATION_ERROR_NONE;
}

extern "C" int notification_set_hide_timeout(notification_h noti, int timeout)
{
    if (!IsLive(noti) || timeout < 0)
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    noti->hideTimeout = timeout;
    return NOTIFICATION_ERROR_NONE;
}

extern "C" int notification_post(notification_h noti)
{
    if (!IsLive(noti))
        return NOTIFICATION_ERROR_INVALID_PARAMETER;

    sd_bus *bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        return NOTIFICATION_ERROR_IO_ERROR;

    const int expireMs = noti->hideTimeout > 0 ? noti->hideTimeout * 1000 : -1;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message *reply = nullptr;
    int r = sd_bus_call_method(bus, "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                               "org.freedesktop.Notifications", "Notify", &error, &reply, "susssasa{sv}i", AppName(),
                               0u, "", noti->title.c_str(), noti->content.c_str(), 0, 0, expireMs);
    const bool replied = sd_bus_error_is_set(&error);
    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
    sd_bus_flush_close_unref(bus);
    if (r >= 0)
        return NOTIFICATION_ERROR_NONE;
    if (r == -ENOMEM)
        return NOTIFICATION_ERROR_OUT_OF_MEMORY;
    // The bus itself unreachable (the connection is made lazily, at the first call) is an I/O
    // error; an error reply, no server or no answer in time means the service is not there.
    if (!replied && (r == -ENOENT || r == -ECONNREFUSED || r == -ENOTCONN || r == -ECONNRESET || r == -EACCES ||
                     r == -EPERM || r == -EPIPE))
        return NOTIFICATION_ERROR_IO_ERROR;
    return NOTIFICATION_ERROR_SERVICE_NOT_READY;
}

extern "C" int notification_free(notification_h noti)
{
    if (!IsLive(noti))
        return NOTIFICATION_ERROR_INVALID_PARAMETER;
    Live().erase(std::find(Live().begin(), Live().end(), noti));
    delete noti;
    return NOTIFICATION_ERROR_NONE;
}
