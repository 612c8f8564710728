// Host dlog: one line per call on standard error, "<P>/<tag>(<pid>): <message>", where <P> is
// the priority letter. A message's own trailing newlines are dropped and inner ones escaped, so
// that one call is always one line for whoever reads the stream.
#include "dlog.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {
char PriorityLetter(int prio)
{
    switch (prio) {
    case DLOG_VERBOSE: return 'V';
    case DLOG_DEBUG: return 'D';
    case DLOG_INFO: return 'I';
    case DLOG_WARN: return 'W';
    case DLOG_ERROR: return 'E';
    case DLOG_FATAL: return 'F';
    default: return '?';
    }
}

int Print(int prio, const char *tag, const char *fmt, va_list args)
{
    if (prio == DLOG_SILENT)
        return 0;
    if (fmt == nullptr)
        return -1;

    va_list copy;
    va_copy(copy, args);
    int n = vsnprintf(nullptr, 0, fmt, copy);
    va_end(copy);
    if (n < 0)
        return -1;
    std::string message(static_cast<size_t>(n), '\0');
    vsnprintf(&message[0], message.size() + 1, fmt, args);
    while (!message.empty() && message.back() == '\n')
        message.pop_back();

    std::string line;
    line.reserve(message.size() + 48);
    line += PriorityLetter(prio);
    line += '/';
    line += tag != nullptr ? tag : "";
    line += '(';
    line += std::to_string(static_cast<long>(getpid()));
    line += "): ";
    for (char c : message) {
        if (c == '\n')
            line += "\\n";
        else
            line += c;
    }
    line += '\n';

    // One write per line keeps lines of concurrent writers whole.
    size_t done = 0;
    while (done < line.size()) {
        ssize_t w = write(STDERR_FILENO, line.data() + done, line.size() - done);
        if (w <= 0)
            break;
        done += static_cast<size_t>(w);
    }
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
