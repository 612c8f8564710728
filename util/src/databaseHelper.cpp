#include "databaseHelper.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "KelvoUtilLog.h"

// Speed, and what a full disk or a crash costs.
//
// A dump inserts tens of thousands of rows; one transaction with its syncs per row would make
// the database the slowest step of the dump. Rows are therefore collected in batches: a
// transaction begun after the tables exist, committed every kRowsPerBatch rows and at CloseDB.
//
// Every row that can be stored is kept. A statement that fails on its own (its row is
// malformed) loses that row only: SQLite undoes the statement and the batch goes on. When a
// batch cannot be committed because the disk is full or cannot be written, SQLite gives up the
// whole transaction; the statements of the batch are kept in memory, so they are run again one
// by one, each its own transaction, and only the rows that still do not fit are lost. A row whose
// statement met a full disk is tried once more the same way. A new batch then begins, so the rows
// to come are kept once space is back.
//
// The journal is a file beside the database, written before any page of the database changes
// and marked done once a commit is complete. A process killed at any point, in a commit too,
// leaves the two files in a state from which SQLite brings the database back to its last commit,
// with every committed row. The connection holds the file's lock from its first write to its
// close, so the journal stays between commits and is deleted at the close, and SQLite does not
// sync while rows arrive: a sync only matters when the machine itself goes down, and a dump cut
// short is never used, the next one starts from an empty file. CloseDB syncs the closed file,
// which is then the one file the dump's copy needs. The next dump removes it, and a journal left
// by a killed run, before opening.
namespace {

const char *const kDbFolder = "/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/";
const char *const kDbFileName = "kelvoutilInfo.db";
const char *const kCompanionSuffixes[] = {"-journal", "-wal", "-shm"};

// The failures that come from the storage rather than from the statement.
bool IsStorageError(int ret)
{
    const int primary = ret & 0xff;
    return primary == SQLITE_FULL || primary == SQLITE_IOERR;
}

}  // namespace

KelvoUtilDatabaseHelper::KelvoUtilDatabaseHelper()
    : m_dbPath(std::string(kDbFolder) + kDbFileName), m_dbFolder(kDbFolder), m_rfTableName("programRF"),
      m_metaTableName("programMETA"), m_db(nullptr), m_inBatch(false)
{
    // The dump never reads SQLite's memory statistics, whose upkeep takes a global lock on every
    // allocation SQLite makes: a few percent of a large dump's time, statement after statement.
    // It takes effect only before SQLite's first use in the process (the helper is made at
    // start-up); later it is refused, harmlessly.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
}

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
    // See the note at the top.
    m_Exec(
        "PRAGMA journal_mode=DELETE; PRAGMA locking_mode=EXCLUSIVE; PRAGMA synchronous=OFF; PRAGMA temp_store=MEMORY;");
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
    char *statement = sqlite3_mprintf(KelvoUtilStatementGuard::Apply(query).c_str());
    // A statement too long to format is a failed row, not an empty success.
    const int ret = statement != nullptr ? sqlite3_exec(m_db, statement, nullptr, nullptr, nullptr) : SQLITE_NOMEM;
    std::string text = statement != nullptr ? statement : "";
    sqlite3_free(statement);
    if (ret != SQLITE_OK) {
        KELVO_UTIL_LOG("Insert error, ret:%d", ret);
        if (m_inBatch && IsStorageError(ret)) {
            m_CommitBatch();
            m_ReplayStatement(text);
            m_BeginBatch();
        }
        return;
    }
    if (m_inBatch) {
        m_batch.push_back(std::move(text));
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
    // A journal left by a killed run would be played back into the new file.
    for (const char *suffix : kCompanionSuffixes) {
        remove((m_dbPath + suffix).c_str());
    }
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
    ExecuteQuery(std::move(query));
    if (m_inBatch && m_batch.size() >= kRowsPerBatch) {
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
    m_batch.clear();
    m_inBatch = m_Exec("BEGIN;");
}

void KelvoUtilDatabaseHelper::m_CommitBatch()
{
    if (!m_inBatch) {
        return;
    }
    m_inBatch = false;
    // SQLite may already have given the transaction up, on a statement that met a full disk.
    if (sqlite3_get_autocommit(m_db) == 0 && m_Exec("COMMIT;")) {
        m_batch.clear();
        return;
    }
    KELVO_UTIL_LOG("fail to commit - error:%d, %u rows run again one by one", sqlite3_errcode(m_db),
                   static_cast<unsigned int>(m_batch.size()));
    if (sqlite3_get_autocommit(m_db) == 0) {
        m_Exec("ROLLBACK;");
    }
    unsigned int lost = 0;
    for (const std::string &statement : m_batch) {
        if (!m_ReplayStatement(statement)) {
            ++lost;
        }
    }
    KELVO_UTIL_LOG("%u of %u rows kept", static_cast<unsigned int>(m_batch.size()) - lost,
                   static_cast<unsigned int>(m_batch.size()));
    m_batch.clear();
}

bool KelvoUtilDatabaseHelper::m_ReplayStatement(const std::string &statement)
{
    if (statement.empty()) {
        return false;
    }
    const int ret = sqlite3_exec(m_db, statement.c_str(), nullptr, nullptr, nullptr);
    if (ret != SQLITE_OK) {
        KELVO_UTIL_LOG("Insert error, ret:%d", ret);
        return false;
    }
    return true;
}
