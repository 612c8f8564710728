// Records of channel and programme metadata that the content daemon hands to its clients, with
// their JSON forms. The member names of those forms are shared with the daemon and keep its
// spelling, irregular keys included.
#ifndef KELVO_FCELEMENTDATA_H
#define KELVO_FCELEMENTDATA_H

#include <string>
#include <vector>

#include <json/json.h>

#include "FCTypes.h"

class FCFilterCriteria;

// A programme of server metadata.
class FCRemoteProgram {
public:
    FCRemoteProgram() = default;
    FCRemoteProgram(const FCRemoteProgram &) = default;
    FCRemoteProgram(FCRemoteProgram &&) noexcept = default;
    FCRemoteProgram &operator=(const FCRemoteProgram &) = default;
    FCRemoteProgram &operator=(FCRemoteProgram &&) noexcept = default;
    virtual ~FCRemoteProgram() = default;

    static bool ToJson(const FCRemoteProgram &program, Json::Value &out);
    // Never raises: a member of the wrong type is logged, asserted and reported as false.
    static bool FromJson(const Json::Value &in, FCRemoteProgram &program);

    // The programme's own single-line text form. It keeps only the last genre.
    bool to_string(std::string &out);
    bool from_string(std::string &in);

    // The daemon filters; a programme it sends always satisfies the request's criteria.
    bool IsSatisfyFilterCriteria(FCFilterCriteria &criteria);

    bool operator<(const FCRemoteProgram &other) const;
    bool operator==(const FCRemoteProgram &other) const;
    bool operator!=(const FCRemoteProgram &other) const { return !(*this == other); }

    eRemoteContentActivity m_activityID = REMOTE_CONTENT_ACTIVITY_MAIN;
    std::string m_programSourceId;
    std::string m_channelName;
    std::string m_channelNumber;
    std::string m_programId;
    std::string m_lang;
    std::string m_startTime;
    unsigned long m_utcStartTime = 0;
    int m_duration = 0;
    std::string m_title;
    std::string m_certFlag;
    std::vector<std::string> m_genres;
    std::string m_posterUrl;
    std::string m_posterType;
    std::string m_posterOverlay;
    std::string m_posterIndex;
    std::string m_shortDesc;
    std::string m_desc;
    std::string m_series;
    unsigned long m_endTime = 0;
    bool m_isRF = false;
};

// The fields that identify a tunable channel; usable as the key of an ordered map.
class FCRemoteChannelKey {
public:
    static bool ToJson(FCRemoteChannelKey &key, Json::Value &out);
    static bool FromJson(Json::Value &in, FCRemoteChannelKey &key);

    bool operator<(const FCRemoteChannelKey &other) const;
    bool operator==(const FCRemoteChannelKey &other) const;
    bool operator!=(const FCRemoteChannelKey &other) const { return !(*this == other); }

    eRemoteContentActivity m_activityID = REMOTE_CONTENT_ACTIVITY_MAIN;
    std::string m_channelNumber;
    std::string m_major;
    std::string m_minor;
    std::string m_onid;
    std::string m_tsid;
    std::string m_sid;
    std::string m_frequency;
    std::string m_digitalFlag;
};

// A channel of server metadata.
class FCRemoteChannel {
public:
    // The genre name is written as "gere name" and read from "genre name": the daemon's
    // contract, so a channel loses its genre name through its own round trip.
    static bool ToJson(FCRemoteChannel &channel, Json::Value &out);
    static bool FromJson(Json::Value &in, FCRemoteChannel &channel);

    void GetKey(FCRemoteChannelKey &key);

    bool operator==(const FCRemoteChannel &other) const;
    bool operator!=(const FCRemoteChannel &other) const { return !(*this == other); }

    eRemoteContentActivity m_activityID = REMOTE_CONTENT_ACTIVITY_MAIN;
    std::string m_programSourceId;
    std::string m_channelName;
    std::string m_channelNumber;
    std::string m_alias;
    std::string m_major;
    std::string m_minor;
    std::string m_onid;
    std::string m_tsid;
    std::string m_sid;
    std::string m_frequency;
    std::string m_ptc;
    std::string m_iconUrl;
    std::string m_urlIndex;
    std::string m_dtv;
    int m_embed = 0;
    std::string m_digitalFlag;
    std::string m_qamFlag;
    std::string m_genreId;
    std::string m_genreName;
    std::string m_acRank;
};

class FCGenreInfo {
public:
    static bool ToJson(FCGenreInfo &genre, Json::Value &out);
    static bool FromJson(Json::Value &in, FCGenreInfo &genre);

    bool operator==(const FCGenreInfo &other) const;
    bool operator!=(const FCGenreInfo &other) const { return !(*this == other); }

    std::string m_id;
    std::string m_name;
    std::string m_imgUrl;
    std::string m_imgType;
    std::string m_imgIndex;
};

class FCGenre {
public:
    bool IsEmpty() const { return m_genres.empty(); }
    bool Clear()
    {
        m_genres.clear();
        return true;
    }

    std::vector<FCGenreInfo> m_genres;
};

// Genre filter of a programme request, as a genre id list.
class FCFilterCriteria {
public:
    static bool ToJson(FCFilterCriteria &criteria, Json::Value &out);
    static bool FromJson(Json::Value &in, FCFilterCriteria &criteria);

    bool Clear()
    {
        m_genreIdList.clear();
        return true;
    }

    std::string m_genreIdList;
};

// The operator (MSO) configuration.
class FCRemoteMSOConfig {
public:
    static bool ToJson(const FCRemoteMSOConfig &config, Json::Value &out);
    static bool FromJson(Json::Value &in, FCRemoteMSOConfig &config);

    bool operator==(const FCRemoteMSOConfig &other) const;
    bool operator!=(const FCRemoteMSOConfig &other) const { return !(*this == other); }

    std::string m_headend;
    std::string m_deviceType;
    std::string m_zipCode;
    int m_source = -1;
    int m_antennaMode = -1;
    int m_serviceMode = -1;
    std::string m_additionalInfoJson;
};

// A request for more programme data of one source, from a start time over a duration.
class FCAdditionalProgramRequest {
public:
    FCAdditionalProgramRequest(const std::string &programSourceId, unsigned long utcStartTime, int duration);
    virtual ~FCAdditionalProgramRequest() = default;

    bool operator<(const FCAdditionalProgramRequest &other) const;
    bool operator==(const FCAdditionalProgramRequest &other) const;
    bool operator!=(const FCAdditionalProgramRequest &other) const { return !(*this == other); }

    std::string m_programSourceId;
    unsigned long m_utcStartTime;
    int m_duration;
};

#endif
