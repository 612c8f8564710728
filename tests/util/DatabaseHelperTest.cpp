// The dump database file, read back as a person would: with the command-line client.
#include <gtest/gtest.h>

#include <fstream>
#include <sqlite3.h>
#include <sys/stat.h>

#include "DumpDbTestSupport.h"
#include "FakeDlog.h"

namespace {

class DatabaseHelper : public ::testing::Test {
protected:
    std::vector<std::string> Titles(const std::string &table, const std::string &db = "")
    {
        return QueryRows(db.empty() ? m_helper.DbPath() : db, "SELECT title FROM " + table + " ORDER BY rowid");
    }
    TempFolder m_temp;
    RelocatedDatabaseHelper m_helper{m_temp.Path() + "/data"};
};

using Texts = std::vector<std::string>;

TEST_F(DatabaseHelper, FileReadsBackWithTheCommandLineClient)
{
    TCProgramData unicode = MakeEvent(u"\u00DCber \uB274\uC2A4 \U0001F3B5", u"\u65B0\u95FB");
    m_helper.OpenDB();
    m_helper.InsertProgramRF(RfRow("Bob's", u"it's 100%% live", 7));
    m_helper.InsertProgramRF(KelvoUtilProgramData(&unicode));
    m_helper.InsertProgramMeta(MetaRow("Bob's", "100%% sure", 65536 + 5));
    m_helper.CloseDB();

    EXPECT_EQ(RunSqliteCli(m_helper.DbPath(), ".schema"),
              "CREATE TABLE programRF(serviceId integer, eventId integer, starttime integer, duration integer, "
              "language text, tsid integer, onid integer, title text, descript text);\n"
              "CREATE TABLE programMETA(serviceId integer, actId integer, metaSrcId integer, metaProgId integer, "
              "starttime integer, duration integer, language text, title text, descript text);\n");
    EXPECT_EQ(RunSqliteCli(m_helper.DbPath(), "SELECT * FROM programRF ORDER BY rowid"),
              "1234605616436508552|7|1700000000|3600|eng|0|0|Bob\"s|it\"s 100% live\n"
              "1234605616436508552|4711|1700000000|3600|eng|0|0|\xC3\x9C"
              "ber \xEB\x89\xB4\xEC\x8A\xA4 "
              "\xF0\x9F\x8E\xB5|\xE6\x96\xB0\xE9\x97\xBB\n");
    EXPECT_EQ(RunSqliteCli(m_helper.DbPath(), "SELECT * FROM programMETA"),
              "42|5|src\"1|prog-9|1700003600|1800|eng|Bob\"s|100% sure\n");
    EXPECT_EQ(
        RunSqliteCli(m_helper.DbPath(),
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
        {"%*d|%.*s|%-*.*s|%*.*lld", "|||"},
        {"%10.5s|%-20s|%+d|%#x|%!.3f|%,d|%05d", "||||||"},
        {"100% sure", "100ure"},
        {"%5%", "    %"},
        {"%T%S%r", ""},
    };
    Texts expected;
    m_helper.OpenDB();
    for (const auto &c : cases) {
        m_helper.InsertProgramMeta(MetaRow(c.title, c.title));
        expected.push_back(std::string(c.stored) + "|" + c.stored);
    }
    m_helper.CloseDB();
    EXPECT_EQ(QueryRows(m_helper.DbPath(), "SELECT title, descript FROM programMETA ORDER BY rowid"), expected);
}

// A '%' that ends a value runs into the closing quote: that row is lost, the others stay, across
// batches too; inserts while the file is closed do nothing and log nothing.
TEST_F(DatabaseHelper, AFailedStatementLosesItsRowOnly)
{
    FakeDlog::Clear();
    m_helper.InsertProgramRF(RfRow("too early"));
    m_helper.CloseDB();
    EXPECT_TRUE(LoggedFailures({"end", "Insert error", "query"}).empty());
    struct stat info;
    EXPECT_NE(stat(m_helper.DbPath().c_str(), &info), 0) << "nothing may be written before OpenDB";
    m_helper.OpenDB();
    FakeDlog::Clear();
    m_helper.InsertProgramRF(RfRow("before"));
    m_helper.InsertProgramRF(RfRow("100%"));
    m_helper.ExecuteQuery("INSERT INTO noSuchTable VALUES (1)");
    m_helper.InsertProgramRF(RfRow("after"));
    m_helper.CloseDB();
    m_helper.InsertProgramMeta(MetaRow("too late"));
    m_helper.CloseDB();
    EXPECT_EQ(Titles("programRF"), (Texts{"before", "after"}));
    EXPECT_TRUE(Titles("programMETA").empty());
    EXPECT_EQ(LoggedFailures({"end", "Insert error"}),
              (Texts{"end", "Insert error, ret:1", "Insert error, ret:1", "end"}));

    const int kRows = 5003;
    m_helper.OpenDB();
    for (int i = 0; i < kRows; ++i) {
        const std::string title = "row " + std::to_string(i);
        if (i % 2 == 0)
            m_helper.InsertProgramRF(RfRow(title, u"d", static_cast<unsigned short>(i)));
        else
            m_helper.InsertProgramMeta(MetaRow(title, "d", i));
        if (i == 2500)
            m_helper.ExecuteQuery("INSERT INTO noSuchTable VALUES (1)");
    }
    m_helper.CloseDB();
    EXPECT_EQ(QueryRows(m_helper.DbPath(), "PRAGMA integrity_check"), Texts{"ok"});
    Texts rf, meta;
    for (int i = 0; i < kRows; ++i)
        (i % 2 == 0 ? rf : meta).push_back(std::to_string(i) + "|row " + std::to_string(i));
    EXPECT_EQ(QueryRows(m_helper.DbPath(), "SELECT eventId, title FROM programRF ORDER BY rowid"), rf);
    EXPECT_EQ(QueryRows(m_helper.DbPath(), "SELECT actId, title FROM programMETA ORDER BY rowid"), meta);
}

TEST_F(DatabaseHelper, EveryOpenStartsAFreshFileInAFolderChainOfMode0755)
{
    const mode_t previous = umask(022);
    RelocatedDatabaseHelper deep(m_temp.Path() + "/a/b/c");
    for (const char *title : {"old dump", "new dump"}) {
        deep.OpenDB();
        deep.InsertProgramRF(RfRow(title));
        deep.InsertProgramMeta(MetaRow("old dump"));
        deep.CloseDB();
    }
    umask(previous);
    for (const char *folder : {"/a", "/a/b", "/a/b/c"}) {
        struct stat info;
        ASSERT_EQ(stat((m_temp.Path() + folder).c_str(), &info), 0) << folder;
        EXPECT_EQ(info.st_mode & (S_IFMT | 07777), S_IFDIR | 0755u) << folder;
    }
    EXPECT_EQ(Titles("programRF", deep.DbPath()), Texts{"new dump"});
    EXPECT_EQ(Titles("programMETA", deep.DbPath()), Texts{"old dump"});

    // Whatever lay there before, even a file that is no database, is replaced.
    std::ofstream(deep.DbPath(), std::ios::trunc) << "not a database at all, just some text";
    deep.OpenDB();
    deep.InsertProgramMeta(MetaRow("fresh"));
    deep.CloseDB();
    EXPECT_EQ(Titles("programMETA", deep.DbPath()), Texts{"fresh"});
}

// The old file normally goes before the open; one that could not be removed (its folder given is
// missing: only the folder is made) and holds an index named programRF makes that table's CREATE
// fail, and programMETA must then not be created.
TEST_F(DatabaseHelper, FailedProgramRfCreateSkipsProgramMeta)
{
    const std::string path = m_temp.Path() + "/old.db";
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE x(a); CREATE INDEX programRF ON x(a);", nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);

    RelocatedDatabaseHelper helper(m_temp.Path() + "/made", path);
    FakeDlog::Clear();
    helper.OpenDB();
    helper.InsertProgramMeta(MetaRow("lost"));
    helper.CloseDB();
    EXPECT_EQ(LoggedFailures(), (Texts{"fail to sqlite3_exec - error:1", "Insert error, ret:1"}));
    EXPECT_EQ(QueryRows(path, "SELECT type || ' ' || name FROM sqlite_master ORDER BY name"),
              (Texts{"index programRF", "table x"}));
}

}  // namespace
