// Hostile sticks against the restore: a RestoreMWDB that is a link into the TV, copies that bring
// links, FIFOs, sockets and device nodes into the daemon's folder, and a time.txt that is no
// regular file.
#include <algorithm>
#include <filesystem>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include "UtilTestSupport.h"
#include "dataHandler.h"

namespace fs = std::filesystem;

namespace {

std::vector<std::string> Containing(const std::vector<std::string> &lines, const std::string &needle)
{
    std::vector<std::string> found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [&](const std::string &line) { return line.find(needle) != std::string::npos; });
    return found;
}

class RestoreGuard : public UtilTest {
protected:
    const std::string m_restore = m_stick / "RestoreMWDB";
};

TEST_F(RestoreGuard, LinkedRestoreFolderIsRefusedBeforeAnyCopy)
{
    WriteFile(DbSpace() + "/db-tvs-service.db", "services of the TV");
    fs::create_directory_symlink(DbSpace(), m_restore);
    KelvoUtilDataHandler handler;
    ASSERT_TRUE(handler.IsRestoreMode(m_stick.Path()));

    EXPECT_FALSE(handler.RestoreData(m_stick.Path()));

    EXPECT_TRUE(FakeSystem::Calls().empty());
    EXPECT_TRUE(FakeTvs::Calls().empty());
    EXPECT_EQ(UtilLog(), std::vector<std::string>{"restore folder [" + m_restore +
                                                  "] refused: it is a symbolic link, and the restore reads "
                                                  "only what lies on the storage"});
}

// A link to a folder on the same stick is still a link: refused alike.
TEST_F(RestoreGuard, LinkToAFolderOnTheStickIsRefusedToo)
{
    fs::create_directory(m_stick / "elsewhere");
    fs::create_directory_symlink(m_stick / "elsewhere", m_restore);
    EXPECT_FALSE(KelvoUtilDataHandler().RestoreData(m_stick.Path()));
    EXPECT_TRUE(FakeTvs::Calls().empty());
}

// The target as cp -rf leaves it when the stick's *.db entries are of every kind: only regular
// files and folders stay; each other entry is removed and logged by its kind.
TEST_F(RestoreGuard, OnlyRegularFilesAndFoldersStayInTheTarget)
{
    const std::string to = m_tv / "data";
    fs::create_directories(m_restore + "/nested.db");
    fs::create_directories(to + "/nested.db");
    for (const char *name : {"/a.db", "/link.db", "/fifo.db", "/socket.db", "/device.db", "/b.json"})
        WriteFile(m_restore + name, "");
    WriteFile(to + "/a.db", "real");
    WriteFile(to + "/nested.db/inner", "real");
    fs::create_symlink(m_tv / "victim", to + "/link.db");
    ASSERT_EQ(mkfifo((to + "/fifo.db").c_str(), 0644), 0);
    ASSERT_EQ(mkfifo((to + "/nested.db/pipe").c_str(), 0644), 0);
    ASSERT_EQ(mkfifo((to + "/b.json").c_str(), 0644), 0);  // not the *.db copy's doing
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string socketPath = to + "/socket.db";
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    socketPath.copy(address.sun_path, socketPath.size());
    const int socketFd = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(socketFd, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    close(socketFd);
    const bool device = mknod((to + "/device.db").c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0;

    KelvoUtilDataHandler::RemoveCopiedSpecialFiles(m_restore, ".db", to + "/");

    EXPECT_EQ(ReadFile(to + "/a.db"), "real");
    EXPECT_EQ(ReadFile(to + "/nested.db/inner"), "real");
    for (const char *gone : {"/link.db", "/fifo.db", "/socket.db", "/device.db", "/nested.db/pipe"})
        EXPECT_FALSE(fs::exists(fs::symlink_status(to + gone))) << gone;
    EXPECT_TRUE(fs::is_fifo(to + "/b.json"));
    const std::vector<std::string> log = UtilLog();
    EXPECT_EQ(Containing(log, "symbolic link removed: "),
              std::vector<std::string>{"symbolic link removed: " + to + "/link.db"});
    EXPECT_EQ(Containing(log, "FIFO removed: ").size(), 2u);
    EXPECT_EQ(Containing(log, "socket removed: "), std::vector<std::string>{"socket removed: " + to + "/socket.db"});
    EXPECT_EQ(Containing(log, "device node removed: ").size(), device ? 1u : 0u);
    if (!device)
        GTEST_SKIP() << "no device node could be made here (mknod needs privilege): that kind went unchecked";
}

// time.txt of every kind but a regular file: nothing is read, nothing blocks, the clock stays.
struct TimeFileCase {
    const char *name;
    void (*make)(const std::string &path);
};

class TimeFileKind : public RestoreGuard, public ::testing::WithParamInterface<TimeFileCase> {};

TEST_P(TimeFileKind, IsNotReadAndLeavesTheClock)
{
    fs::create_directory(m_restore);
    fs::create_directory(m_stick / "DumpMWDB");
    const std::string timeFile = m_stick / "DumpMWDB/time.txt";
    GetParam().make(timeFile);

    KelvoUtilDataHandler().RestoreData(m_stick.Path());

    const std::vector<std::string> calls = FakeSystem::Calls();
    EXPECT_TRUE(std::none_of(calls.begin(), calls.end(),
                             [](const std::string &call) { return call.rfind("settimeofday", 0) == 0; }));
    EXPECT_EQ(Containing(UtilLog(), "time file"),
              std::vector<std::string>{"time file [" + timeFile + "] is not a regular file, the clock is left alone"});
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, TimeFileKind,
    ::testing::Values(TimeFileCase{"Fifo", [](const std::string &path) { ASSERT_EQ(mkfifo(path.c_str(), 0644), 0); }},
                      TimeFileCase{"Folder", [](const std::string &path) { fs::create_directory(path); }},
                      TimeFileCase{"LinkToADevice",
                                   [](const std::string &path) { fs::create_symlink("/dev/zero", path); }}),
    ByName());

}  // namespace
