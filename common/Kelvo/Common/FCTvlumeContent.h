// The streaming service's virtual-channel content as the daemon sends it: a schedule slot, the
// content it plays, and the playlist items of that content. Each record reads the daemon's JSON,
// writes its own keys back and prints itself for the log.
//
// Reading never fails and never raises: a missing key or a value of another type reads as 0 or
// "". Drm, sequence and the extra data are not written back: the daemon owns them.
#ifndef KELVO_FCTVLUMECONTENT_H
#define KELVO_FCTVLUMECONTENT_H

#include <string>
#include <vector>

#include <json/json.h>

#include "FCTypes.h"

// One playable item of a content's playlist.
class FCTvlumePlaylistItem {
public:
    struct stSubtitle {
        stSubtitle() = default;
        stSubtitle(const stSubtitle &) = default;
        stSubtitle &operator=(const stSubtitle &) = default;
        stSubtitle(stSubtitle &&) = default;
        stSubtitle &operator=(stSubtitle &&) = default;
        ~stSubtitle();
        std::string url;
        std::string lang_order_index;
    };

    FCTvlumePlaylistItem();
    FCTvlumePlaylistItem(const Json::Value &json);  // NOLINT(google-explicit-constructor): the daemon's records convert
    FCTvlumePlaylistItem(const FCTvlumePlaylistItem &) = default;
    FCTvlumePlaylistItem &operator=(const FCTvlumePlaylistItem &) = default;
    FCTvlumePlaylistItem(FCTvlumePlaylistItem &&) = default;
    FCTvlumePlaylistItem &operator=(FCTvlumePlaylistItem &&) = default;
    virtual ~FCTvlumePlaylistItem();

    // "order", "id", "title", "content_uri", "duration", "subtitle" {"url", "lang_order_index"}.
    bool ToJson(Json::Value &out) const;
    std::string ToString() const;

    unsigned int GetOrder() const { return m_order; }
    unsigned int GetDuration() const { return m_duration; }
    // True when the daemon sent the key "drm", whatever its value.
    bool IsDRM() const { return m_drm; }
    const std::string &GetItemId() const { return m_itemId; }
    const std::string &GetTitle() const { return m_title; }
    const std::string &GetContentUri() const { return m_contentUri; }
    // The item's JSON without the keys read above, as compact JSON text.
    const std::string &GetExtraData() const { return m_extraData; }
    stSubtitle GetSubtitle() const { return m_subtitle; }

private:
    bool m_drm = false;
    unsigned int m_order = 0;
    std::string m_itemId;
    std::string m_title;
    std::string m_contentUri;
    unsigned int m_duration = 0;
    stSubtitle m_subtitle;
    std::string m_extraData;
};

// The content a schedule slot plays.
class FCTvlumeContent {
public:
    FCTvlumeContent();
    FCTvlumeContent(const Json::Value &json);  // NOLINT(google-explicit-constructor): as the item
    FCTvlumeContent(const FCTvlumeContent &) = default;
    FCTvlumeContent &operator=(const FCTvlumeContent &) = default;
    FCTvlumeContent(FCTvlumeContent &&) = default;
    FCTvlumeContent &operator=(FCTvlumeContent &&) = default;
    virtual ~FCTvlumeContent();

    // "id", "content_type", "content_uri", "title", "short_desc", "poster" {"url", "index"},
    // "rating", "ratings", "group_play_list" (each item's own keys, in playlist order).
    bool ToJson(Json::Value &out) const;
    std::string ToString() const;

    bool IsDRM() const { return m_drm; }
    const std::string &GetEventId() const { return m_eventId; }
    const std::string &GetContentType() const { return m_contentType; }
    const std::string &GetContentUri() const { return m_contentUri; }
    const std::string &GetTitle() const { return m_title; }
    const std::string &GetPosterUrl() const { return m_posterUrl; }
    const std::string &GetPosterIndex() const { return m_posterIndex; }
    const std::string &GetShortDescription() const { return m_shortDescription; }
    // The content's JSON without the keys the records read, as compact JSON text.
    const std::string &GetExtraData() const { return m_extraData; }
    // The list of ratings ("ratings", its "," turned into "|"), not the single "rating".
    const std::string &GetRating() const { return m_ratings; }
    void SetContentUri(const std::string &contentUri) { m_contentUri = contentUri; }
    void SetTitle(const std::string &title) { m_title = title; }
    void SetEventId(const std::string &eventId) { m_eventId = eventId; }

    // Each copies the item found into item and answers whether there was one; item is left as
    // it was otherwise.
    bool GetFirstPlaylistItem(FCTvlumePlaylistItem &item) const;
    bool GetPlaylistItem(int index, FCTvlumePlaylistItem &item) const;
    // The first item of that id (exact, case-sensitive).
    bool GetPlaylistItem(const std::string &itemId, FCTvlumePlaylistItem &item) const;
    // The item after the first one of that id; none after the last item: the caller decides
    // what follows the end of a playlist.
    bool GetNextPlaylistItem(const std::string &itemId, FCTvlumePlaylistItem &item) const;
    const std::vector<FCTvlumePlaylistItem> &GetPlaylist() const { return m_playlist; }

    // The ratings as the set's country rates them (rating system 8). Only a content with one
    // rating can match a country's table; with none matching, out keeps its rating. False, with
    // out untouched, on a set whose country rates nothing (codes 0 and 2).
    bool GetRatingInfo(RatingInfo &out) const;

private:
    static bool m_ConvertToBraRatingInfo(const std::string &ratings, RatingInfo &out);
    static bool m_ConvertToArgRatingInfo(const std::string &ratings, RatingInfo &out);
    static bool m_ConvertToThaiRatingInfo(const std::string &ratings, RatingInfo &out);
    static bool m_ConvertToSingapoleRatingInfo(const std::string &ratings, RatingInfo &out);
    static bool m_ConvertToNZRatingInfo(const std::string &ratings, RatingInfo &out);
    static bool m_ConvertToAustraliaRatingInfo(const std::string &ratings, RatingInfo &out);
    static bool m_ConvertToEURatingInfo(const std::string &ratings, RatingInfo &out);

protected:
    unsigned int m_sequence = 0;
    bool m_drm = false;
    std::string m_eventId;
    std::string m_contentType;
    std::string m_contentUri;
    std::string m_title;
    std::string m_posterUrl;
    std::string m_posterIndex;
    std::string m_shortDescription;
    std::string m_rating;
    std::string m_extraData;
    std::string m_ratings;
    std::vector<FCTvlumePlaylistItem> m_playlist;
};

// One slot of a virtual channel's schedule.
class FCTvlumeSchedule {
public:
    FCTvlumeSchedule();
    FCTvlumeSchedule(const Json::Value &json);  // NOLINT(google-explicit-constructor): as the item
    FCTvlumeSchedule(const FCTvlumeSchedule &) = default;
    FCTvlumeSchedule &operator=(const FCTvlumeSchedule &) = default;
    FCTvlumeSchedule(FCTvlumeSchedule &&) = default;
    FCTvlumeSchedule &operator=(FCTvlumeSchedule &&) = default;
    virtual ~FCTvlumeSchedule();

    // "id", "starttime" (W3C date-time, UTC), "duration", "relative_offset", "playlist_item_index".
    bool ToJson(Json::Value &out) const;
    std::string ToString() const;

    unsigned int GetStartTime() const { return m_startTime; }
    unsigned int GetDuration() const { return m_duration; }
    const std::string &GetEventId() const { return m_eventId; }
    int GetRelativeOffset() const { return m_relativeOffset; }
    int GetPlaylistItemIndex() const { return m_playlistItemIndex; }
    void SetStartTime(unsigned int startTime) { m_startTime = startTime; }
    void SetDuration(unsigned int duration) { m_duration = duration; }
    void SetRelativeOffset(int relativeOffset) { m_relativeOffset = relativeOffset; }
    void SetPlaylistItemIndex(int playlistItemIndex) { m_playlistItemIndex = playlistItemIndex; }
    void SetEventId(const std::string &eventId) { m_eventId = eventId; }

protected:
    unsigned int m_startTime = 0;
    unsigned int m_duration = 0;
    std::string m_eventId;
    // Where playback stands: seconds into the current playlist item (or into the slot when
    // the index is -1, the slot then playing as one stream).
    int m_relativeOffset = -1;
    int m_playlistItemIndex = -1;
};

#endif
