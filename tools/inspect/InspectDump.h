// kelvo-inspect: what a dump's kelvoutilInfo.db holds, read as the dump wrote it, and what a
// service engineer who receives the stick looks for in it.
#ifndef KELVO_TOOLS_INSPECTDUMP_H
#define KELVO_TOOLS_INSPECTDUMP_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

// A service id as the database gave it back. The dump writes ids as integer literals; SQLite
// holds integers up to 2^63 - 1 only and keeps larger ones as REAL, with 53 bits of mantissa:
// such an id comes back as the nearest representable number, its low digits lost. The all-ones
// id of metadata without a TV service (18446744073709551615) comes back as 2^64 that way.
struct KelvoInspectServiceId {
    enum class EKind { kExact, kInexact, kNotAnId };
    EKind kind = EKind::kNotAnId;
    unsigned long long value = 0;   // kExact: the id; kInexact: the nearest id to the stored number
    unsigned long long spread = 0;  // kInexact: the id lay within this distance of value
    bool allOnes = false;           // stored as the all-ones id (exactly, or as its REAL form)
    std::string stored;             // the stored value as text

    static KelvoInspectServiceId FromInteger(long long stored);
    static KelvoInspectServiceId FromReal(double stored);
    static KelvoInspectServiceId FromText(const std::string &stored);
    // How the id is shown: the decimal id, "~" and the nearest id, or the stored text quoted.
    std::string Shown() const;
    bool operator<(const KelvoInspectServiceId &other) const;
};

// One row of programRF or programMETA. A row is timed when its start and duration are whole
// numbers in the range of a calendar (start from 1970 to 9999, duration not negative).
struct KelvoInspectProgramme {
    KelvoInspectServiceId service;
    std::string source;  // programMETA: metaSrcId
    bool timed = false;
    long long start = 0;
    long long duration = 0;
    std::string language;
    std::string title;
    std::string description;

    long long End() const { return start + duration; }
};

struct KelvoInspectDump {
    std::string databasePath;
    long long databaseBytes = 0;
    // time.txt beside the database (a stick or a DumpMWDB folder): the dump's time.
    std::string timeFile;  // empty when there is none to look at
    bool timeKnown = false;
    long long time = 0;
    std::string timeProblem;  // why time.txt gives no time, when it doesn't
    std::vector<KelvoInspectProgramme> rf;
    std::vector<KelvoInspectProgramme> meta;
};

// A stretch between two programmes of one schedule: a gap (nothing on) or an overlap.
struct KelvoInspectStretch {
    long long from = 0;
    long long to = 0;
};

// The schedule of one service in one table; in programMETA one per source of the service, so
// that the sources without a TV service, which share the all-ones id, are told apart.
struct KelvoInspectSchedule {
    KelvoInspectServiceId service;
    std::string source;
    size_t rows = 0;
    long long first = 0;
    long long end = 0;
    std::vector<KelvoInspectStretch> gaps;
    std::vector<KelvoInspectStretch> overlaps;
};

struct KelvoInspectTable {
    std::string name;
    size_t rows = 0;
    size_t untimed = 0;   // rows without a usable start or duration
    size_t services = 0;  // distinct service ids (programMETA: without the all-ones id)
    bool timed = false;   // first and end are set
    long long first = 0;  // the earliest start
    long long end = 0;    // the latest end
    std::map<std::string, size_t> languages;
    std::vector<KelvoInspectSchedule> schedules;
};

struct KelvoInspectSourceCount {
    std::string source;
    size_t programmes = 0;
};

struct KelvoInspectInexactId {
    std::string table;
    KelvoInspectServiceId service;
    size_t rows = 0;
};

struct KelvoInspectCutTitle {
    KelvoInspectServiceId service;
    long long start = 0;
    std::string title;
};

struct KelvoInspectSummary {
    KelvoInspectTable rf;
    KelvoInspectTable meta;
    std::vector<KelvoInspectSourceCount> unmatched;  // by source id
    size_t unmatchedProgrammes = 0;
    std::vector<KelvoInspectInexactId> inexact;
    size_t inexactRows = 0;
    std::vector<KelvoInspectInexactId> notAnId;  // rows whose service id is not a number
    std::vector<KelvoInspectCutTitle> cutTitles;
};

class KelvoInspectReader {
public:
    // The database in PATH (a stick, its DumpMWDB folder or the file itself) and time.txt
    // beside it. On failure error is one line saying what is wrong.
    static bool Locate(const std::string &path, KelvoInspectDump &dump, std::string &error);
    // Opens the database read-only (no journal, no lock, nothing written beside it), checks its
    // integrity and both tables, and reads every row.
    static bool Read(KelvoInspectDump &dump, std::string &error);
    // time.txt: one decimal number of seconds.
    static void ReadTimeFile(KelvoInspectDump &dump);
};

class KelvoInspectAnalysis {
public:
    // The broadcast export cuts a title after this many UTF-16 units.
    static constexpr size_t kTitleUnits = 256;

    static KelvoInspectSummary Summarize(const KelvoInspectDump &dump);
    // A table's schedules: rows of one service (and source) by start, each gap and overlap.
    static KelvoInspectTable SummarizeTable(const std::string &name, const std::vector<KelvoInspectProgramme> &rows,
                                            bool bySource);
    static size_t Utf16Units(const std::string &utf8);
};

class KelvoInspectText {
public:
    // The text as valid UTF-8 that any reader takes: invalid bytes, control characters (C0 and
    // C1, line breaks and tabs only when keepBreaks is false), U+FFFD and the non-characters
    // U+FFFE and U+FFFF become '?'.
    static std::string Clean(const std::string &text, bool keepBreaks);
    // "2026-11-23 20:31:05 UTC"
    static std::string Time(long long seconds);
};

#endif
