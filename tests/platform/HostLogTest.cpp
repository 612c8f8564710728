// The host's log stream gathers lines in batches: whatever way a process ends, every line it
// logged reaches standard error whole, once and in order.
#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Ended {
    std::vector<std::string> lines;
    int status = 0;
};

// Runs the writer and reads its standard error to the end; with `untilLines`, kills it once that
// many lines have arrived (a writer that never ends by itself). A writer that neither ends nor
// delivers its lines fails the read after a generous deadline instead of hanging the suite.
Ended RunWriter(const std::string &mode, int count, size_t untilLines = 0)
{
    Ended ended;
    int out[2];
    if (pipe(out) != 0)
        return ended;
    pid_t pid = fork();
    if (pid == 0) {
        dup2(out[1], 2);
        close(out[0]);
        close(out[1]);
        const std::string number = std::to_string(count);
        execl(KELVO_LOG_WRITER, KELVO_LOG_WRITER, mode.c_str(), number.c_str(), nullptr);
        _exit(127);
    }
    close(out[1]);
    std::string text;
    char buffer[65536];
    for (;;) {
        struct pollfd fd = {out[0], POLLIN, 0};
        if (poll(&fd, 1, 30000) <= 0)
            break;
        ssize_t n = read(out[0], buffer, sizeof buffer);
        if (n <= 0)
            break;
        text.append(buffer, static_cast<size_t>(n));
        if (untilLines > 0 && static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) >= untilLines)
            break;
    }
    kill(pid, SIGKILL);
    close(out[0]);
    waitpid(pid, &ended.status, 0);
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        ended.lines.push_back(line);
    return ended;
}

// Every line "W/<tag>(<pid>): line <i> of <count>" of one tag, in order, each once.
void ExpectNumbered(const std::vector<std::string> &lines, const std::string &tag, int count)
{
    int next = 0;
    for (const std::string &line : lines) {
        if (line.rfind("W/" + tag + "(", 0) != 0)
            continue;
        const std::string expected = ": line " + std::to_string(next) + " of " + std::to_string(count);
        ASSERT_GE(line.size(), expected.size()) << line;
        ASSERT_EQ(line.substr(line.size() - expected.size()), expected) << "tag " << tag;
        ++next;
    }
    EXPECT_EQ(next, count) << "lines of tag " << tag;
}

TEST(HostLogStream, EveryLineArrivesWholeOnceAndInOrderHoweverTheProcessEnds)
{
    const int kLines = 5000;
    const struct {
        const char *mode;
        int signal;  // the signal that ended the writer, 0 when it exited
    } endings[] = {
        {"return", 0},
        {"exit", 0},
        {"abort", SIGABRT},
        {"segv", SIGSEGV},
        {"term", SIGTERM},
        // Neither ends nor logs again: its lines come out while it waits.
        {"wait", SIGKILL},
    };
    for (const auto &ending : endings) {
        SCOPED_TRACE(ending.mode);
        const bool waits = std::string(ending.mode) == "wait";
        Ended ended = RunWriter(ending.mode, kLines, waits ? kLines + 1 : 0);
        ExpectNumbered(ended.lines, "w", kLines);
        if (waits) {
            ASSERT_EQ(ended.lines.size(), kLines + 1u);
            EXPECT_EQ(ended.lines.back().rfind("W/last(", 0), 0u) << ended.lines.back();
        }
        if (ending.signal == 0) {
            EXPECT_TRUE(WIFEXITED(ended.status));
        } else if (ending.signal == SIGSEGV && WIFEXITED(ended.status)) {
            // A sanitizer's fault handler, which the stream hands the fault over to, reports it
            // and exits.
            EXPECT_NE(WEXITSTATUS(ended.status), 0);
        } else {
            ASSERT_TRUE(WIFSIGNALED(ended.status));
            EXPECT_EQ(WTERMSIG(ended.status), ending.signal) << "the signal's own disposition ends the process";
        }
    }
}

TEST(HostLogStream, LinesOfConcurrentThreadsStayWhole)
{
    const int kLines = 20000;
    Ended ended = RunWriter("threads", kLines);
    EXPECT_EQ(ended.lines.size(), 4u * kLines);
    for (const char *tag : {"t0", "t1", "t2", "t3"})
        ExpectNumbered(ended.lines, tag, kLines);
}

TEST(HostLogStream, ALineLongerThanABatchKeepsItsPlace)
{
    Ended ended = RunWriter("long", 100);
    ASSERT_EQ(ended.lines.size(), 201u);
    const std::string &longLine = ended.lines[100];
    EXPECT_EQ(longLine.substr(longLine.size() - 3 * 4096), std::string(3 * 4096, 'x'));
    std::vector<std::string> before(ended.lines.begin(), ended.lines.begin() + 100);
    std::vector<std::string> after(ended.lines.begin() + 101, ended.lines.end());
    ExpectNumbered(before, "w", 100);
    ExpectNumbered(after, "w", 100);
}

TEST(HostLogStream, AForkedChildsLinesComeBetweenItsParentsBeforeAndAfter)
{
    Ended ended = RunWriter("fork", 0);
    ASSERT_EQ(ended.lines.size(), 3u);
    const char *expected[] = {"before the child", "in the child", "after the child"};
    for (size_t i = 0; i < 3; ++i) {
        const std::string &line = ended.lines[i];
        EXPECT_EQ(line.substr(line.find("): ") + 3), expected[i]);
    }
}

}  // namespace
