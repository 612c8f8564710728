#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeDlog.h"
#include "FakeSystem.h"
#include "FakeTvs.h"
#include "UtilTestSupport.h"
#include "dataHandler.h"

using ::testing::ElementsAre;

namespace {
const std::string DAEMON_DATA = "/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/";

class RestoreTest : public UtilTest {
protected:
    void SetUp() override
    {
        UtilTest::SetUp();
        MakeDir(m_stick / "RestoreMWDB");
    }

    KelvoUtilDataHandler m_handler;
};

TEST_F(RestoreTest, CopiesDatabasesThenJsonIntoTheDaemonFolderAndLogsEachStatus)
{
    FakeSystem::SetStatus(256);
    m_handler.RestoreData(m_stick.Path());

    const std::string from = m_stick / "RestoreMWDB";
    const std::string dbCommand = "/usr/bin/cp -rf " + from + "/*.db " + DAEMON_DATA + ";sync";
    const std::string jsonCommand = "/usr/bin/cp -rf " + from + "/*.json " + DAEMON_DATA + ";sync";
    EXPECT_THAT(FakeSystem::Commands(), ElementsAre(dbCommand, jsonCommand));
    EXPECT_THAT(UtilLog(), ElementsAre("Start Restore Kelvo DB", "restoreCommand " + dbCommand, "restore return 256",
                                       "restoreCommand " + jsonCommand, "restore return 256"));
}

struct ClockCase {
    const char *name;
    const char *timeFile;  // null: no time.txt
    std::vector<long long> logged;
    bool clockSet;
    long long seconds;
};

class RestoreClock : public RestoreTest, public ::testing::WithParamInterface<ClockCase> {};

TEST_P(RestoreClock, ClockComesFromTheDumpFolderTimeFile)
{
    const ClockCase &c = GetParam();
    if (c.timeFile != nullptr) {
        MakeDir(m_stick / "DumpMWDB");
        WriteFile(m_stick / "DumpMWDB/time.txt", c.timeFile);
    }
    // A time stamp in the restore folder is not the one read.
    WriteFile(m_stick / "RestoreMWDB/time.txt", "1234\n");

    m_handler.RestoreData(m_stick.Path());

    std::vector<std::string> expectedLog;
    for (long long value : c.logged)
        expectedLog.push_back("restore time is " + std::to_string(value));
    std::vector<std::string> timeLog;
    for (const std::string &line : UtilLog())
        if (line.rfind("restore time is ", 0) == 0)
            timeLog.push_back(line);
    EXPECT_EQ(timeLog, expectedLog);

    std::vector<ClockSet> sets = FakeSystem::ClockSets();
    ASSERT_EQ(sets.size(), c.clockSet ? 1u : 0u);
    if (c.clockSet) {
        EXPECT_EQ(sets[0].seconds, c.seconds);
        EXPECT_EQ(sets[0].microseconds, 0);
        EXPECT_FALSE(sets[0].withTimeZone);
    }
}

INSTANTIATE_TEST_SUITE_P(
    TimeFiles, RestoreClock,
    ::testing::Values(ClockCase{"OneNumber", "1600000000\n", {1600000000}, true, 1600000000},
                      ClockCase{"NoNewline", "1600000000", {1600000000}, true, 1600000000},
                      ClockCase{"LastNumberWins", "5\n7 9\n", {5, 7, 9}, true, 9},
                      ClockCase{"EmptyFileSetsTheEpoch", "", {}, true, 0},
                      ClockCase{"NoTimeFileLeavesTheClock", nullptr, {}, false, 0}),
    [](const ::testing::TestParamInfo<ClockCase> &info) { return std::string(info.param.name); });

struct ResultCase {
    int tvsResult;
    bool restored;
};

class RestoreResult : public RestoreTest, public ::testing::WithParamInterface<ResultCase> {};

TEST_P(RestoreResult, TvsRestoreAloneDecides)
{
    FakeSystem::SetStatus(256);  // failing copies do not matter
    FakeTvs::SetRestoreResult(GetParam().tvsResult);
    EXPECT_EQ(m_handler.RestoreData(m_stick.Path()), GetParam().restored);
    EXPECT_THAT(FakeTvs::Calls(),
                ElementsAre("CreateUtil", "RestoreTVSData(" + m_stick / "RestoreMWDB" + ")", "Destroy(IUtil)"));
}

INSTANTIATE_TEST_SUITE_P(Results, RestoreResult,
                         ::testing::Values(ResultCase{1, true}, ResultCase{42, true}, ResultCase{0, false},
                                           ResultCase{-1, false}));

TEST_F(RestoreTest, NoTvsClientMeansFailure)
{
    FakeTvs::FailCreate(false, false, true);
    EXPECT_FALSE(m_handler.RestoreData(m_stick.Path()));
}
}  // namespace
