#include "FCVirtualProgramData.h"

#include "FCDebug.h"
#include "FCRecordJson.h"
#include "FCTimeWrapper.h"

using FCRecordJson::Member;
using FCRecordJson::Text;

// ---- Programme id ----

bool FCVirtualProgramId::operator<(const FCVirtualProgramId &other) const
{
    if (m_serviceId != 0 && other.m_serviceId != 0 && m_serviceId != other.m_serviceId)
        return m_serviceId < other.m_serviceId;
    if (m_startTime != other.m_startTime)
        return m_startTime < other.m_startTime;
    return m_eventId < other.m_eventId;
}

bool FCVirtualProgramId::operator==(const FCVirtualProgramId &other) const
{
    if (m_serviceId != 0 && other.m_serviceId != 0 && m_serviceId != other.m_serviceId)
        return false;
    return m_eventId == other.m_eventId && m_startTime == other.m_startTime && m_duration == other.m_duration;
}

bool FCVirtualProgramId::ToJson(const FCVirtualProgramId &id, Json::Value &out)
{
    Json::Value &programId = out["program_id"];
    programId["TCServiceId"] = std::to_string(id.m_serviceId);
    programId["event_id"] = id.m_eventId;
    programId["start_time"] = id.m_startTime;
    programId["duration"] = id.m_duration;
    return true;
}

bool FCVirtualProgramId::FromJson(const Json::Value &in, FCVirtualProgramId &id)
{
    const Json::Value &programId = Member(in, "program_id");
    id.m_serviceId = FCRecordJson::ServiceId(Member(programId, "TCServiceId"));
    id.m_eventId = Text(Member(programId, "event_id"));
    id.m_duration = FCRecordJson::Unsigned(Member(programId, "duration"));
    id.m_startTime = FCRecordJson::Unsigned(Member(programId, "start_time"));
    return true;
}

std::string FCVirtualProgramId::ToString() const
{
    return "TCServiceId: " + std::to_string(m_serviceId) + "\nid: " + m_eventId +
           "\nstart_time: " + std::to_string(m_startTime) + "\nduration: " + std::to_string(m_duration) + "\n";
}

// ---- Programme ----

FCVirtualProgramData::FCVirtualProgramData() {}

FCVirtualProgramData::FCVirtualProgramData(const Json::Value &json)
    : FCTvlumeSchedule(json), FCTvlumeContent(json),
      m_serviceId(FCRecordJson::ServiceId(Member(Member(json, "program_data"), "TCServiceId")))
{}

FCVirtualProgramData::FCVirtualProgramData(const FCTvlumeSchedule &schedule, const FCTvlumeContent &content)
    : FCTvlumeSchedule(schedule), FCTvlumeContent(content)
{}

FCVirtualProgramData::FCVirtualProgramData(const FCTvlumeSchedule &schedule, const FCTvlumeContent &content,
                                           const unsigned long long &serviceId)
    : FCTvlumeSchedule(schedule), FCTvlumeContent(content), m_serviceId(serviceId)
{}

FCVirtualProgramData::~FCVirtualProgramData() {}

void FCVirtualProgramData::SetEventId(const std::string &eventId)
{
    FCTvlumeSchedule::SetEventId(eventId);
    FCTvlumeContent::SetEventId(eventId);
}

std::string FCVirtualProgramData::ToString() const
{
    return "serviceId[" + std::to_string(m_serviceId) + "]\n" + FCTvlumeSchedule::ToString() + "\n" +
           FCTvlumeContent::ToString();
}

bool FCVirtualProgramData::GetProgramId(FCVirtualProgramId &id) const
{
    id.SetServiceId(m_serviceId);
    id.SetEventId(FCTvlumeSchedule::GetEventId());
    id.SetStartTime(m_startTime);
    id.SetDuration(m_duration);
    return true;
}

unsigned long FCVirtualProgramData::GetTimeOffset() const
{
    const unsigned long now = FCTimeWrapper::EpochTime();
    return m_startTime > now ? 0 : now - m_startTime;
}

std::string FCVirtualProgramData::GetSeriesId() const
{
    return std::string();
}

bool FCVirtualProgramData::UpdateOffsetAndPlaylistIndex(unsigned long current_time, EStreamType stream_type)
{
    FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] in_current_time=%lu,  in_stream_type=%d\n", FC_PID_TID,
            __func__, current_time, static_cast<int>(stream_type));
    if (stream_type == STREAM_TYPE_LIVE) {
        m_relativeOffset = 0;
        m_playlistItemIndex = -1;
        FC_LOGD(
            "%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] in_current_time=%lu,  in_stream_type=%d-return true;\n",
            FC_PID_TID, __func__, current_time, static_cast<int>(stream_type));
        return true;
    }
    if (stream_type != STREAM_TYPE_CIRCLE && stream_type != STREAM_TYPE_RTS) {
        FC_LOGD(
            "%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] in_current_time=%lu,  in_stream_type=%d-return false\n",
            FC_PID_TID, __func__, current_time, static_cast<int>(stream_type));
        return false;
    }
    FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] t_playlist.size()=[%d]\n", FC_PID_TID, __func__,
            static_cast<int>(m_playlist.size()));

    // The set's times are unsigned 32-bit seconds, and so is all of this arithmetic.
    const unsigned int now = static_cast<unsigned int>(current_time);
    if (m_playlist.empty()) {
        // Negative before the slot starts.
        m_relativeOffset = static_cast<int>(now - m_startTime);
        m_playlistItemIndex = -1;
        FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] no playlist: relative_offset=%d, "
                "playlist_item_index=%d - return true\n",
                FC_PID_TID, __func__, m_relativeOffset, m_playlistItemIndex);
        return true;
    }

    unsigned int itemStart = m_startTime;
    for (size_t idx = 0; idx < m_playlist.size(); ++idx) {
        const FCTvlumePlaylistItem &item = m_playlist[idx];
        const unsigned int itemEnd = itemStart + item.GetDuration();
        FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] [idx=%d],  in_current_time=%u, iter_play(order=%u, "
                "start=%u, end=%u, duration=%u)\n",
                FC_PID_TID, __func__, static_cast<int>(idx), now, item.GetOrder(), itemStart, itemEnd,
                item.GetDuration());
        // The end second belongs to the next item.
        if (itemStart <= now && now < itemEnd) {
            m_playlistItemIndex = static_cast<int>(idx);
            m_relativeOffset = static_cast<int>(now - itemStart);
            FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] [idx=%d], in_stream_type=[%d], "
                    "relative_offset=%d, playlist_item_index=%d - return true\n",
                    FC_PID_TID, __func__, static_cast<int>(idx), static_cast<int>(stream_type), m_relativeOffset,
                    m_playlistItemIndex);
            return true;
        }
        itemStart = itemEnd;
    }

    // Before the slot or past the playlist's end the first item plays from its beginning; the
    // playlist does not repeat, not even for "CIRCLE".
    m_relativeOffset = 0;
    m_playlistItemIndex = 0;
    FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] no current item: relative_offset=0, "
            "playlist_item_index=0 - return true\n",
            FC_PID_TID, __func__);
    return true;
}

bool FCVirtualProgramData::UpdateOffsetAndPlaylistIndexForResumeCirculate(const std::string &last_play_item_id)
{
    FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] in_last_play_item_id=%s\n", FC_PID_TID, __func__,
            last_play_item_id.c_str());
    for (size_t idx = 0; idx < m_playlist.size(); ++idx) {
        const FCTvlumePlaylistItem &item = m_playlist[idx];
        if (item.GetItemId() != last_play_item_id)
            continue;
        // The item is replayed from its start, not skipped.
        m_playlistItemIndex = static_cast<int>(idx);
        m_relativeOffset = 0;
        FC_LOGD("%s: %s(%d) > [%d][%d][FCVirtualProgramData::%s] event_id=%s, (index=%d, start=%u, end=%u, "
                "offset=%d), in_last_play_item_id=%s\n",
                FC_PID_TID, __func__, FCTvlumeSchedule::GetEventId().c_str(), m_playlistItemIndex, m_startTime,
                m_startTime + item.GetDuration(), m_relativeOffset, last_play_item_id.c_str());
        return true;
    }
    return false;
}

bool FCVirtualProgramData::UpdateOffsetAndPlaylistIndexForResume(const std::string & /*last_play_item_id*/,
                                                                 const unsigned long &offset)
{
    m_relativeOffset = static_cast<int>(static_cast<unsigned int>(offset));
    m_playlistItemIndex = -1;
    return true;
}

bool FCVirtualProgramData::ToJson(const FCVirtualProgramData &program, Json::Value &out)
{
    out["program_data"]["TCServiceId"] = std::to_string(program.m_serviceId);
    // Both bases write "id"; the content's, written last, stays.
    program.FCTvlumeSchedule::ToJson(out);
    program.FCTvlumeContent::ToJson(out);
    return true;
}

bool FCVirtualProgramData::FromJson(const Json::Value &in, FCVirtualProgramData &program)
{
    program = FCVirtualProgramData(in);
    return true;
}

// ---- Configuration ----

bool FCVirtualConfig::ToJson(const FCVirtualConfig &config, Json::Value &out)
{
    Json::Value &position = out["ch_position"];
    position["position"] = config.m_chPosition;
    position["type"] = config.m_chPositionType;
    Json::Value &banner = out["vc_banner"];
    banner["tv_to_vc"] = config.m_bannerTvToVc;
    banner["vc_to_tv"] = config.m_bannerVcToTv;
    return true;
}

bool FCVirtualConfig::FromJson(const Json::Value &in, FCVirtualConfig &config)
{
    const Json::Value &position = Member(in, "ch_position");
    config.m_chPosition = Text(Member(position, "position"));
    config.m_chPositionType = Text(Member(position, "type"));
    const Json::Value &banner = Member(in, "vc_banner");
    config.m_bannerTvToVc = Text(Member(banner, "tv_to_vc"));
    config.m_bannerVcToTv = Text(Member(banner, "vc_to_tv"));
    return true;
}
