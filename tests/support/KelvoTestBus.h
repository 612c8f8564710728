// A private D-Bus session bus in a temporary folder, with the content daemon simulator on it.
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
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

class KelvoTestBus {
public:
    // The simulator starts with the fixture text (its --fixture) and records to Folder()/records.jsonl.
    explicit KelvoTestBus(const std::string &fixture = "{}", bool startDaemon = true) : m_wantDaemon(startDaemon)
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-transport-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        m_folder = pattern;
        std::ofstream(m_folder + "/fixture.json") << fixture;
        // The system's session configuration: no service of the daemon is installed, so an absent
        // daemon stays absent.
        m_bus = m_SpawnAndReadLine({"dbus-daemon", "--session", "--nofork", "--address=unix:path=" + m_folder + "/bus"},
                                   "--print-address=", "bus.log", m_address);
        if (m_address.empty() || !startDaemon)
            return;
        std::string ready;
        m_daemon =
            m_SpawnAndReadLine({KELVO_DAEMON_SIM, "--address", m_address, "--fixture", m_folder + "/fixture.json",
                                "--record", m_folder + "/records.jsonl", "--ready-fd"},
                               "", "daemon.log", ready);
        if (ready != "ready")
            m_Stop(m_daemon);
    }
    ~KelvoTestBus()
    {
        m_Stop(m_daemon);
        m_Stop(m_bus);
        std::error_code ignored;
        if (!m_folder.empty())
            std::filesystem::remove_all(m_folder, ignored);
    }
    KelvoTestBus(const KelvoTestBus &) = delete;
    KelvoTestBus &operator=(const KelvoTestBus &) = delete;

    bool Ready() const { return !m_address.empty() && (!m_wantDaemon || m_daemon > 0); }
    const std::string &Address() const { return m_address; }
    // Points Call (DBUS_SESSION_BUS_ADDRESS) of this process at the bus.
    void UseForCalls() const { setenv("DBUS_SESSION_BUS_ADDRESS", m_address.c_str(), 1); }

    // Control calls go through busctl, as a person would make them.
    bool SetScript(const std::string &method, const std::string &entry)
    {
        return m_Control({"SetScript", "ss", method, entry});
    }
    bool ClearScript() { return m_Control({"ClearScript"}); }

    using RecordList = std::vector<std::pair<std::string, std::string>>;
    // (method, argument) of every request since the last ClearRecords, from the record file, which
    // the simulator writes before it answers.
    RecordList Records() const
    {
        RecordList records;
        std::ifstream in(m_folder + "/records.jsonl");
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
    // Starts a process that writes one line to the fd given as its last argument (`fdArgument` and
    // the number) and reads that line, without the newline.
    pid_t m_SpawnAndReadLine(std::vector<std::string> args, const std::string &fdArgument, const char *log,
                             std::string &line) const
    {
        int fds[2];
        if (pipe(fds) != 0)
            return -1;
        args.push_back(fdArgument + std::to_string(fds[1]));
        pid_t pid = m_Spawn(args, fds[1], log);
        close(fds[1]);
        for (char c; read(fds[0], &c, 1) == 1 && c != '\n';)
            line += c;
        close(fds[0]);
        return pid;
    }
    bool m_Control(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"busctl", "--address=" + m_address, "call", "com.halvorn.tv.KelvoDaemon",
                                             "/com/halvorn/tv/KelvoDaemon", "com.halvorn.tv.KelvoDaemon.Control"});
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

    bool m_wantDaemon;
    std::string m_folder;
    std::string m_address;
    pid_t m_bus = -1;
    pid_t m_daemon = -1;
    size_t m_recordsSeen = 0;
};

// The tests of a suite share one bus and simulator, started with this fixture; each test starts
// with this process's calls pointed at it, no script and no records.
class KelvoBusTest : public ::testing::Test {
protected:
    static constexpr const char *kFixture = R"({"programs": {"S2": [], "S1": []}, "version": "7.1 \u00e9t\u00e9",
                                                 "sourceToService": {"S1": "18446744073709551615"}})";
    static void SetUpTestSuite() { s_bus = new KelvoTestBus(kFixture); }
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

#endif
