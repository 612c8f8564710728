#include "DumpDbTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "FCElementData.h"
#include "FakeDlog.h"

TempFolder::TempFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-dumpdb-XXXXXX").string();
    if (mkdtemp(&pattern[0]) == nullptr)
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

RelocatedDatabaseHelper::RelocatedDatabaseHelper(const std::string &folder, const std::string &dbPath)
{
    m_dbFolder = folder + "/";
    m_dbPath = dbPath.empty() ? m_dbFolder + "kelvoutilInfo.db" : dbPath;
}

std::string RunSqliteCli(const std::string &dbPath, const std::string &command)
{
    // Paths come from mkdtemp and commands from the tests: neither holds a double quote.
    const std::string line = std::string(KELVO_SQLITE3_CLI) + " \"" + dbPath + "\" \"" + command + "\"";
    FILE *pipe = popen(line.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + line);
    std::string output;
    char chunk[4096];
    for (size_t n; (n = fread(chunk, 1, sizeof(chunk), pipe)) > 0;)
        output.append(chunk, n);
    pclose(pipe);
    return output;
}

std::vector<std::string> QueryRows(const std::string &dbPath, const std::string &sql)
{
    std::vector<std::string> rows;
    std::istringstream lines(RunSqliteCli(dbPath, sql));
    for (std::string row; std::getline(lines, row);)
        rows.push_back(row);
    return rows;
}

std::vector<std::string> LoggedFailures(const std::vector<std::string> &prefixes)
{
    std::vector<std::string> failures;
    for (const std::string &message : FakeDlog::Messages("kelvo-util"))
        for (const std::string &prefix : prefixes)
            if (message.rfind(prefix, 0) == 0)
                failures.push_back(message);
    return failures;
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

KelvoUtilProgramData RfRow(const std::string &title, const std::u16string &text, unsigned short eventId)
{
    TCProgramData event = MakeEvent(std::u16string(title.begin(), title.end()), text);
    event.SetEventId(eventId);
    return KelvoUtilProgramData(&event);
}

KelvoUtilProgramData MetaRow(const std::string &title, const std::string &desc, int activity)
{
    FCRemoteProgram program;
    program.m_activityID = static_cast<eRemoteContentActivity>(activity);
    program.m_programSourceId = "src'1";
    program.m_programId = "prog-9";
    program.m_lang = "eng";
    program.m_utcStartTime = 1700003600UL;
    program.m_duration = 1800;
    program.m_title = title;
    program.m_desc = desc;
    program.m_shortDesc = "short";
    program.m_startTime = "not used";
    return KelvoUtilProgramData(program, 42ULL);
}

std::string Fields(const KelvoUtilProgramData &row)
{
    return std::to_string(row.ServiceId()) + "|" + std::to_string(row.EventId()) + "|" +
           std::to_string(row.Starttime()) + "|" + std::to_string(row.Duration()) + "|" + row.Language() + "|" +
           std::to_string(row.TSID()) + "|" + std::to_string(row.ONID()) + "|" + row.Title() + "|" + row.Description() +
           "|" + std::to_string(row.ActivityId()) + "|" + row.ProgramSourceId() + "|" + row.MetaProgramId();
}
