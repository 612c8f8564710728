#include "FCAocDataUtil.h"

#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "FCDebug.h"
#include "FCJsonHelper.h"
#include "FCVirtualProgramData.h"
#include "TVServiceAPI.h"

// The records log under their own tag.
#define FC_AOC_LOG_TAG "kelvo-provider"
#define FC_AOC_LOGD(fmt, ...) FC_LOG_TAGGED(DLOG_DEBUG, FC_AOC_LOG_TAG, fmt, ##__VA_ARGS__)

namespace {

// Service-data fields of the middleware's service database.
const int kFieldServiceId = 12;
const int kFieldPackageId = 179;
const int kFieldExtraData = 180;

// Readers of values that a publisher or the middleware wrote: a value of another kind than the
// key should hold is passed over (the record keeps what it had), never an exception.
bool ReadString(const Json::Value &in, const char *key, std::string &out)
{
    if (!in.isMember(key) || !in[key].isString())
        return false;
    out = in[key].asString();
    return true;
}

bool ReadUInt(const Json::Value &in, const char *key, unsigned int &out)
{
    if (!in.isMember(key) || !in[key].isConvertibleTo(Json::uintValue))
        return false;
    out = in[key].asUInt();
    return true;
}

bool ReadInt(const Json::Value &in, const char *key, int &out)
{
    if (!in.isMember(key) || !in[key].isConvertibleTo(Json::intValue))
        return false;
    out = in[key].asInt();
    return true;
}

// Decimal text (base 10), the form of 64-bit service ids.
unsigned long long DecimalText(const Json::Value &value)
{
    return value.isString() ? strtoull(value.asCString(), nullptr, 10) : 0;
}

std::string DecimalText(unsigned long long value)
{
    char text[24];
    snprintf(text, sizeof text, "%llu", value);
    return text;
}

// A number the server may send as text (any base strtoul reads with base 0) or as a number.
unsigned int TextOrNumber(const Json::Value &value)
{
    if (value.isString())
        return static_cast<unsigned int>(strtoul(value.asCString(), nullptr, 0));
    return value.isConvertibleTo(Json::uintValue) ? value.asUInt() : 0;
}

// The ordering and equality of programme keys, where a zero service id matches any service.
bool ServiceIdsDiffer(unsigned long long a, unsigned long long b)
{
    return a != 0 && b != 0 && a != b;
}

}  // namespace

// ---- FCAocExtraData ----

bool FCAocExtraData::FromJsonStr(const std::string &text)
{
    Json::Value value;
    if (!FCJsonHelper::ParseToJson(text, value))
        return false;
    return FromJson(value);
}

bool FCAocExtraData::FromJson(const Json::Value &in)
{
    if (!in.isObject())
        return false;
    unsigned int appType = 0;
    if (ReadUInt(in, "appType", appType))
        m_appType = static_cast<int>(appType);
    ReadUInt(in, "isReadableData", m_isReadableData);
    ReadString(in, "providerFlag", m_providerFlag);
    ReadString(in, "realData", m_realData);
    ReadString(in, "channelId", m_channelId);
    ReadString(in, "programEventId", m_programEventId);
    return true;
}

bool FCAocExtraData::ToJson(Json::Value &out) const
{
    out["appType"] = m_appType;
    out["isReadableData"] = m_isReadableData;
    out["providerFlag"] = m_providerFlag;
    out["realData"] = m_realData;
    out["channelId"] = m_channelId;
    out["programEventId"] = m_programEventId;
    return true;
}

// ---- FCAocDataHelper ----

bool FCAocDataHelper::GetPackageIdExtraData(FCAocExtraData &extra, unsigned long long serviceId, std::string &packageId)
{
    IService *service = TVServiceAPI::CreateService();
    if (service == nullptr)
        return false;
    TCCriteriaHelper criteria;
    criteria.Fetch(kFieldServiceId);
    criteria.Fetch(kFieldPackageId);
    criteria.Fetch(kFieldExtraData);
    criteria.Where(kFieldServiceId, static_cast<long long>(serviceId));
    TCServiceData data;
    if (service->FindService(criteria, data) < 0) {
        TVServiceAPI::Destroy(service);
        return false;
    }
    std::string package = data.GetString(kFieldPackageId);
    package.erase(std::remove(package.begin(), package.end(), '\0'), package.end());
    const std::string extraText = ToUtf8(data.GetString16(kFieldExtraData));
    extra = FCAocExtraData(package);
    extra.m_serviceId = serviceId;
    extra.FromJsonStr(extraText);
    packageId = package;
    TVServiceAPI::Destroy(service);
    return true;
}

bool FCAocDataHelper::IsAocType(unsigned long long serviceId)
{
    FCAocExtraData extra;
    std::string packageId;
    return GetPackageIdExtraData(extra, serviceId, packageId) && !packageId.empty() &&
           GetAppTypeFromAocExtraData(extra) == APP_TYPE_AOC;
}

EAppType FCAocDataHelper::GetAppTypeFromAocExtraData(FCAocExtraData extra)
{
    return static_cast<EAppType>(extra.m_appType);
}

std::string FCAocDataHelper::GetRealDataFromAocExtraData(FCAocExtraData extra, std::string packageId,
                                                         std::string providerFlag)
{
    if (extra.m_packageId == packageId)
        return extra.m_realData;
    if (extra.m_isReadableData != 0 && extra.m_providerFlag == providerFlag)
        return extra.m_realData;
    return std::string();
}

void FCAocDataHelper::GetFCAocExtraData(FCAocExtraData &extra, EAppType appType, std::string packageId,
                                        std::string providerFlag, bool isReadableData, std::string realData)
{
    extra.m_packageId = packageId;
    extra.m_appType = appType;
    extra.m_providerFlag = providerFlag;
    extra.m_isReadableData = isReadableData ? 1 : 0;
    extra.m_realData = realData;
}

bool FCAocDataHelper::IconvString(const char *toCode, const char *fromCode, char *out, unsigned int outSize, char *in,
                                  unsigned int inSize)
{
    iconv_t cd = iconv_open(toCode, fromCode);
    if (cd == reinterpret_cast<iconv_t>(-1)) {
        FC_LOGE("%s: %s(%d) > [%d][%d]Iconv open failed.\n", FC_PID_TID);
        return false;
    }
    size_t inLeft = inSize;
    size_t outLeft = outSize;
    // No buffer at all is a failed conversion (iconv itself would abort on it); a full output
    // buffer is not: the text is cut where it ends.
    const bool buffers = out != nullptr && (in != nullptr || inSize == 0);
    if (!buffers || (iconv(cd, &in, &inLeft, &out, &outLeft) == static_cast<size_t>(-1) && errno != E2BIG)) {
        FC_LOGE("%s: %s(%d) > [%d][%d]Iconv convert failed.\n", FC_PID_TID);
        iconv_close(cd);
        return false;
    }
    if (inLeft > 0)
        FC_LOGW("%s: %s(%d) > [%d][%d]Some chars are not converted and output string is cut.\n", FC_PID_TID);
    iconv_close(cd);
    return true;
}

std::string FCAocDataHelper::ToUtf8(const FCString16 &text)
{
    // At most 4 bytes per code unit, and a NUL after them.
    std::vector<char> out(text.size() * 4 + 1, '\0');
    std::vector<char> in(text.size() * 2 + 1, '\0');
    if (!text.empty())
        __builtin_memcpy(in.data(), text.data(), text.size() * 2);
    if (!IconvString("UTF-8", "UTF-16BE", out.data(), static_cast<unsigned int>(out.size()), in.data(),
                     static_cast<unsigned int>(text.size() * 2)))
        return std::string();
    size_t end = out.size();
    while (end > 0 && out[end - 1] == '\0')
        --end;
    return std::string(out.data(), end);
}

FCString16 FCAocDataHelper::ToUtf16BE(const std::string &text)
{
    std::vector<unsigned short> out(text.size() + 1, 0);
    std::vector<char> in(text.c_str(), text.c_str() + text.size() + 1);
    if (!IconvString("UTF-16BE", "UTF-8", reinterpret_cast<char *>(out.data()),
                     static_cast<unsigned int>(out.size() * 2), in.data(), static_cast<unsigned int>(in.size())))
        return FCString16();
    out.back() = 0;
    return FCString16(out.data());
}

// ---- FCAppChannelData ----

FCAppChannelData::FCAppChannelData(const std::string &packageId, const std::string &providerId,
                                   const std::string &serviceId)
    : m_packageId(packageId), m_providerId(providerId), m_serviceId(serviceId)
{}

bool FCAppChannelData::FromJson(Json::Value const &in, FCAppChannelData &out)
{
    if (!in.isObject())
        return false;
    ReadString(in, "packageId", out.m_packageId);
    ReadString(in, "providerId", out.m_providerId);
    ReadString(in, "serviceId", out.m_serviceId);
    ReadString(in, "channel_id", out.m_channelId);
    // Read whether present or not: an absent number reads as 0.
    out.m_serviceProfile = 0;
    out.m_antennaMode = 0;
    ReadInt(in, "serviceProfile", out.m_serviceProfile);
    ReadInt(in, "antennaMode", out.m_antennaMode);
    ReadString(in, "major", out.m_major);
    return true;
}

bool FCAppChannelData::ToJson(FCAppChannelData const &in, Json::Value &out)
{
    out["providerId"] = in.m_providerId;
    out["serviceId"] = in.m_serviceId;
    out["serviceProfile"] = in.m_serviceProfile;
    out["antennaMode"] = in.m_antennaMode;
    out["major"] = in.m_major;
    out["channelId"] = in.m_channelId;
    out["packageId"] = in.m_packageId;
    return true;
}

void FCAppChannelData::SetStreamType(const std::string &text)
{
    static const std::map<std::string, EStreamType> kTypes = {{"RTS", STREAM_TYPE_RTS},
                                                              {"VOD", STREAM_TYPE_VOD},
                                                              {"LIVE", STREAM_TYPE_LIVE},
                                                              {"CIRCLE", STREAM_TYPE_CIRCLE},
                                                              {"OWN", STREAM_TYPE_OWN}};
    std::string upper = text;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    auto it = kTypes.find(upper);
    m_streamType = it == kTypes.end() ? STREAM_TYPE_UNKNOWN : it->second;
}

bool FCAppChannelData::operator<(const FCAppChannelData &other) const
{
    if (m_providerId != other.m_providerId)
        return m_providerId < other.m_providerId;
    if (m_serviceId != other.m_serviceId)
        return m_serviceId < other.m_serviceId;
    return m_channelId < other.m_channelId;
}

bool FCAppChannelData::operator==(const FCAppChannelData &other) const
{
    return m_packageId == other.m_packageId && m_providerId == other.m_providerId && m_serviceId == other.m_serviceId &&
           m_channelId == other.m_channelId;
}

std::string FCAppChannelData::ToString() const
{
    return "provider_id: " + m_providerId + ", service_id: " + m_serviceId + ", channel_id: " + m_channelId +
           ", package_id: " + m_packageId + ", major: " + m_major + ", stream_type: " + std::to_string(m_streamType);
}

std::string FCAppChannelData::ChannelPrefix() const
{
    return m_providerId + "/" + m_serviceId + "/";
}

// ---- FCAocProgramId ----

bool FCAocProgramId::FromJson(Json::Value &in, FCAocProgramId &out)
{
    if (!in.isObject())
        return false;
    if (in.isMember("serviceId"))
        out.m_serviceId = DecimalText(in["serviceId"]);
    ReadString(in, "event_id", out.m_eventId);
    ReadUInt(in, "startTime", out.m_startTime);
    ReadUInt(in, "duration", out.m_duration);
    return true;
}

bool FCAocProgramId::ToJson(FCAocProgramId const &in, Json::Value &out)
{
    out["serviceId"] = DecimalText(in.m_serviceId);
    out["event_id"] = in.m_eventId;
    out["startTime"] = in.m_startTime;
    out["duration"] = in.m_duration;
    return true;
}

bool FCAocProgramId::operator<(const FCAocProgramId &other) const
{
    if (ServiceIdsDiffer(m_serviceId, other.m_serviceId))
        return m_serviceId < other.m_serviceId;
    if (m_startTime != other.m_startTime)
        return m_startTime < other.m_startTime;
    return m_eventId < other.m_eventId;
}

bool FCAocProgramId::operator==(const FCAocProgramId &other) const
{
    if (ServiceIdsDiffer(m_serviceId, other.m_serviceId))
        return false;
    return m_eventId == other.m_eventId && m_startTime == other.m_startTime && m_duration == other.m_duration;
}

std::string FCAocProgramId::ToString() const
{
    return "serviceId: " + DecimalText(m_serviceId) + "\nevent_id: " + m_eventId +
           "\nstartTime: " + std::to_string(m_startTime) + "\nduration: " + std::to_string(m_duration) + "\n";
}

// ---- FCAocProgramData ----

FCAocProgramData::FCAocProgramData(const std::string &packageId, const Json::Value &content) : m_packageId(packageId)
{
    if (!content.isObject())
        return;
    if (content.isMember("starttime"))
        m_startTime = content["starttime"].isString()
                          ? static_cast<unsigned int>(strtoul(content["starttime"].asCString(), nullptr, 0))
                          : 0;
    if (content.isMember("duration"))
        m_duration = TextOrNumber(content["duration"]);
    ReadString(content, "title", m_title);
    ReadString(content, "short_desc", m_shortDescription);
    ReadString(content, "content_uri", m_contentUri);
}

bool FCAocProgramData::FromJson(Json::Value &in)
{
    if (!in.isObject())
        return false;
    if (ReadString(in, "packageId", m_packageId))
        FC_AOC_LOGD("%s: %s(%d) > [%d][%d]packageId[%s]\n", FC_PID_TID, m_packageId.c_str());
    if (in.isMember("tvsServiceId")) {
        m_tvsServiceId = DecimalText(in["tvsServiceId"]);
        FC_AOC_LOGD("%s: %s(%d) > [%d][%d]tvsServiceId[%llu]\n", FC_PID_TID, m_tvsServiceId);
    }
    if (ReadString(in, "programEventId", m_programEventId))
        FC_AOC_LOGD("%s: %s(%d) > [%d][%d]programEventId[%s]\n", FC_PID_TID, m_programEventId.c_str());
    if (ReadUInt(in, "startTime", m_startTime))
        FC_AOC_LOGD("%s: %s(%d) > [%d][%d]startTime[%u]\n", FC_PID_TID, m_startTime);
    if (ReadUInt(in, "duration", m_duration))
        FC_AOC_LOGD("%s: %s(%d) > [%d][%d]duration[%u]\n", FC_PID_TID, m_duration);
    ReadString(in, "contentUri", m_contentUri);
    if (in.isMember("relativeOffset")) {
        m_relativeOffset = TextOrNumber(in["relativeOffset"]);
        FC_AOC_LOGD("%s: %s(%d) > [%d][%d]relativeOffset[%u]\n", FC_PID_TID, m_relativeOffset);
    }
    ReadString(in, "channelName", m_channelName);
    ReadString(in, "title", m_title);
    ReadString(in, "shortDescription", m_shortDescription);
    ReadString(in, "detailDescription", m_detailDescription);
    ReadString(in, "extraData", m_extraData);
    if (in.isMember("isReadable") && in["isReadable"].isConvertibleTo(Json::booleanValue))
        m_isReadable = in["isReadable"].asBool();
    ReadString(in, "providerFlag", m_providerFlag);
    ReadString(in, "channelId", m_channelId);
    return true;
}

bool FCAocProgramData::ToJson(Json::Value &out) const
{
    out["programEventId"] = m_programEventId;
    out["packageId"] = m_packageId;
    out["tvsServiceId"] = DecimalText(m_tvsServiceId);
    out["title"] = m_title;
    out["startTime"] = m_startTime;
    out["duration"] = m_duration;
    out["shortDescription"] = m_shortDescription;
    out["detailDescription"] = m_detailDescription;
    out["extraData"] = m_extraData;
    out["isReadable"] = m_isReadable;
    out["providerFlag"] = m_providerFlag;
    out["channelId"] = m_channelId;
    out["contentUri"] = m_contentUri;
    out["relativeOffset"] = std::to_string(static_cast<int>(m_relativeOffset));
    out["channelName"] = m_channelName;
    return true;
}

FCAocProgramId FCAocProgramData::GetProgramID() const
{
    return FCAocProgramId(m_tvsServiceId, m_programEventId, m_startTime, m_duration);
}

bool FCAocProgramData::ToVirtualProgramData(FCVirtualProgramData &out) const
{
    FCTvlumeContent content;
    content.SetContentUri(m_contentUri);
    content.SetTitle(m_title);
    // The schedule's own reader sets its event id, start, duration and offset together.
    Json::Value slot(Json::objectValue);
    slot["id"] = m_programEventId;
    slot["starttime"] = std::to_string(m_startTime);
    slot["duration"] = m_duration;
    slot["relative_offset"] = static_cast<int>(m_relativeOffset);
    FCTvlumeSchedule schedule(slot);
    out = FCVirtualProgramData(schedule, content, m_tvsServiceId);
    return true;
}

bool FCAocProgramData::FromVirtualProgramData(FCVirtualProgramData in)
{
    m_tvsServiceId = in.GetServiceId();
    m_programEventId = in.GetEventId();
    m_startTime = in.FCTvlumeSchedule::GetStartTime();
    m_duration = in.FCTvlumeSchedule::GetDuration();
    m_title = in.FCTvlumeContent::GetTitle();
    m_shortDescription = in.FCTvlumeContent::GetShortDescription();
    return true;
}

std::string FCAocProgramData::ToString() const
{
    return "packageId[" + m_packageId + "] tvsServiceId[" + DecimalText(m_tvsServiceId) + "] programEventId[" +
           m_programEventId + "]\nstartTime[" + std::to_string(m_startTime) + "] duration[" +
           std::to_string(m_duration) + "] relativeOffset[" + std::to_string(m_relativeOffset) + "]\ntitle[" + m_title +
           "] channelName[" + m_channelName + "] channelId[" + m_channelId + "]\ncontentUri[" + m_contentUri +
           "] isReadable[" + (m_isReadable ? "1" : "0") + "] providerFlag[" + m_providerFlag + "]";
}

// ---- FCAocMarshal ----

bool FCAocMarshal::PackageIdToJson(const std::string &packageId, Json::Value &out)
{
    out["packageId"] = packageId;
    return true;
}

bool FCAocMarshal::JsonToPackageId(Json::Value &in, std::string &packageId)
{
    const Json::Value &reply = in;
    packageId = reply.isObject() && reply["packageId"].isString() ? reply["packageId"].asString() : std::string();
    return true;
}

bool FCAocMarshal::AocProgramIdToJson(const FCAocProgramId &id, Json::Value &out)
{
    return FCAocProgramId::ToJson(id, out);
}

bool FCAocMarshal::JsonToAocProgramId(Json::Value &in, FCAocProgramId &id)
{
    return FCAocProgramId::FromJson(in, id);
}

bool FCAocMarshal::AocProgramDataToJson(const FCAocProgramData &program, Json::Value &out)
{
    return program.ToJson(out);
}

bool FCAocMarshal::JsonToAocProgramData(Json::Value &in, FCAocProgramData &program)
{
    return program.FromJson(in);
}

bool FCAocMarshal::AocProgramMapToJson(const std::map<unsigned int, FCAocProgramData> &programs, Json::Value &out)
{
    for (const auto &entry : programs) {
        Json::Value element(Json::objectValue);
        entry.second.ToJson(element);
        element["startTime"] = entry.first;
        out["aocProgramData"].append(element);
    }
    return true;
}

bool FCAocMarshal::JsonToAocProgramMap(Json::Value &in, std::map<unsigned int, FCAocProgramData> &programs)
{
    if (!in.isObject() || !in.isMember("aocProgramData") || !in["aocProgramData"].isArray())
        return true;
    for (Json::Value &element : in["aocProgramData"]) {
        FCAocProgramData program;
        if (!program.FromJson(element))
            continue;
        programs[program.m_startTime] = program;
    }
    return true;
}
