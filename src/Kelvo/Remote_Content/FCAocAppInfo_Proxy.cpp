#include "FCAocAppInfo_Proxy.h"

#include "FCDebug.h"
#include "FCProxyCall.h"

#define FC_ENTRY FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCAocAppInfo_Proxy::%s] start\n", FC_DBG_LV, __func__)

FCAocAppInfo_Proxy::~FCAocAppInfo_Proxy() {}

bool FCAocAppInfo_Proxy::CreateAppInfo(const std::string &appInfo)
{
    FC_ENTRY;
    bool called = false;
    const bool result = FCProxyCall::NotifyCalled("CreateAppInfo", appInfo, called);
    if (!called)
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCAocAppInfo_Proxy::%s] false\n", FC_DBG_LV, __func__);
    return result;
}

bool FCAocAppInfo_Proxy::RemoveAppInfo(const std::string &appInfo)
{
    FC_ENTRY;
    return FCProxyCall::Notify("RemoveAppInfo", appInfo);
}

bool FCAocAppInfo_Proxy::UpdateAppInfo(const std::string &appInfo)
{
    FC_ENTRY;
    return FCProxyCall::Notify("UpdateAppInfo", appInfo);
}
