#include "SimContent.h"

#include "SimJson.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <map>
#include <memory>

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

std::string KelvoSimContent::ToCompactText(const Json::Value &value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    // Texts travel as UTF-8, not as \u escapes, as the daemon's own replies do.
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

bool KelvoSimContent::Load(const Json::Value &fixture, std::string &error)
{
    if (!fixture.isObject()) {
        error = "the fixture is not a JSON object";
        return false;
    }
    const struct {
        const char *key;
        Json::ValueType type;
    } kinds[] = {{"channels", Json::arrayValue},     {"genres", Json::arrayValue},
                 {"programs", Json::objectValue},    {"sourceToService", Json::objectValue},
                 {"msoConfig", Json::objectValue},   {"certRule", Json::objectValue},
                 {"vodProviders", Json::arrayValue}, {"countryLang", Json::objectValue},
                 {"channelCRC", Json::stringValue},  {"version", Json::stringValue}};
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
    m_fixture = fixture;
    m_msoConfig = Member(fixture, "msoConfig").isObject() ? fixture["msoConfig"] : Json::Value(Json::objectValue);
    m_country = Str(Member(fixture, "countryLang"), "country");
    m_language = Str(Member(fixture, "countryLang"), "language");
    m_tv.reset();
    return true;
}

bool KelvoSimContent::Answer(const std::string &method, const std::string &argumentText, Json::Value &reply)
{
    auto it = m_Handlers().find(method);
    if (it == m_Handlers().end())
        return false;
    Json::Value in;
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    if (!reader->parse(argumentText.data(), argumentText.data() + argumentText.size(), &in, nullptr) ||
        !in.isObject()) {
        in = Json::Value(Json::objectValue);
    }
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
void KelvoSimContent::m_GetProgramMap(Json::Value &in, Json::Value &out)
{
    const long long start = Num(in, "utc start time");
    long long end = 0;
    if (__builtin_add_overflow(start, std::max(0LL, Num(in, "duration")), &end))
        end = LLONG_MAX;
    Json::Value &map = out["out_mapProgramWithSourceID"] = Json::Value(Json::arrayValue);
    const Json::Value &programs = Member(m_fixture, "programs");
    for (const auto &requested : Member(in, "sourceIDArray")) {
        if (!requested.isString() || !programs.isMember(requested.asString()))
            continue;
        Json::Value element(Json::objectValue);
        element["program_source_id"] = requested.asString();
        Json::Value &array = element["program_array"] = Json::Value(Json::arrayValue);
        for (const auto &programme : programs[requested.asString()]) {
            long long begin = static_cast<long long>(StartOf(programme));
            if (begin >= start && begin < end)
                array.append(programme);
        }
        if (!array.empty())
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
