#include "Milestones.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace {

// The service id kelvo-util gives programmes of a metadata source no service matches.
const char *const kAllOnes = "18446744073709551615";
// A running count is redrawn at each service or source and every this many rows (or reads of
// the time file).
const long long kRowsPerRedraw = 256;
// Erases the terminal's current line.
const char *const kEraseLine = "\r\033[K";

bool StartsWith(const std::string &text, const char *prefix)
{
    return text.compare(0, strlen(prefix), prefix) == 0;
}

bool Contains(const std::string &text, const char *part)
{
    return text.find(part) != std::string::npos;
}

// The text between two markers, or "" when they are not there.
std::string Between(const std::string &text, const std::string &from, const std::string &to)
{
    size_t begin = text.find(from);
    if (begin == std::string::npos)
        return "";
    begin += from.size();
    size_t end = to.empty() ? text.size() : text.find(to, begin);
    return end == std::string::npos ? "" : text.substr(begin, end - begin);
}

std::string Trimmed(std::string text)
{
    while (!text.empty() && (text.back() == ' ' || text.back() == ','))
        text.pop_back();
    return text;
}

// A dlog line of the tag: "P/tag(pid): text". Returns its text, or false.
bool DlogText(const std::string &line, const char *tag, std::string &text)
{
    if (line.size() < 2 || line[1] != '/' || line.compare(2, strlen(tag), tag) != 0 ||
        line.compare(2 + strlen(tag), 1, "(") != 0)
        return false;
    size_t end = line.find("): ");
    if (end == std::string::npos)
        return false;
    text = line.substr(end + 3);
    return true;
}

// A count of the log; 0 where there is none.
long long Number(const std::string &text)
{
    return std::strtoll(text.c_str(), nullptr, 10);
}

std::string Plural(long long n, const char *one, const char *many)
{
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

}  // namespace

KelvoMilestones::KelvoMilestones(int out, bool live) : m_out(out), m_live(live) {}

void KelvoMilestones::Line(const std::string &line)
{
    std::string text = line;
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    std::string said;
    if (DlogText(text, "kelvo-util", said)) {
        // kelvo-util's lines carry "file: function(line) > " before the message.
        size_t mark = said.find(" > ");
        m_Message(mark == std::string::npos ? said : said.substr(mark + 3));
    } else if (DlogText(text, "TVS", said)) {
        // "backup <folder>: <result>": 1 and more is done (the files copied, plus one), -1 failed.
        std::string operation = StartsWith(said, "backup ") ? "backup" : StartsWith(said, "restore ") ? "restore" : "";
        size_t colon = said.rfind(": ");
        if (operation.empty() || colon == std::string::npos) {
            if (Contains(said, "refused") || Contains(said, "failed"))
                m_Print("TVS: " + said);
            return;
        }
        std::string folder = said.substr(operation.size() + 1, colon - operation.size() - 1);
        std::string result = said.substr(colon + 2);
        bool done = !result.empty() && result[0] != '-' && result != "0";
        m_Print("TVS " + operation + (operation == "backup" ? " into " : " from ") + folder + ": " +
                (done ? "done" : "FAILED") + " (result " + result + ")");
    } else if (Contains(text, "cannot stat") && (m_phase == Phase::Copy || m_phase == Phase::Metadata)) {
        // kelvo-util's lines are written in batches; cp's own may come just before the line that
        // ends the metadata export.
        ++m_missing;
    } else if (StartsWith(text, "\u2026 log truncated")) {
        m_Print("log truncated: the rest of the run is not kept (--log-limit)");
    } else if (Contains(text, "runtime error:") || Contains(text, "ERROR: AddressSanitizer") ||
               Contains(text, "ERROR: LeakSanitizer")) {
        m_Print("sanitizer: " + text);
    }
}

void KelvoMilestones::m_Message(const std::string &message)
{
    // Most lines of a dump are a row's own: its statement, its title and description. They are
    // no milestone, and are let go before the comparisons below, which every line would pay.
    if (StartsWith(message, "query: ") || StartsWith(message, "Title ") || message == "Enter" ||
        StartsWith(message, "Description length"))
        return;
    // The programme exports: one row is one statement that ended well ("end").
    if (message == "end") {
        ++m_rows;
        if (m_rows % kRowsPerRedraw == 0)
            m_Count();
    } else if (StartsWith(message, "Insert error")) {
        ++m_failed;
    } else if (StartsWith(message, "Start to Backup ProgramData of RF")) {
        m_Begin(Phase::Broadcast);
    } else if (StartsWith(message, "RF channels size : ")) {
        m_total = Number(message.substr(19));
        m_Count();
    } else if (StartsWith(message, "serviceId:") && Contains(message, "RF Programs size")) {
        ++m_done;
        m_Count();
    } else if (StartsWith(message, "End to Backup ProgramData of RF")) {
        m_End("");
    } else if (StartsWith(message, "Start to Backup ProgramData of Meta")) {
        m_Begin(Phase::Metadata);
    } else if (StartsWith(message, "source Id size:")) {
        m_total = Number(message.substr(15));
        m_Count();
    } else if (StartsWith(message, "Meta Programs by source Id size : ")) {
        m_withData = Number(message.substr(34));
        m_Count();
    } else if (StartsWith(message, "source Id : ")) {
        ++m_done;
        if (Trimmed(Between(message, "tvsServiceId:", "")) == kAllOnes)
            ++m_unmatched;
        m_Count();
    } else if (StartsWith(message, "End to Backup ProgramData of Meta")) {
        const long long early = m_missing;
        m_End("");
        // The copy of the middleware's folders follows; cp names each source this TV lacks.
        m_Begin(Phase::Copy);
        m_missing = early;
    } else if (StartsWith(message, "dump result=")) {
        m_End(Trimmed(message.substr(12)));
    } else if (StartsWith(message, "restore time is ")) {
        if (m_phase != Phase::TimeFile)
            m_Begin(Phase::TimeFile);
        ++m_done;
        m_last = message.substr(16);
        if (m_done == 1 || m_done % kRowsPerRedraw == 0)
            m_Count();
    } else if (message == "kelvo-util run starts by activation .....") {
        m_Print("kelvo-util started");
    } else if (StartsWith(message, "mount path is ")) {
        m_Print("USB storage: " + Between(message, "mount path is ", ", device name is ") + " (device " +
                Between(message, ", device name is ", "") + ")");
    } else if (message == "kelvo-util 111 .....") {
        m_Print("branch: no USB storage (reported as a failed dump)");
    } else if (message == "Start Dump Kelvo DB") {
        m_Print("branch: dump");
    } else if (message == "Start Restore Kelvo DB") {
        m_Print("branch: restore");
    } else if (StartsWith(message, "restoreCommand ")) {
        // "cp ... <stick>/RestoreMWDB/*.db <daemon folder>;sync": the files of one kind.
        m_restoreCopy = Between(message, "/RestoreMWDB/", " ");
    } else if (StartsWith(message, "restore return ")) {
        m_Print("copy of RestoreMWDB/" + m_restoreCopy + " to the content daemon: status " + message.substr(15));
    } else if (StartsWith(message, "EResultType : ")) {
        m_Print("result posted: " + Between(message, "], [", "]"));
    } else if (message == "notification_create failed") {
        m_Print("result: no notification could be made");
    } else if (StartsWith(message, "notification_set_display_applist failed[")) {
        // This text is logged when the post itself failed (the two failure texts name each
        // other's call).
        m_Print("result: posting the notification failed (" + Between(message, "[", "]") + ")");
    } else if (Contains(message, "refused") || Contains(message, " removed: ") || StartsWith(message, "fail to ") ||
               Contains(message, " rows kept") || Contains(message, "== NULL") || Contains(message, "not a regular")) {
        m_Print(message);
    }
}

void KelvoMilestones::m_Begin(Phase phase)
{
    if (m_phase != Phase::None)
        m_End("");
    m_phase = phase;
    m_total = m_withData = m_done = m_unmatched = m_rows = m_failed = m_missing = 0;
    m_last.clear();
    m_Count();
}

void KelvoMilestones::m_End(const std::string &status)
{
    std::string text = m_PhaseText();
    if (m_phase == Phase::Copy && !status.empty())
        text = "copy of the middleware's data to the stick: status " + status +
               (m_missing > 0 ? " (" + Plural(m_missing, "source", "sources") + " this TV does not have)" : "");
    m_phase = Phase::None;
    if (!text.empty())
        m_Print(text);
}

void KelvoMilestones::Finish()
{
    std::string text = m_PhaseText();
    if (!text.empty() && m_phase != Phase::TimeFile)
        text += " (did not finish)";
    m_phase = Phase::None;
    if (!text.empty())
        m_Print(text);
}

std::string KelvoMilestones::m_PhaseText() const
{
    std::string failed = m_failed > 0 ? ", " + std::to_string(m_failed) + " failed" : "";
    switch (m_phase) {
    case Phase::Broadcast:
        return "broadcast export: " + std::to_string(m_done) + "/" + Plural(m_total, "service", "services") + ", " +
               Plural(m_rows, "row", "rows") + failed;
    case Phase::Metadata:
        return "metadata export: " + std::to_string(m_done) + "/" + Plural(m_withData, "source", "sources") +
               " with programmes (of " + std::to_string(m_total) + ", " + std::to_string(m_unmatched) +
               " unmatched), " + Plural(m_rows, "row", "rows") + failed;
    case Phase::TimeFile:
        return "clock from time.txt: " + m_last +
               (m_done > 1 ? " (read " + std::to_string(m_done) + " times: the file does not hold one number)" : "");
    case Phase::Copy:
        return m_missing > 0 ? "copy of the middleware's data to the stick: " + Plural(m_missing, "source", "sources") +
                                   " this TV does not have"
                             : "";
    case Phase::None:
        break;
    }
    return "";
}

void KelvoMilestones::m_Count()
{
    if (m_live && m_phase != Phase::Copy)
        m_ShowLive();
}

void KelvoMilestones::m_Print(const std::string &text)
{
    // The clock is read once; whatever comes next closes that milestone.
    if (m_phase == Phase::TimeFile)
        m_End("");
    m_Write((m_liveShown ? std::string(kEraseLine) : std::string()) + text + "\n");
    m_liveShown = false;
    if (m_live && m_phase != Phase::None && m_phase != Phase::Copy)
        m_ShowLive();
}

void KelvoMilestones::m_ShowLive()
{
    m_Write(kEraseLine + m_PhaseText());
    m_liveShown = true;
}

void KelvoMilestones::m_Write(const std::string &text) const
{
    const char *data = text.data();
    size_t size = text.size();
    while (m_out >= 0 && size > 0) {
        ssize_t n = write(m_out, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        data += n;
        size -= static_cast<size_t>(n);
    }
}
