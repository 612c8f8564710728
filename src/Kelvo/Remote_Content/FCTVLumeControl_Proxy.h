// Client of the streaming service's web application and rating-lock control; handed out by FCAPI.
#ifndef KELVO_FCTVLUMECONTROL_PROXY_H
#define KELVO_FCTVLUMECONTROL_PROXY_H

#include "FCTVLumeAPI.h"

class FCTVLumeControl_Proxy : public FCTVLumeAPI {
public:
    ~FCTVLumeControl_Proxy() override;

    bool LaunchedTVLumeWebApp() override;
    bool GetAppIDAndURL(std::string &appId, std::string &url) override;
    bool GetAppIDAndURLAndVersion(std::string &appId, std::string &url, std::string &version) override;
    bool IsFirstEntryToTvlume() override;
    bool IsInstantOn() override;
    bool EnterTVLumeWebApp(eTVLumeWebAppVisible visible) override;
    bool BlockOnChLeave() override;
    bool BlockClear() override;
    bool EnterFullPage() override;
    bool ExitFullPage() override;
    bool NotifyPepperPluginIsDown() override;
    bool IsEnterFullPage() override;
    bool CheckDoNotSendTuneSuccess() override;
    bool SetUnlockedFlag(bool unlocked) override;
    bool SetUnlockedFlagCompat(bool unlocked) override;
    bool CheckRatingLockATSC() override;
    bool UnMuteRatingLockByPinCode() override;
    bool GetRatingInfo(std::vector<RatingInfo> &ratings) override;
    bool NotifyContentIsChanged(bool changed, std::string rating) override;
    bool CheckTVLumeRatingLock() override;
    bool SetUnlockedInfo(int info) override;
    bool ResetTemporalUnLockStatus() override;
    bool ResetTemporalUnLockStatusWhenChannelChange() override;
};

#endif
