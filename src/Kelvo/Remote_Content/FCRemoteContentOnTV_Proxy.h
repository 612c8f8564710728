// Proxies of the remote-content services of the content daemon, each operation one remote call by
// method name with JSON text; made by the object factory of FCAPI.
#ifndef KELVO_FCREMOTECONTENTONTV_PROXY_H
#define KELVO_FCREMOTECONTENTONTV_PROXY_H

#include <list>
#include <map>
#include <string>
#include <vector>

#include "FCRemoteContentAPI.h"
#include "FCRemoteContent_MSOAPI.h"
#include "FIMatchFinder.h"

class FCRemoteContentOnTV_Proxy : public FCRemoteContentAPI {
public:
    bool Reset() override;
    bool ToggleKelvoTimeoutTest(bool enable) override;
    bool SetRemoteContentEnv(const std::string &country, const std::string &language) override;
    bool SetRemoteContentEnvForEmp(const std::string &in, std::string &out) override;
    bool GetRemoteContentEnv(std::string &country, std::string &language) override;
    bool GetRemoteContentEnv(std::string &inOut) override;
    bool GetRemoteContentActivityByTVSourceAndTVMode(int source, int antennaMode, int serviceMode,
                                                     eRemoteContentActivity &activity) override;
    bool GetRemoteContentActivityByTVSourceAndTVMode(const std::string &in, std::string &out) override;
    bool GetChannelCRC(std::string &crc) override;
    bool GetFenvoraVersion(std::string &version) override;
    bool NotifyPreviewDownloaderFinish(std::string &in) override;
    bool NotifyDVRContentUpdate() override;
};

class FCRemoteContentOnTV_MSO_Proxy : public FCRemoteContent_MSOAPI {
public:
    bool GetRemoteContentConfig(eRemoteContentActivity activity, FCRemoteMSOConfig &config) override;
    bool GetRemoteContentConfig(const std::string &in, std::string &out) override;
    bool SetRemoteContentConfig(eRemoteContentActivity activity, const FCRemoteMSOConfig &config) override;
    bool SetRemoteContentConfig(const std::string &in, std::string &out) override;
    bool GetCertRule(eRemoteContentActivity activity, CKelvoResponse_CertRule &rule) override;
    bool GetCertRule(const std::string &in, std::string &out) override;
    bool GetFullChannelList(eRemoteContentActivity activity, std::vector<FCRemoteChannel> &channels) override;
    bool GetFullChannelList(const std::string &in, std::string &out) override;
    bool GetTunableChannelList(eRemoteContentActivity activity, std::vector<FCRemoteChannel> &channels) override;
    bool GetTunableChannelList(const std::string &in, std::string &out) override;
    bool GetTunableProgramSourceIdMap(eRemoteContentActivity activity,
                                      std::map<std::string, FCRemoteChannelKey> &sourceMap) override;
    bool GetProgramMap(eRemoteContentActivity activity, std::vector<std::string> &sourceIds, int utcStartTime,
                       int duration, FCFilterCriteria &filter,
                       std::map<std::string, std::vector<FCRemoteProgram>> &programMap) override;
    bool GetProgramMap(const std::string &in, std::string &out) override;
    bool ActivateProgramGuide(eRemoteContentActivity activity) override;
    bool ActivateProgramGuide(const std::string &in, std::string &out) override;
    bool DeactivateProgramGuide(eRemoteContentActivity activity) override;
    bool DeactivateProgramGuide(const std::string &in, std::string &out) override;
    bool LoadAdditionalProgramMapFromServer(eRemoteContentActivity activity, std::vector<std::string> &sourceIds,
                                            unsigned long utcStartTime, int duration) override;
    bool LoadAdditionalProgramMapFromServer(const std::string &in, std::string &out) override;
    bool GetGenreList(eRemoteContentActivity activity, std::vector<FCGenreInfo> &genres) override;
    bool GetGenreList(const std::string &in, std::string &out) override;
    bool GetVODProviders(eRemoteContentActivity activity, CKelvoResponse_VODProviders &providers) override;
    bool GetVODProviders(const std::string &in, std::string &out) override;
    bool GetFCRemoteProgramByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                             unsigned long utcCurrentTime, FCRemoteProgram &program) override;
    bool GetFCRemoteProgramByProgramSourceID(const std::string &in, std::string &out) override;
    bool GetFCRemoteChannelByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                             FCRemoteChannel &channel) override;
    bool GetFCRemoteChannelByProgramSourceID(const std::string &in, std::string &out) override;
    bool GetSearchKeyStringInRFMode(eRemoteContentActivity activity, unsigned long long &serviceId,
                                    unsigned long utcCurrentTime, std::string &searchKey) override;
    bool GetSearchKeyStringInMBRMode(eRemoteContentActivity activity, const std::string &mbrChannelNumber,
                                     unsigned long utcCurrentTime, std::string &searchKey) override;
    bool GetFeaturedChannels(eRemoteContentActivity activity, std::vector<FCRemoteChannel> &channels) override;
    bool SetMVPDContents(std::string &in, std::string &out) override;
    bool GetFullProgramSourceIdList(eRemoteContentActivity activity, std::vector<std::string> &sourceIds) override;
};

class FCMatchFinder_Proxy : public FIMatchFinder {
public:
    bool GetFCRemoteChannelByTCServiceId(eRemoteContentActivity activity, unsigned long long &serviceId,
                                         FCRemoteChannel &channel) override;
    bool GetFCRemoteChannelByTCServiceId(const std::string &in, std::string &out) override;
    bool GetTCServiceIdByFCRemoteChannel(eRemoteContentActivity activity, FCRemoteChannel &channel,
                                         unsigned long long &serviceId) override;
    bool GetTCServiceIdByFCRemoteChannel(const std::string &in, std::string &out) override;
    bool GetTCServiceIdByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                         unsigned long long &serviceId) override;
    bool GetTCServiceIdByProgramSourceID(const std::string &in, std::string &out) override;
    bool GetTCServiceIdListByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                             std::list<unsigned long long> &serviceIds) override;
    bool GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel> &channels,
                                           bool flag) override;
    bool GetRemoteChannelByChannelNumber(int major, int minor, FCRemoteChannel &channel) override;
    bool GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel> &channels) override;
    bool GetRemoteChannelByChannelNumber(int number, FCRemoteChannel &channel) override;
    bool GetRemoteProgramByKeyword(std::string keyword, std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                   unsigned long utcStartTime, unsigned long utcEndTime) override;
    bool GetRemoteProgramByTitle(std::string title, std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                 unsigned long utcStartTime, unsigned long utcEndTime) override;
    bool GetRemoteProgramByDescription(std::string description,
                                       std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                       unsigned long utcStartTime, unsigned long utcEndTime) override;
};

#endif
