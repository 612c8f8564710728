// The programme-info database a dump writes: one table of broadcast programmes ("programRF") and
// one of programmes of server metadata ("programMETA"), started from an empty file on each open.
#ifndef KELVO_UTIL_DATABASE_HELPER_H
#define KELVO_UTIL_DATABASE_HELPER_H

#include <string>
#include <vector>

#include "dbQueryHelper.h"
#include "programData.h"

struct sqlite3;

class KelvoUtilDatabaseHelper {
public:
    // Rows per transaction while a dump writes.
    static const unsigned int kRowsPerBatch = 1000;

    KelvoUtilDatabaseHelper();
    virtual ~KelvoUtilDatabaseHelper();

    void OpenDB();
    void CloseDB();
    void InsertProgramRF(KelvoUtilProgramData row);
    void InsertProgramMeta(KelvoUtilProgramData row);
    void ExecuteQuery(std::string query);

protected:
    // Fixed on the set; a test relocates them into its own temporary folder.
    std::string m_dbPath;
    std::string m_dbFolder;

private:
    void m_CreatePath();
    void m_RemoveDBFile();
    void m_SyncFile();
    void m_InitQueryMaker();
    void m_CreateTable();
    void m_InsertRow(KelvoUtilDbQueryHelper &row);
    bool m_Exec(const char *sql);
    void m_BeginBatch();
    void m_CommitBatch();
    bool m_ReplayStatement(const std::string &statement);

    std::string m_rfTableName;
    std::string m_metaTableName;
    KelvoUtilDbQueryHelper m_rfQueryMaker;
    KelvoUtilDbQueryHelper m_metaQueryMaker;
    sqlite3 *m_db;
    bool m_inBatch;
    // The formatted statements of the open batch, run again one by one if it cannot be committed.
    std::vector<std::string> m_batch;
};

#endif
