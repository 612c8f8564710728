// Registration and lookup of images that the daemon downloads.
#ifndef KELVO_FCTHUMBNAILMANAGERAPI_H
#define KELVO_FCTHUMBNAILMANAGERAPI_H

#include <string>

// Where a downloaded image is kept.
enum EDownloadLocation : int { DOWNLOAD_LOCATION_MEMORY = 0, DOWNLOAD_LOCATION_STORAGE = 1 };

class FCThumbnailManagerAPI {
public:
    virtual ~FCThumbnailManagerAPI() = default;

    // The daemon's download identifier of the item (and its file); 0 when the daemon cannot be
    // asked, negative when it refuses.
    virtual int RegisterDownloadItem(const std::string &url, const EDownloadLocation &location, std::string &file) = 0;
    virtual bool UnregisterDownloadItem(const int &id) = 0;
    virtual bool UnregisterDownloadItem(const std::string &url) = 0;
    // The item's identifier and its file, as RegisterDownloadItem answers.
    virtual int GetDownloadedItem(const int &id, std::string &file) = 0;
    virtual int GetDownloadedItem(const std::string &url, std::string &file) = 0;
    virtual bool DeleteAllImage(const EDownloadLocation &location) = 0;
};

#endif
