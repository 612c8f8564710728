// Genre-filtered navigation over broadcast (RF) channels.
#ifndef KELVO_FCRFNETWORKCHANNELAPI_H
#define KELVO_FCRFNETWORKCHANNELAPI_H

class FCRFNetworkChannelAPI {
public:
    enum ENavigationMode : int { NAVIGATION_MODE_ALL = 0, NAVIGATION_MODE_GENRE = 1 };

    virtual ~FCRFNetworkChannelAPI() = default;
};

#endif
