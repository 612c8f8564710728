#include "DumpDbTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sqlite3.h>
#include <stdexcept>

#include "TVServiceAPI.h"

TempFolder::TempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-dumpdb-XXXXXX").string();
    if (mkdtemp(&pattern[0]) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    m_path = pattern;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

RelocatedDatabaseHelper::RelocatedDatabaseHelper(const std::string &folder)
{
    m_dbFolder = folder + "/";
    m_dbPath = m_dbFolder + "kelvoutilInfo.db";
}

std::vector<std::string> QueryRows(const std::string &dbPath, const std::string &sql)
{
    std::vector<std::string> rows;
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(dbPath.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        throw std::runtime_error("cannot open " + dbPath);
    }
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        std::string error = sqlite3_errmsg(db);
        sqlite3_close(db);
        throw std::runtime_error(error);
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
        std::string row;
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const unsigned char *text = sqlite3_column_text(statement, i);
            row += (i ? "|" : "") + (text ? std::string(reinterpret_cast<const char *>(text)) : "NULL");
        }
        rows.push_back(row);
    }
    sqlite3_finalize(statement);
    sqlite3_close(db);
    return rows;
}

std::string RunSqliteCli(const std::string &dbPath, const std::string &command)
{
    // Paths come from mkdtemp and commands from the tests: neither holds a double quote.
    const std::string line = std::string(KELVO_SQLITE3_CLI) + " \"" + dbPath + "\" \"" + command + "\"";
    FILE *pipe = popen(line.c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot run " + line);
    }
    std::string output;
    char chunk[4096];
    size_t n;
    while ((n = fread(chunk, 1, sizeof(chunk), pipe)) > 0) {
        output.append(chunk, n);
    }
    pclose(pipe);
    return output;
}

TCProgramData MakeEvent(const std::u16string &title, const std::u16string &text, unsigned int language)
{
    TCProgramData event;
    event.SetServiceId(0x1122334455667788ULL);
    event.SetEventId(4711);
    event.SetStartTime(1700000000U);
    event.SetDuration(3600U);
    event.SetLanguage(language);
    event.SetTitle(title);
    event.SetExtendedText(text);
    return event;
}
