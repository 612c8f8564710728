#include <gtest/gtest.h>

#include <fstream>
#include <sqlite3.h>
#include <sys/stat.h>

#include "DumpDbTestSupport.h"
#include "FCElementData.h"
#include "FakeDlog.h"
#include "TVServiceAPI.h"

namespace {

KelvoUtilProgramData RfRow(const std::u16string &title, const std::u16string &text = u"", unsigned short eventId = 1)
{
    TCProgramData event = MakeEvent(title, text);
    event.SetEventId(eventId);
    return KelvoUtilProgramData(&event);
}

KelvoUtilProgramData MetaRow(const std::string &title, const std::string &desc = "", int activity = 0)
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
    return KelvoUtilProgramData(program, 42ULL);
}

std::vector<std::string> Titles(const std::string &dbPath, const std::string &table)
{
    return QueryRows(dbPath, "SELECT title FROM " + table + " ORDER BY rowid");
}

class DatabaseHelper : public ::testing::Test {
protected:
    TempFolder m_temp;
    RelocatedDatabaseHelper m_helper{m_temp.Path() + "/data"};
};

// What a person sees with the command-line client on a freshly written file.
TEST_F(DatabaseHelper, FileReadsBackWithTheCommandLineClient)
{
    m_helper.OpenDB();
    m_helper.InsertProgramRF(RfRow(u"Bob's", u"it's 100%% live", 7));
    m_helper.InsertProgramRF(RfRow(u"\u00DCber \uB274\uC2A4 \U0001F3B5", u"\u65B0\u95FB"));
    m_helper.InsertProgramMeta(MetaRow("Bob's", "100%% sure", 65536 + 5));
    m_helper.CloseDB();

    EXPECT_EQ(RunSqliteCli(m_helper.DbPath(), ".schema"),
              "CREATE TABLE programRF(serviceId integer, eventId integer, starttime integer, duration integer, "
              "language text, tsid integer, onid integer, title text, descript text);\n"
              "CREATE TABLE programMETA(serviceId integer, actId integer, metaSrcId integer, metaProgId integer, "
              "starttime integer, duration integer, language text, title text, descript text);\n");
    EXPECT_EQ(RunSqliteCli(m_helper.DbPath(), "SELECT * FROM programRF ORDER BY rowid"),
              "1234605616436508552|7|1700000000|3600|eng|0|0|Bob\"s|it\"s 100% live\n"
              "1234605616436508552|1|1700000000|3600|eng|0|0|\xC3\x9C" "ber \xEB\x89\xB4\xEC\x8A\xA4 "
              "\xF0\x9F\x8E\xB5|\xE6\x96\xB0\xE9\x97\xBB\n");
    EXPECT_EQ(RunSqliteCli(m_helper.DbPath(), "SELECT * FROM programMETA"),
              "42|5|src\"1|prog-9|1700003600|1800|eng|Bob\"s|100% sure\n");
    EXPECT_EQ(RunSqliteCli(m_helper.DbPath(),
                           "SELECT typeof(serviceId), typeof(actId), typeof(metaSrcId), typeof(title) FROM programMETA"),
              "integer|integer|text|text\n");
}

// A title is broadcast or server text. Each conversion is consumed without reading an argument
// that does not exist (ASan and UBSan builds run this too); "%%" still arrives as "%".
TEST_F(DatabaseHelper, ConversionsInTitlesAreConsumedWithoutReadingArguments)
{
    const struct {
        const char *title;
        const char *stored;
    } cases[] = {
        {"plain", "plain"},
        {"100%%", "100%"},
        {"%%s and %%n", "%s and %n"},
        {"%%%s", "%"},
        {"a%sb", "ab"},
        {"%d%i%u%x%X%o%c%p", ""},
        {"x%ny%n", "xy"},
        {"%q%Q%w%z", ""},
        {"%f%e%g%G%E", ""},
        {"%lld|%llu|%ld|%lx", "|||"},
        {"%1$s", "s"},
        {"%*d|%.*s|%-*.*s|%*.*lld", "|||"},
        {"%10.5s|%-20s|%+d|%#x|%!.3f|%,d|%05d", "||||||"},
        {"100% sure", "100ure"},
        {"%5%", ""},
        {"%T%S%r", ""},
    };
    m_helper.OpenDB();
    for (const auto &c : cases) {
        m_helper.InsertProgramMeta(MetaRow(c.title, c.title));
    }
    m_helper.CloseDB();

    const std::vector<std::string> rows = QueryRows(m_helper.DbPath(), "SELECT title, descript FROM programMETA ORDER BY rowid");
    ASSERT_EQ(rows.size(), sizeof(cases) / sizeof(cases[0]));
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i], std::string(cases[i].stored) + "|" + cases[i].stored) << cases[i].title;
    }
}

// A '%' that ends a value runs into the closing quote: that row is lost, the others stay.
TEST_F(DatabaseHelper, AFailedStatementLosesItsRowOnly)
{
    m_helper.OpenDB();
    FakeDlog::Clear();
    m_helper.InsertProgramRF(RfRow(u"before"));
    m_helper.InsertProgramRF(RfRow(u"100%"));
    m_helper.ExecuteQuery("INSERT INTO noSuchTable VALUES (1)");
    m_helper.InsertProgramRF(RfRow(u"after"));
    m_helper.CloseDB();

    EXPECT_EQ(Titles(m_helper.DbPath(), "programRF"), (std::vector<std::string>{"before", "after"}));
    std::vector<std::string> outcomes;
    for (const std::string &message : FakeDlog::Messages("kelvo-util")) {
        if (message == "end" || message.rfind("Insert error", 0) == 0) {
            outcomes.push_back(message);
        }
    }
    EXPECT_EQ(outcomes, (std::vector<std::string>{"end", "Insert error, ret:1", "Insert error, ret:1", "end"}));
}

TEST_F(DatabaseHelper, RowsOfManyBatchesAreAllKept)
{
    const int kRows = 5003;
    m_helper.OpenDB();
    for (int i = 0; i < kRows; ++i) {
        const std::string title = "row " + std::to_string(i);
        if (i % 2 == 0) {
            m_helper.InsertProgramRF(RfRow(std::u16string(title.begin(), title.end()), u"d", static_cast<unsigned short>(i)));
        } else {
            m_helper.InsertProgramMeta(MetaRow(title, "d", i));
        }
        if (i == 2500) {
            m_helper.ExecuteQuery("INSERT INTO noSuchTable VALUES (1)");
        }
    }
    m_helper.CloseDB();

    EXPECT_EQ(QueryRows(m_helper.DbPath(), "PRAGMA integrity_check"), std::vector<std::string>{"ok"});
    const std::vector<std::string> rf = QueryRows(m_helper.DbPath(), "SELECT eventId, title FROM programRF ORDER BY rowid");
    const std::vector<std::string> meta = QueryRows(m_helper.DbPath(), "SELECT actId, title FROM programMETA ORDER BY rowid");
    ASSERT_EQ(rf.size(), 2502u);
    ASSERT_EQ(meta.size(), 2501u);
    for (int i = 0; i < kRows; ++i) {
        const std::string expected = std::to_string(i) + "|row " + std::to_string(i);
        EXPECT_EQ(i % 2 == 0 ? rf[i / 2] : meta[i / 2], expected);
    }
}

TEST_F(DatabaseHelper, MissingFolderChainIsCreatedWithMode0755)
{
    const mode_t previous = umask(022);
    RelocatedDatabaseHelper deep(m_temp.Path() + "/a/b/c");
    deep.OpenDB();
    deep.InsertProgramRF(RfRow(u"x"));
    deep.CloseDB();
    umask(previous);

    for (const char *folder : {"/a", "/a/b", "/a/b/c"}) {
        struct stat info;
        ASSERT_EQ(stat((m_temp.Path() + folder).c_str(), &info), 0) << folder;
        EXPECT_TRUE(S_ISDIR(info.st_mode)) << folder;
        EXPECT_EQ(info.st_mode & 07777, 0755u) << folder;
    }
    EXPECT_EQ(Titles(deep.DbPath(), "programRF"), std::vector<std::string>{"x"});
}

TEST_F(DatabaseHelper, EveryOpenStartsFromAnEmptyFile)
{
    m_helper.OpenDB();
    m_helper.InsertProgramRF(RfRow(u"old dump"));
    m_helper.InsertProgramMeta(MetaRow("old dump"));
    m_helper.CloseDB();
    m_helper.OpenDB();
    m_helper.InsertProgramRF(RfRow(u"new dump"));
    m_helper.CloseDB();
    EXPECT_EQ(Titles(m_helper.DbPath(), "programRF"), std::vector<std::string>{"new dump"});
    EXPECT_TRUE(Titles(m_helper.DbPath(), "programMETA").empty());

    // Whatever lay there before, even a file that is no database, is replaced.
    std::ofstream(m_helper.DbPath(), std::ios::trunc) << "not a database at all, just some text";
    m_helper.OpenDB();
    m_helper.InsertProgramMeta(MetaRow("fresh"));
    m_helper.CloseDB();
    EXPECT_EQ(Titles(m_helper.DbPath(), "programMETA"), std::vector<std::string>{"fresh"});
}

TEST_F(DatabaseHelper, InsertsWhileClosedAreSkippedSilently)
{
    FakeDlog::Clear();
    m_helper.InsertProgramRF(RfRow(u"too early"));
    m_helper.InsertProgramMeta(MetaRow("too early"));
    m_helper.CloseDB();
    struct stat info;
    EXPECT_NE(stat(m_helper.DbPath().c_str(), &info), 0) << "nothing may be written before OpenDB";

    m_helper.OpenDB();
    m_helper.InsertProgramRF(RfRow(u"kept"));
    m_helper.CloseDB();
    FakeDlog::Clear();
    m_helper.InsertProgramRF(RfRow(u"too late"));
    m_helper.InsertProgramMeta(MetaRow("too late"));
    m_helper.CloseDB();
    for (const std::string &message : FakeDlog::Messages("kelvo-util")) {
        EXPECT_TRUE(message.rfind("Insert error", 0) != 0 && message != "end" && message.rfind("query", 0) != 0)
            << message;
    }
    EXPECT_EQ(Titles(m_helper.DbPath(), "programRF"), std::vector<std::string>{"kept"});
    EXPECT_TRUE(Titles(m_helper.DbPath(), "programMETA").empty());
}

// The old file normally goes before the open; one that could not be removed and holds an index
// named programRF makes that table's CREATE fail, and programMETA must then not be created.
class UndeletableFileHelper : public KelvoUtilDatabaseHelper {
public:
    UndeletableFileHelper(const std::string &newFolder, const std::string &dbPath)
    {
        m_dbFolder = newFolder + "/";  // missing: no removal happens, only the folder is made
        m_dbPath = dbPath;
    }
};

TEST_F(DatabaseHelper, FailedProgramRfCreateSkipsProgramMeta)
{
    const std::string path = m_temp.Path() + "/old.db";
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE x(a); CREATE INDEX programRF ON x(a);", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);

    UndeletableFileHelper helper(m_temp.Path() + "/made", path);
    FakeDlog::Clear();
    helper.OpenDB();
    helper.InsertProgramMeta(MetaRow("lost"));
    helper.CloseDB();

    std::vector<std::string> failures;
    for (const std::string &message : FakeDlog::Messages("kelvo-util")) {
        if (message.rfind("fail to", 0) == 0 || message.rfind("Insert error", 0) == 0) {
            failures.push_back(message);
        }
    }
    EXPECT_EQ(failures, (std::vector<std::string>{"fail to sqlite3_exec - error:1", "Insert error, ret:1"}));
    EXPECT_EQ(QueryRows(path, "SELECT type || ' ' || name FROM sqlite_master ORDER BY name"),
              (std::vector<std::string>{"index programRF", "table x"}));
}

}  // namespace
