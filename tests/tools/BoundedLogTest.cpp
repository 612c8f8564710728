// The supervisor's bounded log: what reaches the file and the terminal, and where it stops.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "BoundedLog.h"

namespace {

class Capture {
public:
    Capture() : m_fd(memfd_create("kelvo-bounded-log", 0)) {}
    ~Capture() { close(m_fd); }
    int Fd() const { return m_fd; }
    std::string Text() const
    {
        std::string text;
        char buffer[4096];
        for (off_t at = 0;;) {
            ssize_t n = pread(m_fd, buffer, sizeof buffer, at);
            if (n <= 0)
                return text;
            text.append(buffer, static_cast<size_t>(n));
            at += n;
        }
    }

private:
    int m_fd;
};

struct Case {
    const char *name;
    std::vector<std::string> chunks;  // as the process wrote them
    unsigned long long limit;
    bool showDebug;
    std::string file;
    std::string terminal;
};

const std::string kCut = KelvoBoundedLog::kTruncatedLine;

TEST(BoundedLog, KeepsUpToTheLimitAndSaysSoOnce)
{
    const std::vector<Case> cases = {
        {"under the limit", {"W/a: one\n", "D/a: two\n"}, 100, false, "W/a: one\nD/a: two\n", "W/a: one\n"},
        {"debug shown when asked",
         {"W/a: one\n", "D/a: two\n"},
         100,
         true,
         "W/a: one\nD/a: two\n",
         "W/a: one\nD/a: two\n"},
        {"exactly at the limit", {"0123456789\n"}, 11, false, "0123456789\n", "0123456789\n"},
        {"a debug line split between writes", {"D", "/a: x\nW/a: y", "\n"}, 100, false, "D/a: x\nW/a: y\n", "W/a: y\n"},
        {"cut at a line's end", {"W/1\n", "W/2\n", "W/3\n"}, 8, false, "W/1\nW/2\n" + kCut, "W/1\nW/2\n" + kCut},
        {"cut inside a line", {"W/1\nW/22222\n"}, 7, false, "W/1\nW/2\n" + kCut, "W/1\nW/2\n" + kCut},
        {"nothing after the cut", {"W/1\n", "W/2\n", "W/3\n", "W/4\n"}, 5, false, "W/1\nW\n" + kCut, "W/1\nW\n" + kCut},
        {"zero kept", {"W/1\n", "W/2\n"}, 0, false, kCut, kCut},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Capture file, terminal;
        KelvoBoundedLog log(file.Fd(), terminal.Fd(), c.limit, c.showDebug);
        for (const auto &chunk : c.chunks)
            log.Take(chunk.data(), chunk.size());
        log.Finish();
        EXPECT_EQ(file.Text(), c.file);
        EXPECT_EQ(terminal.Text(), c.terminal);
    }
}

TEST(BoundedLog, ALogThatNeverEndsStaysWithinItsBound)
{
    Capture file;
    const unsigned long long limit = 1 << 20;
    KelvoBoundedLog log(file.Fd(), -1, limit, false);
    const std::string line(999, 'x');
    for (int i = 0; i < 5000; ++i)
        log.Take((line + "\n").data(), line.size() + 1);
    std::string text = file.Text();
    EXPECT_TRUE(log.Truncated());
    EXPECT_EQ(text.size(), limit + 1 + kCut.size());
    EXPECT_EQ(text.substr(text.size() - kCut.size()), kCut);
}

TEST(BoundedLog, ALastLineWithoutNewlineIsShown)
{
    Capture terminal;
    KelvoBoundedLog log(-1, terminal.Fd(), 100, false);
    log.Take("W/a: end", 8);
    log.Finish();
    EXPECT_EQ(terminal.Text(), "W/a: end\n");
}

}  // namespace
