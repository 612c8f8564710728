#include "FCElementData.h"

#include <tuple>

#include "FCDebug.h"
#include "FCJsonHelper.h"

namespace {

// The string fields of a record with their JSON keys, so that writing, reading and comparing
// walk one list. A null text key means the field has no place in the programme's text form.
template <typename Record>
struct StringField {
    const char *jsonKey;
    const char *textKey;
    std::string Record::*member;
};

const StringField<FCRemoteProgram> kProgramStrings[] = {
    {"program source id", "str_program_source_id", &FCRemoteProgram::m_programSourceId},
    {"channel name", "str_channel_name", &FCRemoteProgram::m_channelName},
    {"channel number", "str_channel_number", &FCRemoteProgram::m_channelNumber},
    {"program id", "str_program_id", &FCRemoteProgram::m_programId},
    {"lang", "str_lang", &FCRemoteProgram::m_lang},
    {"start time", "str_starttime", &FCRemoteProgram::m_startTime},
    {"title", "strTitle", &FCRemoteProgram::m_title},
    {"cert flag", "str_cert_flag", &FCRemoteProgram::m_certFlag},
    {"poster url", "str_poster_url", &FCRemoteProgram::m_posterUrl},
    {"poster type", "str_poster_type", &FCRemoteProgram::m_posterType},
    {"poster overlay", "str_poster_overlay", &FCRemoteProgram::m_posterOverlay},
    {"poster index", "str_poster_index", &FCRemoteProgram::m_posterIndex},
    {"short desc", "str_short_desc", &FCRemoteProgram::m_shortDesc},
    {"desc", nullptr, &FCRemoteProgram::m_desc},
    {"series", "series", &FCRemoteProgram::m_series},
};

// Row 20, the genre name, is not here: it is written and read under two different keys.
const StringField<FCRemoteChannel> kChannelStrings[] = {
    {"str_program_source_id", nullptr, &FCRemoteChannel::m_programSourceId},
    {"str_channel_name", nullptr, &FCRemoteChannel::m_channelName},
    {"str_channel_number", nullptr, &FCRemoteChannel::m_channelNumber},
    {"str_alias", nullptr, &FCRemoteChannel::m_alias},
    {"str_major", nullptr, &FCRemoteChannel::m_major},
    {"str_minor", nullptr, &FCRemoteChannel::m_minor},
    {"str_onid", nullptr, &FCRemoteChannel::m_onid},
    {"str_tsid", nullptr, &FCRemoteChannel::m_tsid},
    {"str_sid", nullptr, &FCRemoteChannel::m_sid},
    {"str_frequency", nullptr, &FCRemoteChannel::m_frequency},
    {"str_ptc", nullptr, &FCRemoteChannel::m_ptc},
    {"str_icon_url", nullptr, &FCRemoteChannel::m_iconUrl},
    {"str_url_index", nullptr, &FCRemoteChannel::m_urlIndex},
    {"str_dtv", nullptr, &FCRemoteChannel::m_dtv},
    {"str_digital_flag", nullptr, &FCRemoteChannel::m_digitalFlag},
    {"str_qam_flag", nullptr, &FCRemoteChannel::m_qamFlag},
    {"genre id", nullptr, &FCRemoteChannel::m_genreId},
    {"ac_rank", nullptr, &FCRemoteChannel::m_acRank},
};

const StringField<FCRemoteChannelKey> kKeyStrings[] = {
    {"str_channel_number", nullptr, &FCRemoteChannelKey::m_channelNumber},
    {"str_major", nullptr, &FCRemoteChannelKey::m_major},
    {"str_minor", nullptr, &FCRemoteChannelKey::m_minor},
    {"str_onid", nullptr, &FCRemoteChannelKey::m_onid},
    {"str_tsid", nullptr, &FCRemoteChannelKey::m_tsid},
    {"str_sid", nullptr, &FCRemoteChannelKey::m_sid},
    {"str_frequency", nullptr, &FCRemoteChannelKey::m_frequency},
    {"str_digital_flag", nullptr, &FCRemoteChannelKey::m_digitalFlag},
};

const StringField<FCGenreInfo> kGenreStrings[] = {
    {"str_name", nullptr, &FCGenreInfo::m_name},
    {"str_id", nullptr, &FCGenreInfo::m_id},
    {"str_genre_img_url", nullptr, &FCGenreInfo::m_imgUrl},
    {"str_genre_img_type", nullptr, &FCGenreInfo::m_imgType},
    {"str_genre_img_index", nullptr, &FCGenreInfo::m_imgIndex},
};

const StringField<FCRemoteMSOConfig> kConfigStrings[] = {
    {"strHeadend", nullptr, &FCRemoteMSOConfig::m_headend},
    {"strDeviceType", nullptr, &FCRemoteMSOConfig::m_deviceType},
    {"strZipCode", nullptr, &FCRemoteMSOConfig::m_zipCode},
    {"str_additional_info_with_json_format", nullptr, &FCRemoteMSOConfig::m_additionalInfoJson},
};

template <typename Record, size_t N>
void WriteStrings(const StringField<Record> (&fields)[N], const Record &record, Json::Value &out)
{
    for (const auto &field : fields)
        out[field.jsonKey] = record.*field.member;
}

// Through the non-const member operator: a missing key reads "" and leaves a null member.
template <typename Record, size_t N>
void ReadStrings(const StringField<Record> (&fields)[N], Json::Value &in, Record &record)
{
    for (const auto &field : fields)
        record.*field.member = in[field.jsonKey].asString();
}

template <typename Record, size_t N>
bool EqualStrings(const StringField<Record> (&fields)[N], const Record &a, const Record &b)
{
    for (const auto &field : fields) {
        if (a.*field.member != b.*field.member)
            return false;
    }
    return true;
}

Json::Value UnsignedValue(unsigned long value)
{
    return Json::Value(static_cast<Json::UInt64>(value));
}

}  // namespace

// ---- FCRemoteProgram ----

bool FCRemoteProgram::ToJson(const FCRemoteProgram &program, Json::Value &out)
{
    out["activityID"] = static_cast<int>(program.m_activityID);
    WriteStrings(kProgramStrings, program, out);
    out["utc start time"] = UnsignedValue(program.m_utcStartTime);
    out["duration"] = program.m_duration;
    if (!program.m_genres.empty()) {
        Json::Value &genres = out["genre array"];
        for (const auto &genre : program.m_genres)
            genres.append(genre);
    }
    out["EndTime"] = UnsignedValue(program.m_endTime);
    out["IsRF"] = program.m_isRF;
    return true;
}

bool FCRemoteProgram::FromJson(const Json::Value &in, FCRemoteProgram &program)
{
    // Every key read with a default: reading a programme never adds members to the reply.
    static const Json::Value noText(""), noNumber(0), noActivity(-1);
    try {
        program.m_activityID =
            static_cast<eRemoteContentActivity>(FCJsonHelper::MemberOr(in, "activityID", noActivity).asInt());
        for (const auto &field : kProgramStrings)
            program.*field.member = FCJsonHelper::MemberOr(in, field.jsonKey, noText).asString();
        program.m_utcStartTime = FCJsonHelper::MemberOr(in, "utc start time", noNumber).asUInt();
        program.m_duration = static_cast<int>(FCJsonHelper::MemberOr(in, "duration", noNumber).asUInt());
        program.m_endTime = FCJsonHelper::MemberOr(in, "EndTime", noNumber).asUInt();
        program.m_isRF = FCJsonHelper::MemberOr(in, "IsRF", noNumber).asBool();
        const Json::Value &genres = in["genre array"];
        for (Json::ArrayIndex i = 0; i < genres.size(); ++i)
            program.m_genres.push_back(genres[i].asString());
    } catch (const Json::Exception &e) {
        FC_LOGW("%s: %s(%d) > DBG_LV[%d][FCRemoteProgram::%s] Exception Catch: %s\n", FC_DBG_LV, __func__, e.what());
        FC_ASSERT_FAIL("0");
        return false;
    }
    return true;
}

bool FCRemoteProgram::to_string(std::string &out)
{
    try {
        Json::Value root(Json::objectValue);
        root["activityID"] = static_cast<int>(m_activityID);
        for (const auto &field : kProgramStrings) {
            if (field.textKey != nullptr)
                root[field.textKey] = this->*field.member;
        }
        root["utc_starttime"] = static_cast<int>(m_utcStartTime);
        root["duration"] = m_duration;
        // One genre object, overwritten per genre and appended once: the text form keeps only
        // the last genre, and [null] when there is none. Readers of this text expect exactly that.
        Json::Value genre;
        for (const auto &id : m_genres)
            genre["id"] = id;
        root["genre_array"].append(genre);
        out = FCJsonHelper::WriteCompact(root);
    } catch (const Json::Exception &) {
        FC_LOGW("%s: %s(%d) > DBG_LV[%d][FCRemoteProgram::%s] Exception Caught\n", FC_DBG_LV, __func__);
        FC_ASSERT_FAIL("0");
        return false;
    }
    return true;
}

bool FCRemoteProgram::from_string(std::string &in)
{
    Json::Value root;
    if (!FCJsonHelper::ParseToJson(in, root))
        return false;
    try {
        m_activityID = static_cast<eRemoteContentActivity>(root["activityID"].asInt());
        for (const auto &field : kProgramStrings) {
            if (field.textKey != nullptr)
                this->*field.member = root[field.textKey].asString();
        }
        m_utcStartTime = static_cast<unsigned long>(root["utc_starttime"].asInt());
        m_duration = root["duration"].asInt();
        Json::Value &genres = root["genre_array"];
        for (Json::ArrayIndex i = 0; i < genres.size(); ++i)
            m_genres.push_back(genres[i]["id"].asString());
    } catch (const Json::Exception &) {
        FC_LOGW("%s: %s(%d) > DBG_LV[%d][FCRemoteProgram::%s] Exception Caught\n", FC_DBG_LV, __func__);
        FC_ASSERT_FAIL("0");
        return false;
    }
    return true;
}

bool FCRemoteProgram::IsSatisfyFilterCriteria(FCFilterCriteria & /*criteria*/)
{
    return true;
}

bool FCRemoteProgram::operator<(const FCRemoteProgram &other) const
{
    return std::tie(m_programSourceId, m_utcStartTime) < std::tie(other.m_programSourceId, other.m_utcStartTime);
}

bool FCRemoteProgram::operator==(const FCRemoteProgram &other) const
{
    // Poster type, overlay and index, short description, end time and is-RF describe how a
    // programme is presented, not which programme it is.
    return m_activityID == other.m_activityID && m_programSourceId == other.m_programSourceId &&
           m_channelName == other.m_channelName && m_channelNumber == other.m_channelNumber &&
           m_programId == other.m_programId && m_lang == other.m_lang && m_utcStartTime == other.m_utcStartTime &&
           m_startTime == other.m_startTime && m_duration == other.m_duration && m_title == other.m_title &&
           m_certFlag == other.m_certFlag && m_genres == other.m_genres && m_posterUrl == other.m_posterUrl &&
           m_desc == other.m_desc && m_series == other.m_series;
}

// ---- FCRemoteChannelKey ----

bool FCRemoteChannelKey::ToJson(FCRemoteChannelKey &key, Json::Value &out)
{
    Json::Value &channelKey = out["channel_key"];
    channelKey["activityID"] = static_cast<int>(key.m_activityID);
    WriteStrings(kKeyStrings, key, channelKey);
    return true;
}

bool FCRemoteChannelKey::FromJson(Json::Value &in, FCRemoteChannelKey &key)
{
    Json::Value &channelKey = in["channel_key"];
    key.m_activityID = static_cast<eRemoteContentActivity>(channelKey["activityID"].asInt());
    ReadStrings(kKeyStrings, channelKey, key);
    return true;
}

bool FCRemoteChannelKey::operator<(const FCRemoteChannelKey &other) const
{
    const int activity = m_activityID;
    const int otherActivity = other.m_activityID;
    return std::tie(activity, m_channelNumber, m_major, m_minor, m_onid, m_tsid, m_sid, m_frequency, m_digitalFlag) <
           std::tie(otherActivity, other.m_channelNumber, other.m_major, other.m_minor, other.m_onid, other.m_tsid,
                    other.m_sid, other.m_frequency, other.m_digitalFlag);
}

bool FCRemoteChannelKey::operator==(const FCRemoteChannelKey &other) const
{
    return m_activityID == other.m_activityID && EqualStrings(kKeyStrings, *this, other);
}

// ---- FCRemoteChannel ----

bool FCRemoteChannel::ToJson(FCRemoteChannel &channel, Json::Value &out)
{
    out["activityID"] = static_cast<int>(channel.m_activityID);
    WriteStrings(kChannelStrings, channel, out);
    out["embed"] = channel.m_embed;
    out["gere name"] = channel.m_genreName;
    return true;
}

bool FCRemoteChannel::FromJson(Json::Value &in, FCRemoteChannel &channel)
{
    channel.m_activityID = static_cast<eRemoteContentActivity>(in["activityID"].asInt());
    ReadStrings(kChannelStrings, in, channel);
    channel.m_embed = in["embed"].asInt();
    channel.m_genreName = in["genre name"].asString();
    return true;
}

void FCRemoteChannel::GetKey(FCRemoteChannelKey &key)
{
    key.m_activityID = m_activityID;
    key.m_channelNumber = m_channelNumber;
    key.m_major = m_major;
    key.m_minor = m_minor;
    key.m_onid = m_onid;
    key.m_tsid = m_tsid;
    key.m_sid = m_sid;
    key.m_frequency = m_frequency;
    key.m_digitalFlag = m_digitalFlag;
}

bool FCRemoteChannel::operator==(const FCRemoteChannel &other) const
{
    return m_activityID == other.m_activityID && m_embed == other.m_embed && m_genreName == other.m_genreName &&
           EqualStrings(kChannelStrings, *this, other);
}

// ---- FCGenreInfo, FCFilterCriteria ----

bool FCGenreInfo::ToJson(FCGenreInfo &genre, Json::Value &out)
{
    WriteStrings(kGenreStrings, genre, out);
    return true;
}

bool FCGenreInfo::FromJson(Json::Value &in, FCGenreInfo &genre)
{
    ReadStrings(kGenreStrings, in, genre);
    return true;
}

bool FCGenreInfo::operator==(const FCGenreInfo &other) const
{
    return EqualStrings(kGenreStrings, *this, other);
}

bool FCFilterCriteria::ToJson(FCFilterCriteria &criteria, Json::Value &out)
{
    out["genre id list"] = criteria.m_genreIdList;
    return true;
}

bool FCFilterCriteria::FromJson(Json::Value &in, FCFilterCriteria &criteria)
{
    criteria.m_genreIdList = in["genre id list"].asString();
    return true;
}

// ---- FCRemoteMSOConfig ----

bool FCRemoteMSOConfig::ToJson(const FCRemoteMSOConfig &config, Json::Value &out)
{
    Json::Value &nested = out["config"];
    WriteStrings(kConfigStrings, config, nested);
    nested["source"] = config.m_source;
    nested["antennaMode"] = config.m_antennaMode;
    nested["serviceMode"] = config.m_serviceMode;
    return true;
}

bool FCRemoteMSOConfig::FromJson(Json::Value &in, FCRemoteMSOConfig &config)
{
    Json::Value &nested = in["config"];
    ReadStrings(kConfigStrings, nested, config);
    config.m_source = nested["source"].asInt();
    config.m_antennaMode = nested["antennaMode"].asInt();
    config.m_serviceMode = nested["serviceMode"].asInt();
    return true;
}

bool FCRemoteMSOConfig::operator==(const FCRemoteMSOConfig &other) const
{
    return m_source == other.m_source && m_antennaMode == other.m_antennaMode && m_serviceMode == other.m_serviceMode &&
           EqualStrings(kConfigStrings, *this, other);
}

// ---- FCAdditionalProgramRequest ----

FCAdditionalProgramRequest::FCAdditionalProgramRequest(const std::string &programSourceId, unsigned long utcStartTime,
                                                       int duration)
    : m_programSourceId(programSourceId), m_utcStartTime(utcStartTime), m_duration(duration)
{}

bool FCAdditionalProgramRequest::operator<(const FCAdditionalProgramRequest &other) const
{
    return std::tie(m_programSourceId, m_utcStartTime, m_duration) <
           std::tie(other.m_programSourceId, other.m_utcStartTime, other.m_duration);
}

bool FCAdditionalProgramRequest::operator==(const FCAdditionalProgramRequest &other) const
{
    return m_programSourceId == other.m_programSourceId && m_utcStartTime == other.m_utcStartTime &&
           m_duration == other.m_duration;
}
