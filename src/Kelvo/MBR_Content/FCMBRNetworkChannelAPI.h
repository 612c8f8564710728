// Management of network-channel activities and their channel maps.
#ifndef KELVO_FCMBRNETWORKCHANNELAPI_H
#define KELVO_FCMBRNETWORKCHANNELAPI_H

class FCMBRNetworkChannelAPI {
public:
    // Valid activities are 0 to 4.
    enum EActivityID : int {
        ACTIVITY_ID_0 = 0,
        ACTIVITY_ID_1 = 1,
        ACTIVITY_ID_2 = 2,
        ACTIVITY_ID_3 = 3,
        ACTIVITY_ID_4 = 4,
        ACTIVITY_ID_MAX = 5
    };

    // Which channels of an activity's map a query covers.
    enum EMBRNetworkChannelQuery : int {
        MBR_NETWORKCHANNEL_QUERY_ALL = 0,
        MBR_NETWORKCHANNEL_QUERY_REMEMBERED = 1,
        MBR_NETWORKCHANNEL_QUERY_FAVORITE = 2
    };

    virtual ~FCMBRNetworkChannelAPI() = default;
};

#endif
