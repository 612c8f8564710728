#include "FCVirtualChannels_Proxy.h"

#include "FCDebug.h"
#include "FCMarshal.h"
#include "FCProxyCall.h"
#include "vconf.h"

namespace {

using FCProxyCall::Reads;
using FCProxyCall::RetToJson;
using FCProxyCall::Writes;

// This proxy reports failed calls under its own file and class.
constexpr FCCallHelper::Origin kOrigin{__FILE__, __LINE__, "FCVirtualChannels_Proxy"};
using Calls = FCProxyCall::OwnCalls<kOrigin>;
constexpr const FCProxyCall::Site &kSite = FCProxyCall::kOwnSite<kOrigin>;

constexpr FCProxyCall::TypedOver<FCProxyCall::kOwnSite<kOrigin>> TypedCall;

bool StringCall(const char *method, const std::string &in, std::string &out)
{
    return FCProxyCall::Text(kSite, method, in, out);
}

bool Argumentless(const char *method)
{
    return FCProxyCall::Argumentless(kSite, method);
}

// The user's agreement to the default disclaimer, without which no usage statistic leaves the set.
const char *const kDisclaimerKey = "db/menu/tarn_deck/homedatacontrol/defaultdisclaimeragree";

// The image download id of a reply; -1 when the call failed or the reply names none.
int DownloadId(bool called, const Json::Value &reply)
{
    if (!called || !reply.isObject() || !reply.isMember("imageDownloadId"))
        return -1;
    long id = -1;
    FCMarshal::JsonToImageDownloadId(reply, id);
    return static_cast<int>(id);
}

bool (*const kJsonToDataServiceType)(const Json::Value &, EDataServiceType &) = FCMarshal::JsonToDataServiceType;

}  // namespace

#define FC_ENTRY FC_PROXY_ENTRY("FCVirtualChannels_Proxy")

FCVirtualChannels_Proxy::~FCVirtualChannels_Proxy() {}

bool FCVirtualChannels_Proxy::GetProgramList(unsigned long long const &serviceId, unsigned int startTime,
                                             unsigned int duration,
                                             std::map<unsigned int, FCVirtualProgramData> &programs)
{
    FC_ENTRY;
    return TypedCall("GetProgramList", Writes(FCMarshal::StartTimeToJson, startTime),
                     Writes(FCMarshal::DurationToJson, duration), Writes(FCMarshal::VCServiceIdToJson, serviceId),
                     Reads(FCMarshal::JsonToVirtualProgramMap, programs));
}

bool FCVirtualChannels_Proxy::GetProgramList(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetProgramList", in, out);
}

bool FCVirtualChannels_Proxy::GetProgram(EProgramIndicator indicator, FCVirtualProgramId const &id,
                                         FCVirtualProgramData &program)
{
    FC_ENTRY;
    return TypedCall("GetProgramWithIndicator", Writes(FCMarshal::EProgramIndicatorToJson, indicator),
                     Writes(FCMarshal::VirtualProgramIdToJson, id),
                     Reads(FCMarshal::JsonToVirtualProgramData, program));
}

bool FCVirtualChannels_Proxy::GetProgram(FCVirtualProgramId const &id, FCVirtualProgramData &program)
{
    FC_ENTRY;
    return TypedCall("GetProgram", Writes(FCVirtualProgramId::ToJson, id),
                     Reads(FCVirtualProgramData::FromJson, program));
}

bool FCVirtualChannels_Proxy::GetProgram(const std::string &in, std::string &out)
{
    FC_ENTRY;
    Json::Value request;
    if (!FCJsonHelper::ParseToJson(in, request)) {
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCConnectedContent_Proxy::%s] fail to parse json output data\n", FC_DBG_LV,
                __func__);
        return false;
    }
    const bool indicated = request.isObject() && request.isMember("program_indicator");
    return StringCall(indicated ? "GetProgramWithIndicator" : "GetProgram", in, out);
}

bool FCVirtualChannels_Proxy::GetPresentProgram(unsigned long long const &serviceId, FCVirtualProgramData &program)
{
    FC_ENTRY;
    return TypedCall("GetPresentProgram", Writes(FCMarshal::VCServiceIdToJson, serviceId),
                     Reads(FCMarshal::JsonToVirtualProgramData, program));
}

bool FCVirtualChannels_Proxy::GetPresentProgram(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetPresentProgram", in, out);
}

bool FCVirtualChannels_Proxy::GetChannelLogo(unsigned long long const &serviceId, EChannelLogoSize size,
                                             std::string &logo)
{
    FC_ENTRY;
    return TypedCall("GetChannelLogo", Writes(FCMarshal::VCServiceIdToJson, serviceId),
                     Writes(FCMarshal::LogoSizeToJson, size), Reads(FCMarshal::JsonToChannelLogo, logo));
}

bool FCVirtualChannels_Proxy::GetChannelLogo(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetChannelLogo", in, out);
}

bool FCVirtualChannels_Proxy::GetProgramThumbnail(FCVirtualProgramId const &id, std::string &thumbnail)
{
    FC_ENTRY;
    return TypedCall("GetProgramThumbnail", Writes(FCMarshal::VirtualProgramIdToJson, id),
                     Reads(FCMarshal::JsonToProgramLogo, thumbnail));
}

bool FCVirtualChannels_Proxy::GetProgramThumbnail(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetProgramThumbnail", in, out);
}

int FCVirtualChannels_Proxy::GetProgramImage(FCVirtualProgramId const &id, EProgramLogoType type, std::string &image)
{
    FC_ENTRY;
    return FCProxyCall::TypedAs(kSite, DownloadId, "GetProgramImage", Writes(FCMarshal::VirtualProgramIdToJson, id),
                                Writes(FCMarshal::ProgramLogoTypeToJson, type),
                                Reads(FCMarshal::JsonToProgramLogo, image));
}

int FCVirtualChannels_Proxy::GetProgramImage(const std::string &in, std::string &out)
{
    FC_ENTRY;
    if (!Calls::RemoteCallWithStringArguments("GetProgramImage", in, out))
        return -1;
    Json::Value reply;
    return DownloadId(FCJsonHelper::ParseToJson(out, reply), reply);
}

bool FCVirtualChannels_Proxy::GetProgramBackground(FCVirtualProgramId const &id, std::string &background)
{
    FC_ENTRY;
    return TypedCall("GetProgramBackground", Writes(FCMarshal::VirtualProgramIdToJson, id),
                     Reads(FCMarshal::JsonToProgramLogo, background));
}

bool FCVirtualChannels_Proxy::GetProgramBackground(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetProgramBackground", in, out);
}

bool FCVirtualChannels_Proxy::GetServiceIdFromOnTVProviderAndService(const std::string &provider,
                                                                     const std::string &service,
                                                                     unsigned long long &serviceId)
{
    FC_ENTRY;
    return TypedCall("GetServiceIdFromOnTVProviderAndService", Writes(FCMarshal::OnTvProviderIdToJson, provider),
                     Writes(FCMarshal::OnTvServiceIdToJson, service), Reads(FCMarshal::VCJsonToServiceId, serviceId));
}

bool FCVirtualChannels_Proxy::GetServiceIdFromOnTVProviderAndService(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetServiceIdFromOnTVProviderAndService", in, out);
}

bool FCVirtualChannels_Proxy::SendLogKPI(EKPIType type, std::string &eventName, std::string &category,
                                         std::string &desc)
{
    FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] type = %d, event name = %s, category = %s, "
            "desc = %s\n",
            FC_DBG_LV, __func__, static_cast<int>(type), eventName.c_str(), category.c_str(), desc.c_str());
    int agreed = 0;
    if (vconf_get_int(kDisclaimerKey, &agreed) != VCONF_OK) {
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] %s Fail\n", FC_DBG_LV, __func__, kDisclaimerKey);
        return false;
    }
    if (agreed == 0) {
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] defaultdisclaimeragree is false \n", FC_DBG_LV,
                __func__);
        return false;
    }
    const int kpiType = type;
    return TypedCall("SendLogKPI", Writes(FCMarshal::KPIInfoToJson, kpiType, eventName, category, desc));
}

bool FCVirtualChannels_Proxy::GetViewingAgreement()
{
    FC_ENTRY;
    return TypedCall("GetViewingAgreement");
}

bool FCVirtualChannels_Proxy::Reset()
{
    FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] reset start\n", FC_DBG_LV, __func__);
    std::string reply;
    if (!Calls::RemoteCallWithStringArguments("Reset", std::string(), reply))
        return false;
    FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] reset end\n", FC_DBG_LV, __func__);
    return Calls::ParseReturnValue(reply);
}

bool FCVirtualChannels_Proxy::TVLumeProgramInfoIsAvailable()
{
    FC_ENTRY;
    return Argumentless("TVLumeProgramInfoIsAvailable");
}

bool FCVirtualChannels_Proxy::TVLumeProgramInfoIsAvailable(std::string &out)
{
    FC_ENTRY;
    return StringCall("TVLumeProgramInfoIsAvailable", std::string(), out);
}

bool FCVirtualChannels_Proxy::RestartTvlumeInfo()
{
    FC_ENTRY;
    return Argumentless("RestartTvlumeInfo");
}

bool FCVirtualChannels_Proxy::RestartTvlumeInfo(std::string &out)
{
    FC_ENTRY;
    return StringCall("RestartTvlumeInfo", std::string(), out);
}

bool FCVirtualChannels_Proxy::ExtractServiceInformationsFromServiceId(unsigned long long serviceId,
                                                                      ExtractedServiceInfomations &info)
{
    return FCServiceIdUtil::ExtractServiceInformationsFromServiceId(serviceId, info);
}

bool FCVirtualChannels_Proxy::GetTVLumeProgramOnColdBoot(EPlayerType player, unsigned long long const &serviceId,
                                                         FCVirtualProgramData &program)
{
    FC_ENTRY;
    ExtractedServiceInfomations info;
    ExtractServiceInformationsFromServiceId(serviceId, info);
    return TypedCall("GetTVLumeProgramOnColdBoot", Writes(FCMarshal::VCServiceIdToJson, serviceId),
                     Writes(FCMarshal::PlayerTypeToJson, player), Writes(FCMarshal::PGNumToJson, info.program_number),
                     Reads(FCMarshal::JsonToVirtualProgramData, program));
}

bool FCVirtualChannels_Proxy::RecoverDeletedTvlumeServices()
{
    FC_ENTRY;
    return Argumentless("RecoverDeletedTvlumeServices");
}

bool FCVirtualChannels_Proxy::SetDeepLink(std::string &link)
{
    FC_ENTRY;
    std::string reply;
    return StringCall("SetDeepLink", link, reply);
}

// The daemon answers the link itself, not JSON.
bool FCVirtualChannels_Proxy::GetDeepLink(std::string &link)
{
    FC_ENTRY;
    return Calls::RemoteCallWithStringArguments("GetDeepLink", std::string(), link);
}

bool FCVirtualChannels_Proxy::GetTvlumePreviewData(std::string &out)
{
    FC_ENTRY;
    return StringCall("GetTvlumePreviewData", std::string(), out);
}

bool FCVirtualChannels_Proxy::SetMyTvlume(bool on)
{
    FC_ENTRY;
    return FCProxyCall::TypedAs(kSite, FCProxyCall::CallSucceeded, "SetMyTvlume", Writes(RetToJson, on));
}

bool FCVirtualChannels_Proxy::GetMyTvlume()
{
    FC_ENTRY;
    return TypedCall("GetMyTvlume");
}

bool FCVirtualChannels_Proxy::SetTVLumeOnOff(bool on)
{
    FC_ENTRY;
    return FCProxyCall::TypedAs(kSite, FCProxyCall::CallSucceeded, "SetTVLumeOnOff", Writes(RetToJson, on));
}

int FCVirtualChannels_Proxy::LaunchTVLumeHomeScreen()
{
    FC_ENTRY;
    auto answer = [](bool called, const Json::Value &reply) { return called ? FCMarshal::JsonToInt(reply) : -1; };
    return FCProxyCall::TypedAs(kSite, answer, "LaunchTVLumeHomeScreen");
}

bool FCVirtualChannels_Proxy::SetHomeScreenFlag(bool on)
{
    FC_ENTRY;
    return FCProxyCall::TypedAs(kSite, FCProxyCall::CallSucceeded, "SetHomeScreenFlag", Writes(RetToJson, on));
}

bool FCVirtualChannels_Proxy::GetHomeScreenFlag()
{
    FC_ENTRY;
    return TypedCall("GetHomeScreenFlag");
}

bool FCVirtualChannels_Proxy::SetDataServiceType(EDataServiceType &type)
{
    FC_ENTRY;
    const int value = type;
    const bool called = FCProxyCall::TypedAs(kSite, FCProxyCall::CallSucceeded, "SetDataServiceType",
                                             Writes(FCMarshal::IntToJson, value));
    if (!called)
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] fail to call SetDataServiceType\n", FC_DBG_LV,
                __func__);
    return called;
}

bool FCVirtualChannels_Proxy::GetDataServiceType(EDataServiceType &type)
{
    FC_ENTRY;
    const int value = type;
    bool called = false;
    auto answer = [&called](bool c, const Json::Value &reply) {
        called = c;
        return FCProxyCall::ReplyRet(c, reply);
    };
    const bool ret = FCProxyCall::TypedAs(kSite, answer, "GetDataServiceType", Writes(FCMarshal::IntToJson, value),
                                          Reads(kJsonToDataServiceType, type));
    if (!called)
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] fail to call GetDataServiceType\n", FC_DBG_LV,
                __func__);
    else
        FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] type = %d\n", FC_DBG_LV, __func__,
                static_cast<int>(type));
    return ret;
}

bool FCVirtualChannels_Proxy::IsTVLumeLaunched()
{
    FC_ENTRY;
    return TypedCall("IsTVLumeLaunched");
}

#undef FC_ENTRY
