// Enumerations and small records shared by the provider client's records, marshalling and
// proxies. Every enumeration travels as a JSON number, so each has int as its fixed underlying
// type: a daemon may send any number and it must still be a valid value here.
#ifndef KELVO_FCTYPES_H
#define KELVO_FCTYPES_H

// Remote-content activity (tuner context) a request concerns; "activityID" on the wire.
enum eRemoteContentActivity : int {
    REMOTE_CONTENT_ACTIVITY_INVALID = -1,
    REMOTE_CONTENT_ACTIVITY_MAIN = 0,
    REMOTE_CONTENT_ACTIVITY_SUB = 1,
    REMOTE_CONTENT_ACTIVITY_MAX
};

// Input source number of the set; -1 means no source.
enum ESource : int {
    SOURCE_NONE = -1,
    SOURCE_TV = 0,
    SOURCE_ATV = 1,
    SOURCE_DTV = 2,
    SOURCE_CATV = 3,
    SOURCE_CDTV = 4,
    SOURCE_MAX
};

// Stream kind of a virtual or app channel; the numbers are part of the daemon's contract.
enum EStreamType : int {
    STREAM_TYPE_UNKNOWN = 0,
    STREAM_TYPE_RTS = 1,
    STREAM_TYPE_VOD = 2,
    STREAM_TYPE_LIVE = 3,
    STREAM_TYPE_CIRCLE = 4,
    STREAM_TYPE_OWN = 5
};

// Which programme of a channel a lookup wants, relative to a given one.
enum EProgramIndicator : int {
    PROGRAM_INDICATOR_PRESENT = 0,
    PROGRAM_INDICATOR_NEXT = 1,
    PROGRAM_INDICATOR_PREVIOUS = 2
};

// Which data service the streaming service uses.
enum EDataServiceType : int { DATA_SERVICE_TYPE_NONE = 0, DATA_SERVICE_TYPE_TVLUME = 1, DATA_SERVICE_TYPE_AOC = 2 };

// Parental rating of a programme.
struct RatingInfo {
    int rating_system = 0;
    int rating = 0;
    int vsld = 0;

    bool operator==(const RatingInfo &other) const
    {
        return rating_system == other.rating_system && rating == other.rating && vsld == other.vsld;
    }
    bool operator!=(const RatingInfo &other) const { return !(*this == other); }
};

#endif
