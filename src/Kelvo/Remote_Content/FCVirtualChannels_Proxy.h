// Client of the daemon's virtual-channel services; handed out by FCAPI.
#ifndef KELVO_FCVIRTUALCHANNELS_PROXY_H
#define KELVO_FCVIRTUALCHANNELS_PROXY_H

#include "FCVirtualChannelsAPI.h"

class FCVirtualChannels_Proxy : public FCVirtualChannelsAPI {
public:
    ~FCVirtualChannels_Proxy() override;

    bool GetProgramList(unsigned long long const &serviceId, unsigned int startTime, unsigned int duration,
                        std::map<unsigned int, FCVirtualProgramData> &programs) override;
    bool GetProgramList(const std::string &in, std::string &out) override;
    bool GetProgram(EProgramIndicator indicator, FCVirtualProgramId const &id, FCVirtualProgramData &program) override;
    bool GetProgram(FCVirtualProgramId const &id, FCVirtualProgramData &program) override;
    bool GetProgram(const std::string &in, std::string &out) override;
    bool GetPresentProgram(unsigned long long const &serviceId, FCVirtualProgramData &program) override;
    bool GetPresentProgram(const std::string &in, std::string &out) override;
    bool GetChannelLogo(unsigned long long const &serviceId, EChannelLogoSize size, std::string &logo) override;
    bool GetChannelLogo(const std::string &in, std::string &out) override;
    bool GetProgramThumbnail(FCVirtualProgramId const &id, std::string &thumbnail) override;
    bool GetProgramThumbnail(const std::string &in, std::string &out) override;
    int GetProgramImage(FCVirtualProgramId const &id, EProgramLogoType type, std::string &image) override;
    int GetProgramImage(const std::string &in, std::string &out) override;
    bool GetProgramBackground(FCVirtualProgramId const &id, std::string &background) override;
    bool GetProgramBackground(const std::string &in, std::string &out) override;
    bool GetServiceIdFromOnTVProviderAndService(const std::string &provider, const std::string &service,
                                                unsigned long long &serviceId) override;
    bool GetServiceIdFromOnTVProviderAndService(const std::string &in, std::string &out) override;
    bool SendLogKPI(EKPIType type, std::string &eventName, std::string &category, std::string &desc) override;
    bool GetViewingAgreement() override;
    bool Reset() override;
    bool TVLumeProgramInfoIsAvailable() override;
    bool TVLumeProgramInfoIsAvailable(std::string &out) override;
    bool RestartTvlumeInfo() override;
    bool RestartTvlumeInfo(std::string &out) override;
    bool ExtractServiceInformationsFromServiceId(unsigned long long serviceId,
                                                 ExtractedServiceInfomations &info) override;
    bool GetTVLumeProgramOnColdBoot(EPlayerType player, unsigned long long const &serviceId,
                                    FCVirtualProgramData &program) override;
    bool RecoverDeletedTvlumeServices() override;
    bool SetDeepLink(std::string &link) override;
    bool GetDeepLink(std::string &link) override;
    bool GetTvlumePreviewData(std::string &out) override;
    bool SetMyTvlume(bool on) override;
    bool GetMyTvlume() override;
    bool SetTVLumeOnOff(bool on) override;
    int LaunchTVLumeHomeScreen() override;
    bool SetHomeScreenFlag(bool on) override;
    bool GetHomeScreenFlag() override;
    bool SetDataServiceType(EDataServiceType &type) override;
    bool GetDataServiceType(EDataServiceType &type) override;
    bool IsTVLumeLaunched() override;
};

#endif
