#include "InspectDump.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <set>
#include <tuple>
#include <utility>

#include <sqlite3.h>
#include <sys/stat.h>

namespace {

constexpr long long kLastSecond = 253402300799LL;  // 9999-12-31 23:59:59 UTC
constexpr double kTwoTo53 = 9007199254740992.0;
constexpr double kTwoTo64 = 18446744073709551616.0;
constexpr size_t kAtMostBytes = 16u << 20;  // a longer text or file is not a dump's

// One code point of UTF-8 at text[i]; false (and i advanced by one byte) for an invalid one:
// a stray or missing continuation byte, an overlong form, a surrogate, or beyond U+10FFFF.
bool DecodeUtf8(const std::string &text, size_t &i, unsigned &cp)
{
    const auto byte = [&](size_t at) { return static_cast<unsigned char>(text[at]); };
    unsigned c = byte(i);
    size_t length = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || i + length > text.size()) {
        ++i;
        return false;
    }
    cp = length == 1 ? c : length == 2 ? (c & 0x1F) : length == 3 ? (c & 0x0F) : (c & 0x07);
    for (size_t k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) {
            ++i;
            return false;
        }
        cp = (cp << 6) | (byte(i + k) & 0x3F);
    }
    static const unsigned kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < kLeast[length] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++i;
        return false;
    }
    i += length;
    return true;
}

// A file: URI that SQLite opens read-only and immutable: no lock, no journal, no file written.
std::string ReadOnlyUri(const std::string &path)
{
    std::string uri = "file:";
    static const char kHex[] = "0123456789ABCDEF";
    for (unsigned char c : path) {
        if (std::isalnum(c) || std::strchr("/-._~", c) != nullptr) {
            uri += static_cast<char>(c);
        } else {
            uri += '%';
            uri += kHex[c >> 4];
            uri += kHex[c & 0xF];
        }
    }
    return uri + "?mode=ro&immutable=1";
}

struct DatabaseCloser {
    void operator()(sqlite3 *db) const { sqlite3_close(db); }
};
struct StatementFinalizer {
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, DatabaseCloser>;
using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

Statement Prepare(sqlite3 *db, const std::string &sql)
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        sqlite3_finalize(statement);
        return nullptr;
    }
    return Statement(statement);
}

std::string ColumnText(sqlite3_stmt *statement, int column)
{
    const unsigned char *text = sqlite3_column_text(statement, column);
    return text == nullptr ? std::string()
                           : std::string(reinterpret_cast<const char *>(text),
                                         static_cast<size_t>(sqlite3_column_bytes(statement, column)));
}

KelvoInspectServiceId ColumnServiceId(sqlite3_stmt *statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return KelvoInspectServiceId::FromInteger(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
        return KelvoInspectServiceId::FromReal(sqlite3_column_double(statement, column));
    case SQLITE_NULL:
        return KelvoInspectServiceId::FromText("(null)");
    default:
        return KelvoInspectServiceId::FromText(ColumnText(statement, column));
    }
}

bool ColumnSeconds(sqlite3_stmt *statement, int column, long long least, long long most, long long &out)
{
    if (sqlite3_column_type(statement, column) != SQLITE_INTEGER)
        return false;
    out = sqlite3_column_int64(statement, column);
    return out >= least && out <= most;
}

struct TableColumns {
    const char *table;
    std::vector<const char *> all;  // as the dump creates the table
    const char *select;             // what is read, in KelvoInspectProgramme's terms
};

const std::vector<TableColumns> &Tables()
{
    static const std::vector<TableColumns> tables = {
        {"programRF",
         {"serviceId", "eventId", "starttime", "duration", "language", "tsid", "onid", "title", "descript"},
         "SELECT serviceId, starttime, duration, language, title, descript, NULL FROM programRF"},
        {"programMETA",
         {"serviceId", "actId", "metaSrcId", "metaProgId", "starttime", "duration", "language", "title", "descript"},
         "SELECT serviceId, starttime, duration, language, title, descript, metaSrcId FROM programMETA"},
    };
    return tables;
}

std::string Damaged(sqlite3 *db)
{
    return std::string("damaged database: ") + sqlite3_errmsg(db);
}

bool CheckTable(sqlite3 *db, const TableColumns &table, std::string &error)
{
    Statement kind = Prepare(db, "SELECT type FROM sqlite_master WHERE name = ?1");
    if (!kind) {
        error = Damaged(db);
        return false;
    }
    sqlite3_bind_text(kind.get(), 1, table.table, -1, SQLITE_STATIC);
    int step = sqlite3_step(kind.get());
    if (step != SQLITE_ROW && step != SQLITE_DONE) {
        error = Damaged(db);
        return false;
    }
    if (step == SQLITE_DONE || ColumnText(kind.get(), 0) != "table") {
        error = std::string("the table ") + table.table + " is missing: not a whole dump database";
        return false;
    }
    Statement info = Prepare(db, std::string("PRAGMA table_info(") + table.table + ")");
    if (!info) {
        error = Damaged(db);
        return false;
    }
    std::set<std::string> present;
    while ((step = sqlite3_step(info.get())) == SQLITE_ROW)
        present.insert(ColumnText(info.get(), 1));
    if (step != SQLITE_DONE) {
        error = Damaged(db);
        return false;
    }
    for (const char *column : table.all)
        if (present.count(column) == 0) {
            error = std::string("the table ") + table.table + " has no column " + column + ": not a dump database";
            return false;
        }
    return true;
}

bool ReadTable(sqlite3 *db, const TableColumns &table, std::vector<KelvoInspectProgramme> &rows, std::string &error)
{
    Statement select = Prepare(db, table.select);
    if (!select) {
        error = Damaged(db);
        return false;
    }
    int step;
    while ((step = sqlite3_step(select.get())) == SQLITE_ROW) {
        sqlite3_stmt *s = select.get();
        KelvoInspectProgramme row;
        row.service = ColumnServiceId(s, 0);
        row.timed = ColumnSeconds(s, 1, 0, kLastSecond, row.start) &&
                    ColumnSeconds(s, 2, 0, kLastSecond - row.start, row.duration);
        row.language = ColumnText(s, 3);
        row.title = ColumnText(s, 4);
        row.description = ColumnText(s, 5);
        row.source = ColumnText(s, 6);
        rows.push_back(std::move(row));
    }
    if (step != SQLITE_DONE) {
        error = Damaged(db);
        return false;
    }
    return true;
}

// The size the database header names (page size times page count), or 0 when the header's
// page count is not to be trusted (written by a version that did not keep it).
long long HeaderBytes(const unsigned char *header)
{
    const auto word = [&](int at) {
        return (static_cast<unsigned long>(header[at]) << 24) | (static_cast<unsigned long>(header[at + 1]) << 16) |
               (static_cast<unsigned long>(header[at + 2]) << 8) | header[at + 3];
    };
    const unsigned long pageSize = (static_cast<unsigned long>(header[16]) << 8) | header[17];
    if (word(24) != word(92))
        return 0;
    return static_cast<long long>(pageSize == 1 ? 65536 : pageSize) * static_cast<long long>(word(28));
}

std::string FolderOf(const std::string &path)
{
    size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

bool IsFile(const std::string &path)
{
    struct stat st {};
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

KelvoInspectServiceId KelvoInspectServiceId::FromInteger(long long stored)
{
    // A negative integer is an id written as its 64-bit pattern; the id is that pattern.
    KelvoInspectServiceId id;
    id.kind = EKind::kExact;
    id.value = static_cast<unsigned long long>(stored);
    id.allOnes = id.value == ULLONG_MAX;
    id.stored = std::to_string(stored);
    return id;
}

KelvoInspectServiceId KelvoInspectServiceId::FromReal(double stored)
{
    KelvoInspectServiceId id;
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", stored);
    id.stored = text;
    if (!std::isfinite(stored) || stored < 0 || stored > kTwoTo64 || std::floor(stored) != stored)
        return id;
    if (stored < kTwoTo53) {
        id.kind = EKind::kExact;
        id.value = static_cast<unsigned long long>(stored);
        return id;
    }
    // Every id from value - spread to value + spread reads back as this number: half the step to
    // the next number above (below, for 2^64: no id lies above it).
    id.kind = EKind::kInexact;
    id.allOnes = stored == kTwoTo64;
    id.value = id.allOnes ? ULLONG_MAX : static_cast<unsigned long long>(stored);
    const double step =
        id.allOnes ? stored - std::nextafter(stored, 0.0) : std::nextafter(stored, kTwoTo64 * 2) - stored;
    id.spread = static_cast<unsigned long long>(step / 2);
    return id;
}

KelvoInspectServiceId KelvoInspectServiceId::FromText(const std::string &stored)
{
    KelvoInspectServiceId id;
    id.stored = stored;
    return id;
}

std::string KelvoInspectServiceId::Shown() const
{
    switch (kind) {
    case EKind::kExact:
        return std::to_string(value);
    case EKind::kInexact:
        return "~" + std::to_string(value);
    default:
        return "\"" + KelvoInspectText::Clean(stored, false) + "\"";
    }
}

bool KelvoInspectServiceId::operator<(const KelvoInspectServiceId &other) const
{
    return std::tie(kind, value, stored) < std::tie(other.kind, other.value, other.stored);
}

bool KelvoInspectReader::Locate(const std::string &path, KelvoInspectDump &dump, std::string &error)
{
    struct stat st {};
    if (stat(path.c_str(), &st) != 0) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    if (S_ISDIR(st.st_mode)) {
        const std::string stick = path + "/DumpMWDB";
        struct stat folder {};
        const bool isStick = stat(stick.c_str(), &folder) == 0 && S_ISDIR(folder.st_mode);
        const std::string dumpFolder = isStick ? stick : path;
        if (!isStick && !IsFile(path + "/kelvoutilInfo.db") && !IsFile(path + "/time.txt")) {
            error = path + ": neither a stick with DumpMWDB nor a DumpMWDB folder (no kelvoutilInfo.db in it)";
            return false;
        }
        dump.databasePath = dumpFolder + "/kelvoutilInfo.db";
        dump.timeFile = dumpFolder + "/time.txt";
        if (!IsFile(dump.databasePath)) {
            error = dumpFolder + " holds no kelvoutilInfo.db: the dump failed before its programme export";
            return false;
        }
    } else {
        dump.databasePath = path;
        // Beside the database in a DumpMWDB folder; the content daemon's copy has none.
        const std::string beside = FolderOf(path) + "/time.txt";
        struct stat timeFile {};
        if (lstat(beside.c_str(), &timeFile) == 0)
            dump.timeFile = beside;
    }
    if (!IsFile(dump.databasePath)) {
        error = dump.databasePath + ": not a regular file";
        return false;
    }
    return true;
}

void KelvoInspectReader::ReadTimeFile(KelvoInspectDump &dump)
{
    if (dump.timeFile.empty())
        return;
    // Only a regular file: a FIFO planted on a stick would block the read.
    struct stat st {};
    if (lstat(dump.timeFile.c_str(), &st) != 0) {
        dump.timeProblem = "time.txt is missing";
        return;
    }
    if (!S_ISREG(st.st_mode)) {
        dump.timeProblem = "time.txt is not a regular file";
        return;
    }
    std::ifstream in(dump.timeFile, std::ios::binary);
    char text[64] = {};
    in.read(text, sizeof text - 1);
    const char *at = text;
    while (*at == ' ' || *at == '\t' || *at == '\n' || *at == '\r')
        ++at;
    char *end = nullptr;
    errno = 0;
    long long seconds = std::strtoll(at, &end, 10);
    if (end == at || errno != 0) {
        dump.timeProblem = "time.txt holds no number of seconds: a restore from this stick would not end";
        return;
    }
    dump.timeKnown = true;
    dump.time = seconds;
}

bool KelvoInspectReader::Read(KelvoInspectDump &dump, std::string &error)
{
    const std::string &path = dump.databasePath;
    const auto fail = [&](const std::string &why) {
        error = path + ": " + why;
        return false;
    };
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in)
        return fail(std::string("cannot read: ") + std::strerror(errno));
    dump.databaseBytes = static_cast<long long>(in.tellg());
    if (dump.databaseBytes == 0)
        return fail("empty file (0 bytes), not a dump database");
    unsigned char header[100] = {};
    in.seekg(0);
    in.read(reinterpret_cast<char *>(header), sizeof header);
    if (in.gcount() < 16 || std::memcmp(header, "SQLite format 3", 16) != 0)
        return fail("not an SQLite database");
    const long long expected = HeaderBytes(header);
    if (in.gcount() < static_cast<std::streamsize>(sizeof header) || dump.databaseBytes < expected)
        return fail("truncated database: " + std::to_string(dump.databaseBytes) + " bytes of the " +
                    std::to_string(std::max(expected, 100LL)) + " its header names");

    sqlite3 *raw = nullptr;
    int opened = sqlite3_open_v2(ReadOnlyUri(path).c_str(), &raw, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
    Database db(raw);
    if (opened != SQLITE_OK)
        return fail(std::string("cannot open: ") + (raw != nullptr ? sqlite3_errmsg(raw) : "out of memory"));
    // The file comes from a stick: its schema may run nothing and its texts stay small.
    sqlite3_db_config(raw, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_limit(raw, SQLITE_LIMIT_LENGTH, static_cast<int>(kAtMostBytes));

    Statement check = Prepare(raw, "PRAGMA integrity_check(1)");
    if (!check)
        return fail(Damaged(raw));
    if (sqlite3_step(check.get()) != SQLITE_ROW)
        return fail(Damaged(raw));
    const std::string verdict = ColumnText(check.get(), 0);
    if (verdict != "ok")
        return fail("damaged database, its integrity check fails: " + KelvoInspectText::Clean(verdict, false));
    check.reset();

    for (const TableColumns &table : Tables())
        if (!CheckTable(raw, table, error))
            return fail(error);
    if (!ReadTable(raw, Tables()[0], dump.rf, error) || !ReadTable(raw, Tables()[1], dump.meta, error))
        return fail(error);
    return true;
}

KelvoInspectTable KelvoInspectAnalysis::SummarizeTable(const std::string &name,
                                                       const std::vector<KelvoInspectProgramme> &rows, bool bySource)
{
    KelvoInspectTable table;
    table.name = name;
    table.rows = rows.size();
    std::map<std::pair<KelvoInspectServiceId, std::string>, std::vector<const KelvoInspectProgramme *>> schedules;
    std::set<KelvoInspectServiceId> services;
    for (const KelvoInspectProgramme &row : rows) {
        ++table.languages[row.language];
        if (!(bySource && row.service.allOnes))
            services.insert(row.service);
        if (!row.timed) {
            ++table.untimed;
            continue;
        }
        table.first = table.timed ? std::min(table.first, row.start) : row.start;
        table.end = table.timed ? std::max(table.end, row.End()) : row.End();
        table.timed = true;
        schedules[{row.service, bySource ? row.source : std::string()}].push_back(&row);
    }
    table.services = services.size();
    for (auto &entry : schedules) {
        std::vector<const KelvoInspectProgramme *> &programmes = entry.second;
        std::stable_sort(programmes.begin(), programmes.end(),
                         [](const KelvoInspectProgramme *a, const KelvoInspectProgramme *b) {
                             return std::tie(a->start, a->duration) < std::tie(b->start, b->duration);
                         });
        KelvoInspectSchedule schedule;
        schedule.service = entry.first.first;
        schedule.source = entry.first.second;
        schedule.rows = programmes.size();
        schedule.first = programmes.front()->start;
        long long end = programmes.front()->End();
        for (size_t i = 1; i < programmes.size(); ++i) {
            const KelvoInspectProgramme &next = *programmes[i];
            if (next.start > end)
                schedule.gaps.push_back({end, next.start});
            else if (next.start < end)
                schedule.overlaps.push_back({next.start, std::min(end, next.End())});
            end = std::max(end, next.End());
        }
        schedule.end = end;
        table.schedules.push_back(std::move(schedule));
    }
    return table;
}

KelvoInspectSummary KelvoInspectAnalysis::Summarize(const KelvoInspectDump &dump)
{
    KelvoInspectSummary summary;
    summary.rf = SummarizeTable("programRF", dump.rf, false);
    summary.meta = SummarizeTable("programMETA", dump.meta, true);

    std::map<std::string, size_t> unmatched;
    std::map<std::pair<std::string, KelvoInspectServiceId>, size_t> inexact;
    std::map<std::pair<std::string, KelvoInspectServiceId>, size_t> notAnId;
    const auto look = [&](const char *table, const KelvoInspectProgramme &row, bool isMeta) {
        if (isMeta && row.service.allOnes) {
            ++unmatched[row.source];
            ++summary.unmatchedProgrammes;
        } else if (row.service.kind == KelvoInspectServiceId::EKind::kInexact) {
            ++inexact[{table, row.service}];
            ++summary.inexactRows;
        } else if (row.service.kind == KelvoInspectServiceId::EKind::kNotAnId) {
            ++notAnId[{table, row.service}];
        }
    };
    for (const KelvoInspectProgramme &row : dump.rf) {
        look("programRF", row, false);
        if (Utf16Units(row.title) == kTitleUnits)
            summary.cutTitles.push_back({row.service, row.start, row.title});
    }
    for (const KelvoInspectProgramme &row : dump.meta)
        look("programMETA", row, true);
    for (const auto &entry : unmatched)
        summary.unmatched.push_back({entry.first, entry.second});
    // Source ids are mostly numbers: 3302 before 109586.
    std::stable_sort(summary.unmatched.begin(), summary.unmatched.end(),
                     [](const KelvoInspectSourceCount &a, const KelvoInspectSourceCount &b) {
                         const auto digits = [](const std::string &text) {
                             return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
                         };
                         if (digits(a.source) && digits(b.source) && a.source.size() != b.source.size())
                             return a.source.size() < b.source.size();
                         return a.source < b.source;
                     });
    for (const auto &entry : inexact)
        summary.inexact.push_back({entry.first.first, entry.first.second, entry.second});
    for (const auto &entry : notAnId)
        summary.notAnId.push_back({entry.first.first, entry.first.second, entry.second});
    return summary;
}

size_t KelvoInspectAnalysis::Utf16Units(const std::string &utf8)
{
    size_t units = 0;
    for (size_t i = 0; i < utf8.size();) {
        unsigned cp = 0;
        units += DecodeUtf8(utf8, i, cp) && cp >= 0x10000 ? 2 : 1;
    }
    return units;
}

std::string KelvoInspectText::Clean(const std::string &text, bool keepBreaks)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const size_t at = i;
        unsigned cp = 0;
        bool valid = DecodeUtf8(text, i, cp);
        bool isBreak = cp == '\n' || cp == '\t' || cp == '\r';
        if (!valid || (cp < 0x20 && !(keepBreaks && isBreak)) || (cp >= 0x7F && cp <= 0x9F) || cp == 0xFFFD ||
            cp == 0xFFFE || cp == 0xFFFF)
            out += '?';
        else
            out.append(text, at, i - at);
    }
    return out;
}

std::string KelvoInspectText::Time(long long seconds)
{
    time_t t = static_cast<time_t>(seconds);
    struct tm tm {};
    if (gmtime_r(&t, &tm) == nullptr)
        return std::to_string(seconds);
    char text[40];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &tm);
    return text;
}
