#include "FakeDlog.h"

#include "dlog.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace {
std::mutex g_mutex;
std::vector<DlogLine> g_lines;

__attribute__((format(printf, 4, 0))) void Record(int logId, int prio, const char *tag, const char *fmt, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    int n = vsnprintf(nullptr, 0, fmt, copy);
    va_end(copy);
    std::string text(n > 0 ? static_cast<size_t>(n) : 0, '\0');
    if (n > 0)
        vsnprintf(&text[0], text.size() + 1, fmt, args);
    std::lock_guard<std::mutex> lock(g_mutex);
    g_lines.push_back({logId, prio, tag ? tag : "", text});
}
}  // namespace

extern "C" int dlog_print(log_priority prio, const char *tag, const char *fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    Record(LOG_ID_MAIN, prio, tag, fmt, args);
    va_end(args);
    return 0;
}

extern "C" int __dlog_print(log_id_t log_id, int prio, const char *tag, const char *fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    Record(log_id, prio, tag, fmt, args);
    va_end(args);
    return 0;
}

namespace FakeDlog {
void Clear()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_lines.clear();
}

std::vector<DlogLine> Lines()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_lines;
}

std::vector<std::string> Texts(const std::string &tag)
{
    std::vector<std::string> out;
    for (const DlogLine &line : Lines())
        if (tag.empty() || line.tag == tag)
            out.push_back(line.text);
    return out;
}

std::vector<std::string> Messages(const std::string &tag)
{
    std::vector<std::string> out;
    for (const std::string &text : Texts(tag)) {
        size_t cut = text.find(") > ");
        out.push_back(cut == std::string::npos ? text : text.substr(cut + 4));
    }
    return out;
}

bool Contains(const std::string &needle)
{
    for (const DlogLine &line : Lines())
        if (line.text.find(needle) != std::string::npos)
            return true;
    return false;
}
}  // namespace FakeDlog
