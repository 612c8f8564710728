#include "FCTvlumeContent.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "FCDebug.h"
#include "FCJsonHelper.h"
#include "FCRecordJson.h"
#include "FCServiceIdUtil.h"
#include "TVServiceAPI.h"

using FCRecordJson::Member;
using FCRecordJson::Text;

namespace {

// The keys each record reads itself; everything else the server sends travels on in the
// record's extra data. The content's list also holds keys that other records of the same object
// read (the schedule's, the programme's).
std::set<std::string> &ContentKnownKeys()
{
    static std::set<std::string> keys = {"program_data",
                                         "id",
                                         "content_type",
                                         "content_uri",
                                         "title",
                                         "short_desc",
                                         "relative_offset",
                                         "playlist_item_index",
                                         "starttime",
                                         "duration",
                                         "poster",
                                         "group_play_list",
                                         "lang",
                                         "mid_desc",
                                         "desc",
                                         "genres",
                                         "video_quality",
                                         "schedule_type",
                                         "trailer_url",
                                         "website"};
    return keys;
}

std::set<std::string> &PlaylistItemKnownKeys()
{
    static std::set<std::string> keys = {"order", "duration", "id", "title", "content_uri", "subtitle"};
    return keys;
}

// The product-information profile that holds the set's country, and the rating system that
// every country's ratings are given in.
const int kSOSpecProfile = 1;
const int kRatingSystem = 8;

struct RatingCode {
    const char *code;
    int rating;
};

template <size_t N>
bool FindRating(const RatingCode (&table)[N], const std::string &ratings, RatingInfo &out)
{
    for (const RatingCode &entry : table) {
        if (ratings == entry.code) {
            out.rating_system = kRatingSystem;
            out.rating = entry.rating;
            return true;
        }
    }
    return false;
}

const RatingCode kBrazil[] = {{"10", 2},   {"12", 3},   {"14", 4},   {"16", 5},   {"18", 6}, {"A10", 10},
                              {"A12", 11}, {"A14", 12}, {"A16", 13}, {"A18", 14}, {"L", 1},  {"AL", 9}};
const RatingCode kArgentina[] = {{"13", 2}, {"16", 3}, {"18", 4}, {"C", 5}};
const RatingCode kThailand[] = {{"P", 1}, {"C", 3}, {"G", 7}, {"PG13", 10}, {"PG18", 15}, {"Adults", 16}};
const RatingCode kSingapore[] = {{"G", 1}, {"PG", 4}, {"PG13", 10}, {"NC16", 13}, {"M18", 15}, {"R21", 18}};
const RatingCode kNewZealand[] = {{"G", 6}, {"PGR", 8}, {"AO", 15}};
const RatingCode kAustralia[] = {{"G", 6}, {"PG", 8}, {"M", 10}, {"MA", 12}, {"AV", 14}, {"R", 15}};

std::string &Append(std::string &text, const char *label, const std::string &value)
{
    return text.append(label).append(value);
}

}  // namespace

// ---- Playlist item ----

FCTvlumePlaylistItem::stSubtitle::~stSubtitle() {}

FCTvlumePlaylistItem::FCTvlumePlaylistItem() {}

FCTvlumePlaylistItem::FCTvlumePlaylistItem(const Json::Value &json)
    : m_drm(json.isObject() && json.isMember("drm")), m_order(FCRecordJson::UnsignedOrText(Member(json, "order"))),
      m_itemId(Text(Member(json, "id"))), m_title(Text(Member(json, "title"))),
      m_contentUri(Text(Member(json, "content_uri"))),
      m_duration(FCRecordJson::UnsignedOrText(Member(json, "duration")))
{
    const Json::Value &subtitle = Member(json, "subtitle");
    m_subtitle.url = Text(Member(subtitle, "url"));
    m_subtitle.lang_order_index = Text(Member(subtitle, "lang_order_index"));
    m_extraData = FCJsonHelper::GetMetaJsonStringWithExceptionTags(json, PlaylistItemKnownKeys());
}

FCTvlumePlaylistItem::~FCTvlumePlaylistItem() {}

bool FCTvlumePlaylistItem::ToJson(Json::Value &out) const
{
    out["order"] = m_order;
    out["id"] = m_itemId;
    out["title"] = m_title;
    out["content_uri"] = m_contentUri;
    out["duration"] = m_duration;
    Json::Value &subtitle = out["subtitle"];
    subtitle["url"] = m_subtitle.url;
    subtitle["lang_order_index"] = m_subtitle.lang_order_index;
    return true;
}

std::string FCTvlumePlaylistItem::ToString() const
{
    std::string text;
    Append(text, "order[", std::to_string(m_order));
    Append(text, "] itemId[", m_itemId);
    Append(text, "] title[", m_title);
    Append(text, "]\nduration[", std::to_string(m_duration));
    Append(text, "] contentUri[", m_contentUri);
    Append(text, "]\nsubtitle.url[", m_subtitle.url);
    Append(text, "] subtitle.langOrderIndex[", m_subtitle.lang_order_index);
    return text.append("]");
}

// ---- Content ----

FCTvlumeContent::FCTvlumeContent() {}

FCTvlumeContent::FCTvlumeContent(const Json::Value &json)
{
    m_eventId = Text(Member(json, "id"));
    m_contentType = Text(Member(json, "content_type"));
    m_contentUri = Text(Member(json, "content_uri"));
    m_drm = json.isObject() && json.isMember("drm");
    m_title = Text(Member(json, "title"));
    m_shortDescription = Text(Member(json, "short_desc"));
    const Json::Value &poster = Member(json, "poster");
    m_posterUrl = Text(Member(poster, "url"));
    m_posterIndex = Text(Member(poster, "index"));

    m_rating = Text(Member(json, "rating"));
    m_ratings = Text(Member(json, "ratings"));
    std::replace(m_ratings.begin(), m_ratings.end(), ',', '|');

    // "sequence" is signed when it comes as a number.
    const Json::Value &sequence = Member(json, "sequence");
    m_sequence = sequence.isString() ? FCRecordJson::UnsignedOrText(sequence)
                                     : static_cast<unsigned int>(FCRecordJson::Signed(sequence));

    const Json::Value &playlist = Member(json, "group_play_list");
    if (playlist.isArray()) {
        m_playlist.reserve(playlist.size());
        for (const Json::Value &item : playlist)
            m_playlist.emplace_back(item);
    }

    m_extraData = FCJsonHelper::GetMetaJsonStringWithExceptionTags(json, ContentKnownKeys());
}

FCTvlumeContent::~FCTvlumeContent() {}

bool FCTvlumeContent::ToJson(Json::Value &out) const
{
    out["id"] = m_eventId;
    out["content_type"] = m_contentType;
    out["content_uri"] = m_contentUri;
    out["title"] = m_title;
    out["short_desc"] = m_shortDescription;
    Json::Value &poster = out["poster"];
    poster["url"] = m_posterUrl;
    poster["index"] = m_posterIndex;
    out["rating"] = m_rating;
    out["ratings"] = m_ratings;
    Json::Value playlist(Json::arrayValue);
    for (const FCTvlumePlaylistItem &item : m_playlist) {
        Json::Value element;
        item.ToJson(element);
        playlist.append(std::move(element));
    }
    out["group_play_list"] = std::move(playlist);
    return true;
}

std::string FCTvlumeContent::ToString() const
{
    std::string text;
    Append(text, "Content::eventId[", m_eventId);
    Append(text, "] title[", m_title);
    Append(text, "]\ncontentType[", m_contentType);
    Append(text, "] contentUri[", m_contentUri);
    Append(text, "]\nposterUrl[", m_posterUrl);
    Append(text, "] posterIndex[", m_posterIndex);
    Append(text, "]\nshortDescription[", m_shortDescription);
    Append(text, "]\nmeta[", m_extraData);
    Append(text, "]\nplaylistItemSize[", std::to_string(m_playlist.size()));
    text.append("]\n");
    for (const FCTvlumePlaylistItem &item : m_playlist)
        text.append(item.ToString()).append("\n");
    return text;
}

bool FCTvlumeContent::GetFirstPlaylistItem(FCTvlumePlaylistItem &item) const
{
    return GetPlaylistItem(0, item);
}

bool FCTvlumeContent::GetPlaylistItem(int index, FCTvlumePlaylistItem &item) const
{
    if (index < 0 || static_cast<size_t>(index) >= m_playlist.size())
        return false;
    item = m_playlist[static_cast<size_t>(index)];
    return true;
}

bool FCTvlumeContent::GetPlaylistItem(const std::string &itemId, FCTvlumePlaylistItem &item) const
{
    for (const FCTvlumePlaylistItem &candidate : m_playlist) {
        if (candidate.GetItemId() == itemId) {
            item = candidate;
            return true;
        }
    }
    return false;
}

bool FCTvlumeContent::GetNextPlaylistItem(const std::string &itemId, FCTvlumePlaylistItem &item) const
{
    for (size_t i = 0; i < m_playlist.size(); ++i) {
        if (m_playlist[i].GetItemId() == itemId) {
            if (i + 1 >= m_playlist.size())
                return false;
            item = m_playlist[i + 1];
            return true;
        }
    }
    return false;
}

bool FCTvlumeContent::GetRatingInfo(RatingInfo &out) const
{
    ISOSpecApp *app = nullptr;
    TVServiceAPI::CreateSOSpecApp(kSOSpecProfile, 0, &app);
    if (app == nullptr)
        return m_ConvertToEURatingInfo(m_ratings, out);
    int country = 0;
    const bool known = app->GetIntValue(SOSPEC_ITEM_COUNTRY, country);
    TVServiceAPI::Destroy(app);
    if (!known) {
        FC_LOGE("%s: %s(%d) > [%d][%d][FCTvlumeContent::%s] no country code\n", FC_PID_TID, __func__);
        return m_ConvertToEURatingInfo(m_ratings, out);
    }
    switch (country) {
    case 0:
    case 2:
        return false;
    case 23:
        return m_ConvertToAustraliaRatingInfo(m_ratings, out);
    case 34:
    case 64:
    case 65:
    case 69:
    case 71:
    case 72:
    case 74:
    case 80:
        return m_ConvertToBraRatingInfo(m_ratings, out);
    case 37:
        return m_ConvertToNZRatingInfo(m_ratings, out);
    case 39:
        return m_ConvertToSingapoleRatingInfo(m_ratings, out);
    case 67:
        return m_ConvertToArgRatingInfo(m_ratings, out);
    case 79:
        return m_ConvertToThaiRatingInfo(m_ratings, out);
    default:
        return m_ConvertToEURatingInfo(m_ratings, out);
    }
}

bool FCTvlumeContent::m_ConvertToBraRatingInfo(const std::string &ratings, RatingInfo &out)
{
    // Brazil alone names the rating system before it knows whether the rating is one of its own.
    out.rating_system = kRatingSystem;
    FindRating(kBrazil, ratings, out);
    return true;
}

bool FCTvlumeContent::m_ConvertToArgRatingInfo(const std::string &ratings, RatingInfo &out)
{
    FindRating(kArgentina, ratings, out);
    return true;
}

bool FCTvlumeContent::m_ConvertToThaiRatingInfo(const std::string &ratings, RatingInfo &out)
{
    FindRating(kThailand, ratings, out);
    return true;
}

bool FCTvlumeContent::m_ConvertToSingapoleRatingInfo(const std::string &ratings, RatingInfo &out)
{
    FindRating(kSingapore, ratings, out);
    return true;
}

bool FCTvlumeContent::m_ConvertToNZRatingInfo(const std::string &ratings, RatingInfo &out)
{
    FindRating(kNewZealand, ratings, out);
    return true;
}

bool FCTvlumeContent::m_ConvertToAustraliaRatingInfo(const std::string &ratings, RatingInfo &out)
{
    FindRating(kAustralia, ratings, out);
    return true;
}

bool FCTvlumeContent::m_ConvertToEURatingInfo(const std::string &ratings, RatingInfo &out)
{
    // The age in years, less 3, in the one byte a rating has: no age at all wraps to 253.
    const long age = std::strtol(ratings.c_str(), nullptr, 10);
    out.rating = static_cast<unsigned char>(age - 3);
    out.rating_system = kRatingSystem;
    return true;
}

// ---- Schedule ----

FCTvlumeSchedule::FCTvlumeSchedule() {}

FCTvlumeSchedule::FCTvlumeSchedule(const Json::Value &json)
    : m_duration(FCRecordJson::UnsignedOrText(Member(json, "duration"))), m_eventId(Text(Member(json, "id"))),
      m_relativeOffset(FCRecordJson::Signed(Member(json, "relative_offset"))),
      m_playlistItemIndex(FCRecordJson::Signed(Member(json, "playlist_item_index")))
{
    const std::string start = Text(Member(json, "starttime"));
    FCTime time;
    if (time.from_W3CDateTimeFormat(start, false))
        m_startTime = static_cast<unsigned int>(time.to_UTC());
    else
        m_startTime = static_cast<unsigned int>(std::strtoul(start.c_str(), nullptr, 0));
}

FCTvlumeSchedule::~FCTvlumeSchedule() {}

bool FCTvlumeSchedule::ToJson(Json::Value &out) const
{
    FCTime time;
    time.from_UTC(m_startTime, 0, false);
    out["id"] = m_eventId;
    out["starttime"] = time.to_W3CDateTimeFormat();
    out["duration"] = m_duration;
    out["relative_offset"] = m_relativeOffset;
    out["playlist_item_index"] = m_playlistItemIndex;
    return true;
}

std::string FCTvlumeSchedule::ToString() const
{
    std::string text;
    Append(text, "Schedule::eventId[", m_eventId);
    Append(text, "] starttime[", std::to_string(m_startTime));
    Append(text, "] duration[", std::to_string(m_duration));
    Append(text, "]\nrelativeOffset[", std::to_string(m_relativeOffset));
    Append(text, "] playlistItenIndex[", std::to_string(m_playlistItemIndex));
    return text.append("]");
}
