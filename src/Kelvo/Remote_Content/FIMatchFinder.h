// Matching between the TV's service ids and remote channels and programmes; searches.
#ifndef KELVO_FIMATCHFINDER_H
#define KELVO_FIMATCHFINDER_H

#include <list>
#include <map>
#include <string>
#include <vector>

#include "FCElementData.h"
#include "FCTypes.h"

class FIMatchFinder {
public:
    virtual ~FIMatchFinder() {}
    virtual bool GetFCRemoteChannelByTCServiceId(eRemoteContentActivity activity, unsigned long long &serviceId,
                                                 FCRemoteChannel &channel) = 0;
    virtual bool GetFCRemoteChannelByTCServiceId(const std::string &in, std::string &out) = 0;
    virtual bool GetTCServiceIdByFCRemoteChannel(eRemoteContentActivity activity, FCRemoteChannel &channel,
                                                 unsigned long long &serviceId) = 0;
    virtual bool GetTCServiceIdByFCRemoteChannel(const std::string &in, std::string &out) = 0;
    virtual bool GetTCServiceIdByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                 unsigned long long &serviceId) = 0;
    virtual bool GetTCServiceIdByProgramSourceID(const std::string &in, std::string &out) = 0;
    virtual bool GetTCServiceIdListByProgramSourceID(eRemoteContentActivity activity, std::string sourceId,
                                                     std::list<unsigned long long> &serviceIds) = 0;
    virtual bool GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel> &channels,
                                                   bool flag) = 0;
    virtual bool GetRemoteChannelByChannelNumber(int major, int minor, FCRemoteChannel &channel) = 0;
    virtual bool GetRemoteChannelListByChannelName(std::string name, std::vector<FCRemoteChannel> &channels) = 0;
    virtual bool GetRemoteChannelByChannelNumber(int number, FCRemoteChannel &channel) = 0;
    virtual bool GetRemoteProgramByKeyword(std::string keyword,
                                           std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                           unsigned long utcStartTime, unsigned long utcEndTime) = 0;
    virtual bool GetRemoteProgramByTitle(std::string title,
                                         std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                         unsigned long utcStartTime, unsigned long utcEndTime) = 0;
    virtual bool GetRemoteProgramByDescription(std::string description,
                                               std::map<std::string, std::vector<FCRemoteProgram>> &programMap,
                                               unsigned long utcStartTime, unsigned long utcEndTime) = 0;
};

#endif
