// kelvo-tv-supervisor outside the sandbox, as the test bus and a person use it: the process it
// runs (here a small shell command, never kelvo-util: that one runs only in the sandbox), its exit
// status, its bounded log, its environment, the notification server and the served bus.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "BoundedLog.h"
#include "KelvoDaemonBus.h"

namespace {

class SupervisorTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-supervisor-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    std::string Read(const std::string &name) const
    {
        std::ifstream in(m_folder + "/" + name);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    std::vector<std::string> Arguments(const std::vector<std::string> &extra) const
    {
        std::vector<std::string> args = {KELVO_SUPERVISOR, "--run-dir", m_folder, "--out", m_folder};
        args.insert(args.end(), extra.begin(), extra.end());
        return args;
    }

    // Starts the supervisor with its output into supervisor.txt; keep stays open in it.
    pid_t Start(const std::vector<std::string> &args, int keep = -1) const
    {
        pid_t pid = fork();
        if (pid != 0)
            return pid;
        int out = open((m_folder + "/supervisor.txt").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        dup2(out, 1);
        dup2(out, 2);
        for (int fd = 3; fd < 256; ++fd)
            if (fd != keep)
                close(fd);
        std::vector<char *> argv;
        argv.reserve(args.size() + 1);
        for (const auto &a : args)
            argv.push_back(const_cast<char *>(a.c_str()));
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }

    int Run(const std::vector<std::string> &extra) const
    {
        pid_t pid = Start(Arguments(extra));
        int status = 0;
        waitpid(pid, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string m_folder;
};

TEST_F(SupervisorTest, StatusAndLogOfTheProcess)
{
    const std::string kCut = KelvoBoundedLog::kTruncatedLine;
    const struct {
        const char *name;
        std::vector<std::string> options;
        int status;
        std::string logStart;  // what the log begins with
        std::string logEnd;    // and ends with
    } cases[] = {
        {"its own status", {"--", "sh", "-c", "echo W/t: hello; exit 3"}, 3, "W/t: hello\n", "W/t: hello\n"},
        {"ended by a signal", {"--", "sh", "-c", "echo W/t: bye; kill -KILL $$"}, 128 + SIGKILL, "W/t: bye\n", ""},
        {"stopped by the limit", {"--timeout", "1", "--", "sleep", "60"}, 124, "", ""},
        {"a log without end is cut",
         {"--timeout", "1", "--log-limit", "4096", "--", "yes", "W/spin"},
         124,
         "W/spin\nW/spin\n",
         "\n" + kCut},
        {"the stick and the bus in its environment",
         {"--usb-mounts", "/media/X", "--", "sh", "-c", "echo \"$KELVO_USB_MOUNTS $DBUS_SESSION_BUS_ADDRESS\""},
         0,
         "/media/X unix:path=",
         ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> options = {"--no-daemon", "--no-notify"};
        options.insert(options.end(), c.options.begin(), c.options.end());
        EXPECT_EQ(Run(options), c.status);
        EXPECT_EQ(Read("exit-status"), std::to_string(c.status) + "\n");
        std::string log = Read("kelvo-util.log");
        EXPECT_EQ(log.substr(0, c.logStart.size()), c.logStart);
        EXPECT_EQ(log.substr(log.size() - std::min(log.size(), c.logEnd.size())), c.logEnd);
        EXPECT_LE(log.size(), 4096 + 1 + kCut.size());
    }
}

TEST_F(SupervisorTest, EveryNotificationIsOnRecordWhenTheRunEnds)
{
    EXPECT_EQ(Run({"--no-daemon", "--", "busctl", "--user", "call", "org.freedesktop.Notifications",
                   "/org/freedesktop/Notifications", "org.freedesktop.Notifications", "Notify", "susssasa{sv}i",
                   "kelvo-util", "0", "", "Title", "Text", "0", "0", "20000"}),
              0);
    EXPECT_EQ(Read("notifications.tsv"), "kelvo-util\tTitle\tText\t20000\n");
}

// The content daemon simulator says it is ready before its fixture has loaded; one that then fails
// is shown once the process has ended, and the process ran all the same.
TEST_F(SupervisorTest, ShowsTheLogOfAContentDaemonThatEndedDuringTheRun)
{
    std::ofstream(m_folder + "/fixture.json") << "{\"programs\": 5}";
    const std::string waitForTheDaemonToGo =
        std::string("while busctl --user status ") + KelvoDaemonBus::kBusName + " >/dev/null 2>&1; do sleep 0.05; done";
    EXPECT_EQ(Run({"--no-notify", "--fixture", m_folder + "/fixture.json", "--", "sh", "-c", waitForTheDaemonToGo}), 0);
    const std::string note = "kelvo-tv-supervisor: note: the content daemon simulator ended during the run:\n"
                             "kelvo-daemon-sim: " +
                             m_folder + "/fixture.json: fixture member \"programs\" has the wrong kind\n";
    EXPECT_NE(Read("supervisor.txt").find(note), std::string::npos) << Read("supervisor.txt");
}

TEST_F(SupervisorTest, ServesTheBusUntilTold)
{
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    std::ofstream(m_folder + "/fixture.json") << "{}";
    pid_t pid = Start(Arguments({"--serve", "--no-notify", "--fixture", m_folder + "/fixture.json", "--ready-fd",
                                 std::to_string(fds[1])}),
                      fds[1]);
    close(fds[1]);
    std::string address;
    for (char c; read(fds[0], &c, 1) == 1 && c != '\n';)
        address += c;
    close(fds[0]);
    EXPECT_EQ(address.substr(0, address.find(',')), "unix:path=" + m_folder + "/bus");

    // The simulator is on the bus and serves its introspection file as it is.
    std::string command = "dbus-send --bus='" + address + "' --print-reply=literal --dest=" + KelvoDaemonBus::kBusName +
                          " " + KelvoDaemonBus::kObjectPath + " org.freedesktop.DBus.Introspectable.Introspect > '" +
                          m_folder + "/introspect.txt'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::ifstream xmlFile(KELVO_DAEMON_XML);
    std::stringstream xml;
    xml << xmlFile.rdbuf();
    std::string served = Read("introspect.txt");
    EXPECT_EQ(served.substr(0, 3), "   ");  // dbus-send's indent of a literal reply
    EXPECT_EQ(served.substr(std::min<size_t>(3, served.size())), xml.str());

    kill(pid, SIGTERM);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    // The bus is gone with it: nothing accepts on its socket.
    int sock = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un where{};
    where.sun_family = AF_UNIX;
    std::string path = m_folder + "/bus";
    path.copy(where.sun_path, sizeof where.sun_path - 1);
    EXPECT_NE(connect(sock, reinterpret_cast<sockaddr *>(&where), sizeof where), 0);
    close(sock);
}

}  // namespace
