// Records every dlog line of the process instead of printing it.
#ifndef KELVO_TESTS_FAKE_DLOG_H
#define KELVO_TESTS_FAKE_DLOG_H

#include <string>
#include <vector>

struct DlogLine {
    int logId;  // LOG_ID_MAIN for dlog_print
    int prio;
    std::string tag;
    std::string text;  // the formatted message
};

namespace FakeDlog {
void Clear();
std::vector<DlogLine> Lines();
// Formatted messages in order, optionally of one tag only.
std::vector<std::string> Texts(const std::string &tag = "");
// The messages with their "<file>: <function>(<line>) > " prefix cut off.
std::vector<std::string> Messages(const std::string &tag = "");
bool Contains(const std::string &needle);
}  // namespace FakeDlog

#endif
