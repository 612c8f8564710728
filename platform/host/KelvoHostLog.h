// The host's log stream: dlog's lines and the middleware's diagnostics share it, so that they stay
// in the order they were made. Lines are gathered and written in batches of whole lines; see
// dlog.cpp for when a batch goes out.
#ifndef KELVO_PLATFORM_HOST_KELVOHOSTLOG_H
#define KELVO_PLATFORM_HOST_KELVOHOSTLOG_H

#include <cstdarg>
#include <cstddef>
#include <string>

class KelvoHostLog {
public:
    // One or more whole lines, each ending in '\n'. An urgent text (an error, a fatal message) is
    // written at once, with whatever waits before it.
    static void Write(const char *text, size_t length, bool urgent);
    // Writes what waits; a reader of standard error that is about to look calls this first.
    static void Flush();
    // The text of a printf format and its arguments, of any length; false on a format error.
    static bool Format(std::string &out, const char *format, va_list args) __attribute__((format(printf, 2, 0)));
};

#endif
