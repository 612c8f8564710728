// App-on-channel (AOC) data: applications that the set presents as channels. The middleware keeps
// an application package id and a block of extra data for each such service; the content daemon
// keeps the programme guide that the applications publish. This unit reads the former
// (FCAocDataHelper, FCAocExtraData), holds the latter (FCAppChannelData, FCAocProgramId,
// FCAocProgramData) and writes and reads their JSON for the proxies (FCAocMarshal).
#ifndef KELVO_FCAOCDATAUTIL_H
#define KELVO_FCAOCDATAUTIL_H

#include <map>
#include <string>

#include <json/json.h>

#include "FCTypes.h"

class FCVirtualProgramData;

// Kind of application behind a service, as its extra data says ("appType").
enum EAppType : int { APP_TYPE_NONE = -1, APP_TYPE_AOC = 1 };

// A text of the middleware in UTF-16: code units stored big-endian in memory.
using FCString16 = std::basic_string<unsigned short>;

// The decoded extra data of one service.
class FCAocExtraData {
public:
    FCAocExtraData() = default;
    explicit FCAocExtraData(const std::string &packageId) : m_packageId(packageId) {}
    virtual ~FCAocExtraData() = default;

    // Parses the text and reads it with FromJson; false (record unchanged) when it is no JSON.
    bool FromJsonStr(const std::string &text);
    // Reads each key that is present; a value of the wrong kind is passed over.
    bool FromJson(const Json::Value &in);
    bool ToJson(Json::Value &out) const;

    std::string m_packageId;
    // The TVS service id the record was read from (0: not read from a service). Not in JSON.
    unsigned long long m_serviceId = 0;
    int m_appType = APP_TYPE_NONE;      // "appType"
    unsigned int m_isReadableData = 0;  // "isReadableData": another provider may read the real data
    std::string m_providerFlag;         // "providerFlag": the provider that may
    std::string m_realData;             // "realData": the payload handed to the application
    std::string m_channelId;            // "channelId"
    std::string m_programEventId;       // "programEventId"
};

// Reads the middleware's AOC fields of a service and converts its UTF-16 texts. No state.
class FCAocDataHelper {
public:
    // True when the service is an AOC service: it has a package id and app type 1.
    static bool IsAocType(unsigned long long serviceId);
    // The package id (field 179, NUL characters removed) and the extra data (field 180) of a
    // service; false when there is no service session or no such service.
    static bool GetPackageIdExtraData(FCAocExtraData &extra, unsigned long long serviceId, std::string &packageId);
    static EAppType GetAppTypeFromAocExtraData(FCAocExtraData extra);
    // The real data for the application of packageId, or for a provider that the extra data lets
    // read it; otherwise empty.
    static std::string GetRealDataFromAocExtraData(FCAocExtraData extra, std::string packageId,
                                                   std::string providerFlag);
    // Fills the record: package id, app type, provider flag, the real data, and whether other
    // providers may read it. Channel id and programme event id keep their values.
    static void GetFCAocExtraData(FCAocExtraData &extra, EAppType appType, std::string packageId,
                                  std::string providerFlag, bool isReadableData, std::string realData);

    // One iconv conversion of inSize bytes into the outSize bytes of out. A too small output
    // buffer cuts the text but succeeds (logged); any other failure is false.
    static bool IconvString(const char *toCode, const char *fromCode, char *out, unsigned int outSize, char *in,
                            unsigned int inSize);
    // Big-endian UTF-16 (as the middleware stores it) to UTF-8; empty when it does not convert.
    static std::string ToUtf8(const FCString16 &text);
    // UTF-8 to big-endian UTF-16, up to the first NUL; empty when it does not convert.
    static FCString16 ToUtf16BE(const std::string &text);
};

// One application channel.
class FCAppChannelData {
public:
    FCAppChannelData() = default;
    FCAppChannelData(const std::string &packageId, const std::string &providerId, const std::string &serviceId);
    virtual ~FCAppChannelData() = default;

    // The channel id is read under "channel_id" and written under "channelId".
    static bool FromJson(Json::Value const &in, FCAppChannelData &out);
    static bool ToJson(FCAppChannelData const &in, Json::Value &out);

    // "RTS", "VOD", "LIVE", "CIRCLE", "OWN" in any case; anything else is unknown.
    void SetStreamType(const std::string &text);

    // By provider, then service, then channel id.
    bool operator<(const FCAppChannelData &other) const;
    bool operator==(const FCAppChannelData &other) const;

    std::string ToString() const;
    // "<provider id>/<service id>/": what the ids of the channel's programmes begin with.
    std::string ChannelPrefix() const;

    std::string m_packageId;
    std::string m_providerId;
    std::string m_serviceId;
    std::string m_channelName;  // the name a channel list shows; the application sets it, not JSON
    std::string m_channelId;
    int m_serviceProfile = -1;
    int m_antennaMode = -1;
    std::string m_major;
    EStreamType m_streamType = STREAM_TYPE_UNKNOWN;
    bool m_isVisible = true;  // whether the channel list offers the channel; not in JSON
};

// The key of an AOC programme. A zero service id matches any service.
class FCAocProgramId {
public:
    FCAocProgramId() = default;
    FCAocProgramId(unsigned long long serviceId, const std::string &eventId, unsigned int startTime,
                   unsigned int duration)
        : m_serviceId(serviceId), m_eventId(eventId), m_startTime(startTime), m_duration(duration)
    {}
    virtual ~FCAocProgramId() = default;

    static bool FromJson(Json::Value &in, FCAocProgramId &out);
    static bool ToJson(FCAocProgramId const &in, Json::Value &out);

    bool operator<(const FCAocProgramId &other) const;
    bool operator==(const FCAocProgramId &other) const;
    bool operator!=(const FCAocProgramId &other) const { return !(*this == other); }

    std::string ToString() const;

    unsigned long long m_serviceId = 0;
    std::string m_eventId;
    unsigned int m_startTime = 0;
    unsigned int m_duration = 0;
};

// One programme an AOC application publishes.
class FCAocProgramData {
public:
    FCAocProgramData() = default;
    // From a virtual-channel content's JSON ("starttime", "duration", "title", "short_desc",
    // "content_uri").
    FCAocProgramData(const std::string &packageId, const Json::Value &content);
    virtual ~FCAocProgramData() = default;

    bool FromJson(Json::Value &in);
    bool ToJson(Json::Value &out) const;

    FCAocProgramId GetProgramID() const;
    // Into a virtual-channel programme, so that a player handles both alike, and back.
    bool ToVirtualProgramData(FCVirtualProgramData &out) const;
    bool FromVirtualProgramData(FCVirtualProgramData in);

    std::string ToString() const;

    std::string m_packageId;
    unsigned long long m_tvsServiceId = 0;
    std::string m_programEventId;
    unsigned int m_startTime = 0;  // UTC seconds
    unsigned int m_duration = 0;   // seconds
    std::string m_contentUri;
    unsigned int m_relativeOffset = 0;  // written as text, read from text or a number
    std::string m_channelName;
    std::string m_title;
    std::string m_shortDescription;
    std::string m_detailDescription;
    std::string m_extraData;  // the service's extra data text
    bool m_isReadable = false;
    std::string m_providerFlag;
    std::string m_channelId;
};

// The JSON of the AOC requests and replies.
class FCAocMarshal {
public:
    static bool PackageIdToJson(const std::string &packageId, Json::Value &out);
    static bool JsonToPackageId(Json::Value &in, std::string &packageId);
    static bool AocProgramIdToJson(const FCAocProgramId &id, Json::Value &out);
    static bool JsonToAocProgramId(Json::Value &in, FCAocProgramId &id);
    static bool AocProgramDataToJson(const FCAocProgramData &program, Json::Value &out);
    static bool JsonToAocProgramData(Json::Value &in, FCAocProgramData &program);
    // "aocProgramData": the programmes in key order, each with its "startTime" set to its key.
    static bool AocProgramMapToJson(const std::map<unsigned int, FCAocProgramData> &programs, Json::Value &out);
    // Each element filed under its "startTime"; entries under other keys stay.
    static bool JsonToAocProgramMap(Json::Value &in, std::map<unsigned int, FCAocProgramData> &programs);
};

#endif
