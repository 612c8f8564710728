#include "FCTVLumeControl_Proxy.h"

#include "FCDebug.h"
#include "FCMarshal.h"
#include "FCProxyCall.h"

namespace {

using FCProxyCall::Reads;
using FCProxyCall::RetToJson;
using FCProxyCall::Writes;

// This proxy reports failed calls under its own file and class.
constexpr FCCallHelper::Origin kOrigin{__FILE__, __LINE__, "FCTVLumeControl_Proxy"};
using Calls = FCProxyCall::OwnCalls<kOrigin>;
constexpr const FCProxyCall::Site &kSite = FCProxyCall::kOwnSite<kOrigin>;

bool Argumentless(const char *method)
{
    return FCProxyCall::Argumentless(kSite, method);
}

// The version travels beside the application id and address, which have a wrapper of their own.
bool AppIdUrlAndVersionToJson(const std::string &appId, const std::string &url, const std::string &version,
                              Json::Value &out)
{
    FCMarshal::APPIDAndURLToJson(appId, url, out);
    out["version"] = version;
    return true;
}

bool JsonToAppIdUrlAndVersion(const Json::Value &in, std::string &appId, std::string &url, std::string &version)
{
    FCMarshal::JsonToAPPIDAndURL(in, appId, url);
    version = FCJsonHelper::MemberOr(in, "version", Json::Value("")).asString();
    return true;
}

}  // namespace

#define FC_ENTRY FC_PROXY_ENTRY("FCTVLumeControl_Proxy")

FCTVLumeControl_Proxy::~FCTVLumeControl_Proxy() {}

bool FCTVLumeControl_Proxy::LaunchedTVLumeWebApp()
{
    FC_ENTRY;
    return Argumentless("LaunchedTVLumeWebApp");
}

bool FCTVLumeControl_Proxy::GetAppIDAndURL(std::string &appId, std::string &url)
{
    FC_ENTRY;
    return FCProxyCall::Typed(kSite, "GetAppIDAndURL", Writes(FCMarshal::APPIDAndURLToJson, appId, url),
                              Reads(FCMarshal::JsonToAPPIDAndURL, appId, url));
}

bool FCTVLumeControl_Proxy::GetAppIDAndURLAndVersion(std::string &appId, std::string &url, std::string &version)
{
    FC_ENTRY;
    return FCProxyCall::Typed(kSite, "GetAppIDAndURLAndVersion", Writes(AppIdUrlAndVersionToJson, appId, url, version),
                              Reads(JsonToAppIdUrlAndVersion, appId, url, version));
}

bool FCTVLumeControl_Proxy::IsFirstEntryToTvlume()
{
    FC_ENTRY;
    return Argumentless("IsFirstEntryToTvlume");
}

bool FCTVLumeControl_Proxy::IsInstantOn()
{
    FC_ENTRY;
    return Argumentless("IsInstantOn");
}

bool FCTVLumeControl_Proxy::EnterTVLumeWebApp(eTVLumeWebAppVisible visible)
{
    FC_ENTRY;
    return FCProxyCall::Typed(kSite, "EnterTVLumeWebApp", Writes(FCMarshal::eTVLumeWebAppVisibleToJson, visible));
}

bool FCTVLumeControl_Proxy::BlockOnChLeave()
{
    FC_ENTRY;
    return Argumentless("BlockOnChLeave");
}

bool FCTVLumeControl_Proxy::BlockClear()
{
    FC_ENTRY;
    return Argumentless("BlockClear");
}

bool FCTVLumeControl_Proxy::EnterFullPage()
{
    FC_ENTRY;
    return Argumentless("EnterFullPage");
}

bool FCTVLumeControl_Proxy::ExitFullPage()
{
    FC_ENTRY;
    return Argumentless("ExitFullPage");
}

bool FCTVLumeControl_Proxy::NotifyPepperPluginIsDown()
{
    FC_ENTRY;
    return Argumentless("NotifyPepperPluginIsDown");
}

bool FCTVLumeControl_Proxy::IsEnterFullPage()
{
    FC_ENTRY;
    return Argumentless("IsEnterFullPage");
}

bool FCTVLumeControl_Proxy::CheckDoNotSendTuneSuccess()
{
    FC_ENTRY;
    return Argumentless("CheckDoNotSendTuneSuccess");
}

bool FCTVLumeControl_Proxy::SetUnlockedFlag(bool unlocked)
{
    FC_ENTRY;
    return FCProxyCall::Typed(kSite, "SetUnlockedFlag", Writes(RetToJson, unlocked));
}

bool FCTVLumeControl_Proxy::SetUnlockedFlagCompat(bool unlocked)
{
    return SetUnlockedFlag(unlocked);
}

bool FCTVLumeControl_Proxy::CheckRatingLockATSC()
{
    FC_ENTRY;
    return Argumentless("CheckRatingLockATSC");
}

bool FCTVLumeControl_Proxy::UnMuteRatingLockByPinCode()
{
    FC_ENTRY;
    return Argumentless("UnMuteRatingLockByPinCode");
}

bool FCTVLumeControl_Proxy::GetRatingInfo(std::vector<RatingInfo> &ratings)
{
    FC_ENTRY;
    return FCProxyCall::Typed(kSite, "GetRatingInfo", Reads(FCMarshal::JsonToRatingList, ratings));
}

bool FCTVLumeControl_Proxy::NotifyContentIsChanged(bool changed, std::string rating)
{
    FC_ENTRY;
    return FCProxyCall::Typed(kSite, "NotifyContentIsChanged", Writes(RetToJson, changed),
                              Writes(FCMarshal::StrRatingToJson, rating));
}

// A daemon older than this method answers it with nothing; the ATSC check stands in for it there.
bool FCTVLumeControl_Proxy::CheckTVLumeRatingLock()
{
    FC_ENTRY;
    std::string reply;
    bool called = Calls::RemoteCallWithStringArguments("CheckTVLumeRatingLock", std::string(), reply);
    if (called && reply.empty())
        called = Calls::RemoteCallWithStringArguments("CheckRatingLockATSC", std::string(), reply);
    if (!called)
        return false;
    return Calls::ParseReturnValue(reply);
}

// A daemon older than this method does not know it; the unlocked flag is the nearest it knows.
bool FCTVLumeControl_Proxy::SetUnlockedInfo(int info)
{
    FC_ENTRY;
    Json::Value argument(Json::objectValue), reply;
    FCMarshal::IntToJson(info, argument);
    if (!Calls::RemoteCallWithJsonArguments("SetUnlockedInfo", argument, reply)) {
        const bool unlocked = true;
        Json::Value flag(Json::objectValue);
        RetToJson(unlocked, flag);
        if (!Calls::RemoteCallWithJsonArguments("SetUnlockedFlag", flag, reply))
            return false;
    }
    return FCJsonHelper::ReturnBoolean(reply);
}

bool FCTVLumeControl_Proxy::ResetTemporalUnLockStatus()
{
    FC_ENTRY;
    return Argumentless("ResetTemporalUnLockStatus");
}

bool FCTVLumeControl_Proxy::ResetTemporalUnLockStatusWhenChannelChange()
{
    FC_ENTRY;
    return Argumentless("ResetTemporalUnLockStatusWhenChannelChange");
}

#undef FC_ENTRY
