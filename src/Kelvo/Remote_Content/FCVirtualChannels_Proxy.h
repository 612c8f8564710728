// Client of the daemon's virtual-channel services; handed out by FCAPI.
#ifndef KELVO_FCVIRTUALCHANNELS_PROXY_H
#define KELVO_FCVIRTUALCHANNELS_PROXY_H

#include "FCVirtualChannelsAPI.h"

class FCVirtualChannels_Proxy : public FCVirtualChannelsAPI {
public:
    ~FCVirtualChannels_Proxy() override;
};

#endif
