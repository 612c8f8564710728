// The log of a supervised process: everything it writes goes to a file and, line by line, to a
// terminal (debug lines "D/..." only when asked), up to a bound. Past the bound one line says so and
// the rest is dropped, while the process goes on: a process spinning in a loop of log lines cannot
// fill the disk before its run-time limit ends it.
#ifndef KELVO_TOOLS_BOUNDED_LOG_H
#define KELVO_TOOLS_BOUNDED_LOG_H

#include <cstddef>
#include <string>

class KelvoMilestones;

class KelvoBoundedLog {
public:
    static constexpr const char *kTruncatedLine = "\u2026 log truncated \u2026\n";

    // fileFd and terminalFd may be -1 (no file, no terminal). limit: bytes of output kept.
    KelvoBoundedLog(int fileFd, int terminalFd, unsigned long long limit, bool showDebug);
    // The lines that would reach the terminal go to these milestones instead (null: the terminal).
    void ShowMilestones(KelvoMilestones *milestones) { m_milestones = milestones; }
    void Take(const char *data, size_t size);
    // Shows a last line without its newline, once the process has closed its output.
    void Finish();
    bool Truncated() const { return m_truncated; }
    unsigned long long Kept() const { return m_kept; }

private:
    void m_Keep(const char *data, size_t size);
    void m_ShowLine(const std::string &line);
    bool m_Shows(const char *line) const;
    static void m_WriteAll(int fd, const char *data, size_t size);

    int m_fileFd;
    int m_terminalFd;
    unsigned long long m_limit;
    bool m_showDebug;
    unsigned long long m_kept = 0;
    bool m_truncated = false;
    bool m_endsWithNewline = true;
    std::string m_partial;
    KelvoMilestones *m_milestones = nullptr;
};

#endif
