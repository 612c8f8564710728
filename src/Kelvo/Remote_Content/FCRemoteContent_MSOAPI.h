// Remote content of the daemon on the operator (MSO) side: configuration, channel lists, genres,
// programme maps, VOD providers, certification rules.
#ifndef KELVO_FCREMOTECONTENT_MSOAPI_H
#define KELVO_FCREMOTECONTENT_MSOAPI_H

#include <map>
#include <string>
#include <vector>

#include "CKelvoResponse.h"
#include "FCElementData.h"
#include "FCTypes.h"

class FCRemoteContent_MSOAPI {
public:
    virtual ~FCRemoteContent_MSOAPI() {}
    virtual bool GetRemoteContentConfig(eRemoteContentActivity activity, FCRemoteMSOConfig &config) = 0;
    virtual bool GetRemoteContentConfig(const std::string &in, std::string &out) = 0;
    virtual bool SetRemoteContentConfig(eRemoteContentActivity activity, const FCRemoteMSOConfig &config) = 0;
    virtual bool SetRemoteContentConfig(const std::string &in, std::string &out) = 0;
    virtual bool GetCertRule(eRemoteContentActivity activity, CKelvoResponse_CertRule &rule) = 0;
    virtual bool GetCertRule(const std::string &in, std::string &out) = 0;
    virtual bool GetFullChannelList(eRemoteContentActivity activity, std::vector<FCRemoteChannel> &channels) = 0;
    virtual bool GetFullChannelList(const std::string &in, std::string &out) = 0;
    virtual bool GetTunableChannelList(eRemoteContentActivity activity, std::vector<FCRemoteChannel> &channels) = 0;
    virtual bool GetTunableChannelList(const std::string &in, std::string &out) = 0;
    virtual bool GetTunableProgramSourceIdMap(eRemoteContentActivity activity,
                                              std::map<std::string, FCRemoteChannelKey> &sourceMap) = 0;
    virtual bool GetProgramMap(eRemoteContentActivity activity, std::vector<std::string> &sourceIds, int utcStartTime,
                               int duration, FCFilterCriteria &filter,
                               std::map<std::string, std::vector<FCRemoteProgram>> &programMap) = 0;
    virtual bool GetProgramMap(const std::string &in, std::string &out) = 0;
    virtual bool ActivateProgramGuide(eRemoteContentActivity activity) = 0;
    virtual bool ActivateProgramGuide(const std::string &in, std::string &out) = 0;
    virtual bool DeactivateProgramGuide(eRemoteContentActivity activity) = 0;
    virtual bool DeactivateProgramGuide(const std::string &in, std::string &out) = 0;
    virtual bool LoadAdditionalProgramMapFromServer(eRemoteContentActivity activity,
                                                    std::vector<std::string> &sourceIds, unsigned long utcStartTime,
                                                    int duration) = 0;
    virtual bool LoadAdditionalProgramMapFromServer(const std::string &in, std::string &out) = 0;
    virtual bool GetGenreList(eRemoteContentActivity activity, std::vector<FCGenreInfo> &genres) = 0;
    virtual bool GetGenreList(const std::string &in, std::string &out) = 0;
    virtual bool GetVODProviders(eRemoteContentActivity activity, CKelvoResponse_VODProviders &providers) = 0;
    virtual bool GetVODProviders(const std::string &in, std::string &out) = 0;
    virtual bool GetFCRemoteProgramByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                     unsigned long utcCurrentTime, FCRemoteProgram &program) = 0;
    virtual bool GetFCRemoteProgramByProgramSourceID(const std::string &in, std::string &out) = 0;
    virtual bool GetFCRemoteChannelByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                     FCRemoteChannel &channel) = 0;
    virtual bool GetFCRemoteChannelByProgramSourceID(const std::string &in, std::string &out) = 0;
    virtual bool GetSearchKeyStringInRFMode(eRemoteContentActivity activity, unsigned long long &serviceId,
                                            unsigned long utcCurrentTime, std::string &searchKey) = 0;
    virtual bool GetSearchKeyStringInMBRMode(eRemoteContentActivity activity, const std::string &mbrChannelNumber,
                                             unsigned long utcCurrentTime, std::string &searchKey) = 0;
    virtual bool GetFeaturedChannels(eRemoteContentActivity activity, std::vector<FCRemoteChannel> &channels) = 0;
    virtual bool SetMVPDContents(std::string &in, std::string &out) = 0;
    virtual bool GetFullProgramSourceIdList(eRemoteContentActivity activity, std::vector<std::string> &sourceIds) = 0;
};

#endif
