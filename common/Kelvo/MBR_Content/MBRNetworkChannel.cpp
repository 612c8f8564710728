#include "MBRNetworkChannel.h"

#include <tuple>

#include "FCDebug.h"

FCMBRNetworkChannel::FCMBRNetworkChannel()
{
    m_Initialize();
}

void FCMBRNetworkChannel::m_Initialize()
{
    m_major = -1;
    m_originMajor = -1;
    m_minor = 0;
    m_channelID = -1;
    m_remembered = false;
    m_favorites.reset();
    m_activityID = 6;
    m_bDigital = true;
    m_acRank = 0;
}

bool FCMBRNetworkChannel::SetMajor(int major)
{
    m_major = major;
    return true;
}

bool FCMBRNetworkChannel::SetOriginMajor(int originMajor)
{
    m_originMajor = originMajor;
    return true;
}

bool FCMBRNetworkChannel::SetMinor(int minor)
{
    m_minor = minor;
    return true;
}

bool FCMBRNetworkChannel::SetacRank(int acRank)
{
    m_acRank = acRank;
    return true;
}

bool FCMBRNetworkChannel::SetName(std::string &name)
{
    m_name = name;
    return true;
}

bool FCMBRNetworkChannel::SetIconUrl(std::string &iconUrl)
{
    m_str_icon_url = iconUrl;
    return true;
}

bool FCMBRNetworkChannel::SetUrlIndex(std::string &urlIndex)
{
    m_str_url_index = urlIndex;
    return true;
}

bool FCMBRNetworkChannel::SetOriginName(std::string &originName)
{
    m_originName = originName;
    return true;
}

bool FCMBRNetworkChannel::SetChannelID(int &channelID)
{
    m_channelID = channelID;
    return true;
}

bool FCMBRNetworkChannel::SetRemembered(bool remembered)
{
    m_remembered = remembered;
    return true;
}

bool FCMBRNetworkChannel::SetFavoriteBitSet(std::bitset<MBR_NETWORKCHANNEL_FAVORITE_MAX> &favorites)
{
    m_favorites = favorites;
    return true;
}

bool FCMBRNetworkChannel::SetActivityID(int activityID)
{
    m_activityID = activityID;
    return true;
}

bool FCMBRNetworkChannel::SetDigitalFlag(bool digital)
{
    m_bDigital = digital;
    return true;
}

bool FCMBRNetworkChannel::SetFavorite(EFavorite favorite, bool on)
{
    if (!(favorite < MBR_NETWORKCHANNEL_FAVORITE_MAX)) {
        FC_ASSERT_FAIL("favorite < MBR_NETWORKCHANNEL_FAVORITE_MAX");
        return false;
    }
    // A negative list passes the check above; it must still not reach the bit set.
    if (favorite < 0)
        return false;
    m_favorites.set(static_cast<size_t>(favorite), on);
    return true;
}

bool FCMBRNetworkChannel::GetFavorite(EFavorite favorite)
{
    if (!(favorite < MBR_NETWORKCHANNEL_FAVORITE_MAX)) {
        FC_ASSERT_FAIL("favorite < MBR_NETWORKCHANNEL_FAVORITE_MAX");
        return false;
    }
    if (favorite < 0)
        return false;
    return m_favorites.test(static_cast<size_t>(favorite));
}

bool FCMBRNetworkChannel::Restore()
{
    m_major = m_originMajor;
    m_name = m_originName;
    return true;
}

bool FCMBRNetworkChannel::MBRNetworkChannelToJson(FCMBRNetworkChannel &channel, Json::Value &out)
{
    out["m_activityID"] = channel.m_activityID;
    out["m_acRank"] = channel.m_acRank;
    out["m_str_icon_url"] = channel.m_str_icon_url;
    out["m_str_url_index"] = channel.m_str_url_index;
    out["m_major"] = channel.m_major;
    out["m_originMajor"] = channel.m_originMajor;
    out["m_minor"] = channel.m_minor;
    out["m_name"] = channel.m_name;
    out["m_originName"] = channel.m_originName;
    out["m_channelID"] = channel.m_channelID;
    out["m_remembered"] = channel.m_remembered;
    out["m_bDigital"] = channel.m_bDigital;
    out["bit set"] = channel.m_favorites.to_string();
    return true;
}

bool FCMBRNetworkChannel::JsonToMBRNetworkChannel(const Json::Value &reply, FCMBRNetworkChannel &channel)
{
    // The empty-string default makes a missing number or flag raise jsoncpp's conversion error.
    const Json::Value none("");
    channel.m_activityID = reply.get("m_activityID", none).asInt();
    channel.m_major = reply.get("m_major", none).asInt();
    channel.m_acRank = reply.get("m_acRank", none).asInt();
    channel.m_str_icon_url = reply.get("m_str_icon_url", none).asString();
    channel.m_str_url_index = reply.get("m_str_url_index", none).asString();
    channel.m_originMajor = reply.get("m_originMajor", none).asInt();
    channel.m_minor = reply.get("m_minor", none).asInt();
    channel.m_name = reply.get("m_name", none).asString();
    channel.m_originName = reply.get("m_originName", none).asString();
    channel.m_channelID = reply.get("m_channelID", none).asInt();
    channel.m_remembered = reply.get("m_remembered", none).asBool();
    channel.m_bDigital = reply.get("m_bDigital", none).asBool();
    channel.m_favorites = std::bitset<MBR_NETWORKCHANNEL_FAVORITE_MAX>(reply.get("bit set", none).asString());
    return true;
}

bool FCMBRNetworkChannel::operator<(const FCMBRNetworkChannel &other) const
{
    return std::tie(m_major, m_minor, m_channelID) < std::tie(other.m_major, other.m_minor, other.m_channelID);
}

bool FCMBRNetworkChannel::operator==(const FCMBRNetworkChannel &other) const
{
    return m_major == other.m_major && m_originMajor == other.m_originMajor && m_minor == other.m_minor &&
           m_name == other.m_name && m_originName == other.m_originName && m_channelID == other.m_channelID &&
           m_favorites == other.m_favorites && m_bDigital == other.m_bDigital;
}

int FCMBRNetworkChannel::m_ConvertEndian(unsigned char *dst, unsigned char *src, int length)
{
    if (dst == nullptr || src == nullptr)
        return 1;
    int index = 0;
    while (true) {
        if (src[index] == 0 && src[index + 1] == 0) {
            dst[index] = 0;
            dst[index + 1] = 0;
            break;
        }
        dst[index] = src[index + 1];
        dst[index + 1] = src[index];
        if (index + 2 >= length) {
            dst[index + 2] = 0;
            dst[index + 3] = 0;
            break;
        }
        index += 2;
    }
    return index;
}

// ---- FCMBRNetworkProgram ----

bool FCMBRNetworkProgram::SetStartTime(unsigned long startTime)
{
    m_startTime = startTime;
    return true;
}

bool FCMBRNetworkProgram::SetDuration(int duration)
{
    m_duration = duration;
    return true;
}

bool FCMBRNetworkProgram::SetTitle(std::string &title)
{
    m_title = title;
    return true;
}

bool FCMBRNetworkProgram::SetChannelID(int channelID)
{
    m_channelID = channelID;
    return true;
}

bool FCMBRNetworkProgram::SetProgramID(std::string &programID)
{
    m_programID = programID;
    return true;
}

bool FCMBRNetworkProgram::operator<(const FCMBRNetworkProgram &other) const
{
    return m_programID < other.m_programID;
}

bool FCMBRNetworkProgram::operator==(const FCMBRNetworkProgram &other) const
{
    return m_programID == other.m_programID;
}

bool FCMBRNetworkProgram::MBRNetworkProgramToJson(FCMBRNetworkProgram &program, Json::Value &out)
{
    out["m_startTime"] = static_cast<Json::UInt64>(program.m_startTime);
    out["m_duration"] = program.m_duration;
    out["m_title"] = program.m_title;
    out["m_channelID"] = program.m_channelID;
    out["m_programID"] = program.m_programID;
    return true;
}

bool FCMBRNetworkProgram::JsonToMBRNetworkProgram(const Json::Value &reply, FCMBRNetworkProgram &program)
{
    const Json::Value none("");
    program.m_startTime = static_cast<unsigned long>(reply.get("m_startTime", none).asLargestUInt());
    program.m_duration = reply.get("m_duration", none).asInt();
    program.m_title = reply.get("m_title", none).asString();
    program.m_channelID = reply.get("m_channelID", none).asInt();
    program.m_programID = reply.get("m_programID", none).asString();
    return true;
}
