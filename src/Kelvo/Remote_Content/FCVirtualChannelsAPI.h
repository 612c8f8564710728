// Programmes, logos and switches of the streaming service's virtual channels.
#ifndef KELVO_FCVIRTUALCHANNELSAPI_H
#define KELVO_FCVIRTUALCHANNELSAPI_H

#include <map>
#include <string>

#include "FCServiceIdUtil.h"
#include "FCTypes.h"
#include "FCVirtualProgramData.h"

// Each typed operation has a string form beside it that hands the caller's JSON text to the
// daemon unchanged and gives back the reply text; both answer the reply's "ret".
class FCVirtualChannelsAPI {
public:
    enum EChannelLogoSize : int {
        CHANNEL_LOGO_SIZE_SMALL = 0,
        CHANNEL_LOGO_SIZE_MEDIUM = 1,
        CHANNEL_LOGO_SIZE_LARGE = 2
    };

    enum EPlayerType : int { PLAYER_TYPE_TV = 0, PLAYER_TYPE_PREVIEW = 1 };

    enum EProgramLogoType : int {
        PROGRAM_LOGO_TYPE_THUMBNAIL = 0,
        PROGRAM_LOGO_TYPE_POSTER = 1,
        PROGRAM_LOGO_TYPE_BACKGROUND = 2
    };

    enum EKPIType : int { KPI_TYPE_NONE = -1, KPI_TYPE_VIEW = 0, KPI_TYPE_ACTION = 1 };

    virtual ~FCVirtualChannelsAPI() = default;

    // The channel's programmes starting in [startTime, startTime + duration), by start time.
    virtual bool GetProgramList(unsigned long long const &serviceId, unsigned int startTime, unsigned int duration,
                                std::map<unsigned int, FCVirtualProgramData> &programs) = 0;
    virtual bool GetProgramList(const std::string &in, std::string &out) = 0;
    // The programme before, at or after the one given.
    virtual bool GetProgram(EProgramIndicator indicator, FCVirtualProgramId const &id,
                            FCVirtualProgramData &program) = 0;
    virtual bool GetProgram(FCVirtualProgramId const &id, FCVirtualProgramData &program) = 0;
    // Asks for the programme before, at or after the one given when the text holds "program_indicator".
    virtual bool GetProgram(const std::string &in, std::string &out) = 0;
    virtual bool GetPresentProgram(unsigned long long const &serviceId, FCVirtualProgramData &program) = 0;
    virtual bool GetPresentProgram(const std::string &in, std::string &out) = 0;
    virtual bool GetChannelLogo(unsigned long long const &serviceId, EChannelLogoSize size, std::string &logo) = 0;
    virtual bool GetChannelLogo(const std::string &in, std::string &out) = 0;
    virtual bool GetProgramThumbnail(FCVirtualProgramId const &id, std::string &thumbnail) = 0;
    virtual bool GetProgramThumbnail(const std::string &in, std::string &out) = 0;
    // The image's download id, by which its arrival is announced; -1 when there is none.
    virtual int GetProgramImage(FCVirtualProgramId const &id, EProgramLogoType type, std::string &image) = 0;
    virtual int GetProgramImage(const std::string &in, std::string &out) = 0;
    virtual bool GetProgramBackground(FCVirtualProgramId const &id, std::string &background) = 0;
    virtual bool GetProgramBackground(const std::string &in, std::string &out) = 0;
    virtual bool GetServiceIdFromOnTVProviderAndService(const std::string &provider, const std::string &service,
                                                        unsigned long long &serviceId) = 0;
    virtual bool GetServiceIdFromOnTVProviderAndService(const std::string &in, std::string &out) = 0;
    // Sends nothing unless the user agreed to the default disclaimer.
    virtual bool SendLogKPI(EKPIType type, std::string &eventName, std::string &category, std::string &desc) = 0;
    virtual bool GetViewingAgreement() = 0;
    virtual bool Reset() = 0;
    virtual bool TVLumeProgramInfoIsAvailable() = 0;
    virtual bool TVLumeProgramInfoIsAvailable(std::string &out) = 0;
    virtual bool RestartTvlumeInfo() = 0;
    virtual bool RestartTvlumeInfo(std::string &out) = 0;
    // Local: the parts of the service id.
    virtual bool ExtractServiceInformationsFromServiceId(unsigned long long serviceId,
                                                         ExtractedServiceInfomations &info) = 0;
    virtual bool GetTVLumeProgramOnColdBoot(EPlayerType player, unsigned long long const &serviceId,
                                            FCVirtualProgramData &program) = 0;
    virtual bool RecoverDeletedTvlumeServices() = 0;
    virtual bool SetDeepLink(std::string &link) = 0;
    // The link as the daemon holds it; true when the daemon answered.
    virtual bool GetDeepLink(std::string &link) = 0;
    virtual bool GetTvlumePreviewData(std::string &out) = 0;
    // The setters answer whether the daemon was told.
    virtual bool SetMyTvlume(bool on) = 0;
    virtual bool GetMyTvlume() = 0;
    virtual bool SetTVLumeOnOff(bool on) = 0;
    // The daemon's answer; -1 when it could not be asked.
    virtual int LaunchTVLumeHomeScreen() = 0;
    virtual bool SetHomeScreenFlag(bool on) = 0;
    virtual bool GetHomeScreenFlag() = 0;
    virtual bool SetDataServiceType(EDataServiceType &type) = 0;
    virtual bool GetDataServiceType(EDataServiceType &type) = 0;
    virtual bool IsTVLumeLaunched() = 0;
};

#endif
