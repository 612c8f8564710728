// A programme of a virtual channel: one schedule slot with the content it plays, tied to the
// channel by its service id; the key that finds it; and the channel's presentation settings.
#ifndef KELVO_FCVIRTUALPROGRAMDATA_H
#define KELVO_FCVIRTUALPROGRAMDATA_H

#include <string>

#include <json/json.h>

#include "FCTvlumeContent.h"
#include "FCTypes.h"

// The key of a virtual programme. A service id of 0 is not known, and then matches any: two keys
// of which one has no service id compare by start time and event id only.
class FCVirtualProgramId {
public:
    unsigned long long GetServiceId() const { return m_serviceId; }
    void SetServiceId(unsigned long long serviceId) { m_serviceId = serviceId; }
    const std::string &GetEventId() const { return m_eventId; }
    void SetEventId(const std::string &eventId) { m_eventId = eventId; }
    unsigned int GetStartTime() const { return m_startTime; }
    void SetStartTime(unsigned int startTime) { m_startTime = startTime; }
    unsigned int GetDuration() const { return m_duration; }
    void SetDuration(unsigned int duration) { m_duration = duration; }

    // By service id (when both are known), then start time, then event id; duration takes no part.
    bool operator<(const FCVirtualProgramId &other) const;
    // Differing known service ids differ; otherwise event id, start time and duration decide.
    bool operator==(const FCVirtualProgramId &other) const;
    bool operator!=(const FCVirtualProgramId &other) const { return !(*this == other); }

    // Everything under "program_id": "TCServiceId" (decimal text), "event_id", "start_time", "duration".
    static bool ToJson(const FCVirtualProgramId &id, Json::Value &out);
    static bool FromJson(const Json::Value &in, FCVirtualProgramId &id);
    std::string ToString() const;

private:
    unsigned long long m_serviceId = 0;
    std::string m_eventId;
    unsigned int m_startTime = 0;
    unsigned int m_duration = 0;
};

class FCVirtualProgramData : public FCTvlumeSchedule, public FCTvlumeContent {
public:
    FCVirtualProgramData();
    // Both bases read the same object; the service id is "program_data"."TCServiceId".
    explicit FCVirtualProgramData(const Json::Value &json);
    FCVirtualProgramData(const FCTvlumeSchedule &schedule, const FCTvlumeContent &content);
    FCVirtualProgramData(const FCTvlumeSchedule &schedule, const FCTvlumeContent &content,
                         const unsigned long long &serviceId);
    FCVirtualProgramData(const FCVirtualProgramData &) = default;
    FCVirtualProgramData &operator=(const FCVirtualProgramData &) = default;
    FCVirtualProgramData(FCVirtualProgramData &&) = default;
    FCVirtualProgramData &operator=(FCVirtualProgramData &&) = default;
    ~FCVirtualProgramData() override;

    unsigned long long GetServiceId() const { return m_serviceId; }
    void SetServiceId(unsigned long long serviceId) { m_serviceId = serviceId; }
    // The schedule's event id.
    const std::string &GetEventId() const { return FCTvlumeSchedule::GetEventId(); }
    // Sets the event id of the schedule and of the content.
    void SetEventId(const std::string &eventId);
    std::string ToString() const;

    bool GetProgramId(FCVirtualProgramId &id) const;
    // Seconds since the slot started; 0 before it starts.
    unsigned long GetTimeOffset() const;
    // Virtual programmes belong to no series; kept so that callers treat all programmes alike.
    std::string GetSeriesId() const;

    // Where playback of the slot stands at current_time (UTC seconds): the playlist item index
    // and the offset into that item. "LIVE" plays as one stream (index -1, offset 0); "CIRCLE"
    // and "RTS" walk the playlist from the slot's start; past the playlist's end, or before the
    // slot's start, the first item plays from its beginning. False for any other stream type,
    // with the position left as it was.
    bool UpdateOffsetAndPlaylistIndex(unsigned long current_time, EStreamType stream_type);
    // Replays the first item of that id from its start; false when there is none.
    bool UpdateOffsetAndPlaylistIndexForResumeCirculate(const std::string &last_play_item_id);
    // The slot as one stream from offset.
    bool UpdateOffsetAndPlaylistIndexForResume(const std::string &last_play_item_id, const unsigned long &offset);

    // One flat object: "program_data" {"TCServiceId"}, then the schedule's keys, then the content's.
    static bool ToJson(const FCVirtualProgramData &program, Json::Value &out);
    static bool FromJson(const Json::Value &in, FCVirtualProgramData &program);

private:
    unsigned long long m_serviceId = 0;
};

// Where the virtual channels sit in the channel list, and the banner texts shown when switching
// between ordinary TV and virtual channels.
class FCVirtualConfig {
public:
    const std::string &GetChPosition() const { return m_chPosition; }
    const std::string &GetChPositionType() const { return m_chPositionType; }
    const std::string &GetBannerTvToVc() const { return m_bannerTvToVc; }
    const std::string &GetBannerVcToTv() const { return m_bannerVcToTv; }

    // "ch_position" {"position", "type"}, "vc_banner" {"tv_to_vc", "vc_to_tv"}.
    static bool ToJson(const FCVirtualConfig &config, Json::Value &out);
    static bool FromJson(const Json::Value &in, FCVirtualConfig &config);

private:
    std::string m_chPosition;
    std::string m_chPositionType;
    std::string m_bannerTvToVc;
    std::string m_bannerVcToTv;
};

#endif
