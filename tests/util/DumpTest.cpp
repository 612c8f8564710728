#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "FakeDlog.h"
#include "FakeSystem.h"
#include "FakeTvs.h"
#include "RecordingDatabaseHelper.h"
#include "ScriptedTzplatform.h"
#include "UtilTestSupport.h"
#include "dataHandler.h"
#include "tzplatform_config.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
class DumpTest : public UtilTest {
protected:
    std::string Dump() const { return m_stick / "DumpMWDB"; }
    KelvoUtilDataHandler m_handler;
};

TEST_F(DumpTest, ExistingFolderIsEmptiedByOneShellCommand)
{
    MakeDir(Dump());
    FakeSystem::SetStatus(512);
    m_handler.PrepareDumpDBFolder(Dump());
    EXPECT_THAT(FakeSystem::Commands(), ElementsAre("/usr/bin/rm -rf " + Dump() + "/*;sync"));
    EXPECT_THAT(UtilLog(), ElementsAre("Dump db exist", "result_remove is 512"));
}

TEST_F(DumpTest, MissingFolderIsMadeWithMode0750)
{
    m_handler.PrepareDumpDBFolder(Dump());
    EXPECT_THAT(FakeSystem::Commands(), IsEmpty());
    EXPECT_THAT(UtilLog(), ElementsAre("Make Dump DB Folder"));
    struct stat st;
    ASSERT_EQ(stat(Dump().c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0750u);
}

TEST_F(DumpTest, ChannelMapDumpIsRemovedThenRegenerated)
{
    const std::string memoryDump = RwApp() + "/tvs-chms/data/CHMS_Memory_Dump.sqlite";
    WriteFile(memoryDump, "old");
    m_handler.PrepareChannelDB();
    EXPECT_FALSE(IsRegularFile(memoryDump));
    EXPECT_THAT(UtilLog(), ElementsAre(" removing result is 0"));
    EXPECT_THAT(FakeTvs::Calls(), ElementsAre("CreateService", "WriteChannelMapMemoryDump", "Destroy(IService)"));

    FakeDlog::Clear();
    m_handler.PrepareChannelDB();
    EXPECT_THAT(UtilLog(), ElementsAre(" removing result is -1"));
}

TEST_F(DumpTest, CopyIsOneCommandOfTwelveSourcesEndingInSync)
{
    const std::string app = "/opt/usr/home/owner/apps_rw";
    const std::string rw = RwApp();
    const std::string db = DbSpace();
    const std::string to = Dump();
    const std::string expected =
        "/usr/bin/cp -rf " + app + "/com.halvorn.tv.kelvo-daemon/data/* " + to + ";" +
        "/usr/bin/cp -rf " + app + "/com.halvorn.tv.kelvo-daemon/shared/kelvo/data/* " + to + ";" +
        "/usr/bin/cp -rf " + rw + "/esg-service/data/* " + to + ";" +
        "/usr/bin/cp -rf " + rw + "/tvs-chms/data/* " + to + ";" +
        "/usr/bin/cp -rf " + rw + "/tvs-iss/data/* " + to + ";" +
        "/usr/bin/cp -rf " + rw + "/tvs-sospec/data/* " + to + ";" +
        "/usr/bin/cp -rf " + rw + "/tvs-guide/data/* " + to + ";" +
        "/usr/bin/cp -rf " + db + "/db-tvs-* " + to + ";" +
        "/usr/bin/cp -rf " + db + "/UpdateTransponderDataBase.sei " + to + ";" +
        "/usr/bin/cp -rf " + rw + "/reminder/data/* " + to + ";" +
        "/usr/bin/cp -rf " + app + "/org.tizen.content-tiles-provider/data/.preview.db " + to + ";" +
        "/usr/bin/cp -rf " + app + "/ContentServiceManager/data/*.db " + to + ";" + "sync";

    EXPECT_FALSE(m_handler.CopyFiles(to));
    EXPECT_THAT(FakeSystem::Commands(), ElementsAre(expected));
    EXPECT_THAT(UtilLog(), ElementsAre("dump result=0,"));

    FakeDlog::Clear();
    FakeSystem::SetStatus(256);
    EXPECT_TRUE(m_handler.CopyFiles(to));
    EXPECT_THAT(UtilLog(), ElementsAre("dump result=256,"));
}

using DumpDeathTest = DumpTest;

TEST_F(DumpDeathTest, MissingPlatformFolderEndsTheProcess)
{
    ScriptedTzplatform::SetNull(TZ_SYS_DB);
    EXPECT_DEATH(m_handler.CopyFiles(Dump()), "");
    EXPECT_THAT(FakeSystem::Commands(), IsEmpty());
    ScriptedTzplatform::Set(TZ_SYS_DB, DbSpace());
    ScriptedTzplatform::SetNull(TZ_SYS_RW_APP);
    EXPECT_DEATH(m_handler.PrepareChannelDB(), "");
}

TEST_F(DumpTest, CurrentTimeIsWholeSecondsEvenWhenTheClockFails)
{
    FakeSystem::SetNow(1600000000, 999999);
    long long now = -1;
    m_handler.GetCurrentTime(now);
    EXPECT_EQ(now, 1600000000);
    EXPECT_THAT(UtilLog(), ElementsAre("UTC Current Time = 1600000000"));

    FakeDlog::Clear();
    FakeSystem::FailGettimeofday();
    m_handler.GetCurrentTime(now);
    EXPECT_EQ(now, 0);
    EXPECT_THAT(UtilLog(), ElementsAre("Fail getting current time by gettimeofday", "UTC Current Time = 0"));
}

TEST_F(DumpTest, TimestampIsOneDecimalLine)
{
    MakeDir(Dump());
    FakeSystem::SetNow(4102444800LL);  // past 2^31: written in full
    m_handler.MakeTimestampFile(Dump());
    EXPECT_EQ(ReadFile(Dump() + "/time.txt"), "4102444800\n");
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
    const std::string path = m_stick / "time.txt";
    const std::string victim = m_tv / "victim";
    WriteFile(victim, "precious");
    if (c.entry == OpenCase::Regular)
        WriteFile(path, "old");
    if (c.entry == OpenCase::Link)
        MakeLink(victim, path);
    if (c.entry == OpenCase::DanglingLink)
        MakeLink(m_tv / "nowhere", path);

    FILE *fp = m_handler.SafeFileOpen(path.c_str(), "w");
    ASSERT_NE(fp, nullptr);
    fputs("new", fp);
    fclose(fp);

    EXPECT_TRUE(IsRegularFile(path));
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_EQ(ReadFile(victim), "precious");
    EXPECT_FALSE(IsRegularFile(m_tv / "nowhere"));
    std::vector<std::string> expected = {"[SafeFileOpen] is called " + path + " w"};
    if (c.logged != nullptr)
        expected.push_back(c.logged);
    EXPECT_EQ(UtilLog(), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Entries, SafeFileOpen,
    ::testing::Values(OpenCase{"Missing", OpenCase::Missing, "[SafeFileOpen] no file exists"},
                      OpenCase{"Regular", OpenCase::Regular, nullptr},
                      OpenCase{"Link", OpenCase::Link, "[SafeFileOpen] is symbolic link."},
                      OpenCase{"DanglingLink", OpenCase::DanglingLink, "[SafeFileOpen] is symbolic link."}),
    [](const ::testing::TestParamInfo<OpenCase> &info) { return std::string(info.param.name); });

TEST_F(DumpTest, FailedBackupStopsBeforeExportAndCopy)
{
    FakeTvs::SetBackupResult(0);
    EXPECT_FALSE(m_handler.BackupData(m_stick.Path()));

    EXPECT_THAT(FakeTvs::Calls(), ElementsAre("CreateService", "WriteChannelMapMemoryDump", "Destroy(IService)",
                                              "CreateUtil", "BackupTVSData(" + Dump() + ")", "Destroy(IUtil)"));
    EXPECT_THAT(RecordedDb::Events(), IsEmpty());
    EXPECT_THAT(FakeSystem::Commands(), IsEmpty());
    EXPECT_TRUE(IsDir(Dump()));
    EXPECT_EQ(ReadFile(Dump() + "/time.txt"), "1700000000\n");
    EXPECT_LT(LogIndex(" removing result is -1"), LogIndex("Start Dump Kelvo DB"));
    EXPECT_LT(LogIndex("Start Dump Kelvo DB"), LogIndex("UTC Current Time = 1700000000"));
}

struct BackupCase {
    int tvsResult;
    int copyStatus;
    bool dumped;
};

class BackupResult : public DumpTest, public ::testing::WithParamInterface<BackupCase> {};

TEST_P(BackupResult, TvsBackupAloneDecides)
{
    FakeTvs::SetBackupResult(GetParam().tvsResult);
    FakeSystem::SetStatus(GetParam().copyStatus);
    EXPECT_EQ(m_handler.BackupData(m_stick.Path()), GetParam().dumped);
}

INSTANTIATE_TEST_SUITE_P(Results, BackupResult,
                         ::testing::Values(BackupCase{1, 0, true}, BackupCase{1, 256, true}, BackupCase{7, 0, true},
                                           BackupCase{0, 0, false}, BackupCase{-1, 0, false}));

TEST_F(DumpTest, SuccessfulBackupExportsBetweenOpenAndCloseThenCopies)
{
    MakeDir(Dump());
    FakeTvs::SetServices({{false, {{12, 1001}, {13, 7}, {14, 1}, {1, 1}}}});
    FakeTvs::SetGuide(1001, {{{false, 5, 1700000100, 600, 0x656E67, u"News", u""}}});
    bool copiedAfterClose = false;
    FakeSystem::SetHandler([&](const std::string &command) {
        if (command.rfind("/usr/bin/cp", 0) == 0)
            copiedAfterClose = RecordedDb::Events().back() == "CloseDB";
        return 0;
    });

    EXPECT_TRUE(m_handler.BackupData(m_stick.Path()));

    EXPECT_THAT(RecordedDb::Events(), ElementsAre("OpenDB", "RF", "CloseDB"));
    ASSERT_EQ(FakeSystem::Commands().size(), 2u);
    EXPECT_EQ(FakeSystem::Commands()[0], "/usr/bin/rm -rf " + Dump() + "/*;sync");
    EXPECT_TRUE(copiedAfterClose);
    EXPECT_LT(LogIndex("Start to Backup ProgramData of RF channels"), LogIndex("Start to Backup ProgramData of Meta"));
}
}  // namespace
