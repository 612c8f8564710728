#include "RFNetworkChannelManager_Proxy.h"

#include "FCDebug.h"
#include "FCMarshal.h"
#include "FCProxyCall.h"

namespace {

using FCProxyCall::Reads;
using FCProxyCall::Writes;

// Navigation: a failed call still reads "ret" and the outputs from its empty reply.
constexpr FCProxyCall::TypedOver<FCProxyCall::kShared> TypedCall;

// Programmes: a failed call leaves the caller's programme or map as it was.
constexpr FCProxyCall::TypedOver<FCProxyCall::kSharedOutputsOnSuccess> ProgramCall;

}  // namespace

#define FC_RF_LOG(fmt, ...)                                                                                            \
    FC_LOGI("%s: %s(%d) > [%d][%d]FCRFNetworkChannelManager_Proxy::" fmt "\n", FC_PID_TID, ##__VA_ARGS__)

FCRFNetworkChannelManager_Proxy::~FCRFNetworkChannelManager_Proxy() {}

bool FCRFNetworkChannelManager_Proxy::Reset()
{
    FC_RF_LOG("Reset()");
    return true;
}

bool FCRFNetworkChannelManager_Proxy::SetNavigationMode(ENavigationMode mode)
{
    FC_RF_LOG("SetNavigationMode() Called, navigationMode : %d", static_cast<int>(mode));
    return false;
}

bool FCRFNetworkChannelManager_Proxy::GetNavigationMode(ENavigationMode &mode)
{
    FC_RF_LOG("GetNavigationMode(), navigationMode : %d", static_cast<int>(mode));
    return false;
}

bool FCRFNetworkChannelManager_Proxy::SetGenreForNavigation(std::string genre)
{
    return TypedCall("SetGenreForNavigation", Writes(FCMarshal::GenreToJson, genre));
}

bool FCRFNetworkChannelManager_Proxy::GetGenreForNavigation(std::string &genre)
{
    FC_RF_LOG("GetGenreForNavigation(), genre : %s", genre.c_str());
    return TypedCall("GetGenreForNavigation", Reads(FCMarshal::JsonToGenre, genre));
}

bool FCRFNetworkChannelManager_Proxy::GetRFNetworkChannelMapByGenre(std::string genre, FCRFNetworkChannelTable &table)
{
    FC_RF_LOG("GetRFNetworkChannelMapByGenre(), key(genre) : %s", genre.c_str());
    return TypedCall("GetRFNetworkChannelMapByGenre", Writes(FCMarshal::GenreToJson, genre),
                     Reads(FCMarshal::JsonToGenre, genre), Reads(FCMarshal::JsonToRFNetworkChannelTable, table));
}

bool FCRFNetworkChannelManager_Proxy::GetRFNetworkChannelUpByGenre(std::string genre, unsigned long long &current,
                                                                   unsigned long long &next)
{
    FC_RF_LOG("GetRFNetworkChannelUpByGenre(), key(genre) : %s", genre.c_str());
    return TypedCall("GetRFNetworkChannelUpByGenre", Writes(FCMarshal::GenreToJson, genre),
                     Writes(FCMarshal::VCServiceIdToJson, current), Reads(FCMarshal::VCJsonToServiceId, next));
}

bool FCRFNetworkChannelManager_Proxy::GetRFNetworkChannelDownByGenre(std::string genre, unsigned long long &current,
                                                                     unsigned long long &next)
{
    FC_RF_LOG("GetRFNetworkChannelDownByGenre(), key(genre) : %s", genre.c_str());
    return TypedCall("GetRFNetworkChannelDownByGenre", Writes(FCMarshal::GenreToJson, genre),
                     Writes(FCMarshal::VCServiceIdToJson, current), Reads(FCMarshal::VCJsonToServiceId, next));
}

int FCRFNetworkChannelManager_Proxy::GetRFNetworkChannelCountByGenre(std::string genre)
{
    FC_RF_LOG("GetRFNetworkChannelCountByGenre(), genre : %s", genre.c_str());
    int count = 0;
    TypedCall("GetRFNetworkChannelCountByGenre", Writes(FCMarshal::GenreToJson, genre),
              Reads(FCMarshal::JsonToCount, count));
    return count;
}

bool FCRFNetworkChannelManager_Proxy::GetPresentMetaProgram(const unsigned long long &serviceId,
                                                            FCRemoteProgram &program)
{
    return ProgramCall("GetPresentMetaProgram", Writes(FCMarshal::VCServiceIdToJson, serviceId),
                       Reads(FCMarshal::JsonToFCRemoteProgram, program));
}

bool FCRFNetworkChannelManager_Proxy::GetNextMetaProgram(const FCRemoteProgram &from, FCRemoteProgram &program)
{
    return ProgramCall("GetNextMetaProgram", Writes(FCMarshal::FCRemoteProgramToJson, from),
                       Reads(FCMarshal::JsonToFCRemoteProgram, program));
}

bool FCRFNetworkChannelManager_Proxy::GetPrevMetaProgram(const FCRemoteProgram &from, FCRemoteProgram &program)
{
    return ProgramCall("GetPrevMetaProgram", Writes(FCMarshal::FCRemoteProgramToJson, from),
                       Reads(FCMarshal::JsonToFCRemoteProgram, program));
}

bool FCRFNetworkChannelManager_Proxy::GetMetaProgramMap(const unsigned long long &serviceId, unsigned long start,
                                                        unsigned int duration,
                                                        std::map<unsigned int, FCRemoteProgram> &map)
{
    // Start times travel as 32-bit numbers.
    const auto startTime = static_cast<unsigned int>(start);
    return ProgramCall("GetMetaProgramMap", Writes(FCMarshal::StartTimeToJson, startTime),
                       Writes(FCMarshal::DurationToJson, duration), Writes(FCMarshal::VCServiceIdToJson, serviceId),
                       Reads(FCMarshal::JsonToMetaProgramMap, map));
}

bool FCRFNetworkChannelManager_Proxy::CheckMetaProgramExist()
{
    return TypedCall("CheckMetaProgramExist");
}

bool FCRFNetworkChannelManager_Proxy::IsSupportMetadataforEPG()
{
    return TypedCall("IsSupportMetadataforEPG");
}
