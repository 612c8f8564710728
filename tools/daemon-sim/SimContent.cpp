#include "SimContent.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <map>
#include <memory>
#include <utility>

namespace {

// Members read from requests and the fixture without trusting their kind: a request of the
// wrong shape gets a "ret": false answer or an empty result, never a crash.
std::string Str(const Json::Value &object, const char *key)
{
    if (!object.isObject() || !object.isMember(key))
        return "";
    const Json::Value &v = object[key];
    if (v.isString())
        return v.asString();
    if (v.isUInt64())
        return std::to_string(v.asUInt64());
    if (v.isInt64())
        return std::to_string(v.asInt64());
    return "";
}

long long Num(const Json::Value &object, const char *key, long long fallback = 0)
{
    if (!object.isObject() || !object.isMember(key))
        return fallback;
    const Json::Value &v = object[key];
    if (v.isInt64())
        return v.asInt64();
    if (v.isUInt64())
        return static_cast<long long>(v.asUInt64());
    if (v.isString()) {
        const std::string s = v.asString();
        char *end = nullptr;
        long long n = strtoll(s.c_str(), &end, 10);
        if (!s.empty() && end && *end == '\0')
            return n;
    }
    return fallback;
}

const Json::Value &Member(const Json::Value &object, const char *key)
{
    static const Json::Value null;
    if (!object.isObject() || !object.isMember(key))
        return null;
    return object[key];
}

bool ContainsNoCase(const std::string &haystack, const std::string &needle)
{
    auto it = std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end(), [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    });
    return it != haystack.end();
}

// Copies every member of a record object to the top level of a reply, where the record readers
// of the client look for a single channel or programme.
void MergeInto(const Json::Value &record, Json::Value &out)
{
    if (!record.isObject())
        return;
    for (const auto &key : record.getMemberNames())
        out[key] = record[key];
}

unsigned long long StartOf(const Json::Value &programme)
{
    long long start = Num(programme, "utc start time");
    return start < 0 ? 0 : static_cast<unsigned long long>(start);
}

long long DurationOf(const Json::Value &programme)
{
    return Num(programme, "duration");
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
    X("GetRemoteProgramByDescription", m_GetProgramsByDescription)

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

bool KelvoSimContent::Load(Json::Value fixture, std::string &error)
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
    m_fixture = std::move(fixture);
    m_msoConfig = Member(m_fixture, "msoConfig").isObject() ? m_fixture["msoConfig"] : Json::Value(Json::objectValue);
    m_country = Str(Member(m_fixture, "countryLang"), "country");
    m_language = Str(Member(m_fixture, "countryLang"), "language");
    m_programmeTexts.clear();
    const Json::Value &all = Member(m_fixture, "programs");
    for (auto source = all.begin(); source != all.end(); ++source) {
        std::vector<Piece> &pieces = m_programmeTexts[source.name()];
        pieces.reserve(source->size());
        for (const auto &programme : *source)
            pieces.push_back({static_cast<long long>(StartOf(programme)), ToCompactText(programme)});
    }
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
        text = ToCompactText(reply);
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
    if (it == m_Handlers().end())
        return false;
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
