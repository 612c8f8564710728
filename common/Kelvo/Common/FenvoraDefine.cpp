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
FCMBRNetworkChannelAPI *FCAPI::m_pMBRNetworkChannelAPI = nullptr;
FCRFNetworkChannelAPI *FCAPI::m_pRFNetworkChannelAPI = nullptr;
FCRemoteContentAPI *FCAPI::m_pRemoteContentAPI = nullptr;
FCRemoteContent_MSOAPI *FCAPI::m_pRemoteContentMSOAPI = nullptr;
FCTVLumeAPI *FCAPI::m_pTVLumeAPI = nullptr;
FIMatchFinder *FCAPI::m_pMatchFinder = nullptr;
FCVirtualChannelsAPI *FCAPI::m_pVirtualChannelsAPI = nullptr;
FCThumbnailManagerAPI *FCAPI::m_pThumbnailManagerAPI = nullptr;
FIACRSupportAPI *FCAPI::m_pACRSupportAPI = nullptr;
FCAocAppInfoAPI *FCAPI::m_pAocAppInfoAPI = nullptr;
FCAocProgramInfoAPI *FCAPI::m_pAocProgramInfoAPI = nullptr;

FCFenvoraObjectFactory *FCFenvoraObjectFactory::m_pInstance = nullptr;

namespace {

using Factory = FCFenvoraObjectFactory;

// Every accessor: the cached object, else a new one from the factory, kept for the process.
template <typename T>
T *Cached(T *&cache, T *(Factory::*make)())
{
    if (cache)
        return cache;
    Factory *factory = Factory::GetInstance();
    if (!factory)
        return nullptr;
    cache = (factory->*make)();
    return cache;
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
    return Cached(m_pMBRNetworkChannelAPI, &Factory::GetMBRNetworkChannelManager);
}
FCRFNetworkChannelAPI *FCAPI::GetRFNetworkChannelAPI()
{
    return Cached(m_pRFNetworkChannelAPI, &Factory::GetRFNetworkChannelManager);
}
FCRemoteContentAPI *FCAPI::GetRemoteContentAPI()
{
    return Cached(m_pRemoteContentAPI, &Factory::GetRemoteContentAPI);
}
FCRemoteContent_MSOAPI *FCAPI::GetRemoteContentMSOAPI()
{
    return Cached(m_pRemoteContentMSOAPI, &Factory::GetRemoteContentMSOAPI);
}
FCTVLumeAPI *FCAPI::GetTVLumeAPI()
{
    return Cached(m_pTVLumeAPI, &Factory::GetTVLumeAPI);
}
FIMatchFinder *FCAPI::GetMatchFinder()
{
    return Cached(m_pMatchFinder, &Factory::GetMatchFinder);
}
FCVirtualChannelsAPI *FCAPI::GetVirtualChannelsAPI()
{
    return Cached(m_pVirtualChannelsAPI, &Factory::GetVirtualChannelsAPI);
}
FCThumbnailManagerAPI *FCAPI::GetThumbnailManagerAPI()
{
    return Cached(m_pThumbnailManagerAPI, &Factory::GetThumbnailManagerAPI);
}
FIACRSupportAPI *FCAPI::GetACRSupportAPI()
{
    return Cached(m_pACRSupportAPI, &Factory::GetACRSupportAPI);
}
FCAocAppInfoAPI *FCAPI::GetAocAppInfoAPI()
{
    return Cached(m_pAocAppInfoAPI, &Factory::GetAocAppInfoAPI);
}
FCAocProgramInfoAPI *FCAPI::GetAocProgramInfoAPI()
{
    return Cached(m_pAocProgramInfoAPI, &Factory::GetAocProgramInfoAPI);
}

// Filled before any concurrent use (by FCAPI::Initialize), so it takes no lock.
FCFenvoraObjectFactory *FCFenvoraObjectFactory::GetInstance()
{
    if (!m_pInstance)
        m_pInstance = new FCObjectFactoryKR();
    return m_pInstance;
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
