// The dump and the restore of the middleware data on the attached USB storage, and the export of
// programme information into the dump database.
#ifndef KELVO_UTIL_DATA_HANDLER_H
#define KELVO_UTIL_DATA_HANDLER_H

#include <cstdio>
#include <list>
#include <string>

#include "databaseHelper.h"
#include "tzplatform_config.h"

class IUtil;

class KelvoUtilDataHandler {
public:
    KelvoUtilDataHandler();
    ~KelvoUtilDataHandler();

    // Restore: selected by a RestoreMWDB entry on the storage.
    bool IsRestoreMode(std::string mountPath);
    bool RestoreData(std::string mountPath);

    // Dump: succeeds exactly when the TVS backup does.
    bool BackupData(std::string mountPath);
    void PrepareDumpDBFolder(std::string dumpPath);
    void PrepareChannelDB();
    void MakeTimestampFile(std::string dumpPath);
    bool BackupTVSData(std::string dumpPath);
    // True when the copy command's status was non-zero.
    bool CopyFiles(std::string dumpPath);
    // fopen that never writes through a symbolic link: a link at path is removed first.
    FILE *SafeFileOpen(const char *path, std::string mode);
    bool IsMatchedPath(std::string path);
    void GetCurrentTime(long long &now);

    // Programme-information export, between OpenDB and CloseDB of the dump database.
    void BackupProgramDataOfRF();
    void GetServiceIDFromChannelList(std::list<unsigned long long> &ids);
    void SaveProgramInfoByServiceID(std::list<unsigned long long> &ids);
    void BackupProgramDataOfMeta();
    void SaveProgramInfoFromMeta();

    // Removes every symbolic link, FIFO, socket and device node that a copy of fromFolder's
    // "*<suffix>" entries made in toFolder, at the copied names and anywhere below them.
    static void RemoveCopiedSpecialFiles(const std::string &fromFolder, const std::string &suffix,
                                         const std::string &toFolder);

private:
    static bool m_IsSafeMountPath(const std::string &mountPath);
    static std::string m_PlatformFolder(enum tzplatform_variable id);
    static bool m_CallTVSUtil(int (IUtil::*operation)(const char *), const std::string &folder);

    int m_guidePeriod;
    KelvoUtilDatabaseHelper m_dbHelper;
};

#endif
