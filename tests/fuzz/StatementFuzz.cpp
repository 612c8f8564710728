// Programme titles and descriptions are broadcast or server text, and they reach SQLite inside the
// text of an INSERT. One row with an arbitrary title and description goes through the system's own
// path (programme row, statement builder, ExecuteQuery) into a fresh dump database, and two
// properties must hold:
//  - the statement inserts at most its own row and does nothing else: an authorizer refuses and
//    records every action but an INSERT into the row's table (and the batch's own transaction
//    statements), and afterwards the file holds the two tables, no other row, no other file;
//  - no quote is consumed: when the row is there, its other columns are exactly what was given,
//    both texts are text, and each reads back as a benign formatter gives it (below).
// A text without any '%' must be stored, and stored unchanged.
//
// Input: the first byte picks the row ('m': a programme of server metadata, anything else: a
// broadcast event); the title runs from the second byte to the first newline, the description
// is the rest.
#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "FCElementData.h"
#include "FakeDlog.h"
#include "TVServiceAPI.h"
#include "databaseHelper.h"
#include "programData.h"

namespace {

const char *const kDbName = "kelvoutilInfo.db";
const unsigned long long kServiceId = 1234;
const unsigned short kEventId = 7;
const unsigned int kStartTime = 1700000000U;
const unsigned int kDuration = 3600U;
const unsigned int kLanguage = 0x656E67;  // "eng"
// The other columns of each table as the row must store them, in the order of the queries below.
const char *const kRfColumns = "1234|7|1700000000|3600|eng|0|0";
const char *const kMetaColumns = "1234|0|src-1|prog-1|1700000000|3600|eng";

// A folder of this process under the temporary folder (run.sh points TMPDIR at a tmpfs).
class ScratchFolder {
public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-fuzz-statement-XXXXXX").string();
        if (mkdtemp(&pattern[0]) == nullptr) {
            std::perror("mkdtemp");
            std::abort();
        }
        m_path = pattern;
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    const std::string &Path() const { return m_path; }

private:
    std::string m_path;
};

// The dump database in the scratch folder instead of the set's fixed path.
class ScratchDatabaseHelper : public KelvoUtilDatabaseHelper {
public:
    explicit ScratchDatabaseHelper(const std::string &folder)
    {
        m_dbFolder = folder + "/";
        m_dbPath = m_dbFolder + kDbName;
    }
    const std::string &Path() const { return m_dbPath; }
};

// What the authorizer lets through while a row is being stored (and, closing, the database's own
// pragmas), and what it refused. ATTACH, and with it every way to a file of another name, is
// refused throughout: an injected statement never writes outside the scratch folder.
struct Watch {
    bool armed = false;
    bool closing = false;
    const char *table = "";
    std::vector<std::string> refused;
};
Watch g_watch;

int Authorize(void *, int action, const char *first, const char *second, const char *database, const char *)
{
    if (!g_watch.armed)
        return SQLITE_OK;
    if (action == SQLITE_INSERT && first != nullptr && std::strcmp(first, g_watch.table) == 0 && database != nullptr &&
        std::strcmp(database, "main") == 0)
        return SQLITE_OK;
    // The batch's own BEGIN/COMMIT/ROLLBACK and savepoints.
    if (action == SQLITE_TRANSACTION || action == SQLITE_SAVEPOINT)
        return SQLITE_OK;
    if (g_watch.closing && action == SQLITE_PRAGMA)
        return SQLITE_OK;
    g_watch.refused.push_back("action " + std::to_string(action) + " (" + (first ? first : "") + ", " +
                              (second ? second : "") + ", " + (database ? database : "") + ")");
    return SQLITE_DENY;
}

// Every connection the process opens gets the authorizer; it refuses only while armed.
int WatchConnection(sqlite3 *db, char **, const sqlite3_api_routines *)
{
    sqlite3_set_authorizer(db, Authorize, nullptr);
    return SQLITE_OK;
}

[[noreturn]] void Fail(const std::string &what, const std::string &title, const std::string &description)
{
    std::fprintf(stderr, "statement property broken: %s\n  title: [%s]\n  description: [%s]\n", what.c_str(),
                 title.c_str(), description.c_str());
    std::abort();
}

// ---- The benign formatter ---------------------------------------------------------------------
//
// What a value may read back as, judged from the value alone: every character outside a '%'
// directive stays, in order; "%%" gives "%"; any other directive, read as SQLite's formatter reads
// one (flags "-+ #!0,", a width of digits or '*', a precision of '.' and digits or '*', a length
// "l" or "ll", then the conversion character), is dropped in whole or in part, or, when it is a
// "%" conversion that reads no argument, gives what SQLite gives for it: "%" padded with blanks
// to its width. Nothing from outside the value can appear in it: a consumed quote shows as text
// of the next value, or as a wrong column.

struct Directive {
    size_t begin, end;      // [begin, end) in the value, the conversion character included
    std::string rendering;  // SQLite's output for a "%" conversion; empty when there is none
};

// One past the conversion character of the directive whose '%' is at `percent` (at most the
// text's end: a directive cut by the end of the value runs into the closing quote).
size_t DirectiveEnd(const std::string &text, size_t percent)
{
    auto at = [&](size_t i) { return i < text.size() ? text[i] : '\0'; };
    auto digit = [](char c) { return c >= '0' && c <= '9'; };
    auto conversionAt = [&](size_t i) { return std::min(i + 1, text.size()); };
    size_t i = percent + 1;
    for (;;) {
        const char c = at(i);
        if (c != '\0' && std::strchr("-+ #!0,", c) != nullptr) {
            ++i;
        } else if (c == 'l') {
            i += at(i + 1) == 'l' ? 2 : 1;
            return conversionAt(i);
        } else if (c >= '1' && c <= '9') {
            while (digit(at(i)))
                ++i;
            if (at(i) != '.' && at(i) != 'l')
                return conversionAt(i);
        } else if (c == '*') {
            if (at(i + 1) != '.' && at(i + 1) != 'l')
                return conversionAt(i + 1);
            ++i;
        } else if (c == '.') {
            ++i;
            if (at(i) == '*')
                ++i;
            else
                while (digit(at(i)))
                    ++i;
            if (at(i) != 'l')
                return conversionAt(i);
        } else {
            return conversionAt(i);
        }
    }
}

// "%" padded to the width, for flags* width? (. digits)? (l|ll)? '%' without '*'; else "".
std::string PercentRendering(const std::string &text, size_t begin, size_t end)
{
    if (end - begin < 2 || text[end - 1] != '%' || text.find('*', begin) < end)
        return "";
    size_t i = begin + 1;
    bool left = false;
    for (; i < end - 1 && std::strchr("-+ #!0,", text[i]) != nullptr; ++i)
        left = left || text[i] == '-';
    size_t width = 0;
    for (; i < end - 1 && text[i] >= '0' && text[i] <= '9'; ++i)
        width = std::min<size_t>(width * 10 + static_cast<size_t>(text[i] - '0'), 1U << 20);
    if (i < end - 1 && text[i] == '.')
        for (++i; i < end - 1 && text[i] >= '0' && text[i] <= '9'; ++i) {}
    for (int l = 0; l < 2 && i < end - 1 && text[i] == 'l'; ++l, ++i) {}
    if (i != end - 1)
        return "";
    const std::string blanks(width > 1 ? width - 1 : 0, ' ');
    return left ? "%" + blanks : blanks + "%";
}

bool BenignlyFormatted(const std::string &value, const std::string &stored)
{
    const size_t m = stored.size();
    std::vector<char> reach(m + 1, 0), next(m + 1, 0);
    reach[0] = 1;
    auto literal = [&](char c, std::vector<char> &from, std::vector<char> &to, bool optional) {
        std::fill(to.begin(), to.end(), 0);
        for (size_t j = 0; j <= m; ++j) {
            if (!from[j])
                continue;
            if (optional)
                to[j] = 1;
            if (j < m && stored[j] == c)
                to[j + 1] = 1;
        }
    };
    for (size_t i = 0; i < value.size();) {
        if (value[i] != '%') {
            literal(value[i], reach, next, false);
            reach.swap(next);
            ++i;
            continue;
        }
        if (i + 1 < value.size() && value[i + 1] == '%') {
            literal('%', reach, next, false);
            reach.swap(next);
            i += 2;
            continue;
        }
        Directive directive{i, DirectiveEnd(value, i), ""};
        directive.rendering = PercentRendering(value, directive.begin, directive.end);
        // Dropped in whole or in part ...
        std::vector<char> dropped(reach), scratch(m + 1, 0);
        for (size_t k = directive.begin; k < directive.end; ++k) {
            literal(value[k], dropped, scratch, true);
            dropped.swap(scratch);
        }
        // ... or rendered as SQLite renders it.
        const std::string &r = directive.rendering;
        if (!r.empty())
            for (size_t j = 0; j + r.size() <= m; ++j)
                if (reach[j] && stored.compare(j, r.size(), r) == 0)
                    dropped[j + r.size()] = 1;
        reach.swap(dropped);
        i = directive.end;
    }
    return reach[m] != 0;
}

// ---- Reading the file back ---------------------------------------------------------------------

std::vector<std::string> Rows(sqlite3 *db, const std::string &sql)
{
    std::vector<std::string> rows;
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        return {"prepare failed: " + std::string(sqlite3_errmsg(db))};
    while (sqlite3_step(statement) == SQLITE_ROW) {
        std::string row;
        for (int c = 0; c < sqlite3_column_count(statement); ++c) {
            if (c > 0)
                row += '|';
            const unsigned char *text = sqlite3_column_text(statement, c);
            row.append(text ? reinterpret_cast<const char *>(text) : "", sqlite3_column_bytes(statement, c));
        }
        rows.push_back(row);
    }
    sqlite3_finalize(statement);
    return rows;
}

std::string Single(sqlite3 *db, const std::string &sql)
{
    std::vector<std::string> rows = Rows(db, sql);
    return rows.size() == 1 ? rows[0] : "<" + std::to_string(rows.size()) + " rows>";
}

// The two texts of the row, read as blobs so that every byte comes back as stored.
bool ReadTexts(sqlite3 *db, const char *table, std::string &title, std::string &description)
{
    sqlite3_stmt *statement = nullptr;
    const std::string sql = std::string("SELECT CAST(title AS BLOB), CAST(descript AS BLOB) FROM ") + table;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        return false;
    const bool found = sqlite3_step(statement) == SQLITE_ROW;
    if (found) {
        auto blob = [&](int c) {
            const void *bytes = sqlite3_column_blob(statement, c);
            return std::string(bytes ? static_cast<const char *>(bytes) : "", sqlite3_column_bytes(statement, c));
        };
        title = blob(0);
        description = blob(1);
    }
    sqlite3_finalize(statement);
    return found;
}

// Each byte one UTF-16 unit, as if the broadcast text were Latin-1.
std::u16string Units(const std::string &bytes)
{
    std::u16string units;
    for (unsigned char byte : bytes)
        units += static_cast<char16_t>(byte);
    return units;
}

// The stored texts hold no apostrophe: each becomes a double quote before the statement is built.
std::string InStatement(std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    return text;
}

void CheckFolder(const std::string &folder, const std::string &title, const std::string &description)
{
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind(kDbName, 0) != 0)
            Fail("a file appeared beside the database: " + name, title, description);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    sqlite3_auto_extension(reinterpret_cast<void (*)(void)>(WatchConnection));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static ScratchFolder folder;
    if (size == 0)
        return 0;
    const bool meta = data[0] == 'm';
    const std::string rest(reinterpret_cast<const char *>(data) + 1, size - 1);
    const size_t newline = rest.find('\n');
    const std::string title = rest.substr(0, newline);
    const std::string description = newline == std::string::npos ? "" : rest.substr(newline + 1);

    KelvoUtilProgramData row = [&] {
        if (meta) {
            FCRemoteProgram program;
            program.m_programSourceId = "src-1";
            program.m_programId = "prog-1";
            program.m_lang = "eng";
            program.m_utcStartTime = kStartTime;
            program.m_duration = static_cast<int>(kDuration);
            program.m_title = title;
            program.m_desc = description;
            return KelvoUtilProgramData(program, kServiceId);
        }
        TCProgramData event;
        event.SetServiceId(kServiceId);
        event.SetEventId(kEventId);
        event.SetStartTime(kStartTime);
        event.SetDuration(kDuration);
        event.SetLanguage(kLanguage);
        event.SetTitle(Units(title));
        event.SetExtendedText(Units(description));
        return KelvoUtilProgramData(&event);
    }();
    // The texts as the statement layer receives them (a broadcast text after its conversion).
    const std::string givenTitle = row.Title(), givenDescription = row.Description();
    const char *table = meta ? "programMETA" : "programRF";
    const char *other = meta ? "programRF" : "programMETA";

    ScratchDatabaseHelper helper(folder.Path());
    helper.OpenDB();
    g_watch.armed = true;
    g_watch.closing = false;
    g_watch.table = table;
    g_watch.refused.clear();
    if (meta)
        helper.InsertProgramMeta(row);
    else
        helper.InsertProgramRF(row);
    g_watch.closing = true;
    helper.CloseDB();
    g_watch.armed = false;
    if (!g_watch.refused.empty())
        Fail("the statement tried more than its own insert: " + g_watch.refused[0], givenTitle, givenDescription);
    CheckFolder(folder.Path(), givenTitle, givenDescription);

    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(helper.Path().c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
        Fail("the database cannot be opened", givenTitle, givenDescription);
    const std::string schema = Single(db, "SELECT group_concat(type || ' ' || name, ',') FROM "
                                          "(SELECT type, name FROM sqlite_master ORDER BY name)");
    if (schema != "table programMETA,table programRF")
        Fail("the schema changed: " + schema, givenTitle, givenDescription);
    if (Single(db, std::string("SELECT count(*) FROM ") + other) != "0")
        Fail(std::string("a row appeared in ") + other, givenTitle, givenDescription);
    const std::string count = Single(db, std::string("SELECT count(*) FROM ") + table);
    if (count != "0" && count != "1")
        Fail(std::string("rows in ") + table + ": " + count, givenTitle, givenDescription);

    const bool plain = givenTitle.find_first_of(std::string("%\0", 2)) == std::string::npos &&
                       givenDescription.find_first_of(std::string("%\0", 2)) == std::string::npos;
    if (plain && count != "1")
        Fail("a text without '%' was not stored", givenTitle, givenDescription);
    if (count == "1") {
        const std::string columns =
            Single(db, meta ? "SELECT serviceId, actId, metaSrcId, metaProgId, starttime, duration, language "
                              "FROM programMETA"
                            : "SELECT serviceId, eventId, starttime, duration, language, tsid, onid FROM programRF");
        if (columns != (meta ? kMetaColumns : kRfColumns))
            Fail("the other columns read " + columns, givenTitle, givenDescription);
        const std::string types = Single(db, std::string("SELECT typeof(title), typeof(descript) FROM ") + table);
        if (types != "text|text")
            Fail("the texts are stored as " + types, givenTitle, givenDescription);
        std::string storedTitle, storedDescription;
        ReadTexts(db, table, storedTitle, storedDescription);
        if (!BenignlyFormatted(InStatement(givenTitle), storedTitle))
            Fail("the title reads back as [" + storedTitle + "]", givenTitle, givenDescription);
        if (!BenignlyFormatted(InStatement(givenDescription), storedDescription))
            Fail("the description reads back as [" + storedDescription + "]", givenTitle, givenDescription);
        if (plain && (storedTitle != InStatement(givenTitle) || storedDescription != InStatement(givenDescription)))
            Fail("a text without '%' was changed", givenTitle, givenDescription);
    }
    sqlite3_close(db);
    FakeDlog::Clear();
    return 0;
}
