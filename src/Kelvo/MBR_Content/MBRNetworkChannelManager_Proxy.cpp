#include "MBRNetworkChannelManager_Proxy.h"

#include "FCDebug.h"
#include "FCMarshal.h"
#include "FCProxyCall.h"

namespace {

using FCProxyCall::Reads;
using FCProxyCall::Writes;

// A failed call reads "ret" and the activity from its empty reply, as the daemon's other callers do.
constexpr FCProxyCall::TypedOver<FCProxyCall::kShared> TypedCall;

// Negative identifiers compare as huge unsigned numbers, so they are refused too.
bool ValidActivity(FCMBRNetworkChannelAPI::EActivityID id)
{
    return static_cast<unsigned int>(id) <= FCMBRNetworkChannelAPI::ACTIVITY_ID_4;
}

}  // namespace

#define FC_LOG_ACTIVITY_AND_SOURCE(id, source)                                                                         \
    FC_LOGI("%s: %s(%d) > DBG_LV[%d]activityId(%d), sourceId(%d)(If failed, same source could exists on other "        \
            "activityId)\n",                                                                                           \
            FC_DBG_LV, static_cast<int>(id), static_cast<int>(source))

FCMBRNetworkChannelManager_Proxy::~FCMBRNetworkChannelManager_Proxy() {}

bool FCMBRNetworkChannelManager_Proxy::Reset()
{
    FC_LOGI("%s: %s(%d) > DBG_LV[%d]FCMBRNetworkChannelManager_Proxy::Reset()\n", FC_DBG_LV);
    return true;
}

bool FCMBRNetworkChannelManager_Proxy::AllocateActivityIDBySourceID(int source, EActivityID &id)
{
    if (source == SOURCE_NONE) {
        FC_LOGW("%s: %s(%d) > DBG_LV[%d]FCMBRNetworkChannelManager_Proxy::AllocateActivityIDBySourceID() return "
                "false. source is invalid!\n",
                FC_DBG_LV);
        return false;
    }
    return TypedCall("AllocateActivityIDBySourceID", Writes(FCMarshal::SourceToJson, source),
                     Reads(FCMarshal::JsonToEactivityID, id));
}

bool FCMBRNetworkChannelManager_Proxy::DeleteActivityID(EActivityID id)
{
    if (!ValidActivity(id))
        return false;
    // The daemon names the deleted activity in its reply; the caller already knows it.
    EActivityID deleted = id;
    return TypedCall("DeleteActivityID", Writes(FCMarshal::EactivityIDToJson, id),
                     Reads(FCMarshal::JsonToEactivityID, deleted));
}

bool FCMBRNetworkChannelManager_Proxy::SetActivityIDSourceID(EActivityID id, ESource source)
{
    if (!ValidActivity(id))
        return false;
    FC_LOG_ACTIVITY_AND_SOURCE(id, source);
    return TypedCall("SetActivityIDSourceID", Writes(FCMarshal::EactivityIDToJson, id),
                     Writes(FCMarshal::SourceToJson, source));
}

bool FCMBRNetworkChannelManager_Proxy::AppendSourceIDIntoActivityID(EActivityID id, ESource source)
{
    if (!ValidActivity(id))
        return false;
    FC_LOG_ACTIVITY_AND_SOURCE(id, source);
    return TypedCall("AppendSourceIDIntoActivityID", Writes(FCMarshal::EactivityIDToJson, id),
                     Writes(FCMarshal::SourceToJson, source));
}

bool FCMBRNetworkChannelManager_Proxy::RemoveSourceIDWithinActivityID(EActivityID id, ESource source)
{
    if (!ValidActivity(id))
        return false;
    FC_LOG_ACTIVITY_AND_SOURCE(id, source);
    return TypedCall("RemoveSourceIDWithinActivityID", Writes(FCMarshal::EactivityIDToJson, id),
                     Writes(FCMarshal::SourceToJson, source));
}

bool FCMBRNetworkChannelManager_Proxy::GetActivityIDBySourceID(int source, EActivityID &id)
{
    FC_LOGI("%s: %s(%d) > DBG_LV[%d]sourceId(%d)\n", FC_DBG_LV, source);
    return TypedCall("GetActivityIDBySourceID", Writes(FCMarshal::SourceToJson, source),
                     Reads(FCMarshal::JsonToEactivityID, id));
}
