// Client of the daemon's network (MBR) channel manager; handed out by FCAPI. It offers the
// activity operations; the channel-map operations keep the interface's bodies.
#ifndef KELVO_MBRNETWORKCHANNELMANAGER_PROXY_H
#define KELVO_MBRNETWORKCHANNELMANAGER_PROXY_H

#include "FCMBRNetworkChannelAPI.h"

class FCMBRNetworkChannelManager_Proxy : public FCMBRNetworkChannelAPI {
public:
    ~FCMBRNetworkChannelManager_Proxy() override;

    bool Reset() override;
    // Source -1 (no source) is refused without asking the daemon.
    bool AllocateActivityIDBySourceID(int source, EActivityID &id) override;
    // The activity operations refuse an identifier outside 0 to 4 without asking the daemon.
    bool DeleteActivityID(EActivityID id) override;
    bool SetActivityIDSourceID(EActivityID id, ESource source) override;
    bool AppendSourceIDIntoActivityID(EActivityID id, ESource source) override;
    bool RemoveSourceIDWithinActivityID(EActivityID id, ESource source) override;
    bool GetActivityIDBySourceID(int source, EActivityID &id) override;
};

#endif
