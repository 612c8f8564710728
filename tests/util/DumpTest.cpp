#include <filesystem>

#include "UtilTestSupport.h"
#include "dataHandler.h"
#include "tzplatform_config.h"

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
class DumpTest : public UtilTest {
protected:
    std::string Dump() const { return m_stick / "DumpMWDB"; }
    KelvoUtilDataHandler m_handler;
};

TEST_F(DumpTest, FolderIsMadeWithMode0750ThenEmptiedByOneShellCommand)
{
    m_handler.PrepareDumpDBFolder(Dump());
    EXPECT_EQ(fs::status(Dump()).permissions(), fs::perms(0750));
    FakeSystem::SetStatus(512);
    m_handler.PrepareDumpDBFolder(Dump());
    EXPECT_THAT(FakeSystem::Calls(), ElementsAre("/usr/bin/rm -rf " + Dump() + "/*;sync"));
    EXPECT_THAT(UtilLog(), ElementsAre("Make Dump DB Folder", "Dump db exist", "result_remove is 512"));
}

TEST_F(DumpTest, ChannelMapDumpIsRemovedThenRegenerated)
{
    WriteFile(RwApp() + "/tvs-chms/data/CHMS_Memory_Dump.sqlite", "old");
    m_handler.PrepareChannelDB();
    m_handler.PrepareChannelDB();
    EXPECT_THAT(UtilLog(), ElementsAre(" removing result is 0", " removing result is -1"));
    EXPECT_THAT(FakeTvs::Calls(), ElementsAre("WriteChannelMapMemoryDump", "WriteChannelMapMemoryDump"));
}

TEST_F(DumpTest, CopyIsOneCommandOfTwelveSourcesEndingInSync)
{
    const std::string app = "/opt/usr/home/owner/apps_rw", rw = RwApp(), db = DbSpace();
    std::string expected;
    for (const std::string &source :
         {app + "/com.halvorn.tv.kelvo-daemon/data/*", app + "/com.halvorn.tv.kelvo-daemon/shared/kelvo/data/*",
          rw + "/esg-service/data/*", rw + "/tvs-chms/data/*", rw + "/tvs-iss/data/*", rw + "/tvs-sospec/data/*",
          rw + "/tvs-guide/data/*", db + "/db-tvs-*", db + "/UpdateTransponderDataBase.sei", rw + "/reminder/data/*",
          app + "/org.tizen.content-tiles-provider/data/.preview.db", app + "/ContentServiceManager/data/*.db"})
        expected += "/usr/bin/cp -rf " + source + " " + Dump() + ";";
    expected += "sync";

    EXPECT_FALSE(m_handler.CopyFiles(Dump()));
    FakeSystem::SetStatus(256);
    EXPECT_TRUE(m_handler.CopyFiles(Dump()));
    EXPECT_THAT(FakeSystem::Calls(), ElementsAre(expected, expected));
    EXPECT_THAT(UtilLog(), ElementsAre("dump result=0,", "dump result=256,"));
}

TEST_F(DumpTest, MissingPlatformFolderEndsTheProcess)
{
    g_tzFolders.erase(TZ_SYS_DB);
    EXPECT_DEATH(m_handler.CopyFiles(Dump()), "");
}

TEST_F(DumpTest, CurrentTimeIsWholeSecondsAndZeroWhenTheClockFails)
{
    FakeSystem::SetNow(1600000000, 999999);
    long long now = -1;
    m_handler.GetCurrentTime(now);
    EXPECT_EQ(now, 1600000000);
    FakeSystem::FailGettimeofday();
    m_handler.GetCurrentTime(now);
    EXPECT_EQ(now, 0);
    EXPECT_THAT(UtilLog(), ElementsAre("UTC Current Time = 1600000000", "Fail getting current time by gettimeofday",
                                       "UTC Current Time = 0"));
}

// SafeFileOpen never writes through a link: the link goes, its target stays as it was.
struct OpenCase {
    const char *name;
    enum { Missing, Regular, Link, DanglingLink } entry;
    const char *logged;
};

class SafeFileOpen : public DumpTest, public ::testing::WithParamInterface<OpenCase> {};

TEST_P(SafeFileOpen, WritesARegularFileInPlace)
{
    const OpenCase &c = GetParam();
    const std::string path = m_stick / "time.txt", victim = m_tv / "victim";
    WriteFile(victim, "precious");
    if (c.entry == OpenCase::Regular)
        WriteFile(path, "old");
    if (c.entry == OpenCase::Link || c.entry == OpenCase::DanglingLink)
        fs::create_symlink(c.entry == OpenCase::Link ? victim : m_tv / "nowhere", path);

    FILE *fp = m_handler.SafeFileOpen(path.c_str(), "w");
    ASSERT_NE(fp, nullptr);
    fputs("new", fp);
    fclose(fp);

    EXPECT_FALSE(fs::is_symlink(path));
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_EQ(ReadFile(victim), "precious");
    EXPECT_FALSE(fs::exists(m_tv / "nowhere"));
    std::vector<std::string> expected = {"[SafeFileOpen] is called " + path + " w"};
    if (c.logged != nullptr)
        expected.push_back(c.logged);
    EXPECT_EQ(UtilLog(), expected);
}

INSTANTIATE_TEST_SUITE_P(Entries, SafeFileOpen,
                         ::testing::Values(OpenCase{"Missing", OpenCase::Missing, "[SafeFileOpen] no file exists"},
                                           OpenCase{"Regular", OpenCase::Regular, nullptr},
                                           OpenCase{"Link", OpenCase::Link, "[SafeFileOpen] is symbolic link."},
                                           OpenCase{"DanglingLink", OpenCase::DanglingLink,
                                                    "[SafeFileOpen] is symbolic link."}),
                         ByName());

TEST_F(DumpTest, FailedBackupLeavesTheTimeStampOnly)
{
    FakeTvs::SetBackupResult(0);
    FakeSystem::SetNow(4102444800LL);  // past 2^31: written in full
    EXPECT_FALSE(m_handler.BackupData(m_stick.Path()));

    EXPECT_THAT(UtilLog(),
                ElementsAre("Make Dump DB Folder", " removing result is -1", "Start Dump Kelvo DB",
                            "UTC Current Time = 4102444800", "[SafeFileOpen] is called " + Dump() + "/time.txt w",
                            "[SafeFileOpen] no file exists"));
    EXPECT_THAT(FakeTvs::Calls(), ElementsAre("WriteChannelMapMemoryDump", "BackupTVSData(" + Dump() + ")"));
    EXPECT_EQ(ReadFile(Dump() + "/time.txt"), "4102444800\n");
    EXPECT_THAT(RecordedDb::events, IsEmpty());
    EXPECT_THAT(FakeSystem::Calls(), IsEmpty());
}

// The copy takes the dump database along, so it must come after the database is closed.
TEST_F(DumpTest, SuccessfulBackupExportsBetweenOpenAndCloseThenCopies)
{
    FakeTvs::SetServices({{{12, 1001}, {13, 7}, {14, 1}, {1, 1}}});
    FakeTvs::SetGuide(1001, {{5}, {}});
    FakeSystem::SetHandler([](const std::string &command) {
        RecordedDb::events.push_back(command.substr(0, command.find(' ')));
        return 0;
    });
    EXPECT_TRUE(m_handler.BackupData(m_stick.Path()));
    EXPECT_THAT(RecordedDb::events, ElementsAre("OpenDB", "RF", "CloseDB", "/usr/bin/cp"));
}
}  // namespace
