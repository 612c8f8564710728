// Shared pieces of the dump database tests: a private folder per test, the database helper
// relocated into it, rows to insert, and ways to read the file back.
#ifndef KELVO_TESTS_DUMPDB_SUPPORT_H
#define KELVO_TESTS_DUMPDB_SUPPORT_H

#include <string>
#include <vector>

#include "TVServiceAPI.h"
#include "databaseHelper.h"
#include "programData.h"

// A folder under the system's temporary folder, removed with its content at destruction.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    const std::string &Path() const { return m_path; }

private:
    std::string m_path;
};

// The database helper writing to `dbPath` in `folder` instead of the set's fixed path.
class RelocatedDatabaseHelper : public KelvoUtilDatabaseHelper {
public:
    explicit RelocatedDatabaseHelper(const std::string &folder, const std::string &dbPath = "");
    const std::string &DbPath() const { return m_dbPath; }
};

// Each result row as its columns' texts joined by '|', as the command-line client prints it.
std::vector<std::string> QueryRows(const std::string &dbPath, const std::string &sql);
// Standard output of the sqlite3 command-line client run on the file with one command.
std::string RunSqliteCli(const std::string &dbPath, const std::string &command);
// The messages logged under kelvo-util that start with one of the prefixes.
std::vector<std::string> LoggedFailures(const std::vector<std::string> &prefixes = {"Insert error", "fail to"});

// A broadcast event as the middleware hands it over.
TCProgramData MakeEvent(const std::u16string &title, const std::u16string &text = u"",
                        unsigned int language = 0x656E67);
KelvoUtilProgramData RfRow(const std::string &title, const std::u16string &text = u"", unsigned short eventId = 1);
KelvoUtilProgramData MetaRow(const std::string &title, const std::string &desc = "", int activity = 0);
// Every field of a row, '|'-joined in the order of the programRF then programMETA-only columns.
std::string Fields(const KelvoUtilProgramData &row);

#endif
