// Client of the daemon's image downloads; handed out by FCAPI.
#ifndef KELVO_FCTHUMBNAILMANAGER_PROXY_H
#define KELVO_FCTHUMBNAILMANAGER_PROXY_H

#include "FCThumbnailManagerAPI.h"

class FCThumbnailManager_Proxy : public FCThumbnailManagerAPI {
public:
    ~FCThumbnailManager_Proxy() override;
};

#endif
