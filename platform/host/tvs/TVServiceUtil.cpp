// Host TVS middleware client: backup and restore of the middleware's own data.
//
// The middleware's data on the simulated TV is what the channel manager keeps in
// <TZ_SYS_RW_APP>/tvs-chms/data/ (its regular files) and the databases <TZ_SYS_DB>/db-tvs-*.
// A backup copies those files flat into the folder it is given; a restore copies back the
// files of the folder that are middleware data: "db-tvs-*" into TZ_SYS_DB, and a file whose
// name the channel manager's folder already holds into that folder. Everything else in the
// folder (the content daemon's databases, JSON files, time.txt, ...) is not the middleware's
// and is left alone. Links are never followed, neither when reading nor when writing, and no
// file is ever copied onto itself: a folder that is one of the middleware's own, by whatever
// path, is refused, and so is a target that is its source.
//
// The simulator's control folder /opt/var/kelvo-sim/ (inside the TV's /opt) lets a test make
// an operation fail (files "fail-backup", "fail-restore") and see which operations ran
// ("tvs.log": "backup <folder> <result>" / "restore <folder> <result>"). Nothing is written
// there unless the folder exists, so a run outside a simulated TV leaves /opt untouched.

#include "TVServiceAPI.h"
#include "dlog.h"
#include "tzplatform_config.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

const char *const kLogTag = "TVS";
const std::string kSimFolder = "/opt/var/kelvo-sim";
const char *const kChannelFolder = "/tvs-chms/data";
const char *const kDatabasePrefix = "db-tvs-";

struct DataFile {
    std::string folder;
    std::string name;
};

bool StartsWith(const std::string &text, const char *prefix)
{
    return text.compare(0, std::strlen(prefix), prefix) == 0;
}

bool IsDirectory(const std::string &path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsRegularFile(const std::string &path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::string PlatformFolder(tzplatform_variable id)
{
    const char *value = tzplatform_getenv(id);
    return value ? value : "";
}

std::string ChannelFolder()
{
    std::string root = PlatformFolder(TZ_SYS_RW_APP);
    return root.empty() ? root : root + kChannelFolder;
}

// Names of the regular files of folder (no links, no folders), optionally with a prefix.
std::vector<std::string> RegularFiles(const std::string &folder, const char *prefix)
{
    std::vector<std::string> names;
    if (folder.empty())
        return names;
    DIR *dir = opendir(folder.c_str());
    if (dir == nullptr)
        return names;
    while (dirent *entry = readdir(dir)) {
        std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        if (prefix && !StartsWith(name, prefix))
            continue;
        if (IsRegularFile(folder + "/" + name))
            names.push_back(name);
    }
    closedir(dir);
    return names;
}

std::vector<DataFile> MiddlewareDataFiles()
{
    std::vector<DataFile> files;
    std::string channels = ChannelFolder();
    for (const std::string &name : RegularFiles(channels, nullptr))
        files.push_back({channels, name});
    std::string databases = PlatformFolder(TZ_SYS_DB);
    for (const std::string &name : RegularFiles(databases, kDatabasePrefix))
        files.push_back({databases, name});
    return files;
}

bool SameFile(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The same folder as any folder the middleware keeps its data in, whatever the path says.
bool IsMiddlewareFolder(const std::string &folder)
{
    struct stat given;
    if (stat(folder.c_str(), &given) != 0)
        return false;
    for (const std::string &own : {ChannelFolder(), PlatformFolder(TZ_SYS_DB)}) {
        struct stat st;
        if (!own.empty() && stat(own.c_str(), &st) == 0 && SameFile(given, st))
            return true;
    }
    return false;
}

// Copies a regular file; a link at either end makes the copy fail rather than be followed, and
// so does a target that is the source itself, which opening for writing would empty.
bool CopyFile(const std::string &from, const std::string &to)
{
    int in = open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (in < 0)
        return false;
    struct stat source;
    if (fstat(in, &source) != 0 || !S_ISREG(source.st_mode)) {
        close(in);
        return false;
    }
    struct stat st;
    if (lstat(to.c_str(), &st) == 0 && S_ISLNK(st.st_mode))
        unlink(to.c_str());
    int out = open(to.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0644);
    if (out < 0) {
        close(in);
        return false;
    }
    struct stat target;
    bool ok = fstat(out, &target) == 0 && S_ISREG(target.st_mode);
    if (ok && SameFile(source, target)) {
        dlog_print(DLOG_WARN, kLogTag, "%s is %s itself: not copied onto itself", to.c_str(), from.c_str());
        ok = false;
    }
    if (!ok || ftruncate(out, 0) != 0) {
        close(in);
        close(out);
        return false;
    }
    char buffer[65536];
    for (;;) {
        ssize_t n = read(in, buffer, sizeof buffer);
        if (n == 0)
            break;
        if (n < 0) {
            if (errno == EINTR)
                continue;
            ok = false;
            break;
        }
        for (ssize_t done = 0; done < n;) {
            ssize_t w = write(out, buffer + done, static_cast<size_t>(n - done));
            if (w < 0 && errno == EINTR)
                continue;
            if (w <= 0) {
                ok = false;
                break;
            }
            done += w;
        }
        if (!ok)
            break;
    }
    close(in);
    if (close(out) != 0)
        ok = false;
    return ok;
}

bool FailureRequested(const char *name)
{
    return access((kSimFolder + "/" + name).c_str(), F_OK) == 0;
}

int Report(const char *operation, const char *folder, int result)
{
    if (IsDirectory(kSimFolder)) {
        if (FILE *log = std::fopen((kSimFolder + "/tvs.log").c_str(), "a")) {
            std::fprintf(log, "%s %s %d\n", operation, folder, result);
            std::fclose(log);
        }
    }
    dlog_print(DLOG_INFO, kLogTag, "%s %s: %d", operation, folder, result);
    return result;
}

class HostUtil : public IUtil {
public:
    int BackupTVSData(const char *folder) override
    {
        const char *shown = folder ? folder : "(null)";
        if (folder == nullptr || FailureRequested("fail-backup"))
            return Report("backup", shown, -1);
        std::string target = folder;
        if (!IsDirectory(target) || access(target.c_str(), W_OK | X_OK) != 0)
            return Report("backup", shown, -1);
        if (IsMiddlewareFolder(target)) {
            dlog_print(DLOG_WARN, kLogTag, "backup into %s refused: it is the middleware's own data folder", shown);
            return Report("backup", shown, -1);
        }
        int copied = 0;
        for (const DataFile &file : MiddlewareDataFiles()) {
            if (CopyFile(file.folder + "/" + file.name, target + "/" + file.name))
                ++copied;
            else
                dlog_print(DLOG_WARN, kLogTag, "backup of %s/%s failed", file.folder.c_str(), file.name.c_str());
        }
        return Report("backup", shown, 1 + copied);
    }

    int RestoreTVSData(const char *folder) override
    {
        const char *shown = folder ? folder : "(null)";
        if (folder == nullptr || FailureRequested("fail-restore"))
            return Report("restore", shown, -1);
        std::string source = folder;
        if (!IsDirectory(source))
            return Report("restore", shown, -1);
        if (IsMiddlewareFolder(source)) {
            dlog_print(DLOG_WARN, kLogTag, "restore from %s refused: it is the middleware's own data folder", shown);
            return Report("restore", shown, -1);
        }
        std::string databases = PlatformFolder(TZ_SYS_DB);
        std::string channels = ChannelFolder();
        bool ok = true;
        for (const std::string &name : RegularFiles(source, nullptr)) {
            std::string target;
            if (StartsWith(name, kDatabasePrefix) && !databases.empty())
                target = databases + "/" + name;
            else if (!channels.empty() && IsRegularFile(channels + "/" + name))
                target = channels + "/" + name;
            else
                continue;
            if (!CopyFile(source + "/" + name, target)) {
                dlog_print(DLOG_WARN, kLogTag, "restore of %s failed", name.c_str());
                ok = false;
            }
        }
        return Report("restore", shown, ok ? 1 : -1);
    }
};

}  // namespace

IUtil *TVServiceAPI::CreateUtil()
{
    return new HostUtil();
}
