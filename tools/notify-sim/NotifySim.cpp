// kelvo-notify-sim: a notification server (org.freedesktop.Notifications) for the simulated TV.
//
// Every Notify is appended to the --record file as one line
//     app <TAB> summary <TAB> body <TAB> timeout
// and flushed before the reply goes out, so a caller that got its reply can read its line.
// Tabs, newlines and backslashes inside texts are written as \t, \n and \\ to keep one line
// per notification.

#include <systemd/sd-bus.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

namespace {

const char *const kBusName = "org.freedesktop.Notifications";
const char *const kObjectPath = "/org/freedesktop/Notifications";
const char *const kInterface = "org.freedesktop.Notifications";

struct ServerState {
    FILE *record = nullptr;
    uint32_t lastId = 0;
};

volatile sig_atomic_t g_stop = 0;

void OnSignal(int)
{
    g_stop = 1;
}

std::string Escape(const char *text)
{
    std::string out;
    for (const char *p = text ? text : ""; *p; ++p) {
        switch (*p) {
        case '\t':
            out += "\\t";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\\':
            out += "\\\\";
            break;
        default:
            out += *p;
            break;
        }
    }
    return out;
}

// Skips one value of the given signature (actions "as", hints "a{sv}").
int SkipValue(sd_bus_message *m, char type, const char *contents)
{
    return sd_bus_message_skip(m, std::string(1, type).append(contents ? contents : "").c_str());
}

int OnNotify(sd_bus_message *m, void *userdata, sd_bus_error *)
{
    auto *state = static_cast<ServerState *>(userdata);
    const char *app = nullptr;
    const char *icon = nullptr;
    const char *summary = nullptr;
    const char *body = nullptr;
    uint32_t replacesId = 0;
    int32_t timeout = 0;

    int r = sd_bus_message_read(m, "susss", &app, &replacesId, &icon, &summary, &body);
    if (r < 0)
        return r;
    if ((r = SkipValue(m, 'a', "s")) < 0 || (r = SkipValue(m, 'a', "{sv}")) < 0)
        return r;
    if ((r = sd_bus_message_read(m, "i", &timeout)) < 0)
        return r;

    if (state->record) {
        std::fprintf(state->record, "%s\t%s\t%s\t%d\n", Escape(app).c_str(), Escape(summary).c_str(),
                     Escape(body).c_str(), timeout);
        std::fflush(state->record);
    }
    uint32_t id = replacesId != 0 ? replacesId : ++state->lastId;
    return sd_bus_reply_method_return(m, "u", id);
}

int OnGetCapabilities(sd_bus_message *m, void *, sd_bus_error *)
{
    sd_bus_message *reply = nullptr;
    int r = sd_bus_message_new_method_return(m, &reply);
    if (r >= 0)
        r = sd_bus_message_append(reply, "as", 2, "body", "persistence");
    if (r >= 0)
        r = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return r;
}

int OnGetServerInformation(sd_bus_message *m, void *, sd_bus_error *)
{
    return sd_bus_reply_method_return(m, "ssss", "kelvo-notify-sim", "kelvo", "1.0", "1.2");
}

int OnCloseNotification(sd_bus_message *m, void *, sd_bus_error *)
{
    uint32_t id = 0;
    int r = sd_bus_message_read(m, "u", &id);
    if (r < 0)
        return r;
    // Reason 3: closed by a call to CloseNotification.
    sd_bus_emit_signal(sd_bus_message_get_bus(m), kObjectPath, kInterface, "NotificationClosed", "uu", id, 3u);
    return sd_bus_reply_method_return(m, "");
}

const sd_bus_vtable kVtable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Notify", "susssasa{sv}i", "u", OnNotify, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetCapabilities", "", "as", OnGetCapabilities, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetServerInformation", "", "ssss", OnGetServerInformation, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("CloseNotification", "u", "", OnCloseNotification, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("NotificationClosed", "uu", 0),
    SD_BUS_VTABLE_END};

int Usage(const char *argv0, int status)
{
    std::fprintf(status ? stderr : stdout,
                 "usage: %s [--record FILE] [--ready-fd FD]\n"
                 "Serves org.freedesktop.Notifications on the session bus (DBUS_SESSION_BUS_ADDRESS)\n"
                 "and appends one line per notification to FILE: app, summary, body, timeout (TAB-separated).\n"
                 "Writes \"ready\" and a newline to FD once it owns its name.\n",
                 argv0);
    return status;
}

}  // namespace

int main(int argc, char **argv)
{
    ServerState state;
    int readyFd = -1;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--record") == 0 && i + 1 < argc) {
            state.record = std::fopen(argv[++i], "a");
            if (!state.record) {
                std::fprintf(stderr, "kelvo-notify-sim: cannot open %s: %s\n", argv[i], std::strerror(errno));
                return 1;
            }
        } else if (std::strcmp(argv[i], "--ready-fd") == 0 && i + 1 < argc) {
            char *end = nullptr;
            long fd = std::strtol(argv[++i], &end, 10);
            if (*argv[i] == '\0' || *end != '\0' || fd < 0 || fd > 65535)
                return Usage(argv[0], 2);
            readyFd = static_cast<int>(fd);
        } else if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            return Usage(argv[0], 0);
        } else {
            return Usage(argv[0], 2);
        }
    }

    std::signal(SIGTERM, OnSignal);
    std::signal(SIGINT, OnSignal);

    sd_bus *bus = nullptr;
    int r = sd_bus_open_user(&bus);
    if (r < 0) {
        std::fprintf(stderr, "kelvo-notify-sim: no session bus: %s\n", std::strerror(-r));
        return 1;
    }
    sd_bus_slot *slot = nullptr;
    r = sd_bus_add_object_vtable(bus, &slot, kObjectPath, kInterface, kVtable, &state);
    if (r >= 0)
        r = sd_bus_request_name(bus, kBusName, 0);
    if (r < 0) {
        std::fprintf(stderr, "kelvo-notify-sim: cannot serve %s: %s\n", kBusName, std::strerror(-r));
        sd_bus_slot_unref(slot);
        sd_bus_unref(bus);
        return 1;
    }

    if (readyFd >= 0) {
        (void)!write(readyFd, "ready\n", 6);
        close(readyFd);
    }

    while (!g_stop) {
        r = sd_bus_process(bus, nullptr);
        if (r < 0) {
            if (r == -ECONNRESET || r == -ENOTCONN)
                break;  // the bus went away: the run is over
            std::fprintf(stderr, "kelvo-notify-sim: %s\n", std::strerror(-r));
            break;
        }
        if (r > 0)
            continue;
        r = sd_bus_wait(bus, 500000);
        if (r < 0 && r != -EINTR)
            break;
    }

    sd_bus_slot_unref(slot);
    sd_bus_flush_close_unref(bus);
    if (state.record)
        std::fclose(state.record);
    return 0;
}
