// main() of kelvo-util, compiled under the name KelvoUtilMain for this executable.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "FakeDlog.h"
#include "FakeNotification.h"
#include "FakeSystem.h"
#include "FakeTvs.h"
#include "FakeUsb.h"
#include "UtilTestSupport.h"

int KelvoUtilMain();

using ::testing::ElementsAreArray;

namespace {
enum class Stick { None, RestoreFolder, RestoreFile, DumpOnly };

struct MainCase {
    const char *name;
    Stick stick;
    int tvsResult;          // of the restore or the backup, whichever runs
    const char *shown;      // content of the one notification, or null for none
    std::vector<std::string> steps;  // main's own "kelvo-util ..." lines
};

const char *const START = "kelvo-util run starts by activation .....";

class MainFlow : public UtilTest, public ::testing::WithParamInterface<MainCase> {};

std::vector<std::string> MainSteps()
{
    std::vector<std::string> steps;
    for (const std::string &line : UtilLog())
        if (line.rfind("kelvo-util ", 0) == 0)
            steps.push_back(line);
    return steps;
}

TEST_P(MainFlow, BranchNotificationAndLogLines)
{
    const MainCase &c = GetParam();
    if (c.stick != Stick::None)
        FakeUsb::SetDevices({{true, m_stick.Path(), "/dev/sda1"}});
    if (c.stick == Stick::RestoreFolder)
        MakeDir(m_stick / "RestoreMWDB");
    if (c.stick == Stick::RestoreFile)
        WriteFile(m_stick / "RestoreMWDB", "");
    FakeTvs::SetRestoreResult(c.tvsResult);
    FakeTvs::SetBackupResult(c.tvsResult);

    EXPECT_EQ(KelvoUtilMain(), 0);

    EXPECT_THAT(MainSteps(), ElementsAreArray(c.steps));
    if (c.shown == nullptr) {
        EXPECT_TRUE(FakeNotification::Calls().empty());
        return;
    }
    ASSERT_EQ(FakeNotification::Posted().size(), 1u);
    EXPECT_EQ(FakeNotification::Posted()[0].content, c.shown);
}

INSTANTIATE_TEST_SUITE_P(
    Branches, MainFlow,
    ::testing::Values(
        MainCase{"NoDevice", Stick::None, 1, "ChannelMap Dump Fail", {START, "kelvo-util 111 ....."}},
        MainCase{"RestoreFolderSucceeds", Stick::RestoreFolder, 1, "Restore ChannelMap Success",
                 {START, "kelvo-util 222 .....", "kelvo-util 333.....", "kelvo-util 666 ....."}},
        MainCase{"RestoreEntryAsFile", Stick::RestoreFile, 1, "Restore ChannelMap Success",
                 {START, "kelvo-util 222 .....", "kelvo-util 333.....", "kelvo-util 666 ....."}},
        MainCase{"RestoreFails", Stick::RestoreFolder, 0, "Restore ChannelMap Fail",
                 {START, "kelvo-util 222 .....", "kelvo-util 444 .....", "kelvo-util 666 ....."}},
        MainCase{"DumpSucceeds", Stick::DumpOnly, 1, "ChannelMap Dump Success",
                 {START, "kelvo-util 222 .....", "kelvo-util 555 .....", "kelvo-util 666 ....."}},
        MainCase{"DumpFailsSilently", Stick::DumpOnly, 0, nullptr,
                 {START, "kelvo-util 222 .....", "kelvo-util 666 ....."}}),
    [](const ::testing::TestParamInfo<MainCase> &info) { return std::string(info.param.name); });

// Show starts with its "m_notihandle" line, which places the notification among main's lines.
int ShowIndex()
{
    std::vector<std::string> log = UtilLog();
    for (size_t i = 0; i < log.size(); ++i)
        if (log[i].rfind("m_notihandle:[", 0) == 0)
            return static_cast<int>(i);
    return -1;
}

class MainOrder : public UtilTest {};

TEST_F(MainOrder, RestoreShowsBeforeItsLineAndDumpAfterIt)
{
    FakeUsb::SetDevices({{true, m_stick.Path(), "/dev/sda1"}});
    MakeDir(m_stick / "RestoreMWDB");
    KelvoUtilMain();
    EXPECT_LT(ShowIndex(), LogIndex("kelvo-util 333....."));
    EXPECT_GT(ShowIndex(), LogIndex("kelvo-util 222 ....."));

    SetUp();
    std::filesystem::remove_all(m_stick / "RestoreMWDB");
    FakeUsb::SetDevices({{true, m_stick.Path(), "/dev/sda1"}});
    KelvoUtilMain();
    EXPECT_GT(ShowIndex(), LogIndex("kelvo-util 555 ....."));
    EXPECT_LT(ShowIndex(), LogIndex("kelvo-util 666 ....."));
}

TEST_F(MainOrder, NoDeviceShowsBeforeItsLineAndTouchesNothingElse)
{
    KelvoUtilMain();
    EXPECT_LT(ShowIndex(), LogIndex("kelvo-util 111 ....."));
    EXPECT_TRUE(FakeTvs::Calls().empty());
    EXPECT_TRUE(FakeSystem::Commands().empty());
}
}  // namespace
