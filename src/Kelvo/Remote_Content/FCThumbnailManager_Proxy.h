// Client of the daemon's image downloads; handed out by FCAPI. A failed call leaves the caller's
// file as it was.
#ifndef KELVO_FCTHUMBNAILMANAGER_PROXY_H
#define KELVO_FCTHUMBNAILMANAGER_PROXY_H

#include "FCThumbnailManagerAPI.h"

class FCThumbnailManager_Proxy : public FCThumbnailManagerAPI {
public:
    ~FCThumbnailManager_Proxy() override;

    int RegisterDownloadItem(const std::string &url, const EDownloadLocation &location, std::string &file) override;
    bool UnregisterDownloadItem(const int &id) override;
    bool UnregisterDownloadItem(const std::string &url) override;
    int GetDownloadedItem(const int &id, std::string &file) override;
    int GetDownloadedItem(const std::string &url, std::string &file) override;
    bool DeleteAllImage(const EDownloadLocation &location) override;
};

#endif
