// Client of the daemon's genre navigation over broadcast (RF) channels; handed out by FCAPI.
#ifndef KELVO_RFNETWORKCHANNELMANAGER_PROXY_H
#define KELVO_RFNETWORKCHANNELMANAGER_PROXY_H

#include "FCRFNetworkChannelAPI.h"

class FCRFNetworkChannelManager_Proxy : public FCRFNetworkChannelAPI {
public:
    ~FCRFNetworkChannelManager_Proxy() override;
};

#endif
