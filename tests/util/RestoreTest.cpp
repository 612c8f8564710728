#include <filesystem>

#include "UtilTestSupport.h"
#include "dataHandler.h"

using ::testing::ElementsAre;

namespace {
const std::string kDaemonData = "/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/";

class RestoreTest : public UtilTest {
protected:
    void SetUp() override
    {
        UtilTest::SetUp();
        std::filesystem::create_directory(m_stick / "RestoreMWDB");
    }

    // The lines of these calls or log messages that start with prefix.
    static std::vector<std::string> Starting(const std::vector<std::string> &lines, const std::string &prefix)
    {
        std::vector<std::string> found;
        for (const std::string &line : lines)
            if (line.rfind(prefix, 0) == 0)
                found.push_back(line);
        return found;
    }

    KelvoUtilDataHandler m_handler;
};

TEST_F(RestoreTest, CopiesDatabasesThenJsonIntoTheDaemonFolderThenAsksTheMiddleware)
{
    FakeSystem::SetStatus(256);
    m_handler.RestoreData(m_stick.Path());

    const std::string from = m_stick / "RestoreMWDB";
    const std::string db = "/usr/bin/cp -rf " + from + "/*.db " + kDaemonData + ";sync";
    const std::string json = "/usr/bin/cp -rf " + from + "/*.json " + kDaemonData + ";sync";
    EXPECT_THAT(FakeSystem::Calls(), ElementsAre(db, json));
    EXPECT_THAT(UtilLog(), ElementsAre("Start Restore Kelvo DB", "restoreCommand " + db, "restore return 256",
                                       "restoreCommand " + json, "restore return 256"));
    EXPECT_THAT(FakeTvs::Calls(), ElementsAre("RestoreTVSData(" + from + ")"));
}

struct ClockCase {
    const char *name;
    const char *timeFile;  // null: no time.txt
    std::vector<std::string> logged;
    std::vector<std::string> clock;
};

class RestoreClock : public RestoreTest, public ::testing::WithParamInterface<ClockCase> {};

TEST_P(RestoreClock, ClockComesFromTheDumpFolderTimeFile)
{
    const ClockCase &c = GetParam();
    if (c.timeFile != nullptr) {
        std::filesystem::create_directory(m_stick / "DumpMWDB");
        WriteFile(m_stick / "DumpMWDB/time.txt", c.timeFile);
    }
    WriteFile(m_stick / "RestoreMWDB/time.txt", "1234\n");  // not the one read

    m_handler.RestoreData(m_stick.Path());

    EXPECT_EQ(Starting(UtilLog(), "restore time is "), c.logged);
    EXPECT_EQ(Starting(FakeSystem::Calls(), "settimeofday"), c.clock);
}

INSTANTIATE_TEST_SUITE_P(
    TimeFiles, RestoreClock,
    ::testing::Values(
        ClockCase{"OneNumber", "1600000000\n", {"restore time is 1600000000"}, {"settimeofday 1600000000 0"}},
        ClockCase{"NoNewline", "1600000000", {"restore time is 1600000000"}, {"settimeofday 1600000000 0"}},
        ClockCase{"LastNumberWins",
                  "5\n7 9\n",
                  {"restore time is 5", "restore time is 7", "restore time is 9"},
                  {"settimeofday 9 0"}},
        ClockCase{"EmptyFileSetsTheEpoch", "", {}, {"settimeofday 0 0"}},
        ClockCase{"NoTimeFileLeavesTheClock", nullptr, {}, {}}),
    ByName());

// Restore and dump alike: the middleware's answer decides, not the copies.
struct ResultCase {
    int tvsResult;
    bool noClient;
    bool ok;
};

class MiddlewareResult : public RestoreTest, public ::testing::WithParamInterface<ResultCase> {};

TEST_P(MiddlewareResult, AloneDecidesTheOutcome)
{
    FakeSystem::SetStatus(256);
    FakeTvs::SetRestoreResult(GetParam().tvsResult);
    FakeTvs::SetBackupResult(GetParam().tvsResult);
    if (GetParam().noClient)
        FakeTvs::FailCreateUtil();
    EXPECT_EQ(m_handler.RestoreData(m_stick.Path()), GetParam().ok);
    EXPECT_EQ(m_handler.BackupData(m_stick.Path()), GetParam().ok);
}

INSTANTIATE_TEST_SUITE_P(Results, MiddlewareResult,
                         ::testing::Values(ResultCase{1, false, true}, ResultCase{42, false, true},
                                           ResultCase{0, false, false}, ResultCase{-1, false, false},
                                           ResultCase{1, true, false}));
}  // namespace
