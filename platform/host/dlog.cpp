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

// "(<pid>): ", kept with the pid it was made for.
struct PidText {
    pid_t pid = 0;
    char text[32] = {};
    size_t length = 0;
};
thread_local PidText t_pidText;

const PidText &CurrentPidText()
{
    const pid_t pid = CachedPid();
    if (t_pidText.pid != pid) {
        const int n = snprintf(t_pidText.text, sizeof t_pidText.text, "(%ld): ", static_cast<long>(pid));
        t_pidText.length = n > 0 ? static_cast<size_t>(n) : 0;
        t_pidText.pid = pid;
    }
    return t_pidText;
}

// The line for a message that holds newlines or does not fit the stack: built on the heap.
void AppendMessage(std::string &line, const char *message, size_t length)
{
    while (length > 0 && message[length - 1] == '\n')
        --length;
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
}

// Formats for dlog_print and __dlog_print, whose callers' formats the compiler has checked.
__attribute__((format(printf, 3, 0))) int Print(int prio, const char *tag, const char *fmt, va_list args)
{
    if (fmt == nullptr)
        return -1;
    const bool urgent = prio >= DLOG_ERROR && prio <= DLOG_FATAL;

    // The usual line, "<P>/<tag>(<pid>): <message>\n", is formatted once, in place after its
    // prefix, on the stack: this runs for every line.
    char line[1280];
    char name[16];
    const char *priority = PriorityName(prio, name);
    const char *tagText = tag != nullptr ? tag : "";
    const size_t priorityLength = strlen(priority), tagLength = strlen(tagText);
    const PidText &pid = CurrentPidText();
    const size_t prefix = priorityLength + 1 + tagLength + pid.length;
    if (prefix < sizeof(line) / 4) {
        memcpy(line, priority, priorityLength);
        line[priorityLength] = '/';
        memcpy(line + priorityLength + 1, tagText, tagLength);
        memcpy(line + priorityLength + 1 + tagLength, pid.text, pid.length);
        va_list copy;
        va_copy(copy, args);
        // va_copy initialised copy; the analyser loses track of it through Print's va_list parameter.
        const int n =
            vsnprintf(line + prefix, sizeof(line) - prefix, fmt, copy);  // NOLINT(clang-analyzer-valist.Uninitialized)
        va_end(copy);
        if (n < 0)
            return -1;
        size_t length = static_cast<size_t>(n);
        if (prefix + length + 1 < sizeof(line)) {
            while (length > 0 && line[prefix + length - 1] == '\n')
                --length;
            if (memchr(line + prefix, '\n', length) == nullptr) {
                line[prefix + length] = '\n';
                KelvoHostLog::Write(line, prefix + length + 1, urgent);
                return static_cast<int>(prefix + length + 1);
            }
        }
    }

    std::string message;
    if (!KelvoHostLog::Format(message, fmt, args))
        return -1;
    std::string text;
    text.reserve(prefix + message.size() + 16);
    text.append(priority).append(1, '/').append(tagText).append(pid.text, pid.length);
    AppendMessage(text, message.data(), message.size());
    KelvoHostLog::Write(text.data(), text.size(), urgent);
    return static_cast<int>(text.size());
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
