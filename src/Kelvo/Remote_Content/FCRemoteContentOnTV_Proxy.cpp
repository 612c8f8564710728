#include "FCRemoteContentOnTV_Proxy.h"

#include "FCCallHelper.h"
#include "FCDebug.h"
#include "FCJsonHelper.h"
#include "FCMarshal.h"

#define FC_PROXY_ENTRY(cls) FC_LOGD("%s: %s(%d) > DBG_LV[%d][" cls "::%s] called\n", FC_DBG_LV, __func__)

namespace {

// Where a typed operation has nothing to send, or nothing to read beyond "ret".
const auto kEmptyObject = [](Json::Value& in) { in = Json::Value(Json::objectValue); };
const auto kRetOnly = [](Json::Value&) {};

// "ret" of a reply; absent, or of a kind that is no flag, it reads false.
bool ReplyRet(const Json::Value& reply) {
    if (!reply.isObject() || !reply.isMember("ret")) return false;
    const Json::Value& ret = reply["ret"];
    return ret.isConvertibleTo(Json::booleanValue) && ret.asBool();
}

// The typed form of every operation: write the arguments, make the call, fill the outputs from the
// reply and answer the reply's "ret". The outputs are read whatever "ret" said (and from the empty
// reply of a failed call), as the daemon's callers expect partly filled outputs.
template <typename Write, typename Read>
bool TypedCall(const char* method, Write write, Read read) {
    Json::Value argument;
    write(argument);
    Json::Value reply;
    // A failed call leaves the reply empty, except that a reply cut short keeps what jsoncpp read
    // before the cut ({"ret":true,... would still say true); and a reply that is no object (a bare
    // number, an array) cannot be indexed by name. Both are read as the empty reply.
    if (!FCCallHelper::RemoteCallWithJsonArguments(method, argument, reply) || !reply.isObject()) reply = Json::Value();
    read(reply);
    return ReplyRet(reply);
}

// The string form: the caller's text goes out unchanged and the reply text comes back to it.
bool StringCall(const char* method, const std::string& in, std::string& out) {
    FCCallHelper::RemoteCallWithStringArguments(method, in, out);
    return FCJsonHelper::ParseReturnBoolean(out);
}

// Notifications: false when the call itself fails, otherwise the reply's "ret".
bool NotifyCall(const char* method, const std::string& in) {
    std::string reply;
    if (!FCCallHelper::RemoteCallWithStringArguments(method, in, reply)) return false;
    return FCJsonHelper::ParseReturnBoolean(reply);
}

}  // namespace

// ---- FCRemoteContentOnTV_Proxy ----

#define FC_ENTRY FC_PROXY_ENTRY("FCRemoteContentOnTV_Proxy")

bool FCRemoteContentOnTV_Proxy::Reset() {
    FC_ENTRY;
    return TypedCall("FCRemoteContent_Reset", kEmptyObject, kRetOnly);
}

bool FCRemoteContentOnTV_Proxy::ToggleKelvoTimeoutTest(bool enable) {
    FC_ENTRY;
    return TypedCall("ToggleKelvoTimeoutTest", [&](Json::Value& in) { in["ret"] = enable; }, kRetOnly);
}

bool FCRemoteContentOnTV_Proxy::SetRemoteContentEnv(const std::string& country, const std::string& language) {
    FC_ENTRY;
    return TypedCall("SetRemoteContentEnv",
                     [&](Json::Value& in) { FCMarshal::CountryAndLangToJson(country, language, in); }, kRetOnly);
}

bool FCRemoteContentOnTV_Proxy::SetRemoteContentEnvForEmp(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("SetRemoteContentEnv", in, out);
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentEnv(std::string& country, std::string& language) {
    FC_ENTRY;
    return TypedCall("GetRemoteContentEnv", kEmptyObject,
                     [&](Json::Value& reply) { FCMarshal::JsonToCountryAndLang(reply, country, language); });
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentEnv(std::string& inOut) {
    FC_ENTRY;
    return StringCall("GetRemoteContentEnv", std::string(), inOut);
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentActivityByTVSourceAndTVMode(int source, int antennaMode,
                                                                            int serviceMode,
                                                                            eRemoteContentActivity& activity) {
    FC_ENTRY;
    return TypedCall(
        "GetRemoteContentActivityByTVSourceAndTSTVMode",
        [&](Json::Value& in) { FCMarshal::TVSourceAndTVModeToJson(source, antennaMode, serviceMode, in); },
        [&](Json::Value& reply) { FCMarshal::JsonToactivityID(reply, activity); });
}

bool FCRemoteContentOnTV_Proxy::GetRemoteContentActivityByTVSourceAndTVMode(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetRemoteContentActivityByTVSourceAndTSTVMode", in, out);
}

bool FCRemoteContentOnTV_Proxy::GetChannelCRC(std::string& crc) {
    FC_ENTRY;
    return TypedCall("GetChannelCRC", kEmptyObject, [&](Json::Value& reply) { FCMarshal::JsonToChannelCRC(reply, crc); });
}

bool FCRemoteContentOnTV_Proxy::GetFenvoraVersion(std::string& version) {
    FC_LOGD("%s: %s(%d) > DBG_LV[%d]called\n", FC_DBG_LV);
    return TypedCall("GetFenvoraVersion", kEmptyObject, [&](Json::Value& reply) { FCMarshal::JsonToStr(reply, version); });
}

bool FCRemoteContentOnTV_Proxy::NotifyPreviewDownloaderFinish(std::string& in) {
    FC_ENTRY;
    return NotifyCall("NotifyPreviewDownloaderFinish", in);
}

bool FCRemoteContentOnTV_Proxy::NotifyDVRContentUpdate() {
    FC_ENTRY;
    return NotifyCall("NotifyDVRContentUpdate", std::string());
}

#undef FC_ENTRY

// ---- FCRemoteContentOnTV_MSO_Proxy ----

#define FC_ENTRY FC_PROXY_ENTRY("FCRemoteContentOnTV_MSO_Proxy")

bool FCRemoteContentOnTV_MSO_Proxy::GetRemoteContentConfig(eRemoteContentActivity activity, FCRemoteMSOConfig& config) {
    FC_ENTRY;
    return TypedCall("GetRemoteContentConfig", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToFCRemoteMSOConfig(reply, config); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetRemoteContentConfig(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetRemoteContentConfig", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::SetRemoteContentConfig(eRemoteContentActivity activity,
                                                           const FCRemoteMSOConfig& config) {
    FC_ENTRY;
    return TypedCall("SetRemoteContentConfig",
                     [&](Json::Value& in) {
                         FCMarshal::activityIDToJson(activity, in);
                         FCMarshal::FCRmoteMSOConfigToJson(config, in);
                     },
                     kRetOnly);
}

bool FCRemoteContentOnTV_MSO_Proxy::SetRemoteContentConfig(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("SetRemoteContentConfig", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetCertRule(eRemoteContentActivity activity, CKelvoResponse_CertRule& rule) {
    FC_ENTRY;
    return TypedCall("GetCertRule", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToCertRule(reply, rule); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetCertRule(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetCertRule", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFullChannelList(eRemoteContentActivity activity,
                                                       std::vector<FCRemoteChannel>& channels) {
    FC_ENTRY;
    return TypedCall("GetFullChannelList", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToChannelList(reply, channels); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFullChannelList(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetFullChannelList", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetTunableChannelList(eRemoteContentActivity activity,
                                                          std::vector<FCRemoteChannel>& channels) {
    FC_ENTRY;
    return TypedCall("GetTunableChannelList", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToChannelList(reply, channels); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetTunableChannelList(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetTunableChannelList", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetTunableProgramSourceIdMap(eRemoteContentActivity activity,
                                                                 std::map<std::string, FCRemoteChannelKey>& sourceMap) {
    FC_ENTRY;
    return TypedCall("GetTunableProgramSourceIdMap",
                     [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToProgramSourceMap(reply, sourceMap); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetProgramMap(eRemoteContentActivity activity, std::vector<std::string>& sourceIds,
                                                  int utcStartTime, int duration, FCFilterCriteria& filter,
                                                  std::map<std::string, std::vector<FCRemoteProgram>>& programMap) {
    FC_ENTRY;
    return TypedCall("GetProgramMap",
                     [&](Json::Value& in) {
                         FCMarshal::SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson(
                             activity, sourceIds, utcStartTime, duration, filter, in);
                     },
                     [&](Json::Value& reply) { FCMarshal::JsonToProgramMap(reply, programMap); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetProgramMap(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetProgramMap", in, out);
}

// The programme guide is always active on the daemon's side; these stay local on purpose.
bool FCRemoteContentOnTV_MSO_Proxy::ActivateProgramGuide(eRemoteContentActivity) {
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::ActivateProgramGuide(const std::string&, std::string&) {
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::DeactivateProgramGuide(eRemoteContentActivity) {
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::DeactivateProgramGuide(const std::string&, std::string&) {
    FC_ENTRY;
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::LoadAdditionalProgramMapFromServer(eRemoteContentActivity activity,
                                                                       std::vector<std::string>& sourceIds,
                                                                       unsigned long utcStartTime, int duration) {
    FC_ENTRY;
    return TypedCall("LoadAdditionalProgramMapFromServer",
                     [&](Json::Value& in) {
                         FCMarshal::SourceIDListAndUtcStartTimeAndDurationToJson(activity, sourceIds, utcStartTime,
                                                                                 duration, in);
                     },
                     kRetOnly);
}

bool FCRemoteContentOnTV_MSO_Proxy::LoadAdditionalProgramMapFromServer(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("LoadAdditionalProgramMapFromServer", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetGenreList(eRemoteContentActivity activity, std::vector<FCGenreInfo>& genres) {
    FC_ENTRY;
    return TypedCall("GetGenreList", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToGenreList(reply, genres); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetGenreList(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetGenreList", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetVODProviders(eRemoteContentActivity activity,
                                                    CKelvoResponse_VODProviders& providers) {
    FC_ENTRY;
    return TypedCall("GetVODProviders", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToVODProvider(reply, providers); });
}

// The caller reads the providers from the text itself; the reply is handed over unparsed.
bool FCRemoteContentOnTV_MSO_Proxy::GetVODProviders(const std::string& in, std::string& out) {
    FC_ENTRY;
    FCCallHelper::RemoteCallWithStringArguments("GetVODProviders", in, out);
    return true;
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteProgramByProgramSourceID(eRemoteContentActivity activity,
                                                                        std::string sourceId,
                                                                        unsigned long utcCurrentTime,
                                                                        FCRemoteProgram& program) {
    FC_ENTRY;
    return TypedCall("GetFCRemoteProgramByProgramSourceID",
                     [&](Json::Value& in) {
                         FCMarshal::ProgramSourceIDAndUtcCurrentTimeToJson(activity, sourceId, utcCurrentTime, in);
                     },
                     [&](Json::Value& reply) { FCMarshal::JsonToFCRemoteProgram(reply, program); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteProgramByProgramSourceID(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetFCRemoteProgramByProgramSourceID", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteChannelByProgramSourceID(eRemoteContentActivity activity,
                                                                        std::string sourceId,
                                                                        FCRemoteChannel& channel) {
    FC_ENTRY;
    return TypedCall("GetFCRemoteChannelByProgramSourceID",
                     [&](Json::Value& in) { FCMarshal::ProgramSourceIDToJson(activity, sourceId, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToFCRemoteChannel(reply, channel); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFCRemoteChannelByProgramSourceID(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetFCRemoteChannelByProgramSourceID", in, out);
}

bool FCRemoteContentOnTV_MSO_Proxy::GetSearchKeyStringInRFMode(eRemoteContentActivity activity,
                                                               unsigned long long& serviceId,
                                                               unsigned long utcCurrentTime, std::string& searchKey) {
    FC_ENTRY;
    return TypedCall("GetSearchKeyStringInRFMode",
                     [&](Json::Value& in) {
                         FCMarshal::UtcCurrentTimeToJson(activity, utcCurrentTime, in);
                         FCMarshal::VCServiceIdToJson(serviceId, in);
                     },
                     [&](Json::Value& reply) { FCMarshal::JsonToSearchString(reply, searchKey); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetSearchKeyStringInMBRMode(eRemoteContentActivity activity,
                                                                const std::string& mbrChannelNumber,
                                                                unsigned long utcCurrentTime, std::string& searchKey) {
    FC_ENTRY;
    return TypedCall("GetSearchKeyStringInMBRMode",
                     [&](Json::Value& in) {
                         FCMarshal::MBRChannelAndUTCCurrentTimeToJson(activity, mbrChannelNumber, utcCurrentTime, in);
                     },
                     [&](Json::Value& reply) { FCMarshal::JsonToSearchString(reply, searchKey); });
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFeaturedChannels(eRemoteContentActivity activity,
                                                        std::vector<FCRemoteChannel>& channels) {
    FC_ENTRY;
    return TypedCall("GetFeaturedChannels", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToChannelList(reply, channels); });
}

// Operator contents are not taken from clients of this build.
bool FCRemoteContentOnTV_MSO_Proxy::SetMVPDContents(std::string&, std::string&) {
    FC_ENTRY;
    return false;
}

bool FCRemoteContentOnTV_MSO_Proxy::GetFullProgramSourceIdList(eRemoteContentActivity activity,
                                                               std::vector<std::string>& sourceIds) {
    FC_ENTRY;
    return TypedCall("GetFullProgramSourceIdList", [&](Json::Value& in) { FCMarshal::activityIDToJson(activity, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToSourceIDList(reply, sourceIds); });
}

#undef FC_ENTRY

// ---- FCMatchFinder_Proxy ----

#define FC_ENTRY FC_PROXY_ENTRY("FCMatchFinder_Proxy")

bool FCMatchFinder_Proxy::GetFCRemoteChannelByTCServiceId(eRemoteContentActivity activity,
                                                          unsigned long long& serviceId, FCRemoteChannel& channel) {
    FC_ENTRY;
    return TypedCall("GetFCRemoteChannelByTCServiceId",
                     [&](Json::Value& in) {
                         FCMarshal::activityIDToJson(activity, in);
                         FCMarshal::VCServiceIdToJson(serviceId, in);
                     },
                     [&](Json::Value& reply) { FCMarshal::JsonToFCRemoteChannel(reply, channel); });
}

bool FCMatchFinder_Proxy::GetFCRemoteChannelByTCServiceId(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetFCRemoteChannelByTCServiceId", in, out);
}

bool FCMatchFinder_Proxy::GetTCServiceIdByFCRemoteChannel(eRemoteContentActivity activity, FCRemoteChannel& channel,
                                                          unsigned long long& serviceId) {
    FC_ENTRY;
    return TypedCall("GetTCServiceIdByFCRemoteChannel",
                     [&](Json::Value& in) {
                         FCMarshal::activityIDToJson(activity, in);
                         FCMarshal::FCRemoteChannelToJson(channel, in);
                     },
                     [&](Json::Value& reply) { FCMarshal::VCJsonToServiceId(reply, serviceId); });
}

bool FCMatchFinder_Proxy::GetTCServiceIdByFCRemoteChannel(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetTCServiceIdByFCRemoteChannel", in, out);
}

bool FCMatchFinder_Proxy::GetTCServiceIdByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                          unsigned long long& serviceId) {
    FC_ENTRY;
    return TypedCall("GetTCServiceIdByProgramSourceID",
                     [&](Json::Value& in) { FCMarshal::ProgramSourceIDToJson(activity, sourceId, in); },
                     [&](Json::Value& reply) { FCMarshal::VCJsonToServiceId(reply, serviceId); });
}

bool FCMatchFinder_Proxy::GetTCServiceIdByProgramSourceID(const std::string& in, std::string& out) {
    FC_ENTRY;
    return StringCall("GetTCServiceIdByProgramSourceID", in, out);
}

bool FCMatchFinder_Proxy::GetTCServiceIdListByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                              std::list<unsigned long long>& serviceIds) {
    FC_ENTRY;
    return TypedCall("GetTCServiceIdListByProgramSourceID",
                     [&](Json::Value& in) { FCMarshal::ProgramSourceIDToJson(activity, sourceId, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToServiceIDList(reply, serviceIds); });
}

// The daemon takes the flag of this search under "ret".
bool FCMatchFinder_Proxy::GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel>& channels,
                                                            bool flag) {
    FC_ENTRY;
    return TypedCall("GetRemoteChannelListByChannelName",
                     [&](Json::Value& in) {
                         FCMarshal::SearchStringToJson(name, in);
                         in["ret"] = flag;
                     },
                     [&](Json::Value& reply) { FCMarshal::JsonToChannelList(reply, channels); });
}

bool FCMatchFinder_Proxy::GetRemoteChannelByChannelNumber(int major, int minor, FCRemoteChannel& channel) {
    FC_ENTRY;
    return TypedCall("GetRemoteChannelByChannelNumber",
                     [&](Json::Value& in) { FCMarshal::MajorMinorToJson(major, minor, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToFCRemoteChannel(reply, channel); });
}

bool FCMatchFinder_Proxy::GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel>& channels) {
    FC_ENTRY;
    return TypedCall("GetRemoteChannelListByChannelName",
                     [&](Json::Value& in) { FCMarshal::SearchStringToJson(name, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToChannelList(reply, channels); });
}

// The daemon takes the single channel number under "ret".
bool FCMatchFinder_Proxy::GetRemoteChannelByChannelNumber(int number, FCRemoteChannel& channel) {
    FC_ENTRY;
    return TypedCall("GetRemoteChannelByChannelNumber", [&](Json::Value& in) { FCMarshal::IntToJson(number, in); },
                     [&](Json::Value& reply) { FCMarshal::JsonToFCRemoteChannel(reply, channel); });
}

namespace {
bool ProgramSearch(const char* method, const std::string& text,
                   std::map<std::string, std::vector<FCRemoteProgram>>& programMap, unsigned long utcStartTime,
                   unsigned long utcEndTime) {
    return TypedCall(method,
                     [&](Json::Value& in) {
                         FCMarshal::UtcStartTimeToJson(utcStartTime, in);
                         FCMarshal::UtcEndTimeToJson(utcEndTime, in);
                         FCMarshal::SearchStringToJson(text, in);
                     },
                     [&](Json::Value& reply) { FCMarshal::JsonToProgramMap(reply, programMap); });
}
}  // namespace

bool FCMatchFinder_Proxy::GetRemoteProgramByKeyword(std::string keyword,
                                                    std::map<std::string, std::vector<FCRemoteProgram>>& programMap,
                                                    unsigned long utcStartTime, unsigned long utcEndTime) {
    FC_ENTRY;
    return ProgramSearch("GetRemoteProgramByKeyword", keyword, programMap, utcStartTime, utcEndTime);
}

bool FCMatchFinder_Proxy::GetRemoteProgramByTitle(std::string title,
                                                  std::map<std::string, std::vector<FCRemoteProgram>>& programMap,
                                                  unsigned long utcStartTime, unsigned long utcEndTime) {
    FC_ENTRY;
    return ProgramSearch("GetRemoteProgramByTitle", title, programMap, utcStartTime, utcEndTime);
}

bool FCMatchFinder_Proxy::GetRemoteProgramByDescription(std::string description,
                                                        std::map<std::string, std::vector<FCRemoteProgram>>& programMap,
                                                        unsigned long utcStartTime, unsigned long utcEndTime) {
    FC_ENTRY;
    return ProgramSearch("GetRemoteProgramByDescription", description, programMap, utcStartTime, utcEndTime);
}

#undef FC_ENTRY
