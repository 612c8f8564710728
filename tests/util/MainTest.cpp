// main() of kelvo-util, compiled under the name KelvoUtilMain for this executable: the branch it
// takes, and where the one notification falls among its own lines.
#include <algorithm>
#include <filesystem>

#include "UtilTestSupport.h"
#include "dlog.h"

int KelvoUtilMain();

namespace {
enum class Stick { None, RestoreFolder, RestoreFile, DumpOnly };

struct MainCase {
    const char *name;
    Stick stick;
    int tvsResult;                   // of the restore or the backup, whichever runs
    std::vector<std::string> steps;  // main's "kelvo-util ..." lines and Show's "EResultType ..." line
};

const char *const kStart = "kelvo-util run starts by activation .....";
const char *const kAttached = "kelvo-util 222 .....";
const char *const kEnd = "kelvo-util 666 .....";

class MainFlow : public UtilTest, public ::testing::WithParamInterface<MainCase> {};

TEST_P(MainFlow, BranchNotificationAndLogLines)
{
    const MainCase &c = GetParam();
    if (c.stick != Stick::None)
        FakeUsb::SetDevices({{m_stick.Path(), "/dev/sda1"}});
    if (c.stick == Stick::RestoreFolder)
        std::filesystem::create_directory(m_stick / "RestoreMWDB");
    if (c.stick == Stick::RestoreFile)
        WriteFile(m_stick / "RestoreMWDB", "");
    FakeTvs::SetRestoreResult(c.tvsResult);
    FakeTvs::SetBackupResult(c.tvsResult);

    EXPECT_EQ(KelvoUtilMain(), 0);

    std::vector<std::string> steps;
    for (const std::string &line : UtilLog())
        if (line.rfind("kelvo-util ", 0) == 0 || line.rfind("EResultType", 0) == 0)
            steps.push_back(line);
    EXPECT_EQ(steps, c.steps);
    const std::vector<std::string> calls = FakeNotification::Calls();
    const bool shown =
        std::any_of(c.steps.begin(), c.steps.end(), [](auto &s) { return s.rfind("EResultType", 0) == 0; });
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "notification_post(handle)"), shown ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Branches, MainFlow,
    ::testing::Values(
        MainCase{
            "NoDevice", Stick::None, 1, {kStart, "EResultType : [0], [ChannelMap Dump Fail]", "kelvo-util 111 ....."}},
        MainCase{"RestoreFolder",
                 Stick::RestoreFolder,
                 1,
                 {kStart, kAttached, "EResultType : [3], [Restore ChannelMap Success]", "kelvo-util 333.....", kEnd}},
        MainCase{"RestoreEntryAsFile",
                 Stick::RestoreFile,
                 1,
                 {kStart, kAttached, "EResultType : [3], [Restore ChannelMap Success]", "kelvo-util 333.....", kEnd}},
        MainCase{"RestoreFails",
                 Stick::RestoreFolder,
                 0,
                 {kStart, kAttached, "EResultType : [2], [Restore ChannelMap Fail]", "kelvo-util 444 .....", kEnd}},
        MainCase{"DumpSucceeds",
                 Stick::DumpOnly,
                 1,
                 {kStart, kAttached, "kelvo-util 555 .....", "EResultType : [1], [ChannelMap Dump Success]", kEnd}},
        MainCase{"DumpFailsSilently", Stick::DumpOnly, 0, {kStart, kAttached, kEnd}}),
    ByName());

// Log readers on the set look for the utility's lines in the system buffer at warning priority.
using MainLog = UtilTest;

TEST_F(MainLog, EveryLineOfARunGoesToTheSystemBufferAtWarningPriority)
{
    FakeUsb::SetDevices({{m_stick.Path(), "/dev/sda1"}});
    FakeTvs::SetServices({{{12, 1001}, {13, 7}, {14, 3}, {1, 1}}});
    FakeTvs::SetGuide(1001, {{5}, {}});
    KelvoUtilMain();
    const std::vector<DlogLine> lines = FakeDlog::Lines();
    ASSERT_GT(lines.size(), 20u);
    for (const DlogLine &line : lines) {
        if (line.tag != "kelvo-util")
            continue;
        EXPECT_EQ(line.logId, LOG_ID_SYSTEM) << line.text;
        EXPECT_EQ(line.prio, DLOG_WARN) << line.text;
    }
}
}  // namespace
