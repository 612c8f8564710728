// kelvo-daemon-sim: the content daemon of the simulated TV. Owns com.halvorn.tv.KelvoDaemon on
// the session bus and answers the provider's wire methods from a fixture; see README.md.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <json/json.h>
#include <malloc.h>
#include <sys/stat.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>
#include <unistd.h>

#include "KelvoDaemonBus.h"
#include "KelvoDaemonXml.h"
#include "SimContent.h"

namespace {

const char *const kBusName = KelvoDaemonBus::kBusName;
const char *const kObjectPath = KelvoDaemonBus::kObjectPath;
const char *const kProvider = KelvoDaemonBus::kProviderInterface;
const char *const kControl = KelvoDaemonBus::kControlInterface;
const char *const kEvent = KelvoDaemonBus::kEventInterface;
const char *const kIntrospectable = "org.freedesktop.DBus.Introspectable";
const Json::ArrayIndex kMaxRecordsInMemory = 100000;

struct Options {
    std::string fixture;
    std::string record;
    std::string script;
    std::string address;
    int readyFd = -1;
    bool older = false;
};

void Usage(FILE *to)
{
    fprintf(to, "usage: kelvo-daemon-sim [--fixture FILE] [--record FILE] [--script FILE]\n"
                "                        [--address BUS-ADDRESS] [--ready-fd FD] [--older]\n"
                "Answers the content daemon's wire methods on the session bus (or BUS-ADDRESS);\n"
                "--older answers as a daemon without the newest methods.\n");
}

bool ParseJsonText(const std::string &text, Json::Value &out, std::string &error)
{
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    return reader->parse(text.data(), text.data() + text.size(), &out, &error);
}

// Reads the whole file in one go, into a text of its size: a TV's fixture may be tens of megabytes.
bool ReadFile(int fd, const std::string &path, std::string &text, std::string &error)
{
    struct stat st {};
    // One byte more than its size, so the read that finds its end needs no room of its own.
    text.resize(fstat(fd, &st) == 0 && st.st_size > 0 ? static_cast<size_t>(st.st_size) + 1 : 4096);
    size_t used = 0;
    for (;;) {
        if (used == text.size())
            text.resize(2 * used);  // it grew while it was read
        ssize_t n = read(fd, &text[used], text.size() - used);
        if (n > 0) {
            used += static_cast<size_t>(n);
        } else if (n == 0) {
            text.resize(used);
            return true;
        } else if (errno != EINTR) {
            error = "cannot read " + path + ": " + strerror(errno);
            return false;
        }
    }
}

int OpenFile(const std::string &path, std::string &error)
{
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        error = "cannot read " + path + ": " + strerror(errno);
    return fd;
}

// Reads and parses an opened file, and closes it.
bool ReadJsonFrom(int fd, const std::string &path, Json::Value &out, std::string &error)
{
    std::string text;
    bool read = ReadFile(fd, path, text, error);
    close(fd);
    if (!read)
        return false;
    if (!ParseJsonText(text, out, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

bool ReadJsonFile(const std::string &path, Json::Value &out, std::string &error)
{
    int fd = OpenFile(path, error);
    return fd >= 0 && ReadJsonFrom(fd, path, out, error);
}

// A script entry is valid when it is an object whose known members have the right kind.
bool ValidScriptEntry(const Json::Value &entry)
{
    if (!entry.isObject())
        return false;
    if (entry.isMember("reply") && !entry["reply"].isString() && !entry["reply"].isObject())
        return false;
    if (entry.isMember("error") && !entry["error"].isString())
        return false;
    if (entry.isMember("message") && !entry["message"].isString())
        return false;
    if (entry.isMember("delay_ms") && !entry["delay_ms"].isUInt())
        return false;
    return true;
}

class Daemon {
public:
    Daemon(sd_event *event, KelvoSimContent &content) : m_event(event), m_content(content) {}
    ~Daemon()
    {
        if (m_record)
            fclose(m_record);
    }

    bool OpenRecord(const std::string &path)
    {
        m_record = fopen(path.c_str(), "a");
        return m_record != nullptr;
    }

    bool LoadScript(const Json::Value &script, std::string &error)
    {
        if (!script.isObject()) {
            error = "the script is not a JSON object";
            return false;
        }
        for (const auto &method : script.getMemberNames()) {
            if (!ValidScriptEntry(script[method])) {
                error = "script entry \"" + method + "\" is not {\"reply\"|\"error\"|\"delay_ms\"...}";
                return false;
            }
        }
        m_script = script;
        return true;
    }

    static int OnMessage(sd_bus_message *m, void *userdata, sd_bus_error *error)
    {
        return static_cast<Daemon *>(userdata)->m_Dispatch(m, error);
    }

private:
    struct Pending {
        Daemon *daemon;
        sd_bus_message *call;
        Json::Value entry;
        sd_event_source *timer;
    };

    int m_Dispatch(sd_bus_message *m, sd_bus_error *error)
    {
        if (!sd_bus_message_is_method_call(m, nullptr, nullptr))
            return 0;
        const char *interface = sd_bus_message_get_interface(m);
        const char *member = sd_bus_message_get_member(m);
        if (!member)
            return 0;
        if (interface && strcmp(interface, kIntrospectable) == 0 && strcmp(member, "Introspect") == 0) {
            return sd_bus_reply_method_return(m, "s", kKelvoDaemonIntrospection);
        }
        if (interface && strcmp(interface, kControl) == 0)
            return m_Control(m, member, error);
        // A call without an interface is meant for the provider, as D-Bus allows.
        if (interface && strcmp(interface, kProvider) != 0)
            return 0;

        const char *argument = nullptr;
        if (!sd_bus_message_has_signature(m, "s") || sd_bus_message_read(m, "s", &argument) < 0) {
            return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "%s takes one string (JSON text)", member);
        }
        m_Record(member, argument);

        if (m_script.isMember(member)) {
            const Json::Value &entry = m_script[member];
            unsigned delay = entry.get("delay_ms", 0).asUInt();
            if (delay > 0)
                return m_Defer(m, entry, delay);
            return m_Reply(m, member, argument, &entry);
        }
        return m_Reply(m, member, argument, nullptr);
    }

    int m_Reply(sd_bus_message *m, const char *member, const char *argument, const Json::Value *entry)
    {
        if (entry && entry->isMember("error")) {
            std::string message = entry->get("message", std::string("scripted failure of ") + member).asString();
            return sd_bus_reply_method_errorf(m, (*entry)["error"].asCString(), "%s", message.c_str());
        }
        if (entry && entry->isMember("reply")) {
            const Json::Value &reply = (*entry)["reply"];
            std::string text = reply.isString() ? reply.asString() : KelvoSimContent::ToCompactText(reply);
            return sd_bus_reply_method_return(m, "s", text.c_str());
        }
        std::string reply;
        if (!m_content.AnswerText(member, argument, reply)) {
            return sd_bus_reply_method_errorf(m, SD_BUS_ERROR_UNKNOWN_METHOD, "Unknown method %s", member);
        }
        return sd_bus_reply_method_return(m, "s", reply.c_str());
    }

    // A delayed answer does not hold up the other callers: the call is kept and answered from a
    // timer of the event loop.
    int m_Defer(sd_bus_message *m, const Json::Value &entry, unsigned delayMs)
    {
        auto *pending = new Pending{this, sd_bus_message_ref(m), entry, nullptr};
        int r = sd_event_add_time_relative(m_event, &pending->timer, CLOCK_MONOTONIC,
                                           static_cast<uint64_t>(delayMs) * 1000, 0, &Daemon::OnTimer, pending);
        if (r < 0) {
            Forget(pending);
            return r;
        }
        // Calls still waiting when the daemon stops are released with their timers.
        sd_event_source_set_destroy_callback(pending->timer, &Daemon::Forget);
        return 1;
    }

    static void Forget(void *userdata)
    {
        auto *pending = static_cast<Pending *>(userdata);
        sd_bus_message_unref(pending->call);
        delete pending;
    }

    static int OnTimer(sd_event_source *source, uint64_t, void *userdata)
    {
        auto *pending = static_cast<Pending *>(userdata);
        const char *argument = nullptr;
        sd_bus_message_rewind(pending->call, 1);
        sd_bus_message_read(pending->call, "s", &argument);
        pending->daemon->m_Reply(pending->call, sd_bus_message_get_member(pending->call), argument ? argument : "",
                                 &pending->entry);
        sd_event_source_unref(source);  // its destroy callback releases the call
        return 0;
    }

    int m_Control(sd_bus_message *m, const char *member, sd_bus_error *error)
    {
        if (strcmp(member, "SetScript") == 0) {
            const char *method = nullptr;
            const char *text = nullptr;
            if (sd_bus_message_read(m, "ss", &method, &text) < 0) {
                return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "SetScript takes (method, entry)");
            }
            Json::Value entry;
            std::string parseError;
            if (*text == '\0') {
                m_script.removeMember(method);
            } else if (!ParseJsonText(text, entry, parseError) || !ValidScriptEntry(entry)) {
                return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "bad script entry for %s", method);
            } else {
                m_script[method] = entry;
            }
            return sd_bus_reply_method_return(m, "");
        }
        if (strcmp(member, "ClearScript") == 0) {
            m_script = Json::Value(Json::objectValue);
            return sd_bus_reply_method_return(m, "");
        }
        if (strcmp(member, "SetFixture") == 0) {
            const char *text = nullptr;
            Json::Value fixture;
            std::string loadError;
            if (sd_bus_message_read(m, "s", &text) < 0 || !ParseJsonText(text, fixture, loadError) ||
                !m_content.Load(std::move(fixture), loadError)) {
                return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "bad fixture: %s", loadError.c_str());
            }
            return sd_bus_reply_method_return(m, "");
        }
        if (strcmp(member, "GetRecords") == 0) {
            return sd_bus_reply_method_return(m, "s", KelvoSimContent::ToCompactText(m_records).c_str());
        }
        if (strcmp(member, "SetOlder") == 0) {
            int older = 0;
            if (sd_bus_message_read(m, "b", &older) < 0)
                return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS, "SetOlder takes a boolean");
            m_content.SetOlder(older != 0);
            return sd_bus_reply_method_return(m, "");
        }
        if (strcmp(member, "ClearRecords") == 0) {
            m_records = Json::Value(Json::arrayValue);
            return sd_bus_reply_method_return(m, "");
        }
        if (strcmp(member, "EmitEvent") == 0)
            return m_EmitEvent(m, error);
        return sd_bus_error_setf(error, SD_BUS_ERROR_UNKNOWN_METHOD, "Unknown method %s", member);
    }

    // Raises one event as the daemon does, then answers when it was raised (CLOCK_MONOTONIC, in
    // nanoseconds), from which a measurement takes the time the event took to arrive.
    int m_EmitEvent(sd_bus_message *m, sd_bus_error *error)
    {
        int event = 0;
        int params[3] = {0, 0, 0};
        const char *data = nullptr;
        if (sd_bus_message_read(m, "iiiis", &event, &params[0], &params[1], &params[2], &data) < 0) {
            return sd_bus_error_setf(error, SD_BUS_ERROR_INVALID_ARGS,
                                     "EmitEvent takes (event, param1, param2, param3, data)");
        }
        struct timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        const uint64_t emitted = static_cast<uint64_t>(now.tv_sec) * 1000000000ULL + static_cast<uint64_t>(now.tv_nsec);
        int r = sd_bus_emit_signal(sd_bus_message_get_bus(m), kObjectPath, kEvent, KelvoDaemonBus::kEventSignal,
                                   "siiis", std::to_string(event).c_str(), params[0], params[1], params[2], data);
        if (r < 0)
            return sd_bus_error_set_errno(error, r);
        return sd_bus_reply_method_return(m, "t", emitted);
    }

    void m_Record(const char *method, const char *argument)
    {
        Json::Value line(Json::objectValue);
        line["method"] = method;
        line["argument"] = argument;
        // Kept in memory for GetRecords up to a bound, so a long load run does not grow without end.
        if (m_records.size() < kMaxRecordsInMemory)
            m_records.append(line);
        if (m_record) {
            // Written by hand so that "method" leads the line, as a person reading the file expects.
            fprintf(m_record, "{\"method\":%s,\"argument\":%s}\n",
                    KelvoSimContent::ToCompactText(line["method"]).c_str(),
                    KelvoSimContent::ToCompactText(line["argument"]).c_str());
            fflush(m_record);
        }
    }

    sd_event *m_event;
    KelvoSimContent &m_content;
    Json::Value m_script{Json::objectValue};
    Json::Value m_records{Json::arrayValue};
    FILE *m_record = nullptr;
};

// Reads and loads the fixture on a thread of its own, so that the bus comes up meanwhile. The
// event loop runs only once Wait has returned: no call is ever answered from a fixture half loaded.
class FixtureLoad {
public:
    // Takes the opened fixture over (-1: none, the daemon knows nothing).
    FixtureLoad(int fd, std::string path, KelvoSimContent &content)
        : m_path(std::move(path)), m_thread([this, fd, &content] { m_loaded = m_Load(fd, content); })
    {}
    ~FixtureLoad() { Wait(); }
    FixtureLoad(const FixtureLoad &) = delete;
    FixtureLoad &operator=(const FixtureLoad &) = delete;

    // Waits until the load has ended. False when it failed, said once on standard error.
    bool Wait()
    {
        if (m_thread.joinable()) {
            m_thread.join();
            if (!m_loaded)
                fprintf(stderr, "kelvo-daemon-sim: %s\n", m_error.c_str());
        }
        return m_loaded;
    }

private:
    bool m_Load(int fd, KelvoSimContent &content)
    {
        Json::Value fixture(Json::objectValue);
        if (fd >= 0 && !ReadJsonFrom(fd, m_path, fixture, m_error))
            return false;
        if (!content.Load(std::move(fixture), m_error)) {
            m_error = m_path + ": " + m_error;
            return false;
        }
        return true;
    }

    std::string m_path;
    std::string m_error;
    bool m_loaded = false;
    std::thread m_thread;  // last: it starts once the members above are made
};

// A fixture that did not load is said first and ends the daemon with 2, as when nothing came
// before the load; otherwise the failure's own message and status.
int Failed(FixtureLoad &load, int status, const std::string &message)
{
    if (!load.Wait())
        return 2;
    fprintf(stderr, "kelvo-daemon-sim: %s\n", message.c_str());
    return status;
}

bool ParseOptions(int argc, char **argv, Options &options)
{
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&](std::string &out) {
            if (i + 1 >= argc)
                return false;
            out = argv[++i];
            return true;
        };
        std::string fd;
        if (arg == "--fixture") {
            if (!value(options.fixture))
                return false;
        } else if (arg == "--record") {
            if (!value(options.record))
                return false;
        } else if (arg == "--script") {
            if (!value(options.script))
                return false;
        } else if (arg == "--address") {
            if (!value(options.address))
                return false;
        } else if (arg == "--ready-fd") {
            if (!value(fd))
                return false;
            char *end = nullptr;
            long n = strtol(fd.c_str(), &end, 10);
            if (fd.empty() || *end != '\0' || n < 0)
                return false;
            options.readyFd = static_cast<int>(n);
        } else if (arg == "--older") {
            options.older = true;
        } else if (arg == "--help" || arg == "-h") {
            Usage(stdout);
            exit(0);
        } else {
            return false;
        }
    }
    return true;
}

int OpenBus(const std::string &address, sd_bus **bus)
{
    if (address.empty())
        return sd_bus_open_user(bus);
    int r = sd_bus_new(bus);
    if (r < 0)
        return r;
    if ((r = sd_bus_set_address(*bus, address.c_str())) < 0 || (r = sd_bus_set_bus_client(*bus, 1)) < 0 ||
        (r = sd_bus_start(*bus)) < 0) {
        *bus = sd_bus_unref(*bus);
    }
    return r;
}

}  // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!ParseOptions(argc, argv, options)) {
        Usage(stderr);
        return 2;
    }

    // A fixture that is not there fails before the daemon says it is ready; what it holds is
    // read while the bus comes up.
    std::string error;
    int fixtureFd = -1;
    if (!options.fixture.empty() && (fixtureFd = OpenFile(options.fixture, error)) < 0) {
        fprintf(stderr, "kelvo-daemon-sim: %s\n", error.c_str());
        return 2;
    }

    // Signals arrive through the event loop, which then ends and lets everything close cleanly.
    // They are blocked before the loader starts, so that it inherits the mask.
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGTERM);
    sigaddset(&mask, SIGINT);
    sigprocmask(SIG_BLOCK, &mask, nullptr);

    // The loader allocates in the process's main heap rather than in an arena of its own thread:
    // only the main heap grows in transparent huge pages (glibc.malloc.hugetlb, which the
    // supervisor sets), and a large fixture is hundreds of megabytes of JSON values, whose page
    // faults one by one took the load a third of its time.
    mallopt(M_ARENA_MAX, 1);

    // The content lives until the process ends and is never taken apart: a large fixture is
    // millions of JSON values, and freeing them one by one made every stop of the daemon wait a
    // good part of a second. The pointer stays reachable, so a leak checker does not count it.
    static KelvoSimContent *const kept = new KelvoSimContent;
    KelvoSimContent &content = *kept;
    FixtureLoad load(fixtureFd, options.fixture, content);

    sd_event *event = nullptr;
    sd_bus *bus = nullptr;
    int r = sd_event_default(&event);
    if (r >= 0)
        r = sd_event_add_signal(event, nullptr, SIGTERM, nullptr, nullptr);
    if (r >= 0)
        r = sd_event_add_signal(event, nullptr, SIGINT, nullptr, nullptr);
    if (r < 0) {
        sd_event_unref(event);
        return Failed(load, 1, std::string("event loop: ") + strerror(-r));
    }

    int status = 1;
    {
        Daemon daemon(event, content);
        Json::Value script;
        if (!options.record.empty() && !daemon.OpenRecord(options.record)) {
            status = Failed(load, 2, "cannot open " + options.record + ": " + strerror(errno));
        } else if (!options.script.empty() &&
                   (!ReadJsonFile(options.script, script, error) || !daemon.LoadScript(script, error))) {
            status = Failed(load, 2, error);
        } else if ((r = OpenBus(options.address, &bus)) < 0) {
            status = Failed(load, 1, std::string("no bus: ") + strerror(-r));
        } else if ((r = sd_bus_add_object(bus, nullptr, kObjectPath, &Daemon::OnMessage, &daemon)) < 0 ||
                   (r = sd_bus_attach_event(bus, event, SD_EVENT_PRIORITY_NORMAL)) < 0 ||
                   (r = sd_bus_set_exit_on_disconnect(bus, 1)) < 0) {
            status = Failed(load, 1, std::string("bus setup: ") + strerror(-r));
        } else if ((r = sd_bus_request_name(bus, kBusName, 0)) < 0) {
            status = Failed(load, 1, std::string("cannot own ") + kBusName + ": " + strerror(-r));
        } else {
            if (options.readyFd >= 0) {
                (void)!write(options.readyFd, "ready\n", 6);
                close(options.readyFd);
            }
            // Calls that come meanwhile wait on the bus until the loop reads them.
            if (load.Wait()) {
                content.SetOlder(options.older);
                r = sd_event_loop(event);
                status = r < 0 ? 1 : 0;
            } else {
                status = 2;
            }
        }
        if (bus) {
            sd_bus_flush(bus);
            sd_bus_detach_event(bus);
            bus = sd_bus_close_unref(bus);
        }
    }
    sd_event_unref(event);
    return status;
}
