// The dump database on a file system that fills up. A small tmpfs needs a mount, which an
// unprivileged process may make inside its own user and mount namespace: the scenario runs in a
// forked child that enters one and leaves a copy of the file and its failure log beside the
// mount; the parent judges.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include "DumpDbTestSupport.h"
#include "FakeDlog.h"

namespace {

const int kRowsWhileFull = 6000;
const int kRowsAfterSpaceReturns = 700;
// Free space that may stay unused once rows no longer fit: what one more row and its journal
// need, a few pages. A lost batch would leave hundreds of kilobytes.
const unsigned long kMostFreeBytesWhenFull = 64UL * 1024;

bool WriteFile(const std::string &path, const std::string &text)
{
    return static_cast<bool>(std::ofstream(path) << text);
}

// Enters a private user and mount namespace and mounts a 2 MiB tmpfs on `folder`; on failure
// returns why.
std::string MountSmallFileSystem(const std::string &folder)
{
    const std::string uid = std::to_string(getuid()), gid = std::to_string(getgid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return std::string("unshare: ") + strerror(errno);
    if (!WriteFile("/proc/self/setgroups", "deny") || !WriteFile("/proc/self/uid_map", "0 " + uid + " 1") ||
        !WriteFile("/proc/self/gid_map", "0 " + gid + " 1"))
        return "cannot write the namespace's id maps";
    if (mkdir(folder.c_str(), 0700) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=2m") != 0)
        return std::string("mount: ") + strerror(errno);
    if (!WriteFile(folder + "/filler", std::string(std::size_t{1024} * 1024, 'f')))
        return "cannot write the filler";
    return "";
}

// Runs in the child: fills the disk until the dump no longer fits, notes the space left, frees
// the space again, inserts more, closes, and copies the file, the space left and the failures
// logged out to `out`.
void RunScenario(const std::string &out)
{
    const std::string folder = out + "/fs", reason = MountSmallFileSystem(folder);
    if (!reason.empty()) {
        WriteFile(out + "/skip", reason);
        return;
    }
    RelocatedDatabaseHelper helper(folder + "/data");
    FakeDlog::Clear();
    helper.OpenDB();
    // About 650 bytes a row: a batch is more than half of the space left.
    for (int i = 0; i < kRowsWhileFull + kRowsAfterSpaceReturns; ++i) {
        if (i == kRowsWhileFull) {
            struct statvfs space;
            WriteFile(out + "/free", statvfs(folder.c_str(), &space) == 0
                                         ? std::to_string(space.f_bavail * space.f_frsize)
                                         : std::string("statvfs failed"));
            unlink((folder + "/filler").c_str());
        }
        const bool full = i < kRowsWhileFull;
        helper.InsertProgramRF(RfRow((full ? "full " : "free ") + std::to_string(full ? i : i - kRowsWhileFull),
                                     std::u16string(600, u'd')));
    }
    helper.CloseDB();
    std::ofstream log(out + "/log");
    for (const std::string &message : LoggedFailures())
        log << message << "\n";
    std::filesystem::copy_file(helper.DbPath(), out + "/dump.db");
}

// Only the rows that do not fit are lost: rows are kept until the disk is full to the last few
// pages, none after that until space is back, and all once it is; the file is consistent.
TEST(DatabaseFullDisk, OnlyRowsThatDoNotFitAreLost)
{
    TempFolder temp;
    const pid_t child = fork();
    if (child == 0) {
        try {
            RunScenario(temp.Path());
        } catch (const std::exception &error) {
            WriteFile(temp.Path() + "/skip", std::string("error ") + error.what());
        }
        _exit(0);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    std::ifstream skip(temp.Path() + "/skip"), log(temp.Path() + "/log"), freeBytes(temp.Path() + "/free");
    const std::string reason(std::istreambuf_iterator<char>(skip), {}), logged(std::istreambuf_iterator<char>(log), {});
    ASSERT_EQ(reason.rfind("error ", 0), std::string::npos) << reason;
    if (skip.is_open())
        GTEST_SKIP() << "no small file system for this test: " << reason;
    const std::string db = temp.Path() + "/dump.db";
    unsigned long leftWhenFull = ~0UL;
    EXPECT_TRUE(static_cast<bool>(freeBytes >> leftWhenFull)) << "no free space noted";
    EXPECT_LT(leftWhenFull, kMostFreeBytesWhenFull) << "rows were lost while space was left";
    EXPECT_EQ(QueryRows(db, "PRAGMA integrity_check"), std::vector<std::string>{"ok"});
    EXPECT_NE(logged.find(":13"), std::string::npos)  // SQLITE_FULL
        << "the 1 MiB left never filled up: " << logged;

    std::vector<int> full, free;
    for (const std::string &row : QueryRows(db, "SELECT title FROM programRF ORDER BY rowid"))
        (row.rfind("full ", 0) == 0 ? full : free).push_back(std::stoi(row.substr(5)));
    // Rows written before the disk filled: a complete prefix, then at most the one batch that
    // was open when space came back, which runs to the end of that phase and is then committed.
    ASSERT_FALSE(full.empty()) << "no batch was committed before the disk filled";
    EXPECT_LT(full.size(), static_cast<size_t>(kRowsWhileFull)) << "nothing was lost: the disk never filled";
    size_t prefix = 0;
    while (prefix < full.size() && full[prefix] == static_cast<int>(prefix))
        ++prefix;
    EXPECT_GE(prefix, 1u);
    for (size_t i = prefix; i < full.size(); ++i)
        EXPECT_EQ(full[i], kRowsWhileFull - static_cast<int>(full.size() - i)) << i;
    ASSERT_EQ(free.size(), static_cast<size_t>(kRowsAfterSpaceReturns));
    for (int i = 0; i < kRowsAfterSpaceReturns; ++i)
        EXPECT_EQ(free[i], i);
}

}  // namespace
