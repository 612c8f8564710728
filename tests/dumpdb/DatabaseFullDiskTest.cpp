// The dump database on a file system that fills up. A small tmpfs needs a mount, which an
// unprivileged process may make inside its own user and mount namespace: the scenario runs in a
// forked child that enters one, and reports back through a pipe; the parent judges.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sched.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "DumpDbTestSupport.h"
#include "FakeDlog.h"
#include "TVServiceAPI.h"

namespace {

const int kRowsWhileFull = 6000;
const int kRowsAfterSpaceReturns = 1500;

bool WriteFile(const std::string &path, const std::string &text)
{
    std::ofstream out(path);
    out << text;
    return static_cast<bool>(out);
}

// Enters a private user and mount namespace and mounts a 2 MiB tmpfs on `folder`; on failure
// returns why.
std::string MountSmallFileSystem(const std::string &folder)
{
    const uid_t uid = getuid();
    const gid_t gid = getgid();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return std::string("unshare: ") + strerror(errno);
    }
    if (!WriteFile("/proc/self/setgroups", "deny") || !WriteFile("/proc/self/uid_map", "0 " + std::to_string(uid) + " 1") ||
        !WriteFile("/proc/self/gid_map", "0 " + std::to_string(gid) + " 1")) {
        return "cannot write the namespace's id maps";
    }
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=2m") != 0) {
        return std::string("mount: ") + strerror(errno);
    }
    return "";
}

KelvoUtilProgramData Row(const std::string &title)
{
    // About 300 bytes a row: a batch is a noticeable part of the file system.
    TCProgramData event = MakeEvent(std::u16string(title.begin(), title.end()), std::u16string(280, u'd'));
    return KelvoUtilProgramData(&event);
}

// Runs in the child. Fills the disk until the dump no longer fits, frees the space again,
// inserts more, closes, and reports the file's integrity, its titles and the failures logged.
void RunScenario(const std::string &folder, std::ostream &report)
{
    const std::string reason = MountSmallFileSystem(folder);
    if (!reason.empty()) {
        report << "SKIP " << reason << "\n";
        return;
    }
    const std::string filler = folder + "/filler";
    if (!WriteFile(filler, std::string(1024 * 1024, 'f'))) {
        report << "SKIP cannot write the filler\n";
        return;
    }
    RelocatedDatabaseHelper helper(folder + "/data");
    FakeDlog::Clear();
    helper.OpenDB();
    for (int i = 0; i < kRowsWhileFull; ++i) {
        helper.InsertProgramRF(Row("full " + std::to_string(i)));
    }
    unlink(filler.c_str());
    for (int i = 0; i < kRowsAfterSpaceReturns; ++i) {
        helper.InsertProgramRF(Row("free " + std::to_string(i)));
    }
    helper.CloseDB();
    for (const std::string &message : FakeDlog::Messages("kelvo-util")) {
        if (message.rfind("Insert error", 0) == 0 || message.rfind("fail to", 0) == 0) {
            report << "LOG " << message << "\n";
        }
    }
    for (const std::string &row : QueryRows(helper.DbPath(), "PRAGMA integrity_check")) {
        report << "INTEGRITY " << row << "\n";
    }
    for (const std::string &row : QueryRows(helper.DbPath(), "SELECT title FROM programRF ORDER BY rowid")) {
        report << "ROW " << row << "\n";
    }
}

std::string RunInChild(const std::string &folder)
{
    int fds[2];
    if (pipe(fds) != 0) {
        return "SKIP pipe failed\n";
    }
    const pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        std::ostringstream report;
        try {
            RunScenario(folder, report);
        } catch (const std::exception &error) {
            report << "ERROR " << error.what() << "\n";
        }
        const std::string text = report.str();
        size_t written = 0;
        while (written < text.size()) {
            const ssize_t n = write(fds[1], text.data() + written, text.size() - written);
            if (n <= 0) {
                break;
            }
            written += static_cast<size_t>(n);
        }
        _exit(0);
    }
    close(fds[1]);
    std::string text;
    char chunk[4096];
    ssize_t n;
    while ((n = read(fds[0], chunk, sizeof(chunk))) > 0) {
        text.append(chunk, static_cast<size_t>(n));
    }
    close(fds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return text;
}

// Rows of batches committed before the disk filled stay; the open batch is what a full disk
// costs; once space is back, rows are kept again; the file is consistent throughout.
TEST(DatabaseFullDisk, CommittedRowsSurviveAndTheFileStaysConsistent)
{
    TempFolder temp;
    const std::string report = RunInChild(temp.Path());
    if (report.rfind("SKIP ", 0) == 0) {
        GTEST_SKIP() << "no small file system for this test: " << report.substr(5);
    }
    std::vector<std::string> logs;
    std::vector<std::string> integrity;
    std::vector<int> full;
    std::vector<int> free;
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("LOG ", 0) == 0) {
            logs.push_back(line.substr(4));
        } else if (line.rfind("INTEGRITY ", 0) == 0) {
            integrity.push_back(line.substr(10));
        } else if (line.rfind("ROW full ", 0) == 0) {
            full.push_back(std::stoi(line.substr(9)));
        } else if (line.rfind("ROW free ", 0) == 0) {
            free.push_back(std::stoi(line.substr(9)));
        } else {
            ADD_FAILURE() << line;
        }
    }
    EXPECT_EQ(integrity, std::vector<std::string>{"ok"});

    bool diskFullSeen = false;
    for (const std::string &log : logs) {
        diskFullSeen = diskFullSeen || log.find("error:13") != std::string::npos || log == "Insert error, ret:13";
    }
    EXPECT_TRUE(diskFullSeen) << "the 1 MiB left never filled up";

    // Rows written before the disk filled: a complete prefix, then at most the one batch that
    // was open when space came back, which runs to the end of that phase.
    ASSERT_FALSE(full.empty()) << "no batch was committed before the disk filled";
    size_t prefix = 0;
    while (prefix < full.size() && full[prefix] == static_cast<int>(prefix)) {
        ++prefix;
    }
    EXPECT_GE(prefix, 1u);
    EXPECT_LT(full.size(), static_cast<size_t>(kRowsWhileFull)) << "nothing was lost: the disk never filled";
    for (size_t i = prefix; i < full.size(); ++i) {
        EXPECT_EQ(full[i], full[prefix] + static_cast<int>(i - prefix));
    }
    if (prefix < full.size()) {
        EXPECT_EQ(full.back(), kRowsWhileFull - 1);
    }

    ASSERT_EQ(free.size(), static_cast<size_t>(kRowsAfterSpaceReturns));
    for (int i = 0; i < kRowsAfterSpaceReturns; ++i) {
        EXPECT_EQ(free[i], i);
    }
}

}  // namespace
