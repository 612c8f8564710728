#include "FCAocProgramInfo_Proxy.h"

#include "FCDebug.h"
#include "FCMarshal.h"
#include "FCProxyCall.h"

#define FC_ENTRY FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCAocProgramInfo_Proxy::%s] start\n", FC_DBG_LV, __func__)
#define FC_RET(ret) FC_LOGD("%s: %s(%d) > DBG_LV[%d][FCAocProgramInfo_Proxy::%s] ret:%d\n", FC_DBG_LV, __func__, ret)

namespace {

using FCProxyCall::Reads;
using FCProxyCall::Writes;

// Outputs are read from every reply of a call that went through, also one saying "ret": false;
// a failed call leaves them as the caller had them.
constexpr FCProxyCall::TypedOver<FCProxyCall::kSharedOutputsOnSuccess> TypedCall;

}  // namespace

FCAocProgramInfo_Proxy::~FCAocProgramInfo_Proxy() {}

bool FCAocProgramInfo_Proxy::RemoveProgramInfo(std::string packageId)
{
    FC_ENTRY;
    return TypedCall("RemoveProgramInfo", Writes(FCAocMarshal::PackageIdToJson, packageId));
}

bool FCAocProgramInfo_Proxy::UpdateProgramInfo(std::string packageId, unsigned long long serviceId,
                                               std::map<unsigned int, FCAocProgramData> &programs)
{
    FC_ENTRY;
    return TypedCall("UpdateProgramInfo", Writes(FCAocMarshal::PackageIdToJson, packageId),
                     Writes(FCMarshal::VCServiceIdToJson, serviceId),
                     Writes(FCAocMarshal::AocProgramMapToJson, programs));
}

bool FCAocProgramInfo_Proxy::GetProgramInfoList(unsigned long long serviceId, unsigned int startTime,
                                                unsigned int duration,
                                                std::map<unsigned int, FCAocProgramData> &programs)
{
    FC_ENTRY;
    const bool ret =
        TypedCall("GetProgramInfoList", Writes(FCMarshal::VCServiceIdToJson, serviceId),
                  Writes(FCMarshal::StartTimeToJson, startTime), Writes(FCMarshal::DurationToJson, duration),
                  Reads(FCAocMarshal::JsonToAocProgramMap, programs));
    FC_RET(ret);
    return ret;
}

bool FCAocProgramInfo_Proxy::GetPresentProgramInfo(unsigned long long serviceId, FCAocProgramData &program)
{
    FC_ENTRY;
    const bool ret = TypedCall("GetPresentProgramInfo", Writes(FCMarshal::VCServiceIdToJson, serviceId),
                               Reads(FCAocMarshal::JsonToAocProgramData, program));
    FC_RET(ret);
    return ret;
}

bool FCAocProgramInfo_Proxy::GetProgramInfoByIndicator(EProgramIndicator indicator, FCAocProgramId const &id,
                                                       FCAocProgramData &program)
{
    FC_ENTRY;
    return TypedCall("GetProgramInfo_Indicator", Writes(FCMarshal::EProgramIndicatorToJson, indicator),
                     Writes(FCAocMarshal::AocProgramIdToJson, id), Reads(FCAocMarshal::JsonToAocProgramData, program));
}

bool FCAocProgramInfo_Proxy::GetProgramInfo(FCAocProgramId const &id, FCAocProgramData &program)
{
    FC_ENTRY;
    return TypedCall("GetProgramInfo", Writes(FCAocMarshal::AocProgramIdToJson, id),
                     Reads(FCAocMarshal::JsonToAocProgramData, program));
}

bool FCAocProgramInfo_Proxy::SetVODResumeInfo(unsigned long long serviceId, const std::string &itemId,
                                              const unsigned long &position)
{
    FC_ENTRY;
    return TypedCall("SetVODResumeInfo", Writes(FCMarshal::VCServiceIdToJson, serviceId),
                     Writes(FCMarshal::ItemIDToJson, itemId), Writes(FCMarshal::PositonToJson, position));
}
