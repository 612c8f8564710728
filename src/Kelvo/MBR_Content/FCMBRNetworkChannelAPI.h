// Management of network-channel activities and their channel maps.
#ifndef KELVO_FCMBRNETWORKCHANNELAPI_H
#define KELVO_FCMBRNETWORKCHANNELAPI_H

#include <string>

#include "FCTypes.h"
#include "MBRNetworkChannel.h"
#include "MBRNetworkChannelTable.h"

// Told of the channels a user zaps through; the channel-map operations that take one keep it.
class FIMBRNetworkChannelHistory;

// Every operation has a body that does nothing and answers false, so that a service implements
// only what it offers; the daemon's proxy offers the activity operations (the first seven).
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

    // The slot order is the interface's binary layout: append, never reorder.
    virtual bool Reset() { return false; }
    virtual bool AllocateActivityIDBySourceID(int, EActivityID &) { return false; }
    virtual bool DeleteActivityID(EActivityID) { return false; }
    virtual bool SetActivityIDSourceID(EActivityID, ESource) { return false; }
    virtual bool AppendSourceIDIntoActivityID(EActivityID, ESource) { return false; }
    virtual bool RemoveSourceIDWithinActivityID(EActivityID, ESource) { return false; }
    virtual bool GetActivityIDBySourceID(int, EActivityID &) { return false; }
    virtual bool SetZipCode(EActivityID, std::string &) { return false; }
    virtual bool GetZipCode(EActivityID, std::string &) { return false; }
    virtual bool SetAdditionalInfo(EActivityID, std::string &) { return false; }
    virtual bool GetAdditionalInfo(EActivityID, std::string &) { return false; }
    virtual bool SetDeviceType(EActivityID, std::string &) { return false; }
    virtual bool GetDeviceType(EActivityID, std::string &) { return false; }
    virtual bool SetHeadEndID(EActivityID, std::string &) { return false; }
    virtual bool GetHeadEndID(EActivityID, std::string &) { return false; }
    virtual bool SetLocation(EActivityID, std::string &) { return false; }
    virtual bool GetLocation(EActivityID, std::string &) { return false; }
    virtual bool ConstructMBRNetworkChannelMap(EActivityID) { return false; }
    virtual bool ConstructMBRNetworkProgramMap(EActivityID) { return false; }
    virtual bool GetCurrentMBRNetworkProgram(EActivityID, FCMBRNetworkChannel &, FCMBRNetworkProgram &)
    {
        return false;
    }
    virtual bool GetCurrentMBRNetworkProgrambyCurrentTime(EActivityID, unsigned long, FCMBRNetworkChannel &,
                                                          FCMBRNetworkProgram &)
    {
        return false;
    }
    virtual bool SetMBRNetworkChannelMap(EActivityID, FCMBRNetworkChannelTable &) { return false; }
    virtual bool GetMBRNetworkChannelMap(EActivityID, FCMBRNetworkChannelTable &, EMBRNetworkChannelQuery)
    {
        return false;
    }
    virtual bool GetMBRNetworkChannelUp(EActivityID, FCMBRNetworkChannel &, FCMBRNetworkChannel &) { return false; }
    virtual bool GetMBRNetworkChannelDown(EActivityID, FCMBRNetworkChannel &, FCMBRNetworkChannel &) { return false; }
    virtual bool GetMBRNetworkChannelByMajorMinor(EActivityID, int, int, FCMBRNetworkChannel &) { return false; }
    virtual bool SaveMBRNetworkChannelMap(EActivityID) { return false; }
    virtual bool AddNewMBRNetworkChannel(EActivityID, FCMBRNetworkChannel &) { return false; }
    virtual bool SetRememberMBRNetworkChannel(EActivityID, FCMBRNetworkChannel &, bool) { return false; }
    virtual bool ExistMBRNetworkChannelByMajorMinor(EActivityID, int, int) { return false; }
    virtual bool AddFavoriteMBRNetworkChannel(EActivityID, FCMBRNetworkChannel::EFavorite, FCMBRNetworkChannel &)
    {
        return false;
    }
    virtual bool DeleteFavoriteMBRNetworkChannel(EActivityID, FCMBRNetworkChannel::EFavorite, FCMBRNetworkChannel &)
    {
        return false;
    }
    virtual bool SetMBRNetworkProgramMap(FCMBRNetworkProgramTable &, std::string) { return false; }
    // Spelt so: the name is part of the interface.
    virtual bool GetMBRNetworkProgrmaMap(FCMBRNetworkProgramTable &, std::string) { return false; }
    virtual bool RemoveMBRNetworkChannel(EActivityID, FCMBRNetworkChannel &) { return false; }
    virtual bool GetMaxNumberOfMajorMinor(EActivityID, int &, int &) { return false; }
    virtual bool ExistChannelInActivityID(EActivityID, EMBRNetworkChannelQuery) { return false; }
    virtual void ClearMBRProgramMap() {}
    virtual bool GetFeaturedMBRChannels(EActivityID, FCMBRNetworkChannelTable &) { return false; }
    virtual bool SetEditedMBRNetworkChannel(EActivityID, FCMBRNetworkChannel &) { return false; }
    virtual bool NotifyMBRChannelEditCompleted(EActivityID) { return false; }
    virtual bool GetMBRNetworkChannelByChannelIDOriginMajor(EActivityID, const std::string &, const std::string &,
                                                            FCMBRNetworkChannel &)
    {
        return false;
    }
    virtual bool SetCurrentMBRNetworkChannel(EActivityID, FCMBRNetworkChannel &) { return false; }
    virtual bool GetCurrentMBRNetworkChannel(EActivityID, FCMBRNetworkChannel &) { return false; }
    virtual bool RegisterMBRNetworkChannelHistory(FIMBRNetworkChannelHistory *) { return false; }
};

#endif
