#include "dataHandler.h"

#include <dirent.h>
#include <ftw.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdlib>
#include <initializer_list>
#include <map>
#include <vector>

#include "FenvoraDefine.h"
#include "KelvoUtilLog.h"
#include "TVServiceAPI.h"
#include "programData.h"

namespace {
const char *const kAppDataRoot = "/opt/usr/home/owner/apps_rw";
const char *const kDaemonDataFolder = "/opt/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data/";
const char *const kDumpFolder = "/DumpMWDB";
const char *const kRestoreFolder = "/RestoreMWDB";
const char *const kTimeFile = "/time.txt";
const char *const kCopyCommand = "/usr/bin/cp -rf ";
const char *const kRemoveCommand = "/usr/bin/rm -rf ";

const int kGuidePeriodSeconds = 86400;
const unsigned long long kUnknownServiceId = ~0ULL;

// Service record fields of the TVS middleware. The channel-list query selects and fetches by
// the middleware's own field numbers; those without a name here are used by number only.
enum ETVSField {
    TVS_FIELD_SERVICE_TYPE = 1,
    TVS_FIELD_SERVICE_ID = 12,
    TVS_FIELD_MAJOR_NUMBER = 13,
    TVS_FIELD_MINOR_NUMBER = 14,
};

enum ECopyBase { BASE_APP_DATA, BASE_TV_SERVICE_DATA, BASE_PLATFORM_DB };

struct CopySource {
    ECopyBase base;
    const char *text;  // ends with the blank that separates it from the destination
};

// Source 1 holds the dump database, so the copy runs after the database is closed.
const CopySource kCopySources[] = {
    {BASE_APP_DATA, "/com.halvorn.tv.kelvo-daemon/data/* "},
    {BASE_APP_DATA, "/com.halvorn.tv.kelvo-daemon/shared/kelvo/data/* "},
    {BASE_TV_SERVICE_DATA, "/esg-service/data/* "},
    {BASE_TV_SERVICE_DATA, "/tvs-chms/data/* "},
    {BASE_TV_SERVICE_DATA, "/tvs-iss/data/* "},
    {BASE_TV_SERVICE_DATA, "/tvs-sospec/data/* "},
    {BASE_TV_SERVICE_DATA, "/tvs-guide/data/* "},
    {BASE_PLATFORM_DB, "/db-tvs-* "},
    {BASE_PLATFORM_DB, "/UpdateTransponderDataBase.sei "},
    {BASE_TV_SERVICE_DATA, "/reminder/data/* "},
    {BASE_APP_DATA, "/org.tizen.content-tiles-provider/data/.preview.db "},
    {BASE_APP_DATA, "/ContentServiceManager/data/*.db "},
};

// What a copy may bring along besides regular files and folders, by the name the log gives it.
const char *SpecialKind(mode_t mode)
{
    if (S_ISLNK(mode))
        return "symbolic link";
    if (S_ISFIFO(mode))
        return "FIFO";
    if (S_ISSOCK(mode))
        return "socket";
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return "device node";
    return nullptr;
}

int RemoveSpecialEntry(const char *path, const struct stat *st, int type, struct FTW *)
{
    const char *kind = type != FTW_NS ? SpecialKind(st->st_mode) : nullptr;
    if (kind != nullptr) {
        KELVO_UTIL_LOG("%s removed: %s", kind, path);
        unlink(path);
    }
    return 0;
}

// Every entry at path or below it that is neither a regular file nor a folder, without following
// any link: a link would lead the daemon out of its folder, and opening a FIFO or a device blocks
// or reaches hardware.
void RemoveSpecialFilesBelow(const std::string &path)
{
    nftw(path.c_str(), RemoveSpecialEntry, 16, FTW_PHYS);
}

bool EndsWith(const std::string &text, const std::string &suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}
}  // namespace

KelvoUtilDataHandler::KelvoUtilDataHandler() : m_guidePeriod(kGuidePeriodSeconds), m_dbHelper() {}

KelvoUtilDataHandler::~KelvoUtilDataHandler() = default;

// ---- guards -------------------------------------------------------------------------------

// The mount path ends up in shell commands; a stick can be given any label, and with it any
// mount path. Only characters that the shell takes literally may pass.
bool KelvoUtilDataHandler::m_IsSafeMountPath(const std::string &mountPath)
{
    if (mountPath.empty()) {
        KELVO_UTIL_LOG("mount path is empty, refused: there is no storage folder to work on");
        return false;
    }
    for (unsigned char c : mountPath) {
        bool safe = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '/' ||
                    c == '.' || c == '_' || c == '+' || c == '-';
        if (!safe) {
            KELVO_UTIL_LOG("mount path [%s] refused: it holds a character other than A-Z a-z 0-9 / . _ + -",
                           mountPath.c_str());
            return false;
        }
    }
    return true;
}

std::string KelvoUtilDataHandler::m_PlatformFolder(enum tzplatform_variable id)
{
    const char *folder = tzplatform_getenv(id);
    if (folder == nullptr) {
        // Every path of the dump hangs on these folders; without one there is nothing sane to do.
        KELVO_UTIL_LOG("tzplatform_getenv(%d) gives no folder, aborting", static_cast<int>(id));
        abort();
    }
    return folder;
}

// The middleware's own backup and restore: success is a positive answer, and a middleware that
// cannot be reached answers nothing, which is a failure.
bool KelvoUtilDataHandler::m_CallTVSUtil(int (IUtil::*operation)(const char *), const std::string &folder)
{
    int ret = 0;
    IUtil *util = TVServiceAPI::CreateUtil();
    if (util != nullptr) {
        ret = (util->*operation)(folder.c_str());
        TVServiceAPI::Destroy(util);
    }
    return ret > 0;
}

void KelvoUtilDataHandler::RemoveCopiedSpecialFiles(const std::string &fromFolder, const std::string &suffix,
                                                    const std::string &toFolder)
{
    DIR *dir = opendir(fromFolder.c_str());
    if (dir == nullptr)
        return;
    std::vector<std::string> names;
    while (struct dirent *entry = readdir(dir)) {
        std::string name = entry->d_name;
        // The shell's "*" does not match names that begin with a dot.
        if (name[0] != '.' && EndsWith(name, suffix))
            names.push_back(name);
    }
    closedir(dir);
    for (const std::string &name : names)
        RemoveSpecialFilesBelow(toFolder + name);
}

// ---- restore ------------------------------------------------------------------------------

bool KelvoUtilDataHandler::IsRestoreMode(std::string mountPath)
{
    struct stat st;
    return stat((mountPath + kRestoreFolder).c_str(), &st) == 0;
}

bool KelvoUtilDataHandler::RestoreData(std::string mountPath)
{
    if (!m_IsSafeMountPath(mountPath))
        return false;

    const std::string restorePath = mountPath + kRestoreFolder;
    // A link would hand the copies and the middleware's restore a folder of the TV itself.
    struct stat st;
    if (lstat(restorePath.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
        KELVO_UTIL_LOG("restore folder [%s] refused: it is a symbolic link, and the restore reads only what lies "
                       "on the storage",
                       restorePath.c_str());
        return false;
    }
    KELVO_UTIL_LOG("Start Restore Kelvo DB");

    // The copy statuses are only logged. cp -r copies a link as a link and re-creates FIFOs,
    // sockets and device nodes: whatever of that kind arrived under the copied names is removed
    // right after, so that only regular files reach the daemon.
    for (const char *suffix : {".db", ".json"}) {
        const std::string command = kCopyCommand + restorePath + "/*" + suffix + " " + kDaemonDataFolder + ";sync";
        int ret = system(command.c_str());
        KELVO_UTIL_LOG("restoreCommand %s", command.c_str());
        KELVO_UTIL_LOG("restore return %d", ret);
        RemoveCopiedSpecialFiles(restorePath, suffix, kDaemonDataFolder);
    }

    // The clock comes from the dump folder of the same storage, not from the restore folder.
    // The file only ever holds the one number a dump wrote, so end-of-file is the loop's only
    // exit; the process's run-time limit covers a file that is not a number. Anything but a
    // regular file is not read at all: opening a FIFO would wait for a writer forever.
    struct timeval restoreTime = {0, 0};
    const std::string timePath = mountPath + kDumpFolder + kTimeFile;
    FILE *fp = nullptr;
    if (stat(timePath.c_str(), &st) == 0 && !S_ISREG(st.st_mode))
        KELVO_UTIL_LOG("time file [%s] is not a regular file, the clock is left alone", timePath.c_str());
    else
        fp = fopen(timePath.c_str(), "r");
    if (fp != nullptr) {
        while (fscanf(fp, "%ld", &restoreTime.tv_sec) != EOF)
            KELVO_UTIL_LOG("restore time is %ld", restoreTime.tv_sec);
        settimeofday(&restoreTime, nullptr);
        fclose(fp);
    }

    return m_CallTVSUtil(&IUtil::RestoreTVSData, restorePath);
}

// ---- dump ---------------------------------------------------------------------------------

bool KelvoUtilDataHandler::BackupData(std::string mountPath)
{
    if (!m_IsSafeMountPath(mountPath))
        return false;

    const std::string dumpPath = mountPath + kDumpFolder;
    PrepareDumpDBFolder(dumpPath);
    PrepareChannelDB();
    KELVO_UTIL_LOG("Start Dump Kelvo DB");
    MakeTimestampFile(dumpPath);

    bool ok = BackupTVSData(dumpPath);
    if (ok) {
        m_dbHelper.OpenDB();
        BackupProgramDataOfRF();
        BackupProgramDataOfMeta();
        m_dbHelper.CloseDB();
        CopyFiles(dumpPath);
    }
    return ok;
}

void KelvoUtilDataHandler::PrepareDumpDBFolder(std::string dumpPath)
{
    // A link here would take the rm -rf and every write of the dump elsewhere: it is replaced by
    // a real folder, as SafeFileOpen does for time.txt.
    struct stat st;
    if (lstat(dumpPath.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
        KELVO_UTIL_LOG("symbolic link removed: %s", dumpPath.c_str());
        unlink(dumpPath.c_str());
    }

    if (stat(dumpPath.c_str(), &st) == 0) {
        KELVO_UTIL_LOG("Dump db exist");
        int ret = system((kRemoveCommand + dumpPath + "/*;sync").c_str());
        KELVO_UTIL_LOG("result_remove is %d", ret);
        // Dot-entries survive the pattern; none of them may redirect or block a later write.
        RemoveSpecialFilesBelow(dumpPath);
    } else {
        KELVO_UTIL_LOG("Make Dump DB Folder");
        mkdir(dumpPath.c_str(), 0750);
    }
}

void KelvoUtilDataHandler::PrepareChannelDB()
{
    const std::string path = m_PlatformFolder(TZ_SYS_RW_APP) + "/tvs-chms/data/CHMS_Memory_Dump.sqlite";
    int ret = remove(path.c_str());
    KELVO_UTIL_LOG(" removing result is %d", ret);

    IService *service = TVServiceAPI::CreateService();
    if (service != nullptr) {
        service->WriteChannelMapMemoryDump();
        TVServiceAPI::Destroy(service);
    }
}

void KelvoUtilDataHandler::MakeTimestampFile(std::string dumpPath)
{
    long long now = 0;
    GetCurrentTime(now);
    FILE *fp = SafeFileOpen((dumpPath + kTimeFile).c_str(), "w");
    if (fp != nullptr) {
        fprintf(fp, "%lld\n", now);
        fclose(fp);
    }
}

void KelvoUtilDataHandler::GetCurrentTime(long long &now)
{
    struct timeval tv = {0, 0};
    if (gettimeofday(&tv, nullptr) == -1)
        KELVO_UTIL_LOG("Fail getting current time by gettimeofday");
    now = static_cast<long long>(tv.tv_sec);
    KELVO_UTIL_LOG("UTC Current Time = %lld", now);
}

FILE *KelvoUtilDataHandler::SafeFileOpen(const char *path, std::string mode)
{
    KELVO_UTIL_LOG("[%s] is called %s %s", "SafeFileOpen", path, mode.c_str());
    struct stat st;
    if (lstat(path, &st) != 0) {
        KELVO_UTIL_LOG("[%s] no file exists", "SafeFileOpen");
    } else if (S_ISLNK(st.st_mode)) {
        KELVO_UTIL_LOG("[%s] is symbolic link.", "SafeFileOpen");
        unlink(path);
    }
    return fopen(path, mode.c_str());
}

bool KelvoUtilDataHandler::IsMatchedPath(std::string path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

bool KelvoUtilDataHandler::BackupTVSData(std::string dumpPath)
{
    return m_CallTVSUtil(&IUtil::BackupTVSData, dumpPath);
}

bool KelvoUtilDataHandler::CopyFiles(std::string dumpPath)
{
    const std::string bases[] = {kAppDataRoot, m_PlatformFolder(TZ_SYS_RW_APP), m_PlatformFolder(TZ_SYS_DB)};

    // Joined by ";", not "&&": a missing source must not stop the other copies.
    std::string line;
    for (const CopySource &source : kCopySources)
        line += kCopyCommand + bases[source.base] + source.text + dumpPath + ";";
    line += "sync";

    int ret = system(line.c_str());
    KELVO_UTIL_LOG("dump result=%d,", ret);
    return ret != 0;
}

// ---- programme-information export ---------------------------------------------------------

void KelvoUtilDataHandler::BackupProgramDataOfRF()
{
    KELVO_UTIL_LOG("Start to Backup ProgramData of RF channels");
    std::list<unsigned long long> ids;
    GetServiceIDFromChannelList(ids);
    SaveProgramInfoByServiceID(ids);
    KELVO_UTIL_LOG("End to Backup ProgramData of RF channels");
}

void KelvoUtilDataHandler::GetServiceIDFromChannelList(std::list<unsigned long long> &ids)
{
    TCCriteriaHelper criteria;
    criteria.WhereNot(17, -1);
    criteria.Where(9, 1);
    criteria.Fetch(TVS_FIELD_SERVICE_ID);
    criteria.Fetch(TVS_FIELD_MAJOR_NUMBER);
    criteria.Fetch(TVS_FIELD_MINOR_NUMBER);
    criteria.Fetch(TVS_FIELD_SERVICE_TYPE);
    criteria.Fetch(2);

    std::list<TCServiceData *> services;
    IService *service = TVServiceAPI::CreateService();
    if (service != nullptr) {
        service->FindServiceList(criteria, services);
        TVServiceAPI::Destroy(service);
    }
    KELVO_UTIL_LOG("RF channels size : %d ", static_cast<int>(services.size()));

    for (TCServiceData *data : services) {
        if (data == nullptr)
            continue;
        unsigned long long serviceId = static_cast<unsigned long long>(data->Get(TVS_FIELD_SERVICE_ID));
        unsigned short major = static_cast<unsigned short>(data->Get(TVS_FIELD_MAJOR_NUMBER));
        unsigned short minor = static_cast<unsigned short>(data->Get(TVS_FIELD_MINOR_NUMBER));
        int type = static_cast<int>(data->Get(TVS_FIELD_SERVICE_TYPE));
        KELVO_UTIL_LOG("service Id: %lld No:%d-%d ,type:%d", serviceId, major, minor, type);
        ids.push_back(serviceId);
        delete data;
    }
}

void KelvoUtilDataHandler::SaveProgramInfoByServiceID(std::list<unsigned long long> &ids)
{
    long long now = 0;
    GetCurrentTime(now);
    const int period = m_guidePeriod;

    IServiceGuide *guide = TVServiceAPI::CreateServiceGuide();
    if (guide == nullptr)
        return;

    std::map<unsigned int, TCProgramData *> programs;
    for (unsigned long long serviceId : ids) {
        int count = guide->FindProgramList(serviceId, static_cast<unsigned int>(now), static_cast<unsigned int>(period),
                                           programs);
        if (count < 1 || programs.empty()) {
            KELVO_UTIL_LOG("serviceId:%lld , RF Programs size : 0", serviceId);
            for (auto &entry : programs)
                delete entry.second;
        } else {
            KELVO_UTIL_LOG("serviceId:%lld , RF Programs size : %d ", serviceId, static_cast<int>(programs.size()));
            for (auto &entry : programs) {
                if (entry.second == nullptr)
                    continue;
                KelvoUtilProgramData row(entry.second);
                m_dbHelper.InsertProgramRF(std::move(row));
                delete entry.second;
            }
        }
        programs.clear();
    }
    TVServiceAPI::Destroy(guide);
}

void KelvoUtilDataHandler::BackupProgramDataOfMeta()
{
    KELVO_UTIL_LOG("Start to Backup ProgramData of Meta");
    SaveProgramInfoFromMeta();
    KELVO_UTIL_LOG("End to Backup ProgramData of Meta");
}

void KelvoUtilDataHandler::SaveProgramInfoFromMeta()
{
    long long now = 0;
    GetCurrentTime(now);
    const int period = m_guidePeriod;
    const eRemoteContentActivity activity = REMOTE_CONTENT_ACTIVITY_MAIN;

    FCRemoteContent_MSOAPI *pApi = FCAPI::GetRemoteContentMSOAPI();
    if (pApi == nullptr) {
        KELVO_UTIL_LOG("pApi == NULL, return false");
        return;
    }
    FIMatchFinder *pFinder = FCAPI::GetMatchFinder();
    if (pFinder == nullptr) {
        KELVO_UTIL_LOG("pFinder == NULL, return false");
        return;
    }

    std::vector<std::string> sourceIds;
    pApi->GetFullProgramSourceIdList(activity, sourceIds);
    KELVO_UTIL_LOG("source Id size:%d", static_cast<int>(sourceIds.size()));

    FCFilterCriteria criteria;
    std::map<std::string, std::vector<FCRemoteProgram>> programMap;
    pApi->GetProgramMap(activity, sourceIds, static_cast<int>(now), period, criteria, programMap);
    KELVO_UTIL_LOG("Meta Programs by source Id size : %d ", static_cast<int>(programMap.size()));

    for (auto &entry : programMap) {
        unsigned long long serviceId = 0;
        if (!pFinder->GetTCServiceIdByProgramSourceID(activity, entry.first, serviceId))
            serviceId = kUnknownServiceId;
        KELVO_UTIL_LOG("source Id : %s , tvsServiceId:%llu", entry.first.c_str(), serviceId);
        // Programmes of a source the match finder does not know are kept, under the all-ones id.
        for (FCRemoteProgram &program : entry.second) {
            KelvoUtilProgramData row(program, serviceId);
            m_dbHelper.InsertProgramMeta(std::move(row));
        }
    }
}
