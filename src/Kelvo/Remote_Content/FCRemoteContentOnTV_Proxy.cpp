#include "FCRemoteContentOnTV_Proxy.h"

#include "FCDebug.h"
#include "FCMarshal.h"
#include "FCProxyCall.h"

namespace {

using FCProxyCall::Reads;
using FCProxyCall::RetToJson;
using FCProxyCall::Writes;

constexpr FCProxyCall::TypedOver<FCProxyCall::kShared> TypedCall;

constexpr auto StringCall = FCProxyCall::String;
constexpr auto NotifyCall = FCProxyCall::Notify;

// The overload that sends antenna and service mode apart.
bool (*const kTVSourceAndModesToJson)(const int &, const int &, const int &,
                                      Json::Value &) = FCMarshal::TVSourceAndTVModeToJson;

}  // namespace

// ---- FCRemoteContentOnTV_Proxy ----

#define FC_ENTRY FC_PROXY_ENTRY("FCRemoteContentOnTV_Proxy")

bool FCRemoteContentOnTV_Proxy::Reset()
{
    FC_ENTRY;
    return TypedCall("FCRemoteContent_Reset");
}

bool FCRemoteContentOnTV_Proxy::ToggleKelvoTimeoutTest(bool enable)
{
    FC_ENTRY;
    return TypedCall("ToggleKelvoTimeoutTest", Writes(RetToJson, enable));
}

bool FCRemoteContentOnTV_Proxy::SetRemoteContentEnv(const std::string &country, const std::string &language)
{
    FC_ENTRY;
    return TypedCall("SetRemoteContentEnv", Writes(FCMarshal::CountryAndLangToJson, country, language));
}

bool FCRemoteContentOnTV_Proxy::SetRemoteContentEnvForEmp(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("SetRemoteContentEnv", in, out);
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentEnv(std::string &country, std::string &language)
{
    FC_ENTRY;
    return TypedCall("GetRemoteContentEnv", Reads(FCMarshal::JsonToCountryAndLang, country, language));
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentEnv(std::string &inOut)
{
    FC_ENTRY;
    return StringCall("GetRemoteContentEnv", std::string(), inOut);
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentActivityByTVSourceAndTVMode(int source, int antennaMode,
                                                                            int serviceMode,
                                                                            eRemoteContentActivity &activity)
{
    FC_ENTRY;
    return TypedCall("GetRemoteContentActivityByTVSourceAndTSTVMode",
                     Writes(kTVSourceAndModesToJson, source, antennaMode, serviceMode),
                     Reads(FCMarshal::JsonToactivityID, activity));
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentActivityByTVSourceAndTVMode(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetRemoteContentActivityByTVSourceAndTSTVMode", in, out);
}

bool FCRemoteContentOnTV_Proxy::GetChannelCRC(std::string &crc)
{
    FC_ENTRY;
    return TypedCall("GetChannelCRC", Reads(FCMarshal::JsonToChannelCRC, crc));
}

bool FCRemoteContentOnTV_Proxy::GetFenvoraVersion(std::string &version)
{
    FC_LOGD("%s: %s(%d) > DBG_LV[%d]called\n", FC_DBG_LV);
    return TypedCall("GetFenvoraVersion", Reads(FCMarshal::JsonToStr, version));
}

bool FCRemoteContentOnTV_Proxy::NotifyPreviewDownloaderFinish(std::string &in)
{
    FC_ENTRY;
    return NotifyCall("NotifyPreviewDownloaderFinish", in);
}

bool FCRemoteContentOnTV_Proxy::NotifyDVRContentUpdate()
{
    FC_ENTRY;
    return NotifyCall("NotifyDVRContentUpdate", std::string());
}

#undef FC_ENTRY

// ---- FCRemoteContentOnTV_MSO_Proxy ----

#define FC_ENTRY FC_PROXY_ENTRY("FCRemoteContentOnTV_MSO_Proxy")

bool FCRemoteContentOnTV_MSO_Proxy::GetRemoteContentConfig(eRemoteContentActivity activity, FCRemoteMSOConfig &config)
{
    FC_ENTRY;
    return TypedCall("GetRemoteContentConfig", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToFCRemoteMSOConfig, config));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetRemoteContentConfig(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetRemoteContentConfig", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::SetRemoteContentConfig(eRemoteContentActivity activity,
                                                           const FCRemoteMSOConfig &config)
{
    FC_ENTRY;
    return TypedCall("SetRemoteContentConfig", Writes(FCMarshal::activityIDToJson, activity),
                     Writes(FCMarshal::FCRmoteMSOConfigToJson, config));
}

bool FCRemoteContentOnTV_MSO_Proxy::SetRemoteContentConfig(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("SetRemoteContentConfig", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetCertRule(eRemoteContentActivity activity, CKelvoResponse_CertRule &rule)
{
    FC_ENTRY;
    return TypedCall("GetCertRule", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToCertRule, rule));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetCertRule(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetCertRule", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFullChannelList(eRemoteContentActivity activity,
                                                       std::vector<FCRemoteChannel> &channels)
{
    FC_ENTRY;
    return TypedCall("GetFullChannelList", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToChannelList, channels));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFullChannelList(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetFullChannelList", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetTunableChannelList(eRemoteContentActivity activity,
                                                          std::vector<FCRemoteChannel> &channels)
{
    FC_ENTRY;
    return TypedCall("GetTunableChannelList", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToChannelList, channels));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetTunableChannelList(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetTunableChannelList", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetTunableProgramSourceIdMap(eRemoteContentActivity activity,
                                                                 std::map<std::string, FCRemoteChannelKey> &sourceMap)
{
    FC_ENTRY;
    return TypedCall("GetTunableProgramSourceIdMap", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToProgramSourceMap, sourceMap));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetProgramMap(eRemoteContentActivity activity, std::vector<std::string> &sourceIds,
                                                  int utcStartTime, int duration, FCFilterCriteria &filter,
                                                  std::map<std::string, std::vector<FCRemoteProgram>> &programMap)
{
    FC_ENTRY;
    return FCProxyCall::TypedEach(
        "GetProgramMap",
        FCProxyCall::ReadsEach(FCMarshal::kProgramMapKey, FCMarshal::JsonToProgramMapEntry, programMap),
        Writes(FCMarshal::SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson, activity, sourceIds,
               utcStartTime, duration, filter));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetProgramMap(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetProgramMap", in, out);
}

// The programme guide is always active on the daemon's side; these stay local on purpose.
bool FCRemoteContentOnTV_MSO_Proxy::ActivateProgramGuide(eRemoteContentActivity)
{
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::ActivateProgramGuide(const std::string &, std::string &)
{
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::DeactivateProgramGuide(eRemoteContentActivity)
{
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::DeactivateProgramGuide(const std::string &, std::string &)
{
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::LoadAdditionalProgramMapFromServer(eRemoteContentActivity activity,
                                                                       std::vector<std::string> &sourceIds,
                                                                       unsigned long utcStartTime, int duration)
{
    FC_ENTRY;
    return TypedCall(
        "LoadAdditionalProgramMapFromServer",
        Writes(FCMarshal::SourceIDListAndUtcStartTimeAndDurationToJson, activity, sourceIds, utcStartTime, duration));
}

bool FCRemoteContentOnTV_MSO_Proxy::LoadAdditionalProgramMapFromServer(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("LoadAdditionalProgramMapFromServer", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetGenreList(eRemoteContentActivity activity, std::vector<FCGenreInfo> &genres)
{
    FC_ENTRY;
    return TypedCall("GetGenreList", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToGenreList, genres));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetGenreList(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetGenreList", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetVODProviders(eRemoteContentActivity activity,
                                                    CKelvoResponse_VODProviders &providers)
{
    FC_ENTRY;
    return TypedCall("GetVODProviders", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToVODProvider, providers));
}

// The caller reads the providers from the text itself; the reply is handed over unparsed.
bool FCRemoteContentOnTV_MSO_Proxy::GetVODProviders(const std::string &in, std::string &out)
{
    FC_ENTRY;
    FCCallHelper::RemoteCallWithStringArguments("GetVODProviders", in, out);
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteProgramByProgramSourceID(eRemoteContentActivity activity,
                                                                        std::string sourceId,
                                                                        unsigned long utcCurrentTime,
                                                                        FCRemoteProgram &program)
{
    FC_ENTRY;
    return TypedCall("GetFCRemoteProgramByProgramSourceID",
                     Writes(FCMarshal::ProgramSourceIDAndUtcCurrentTimeToJson, activity, sourceId, utcCurrentTime),
                     Reads(FCMarshal::JsonToFCRemoteProgram, program));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteProgramByProgramSourceID(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetFCRemoteProgramByProgramSourceID", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteChannelByProgramSourceID(eRemoteContentActivity activity,
                                                                        std::string sourceId, FCRemoteChannel &channel)
{
    FC_ENTRY;
    return TypedCall("GetFCRemoteChannelByProgramSourceID",
                     Writes(FCMarshal::ProgramSourceIDToJson, activity, sourceId),
                     Reads(FCMarshal::JsonToFCRemoteChannel, channel));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteChannelByProgramSourceID(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetFCRemoteChannelByProgramSourceID", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetSearchKeyStringInRFMode(eRemoteContentActivity activity,
                                                               unsigned long long &serviceId,
                                                               unsigned long utcCurrentTime, std::string &searchKey)
{
    FC_ENTRY;
    return TypedCall("GetSearchKeyStringInRFMode", Writes(FCMarshal::UtcCurrentTimeToJson, activity, utcCurrentTime),
                     Writes(FCMarshal::VCServiceIdToJson, serviceId), Reads(FCMarshal::JsonToSearchString, searchKey));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetSearchKeyStringInMBRMode(eRemoteContentActivity activity,
                                                                const std::string &mbrChannelNumber,
                                                                unsigned long utcCurrentTime, std::string &searchKey)
{
    FC_ENTRY;
    return TypedCall("GetSearchKeyStringInMBRMode",
                     Writes(FCMarshal::MBRChannelAndUTCCurrentTimeToJson, activity, mbrChannelNumber, utcCurrentTime),
                     Reads(FCMarshal::JsonToSearchString, searchKey));
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFeaturedChannels(eRemoteContentActivity activity,
                                                        std::vector<FCRemoteChannel> &channels)
{
    FC_ENTRY;
    return TypedCall("GetFeaturedChannels", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToChannelList, channels));
}

// Operator contents are not taken from clients of this build.
bool FCRemoteContentOnTV_MSO_Proxy::SetMVPDContents(std::string &, std::string &)
{
    FC_ENTRY;
    return false;
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFullProgramSourceIdList(eRemoteContentActivity activity,
                                                               std::vector<std::string> &sourceIds)
{
    FC_ENTRY;
    return TypedCall("GetFullProgramSourceIdList", Writes(FCMarshal::activityIDToJson, activity),
                     Reads(FCMarshal::JsonToSourceIDList, sourceIds));
}

#undef FC_ENTRY

// ---- FCMatchFinder_Proxy ----

#define FC_ENTRY FC_PROXY_ENTRY("FCMatchFinder_Proxy")

bool FCMatchFinder_Proxy::GetFCRemoteChannelByTCServiceId(eRemoteContentActivity activity,
                                                          unsigned long long &serviceId, FCRemoteChannel &channel)
{
    FC_ENTRY;
    return TypedCall("GetFCRemoteChannelByTCServiceId", Writes(FCMarshal::activityIDToJson, activity),
                     Writes(FCMarshal::VCServiceIdToJson, serviceId), Reads(FCMarshal::JsonToFCRemoteChannel, channel));
}

bool FCMatchFinder_Proxy::GetFCRemoteChannelByTCServiceId(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetFCRemoteChannelByTCServiceId", in, out);
}

bool FCMatchFinder_Proxy::GetTCServiceIdByFCRemoteChannel(eRemoteContentActivity activity, FCRemoteChannel &channel,
                                                          unsigned long long &serviceId)
{
    FC_ENTRY;
    return TypedCall("GetTCServiceIdByFCRemoteChannel", Writes(FCMarshal::activityIDToJson, activity),
                     Writes(FCMarshal::FCRemoteChannelToJson, channel), Reads(FCMarshal::VCJsonToServiceId, serviceId));
}

bool FCMatchFinder_Proxy::GetTCServiceIdByFCRemoteChannel(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetTCServiceIdByFCRemoteChannel", in, out);
}

bool FCMatchFinder_Proxy::GetTCServiceIdByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                          unsigned long long &serviceId)
{
    FC_ENTRY;
    return TypedCall("GetTCServiceIdByProgramSourceID", Writes(FCMarshal::ProgramSourceIDToJson, activity, sourceId),
                     Reads(FCMarshal::VCJsonToServiceId, serviceId));
}

bool FCMatchFinder_Proxy::GetTCServiceIdByProgramSourceID(const std::string &in, std::string &out)
{
    FC_ENTRY;
    return StringCall("GetTCServiceIdByProgramSourceID", in, out);
}

bool FCMatchFinder_Proxy::GetTCServiceIdListByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                              std::list<unsigned long long> &serviceIds)
{
    FC_ENTRY;
    return TypedCall("GetTCServiceIdListByProgramSourceID",
                     Writes(FCMarshal::ProgramSourceIDToJson, activity, sourceId),
                     Reads(FCMarshal::JsonToServiceIDList, serviceIds));
}

bool FCMatchFinder_Proxy::GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel> &channels,
                                                            bool flag)
{
    FC_ENTRY;
    return TypedCall("GetRemoteChannelListByChannelName", Writes(FCMarshal::SearchStringToJson, name),
                     Writes(RetToJson, flag), Reads(FCMarshal::JsonToChannelList, channels));
}

bool FCMatchFinder_Proxy::GetRemoteChannelByChannelNumber(int major, int minor, FCRemoteChannel &channel)
{
    FC_ENTRY;
    return TypedCall("GetRemoteChannelByChannelNumber", Writes(FCMarshal::MajorMinorToJson, major, minor),
                     Reads(FCMarshal::JsonToFCRemoteChannel, channel));
}

bool FCMatchFinder_Proxy::GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel> &channels)
{
    FC_ENTRY;
    return TypedCall("GetRemoteChannelListByChannelName", Writes(FCMarshal::SearchStringToJson, name),
                     Reads(FCMarshal::JsonToChannelList, channels));
}

// The daemon takes the single channel number under "ret".
bool FCMatchFinder_Proxy::GetRemoteChannelByChannelNumber(int number, FCRemoteChannel &channel)
{
    FC_ENTRY;
    return TypedCall("GetRemoteChannelByChannelNumber", Writes(FCMarshal::IntToJson, number),
                     Reads(FCMarshal::JsonToFCRemoteChannel, channel));
}

namespace {
bool ProgramSearch(const char *method, const std::string &text,
                   std::map<std::string, std::vector<FCRemoteProgram>> &programMap, unsigned long utcStartTime,
                   unsigned long utcEndTime)
{
    return TypedCall(method, Writes(FCMarshal::SearchStringToJson, text),
                     Writes(FCMarshal::UtcStartTimeToJson, utcStartTime),
                     Writes(FCMarshal::UtcEndTimeToJson, utcEndTime), Reads(FCMarshal::JsonToProgramMap, programMap));
}
}  // namespace

bool FCMatchFinder_Proxy::GetRemoteProgramByKeyword(std::string keyword,
                                                    std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                                    unsigned long utcStartTime, unsigned long utcEndTime)
{
    FC_ENTRY;
    return ProgramSearch("GetRemoteProgramByKeyword", keyword, programMap, utcStartTime, utcEndTime);
}

bool FCMatchFinder_Proxy::GetRemoteProgramByTitle(std::string title,
                                                  std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                                  unsigned long utcStartTime, unsigned long utcEndTime)
{
    FC_ENTRY;
    return ProgramSearch("GetRemoteProgramByTitle", title, programMap, utcStartTime, utcEndTime);
}

bool FCMatchFinder_Proxy::GetRemoteProgramByDescription(std::string description,
                                                        std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                                        unsigned long utcStartTime, unsigned long utcEndTime)
{
    FC_ENTRY;
    return ProgramSearch("GetRemoteProgramByDescription", description, programMap, utcStartTime, utcEndTime);
}

#undef FC_ENTRY
