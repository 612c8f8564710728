// Host implementation of the content daemon's D-Bus proxy library over sd-bus.
//
// Each wire method is a method of the daemon's Provider interface taking one string (the JSON
// argument) and returning one string (the JSON reply), on the session bus.
//
// Threads: every thread keeps a connection of its own. An sd-bus connection must not be used by
// two threads at once, and one shared connection under a lock would serialise whole round trips
// (the lock held while waiting for the daemon); a connection per thread keeps concurrent callers
// fully parallel and their replies can never cross, because each connection only ever carries
// the one call its thread is waiting for.
//
// The connection is opened on first use and reopened when it was closed, when the process forked,
// or when DBUS_SESSION_BUS_ADDRESS names another bus than the one it was opened on (a test that
// starts a fresh bus must not reach the previous one through a cached connection).
#include "kelvo-dbus-proxy.h"

#include "KelvoDaemonBus.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

// sd-bus's own default; long enough for a daemon that asks the remote server before answering.
const uint64_t kDefaultTimeoutMs = 25000;

// KELVO_CALL_TIMEOUT_MS shortens the wait where a host test needs a daemon that never answers.
uint64_t TimeoutUsec()
{
    const char *text = getenv("KELVO_CALL_TIMEOUT_MS");
    uint64_t ms = kDefaultTimeoutMs;
    if (text && *text) {
        char *end = nullptr;
        unsigned long long value = strtoull(text, &end, 10);
        if (end && *end == '\0' && value > 0)
            ms = value;
    }
    return ms * 1000;
}

class ThreadConnection {
public:
    ~ThreadConnection() { m_Drop(); }

    // The connection of this thread to the current session bus, or null when none can be made.
    sd_bus *Get()
    {
        const char *address = getenv("DBUS_SESSION_BUS_ADDRESS");
        std::string current = address ? address : "";
        if (m_bus && m_pid != getpid()) {
            // Inherited across fork: sd-bus refuses it in the child, and unref there would touch
            // the parent's socket state. Leave it.
            m_bus = nullptr;
        }
        if (m_bus && (current != m_address || sd_bus_is_open(m_bus) <= 0))
            m_Drop();
        if (!m_bus) {
            sd_bus *bus = nullptr;
            if (sd_bus_open_user(&bus) < 0)
                return nullptr;
            m_bus = bus;
            m_address = current;
            m_pid = getpid();
        }
        return m_bus;
    }

    // After a transport error the connection is discarded so that the next call reconnects.
    void Discard() { m_Drop(); }

private:
    void m_Drop()
    {
        if (m_bus && m_pid == getpid())
            sd_bus_flush_close_unref(m_bus);
        m_bus = nullptr;
    }

    sd_bus *m_bus = nullptr;
    std::string m_address;
    pid_t m_pid = 0;
};

thread_local ThreadConnection t_connection;

KelvoCallResult *MakeResult(bool success, const char *text)
{
    auto *result = static_cast<KelvoCallResult *>(calloc(1, sizeof(KelvoCallResult)));
    if (!result)
        return nullptr;
    size_t length = strlen(text);
    result->data = static_cast<char *>(malloc(length + 1));
    if (!result->data) {
        free(result);
        return nullptr;
    }
    memcpy(result->data, text, length + 1);
    result->length = static_cast<unsigned int>(length);
    result->success = success;
    return result;
}

bool IsTransportError(int r)
{
    return r == -ECONNRESET || r == -ENOTCONN || r == -EPIPE || r == -ECHILD || r == -ESHUTDOWN;
}

}  // namespace

extern "C" KelvoCallResult *Call(const char *method, const char *argument)
{
    sd_bus *bus = t_connection.Get();
    if (!bus)
        return nullptr;
    if (!method)
        return MakeResult(false, "");

    sd_bus_message *request = nullptr;
    sd_bus_message *reply = nullptr;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    const char *text = nullptr;

    // An invalid member name, or an argument that is not valid UTF-8, fails here without a call.
    int r = sd_bus_message_new_method_call(bus, &request, KelvoDaemonBus::kBusName, KelvoDaemonBus::kObjectPath,
                                           KelvoDaemonBus::kProviderInterface, method);
    if (r >= 0)
        r = sd_bus_message_append(request, "s", argument ? argument : "");
    if (r >= 0)
        r = sd_bus_call(bus, request, TimeoutUsec(), &error, &reply);
    if (r >= 0)
        r = sd_bus_message_read(reply, "s", &text);

    KelvoCallResult *result = MakeResult(r >= 0, r >= 0 ? text : "");
    if (r < 0 && IsTransportError(r))
        t_connection.Discard();

    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
    sd_bus_message_unref(request);
    return result;
}

extern "C" void DisposeCallResult(KelvoCallResult *result)
{
    if (!result)
        return;
    free(result->data);
    free(result);
}
