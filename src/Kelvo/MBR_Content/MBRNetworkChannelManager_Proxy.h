// Client of the daemon's network (MBR) channel manager; handed out by FCAPI.
#ifndef KELVO_MBRNETWORKCHANNELMANAGER_PROXY_H
#define KELVO_MBRNETWORKCHANNELMANAGER_PROXY_H

#include "FCMBRNetworkChannelAPI.h"

class FCMBRNetworkChannelManager_Proxy : public FCMBRNetworkChannelAPI {
public:
    ~FCMBRNetworkChannelManager_Proxy() override;
};

#endif
