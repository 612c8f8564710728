// Client of the daemon's genre navigation over broadcast (RF) channels; handed out by FCAPI.
#ifndef KELVO_RFNETWORKCHANNELMANAGER_PROXY_H
#define KELVO_RFNETWORKCHANNELMANAGER_PROXY_H

#include "FCRFNetworkChannelAPI.h"

class FCRFNetworkChannelManager_Proxy : public FCRFNetworkChannelAPI {
public:
    ~FCRFNetworkChannelManager_Proxy() override;

    bool Reset() override;
    // The navigation mode is not kept by the daemon: both answer false and send nothing.
    bool SetNavigationMode(ENavigationMode mode) override;
    bool GetNavigationMode(ENavigationMode &mode) override;
    bool SetGenreForNavigation(std::string genre) override;
    bool GetGenreForNavigation(std::string &genre) override;
    bool GetRFNetworkChannelMapByGenre(std::string genre, FCRFNetworkChannelTable &table) override;
    bool GetRFNetworkChannelUpByGenre(std::string genre, unsigned long long &current,
                                      unsigned long long &next) override;
    bool GetRFNetworkChannelDownByGenre(std::string genre, unsigned long long &current,
                                        unsigned long long &next) override;
    int GetRFNetworkChannelCountByGenre(std::string genre) override;
    // The programme operations leave their outputs as they were when the call fails.
    bool GetPresentMetaProgram(const unsigned long long &serviceId, FCRemoteProgram &program) override;
    bool GetNextMetaProgram(const FCRemoteProgram &from, FCRemoteProgram &program) override;
    bool GetPrevMetaProgram(const FCRemoteProgram &from, FCRemoteProgram &program) override;
    bool GetMetaProgramMap(const unsigned long long &serviceId, unsigned long start, unsigned int duration,
                           std::map<unsigned int, FCRemoteProgram> &map) override;
    bool CheckMetaProgramExist() override;
    bool IsSupportMetadataforEPG() override;
};

#endif
