// The daemon's services around the tuner: activities of network channels per input source, genre
// navigation over the broadcast (RF) channels and their metadata programmes, image downloads and
// content-recognition results. README.md says what each answers.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <map>
#include <tuple>

#include "SimContent.h"
#include "SimJson.h"

using SimJson::DurationOf;
using SimJson::Member;
using SimJson::MergeInto;
using SimJson::Num;
using SimJson::StartOf;
using SimJson::Str;

namespace {

const int kActivities = 5;
// The activity of a reply that names none.
const int kNoActivity = -1;
// Sources are the set's input numbers; -1 and below name none.
bool ValidSource(long long source)
{
    return source >= 0;
}

unsigned long long ServiceIdOf(const std::string &text)
{
    return std::strtoull(text.c_str(), nullptr, 10);
}

// A major or minor number as the fixture writes it (text or number); none sorts last.
long long ChannelNumber(const Json::Value &channel, const char *key)
{
    return Num(channel, key, (1LL << 62));
}

}  // namespace

struct KelvoSimContent::TvServices {
    struct Activity {
        bool allocated = false;
        std::vector<long long> sources;
    };
    struct Download {
        std::string url;
        int location = 0;
        std::string file;
    };
    struct Recognition {
        bool verified = false;
        std::string programSourceId;
        std::string programId;
        unsigned long long utcStart = 0;
    };

    std::array<Activity, kActivities> activities;
    std::string genre;
    std::map<int, Download> downloads;
    int nextDownloadId = 1;
    std::map<long long, Recognition> recognitions;

    // The activity holding source, or -1.
    int ActivityOf(long long source) const
    {
        for (int id = 0; id < kActivities; ++id) {
            const auto &sources = activities[static_cast<size_t>(id)].sources;
            if (std::find(sources.begin(), sources.end(), source) != sources.end())
                return id;
        }
        return kNoActivity;
    }
    Activity *Find(long long id)
    {
        return id >= 0 && id < kActivities ? &activities[static_cast<size_t>(id)] : nullptr;
    }
    std::map<int, Download>::iterator FindUrl(const std::string &url)
    {
        return std::find_if(downloads.begin(), downloads.end(),
                            [&url](const auto &entry) { return entry.second.url == url; });
    }
};

KelvoSimContent::TvServices &KelvoSimContent::m_Tv()
{
    if (!m_tv)
        m_tv = std::make_shared<TvServices>();
    return *m_tv;
}

// ---- activities ----

// A source keeps the activity it has; a new source takes the lowest free one.
void KelvoSimContent::m_AllocateActivity(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    const long long source = Num(in, "source", -1);
    int id = ValidSource(source) ? tv.ActivityOf(source) : kNoActivity;
    if (ValidSource(source) && id == kNoActivity) {
        for (int free = 0; free < kActivities && id == kNoActivity; ++free) {
            if (!tv.activities[static_cast<size_t>(free)].allocated) {
                tv.activities[static_cast<size_t>(free)] = {true, {source}};
                id = free;
            }
        }
    }
    out["activityID"] = id;
    out["ret"] = id != kNoActivity;
}

void KelvoSimContent::m_GetActivityBySource(Json::Value &in, Json::Value &out)
{
    const int id = m_Tv().ActivityOf(Num(in, "source", -1));
    out["activityID"] = id;
    out["ret"] = id != kNoActivity;
}

void KelvoSimContent::m_DeleteActivity(Json::Value &in, Json::Value &out)
{
    const long long id = Num(in, "activityID", kNoActivity);
    TvServices::Activity *activity = m_Tv().Find(id);
    out["activityID"] = static_cast<Json::Int64>(id);
    out["ret"] = activity != nullptr && activity->allocated;
    if (activity != nullptr)
        *activity = {};
}

// A source belongs to one activity at most: naming it for another fails.
void KelvoSimContent::m_SetActivitySource(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    const long long source = Num(in, "source", -1);
    TvServices::Activity *activity = tv.Find(Num(in, "activityID", kNoActivity));
    const int holder = tv.ActivityOf(source);
    if (activity == nullptr || !ValidSource(source) || (holder != kNoActivity && tv.Find(holder) != activity)) {
        out["ret"] = false;
        return;
    }
    *activity = {true, {source}};
}

void KelvoSimContent::m_AppendActivitySource(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    const long long source = Num(in, "source", -1);
    TvServices::Activity *activity = tv.Find(Num(in, "activityID", kNoActivity));
    const int holder = tv.ActivityOf(source);
    if (activity == nullptr || !activity->allocated || !ValidSource(source) ||
        (holder != kNoActivity && tv.Find(holder) != activity)) {
        out["ret"] = false;
        return;
    }
    if (holder == kNoActivity)
        activity->sources.push_back(source);
}

// The activity stays allocated without sources until it is deleted.
void KelvoSimContent::m_RemoveActivitySource(Json::Value &in, Json::Value &out)
{
    TvServices::Activity *activity = m_Tv().Find(Num(in, "activityID", kNoActivity));
    const long long source = Num(in, "source", -1);
    if (activity == nullptr) {
        out["ret"] = false;
        return;
    }
    auto &sources = activity->sources;
    auto it = std::find(sources.begin(), sources.end(), source);
    out["ret"] = it != sources.end();
    if (it != sources.end())
        sources.erase(it);
}

// ---- RF navigation ----

// The broadcast channels are the fixture's channels whose source has a TV service, one per
// service, in channel-number order; a genre keeps those whose "genre id" or "gere name" is it
// ("" keeps all).
std::vector<std::pair<unsigned long long, const Json::Value *>>
KelvoSimContent::m_RFChannels(const std::string &genre) const
{
    std::vector<std::pair<unsigned long long, const Json::Value *>> channels;
    for (const auto &channel : Member(m_fixture, "channels")) {
        std::string service;
        if (!m_ServiceOfSource(Str(channel, "str_program_source_id"), service))
            continue;
        const unsigned long long id = ServiceIdOf(service);
        const bool seen = std::any_of(channels.begin(), channels.end(), [id](const auto &c) { return c.first == id; });
        if (!seen)
            channels.emplace_back(id, &channel);
    }
    std::stable_sort(channels.begin(), channels.end(), [](const auto &a, const auto &b) {
        return std::make_tuple(ChannelNumber(*a.second, "str_major"), ChannelNumber(*a.second, "str_minor"), a.first) <
               std::make_tuple(ChannelNumber(*b.second, "str_major"), ChannelNumber(*b.second, "str_minor"), b.first);
    });
    if (!genre.empty()) {
        channels.erase(std::remove_if(channels.begin(), channels.end(),
                                      [&genre](const auto &c) {
                                          return Str(*c.second, "genre id") != genre &&
                                                 Str(*c.second, "gere name") != genre;
                                      }),
                       channels.end());
    }
    return channels;
}

void KelvoSimContent::m_SetNavigationGenre(Json::Value &in, Json::Value &)
{
    m_Tv().genre = Str(in, "genre");
}

void KelvoSimContent::m_GetNavigationGenre(Json::Value &, Json::Value &out)
{
    out["genre"] = m_Tv().genre;
}

void KelvoSimContent::m_GetRFChannelMap(Json::Value &in, Json::Value &out)
{
    const std::string genre = Str(in, "genre");
    out["genre"] = genre;
    Json::Value &list = out["service list"] = Json::Value(Json::arrayValue);
    for (const auto &channel : m_RFChannels(genre)) {
        Json::Value element(Json::objectValue);
        element["TCServiceId"] = std::to_string(channel.first);
        list.append(element);
    }
}

void KelvoSimContent::m_GetRFChannelCount(Json::Value &in, Json::Value &out)
{
    out["count"] = static_cast<Json::Int>(m_RFChannels(Str(in, "genre")).size());
}

namespace {

// Stepping through the genre's channels in the full channel order, from the current channel
// (which need not be of the genre), and round at the ends: up from the last channel is the first.
// From a channel the TV does not have, up is the genre's first channel and down its last.
unsigned long long Step(const std::vector<std::pair<unsigned long long, const Json::Value *>> &all,
                        const std::vector<std::pair<unsigned long long, const Json::Value *>> &genre,
                        unsigned long long current, bool up)
{
    auto at = std::find_if(all.begin(), all.end(), [current](const auto &c) { return c.first == current; });
    if (at == all.end())
        return up ? genre.front().first : genre.back().first;
    auto inGenre = [&genre](unsigned long long id) {
        return std::any_of(genre.begin(), genre.end(), [id](const auto &c) { return c.first == id; });
    };
    const auto position = static_cast<size_t>(at - all.begin());
    for (size_t step = 1; step <= all.size(); ++step) {
        const size_t index = up ? (position + step) % all.size() : (position + all.size() - step) % all.size();
        if (inGenre(all[index].first))
            return all[index].first;
    }
    return genre.front().first;
}

}  // namespace

void KelvoSimContent::m_GetRFChannelUp(Json::Value &in, Json::Value &out)
{
    const auto genre = m_RFChannels(Str(in, "genre"));
    if (genre.empty()) {
        out["ret"] = false;
        out["TCServiceId"] = "0";
        return;
    }
    out["TCServiceId"] = std::to_string(Step(m_RFChannels(""), genre, ServiceIdOf(Str(in, "TCServiceId")), true));
}

void KelvoSimContent::m_GetRFChannelDown(Json::Value &in, Json::Value &out)
{
    const auto genre = m_RFChannels(Str(in, "genre"));
    if (genre.empty()) {
        out["ret"] = false;
        out["TCServiceId"] = "0";
        return;
    }
    out["TCServiceId"] = std::to_string(Step(m_RFChannels(""), genre, ServiceIdOf(Str(in, "TCServiceId")), false));
}

// The programmes of every source mapped to the service, by start time.
std::vector<const Json::Value *> KelvoSimContent::m_ProgrammesOfService(unsigned long long serviceId) const
{
    std::vector<const Json::Value *> programmes;
    const Json::Value &table = Member(m_fixture, "sourceToService");
    for (const auto &source : table.getMemberNames()) {
        if (ServiceIdOf(Str(table, source.c_str())) != serviceId)
            continue;
        for (const auto &programme : Member(Member(m_fixture, "programs"), source.c_str()))
            programmes.push_back(&programme);
    }
    std::stable_sort(programmes.begin(), programmes.end(),
                     [](const Json::Value *a, const Json::Value *b) { return StartOf(*a) < StartOf(*b); });
    return programmes;
}

// The fixture's "now" when it has one, so that answers about the present can be checked.
long long KelvoSimContent::m_Now() const
{
    return Num(m_fixture, "now", static_cast<long long>(time(nullptr)));
}

namespace {

bool Runs(const Json::Value &programme, long long when)
{
    const auto start = static_cast<long long>(StartOf(programme));
    return start <= when && when < start + std::max(0LL, DurationOf(programme));
}

}  // namespace

void KelvoSimContent::m_GetPresentMetaProgram(Json::Value &in, Json::Value &out)
{
    const long long now = m_Now();
    for (const Json::Value *programme : m_ProgrammesOfService(ServiceIdOf(Str(in, "TCServiceId")))) {
        if (Runs(*programme, now)) {
            MergeInto(*programme, out);
            return;
        }
    }
    out["ret"] = false;
}

namespace {

// The programme of the same source that starts next after (or last before) the given one.
const Json::Value *Neighbour(const Json::Value &programs, const Json::Value &from, bool next)
{
    const unsigned long long start = StartOf(from);
    const Json::Value *found = nullptr;
    for (const auto &programme : Member(programs, Str(from, "program source id").c_str())) {
        const unsigned long long candidate = StartOf(programme);
        const bool side = next ? candidate > start : candidate < start;
        const bool closer = found == nullptr || (next ? candidate < StartOf(*found) : candidate > StartOf(*found));
        if (side && closer)
            found = &programme;
    }
    return found;
}

}  // namespace

void KelvoSimContent::m_GetNextMetaProgram(Json::Value &in, Json::Value &out)
{
    const Json::Value *programme = Neighbour(Member(m_fixture, "programs"), in, true);
    out["ret"] = programme != nullptr;
    if (programme != nullptr)
        MergeInto(*programme, out);
}

void KelvoSimContent::m_GetPrevMetaProgram(Json::Value &in, Json::Value &out)
{
    const Json::Value *programme = Neighbour(Member(m_fixture, "programs"), in, false);
    out["ret"] = programme != nullptr;
    if (programme != nullptr)
        MergeInto(*programme, out);
}

// Every programme that runs at some time of [start_time, start_time + duration), keyed by its
// start.
void KelvoSimContent::m_GetMetaProgramMap(Json::Value &in, Json::Value &out)
{
    const long long start = Num(in, "start_time");
    const long long end = start + std::max(0LL, Num(in, "duration"));
    Json::Value &map = out["meta_program_map"] = Json::Value(Json::arrayValue);
    for (const Json::Value *programme : m_ProgrammesOfService(ServiceIdOf(Str(in, "TCServiceId")))) {
        const auto begin = static_cast<long long>(StartOf(*programme));
        if (begin < end && begin + std::max(0LL, DurationOf(*programme)) > start) {
            Json::Value element = *programme;
            element["key"] = static_cast<Json::UInt>(begin);
            map.append(element);
        }
    }
}

void KelvoSimContent::m_CheckMetaProgramExist(Json::Value &, Json::Value &out)
{
    const auto channels = m_RFChannels("");
    out["ret"] = std::any_of(channels.begin(), channels.end(),
                             [this](const auto &c) { return !m_ProgrammesOfService(c.first).empty(); });
}

void KelvoSimContent::m_IsSupportMetadataforEPG(Json::Value &, Json::Value &out)
{
    out["ret"] = !m_RFChannels("").empty();
}

// ---- image downloads ----

// A url is registered once: registering it again answers its first identifier and file.
void KelvoSimContent::m_RegisterDownload(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    const std::string url = Str(in, "url");
    if (url.empty()) {
        out["ret"] = -1;
        out["file"] = "";
        return;
    }
    auto it = tv.FindUrl(url);
    if (it == tv.downloads.end()) {
        TvServices::Download item{url, static_cast<int>(Num(in, "location")), Str(in, "file")};
        const int id = tv.nextDownloadId++;
        if (item.file.empty()) {
            item.file =
                std::string(item.location == 1 ? "/opt/usr/home/owner/share/kelvo-images/" : "/tmp/kelvo-images/") +
                std::to_string(id);
        }
        it = tv.downloads.emplace(id, item).first;
    }
    out["ret"] = it->first;
    out["file"] = it->second.file;
}

void KelvoSimContent::m_GetDownloadByUrl(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    auto it = tv.FindUrl(Str(in, "url"));
    out["ret"] = it == tv.downloads.end() ? -1 : it->first;
    out["file"] = it == tv.downloads.end() ? "" : it->second.file;
}

void KelvoSimContent::m_GetDownloadById(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    auto it = tv.downloads.find(static_cast<int>(Num(in, "id", -1)));
    out["ret"] = it == tv.downloads.end() ? -1 : it->first;
    out["file"] = it == tv.downloads.end() ? "" : it->second.file;
}

void KelvoSimContent::m_UnregisterDownloadByUrl(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    auto it = tv.FindUrl(Str(in, "url"));
    out["ret"] = it != tv.downloads.end();
    if (it != tv.downloads.end())
        tv.downloads.erase(it);
}

void KelvoSimContent::m_UnregisterDownloadById(Json::Value &in, Json::Value &out)
{
    out["ret"] = m_Tv().downloads.erase(static_cast<int>(Num(in, "id", -1))) == 1;
}

void KelvoSimContent::m_DeleteAllImage(Json::Value &in, Json::Value &)
{
    TvServices &tv = m_Tv();
    const long long location = Num(in, "location");
    for (auto it = tv.downloads.begin(); it != tv.downloads.end();)
        it = it->second.location == location ? tv.downloads.erase(it) : std::next(it);
}

// ---- content recognition ----

// The recognised programme's start comes from the fixture's programmes of that source.
void KelvoSimContent::m_SetVerifiedACRInfo(Json::Value &in, Json::Value &out)
{
    const long long source = Num(in, "source", -1);
    if (!ValidSource(source)) {
        out["ret"] = false;
        return;
    }
    TvServices::Recognition recognition{Member(in, "flag").isBool() && in["flag"].asBool(), Str(in, "programSourceID"),
                                        Str(in, "programID"), 0};
    for (const auto &programme : Member(Member(m_fixture, "programs"), recognition.programSourceId.c_str())) {
        if (Str(programme, "program id") == recognition.programId)
            recognition.utcStart = StartOf(programme);
    }
    m_Tv().recognitions[source] = recognition;
}

void KelvoSimContent::m_GetVerifiedMeta(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    auto it = tv.recognitions.find(Num(in, "source", -1));
    const TvServices::Recognition recognition = it != tv.recognitions.end() ? it->second : TvServices::Recognition{};
    out["ret"] = it != tv.recognitions.end();
    out["AcrVerified"] = recognition.verified ? 1 : 0;
    out["programSourceID"] = recognition.programSourceId;
    out["programID"] = recognition.programId;
    out["utc_start_time"] = static_cast<Json::UInt64>(recognition.utcStart);
}

// Near: the programme running now on the recognised programme source began, or ends, within
// "sec" seconds of now.
void KelvoSimContent::m_IsNearProgramBoundary(Json::Value &in, Json::Value &out)
{
    TvServices &tv = m_Tv();
    auto it = tv.recognitions.find(Num(in, "source", -1));
    out["flag"] = false;
    if (it == tv.recognitions.end()) {
        out["ret"] = false;
        return;
    }
    const long long now = m_Now();
    const long long margin = std::max(0LL, Num(in, "sec"));
    for (const auto &programme : Member(Member(m_fixture, "programs"), it->second.programSourceId.c_str())) {
        if (!Runs(programme, now))
            continue;
        const auto start = static_cast<long long>(StartOf(programme));
        out["flag"] = now - start <= margin || start + DurationOf(programme) - now <= margin;
        return;
    }
    out["ret"] = false;
}
