// The simulated middleware's backup and restore handed the TV's own folders, by their path, by a
// link or file by file through hard links: nothing is ever copied onto itself, so no database
// of the TV is emptied.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "TVServiceAPI.h"
#include "TvsTestState.h"

namespace fs = std::filesystem;

namespace {

const char *const kServices = "db-tvs-service.db";
const char *const kChannels = "CHMS_Memory_Dump.sqlite";

class TVServiceUtil : public ::testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directories(ChannelFolder());
        fs::create_directories(m_state.Db());
        std::ofstream(m_state.Db() + "/" + kServices) << "services of the TV";
        std::ofstream(ChannelFolder() + "/" + kChannels) << "channel map of the TV";
        fs::create_directories(m_elsewhere);
    }

    std::string ChannelFolder() const { return m_state.RwApp() + "/tvs-chms/data"; }

    int Backup(const std::string &folder)
    {
        IUtil *util = TVServiceAPI::CreateUtil();
        const int result = util->BackupTVSData(folder.c_str());
        TVServiceAPI::Destroy(util);
        return result;
    }

    int Restore(const std::string &folder)
    {
        IUtil *util = TVServiceAPI::CreateUtil();
        const int result = util->RestoreTVSData(folder.c_str());
        TVServiceAPI::Destroy(util);
        return result;
    }

    std::string Services() const { return TvsTestState::Slurp(m_state.Db() + "/" + kServices); }
    std::string Channels() const { return TvsTestState::Slurp(ChannelFolder() + "/" + kChannels); }

    TvsTestState m_state;
    const std::string m_elsewhere = m_state.Root() + "/stick";
};

struct FolderCase {
    const char *name;
    bool databaseFolder;  // else the channel manager's folder
    bool throughLink;
};

class OwnFolder : public TVServiceUtil, public ::testing::WithParamInterface<FolderCase> {
protected:
    std::string Given()
    {
        std::string own = GetParam().databaseFolder ? m_state.Db() : ChannelFolder();
        if (!GetParam().throughLink)
            return own;
        fs::create_directory_symlink(own, m_elsewhere + "/RestoreMWDB");
        return m_elsewhere + "/RestoreMWDB";
    }
};

TEST_P(OwnFolder, RestoreFromItIsRefused)
{
    EXPECT_EQ(Restore(Given()), -1);
    EXPECT_EQ(Services(), "services of the TV");
    EXPECT_EQ(Channels(), "channel map of the TV");
}

TEST_P(OwnFolder, BackupIntoItIsRefused)
{
    const std::string given = Given();
    EXPECT_EQ(Backup(given), -1);
    EXPECT_EQ(Services(), "services of the TV");
    EXPECT_EQ(Channels(), "channel map of the TV");
    EXPECT_FALSE(fs::exists(m_state.Db() + "/" + kChannels));
    EXPECT_FALSE(fs::exists(ChannelFolder() + "/" + kServices));
}

INSTANTIATE_TEST_SUITE_P(Folders, OwnFolder,
                         ::testing::Values(FolderCase{"DatabaseFolder", true, false},
                                           FolderCase{"LinkToTheDatabaseFolder", true, true},
                                           FolderCase{"ChannelFolder", false, false},
                                           FolderCase{"LinkToTheChannelFolder", false, true}),
                         [](const ::testing::TestParamInfo<FolderCase> &c) { return c.param.name; });

// A folder of the stick's own whose files are the TV's files under other names.
TEST_F(TVServiceUtil, HardLinkedFilesAreNotCopiedOntoThemselves)
{
    ASSERT_EQ(link((m_state.Db() + "/" + kServices).c_str(), (m_elsewhere + "/" + kServices).c_str()), 0);
    ASSERT_EQ(link((ChannelFolder() + "/" + kChannels).c_str(), (m_elsewhere + "/" + kChannels).c_str()), 0);
    EXPECT_EQ(Restore(m_elsewhere), -1);
    EXPECT_EQ(Services(), "services of the TV");
    EXPECT_EQ(Channels(), "channel map of the TV");
    EXPECT_EQ(Backup(m_elsewhere), 1);  // nothing copied, nothing emptied
    EXPECT_EQ(Services(), "services of the TV");
    EXPECT_EQ(Channels(), "channel map of the TV");
}

// The counterpart that must still work: a folder of its own is backed up into and restored from.
TEST_F(TVServiceUtil, ForeignFolderIsBackedUpIntoAndRestoredFrom)
{
    EXPECT_EQ(Backup(m_elsewhere), 3);
    EXPECT_EQ(TvsTestState::Slurp(m_elsewhere + "/" + kServices), "services of the TV");
    std::ofstream(m_elsewhere + "/" + kServices, std::ios::trunc) << "services of the stick";
    EXPECT_EQ(Restore(m_elsewhere), 1);
    EXPECT_EQ(Services(), "services of the stick");
}

// A FIFO among the folder's files is never opened: opening it would wait for a writer.
TEST_F(TVServiceUtil, FifoInTheRestoreFolderIsLeftAlone)
{
    ASSERT_EQ(mkfifo((m_elsewhere + "/db-tvs-pipe.db").c_str(), 0644), 0);
    ASSERT_EQ(mkfifo((m_elsewhere + "/" + kChannels).c_str(), 0644), 0);
    EXPECT_EQ(Restore(m_elsewhere), 1);
    EXPECT_FALSE(fs::exists(m_state.Db() + "/db-tvs-pipe.db"));
    EXPECT_EQ(Channels(), "channel map of the TV");
}

}  // namespace
