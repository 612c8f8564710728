// Hostile sticks: mount paths that would break out of the shell commands, and links planted
// where the dump writes or where the restore's copies land.
#include <algorithm>
#include <filesystem>

#include "UtilTestSupport.h"
#include "dataHandler.h"

namespace fs = std::filesystem;

namespace {
struct MountCase {
    const char *name;
    const char *tail;  // appended to a real folder, so that only the characters decide; "": an empty path
    bool refused;
};

class MountPathGuard : public UtilTest, public ::testing::WithParamInterface<MountCase> {};

TEST_P(MountPathGuard, BothBranchesRefuseBeforeAnyCommandOrWrite)
{
    const MountCase &c = GetParam();
    const std::string mount = *c.tail != '\0' ? m_stick.Path() + c.tail : "";
    if (!mount.empty())
        fs::create_directories(mount);
    KelvoUtilDataHandler handler;

    EXPECT_EQ(handler.RestoreData(mount), !c.refused);
    EXPECT_EQ(handler.BackupData(mount), !c.refused);

    EXPECT_EQ(fs::exists(mount + "/DumpMWDB"), !c.refused);
    EXPECT_EQ(FakeSystem::Calls().empty(), c.refused);
    EXPECT_EQ(FakeTvs::Calls().empty(), c.refused);
    const std::vector<std::string> log = UtilLog();
    EXPECT_EQ(std::count_if(log.begin(), log.end(), [](auto &line) { return line.find("refused") != line.npos; }),
              c.refused ? 2 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    Characters, MountPathGuard,
    ::testing::Values(MountCase{"Semicolon", "/a;reboot", true}, MountCase{"Blank", "/my stick", true},
                      MountCase{"Dollar", "/$(reboot)", true}, MountCase{"Backquote", "/`reboot`", true},
                      MountCase{"Ampersand", "/a&reboot", true}, MountCase{"Pipe", "/a|reboot", true},
                      MountCase{"Newline", "/a\nreboot", true}, MountCase{"SingleQuote", "/a'b", true},
                      MountCase{"DoubleQuote", "/a\"b", true}, MountCase{"Star", "/*", true},
                      MountCase{"Redirect", "/a>b", true}, MountCase{"Tab", "/a\tb", true},
                      MountCase{"NonAscii", "/cl\xc3\xa9", true}, MountCase{"Empty", "", true},
                      MountCase{"PlainCharactersPass", "/USB_Drive-1.2+x", false}),
    ByName());

class LinkGuard : public UtilTest {
protected:
    void SetUp() override
    {
        UtilTest::SetUp();
        WriteFile(m_victim, "precious");
    }

    const std::string m_victim = m_tv / "victim";
    const std::string m_dump = m_stick / "DumpMWDB";
};

TEST_F(LinkGuard, LinkAtTheDumpFolderBecomesARealFolder)
{
    fs::create_symlink(m_tv.Path(), m_dump);
    EXPECT_TRUE(KelvoUtilDataHandler().BackupData(m_stick.Path()));
    EXPECT_FALSE(fs::is_symlink(m_dump));
    EXPECT_TRUE(fs::is_regular_file(m_dump + "/time.txt"));
    EXPECT_FALSE(fs::exists(m_tv / "time.txt"));
    EXPECT_EQ(ReadFile(m_victim), "precious");
}

// Dot-entries survive the emptying pattern; a link among them would redirect the copy of
// ".preview.db", or anything written below it.
TEST_F(LinkGuard, LinksLeftInTheEmptiedDumpFolderAreRemoved)
{
    fs::create_directories(m_dump + "/.hidden");
    fs::create_symlink(m_victim, m_dump + "/.preview.db");
    fs::create_symlink(m_victim, m_dump + "/.hidden/deep");
    WriteFile(m_dump + "/.keep", "dot-file");

    KelvoUtilDataHandler().PrepareDumpDBFolder(m_dump);

    EXPECT_FALSE(fs::is_symlink(m_dump + "/.preview.db"));
    EXPECT_FALSE(fs::is_symlink(m_dump + "/.hidden/deep"));
    EXPECT_EQ(ReadFile(m_dump + "/.keep"), "dot-file");
    EXPECT_EQ(ReadFile(m_victim), "precious");
}

// The target as cp -rf leaves it when b.db and nested.db/inner on the stick are links. The links
// at c.json and .hidden.db are not the *.db copy's doing: "*" skips names that begin with a dot.
TEST_F(LinkGuard, CopiedLinksNeverStayInTheTargetFolder)
{
    const std::string from = m_stick / "RestoreMWDB", to = m_tv / "data";
    fs::create_directories(from + "/nested.db");
    fs::create_directories(to + "/nested.db");
    for (const char *name : {"/a.db", "/b.db", "/c.json", "/.hidden.db"})
        WriteFile(from + name, "");
    WriteFile(to + "/a.db", "real");
    for (const char *name : {"/b.db", "/nested.db/inner", "/c.json", "/.hidden.db"})
        fs::create_symlink(m_victim, to + name);

    KelvoUtilDataHandler::RemoveCopiedSpecialFiles(from, ".db", to + "/");

    EXPECT_EQ(ReadFile(to + "/a.db"), "real");
    EXPECT_FALSE(fs::is_symlink(to + "/b.db"));
    EXPECT_FALSE(fs::is_symlink(to + "/nested.db/inner"));
    EXPECT_TRUE(fs::is_directory(to + "/nested.db"));
    EXPECT_TRUE(fs::is_symlink(to + "/c.json"));
    EXPECT_TRUE(fs::is_symlink(to + "/.hidden.db"));
    EXPECT_EQ(ReadFile(m_victim), "precious");
}
}  // namespace
