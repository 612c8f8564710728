// Host dlog: one line per call on standard error, "<P>/<tag>(<pid>): <message>", where <P> is
// the priority letter (or number). A message's own trailing newlines are dropped and inner ones escaped, so
// that one call is always one line for whoever reads the stream. The lines go out through the
// host's log stream (KelvoHostLog.cpp), in batches; an error or a fatal line goes out at once.
#include "dlog.h"

#include "KelvoHostLog.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <pthread.h>
#include <string>
#include <unistd.h>

namespace {
// The priority as one letter where dlog names it (verbose to silent), else as its number: every
// priority a caller passes, 0 and 1 and numbers out of the range included, stays readable apart.
// Written into the caller's buffer: this runs for every line.
const char *PriorityName(int prio, char (&text)[16])
{
    static const char kLetters[] = "VDIWEFS";
    if (prio >= DLOG_VERBOSE && prio <= DLOG_SILENT) {
        text[0] = kLetters[prio - DLOG_VERBOSE];
        text[1] = '\0';
    } else {
        snprintf(text, sizeof text, "%d", prio);
    }
    return text;
}

// getpid() is a system call on every call; the value changes only in a forked child.
// Threads log at once: the value is atomic.
std::atomic<pid_t> g_pid{0};
void ForgetPid()
{
    g_pid.store(0, std::memory_order_relaxed);
}
pid_t CachedPid()
{
    static const int registered = pthread_atfork(nullptr, nullptr, ForgetPid);
    (void)registered;
    pid_t pid = g_pid.load(std::memory_order_relaxed);
    if (pid == 0) {
        pid = getpid();
        g_pid.store(pid, std::memory_order_relaxed);
    }
    return pid;
}

// Formats for dlog_print and __dlog_print, whose callers' formats the compiler has checked.
__attribute__((format(printf, 3, 0))) int Print(int prio, const char *tag, const char *fmt, va_list args)
{
    if (fmt == nullptr)
        return -1;

    // Most messages fit the stack buffer, and are then formatted once.
    char buffer[1024];
    va_list copy;
    va_copy(copy, args);
    // va_copy initialised copy; the analyser loses track of it through Print's va_list parameter.
    int n = vsnprintf(buffer, sizeof(buffer), fmt, copy);  // NOLINT(clang-analyzer-valist.Uninitialized)
    va_end(copy);
    if (n < 0)
        return -1;
    std::string longMessage;
    const char *message = buffer;
    if (static_cast<size_t>(n) >= sizeof(buffer)) {
        longMessage.resize(static_cast<size_t>(n));
        vsnprintf(&longMessage[0], longMessage.size() + 1, fmt, args);
        message = longMessage.c_str();
    }
    size_t length = static_cast<size_t>(n);
    while (length > 0 && message[length - 1] == '\n')
        --length;

    char name[16];
    char pid[32];
    const int pidLength = snprintf(pid, sizeof pid, "(%ld): ", static_cast<long>(CachedPid()));
    std::string line;
    line.reserve(length + 64 + (tag != nullptr ? strlen(tag) : 0));
    line += PriorityName(prio, name);
    line += '/';
    line += tag != nullptr ? tag : "";
    line.append(pid, static_cast<size_t>(pidLength));
    for (const char *p = message, *end = message + length; p < end;) {
        const char *newline = static_cast<const char *>(memchr(p, '\n', static_cast<size_t>(end - p)));
        if (newline == nullptr) {
            line.append(p, end);
            break;
        }
        line.append(p, newline).append("\\n");
        p = newline + 1;
    }
    line += '\n';

    KelvoHostLog::Write(line.data(), line.size(), prio >= DLOG_ERROR && prio <= DLOG_FATAL);
    const size_t done = line.size();
    return static_cast<int>(done);
}
}  // namespace

extern "C" int dlog_print(log_priority prio, const char *tag, const char *fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    int r = Print(prio, tag, fmt, args);
    va_end(args);
    return r;
}

extern "C" int __dlog_print(log_id_t log_id, int prio, const char *tag, const char *fmt, ...)
{
    (void)log_id;  // every buffer goes to the same stream on the host
    va_list args;
    va_start(args, fmt);
    int r = Print(prio, tag, fmt, args);
    va_end(args);
    return r;
}
