#include "FCACRSupport_Proxy.h"

#include "FCDebug.h"
#include "FCMarshal.h"
#include "FCProxyCall.h"

#define FC_ACR_LOG_TAG "kelvo-acr"

namespace {

using FCProxyCall::Reads;
using FCProxyCall::Writes;

// The recognition service's log readers pick its failures out by this priority number.
const log_priority kFailurePriority = static_cast<log_priority>(7);

// The shared exchange, with the failure also told under the recognition tag. Each wire method is
// named after its operation, which the line names as its function.
bool AcrJsonCall(const char *method, const Json::Value &in, Json::Value &out)
{
    if (FCCallHelper::RemoteCallWithJsonArguments(method, in, out))
        return true;
    dlog_print(kFailurePriority, FC_ACR_LOG_TAG, "%s: %s(%d) fail to communicate using d-bus", KELVO_FILENAME, method,
               __LINE__);
    return false;
}

constexpr FCProxyCall::Site kAcr{AcrJsonCall, false};

constexpr FCProxyCall::TypedOver<kAcr> TypedCall;

}  // namespace

#define FC_ACR_START FC_LOG_TAGGED(DLOG_INFO, FC_ACR_LOG_TAG, "%s: %s(%d) start")

bool FCACRSupport_Proxy::IsNearProgramBoundary(ESource source, unsigned int sec, bool &near)
{
    FC_ACR_START;
    return TypedCall("IsNearProgramBoundary", Writes(FCMarshal::SourceToJson, source),
                     Writes(FCMarshal::SecToJson, sec), Reads(FCMarshal::JsonToFlag, near));
}

bool FCACRSupport_Proxy::GetVerifiedMeta(ESource source, AcrVerified &verified, std::string &programSourceId,
                                         std::string &programId, unsigned long &utcStart)
{
    FC_ACR_START;
    return TypedCall("GetVerifiedMeta", Writes(FCMarshal::SourceToJson, source),
                     Reads(FCMarshal::JsonToAcrVerified, verified),
                     Reads(FCMarshal::JsonToProgramSourceID_ACR, programSourceId),
                     Reads(FCMarshal::JsonToProgramID_ACR, programId), Reads(FCMarshal::JsonToUtcStartTime, utcStart));
}

bool FCACRSupport_Proxy::SetVerifiedACRInfo(ESource source, bool flag, std::string programSourceId,
                                            std::string programId)
{
    FC_ACR_START;
    return TypedCall("SetVerifiedACRInfo", Writes(FCMarshal::SourceToJson, source), Writes(FCMarshal::FlagToJson, flag),
                     Writes(FCMarshal::ProgramSourceIDToJson_ACR, programSourceId),
                     Writes(FCMarshal::ProgramIDToJson_ACR, programId));
}

FCACRSupport_Proxy::~FCACRSupport_Proxy() {}
