// Hostile sticks: mount paths that would break out of the shell commands, and links planted
// where the dump writes or the restore copies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeDlog.h"
#include "FakeSystem.h"
#include "FakeTvs.h"
#include "UtilTestSupport.h"
#include "dataHandler.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
struct HostileCase {
    const char *name;
    const char *tail;  // appended to a real folder, so that only the character decides
};

class MountPathGuard : public UtilTest, public ::testing::WithParamInterface<HostileCase> {
protected:
    std::string Mount() const { return m_stick.Path() + GetParam().tail; }
    bool LoggedRefusal() const
    {
        for (const std::string &line : UtilLog())
            if (line.find("refused") != std::string::npos)
                return true;
        return false;
    }
    KelvoUtilDataHandler m_handler;
};

TEST_P(MountPathGuard, RestoreFailsBeforeAnyCommand)
{
    EXPECT_FALSE(m_handler.RestoreData(Mount()));
    EXPECT_THAT(FakeSystem::Commands(), IsEmpty());
    EXPECT_THAT(FakeTvs::Calls(), IsEmpty());
    EXPECT_THAT(FakeSystem::ClockSets(), IsEmpty());
    EXPECT_TRUE(LoggedRefusal());
}

TEST_P(MountPathGuard, DumpFailsBeforeAnyCommandOrWrite)
{
    EXPECT_FALSE(m_handler.BackupData(Mount()));
    EXPECT_THAT(FakeSystem::Commands(), IsEmpty());
    EXPECT_THAT(FakeTvs::Calls(), IsEmpty());
    EXPECT_FALSE(IsDir(Mount() + "/DumpMWDB"));
    EXPECT_TRUE(LoggedRefusal());
}

INSTANTIATE_TEST_SUITE_P(
    Characters, MountPathGuard,
    ::testing::Values(HostileCase{"Semicolon", "/a;reboot"}, HostileCase{"Blank", "/my stick"},
                      HostileCase{"Dollar", "/$(reboot)"}, HostileCase{"Backquote", "/`reboot`"},
                      HostileCase{"Ampersand", "/a&reboot"}, HostileCase{"Pipe", "/a|reboot"},
                      HostileCase{"Newline", "/a\nreboot"}, HostileCase{"SingleQuote", "/a'b"},
                      HostileCase{"DoubleQuote", "/a\"b"}, HostileCase{"Star", "/*"},
                      HostileCase{"Redirect", "/a>b"}, HostileCase{"Tab", "/a\tb"},
                      HostileCase{"NonAscii", "/cl\xc3\xa9"}),
    [](const ::testing::TestParamInfo<HostileCase> &info) { return std::string(info.param.name); });

class GuardTest : public UtilTest {
protected:
    KelvoUtilDataHandler m_handler;
};

TEST_F(GuardTest, PlainMountPathCharactersPass)
{
    const std::string mount = m_stick / "USB_Drive-1.2+x";
    MakeDir(mount + "/RestoreMWDB");
    EXPECT_TRUE(m_handler.RestoreData(mount));
    EXPECT_EQ(FakeSystem::Commands().size(), 2u);
}

TEST_F(GuardTest, EmptyMountPathIsRefused)
{
    EXPECT_FALSE(m_handler.RestoreData(""));
    EXPECT_FALSE(m_handler.BackupData(""));
    EXPECT_THAT(FakeSystem::Commands(), IsEmpty());
    EXPECT_THAT(FakeTvs::Calls(), IsEmpty());
}

TEST_F(GuardTest, LinkAtDumpFolderBecomesARealFolder)
{
    const std::string elsewhere = m_tv / "elsewhere";
    MakeDir(elsewhere);
    WriteFile(elsewhere + "/keep", "precious");
    MakeLink(elsewhere, m_stick / "DumpMWDB");

    EXPECT_TRUE(m_handler.BackupData(m_stick.Path()));

    EXPECT_TRUE(IsDir(m_stick / "DumpMWDB"));
    EXPECT_EQ(ReadFile(elsewhere + "/keep"), "precious");
    EXPECT_FALSE(IsRegularFile(elsewhere + "/time.txt"));
    EXPECT_TRUE(IsRegularFile(m_stick / "DumpMWDB/time.txt"));
    // A fresh folder needs no emptying: the only command is the copy into it.
    ASSERT_EQ(FakeSystem::Commands().size(), 1u);
    EXPECT_EQ(FakeSystem::Commands()[0].rfind("/usr/bin/cp -rf ", 0), 0u);
}

// Dot-entries survive the emptying pattern; a link among them would redirect the copy of
// ".preview.db" (or anything written below it).
TEST_F(GuardTest, LinksLeftInTheEmptiedDumpFolderAreRemoved)
{
    const std::string dump = m_stick / "DumpMWDB";
    const std::string victim = m_tv / "victim";
    WriteFile(victim, "precious");
    MakeDir(dump + "/.hidden");
    MakeLink(victim, dump + "/.preview.db");
    MakeLink(victim, dump + "/.hidden/deep");
    WriteFile(dump + "/.keep", "dot-file");

    m_handler.PrepareDumpDBFolder(dump);

    EXPECT_FALSE(IsLink(dump + "/.preview.db"));
    EXPECT_FALSE(IsLink(dump + "/.hidden/deep"));
    EXPECT_EQ(ReadFile(dump + "/.keep"), "dot-file");
    EXPECT_EQ(ReadFile(victim), "precious");
}

TEST_F(GuardTest, CopiedLinksNeverStayInTheTargetFolder)
{
    TempDir target;
    const std::string from = m_stick / "RestoreMWDB";
    const std::string victim = m_tv / "victim";
    WriteFile(victim, "precious");
    MakeDir(from + "/nested.db");
    for (const char *name : {"a.db", "b.db", "c.json", ".hidden.db"}) {
        WriteFile(from + "/" + name, "");
    }
    // What cp -rf leaves in the target when b.db, c.json, .hidden.db and nested.db/inner are links.
    WriteFile(target / "a.db", "real");
    MakeLink(victim, target / "b.db");
    MakeLink(victim, target / "c.json");
    MakeLink(victim, target / ".hidden.db");
    MakeDir(target / "nested.db");
    MakeLink(victim, target / "nested.db/inner");

    KelvoUtilDataHandler::RemoveCopiedLinks(from, ".db", target.Path() + "/");

    EXPECT_EQ(ReadFile(target / "a.db"), "real");
    EXPECT_FALSE(IsLink(target / "b.db"));
    EXPECT_FALSE(IsLink(target / "nested.db/inner"));
    EXPECT_TRUE(IsDir(target / "nested.db"));
    EXPECT_TRUE(IsLink(target / "c.json"));      // not a name the *.db copy made
    EXPECT_TRUE(IsLink(target / ".hidden.db"));  // "*" skips dot-files, so cp never copied it
    EXPECT_EQ(ReadFile(victim), "precious");
}
}  // namespace
