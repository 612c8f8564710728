// A private D-Bus session bus in a temporary folder, with the content daemon simulator on it, both
// brought up by the simulated TV's supervisor (kelvo-tv-supervisor --serve).
#ifndef KELVO_TESTS_KELVO_TEST_BUS_H
#define KELVO_TESTS_KELVO_TEST_BUS_H

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <json/json.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "KelvoDaemonBus.h"

#include <gtest/gtest.h>

class KelvoTestBus {
public:
    // The simulator starts with the fixture text (its --fixture) and records every request in the
    // bus's temporary folder (Records()).
    explicit KelvoTestBus(const std::string &fixture = "{}", bool startDaemon = true)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-transport-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        m_folder = pattern;
        std::ofstream(m_folder + "/fixture.json") << fixture;
        std::vector<std::string> args = {KELVO_SUPERVISOR, "--serve",   "--no-notify",
                                         "--run-dir",      m_folder,    "--out",
                                         m_folder,         "--fixture", m_folder + "/fixture.json"};
        if (!startDaemon)
            args.push_back("--no-daemon");
        m_supervisor = m_SpawnAndReadLine(args, "supervisor.log", m_address);
        if (m_address.empty())
            m_Stop(m_supervisor);
    }
    ~KelvoTestBus()
    {
        m_Stop(m_supervisor);
        std::error_code ignored;
        if (!m_folder.empty())
            std::filesystem::remove_all(m_folder, ignored);
    }
    KelvoTestBus(const KelvoTestBus &) = delete;
    KelvoTestBus &operator=(const KelvoTestBus &) = delete;

    // The supervisor answers only once the bus and (if asked for) the simulator are up.
    bool Ready() const { return !m_address.empty() && m_supervisor > 0; }
    const std::string &Address() const { return m_address; }
    // Points Call (DBUS_SESSION_BUS_ADDRESS) of this process at the bus.
    void UseForCalls() const { setenv("DBUS_SESSION_BUS_ADDRESS", m_address.c_str(), 1); }

    // Control calls go through busctl, as a person would make them.
    bool SetScript(const std::string &method, const std::string &entry)
    {
        return m_Control({"SetScript", "ss", method, entry});
    }
    bool ClearScript() { return m_Control({"ClearScript"}); }
    // The simulator raises an event; "--" keeps busctl from reading a negative number as an option.
    bool EmitEvent(int event, int param1, int param2, int param3, const std::string &data)
    {
        return m_Control({"--", "EmitEvent", "iiiis", std::to_string(event), std::to_string(param1),
                          std::to_string(param2), std::to_string(param3), data});
    }
    // Answers as a daemon without the newest methods, or not.
    bool SetOlder(bool older) { return m_Control({"SetOlder", "b", older ? "true" : "false"}); }

    using RecordList = std::vector<std::pair<std::string, std::string>>;
    // (method, argument) of every request since the last ClearRecords, from the record file, which
    // the simulator writes before it answers.
    RecordList Records() const
    {
        RecordList records;
        std::ifstream in(m_folder + "/daemon-requests.jsonl");
        std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
        size_t index = 0;
        for (std::string line; std::getline(in, line); ++index) {
            Json::Value record;
            if (index < m_recordsSeen || !reader->parse(line.data(), line.data() + line.size(), &record, nullptr))
                continue;
            records.emplace_back(record["method"].asString(), record["argument"].asString());
        }
        return records;
    }
    void ClearRecords() { m_recordsSeen += Records().size(); }

private:
    // Starts argv with fd `keep` left open for it and its output into `log` in the folder.
    pid_t m_Spawn(const std::vector<std::string> &args, int keep, const char *log) const
    {
        pid_t pid = fork();
        if (pid != 0)
            return pid;
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        int out = open((m_folder + "/" + log).c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        dup2(out, 1);
        dup2(out, 2);
        for (int fd = 3; fd < 256; ++fd)
            close(fd == keep ? -1 : fd);
        std::vector<char *> argv;
        argv.reserve(args.size() + 1);
        for (const auto &a : args)
            argv.push_back(const_cast<char *>(a.c_str()));
        argv.push_back(nullptr);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    // Starts a process that writes one line to the fd given after --ready-fd and reads that line,
    // without the newline.
    pid_t m_SpawnAndReadLine(std::vector<std::string> args, const char *log, std::string &line) const
    {
        int fds[2];
        if (pipe(fds) != 0)
            return -1;
        args.insert(args.end(), {"--ready-fd", std::to_string(fds[1])});
        pid_t pid = m_Spawn(args, fds[1], log);
        close(fds[1]);
        for (char c; read(fds[0], &c, 1) == 1 && c != '\n';)
            line += c;
        close(fds[0]);
        return pid;
    }
    bool m_Control(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"busctl", "--address=" + m_address, "call", KelvoDaemonBus::kBusName,
                                             KelvoDaemonBus::kObjectPath, KelvoDaemonBus::kControlInterface});
        pid_t pid = m_Spawn(arguments, -1, "control.log");
        int status = 0;
        return pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    static void m_Stop(pid_t &pid)
    {
        if (pid <= 0)
            return;
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
        pid = -1;
    }

    std::string m_folder;
    std::string m_address;
    pid_t m_supervisor = -1;
    size_t m_recordsSeen = 0;
};

// The simulator's script entry that answers with `text`, whatever it holds.
inline std::string KelvoScriptReply(const std::string &text)
{
    return "{\"reply\":" + Json::valueToQuotedString(text.c_str()) + "}";
}

// The fixture of the suites that bring none of their own.
inline constexpr char kKelvoBusTestFixture[] = R"({"programs": {"S2": [], "S1": []}, "version": "7.1 \u00e9t\u00e9",
                                                   "sourceToService": {"S1": "18446744073709551615"}})";

// The tests of a suite share one bus and simulator, started with the fixture; each test starts
// with this process's calls pointed at it, no script and no records.
template <const char *Fixture>
class KelvoBusTestOf : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_bus = new KelvoTestBus(Fixture); }
    static void TearDownTestSuite() { delete s_bus; }
    void SetUp() override
    {
        ASSERT_TRUE(s_bus->Ready());
        s_bus->UseForCalls();
        s_bus->ClearScript();
        s_bus->ClearRecords();
    }
    inline static KelvoTestBus *s_bus = nullptr;
};
using KelvoBusTest = KelvoBusTestOf<kKelvoBusTestFixture>;

#endif
