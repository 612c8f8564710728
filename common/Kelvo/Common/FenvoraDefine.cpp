#include "FenvoraDefine.h"

#include <string>

#include "FCACRSupport_Proxy.h"
#include "FCAocAppInfo_Proxy.h"
#include "FCAocProgramInfo_Proxy.h"
#include "FCDebug.h"
#include "FCJsonHelper.h"
#include "FCRemoteContentOnTV_Proxy.h"
#include "FCTVLumeControl_Proxy.h"
#include "FCThumbnailManager_Proxy.h"
#include "FCVirtualChannels_Proxy.h"
#include "MBRNetworkChannelManager_Proxy.h"
#include "RFNetworkChannelManager_Proxy.h"
#include "kelvo-dbus-proxy.h"

bool FCAPI::is_initailzed = false;

namespace {

using Factory = FCFenvoraObjectFactory;

// Every accessor: the process's one object of a service, made by the factory on the first
// request. Each service has a static of its own, whose initialisation runs once: a thread that
// asks while another is making the object waits for it and gets the same one.
template <typename T, T *(Factory::*kMake)()>
T *Shared()
{
    static T *const object = (Factory::GetInstance()->*kMake)();
    return object;
}

}  // namespace

bool FCAPI::Initialize()
{
    FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCAPI::%s] called\n", FC_DBG_LV, __func__);
    if (is_initailzed) {
        FC_LOGW("%s: %s(%d) > DBG_LV[%d][FCAPI::%s] already initialized\n", FC_DBG_LV, __func__);
        return false;
    }
    is_initailzed = true;
    // The services the utility and most clients need are made now; the rest on first use.
    GetMBRNetworkChannelAPI();
    GetRFNetworkChannelAPI();
    GetRemoteContentAPI();
    GetRemoteContentMSOAPI();
    GetMatchFinder();
    return true;
}

bool FCAPI::Finalize()
{
    if (!is_initailzed) {
        FC_LOGW("%s: %s(%d) > DBG_LV[%d][FCAPI::%s] already finalized\n", FC_DBG_LV, __func__);
        return false;
    }
    // The proxies stay: other holders may still use them, and a later Initialize reuses them.
    is_initailzed = false;
    return true;
}

bool FCAPI::Reset()
{
    FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCAPI::%s] called\n", FC_DBG_LV, __func__);
    KelvoCallResult *result = Call("Reset", "");
    if (!result)
        return false;
    if (!result->success) {
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCAPI::%s] fail to communicate using d-bus\n", FC_DBG_LV, __func__);
        DisposeCallResult(result);
        return false;
    }
    Json::Value reply;
    bool parsed = FCJsonHelper::ParseToJson(std::string(result->data ? result->data : "", result->length), reply);
    DisposeCallResult(result);
    if (!parsed) {
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCAPI::%s] fail to parse json data\n", FC_DBG_LV, __func__);
        return false;
    }
    return FCJsonHelper::ReturnBoolean(reply);
}

FCMBRNetworkChannelAPI *FCAPI::GetMBRNetworkChannelAPI()
{
    return Shared<FCMBRNetworkChannelAPI, &Factory::GetMBRNetworkChannelManager>();
}
FCRFNetworkChannelAPI *FCAPI::GetRFNetworkChannelAPI()
{
    return Shared<FCRFNetworkChannelAPI, &Factory::GetRFNetworkChannelManager>();
}
FCRemoteContentAPI *FCAPI::GetRemoteContentAPI()
{
    return Shared<FCRemoteContentAPI, &Factory::GetRemoteContentAPI>();
}
FCRemoteContent_MSOAPI *FCAPI::GetRemoteContentMSOAPI()
{
    return Shared<FCRemoteContent_MSOAPI, &Factory::GetRemoteContentMSOAPI>();
}
FCTVLumeAPI *FCAPI::GetTVLumeAPI()
{
    return Shared<FCTVLumeAPI, &Factory::GetTVLumeAPI>();
}
FIMatchFinder *FCAPI::GetMatchFinder()
{
    return Shared<FIMatchFinder, &Factory::GetMatchFinder>();
}
FCVirtualChannelsAPI *FCAPI::GetVirtualChannelsAPI()
{
    return Shared<FCVirtualChannelsAPI, &Factory::GetVirtualChannelsAPI>();
}
FCThumbnailManagerAPI *FCAPI::GetThumbnailManagerAPI()
{
    return Shared<FCThumbnailManagerAPI, &Factory::GetThumbnailManagerAPI>();
}
FIACRSupportAPI *FCAPI::GetACRSupportAPI()
{
    return Shared<FIACRSupportAPI, &Factory::GetACRSupportAPI>();
}
FCAocAppInfoAPI *FCAPI::GetAocAppInfoAPI()
{
    return Shared<FCAocAppInfoAPI, &Factory::GetAocAppInfoAPI>();
}
FCAocProgramInfoAPI *FCAPI::GetAocProgramInfoAPI()
{
    return Shared<FCAocProgramInfoAPI, &Factory::GetAocProgramInfoAPI>();
}

// Made once, by the first request of any thread, and never deleted.
FCFenvoraObjectFactory *FCFenvoraObjectFactory::GetInstance()
{
    static FCFenvoraObjectFactory *const instance = new FCObjectFactoryKR();
    return instance;
}

FCRFNetworkChannelAPI *FCObjectFactoryKR::GetRFNetworkChannelManager()
{
    return new FCRFNetworkChannelManager_Proxy();
}
FCMBRNetworkChannelAPI *FCObjectFactoryKR::GetMBRNetworkChannelManager()
{
    return new FCMBRNetworkChannelManager_Proxy();
}
FCRemoteContentAPI *FCObjectFactoryKR::GetRemoteContentAPI()
{
    return new FCRemoteContentOnTV_Proxy();
}
FCRemoteContent_MSOAPI *FCObjectFactoryKR::GetRemoteContentMSOAPI()
{
    return new FCRemoteContentOnTV_MSO_Proxy();
}
FIMatchFinder *FCObjectFactoryKR::GetMatchFinder()
{
    return new FCMatchFinder_Proxy();
}
FCVirtualChannelsAPI *FCObjectFactoryKR::GetVirtualChannelsAPI()
{
    return new FCVirtualChannels_Proxy();
}
FCThumbnailManagerAPI *FCObjectFactoryKR::GetThumbnailManagerAPI()
{
    return new FCThumbnailManager_Proxy();
}
FCTVLumeAPI *FCObjectFactoryKR::GetTVLumeAPI()
{
    return new FCTVLumeControl_Proxy();
}
FIACRSupportAPI *FCObjectFactoryKR::GetACRSupportAPI()
{
    return new FCACRSupport_Proxy();
}
FCAocAppInfoAPI *FCObjectFactoryKR::GetAocAppInfoAPI()
{
    return new FCAocAppInfo_Proxy();
}
FCAocProgramInfoAPI *FCObjectFactoryKR::GetAocProgramInfoAPI()
{
    return new FCAocProgramInfo_Proxy();
}
