// Registration and lookup of images that the daemon downloads.
#ifndef KELVO_FCTHUMBNAILMANAGERAPI_H
#define KELVO_FCTHUMBNAILMANAGERAPI_H

// Where a downloaded image is kept.
enum EDownloadLocation : int { DOWNLOAD_LOCATION_MEMORY = 0, DOWNLOAD_LOCATION_STORAGE = 1 };

class FCThumbnailManagerAPI {
public:
    virtual ~FCThumbnailManagerAPI() = default;
};

#endif
