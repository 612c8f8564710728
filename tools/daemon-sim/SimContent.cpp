#include "SimContent.h"

#include "SimJson.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <ctime>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <utility>

namespace {

using SimJson::DurationOf;
using SimJson::Member;
using SimJson::MergeInto;
using SimJson::Num;
using SimJson::StartOf;
using SimJson::Str;

bool ContainsNoCase(const std::string &haystack, const std::string &needle)
{
    auto it = std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    });
    return it != haystack.end();
}

}  // namespace

// The wire methods this daemon answers. Each handler writes the reply members the client's
// readers expect; "ret" is true unless the handler says otherwise.
#define KELVO_SIM_METHODS(X)                                                                                           \
    X("Reset", m_Reset)                                                                                                \
    X("FCRemoteContent_Reset", m_Reset)                                                                                \
    X("ToggleKelvoTimeoutTest", m_Reset)                                                                               \
    X("NotifyPreviewDownloaderFinish", m_Reset)                                                                        \
    X("NotifyDVRContentUpdate", m_Reset)                                                                               \
    X("LoadAdditionalProgramMapFromServer", m_Reset)                                                                   \
    X("SetRemoteContentEnv", m_SetRemoteContentEnv)                                                                    \
    X("GetRemoteContentEnv", m_GetRemoteContentEnv)                                                                    \
    X("GetRemoteContentActivityByTVSourceAndTSTVMode", m_GetActivity)                                                  \
    X("GetChannelCRC", m_GetChannelCRC)                                                                                \
    X("GetFenvoraVersion", m_GetFenvoraVersion)                                                                        \
    X("GetRemoteContentConfig", m_GetRemoteContentConfig)                                                              \
    X("SetRemoteContentConfig", m_SetRemoteContentConfig)                                                              \
    X("GetCertRule", m_GetCertRule)                                                                                    \
    X("GetFullChannelList", m_GetChannelList)                                                                          \
    X("GetTunableChannelList", m_GetChannelList)                                                                       \
    X("GetFeaturedChannels", m_GetChannelList)                                                                         \
    X("GetTunableProgramSourceIdMap", m_GetTunableProgramSourceIdMap)                                                  \
    X("GetProgramMap", m_GetProgramMap)                                                                                \
    X("GetGenreList", m_GetGenreList)                                                                                  \
    X("GetVODProviders", m_GetVODProviders)                                                                            \
    X("GetFCRemoteProgramByProgramSourceID", m_GetProgramBySource)                                                     \
    X("GetFCRemoteChannelByProgramSourceID", m_GetChannelBySource)                                                     \
    X("GetSearchKeyStringInRFMode", m_GetSearchKeyRF)                                                                  \
    X("GetSearchKeyStringInMBRMode", m_GetSearchKeyMBR)                                                                \
    X("GetFullProgramSourceIdList", m_GetFullProgramSourceIdList)                                                      \
    X("GetFCRemoteChannelByTCServiceId", m_GetChannelByService)                                                        \
    X("GetTCServiceIdByFCRemoteChannel", m_GetServiceByChannel)                                                        \
    X("GetTCServiceIdByProgramSourceID", m_GetServiceBySource)                                                         \
    X("GetTCServiceIdListByProgramSourceID", m_GetServiceListBySource)                                                 \
    X("GetRemoteChannelListByChannelName", m_GetChannelsByName)                                                        \
    X("GetRemoteChannelByChannelNumber", m_GetChannelByNumber)                                                         \
    X("GetRemoteProgramByKeyword", m_GetProgramsByKeyword)                                                             \
    X("GetRemoteProgramByTitle", m_GetProgramsByTitle)                                                                 \
    X("GetRemoteProgramByDescription", m_GetProgramsByDescription)                                                     \
    X("GetProgramList", m_GetProgramList)                                                                              \
    X("GetProgram", m_GetVirtualProgram)                                                                               \
    X("GetProgramWithIndicator", m_GetProgramWithIndicator)                                                            \
    X("GetPresentProgram", m_GetPresentProgram)                                                                        \
    X("GetTVLumeProgramOnColdBoot", m_GetPresentProgram)                                                               \
    X("GetChannelLogo", m_GetChannelLogo)                                                                              \
    X("GetProgramThumbnail", m_GetProgramImage)                                                                        \
    X("GetProgramBackground", m_GetProgramImage)                                                                       \
    X("GetProgramImage", m_GetProgramImage)                                                                            \
    X("GetServiceIdFromOnTVProviderAndService", m_GetServiceIdFromOnTV)                                                \
    X("SendLogKPI", m_Reset)                                                                                           \
    X("RestartTvlumeInfo", m_Reset)                                                                                    \
    X("RecoverDeletedTvlumeServices", m_Reset)                                                                         \
    X("TVLumeProgramInfoIsAvailable", m_ProgramInfoIsAvailable)                                                        \
    X("SetDeepLink", m_SetDeepLink)                                                                                    \
    X("GetDeepLink", m_GetDeepLink)                                                                                    \
    X("GetTvlumePreviewData", m_GetPreviewData)                                                                        \
    X("SetDataServiceType", m_SetDataServiceType)                                                                      \
    X("GetDataServiceType", m_GetDataServiceType)                                                                      \
    X("LaunchTVLumeHomeScreen", m_LaunchHomeScreen)                                                                    \
    X("GetViewingAgreement", m_Switch)                                                                                 \
    X("SetMyTvlume", m_Switch)                                                                                         \
    X("GetMyTvlume", m_Switch)                                                                                         \
    X("SetTVLumeOnOff", m_Switch)                                                                                      \
    X("SetHomeScreenFlag", m_Switch)                                                                                   \
    X("GetHomeScreenFlag", m_Switch)                                                                                   \
    X("IsTVLumeLaunched", m_Switch)                                                                                    \
    X("LaunchedTVLumeWebApp", m_Switch)                                                                                \
    X("IsFirstEntryToTvlume", m_Switch)                                                                                \
    X("IsInstantOn", m_Switch)                                                                                         \
    X("EnterTVLumeWebApp", m_Switch)                                                                                   \
    X("BlockOnChLeave", m_Switch)                                                                                      \
    X("BlockClear", m_Switch)                                                                                          \
    X("CheckDoNotSendTuneSuccess", m_Switch)                                                                           \
    X("EnterFullPage", m_Switch)                                                                                       \
    X("ExitFullPage", m_Switch)                                                                                        \
    X("IsEnterFullPage", m_Switch)                                                                                     \
    X("NotifyPepperPluginIsDown", m_Switch)                                                                            \
    X("SetUnlockedFlag", m_Switch)                                                                                     \
    X("SetUnlockedInfo", m_Switch)                                                                                     \
    X("UnMuteRatingLockByPinCode", m_Switch)                                                                           \
    X("ResetTemporalUnLockStatus", m_Switch)                                                                           \
    X("ResetTemporalUnLockStatusWhenChannelChange", m_Switch)                                                          \
    X("CheckRatingLockATSC", m_CheckRatingLock)                                                                        \
    X("CheckTVLumeRatingLock", m_CheckRatingLock)                                                                      \
    X("NotifyContentIsChanged", m_NotifyContentIsChanged)                                                              \
    X("GetAppIDAndURL", m_GetAppIdAndUrl)                                                                              \
    X("GetAppIDAndURLAndVersion", m_GetAppIdAndUrl)                                                                    \
    X("GetRatingInfo", m_GetRatingInfo)                                                                                \
    X("CreateAppInfo", m_CreateAppInfo)                                                                                \
    X("UpdateAppInfo", m_UpdateAppInfo)                                                                                \
    X("RemoveAppInfo", m_RemoveAppInfo)                                                                                \
    X("UpdateProgramInfo", m_UpdateProgramInfo)                                                                        \
    X("RemoveProgramInfo", m_RemoveProgramInfo)                                                                        \
    X("GetProgramInfoList", m_GetProgramInfoList)                                                                      \
    X("GetPresentProgramInfo", m_GetPresentProgramInfo)                                                                \
    X("GetProgramInfo", m_GetAocProgramInfo)                                                                           \
    X("GetProgramInfo_Indicator", m_GetAocProgramInfoByIndicator)                                                      \
    X("SetVODResumeInfo", m_SetVODResumeInfo)                                                                          \
    X("AllocateActivityIDBySourceID", m_AllocateActivity)                                                              \
    X("GetActivityIDBySourceID", m_GetActivityBySource)                                                                \
    X("DeleteActivityID", m_DeleteActivity)                                                                            \
    X("SetActivityIDSourceID", m_SetActivitySource)                                                                    \
    X("AppendSourceIDIntoActivityID", m_AppendActivitySource)                                                          \
    X("RemoveSourceIDWithinActivityID", m_RemoveActivitySource)                                                        \
    X("SetGenreForNavigation", m_SetNavigationGenre)                                                                   \
    X("GetGenreForNavigation", m_GetNavigationGenre)                                                                   \
    X("GetRFNetworkChannelMapByGenre", m_GetRFChannelMap)                                                              \
    X("GetRFNetworkChannelUpByGenre", m_GetRFChannelUp)                                                                \
    X("GetRFNetworkChannelDownByGenre", m_GetRFChannelDown)                                                            \
    X("GetRFNetworkChannelCountByGenre", m_GetRFChannelCount)                                                          \
    X("GetPresentMetaProgram", m_GetPresentMetaProgram)                                                                \
    X("GetNextMetaProgram", m_GetNextMetaProgram)                                                                      \
    X("GetPrevMetaProgram", m_GetPrevMetaProgram)                                                                      \
    X("GetMetaProgramMap", m_GetMetaProgramMap)                                                                        \
    X("CheckMetaProgramExist", m_CheckMetaProgramExist)                                                                \
    X("IsSupportMetadataforEPG", m_IsSupportMetadataforEPG)                                                            \
    X("RegisterDownloadItem", m_RegisterDownload)                                                                      \
    X("GetDownloadedItemByUrl", m_GetDownloadByUrl)                                                                    \
    X("GetDownloadedItemById", m_GetDownloadById)                                                                      \
    X("UnregisterDownloadItemByUrl", m_UnregisterDownloadByUrl)                                                        \
    X("UnregisterDownloadItemById", m_UnregisterDownloadById)                                                          \
    X("DeleteAllImage", m_DeleteAllImage)                                                                              \
    X("IsNearProgramBoundary", m_IsNearProgramBoundary)                                                                \
    X("GetVerifiedMeta", m_GetVerifiedMeta)                                                                            \
    X("SetVerifiedACRInfo", m_SetVerifiedACRInfo)

const std::map<std::string, KelvoSimContent::Handler> &KelvoSimContent::m_Handlers()
{
#define KELVO_SIM_ENTRY(name, fn) {name, &KelvoSimContent::fn},
    static const std::map<std::string, Handler> table = {KELVO_SIM_METHODS(KELVO_SIM_ENTRY)};
#undef KELVO_SIM_ENTRY
    return table;
}

std::vector<std::string> KelvoSimContent::Methods()
{
    std::vector<std::string> names;
    for (const auto &entry : m_Handlers())
        names.push_back(entry.first);
    return names;
}

std::unique_ptr<Json::StreamWriter> KelvoSimContent::m_CompactWriter()
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    // Texts travel as UTF-8, not as \u escapes, as the daemon's own replies do.
    builder["emitUTF8"] = true;
    return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

std::string KelvoSimContent::ToCompactText(const Json::Value &value)
{
    std::ostringstream text;
    m_CompactWriter()->write(value, &text);
    return text.str();
}

bool KelvoSimContent::Load(Json::Value fixture, std::string &error)
{
    if (!fixture.isObject()) {
        error = "the fixture is not a JSON object";
        return false;
    }
    const struct {
        const char *key;
        Json::ValueType type;
    } kinds[] = {{"channels", Json::arrayValue},        {"genres", Json::arrayValue},
                 {"programs", Json::objectValue},       {"sourceToService", Json::objectValue},
                 {"msoConfig", Json::objectValue},      {"certRule", Json::objectValue},
                 {"vodProviders", Json::arrayValue},    {"countryLang", Json::objectValue},
                 {"channelCRC", Json::stringValue},     {"version", Json::stringValue},
                 {"virtualChannels", Json::arrayValue}, {"tvlume", Json::objectValue}};
    for (const auto &kind : kinds) {
        if (fixture.isMember(kind.key) && fixture[kind.key].type() != kind.type) {
            error = std::string("fixture member \"") + kind.key + "\" has the wrong kind";
            return false;
        }
    }
    const Json::Value &programs = Member(fixture, "programs");
    for (const auto &id : programs.getMemberNames()) {
        if (!programs[id].isArray()) {
            error = "programmes of source \"" + id + "\" are not an array";
            return false;
        }
    }
    if (!m_LoadAoc(fixture, error))
        return false;
    m_fixture = std::move(fixture);
    m_msoConfig = Member(m_fixture, "msoConfig").isObject() ? m_fixture["msoConfig"] : Json::Value(Json::objectValue);
    m_country = Str(Member(m_fixture, "countryLang"), "country");
    m_language = Str(Member(m_fixture, "countryLang"), "language");
    m_programmeTexts.clear();
    // One writer and stream for all programmes: making them per programme costs more than writing.
    const std::unique_ptr<Json::StreamWriter> writer = m_CompactWriter();
    std::ostringstream text;
    const Json::Value &all = Member(m_fixture, "programs");
    for (auto source = all.begin(); source != all.end(); ++source) {
        std::vector<Piece> &pieces = m_programmeTexts[source.name()];
        pieces.reserve(source->size());
        for (const auto &programme : *source) {
            text.str(std::string());
            writer->write(programme, &text);
            pieces.push_back({static_cast<long long>(StartOf(programme)), text.str()});
        }
    }
    m_LoadVirtual(m_fixture);
    m_tv.reset();
    return true;
}

bool KelvoSimContent::m_ParseArgument(const std::string &argumentText, Json::Value &in)
{
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    if (!reader->parse(argumentText.data(), argumentText.data() + argumentText.size(), &in, nullptr) ||
        !in.isObject()) {
        in = Json::Value(Json::objectValue);
    }
    return true;
}

bool KelvoSimContent::AnswerText(const std::string &method, const std::string &argumentText, std::string &text)
{
    if (method != "GetProgramMap") {
        Json::Value reply;
        if (!Answer(method, argumentText, reply))
            return false;
        text = m_plainReply ? m_plainReplyText : ToCompactText(reply);
        return true;
    }
    // As ToCompactText writes m_GetProgramMap's reply: members in key order, no spaces.
    Json::Value in;
    m_ParseArgument(argumentText, in);
    text = "{\"out_mapProgramWithSourceID\":[";
    bool firstSource = true;
    for (const auto &selected : m_ProgramMapSelection(in)) {
        text += firstSource ? "{\"program_array\":[" : ",{\"program_array\":[";
        firstSource = false;
        const std::vector<Piece> &pieces = m_programmeTexts.at(selected.first);
        for (size_t i = 0; i < selected.second.size(); ++i) {
            if (i > 0)
                text += ',';
            text += pieces[selected.second[i]].text;
        }
        text += "],\"program_source_id\":" + ToCompactText(Json::Value(selected.first)) + "}";
    }
    text += "],\"ret\":true}";
    return true;
}

bool KelvoSimContent::Answer(const std::string &method, const std::string &argumentText, Json::Value &reply)
{
    auto it = m_Handlers().find(method);
    // An older daemon does not know the streaming service's unlock information yet.
    if (it == m_Handlers().end() || (m_older && method == "SetUnlockedInfo"))
        return false;
    m_method = method;
    m_argumentText = argumentText;
    m_plainReply = false;
    Json::Value in;
    m_ParseArgument(argumentText, in);
    reply = Json::Value(Json::objectValue);
    reply["ret"] = true;
    (this->*(it->second))(in, reply);
    return true;
}

// ---- lookups ----

std::vector<std::string> KelvoSimContent::m_SourceIds() const
{
    std::vector<std::string> ids = Member(m_fixture, "programs").getMemberNames();
    std::sort(ids.begin(), ids.end());
    return ids;
}

const Json::Value *KelvoSimContent::m_ChannelBySource(const std::string &sourceId) const
{
    for (const auto &channel : Member(m_fixture, "channels")) {
        if (Str(channel, "str_program_source_id") == sourceId)
            return &channel;
    }
    return nullptr;
}

const Json::Value *KelvoSimContent::m_ProgrammeAt(const std::string &sourceId, unsigned long long when) const
{
    for (const auto &programme : Member(Member(m_fixture, "programs"), sourceId.c_str())) {
        unsigned long long start = StartOf(programme);
        long long duration = DurationOf(programme);
        if (start <= when && when < start + static_cast<unsigned long long>(duration > 0 ? duration : 0)) {
            return &programme;
        }
    }
    return nullptr;
}

bool KelvoSimContent::m_ServiceOfSource(const std::string &sourceId, std::string &serviceId) const
{
    const Json::Value &table = Member(m_fixture, "sourceToService");
    if (!table.isMember(sourceId))
        return false;
    serviceId = Str(table, sourceId.c_str());
    return !serviceId.empty();
}

std::vector<std::string> KelvoSimContent::m_SourcesOfService(const std::string &serviceId) const
{
    std::vector<std::string> sources;
    const Json::Value &table = Member(m_fixture, "sourceToService");
    for (const auto &source : table.getMemberNames()) {
        if (Str(table, source.c_str()) == serviceId)
            sources.push_back(source);
    }
    std::sort(sources.begin(), sources.end());
    return sources;
}

// ---- handlers ----

void KelvoSimContent::m_Reset(Json::Value &, Json::Value &) {}

void KelvoSimContent::m_SetRemoteContentEnv(Json::Value &in, Json::Value &)
{
    if (in.isMember("country"))
        m_country = Str(in, "country");
    if (in.isMember("language"))
        m_language = Str(in, "language");
}

void KelvoSimContent::m_GetRemoteContentEnv(Json::Value &, Json::Value &out)
{
    out["country"] = m_country;
    out["language"] = m_language;
}

void KelvoSimContent::m_GetActivity(Json::Value &, Json::Value &out)
{
    out["activityID"] = 0;
}

void KelvoSimContent::m_GetChannelCRC(Json::Value &, Json::Value &out)
{
    out["crc"] = Str(m_fixture, "channelCRC");
}

void KelvoSimContent::m_GetFenvoraVersion(Json::Value &, Json::Value &out)
{
    out["str"] = Str(m_fixture, "version");
}

void KelvoSimContent::m_GetRemoteContentConfig(Json::Value &, Json::Value &out)
{
    out["config"] = m_msoConfig;
}

void KelvoSimContent::m_SetRemoteContentConfig(Json::Value &in, Json::Value &out)
{
    if (!Member(in, "config").isObject()) {
        out["ret"] = false;
        return;
    }
    m_msoConfig = in["config"];
}

void KelvoSimContent::m_GetCertRule(Json::Value &, Json::Value &out)
{
    out["out_cert_rule"] =
        Member(m_fixture, "certRule").isObject() ? m_fixture["certRule"] : Json::Value(Json::objectValue);
}

void KelvoSimContent::m_GetChannelList(Json::Value &, Json::Value &out)
{
    out["channel_array"] = Json::Value(Json::arrayValue);
    for (const auto &channel : Member(m_fixture, "channels"))
        out["channel_array"].append(channel);
}

void KelvoSimContent::m_GetTunableProgramSourceIdMap(Json::Value &, Json::Value &out)
{
    static const char *const keyMembers[] = {"str_channel_number", "str_major", "str_minor",     "str_onid",
                                             "str_tsid",           "str_sid",   "str_frequency", "str_digital_flag"};
    Json::Value &map = out["out_tunable_program_source_id_map"] = Json::Value(Json::arrayValue);
    for (const auto &channel : Member(m_fixture, "channels")) {
        Json::Value element(Json::objectValue);
        Json::Value &key = element["channel_key"] = Json::Value(Json::objectValue);
        key["activityID"] = static_cast<Json::Int>(Num(channel, "activityID"));
        for (const char *member : keyMembers)
            key[member] = Str(channel, member);
        element["program_source_id"] = Str(channel, "str_program_source_id");
        map.append(element);
    }
}

// Programmes of each requested source starting in [start, start + duration); a source without
// any programme in that window is left out of the map.
std::vector<std::pair<std::string, std::vector<size_t>>>
KelvoSimContent::m_ProgramMapSelection(const Json::Value &in) const
{
    const long long start = Num(in, "utc start time");
    long long end = 0;
    if (__builtin_add_overflow(start, std::max(0LL, Num(in, "duration")), &end))
        end = LLONG_MAX;
    std::vector<std::pair<std::string, std::vector<size_t>>> selection;
    for (const auto &requested : Member(in, "sourceIDArray")) {
        if (!requested.isString())
            continue;
        auto pieces = m_programmeTexts.find(requested.asString());
        if (pieces == m_programmeTexts.end())
            continue;
        std::vector<size_t> positions;
        for (size_t i = 0; i < pieces->second.size(); ++i)
            if (pieces->second[i].start >= start && pieces->second[i].start < end)
                positions.push_back(i);
        if (!positions.empty())
            selection.emplace_back(pieces->first, std::move(positions));
    }
    return selection;
}

void KelvoSimContent::m_GetProgramMap(Json::Value &in, Json::Value &out)
{
    Json::Value &map = out["out_mapProgramWithSourceID"] = Json::Value(Json::arrayValue);
    const Json::Value &programs = Member(m_fixture, "programs");
    for (const auto &selected : m_ProgramMapSelection(in)) {
        Json::Value element(Json::objectValue);
        element["program_source_id"] = selected.first;
        Json::Value &array = element["program_array"] = Json::Value(Json::arrayValue);
        const Json::Value &source = programs[selected.first];
        for (size_t position : selected.second)
            array.append(source[static_cast<Json::ArrayIndex>(position)]);
        map.append(element);
    }
}

void KelvoSimContent::m_GetGenreList(Json::Value &, Json::Value &out)
{
    out["array_genre"] = Json::Value(Json::arrayValue);
    for (const auto &genre : Member(m_fixture, "genres"))
        out["array_genre"].append(genre);
}

void KelvoSimContent::m_GetVODProviders(Json::Value &, Json::Value &out)
{
    out["out_vod_providers"] = Json::Value(Json::arrayValue);
    for (const auto &provider : Member(m_fixture, "vodProviders"))
        out["out_vod_providers"].append(provider);
}

void KelvoSimContent::m_GetProgramBySource(Json::Value &in, Json::Value &out)
{
    long long now = Num(in, "utc current time");
    const Json::Value *programme =
        m_ProgrammeAt(Str(in, "program source id"), static_cast<unsigned long long>(now < 0 ? 0 : now));
    if (!programme) {
        out["ret"] = false;
        return;
    }
    MergeInto(*programme, out);
}

void KelvoSimContent::m_GetChannelBySource(Json::Value &in, Json::Value &out)
{
    const Json::Value *channel = m_ChannelBySource(Str(in, "program source id"));
    if (!channel) {
        out["ret"] = false;
        return;
    }
    MergeInto(*channel, out);
}

void KelvoSimContent::m_GetSearchKeyRF(Json::Value &in, Json::Value &out)
{
    long long now = Num(in, "utc_current_time");
    for (const auto &source : m_SourcesOfService(Str(in, "TCServiceId"))) {
        if (const Json::Value *programme = m_ProgrammeAt(source, static_cast<unsigned long long>(now < 0 ? 0 : now))) {
            out["search string"] = Str(*programme, "title");
            return;
        }
    }
    out["ret"] = false;
}

void KelvoSimContent::m_GetSearchKeyMBR(Json::Value &in, Json::Value &out)
{
    long long now = Num(in, "utc current time");
    const std::string number = Str(in, "mbr ch number");
    for (const auto &channel : Member(m_fixture, "channels")) {
        if (Str(channel, "str_channel_number") != number)
            continue;
        const Json::Value *programme =
            m_ProgrammeAt(Str(channel, "str_program_source_id"), static_cast<unsigned long long>(now < 0 ? 0 : now));
        if (programme) {
            out["search string"] = Str(*programme, "title");
            return;
        }
    }
    out["ret"] = false;
}

void KelvoSimContent::m_GetFullProgramSourceIdList(Json::Value &, Json::Value &out)
{
    out["sourceIDArray"] = Json::Value(Json::arrayValue);
    for (const auto &id : m_SourceIds())
        out["sourceIDArray"].append(id);
}

void KelvoSimContent::m_GetChannelByService(Json::Value &in, Json::Value &out)
{
    for (const auto &source : m_SourcesOfService(Str(in, "TCServiceId"))) {
        if (const Json::Value *channel = m_ChannelBySource(source)) {
            MergeInto(*channel, out);
            return;
        }
    }
    out["ret"] = false;
}

void KelvoSimContent::m_GetServiceByChannel(Json::Value &in, Json::Value &out)
{
    std::string service;
    if (!m_ServiceOfSource(Str(in, "str_program_source_id"), service)) {
        out["ret"] = false;
        return;
    }
    out["TCServiceId"] = service;
}

void KelvoSimContent::m_GetServiceBySource(Json::Value &in, Json::Value &out)
{
    std::string service;
    if (!m_ServiceOfSource(Str(in, "program source id"), service)) {
        out["ret"] = false;
        return;
    }
    out["TCServiceId"] = service;
}

void KelvoSimContent::m_GetServiceListBySource(Json::Value &in, Json::Value &out)
{
    std::string service;
    out["service_list"] = Json::Value(Json::arrayValue);
    if (!m_ServiceOfSource(Str(in, "program source id"), service)) {
        out["ret"] = false;
        return;
    }
    Json::Value element(Json::objectValue);
    element["TCServiceId"] = service;
    out["service_list"].append(element);
}

void KelvoSimContent::m_GetChannelsByName(Json::Value &in, Json::Value &out)
{
    const std::string wanted = Str(in, "search string");
    out["channel_array"] = Json::Value(Json::arrayValue);
    for (const auto &channel : Member(m_fixture, "channels")) {
        if (ContainsNoCase(Str(channel, "str_channel_name"), wanted))
            out["channel_array"].append(channel);
    }
}

// {"major": M, "minor": m} matches the channel's major and minor; the single-number form sends
// its number under "ret" and matches the channel number.
void KelvoSimContent::m_GetChannelByNumber(Json::Value &in, Json::Value &out)
{
    const bool pair = in.isMember("major");
    const std::string major = std::to_string(Num(in, "major"));
    const std::string minor = std::to_string(Num(in, "minor"));
    const std::string number = std::to_string(Num(in, "ret"));
    for (const auto &channel : Member(m_fixture, "channels")) {
        bool match = pair ? Str(channel, "str_major") == major && Str(channel, "str_minor") == minor
                          : Str(channel, "str_channel_number") == number;
        if (match) {
            MergeInto(channel, out);
            out["ret"] = true;
            return;
        }
    }
    out["ret"] = false;
}

void KelvoSimContent::m_SearchPrograms(Json::Value &in, Json::Value &out, bool inTitle, bool inDescription)
{
    const std::string wanted = Str(in, "search string");
    const long long from = Num(in, "utc_start_time");
    const long long to = Num(in, "utc_end_time");
    Json::Value &map = out["out_mapProgramWithSourceID"] = Json::Value(Json::arrayValue);
    for (const auto &source : m_SourceIds()) {
        Json::Value element(Json::objectValue);
        element["program_source_id"] = source;
        Json::Value &array = element["program_array"] = Json::Value(Json::arrayValue);
        for (const auto &programme : Member(Member(m_fixture, "programs"), source.c_str())) {
            long long begin = static_cast<long long>(StartOf(programme));
            if (begin < from || (to > 0 && begin >= to))
                continue;
            bool hit = (inTitle && ContainsNoCase(Str(programme, "title"), wanted)) ||
                       (inDescription && (ContainsNoCase(Str(programme, "desc"), wanted) ||
                                          ContainsNoCase(Str(programme, "short desc"), wanted)));
            if (hit)
                array.append(programme);
        }
        if (!array.empty())
            map.append(element);
    }
}

void KelvoSimContent::m_GetProgramsByKeyword(Json::Value &in, Json::Value &out)
{
    m_SearchPrograms(in, out, true, true);
}
void KelvoSimContent::m_GetProgramsByTitle(Json::Value &in, Json::Value &out)
{
    m_SearchPrograms(in, out, true, false);
}
void KelvoSimContent::m_GetProgramsByDescription(Json::Value &in, Json::Value &out)
{
    m_SearchPrograms(in, out, false, true);
}

// ---- the streaming service's virtual channels and its control ----

namespace {

// "starttime" of a virtual programme: W3C date-time text in UTC, or a number of seconds.
unsigned long long VirtualStart(const Json::Value &programme)
{
    const std::string text = Str(programme, "starttime");
    struct tm tm = {};
    const char *end = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &tm);
    if (end != nullptr)
        return static_cast<unsigned long long>(timegm(&tm));
    long long seconds = Num(programme, "starttime");
    return seconds < 0 ? 0 : static_cast<unsigned long long>(seconds);
}

unsigned long long VirtualEnd(const Json::Value &programme)
{
    return VirtualStart(programme) + static_cast<unsigned long long>(std::max(0LL, Num(programme, "duration")));
}

bool Flag(const Json::Value &object, const char *key)
{
    const Json::Value &v = Member(object, key);
    return v.isBool() ? v.asBool() : Num(object, key) != 0;
}

// What each switch method does with its flag in m_switches: answer it, set it from the request's
// "ret", set or clear it, or answer it once and clear it.
enum class SwitchAction { kGet, kSetFromRequest, kSet, kClear, kGetOnce };
struct SwitchRow {
    const char *method;
    const char *flag;
    SwitchAction action;
};
const SwitchRow kSwitchRows[] = {
    {"GetViewingAgreement", "viewingAgreement", SwitchAction::kGet},
    {"SetMyTvlume", "myTvlume", SwitchAction::kSetFromRequest},
    {"GetMyTvlume", "myTvlume", SwitchAction::kGet},
    {"SetTVLumeOnOff", "tvlumeOn", SwitchAction::kSetFromRequest},
    {"SetHomeScreenFlag", "homeScreen", SwitchAction::kSetFromRequest},
    {"GetHomeScreenFlag", "homeScreen", SwitchAction::kGet},
    {"IsTVLumeLaunched", "launched", SwitchAction::kGet},
    {"LaunchedTVLumeWebApp", "webAppLaunched", SwitchAction::kSet},
    {"IsFirstEntryToTvlume", "firstEntry", SwitchAction::kGetOnce},
    {"IsInstantOn", "instantOn", SwitchAction::kGet},
    {"EnterTVLumeWebApp", "webAppVisible", SwitchAction::kSet},
    {"BlockOnChLeave", "blocked", SwitchAction::kSet},
    {"BlockClear", "blocked", SwitchAction::kClear},
    {"CheckDoNotSendTuneSuccess", "blocked", SwitchAction::kGet},
    {"EnterFullPage", "fullPage", SwitchAction::kSet},
    {"ExitFullPage", "fullPage", SwitchAction::kClear},
    {"IsEnterFullPage", "fullPage", SwitchAction::kGet},
    {"NotifyPepperPluginIsDown", "webAppVisible", SwitchAction::kClear},
    {"SetUnlockedFlag", "unlocked", SwitchAction::kSetFromRequest},
    {"SetUnlockedInfo", "unlocked", SwitchAction::kSetFromRequest},
    {"UnMuteRatingLockByPinCode", "unlocked", SwitchAction::kSet},
    {"ResetTemporalUnLockStatus", "unlocked", SwitchAction::kClear},
    {"ResetTemporalUnLockStatusWhenChannelChange", "unlocked", SwitchAction::kClear},
};

}  // namespace

void KelvoSimContent::m_LoadVirtual(const Json::Value &fixture)
{
    const Json::Value &tvlume = Member(fixture, "tvlume");
    m_switches = Json::Value(Json::objectValue);
    for (const auto &row : kSwitchRows)
        m_switches[row.flag] = false;
    // A set fresh from the factory: the user agreed to viewing, the service is on, first entry pending.
    for (const char *flag : {"viewingAgreement", "myTvlume", "tvlumeOn", "homeScreen", "firstEntry", "instantOn"})
        m_switches[flag] = !tvlume.isMember(flag) || Flag(tvlume, flag);
    m_dataServiceType = static_cast<int>(Num(tvlume, "dataServiceType", 1));
    m_deepLink = Str(tvlume, "deepLink");
    m_contentRating.clear();
    m_imageDownloads = 0;
}

const Json::Value *KelvoSimContent::m_VirtualChannel(const std::string &serviceId) const
{
    for (const auto &channel : Member(m_fixture, "virtualChannels")) {
        if (Str(channel, "TCServiceId") == serviceId)
            return &channel;
    }
    return nullptr;
}

// The programme named by a request's "program_id": its event id, on its channel when the service
// id is known (not 0), at its start time when one is given.
const Json::Value *KelvoSimContent::m_VirtualProgramme(const Json::Value &programId, const Json::Value **channel) const
{
    const std::string service = Str(programId, "TCServiceId");
    const std::string eventId = Str(programId, "event_id");
    const long long start = Num(programId, "start_time");
    for (const auto &c : Member(m_fixture, "virtualChannels")) {
        if (!service.empty() && service != "0" && Str(c, "TCServiceId") != service)
            continue;
        for (const auto &programme : Member(c, "programs")) {
            if (Str(programme, "id") == eventId &&
                (start == 0 || VirtualStart(programme) == static_cast<unsigned long long>(start))) {
                *channel = &c;
                return &programme;
            }
        }
    }
    return nullptr;
}

// A programme as the daemon sends it: the record's members, its service id under "program_data",
// without the images, which have methods of their own.
Json::Value KelvoSimContent::m_ProgrammeReply(const Json::Value &channel, const Json::Value &programme)
{
    Json::Value reply(Json::objectValue);
    MergeInto(programme, reply);
    reply.removeMember("thumbnail");
    reply.removeMember("background");
    reply["program_data"]["TCServiceId"] = Str(channel, "TCServiceId");
    return reply;
}

// Programmes of the channel that overlap [start_time, start_time + duration), keyed by start.
void KelvoSimContent::m_GetProgramList(Json::Value &in, Json::Value &out)
{
    const Json::Value *channel = m_VirtualChannel(Str(in, "TCServiceId"));
    Json::Value &map = out["virtual_program_map"] = Json::Value(Json::arrayValue);
    if (!channel) {
        out["ret"] = false;
        return;
    }
    const unsigned long long from = static_cast<unsigned long long>(std::max(0LL, Num(in, "start_time")));
    const unsigned long long to = from + static_cast<unsigned long long>(std::max(0LL, Num(in, "duration")));
    for (const auto &programme : Member(*channel, "programs")) {
        if (VirtualStart(programme) < to && VirtualEnd(programme) > from) {
            Json::Value element = m_ProgrammeReply(*channel, programme);
            element["key"] = static_cast<Json::UInt64>(VirtualStart(programme));
            map.append(element);
        }
    }
}

void KelvoSimContent::m_GetVirtualProgram(Json::Value &in, Json::Value &out)
{
    const Json::Value *channel = nullptr;
    const Json::Value *programme = m_VirtualProgramme(Member(in, "program_id"), &channel);
    if (!programme) {
        out["ret"] = false;
        return;
    }
    MergeInto(m_ProgrammeReply(*channel, *programme), out);
}

// Indicator 0 the programme itself, 1 the one after it, 2 the one before it on its channel.
void KelvoSimContent::m_GetProgramWithIndicator(Json::Value &in, Json::Value &out)
{
    const Json::Value *channel = nullptr;
    const Json::Value *programme = m_VirtualProgramme(Member(in, "program_id"), &channel);
    const long long indicator = Num(in, "program_indicator");
    const Json::Value *wanted = nullptr;
    if (programme) {
        for (const auto &other : Member(*channel, "programs")) {
            const bool after = VirtualStart(other) == VirtualEnd(*programme);
            const bool before = VirtualEnd(other) == VirtualStart(*programme);
            if ((indicator == 0 && &other == programme) || (indicator == 1 && after) || (indicator == 2 && before))
                wanted = &other;
        }
    }
    if (!wanted) {
        out["ret"] = false;
        return;
    }
    MergeInto(m_ProgrammeReply(*channel, *wanted), out);
}

// The programme running now on the channel (also on a cold boot, whatever the player).
void KelvoSimContent::m_GetPresentProgram(Json::Value &in, Json::Value &out)
{
    const Json::Value *channel = m_VirtualChannel(Str(in, "TCServiceId"));
    const unsigned long long now = static_cast<unsigned long long>(time(nullptr));
    if (channel) {
        for (const auto &programme : Member(*channel, "programs")) {
            if (VirtualStart(programme) <= now && now < VirtualEnd(programme)) {
                MergeInto(m_ProgrammeReply(*channel, programme), out);
                return;
            }
        }
    }
    out["ret"] = false;
}

void KelvoSimContent::m_GetChannelLogo(Json::Value &in, Json::Value &out)
{
    const Json::Value *channel = m_VirtualChannel(Str(in, "TCServiceId"));
    const Json::Value &logos = channel ? Member(*channel, "logos") : Member(Json::Value(), "");
    const long long size = Num(in, "logoSize");
    if (!logos.isArray() || size < 0 || size >= static_cast<long long>(logos.size()) ||
        !logos[static_cast<Json::ArrayIndex>(size)].isString()) {
        out["ret"] = false;
        return;
    }
    out["channelLogo"] = logos[static_cast<Json::ArrayIndex>(size)];
}

// Thumbnail, background, or the image of "programLogoType" (0 thumbnail, 1 poster, 2 background),
// each image request with a download id of its own.
void KelvoSimContent::m_GetProgramImage(Json::Value &in, Json::Value &out)
{
    const Json::Value *channel = nullptr;
    const Json::Value *programme = m_VirtualProgramme(Member(in, "program_id"), &channel);
    long long type = m_method == "GetProgramThumbnail" ? 0 : m_method == "GetProgramBackground" ? 2 : -1;
    if (type < 0)
        type = Num(in, "programLogoType");
    std::string image;
    if (programme)
        image = type == 0   ? Str(*programme, "thumbnail")
                : type == 1 ? Str(Member(*programme, "poster"), "url")
                            : Str(*programme, "background");
    if (image.empty()) {
        out["ret"] = false;
        return;
    }
    out["programLogo"] = image;
    if (m_method == "GetProgramImage")
        out["imageDownloadId"] = std::to_string(++m_imageDownloads);
}

void KelvoSimContent::m_GetServiceIdFromOnTV(Json::Value &in, Json::Value &out)
{
    for (const auto &channel : Member(m_fixture, "virtualChannels")) {
        if (Str(channel, "onTvProviderId") == Str(in, "onTvProviderId") &&
            Str(channel, "onTvServiceId") == Str(in, "onTvServiceId")) {
            out["TCServiceId"] = Str(channel, "TCServiceId");
            return;
        }
    }
    out["ret"] = false;
}

void KelvoSimContent::m_Switch(Json::Value &in, Json::Value &out)
{
    for (const auto &row : kSwitchRows) {
        if (m_method != row.method)
            continue;
        switch (row.action) {
        case SwitchAction::kGet:
            out["ret"] = m_switches[row.flag];
            break;
        case SwitchAction::kGetOnce:
            out["ret"] = m_switches[row.flag];
            m_switches[row.flag] = false;
            break;
        case SwitchAction::kSetFromRequest:
            m_switches[row.flag] = Flag(in, "ret");
            break;
        case SwitchAction::kSet:
            m_switches[row.flag] = true;
            break;
        case SwitchAction::kClear:
            m_switches[row.flag] = false;
            break;
        }
        // Switching the service off closes what it had launched.
        if (!m_switches["tvlumeOn"].asBool())
            m_switches["launched"] = false;
        return;
    }
}

void KelvoSimContent::m_SetDataServiceType(Json::Value &in, Json::Value &)
{
    m_dataServiceType = static_cast<int>(Num(in, "ret"));
}

void KelvoSimContent::m_GetDataServiceType(Json::Value &, Json::Value &out)
{
    out["dataType"] = m_dataServiceType;
}

void KelvoSimContent::m_ProgramInfoIsAvailable(Json::Value &, Json::Value &out)
{
    out["ret"] = !Member(m_fixture, "virtualChannels").empty();
}

// The link travels as plain text both ways.
void KelvoSimContent::m_SetDeepLink(Json::Value &, Json::Value &)
{
    m_deepLink = m_argumentText;
}

void KelvoSimContent::m_GetDeepLink(Json::Value &, Json::Value &)
{
    m_plainReply = true;
    m_plainReplyText = m_deepLink;
}

void KelvoSimContent::m_GetPreviewData(Json::Value &, Json::Value &out)
{
    const Json::Value &preview = Member(Member(m_fixture, "tvlume"), "previewData");
    out["previewData"] = preview.isNull() ? Json::Value(Json::objectValue) : preview;
}

// 1 when the home screen came up, 0 when the service is switched off.
void KelvoSimContent::m_LaunchHomeScreen(Json::Value &, Json::Value &out)
{
    const bool on = m_switches["tvlumeOn"].asBool();
    m_switches["launched"] = on;
    out["ret"] = on ? 1 : 0;
}

// Locked while the content announced last carries a rating and nobody unlocked it. An older
// daemon answers its newer method with nothing.
void KelvoSimContent::m_CheckRatingLock(Json::Value &, Json::Value &out)
{
    if (m_older && m_method == "CheckTVLumeRatingLock") {
        m_plainReply = true;
        m_plainReplyText.clear();
        return;
    }
    out["ret"] = !m_contentRating.empty() && !m_switches["unlocked"].asBool();
}

void KelvoSimContent::m_NotifyContentIsChanged(Json::Value &in, Json::Value &)
{
    m_contentRating = Str(in, "rating");
    m_switches["unlocked"] = false;
}

void KelvoSimContent::m_GetAppIdAndUrl(Json::Value &, Json::Value &out)
{
    const Json::Value &tvlume = Member(m_fixture, "tvlume");
    out["appID"] = Str(tvlume, "appID");
    out["url"] = Str(tvlume, "url");
    if (m_method == "GetAppIDAndURLAndVersion")
        out["version"] = Str(tvlume, "version");
}

void KelvoSimContent::m_GetRatingInfo(Json::Value &, Json::Value &out)
{
    const Json::Value &ratings = Member(Member(m_fixture, "tvlume"), "ratings");
    out["ratings"] = ratings.isArray() ? ratings : Json::Value(Json::arrayValue);
    out["ret"] = !out["ratings"].empty();
}

// ---- app-on-channel services ----

namespace {

// A programme's start as the publisher sent it ("startTime", a number or decimal text).
unsigned int AocStartOf(const Json::Value &programme)
{
    long long start = Num(programme, "startTime");
    return start < 0 || start > UINT_MAX ? 0 : static_cast<unsigned int>(start);
}

unsigned int AocEndOf(const Json::Value &programme)
{
    long long end = static_cast<long long>(AocStartOf(programme)) + std::max(0LL, Num(programme, "duration"));
    return end > UINT_MAX ? UINT_MAX : static_cast<unsigned int>(end);
}

}  // namespace

// "aocPrograms": {"<package id>": {"TCServiceId": "<decimal>", "programs": [programme, ...]}}.
bool KelvoSimContent::m_LoadAoc(const Json::Value &fixture, std::string &error)
{
    std::map<std::string, AocPackage> packages;
    const Json::Value &published = Member(fixture, "aocPrograms");
    if (!published.isNull() && !published.isObject()) {
        error = "fixture member \"aocPrograms\" has the wrong kind";
        return false;
    }
    for (const auto &package : published.getMemberNames()) {
        const Json::Value &entry = published[package];
        if (!entry.isObject() || !Member(entry, "programs").isArray()) {
            error = "app-on-channel programmes of package \"" + package + "\" are not an array";
            return false;
        }
        AocPackage &stored = packages[package];
        stored.serviceId = Str(entry, "TCServiceId");
        for (const auto &programme : entry["programs"])
            stored.programs[AocStartOf(programme)] = programme;
    }
    m_aocPackages = std::move(packages);
    m_appInfos.clear();
    m_resumePositions.clear();
    return true;
}

std::map<unsigned int, const Json::Value *> KelvoSimContent::m_AocProgramsOf(const std::string &serviceId) const
{
    std::map<unsigned int, const Json::Value *> programmes;
    for (const auto &package : m_aocPackages) {
        if (serviceId != "0" && package.second.serviceId != serviceId)
            continue;
        for (const auto &programme : package.second.programs)
            programmes[programme.first] = &programme.second;
    }
    return programmes;
}

// Application information is kept by its "packageId": creating one that exists, or updating or
// removing one that does not, answers "ret": false.
void KelvoSimContent::m_CreateAppInfo(Json::Value &in, Json::Value &out)
{
    const std::string package = Str(in, "packageId");
    out["ret"] = !package.empty() && m_appInfos.emplace(package, in).second;
}

void KelvoSimContent::m_UpdateAppInfo(Json::Value &in, Json::Value &out)
{
    auto it = m_appInfos.find(Str(in, "packageId"));
    out["ret"] = it != m_appInfos.end();
    if (it != m_appInfos.end())
        it->second = in;
}

void KelvoSimContent::m_RemoveAppInfo(Json::Value &in, Json::Value &out)
{
    out["ret"] = m_appInfos.erase(Str(in, "packageId")) == 1;
}

// Replaces what the package published: its service and its programmes, each filed under its
// "startTime".
void KelvoSimContent::m_UpdateProgramInfo(Json::Value &in, Json::Value &out)
{
    const std::string package = Str(in, "packageId");
    if (package.empty()) {
        out["ret"] = false;
        return;
    }
    AocPackage &stored = m_aocPackages[package] = AocPackage();
    stored.serviceId = Str(in, "TCServiceId");
    for (const auto &programme : Member(in, "aocProgramData"))
        stored.programs[AocStartOf(programme)] = programme;
}

void KelvoSimContent::m_RemoveProgramInfo(Json::Value &in, Json::Value &out)
{
    out["ret"] = m_aocPackages.erase(Str(in, "packageId")) == 1;
}

void KelvoSimContent::m_GetProgramInfoList(Json::Value &in, Json::Value &out)
{
    const long long start = Num(in, "start_time");
    const long long end = start + std::max(0LL, Num(in, "duration"));
    Json::Value &list = out["aocProgramData"] = Json::Value(Json::arrayValue);
    for (const auto &programme : m_AocProgramsOf(Str(in, "TCServiceId"))) {
        if (programme.first >= start && programme.first < end)
            list.append(*programme.second);
    }
    out["ret"] = !list.empty();
}

void KelvoSimContent::m_GetPresentProgramInfo(Json::Value &in, Json::Value &out)
{
    const unsigned int now = static_cast<unsigned int>(time(nullptr));
    for (const auto &programme : m_AocProgramsOf(Str(in, "TCServiceId"))) {
        if (programme.first <= now && now < AocEndOf(*programme.second)) {
            MergeInto(*programme.second, out);
            return;
        }
    }
    out["ret"] = false;
}

// The programme a programme id names: its service ("0": any), start time and event id.
void KelvoSimContent::m_GetAocProgramInfo(Json::Value &in, Json::Value &out)
{
    in["program_indicator"] = 0;
    m_GetAocProgramInfoByIndicator(in, out);
}

// The named programme (indicator 0), the one after it (1) or the one before it (2) on its service.
void KelvoSimContent::m_GetAocProgramInfoByIndicator(Json::Value &in, Json::Value &out)
{
    const std::string service = Str(in, "serviceId").empty() ? "0" : Str(in, "serviceId");
    const long long start = Num(in, "startTime");
    const std::string event = Str(in, "event_id");
    const long long indicator = Num(in, "program_indicator");
    for (const auto &package : m_aocPackages) {
        if (service != "0" && package.second.serviceId != service)
            continue;
        const auto &programs = package.second.programs;
        auto it = programs.begin();
        while (it != programs.end() && !(it->first == start && Str(it->second, "programEventId") == event))
            ++it;
        if (it == programs.end())
            continue;
        if (indicator == 1)
            ++it;
        else if (indicator == 2)
            it = it == programs.begin() ? programs.end() : std::prev(it);
        else if (indicator != 0)
            it = programs.end();
        if (it != programs.end()) {
            MergeInto(it->second, out);
            return;
        }
    }
    out["ret"] = false;
}

void KelvoSimContent::m_SetVODResumeInfo(Json::Value &in, Json::Value &out)
{
    const std::string item = Str(in, "itemID");
    const long long position = Num(in, "position", -1);
    if (item.empty() || position < 0) {
        out["ret"] = false;
        return;
    }
    m_resumePositions[{Str(in, "TCServiceId"), item}] = static_cast<unsigned long long>(position);
}
