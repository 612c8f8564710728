// Shared pieces of the dump database tests: a private folder per test, the database helper
// relocated into it, and ways to read the file back.
#ifndef KELVO_TESTS_DUMPDB_SUPPORT_H
#define KELVO_TESTS_DUMPDB_SUPPORT_H

#include <string>
#include <vector>

#include "databaseHelper.h"

class TCProgramData;

// A folder under the system's temporary folder, removed with its content at destruction.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    const std::string &Path() const { return m_path; }

private:
    std::string m_path;
};

// The database helper writing below `folder` instead of the set's fixed path.
class RelocatedDatabaseHelper : public KelvoUtilDatabaseHelper {
public:
    explicit RelocatedDatabaseHelper(const std::string &folder);
    const std::string &DbPath() const { return m_dbPath; }
};

// Each result row as its columns' texts joined by '|' (NULL as "NULL"), through the C API.
std::vector<std::string> QueryRows(const std::string &dbPath, const std::string &sql);

// Standard output of the sqlite3 command-line client run on the file with one dot-command or
// statement.
std::string RunSqliteCli(const std::string &dbPath, const std::string &command);

// A broadcast event as the middleware hands it over.
TCProgramData MakeEvent(const std::u16string &title, const std::u16string &text = u"",
                        unsigned int language = 0x656E67);

#endif
