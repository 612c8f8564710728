// Entry of the provider client: initialisation, reset of the content daemon, and one shared proxy
// per remote service, made by the process's object factory.
#ifndef KELVO_FENVORADEFINE_H
#define KELVO_FENVORADEFINE_H

// The remote-content, MSO and match-finder interfaces are what most users need, so they come
// with this header; the other services are declared only, and their users include their headers.
#include "FCRemoteContentAPI.h"
#include "FCRemoteContent_MSOAPI.h"
#include "FIMatchFinder.h"

class FCRFNetworkChannelAPI;
class FCMBRNetworkChannelAPI;
class FCVirtualChannelsAPI;
class FCThumbnailManagerAPI;
class FCTVLumeAPI;
class FIACRSupportAPI;
class FCAocAppInfoAPI;
class FCAocProgramInfoAPI;

class FCAPI {
public:
    static bool Initialize();
    static bool Finalize();
    static bool Reset();

    // Each returns the one object of its service, made on first request and never deleted. The
    // first requests may come from several threads at once and still make one object.
    static FCMBRNetworkChannelAPI *GetMBRNetworkChannelAPI();
    static FCRFNetworkChannelAPI *GetRFNetworkChannelAPI();
    static FCRemoteContentAPI *GetRemoteContentAPI();
    static FCRemoteContent_MSOAPI *GetRemoteContentMSOAPI();
    static FCTVLumeAPI *GetTVLumeAPI();
    static FIMatchFinder *GetMatchFinder();
    static FCVirtualChannelsAPI *GetVirtualChannelsAPI();
    static FCThumbnailManagerAPI *GetThumbnailManagerAPI();
    static FIACRSupportAPI *GetACRSupportAPI();
    static FCAocAppInfoAPI *GetAocAppInfoAPI();
    static FCAocProgramInfoAPI *GetAocProgramInfoAPI();

    static bool is_initailzed;
};

// Makes proxies; every operation returns a new object owned by the caller.
class FCFenvoraObjectFactory {
public:
    static FCFenvoraObjectFactory *GetInstance();

    virtual FCRFNetworkChannelAPI *GetRFNetworkChannelManager() = 0;
    virtual FCMBRNetworkChannelAPI *GetMBRNetworkChannelManager() = 0;
    virtual FCRemoteContentAPI *GetRemoteContentAPI() = 0;
    virtual FCRemoteContent_MSOAPI *GetRemoteContentMSOAPI() = 0;
    virtual FIMatchFinder *GetMatchFinder() = 0;
    virtual FCVirtualChannelsAPI *GetVirtualChannelsAPI() = 0;
    virtual FCThumbnailManagerAPI *GetThumbnailManagerAPI() = 0;
    virtual FCTVLumeAPI *GetTVLumeAPI() = 0;
    virtual FIACRSupportAPI *GetACRSupportAPI() = 0;
    virtual FCAocAppInfoAPI *GetAocAppInfoAPI() = 0;
    virtual FCAocProgramInfoAPI *GetAocProgramInfoAPI() = 0;
    // Declared after the operations: the factory's table keeps the destructor in the last slots.
    virtual ~FCFenvoraObjectFactory() {}
};

class FCObjectFactoryKR : public FCFenvoraObjectFactory {
public:
    FCRFNetworkChannelAPI *GetRFNetworkChannelManager() override;
    FCMBRNetworkChannelAPI *GetMBRNetworkChannelManager() override;
    FCRemoteContentAPI *GetRemoteContentAPI() override;
    FCRemoteContent_MSOAPI *GetRemoteContentMSOAPI() override;
    FIMatchFinder *GetMatchFinder() override;
    FCVirtualChannelsAPI *GetVirtualChannelsAPI() override;
    FCThumbnailManagerAPI *GetThumbnailManagerAPI() override;
    FCTVLumeAPI *GetTVLumeAPI() override;
    FIACRSupportAPI *GetACRSupportAPI() override;
    FCAocAppInfoAPI *GetAocAppInfoAPI() override;
    FCAocProgramInfoAPI *GetAocProgramInfoAPI() override;
};

#endif
