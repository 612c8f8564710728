// Control of the streaming service's web application and of its rating lock.
#ifndef KELVO_FCTVLUMEAPI_H
#define KELVO_FCTVLUMEAPI_H

#include <string>
#include <vector>

#include "FCTypes.h"

enum eTVLumeWebAppVisible : int { TVLUME_WEBAPP_HIDE = 0, TVLUME_WEBAPP_SHOW = 1 };

class FCTVLumeAPI {
public:
    virtual ~FCTVLumeAPI() = default;

    virtual bool LaunchedTVLumeWebApp() = 0;
    virtual bool GetAppIDAndURL(std::string &appId, std::string &url) = 0;
    virtual bool GetAppIDAndURLAndVersion(std::string &appId, std::string &url, std::string &version) = 0;
    virtual bool IsFirstEntryToTvlume() = 0;
    virtual bool IsInstantOn() = 0;
    virtual bool EnterTVLumeWebApp(eTVLumeWebAppVisible visible) = 0;
    virtual bool BlockOnChLeave() = 0;
    virtual bool BlockClear() = 0;
    virtual bool EnterFullPage() = 0;
    virtual bool ExitFullPage() = 0;
    virtual bool NotifyPepperPluginIsDown() = 0;
    virtual bool IsEnterFullPage() = 0;
    virtual bool CheckDoNotSendTuneSuccess() = 0;
    virtual bool SetUnlockedFlag(bool unlocked) = 0;
    // The same operation in a second slot, which clients built against the older table call.
    virtual bool SetUnlockedFlagCompat(bool unlocked) = 0;
    virtual bool CheckRatingLockATSC() = 0;
    virtual bool UnMuteRatingLockByPinCode() = 0;
    virtual bool GetRatingInfo(std::vector<RatingInfo> &ratings) = 0;
    virtual bool NotifyContentIsChanged(bool changed, std::string rating) = 0;
    // Asks the daemon's newer method, and the older one when the newer answers nothing.
    virtual bool CheckTVLumeRatingLock() = 0;
    // An older daemon without it is told the unlocked flag instead.
    virtual bool SetUnlockedInfo(int info) = 0;
    virtual bool ResetTemporalUnLockStatus() = 0;
    virtual bool ResetTemporalUnLockStatusWhenChannelChange() = 0;
};

#endif
