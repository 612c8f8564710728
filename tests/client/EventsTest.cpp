// Event subscription across processes over a real bus: the content daemon simulator raises events
// (through busctl, as a person would), and a client process of one kind (kelvo-test-event-client,
// its first request fixing the kind of its FCEMSProxy) reports what its callbacks received.
//
// Signals of one sender reach a receiver in the order they were sent, so an event that must not
// arrive is raised before one that must: the next line reported shows whether it came.
#include <climits>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "KelvoTestBus.h"

namespace {

const int kWaitMs = 10000;

// The client program with its standard input and output on pipes of this process.
class EventClient {
public:
    EventClient()
    {
        int in[2], out[2];
        if (pipe(in) != 0 || pipe(out) != 0)
            return;
        m_pid = fork();
        if (m_pid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM);
            dup2(in[0], 0);
            dup2(out[1], 1);
            for (int fd : {in[0], in[1], out[0], out[1]})
                close(fd);
            execl(KELVO_EVENT_CLIENT, KELVO_EVENT_CLIENT, static_cast<char *>(nullptr));
            _exit(127);
        }
        close(in[0]);
        close(out[1]);
        m_to = in[1];
        m_from = out[0];
    }
    ~EventClient()
    {
        close(m_to);
        close(m_from);
        if (m_pid > 0)
            waitpid(m_pid, nullptr, 0);
    }
    EventClient(const EventClient &) = delete;
    EventClient &operator=(const EventClient &) = delete;

    // The next line the client writes, or "(nothing)" when none comes in time.
    std::string Next()
    {
        std::string line;
        for (char c = 0;;) {
            struct pollfd fd = {m_from, POLLIN, 0};
            if (poll(&fd, 1, kWaitMs) != 1 || read(m_from, &c, 1) != 1)
                return "(nothing)";
            if (c == '\n')
                return line;
            line += c;
        }
    }
    // Sends a command and returns the client's answer.
    std::string Ask(const std::string &command)
    {
        std::string line = command + "\n";
        if (write(m_to, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            return "(not sent)";
        return Next();
    }

private:
    pid_t m_pid = -1;
    int m_to = -1;
    int m_from = -1;
};

class EventsTest : public KelvoBusTest {
protected:
    void Emit(int event, int param1, int param2, int param3, const std::string &data)
    {
        ASSERT_TRUE(s_bus->EmitEvent(event, param1, param2, param3, data));
    }
};

const char *const kData = R"({"channel":"7-1","title":"Nouvelles d'été"} end)";

TEST_F(EventsTest, EachKindReceivesWhatItSubscribedAndNothingElseUntilItUnsubscribes)
{
    using Line = std::function<std::string(int event, int p1, int p2, int p3, const std::string &data)>;
    auto head = [](const char *callback, int event, int p1, int p2, int p3) {
        return std::string(callback) + " " + std::to_string(event) + " " + std::to_string(p1) + " " +
               std::to_string(p2) + " " + std::to_string(p3);
    };
    const struct {
        const char *kind;
        const char *subscribe;    // followed by the event number
        const char *unsubscribe;  // followed by the event number
        const char *tag;          // the plugin's user data, after the event number
        Line line;
    } cases[] = {
        {"cpp", "subscribe", "unsubscribe", "",
         [&](int e, int a, int b, int c, const std::string &d) { return head("cpp", e, a, b, c) + " " + d; }},
        {"cs", "subscribe", "unsubscribe", "",
         [&](int e, int a, int b, int c, const std::string &) { return head("cs", e, a, b, c); }},
        {"plugin", "subscribe-plugin", "unsubscribe-plugin", " news",
         [&](int e, int a, int b, int c, const std::string &d) { return head("plugin", e, a, b, c) + " news " + d; }},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.kind);
        EventClient client;
        auto command = [&](const char *what, int event, const char *tag) {
            return std::string(what) + " " + std::to_string(event) + tag;
        };
        EXPECT_EQ(client.Ask(std::string("instance ") + c.kind), "instance new");
        EXPECT_EQ(client.Ask(command(c.subscribe, 7, c.tag)), "status 0");
        EXPECT_EQ(client.Ask(command(c.subscribe, 9, c.tag)), "status 0");

        Emit(8, 1, 1, 1, "not subscribed");
        Emit(7, 1, -2, INT_MAX, kData);
        EXPECT_EQ(client.Next(), c.line(7, 1, -2, INT_MAX, kData));
        Emit(9, INT_MIN, 0, 5, "");
        EXPECT_EQ(client.Next(), c.line(9, INT_MIN, 0, 5, ""));

        EXPECT_EQ(client.Ask(command(c.unsubscribe, 7, "")), "status 0");
        Emit(7, 3, 3, 3, "after unsubscribing");
        Emit(9, 4, 4, 4, "still subscribed");
        EXPECT_EQ(client.Next(), c.line(9, 4, 4, 4, "still subscribed"));
        EXPECT_EQ(client.Ask(command(c.unsubscribe, 7, "")), "status -1");
    }
}

// A plugin subscribes with its user data only; the plain operations leave its subscriptions alone.
TEST_F(EventsTest, PluginKindIgnoresThePlainOperationsAndTakesItsLatestUserData)
{
    EventClient client;
    EXPECT_EQ(client.Ask("instance plugin"), "instance new");
    EXPECT_EQ(client.Ask("subscribe 7"), "status -1");
    EXPECT_EQ(client.Ask("subscribe-plugin 9 first"), "status 0");
    EXPECT_EQ(client.Ask("subscribe-plugin 9 second"), "status 0");
    EXPECT_EQ(client.Ask("unsubscribe 9"), "status 0");
    Emit(7, 0, 0, 0, "plain subscription");
    Emit(9, 1, 2, 3, "x");
    EXPECT_EQ(client.Next(), "plugin 9 1 2 3 second x");
}

// Any client of the bus can send a signal under the daemon's event names; only the daemon's count.
TEST_F(EventsTest, AnEventSentByAnotherClientOfTheBusIsNotDelivered)
{
    EventClient client;
    EXPECT_EQ(client.Ask("instance cpp"), "instance new");
    EXPECT_EQ(client.Ask("subscribe 7"), "status 0");
    std::string spoof = "busctl --address='" + s_bus->Address() + "' emit " + KelvoDaemonBus::kObjectPath + " " +
                        KelvoDaemonBus::kEventInterface + " " + KelvoDaemonBus::kEventSignal +
                        " siiis 7 6 6 6 forged >/dev/null";
    ASSERT_EQ(std::system(spoof.c_str()), 0);
    Emit(7, 1, 2, 3, "from the daemon");
    EXPECT_EQ(client.Next(), "cpp 7 1 2 3 from the daemon");
}

// A second request after GetInstance gets the same instance: a CS request keeps the CPP
// callback, a second GetInstance replaces it.
TEST_F(EventsTest, ASecondRequestGetsTheSameInstanceAndSaysWhoseCallbackHears)
{
    const struct {
        const char *second;
        const char *hears;
    } rows[] = {{"cs", "cpp"}, {"cpp-other", "cpp-other"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.second);
        EventClient client;
        EXPECT_EQ(client.Ask("instance cpp"), "instance new");
        EXPECT_EQ(client.Ask(std::string("instance ") + row.second), "instance same");
        EXPECT_EQ(client.Ask("subscribe 7"), "status 0");
        Emit(7, 1, 2, 3, "x");
        EXPECT_EQ(client.Next(), std::string(row.hears) + " 7 1 2 3 x");
    }
}

}  // namespace
