// Genre-filtered navigation over broadcast (RF) channels and the programmes of server metadata
// attached to them.
#ifndef KELVO_FCRFNETWORKCHANNELAPI_H
#define KELVO_FCRFNETWORKCHANNELAPI_H

#include <map>
#include <string>

#include "FCElementData.h"
#include "RFNetworkChannelTable.h"

class FCRFNetworkChannelAPI {
public:
    enum ENavigationMode : int { NAVIGATION_MODE_ALL = 0, NAVIGATION_MODE_GENRE = 1 };

    virtual ~FCRFNetworkChannelAPI() = default;

    virtual bool Reset() = 0;
    virtual bool SetNavigationMode(ENavigationMode mode) = 0;
    virtual bool GetNavigationMode(ENavigationMode &mode) = 0;
    virtual bool SetGenreForNavigation(std::string genre) = 0;
    virtual bool GetGenreForNavigation(std::string &genre) = 0;
    virtual bool GetRFNetworkChannelMapByGenre(std::string genre, FCRFNetworkChannelTable &table) = 0;
    // The channel after (Up) or before (Down) current among the genre's channels.
    virtual bool GetRFNetworkChannelUpByGenre(std::string genre, unsigned long long &current,
                                              unsigned long long &next) = 0;
    virtual bool GetRFNetworkChannelDownByGenre(std::string genre, unsigned long long &current,
                                                unsigned long long &next) = 0;
    // The number of channels, not a success flag.
    virtual int GetRFNetworkChannelCountByGenre(std::string genre) = 0;
    virtual bool GetPresentMetaProgram(const unsigned long long &serviceId, FCRemoteProgram &program) = 0;
    virtual bool GetNextMetaProgram(const FCRemoteProgram &from, FCRemoteProgram &program) = 0;
    virtual bool GetPrevMetaProgram(const FCRemoteProgram &from, FCRemoteProgram &program) = 0;
    // The programmes of the window, keyed by their start time.
    virtual bool GetMetaProgramMap(const unsigned long long &serviceId, unsigned long start, unsigned int duration,
                                   std::map<unsigned int, FCRemoteProgram> &map) = 0;
    virtual bool CheckMetaProgramExist() = 0;
    virtual bool IsSupportMetadataforEPG() = 0;
};

#endif
