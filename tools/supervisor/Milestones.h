// What a person watching a run wants of kelvo-util's log: the milestones as they happen (the
// storage found, the branch taken, the TVS backup or restore, the two programme exports with
// their running row counts, the copies, the result it posts) instead of tens of thousands of
// lines. They are read from kelvo-util's own log lines, which stay as they are. On a terminal
// a running count is rewritten in place; elsewhere (a pipe, CI) it is one plain line once its
// phase ends, so a captured output is the same on every run.
#ifndef KELVO_TOOLS_MILESTONES_H
#define KELVO_TOOLS_MILESTONES_H

#include <string>

class KelvoMilestones {
public:
    // out: where the milestones go (-1: nowhere). live: out is a terminal.
    KelvoMilestones(int out, bool live);
    // One line of the log, with or without its newline.
    void Line(const std::string &line);
    // The log has ended: a phase still counting is shown as it stands.
    void Finish();

private:
    enum class Phase { None, Broadcast, Metadata, TimeFile, Copy };

    void m_Message(const std::string &message);
    void m_Begin(Phase phase);
    void m_End(const std::string &suffix);
    void m_Count();
    void m_Print(const std::string &text);
    void m_ShowLive();
    std::string m_PhaseText() const;
    void m_Write(const std::string &text) const;

    int m_out;
    bool m_live;
    bool m_liveShown = false;
    Phase m_phase = Phase::None;
    // What the current phase has counted.
    long long m_total = 0;      // services, or metadata sources
    long long m_withData = 0;   // metadata sources with programmes
    long long m_done = 0;       // services or sources handled
    long long m_unmatched = 0;  // metadata sources under the all-ones service id
    long long m_rows = 0;
    long long m_failed = 0;
    long long m_missing = 0;  // copy sources this TV lacks
    std::string m_last;       // time file: the last value read
    std::string m_restoreCopy;
};

#endif
