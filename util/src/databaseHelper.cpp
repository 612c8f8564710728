#include "databaseHelper.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "KelvoUtilLog.h"

// Speed and what a full disk costs.
//
// A dump inserts tens of thousands of rows; one autocommit with a journal file and syncs per
// row would make the database the slowest step of the dump. Each open file is therefore new and
// private to this run, so the connection keeps its rollback journal in memory, does not sync
// while rows arrive, and collects rows in batches: a transaction begun after the tables exist,
// committed every kRowsPerBatch rows and at CloseDB, which then syncs the closed file: once
// CloseDB has returned the file is complete and consistent on disk.
//
// A statement that fails on its own (its row is malformed) loses that row only: SQLite undoes
// the statement and the batch goes on. When the disk fills (SQLITE_FULL) or the file cannot be
// written, SQLite gives up the whole open transaction: the rows of the open batch are lost, the
// rows of every batch committed before stay in the file, and a new batch is begun so that rows
// that still fit after space comes back are kept. The in-memory journal restores the file to
// its last committed state on such a rollback; only a crash of the process in the middle of a
// commit could leave a damaged file, and the next dump deletes it before opening.
namespace {

const unsigned int kRowsPerBatch = 1000;

const char *const kDbFolder = "/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/";
const char *const kDbFileName = "kelvoutilInfo.db";

// Index one past the end of the conversion directive whose '%' stands at `percent`, read
// the way SQLite's formatter reads one: flags "-+ #!0,", a width of digits or '*', a precision
// of '.' then digits or '*', a length "l" or "ll", then the conversion character. A text that
// ends inside the directive ends it.
size_t ConversionEnd(const std::string &text, size_t percent)
{
    const size_t size = text.size();
    auto at = [&](size_t i) { return i < size ? text[i] : '\0'; };
    auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    auto after = [&](size_t i) { return i < size ? i + 1 : size; };
    size_t i = percent + 1;
    for (;;) {
        const char c = at(i);
        if (std::strchr("-+ #!0,", c) != nullptr && c != '\0') {
            ++i;
        } else if (c == 'l') {
            i += (at(i + 1) == 'l') ? 2 : 1;
            return after(i);
        } else if (isDigit(c) || c == '*') {
            if (c == '*') {
                ++i;
            } else {
                while (isDigit(at(i))) {
                    ++i;
                }
            }
            if (at(i) != '.' && at(i) != 'l') {
                return after(i);
            }
        } else if (c == '.') {
            ++i;
            if (at(i) == '*') {
                ++i;
            } else {
                while (isDigit(at(i))) {
                    ++i;
                }
            }
            if (at(i) != 'l') {
                return after(i);
            }
        } else {
            return after(i);
        }
    }
}

// Statements go through sqlite3_mprintf as its format with no arguments, so that "%%" in a
// value arrives as "%". A title is broadcast or server text: a conversion in it ("%s", "%n",
// "%*d", ...) would make the formatter read an argument that is not there. Each '%' that is
// not part of "%%" is therefore taken out with its whole directive before formatting;
// a lone '%' that ends the text is doubled, so it still prints as itself. Text without such
// a conversion is left exactly as it is.
void ConsumeConversions(std::string &query)
{
    size_t percent = query.find('%');
    if (percent == std::string::npos) {
        return;
    }
    std::string safe;
    safe.reserve(query.size());
    size_t copied = 0;
    while (percent != std::string::npos) {
        size_t next;
        if (percent + 1 < query.size() && query[percent + 1] == '%') {
            next = percent + 2;
            safe.append(query, copied, next - copied);
        } else if (percent + 1 == query.size()) {
            next = query.size();
            safe.append(query, copied, percent - copied);
            safe += "%%";
        } else {
            next = ConversionEnd(query, percent);
            safe.append(query, copied, percent - copied);
        }
        copied = next;
        percent = query.find('%', next);
    }
    safe.append(query, copied, std::string::npos);
    query.swap(safe);
}

}  // namespace

KelvoUtilDatabaseHelper::KelvoUtilDatabaseHelper()
    : m_dbPath(std::string(kDbFolder) + kDbFileName), m_dbFolder(kDbFolder), m_rfTableName("programRF"),
      m_metaTableName("programMETA"), m_db(nullptr), m_inBatch(false), m_batchRows(0)
{}

KelvoUtilDatabaseHelper::~KelvoUtilDatabaseHelper() = default;

void KelvoUtilDatabaseHelper::OpenDB()
{
    CloseDB();  // a connection still open would keep its batch and its handle forever
    struct stat folder;
    if (stat(m_dbFolder.c_str(), &folder) != 0) {
        m_CreatePath();
    } else {
        m_RemoveDBFile();
    }
    if (sqlite3_open(m_dbPath.c_str(), &m_db) != SQLITE_OK) {
        KELVO_UTIL_LOG("fail to sqlite3_open - error:%d", sqlite3_errcode(m_db));
        return;
    }
    // The file is new and only this run writes it; see the note at the top.
    m_Exec("PRAGMA journal_mode=MEMORY; PRAGMA synchronous=OFF; PRAGMA temp_store=MEMORY;");
    m_CreateTable();
    m_BeginBatch();
}

void KelvoUtilDatabaseHelper::CloseDB()
{
    if (m_db == nullptr) {
        return;
    }
    m_CommitBatch();
    sqlite3_close(m_db);
    m_db = nullptr;
    m_SyncFile();
}

void KelvoUtilDatabaseHelper::InsertProgramRF(KelvoUtilProgramData row)
{
    if (m_db == nullptr) {
        return;
    }
    KelvoUtilDbQueryHelper query;
    query.SetTableName(m_rfTableName);
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_SERVICE_ID, row.ServiceId());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_EVENT_ID, row.EventId());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_START_TIME, row.Starttime());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_DURATION, row.Duration());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_LANGUAGE, row.Language());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_TSID, row.TSID());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_ONID, row.ONID());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_TITLE, row.Title());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_DESCRIPTION, row.Description());
    m_InsertRow(query);
}

void KelvoUtilDatabaseHelper::InsertProgramMeta(KelvoUtilProgramData row)
{
    if (m_db == nullptr) {
        return;
    }
    KelvoUtilDbQueryHelper query;
    query.SetTableName(m_metaTableName);
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_SERVICE_ID, row.ServiceId());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_ACTIVITY_ID, row.ActivityId());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_META_SOURCE_ID, row.ProgramSourceId());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_META_PROGRAM_ID, row.MetaProgramId());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_START_TIME, row.Starttime());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_DURATION, row.Duration());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_LANGUAGE, row.Language());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_TITLE, row.Title());
    query.SetColumnValue(KelvoUtilDbQueryHelper::COLUMN_DESCRIPTION, row.Description());
    m_InsertRow(query);
}

void KelvoUtilDatabaseHelper::ExecuteQuery(std::string query)
{
    ConsumeConversions(query);
    char *statement = sqlite3_mprintf(query.c_str());
    const int ret = sqlite3_exec(m_db, statement, nullptr, nullptr, nullptr);
    sqlite3_free(statement);
    if (ret != SQLITE_OK) {
        KELVO_UTIL_LOG("Insert error, ret:%d", ret);
        if (m_inBatch && m_db != nullptr && sqlite3_get_autocommit(m_db) != 0) {
            // SQLite gave up the open batch (disk full, write error); keep the rows to come.
            KELVO_UTIL_LOG("batch of %u rows rolled back", m_batchRows);
            m_inBatch = false;
            m_BeginBatch();
        }
        return;
    }
    KELVO_UTIL_LOG("end");
}

void KelvoUtilDatabaseHelper::m_CreatePath()
{
    char path[100] = {};
    strncpy(path, m_dbFolder.c_str(), sizeof(path) - 1);
    // A '/' after ':' belongs to a scheme ("x://"), not to a folder boundary.
    for (size_t i = 1; path[i] != '\0'; ++i) {
        if (path[i] == '/' && path[i - 1] != ':') {
            path[i] = '\0';
            mkdir(path, 0755);
            path[i] = '/';
        }
    }
}

void KelvoUtilDatabaseHelper::m_SyncFile()
{
    const int fd = open(m_dbPath.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return;
    }
    if (fsync(fd) != 0) {
        KELVO_UTIL_LOG("fail to sync %s - errno:%d", m_dbPath.c_str(), errno);
    }
    close(fd);
}

void KelvoUtilDatabaseHelper::m_RemoveDBFile()
{
    remove(m_dbPath.c_str());
}

void KelvoUtilDatabaseHelper::m_InitQueryMaker()
{
    using Q = KelvoUtilDbQueryHelper;
    static const Q::EColumn rfColumns[] = {Q::COLUMN_SERVICE_ID, Q::COLUMN_EVENT_ID, Q::COLUMN_START_TIME,
                                           Q::COLUMN_DURATION,   Q::COLUMN_LANGUAGE, Q::COLUMN_TSID,
                                           Q::COLUMN_ONID,       Q::COLUMN_TITLE,    Q::COLUMN_DESCRIPTION};
    static const Q::EColumn metaColumns[] = {Q::COLUMN_SERVICE_ID,      Q::COLUMN_ACTIVITY_ID, Q::COLUMN_META_SOURCE_ID,
                                             Q::COLUMN_META_PROGRAM_ID, Q::COLUMN_START_TIME,  Q::COLUMN_DURATION,
                                             Q::COLUMN_LANGUAGE,        Q::COLUMN_TITLE,       Q::COLUMN_DESCRIPTION};
    auto typeOf = [](Q::EColumn column) {
        const bool text = column == Q::COLUMN_LANGUAGE || column == Q::COLUMN_TITLE || column == Q::COLUMN_DESCRIPTION;
        return std::string(text ? "text" : "integer");
    };
    auto fill = [&](Q &maker, const std::string &table, const Q::EColumn(&columns)[9]) {
        maker.Clear();
        maker.SetTableName(table);
        for (Q::EColumn column : columns) {
            maker.AddField(maker.GetColumnName(column), typeOf(column));
        }
    };
    fill(m_rfQueryMaker, m_rfTableName, rfColumns);
    fill(m_metaQueryMaker, m_metaTableName, metaColumns);
}

void KelvoUtilDatabaseHelper::m_CreateTable()
{
    if (m_db == nullptr) {
        return;
    }
    m_InitQueryMaker();
    int ret = sqlite3_exec(m_db, m_rfQueryMaker.GetCreateTableQuery().c_str(), nullptr, nullptr, nullptr);
    if (ret != SQLITE_OK) {
        KELVO_UTIL_LOG("fail to sqlite3_exec - error:%d", ret);
        return;
    }
    ret = sqlite3_exec(m_db, m_metaQueryMaker.GetCreateTableQuery().c_str(), nullptr, nullptr, nullptr);
    if (ret != SQLITE_OK) {
        KELVO_UTIL_LOG("fail to sqlite3_exec - error:%d", ret);
    }
}

void KelvoUtilDatabaseHelper::m_InsertRow(KelvoUtilDbQueryHelper &row)
{
    std::string query;
    row.GetInsertQuery(query);
    ExecuteQuery(query);
    if (m_inBatch && ++m_batchRows >= kRowsPerBatch) {
        m_CommitBatch();
        m_BeginBatch();
    }
}

bool KelvoUtilDatabaseHelper::m_Exec(const char *sql)
{
    return sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

void KelvoUtilDatabaseHelper::m_BeginBatch()
{
    m_batchRows = 0;
    m_inBatch = m_Exec("BEGIN;");
}

void KelvoUtilDatabaseHelper::m_CommitBatch()
{
    if (!m_inBatch) {
        return;
    }
    m_inBatch = false;
    if (m_Exec("COMMIT;")) {
        return;
    }
    KELVO_UTIL_LOG("fail to commit - error:%d, %u rows lost", sqlite3_errcode(m_db), m_batchRows);
    if (sqlite3_get_autocommit(m_db) == 0) {
        m_Exec("ROLLBACK;");
    }
}
