// Arguments and replies of every remote call to the content daemon, to and from JSON. The
// member names are the wire contract with the daemon, spelt as the daemon spells them.
//
// ...ToJson writers add their members to out (existing members stay). JsonTo... readers read
// them back; how a reader treats a missing member depends on the member:
//  - numbers read strictly (Count, Source, NavigationMode, ...) raise jsoncpp's logic error,
//  - readers through Json::Value::get give 0 or "",
//  - readers through the non-const member operator give false/0/"" and leave a null member
//    behind in their input,
//  - the others give false/0/"" and leave the input as it was.
// Nothing here catches jsoncpp's exceptions.
#ifndef KELVO_FCMARSHAL_H
#define KELVO_FCMARSHAL_H

#include <list>
#include <map>
#include <string>
#include <vector>

#include <json/json.h>

#include "CKelvoResponse.h"
#include "FCElementData.h"
#include "FCMBRNetworkChannelAPI.h"
#include "FCRFNetworkChannelAPI.h"
#include "FCTVLumeAPI.h"
#include "FCThumbnailManagerAPI.h"
#include "FCTypes.h"
#include "FCVirtualChannelsAPI.h"
#include "FCVirtualProgramData.h"
#include "FIACRSupportAPI.h"
#include "MBRNetworkChannel.h"
#include "MBRNetworkChannelTable.h"
#include "RFNetworkChannelTable.h"

class FCMarshal {
public:
    static bool IsFirstEntryToJson(const bool &isFirstEntry, Json::Value &out);
    static bool JsonToIsFirstEntry(Json::Value &in, bool &isFirstEntry);
    static bool IsInstantOnToJson(const bool &isInstantOn, Json::Value &out);
    static bool JsonToIsInstantOn(Json::Value &in, bool &isInstantOn);
    static bool CountryAndLangToJson(const std::string &country, const std::string &language, Json::Value &out);
    static bool JsonToCountryAndLang(Json::Value &in, std::string &country, std::string &language);
    static bool TVSourceAndTVModeToJson(const int &source, const int &tvMode, Json::Value &out);
    static bool JsonToTVSourceAndTVMode(Json::Value &in, ESource &source, int &tvMode);
    static bool TVSourceAndTVModeToJson(const int &source, const int &antennaMode, const int &serviceMode,
                                        Json::Value &out);
    static bool JsonToTVSourceAndTVMode(Json::Value &in, ESource &source, int &antennaMode, int &serviceMode);
    static bool activityIDToJson(const eRemoteContentActivity &activity, Json::Value &out);
    static bool JsonToactivityID(Json::Value &in, eRemoteContentActivity &activity);
    static bool ChannelCRCToJson(const std::string &crc, Json::Value &out);
    static bool JsonToChannelCRC(const Json::Value &in, std::string &crc);
    static bool JsonToStr(const Json::Value &in, std::string &str);

    static bool FCRmoteMSOConfigToJson(const FCRemoteMSOConfig &config, Json::Value &out);
    static bool JsonToFCRemoteMSOConfig(Json::Value &in, FCRemoteMSOConfig &config);
    static bool CertRuleToJson(CKelvoResponse_CertRule &rule, Json::Value &out);
    static bool JsonToCertRule(Json::Value &in, CKelvoResponse_CertRule &rule);
    static bool VODProviderToJson(CKelvoResponse_VODProviders &providers, Json::Value &out);
    static bool JsonToVODProvider(Json::Value &in, CKelvoResponse_VODProviders &providers);

    static bool ChannelListToJson(std::vector<FCRemoteChannel> &channels, Json::Value &out);
    static bool JsonToChannelList(Json::Value &in, std::vector<FCRemoteChannel> &channels);
    static bool GenreListToJson(std::vector<FCGenreInfo> &genres, Json::Value &out);
    static bool JsonToGenreList(Json::Value &in, std::vector<FCGenreInfo> &genres);
    static bool ProgramSourceMapToJson(std::map<std::string, FCRemoteChannelKey> &sources, Json::Value &out);
    static bool JsonToProgramSourceMap(Json::Value &in, std::map<std::string, FCRemoteChannelKey> &sources);

    static bool ProgramSourceIDAndUtcCurrentTimeToJson(const eRemoteContentActivity &activity,
                                                       const std::string &programSourceId,
                                                       const unsigned long &utcCurrentTime, Json::Value &out);
    static bool JsonToProgramSourceIdAndUtcCurrentTime(Json::Value &in, eRemoteContentActivity &activity,
                                                       std::string &programSourceId, unsigned long &utcCurrentTime);
    static bool FCRemoteProgramToJson(const FCRemoteProgram &program, Json::Value &out);
    static bool JsonToFCRemoteProgram(Json::Value &in, FCRemoteProgram &program);
    static bool ProgramSourceIDToJson(const eRemoteContentActivity &activity, const std::string &programSourceId,
                                      Json::Value &out);
    static bool JsonToProgramSourceID(const Json::Value &in, eRemoteContentActivity &activity,
                                      std::string &programSourceId);
    static bool FCRemoteChannelToJson(FCRemoteChannel &channel, Json::Value &out);
    static bool JsonToFCRemoteChannel(Json::Value &in, FCRemoteChannel &channel);

    // Times and durations under "utc start time" and "duration".
    static bool SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson(
        const eRemoteContentActivity &activity, std::vector<std::string> &sourceIds, const int &utcStartTime,
        const int &duration, FCFilterCriteria &filter, Json::Value &out);
    static bool JsonToSourceIDLstAndUtcStartTimeAndDurationAndFCFilterCriteria(Json::Value &in,
                                                                               eRemoteContentActivity &activity,
                                                                               std::vector<std::string> &sourceIds,
                                                                               int &utcStartTime, int &duration,
                                                                               FCFilterCriteria &filter);
    // Times under "utc_starttime" (with underscore).
    static bool SourceIDListAndUtcStartTimeAndDurationToJson(const eRemoteContentActivity &activity,
                                                             std::vector<std::string> &sourceIds,
                                                             const unsigned long &utcStartTime, const int &duration,
                                                             Json::Value &out);
    static bool JsonToSourceIDListAndUtcStartTimeAndDuration(Json::Value &in, eRemoteContentActivity &activity,
                                                             std::vector<std::string> &sourceIds,
                                                             unsigned long &utcStartTime, int &duration);
    static bool UtcCurrentTimeToJson(const eRemoteContentActivity &activity, const unsigned long &utcCurrentTime,
                                     Json::Value &out);
    static bool JsonToUtcCurrentTime(Json::Value &in, eRemoteContentActivity &activity, unsigned long &utcCurrentTime);
    static bool UtcStartTimeToJson(const unsigned long &utcStartTime, Json::Value &out);
    static bool JsonToUtcStartTime(Json::Value &in, unsigned long &utcStartTime);
    static bool UtcEndTimeToJson(const unsigned long &utcEndTime, Json::Value &out);
    static bool JsonToUtcEndTime(Json::Value &in, unsigned long &utcEndTime);
    static bool MarshalingForGetRecommendationOnNow(const eRemoteContentActivity &activity,
                                                    const std::string &currentWatchingProgramSourceId,
                                                    const unsigned long &utcCurrentTime,
                                                    const int &numberOfRecommendation, FCFilterCriteria &filter,
                                                    Json::Value &out);
    static bool UnmarshalingForGetRecommendationOnNow(Json::Value &in, eRemoteContentActivity &activity,
                                                      std::string &currentWatchingProgramSourceId,
                                                      unsigned long &utcCurrentTime, int &numberOfRecommendation,
                                                      FCFilterCriteria &filter);

    static bool TCServiceIdToJson(const unsigned long long &serviceId, Json::Value &out);
    static bool JsonToTCServiceId(const Json::Value &in, unsigned long long &serviceId);
    static bool SourceIDListToJson(std::vector<std::string> &sourceIds, Json::Value &out);
    static bool JsonToSourceIDList(Json::Value &in, std::vector<std::string> &sourceIds);
    static bool MBRChannelAndUTCCurrentTimeToJson(const eRemoteContentActivity &activity,
                                                  const std::string &mbrChannelNumber,
                                                  const unsigned long &utcCurrentTime, Json::Value &out);
    static bool JsonToMBRChannelAndUTCCurrentTime(Json::Value &in, eRemoteContentActivity &activity,
                                                  std::string &mbrChannelNumber, unsigned long &utcCurrentTime);
    static bool SearchStringToJson(const std::string &searchString, Json::Value &out);
    static bool JsonToSearchString(Json::Value &in, std::string &searchString);

    static bool NavigationModeToJson(const FCRFNetworkChannelAPI::ENavigationMode &mode, Json::Value &out);
    static bool JsonToNavigationMode(const Json::Value &in, FCRFNetworkChannelAPI::ENavigationMode &mode);
    static bool GenreToJson(const std::string &genre, Json::Value &out);
    static bool JsonToGenre(const Json::Value &in, std::string &genre);
    static bool RFNetworkChannelTableToJson(FCRFNetworkChannelTable &table, Json::Value &out);
    static bool JsonToRFNetworkChannelTable(Json::Value &in, FCRFNetworkChannelTable &table);
    static bool CountToJson(const int &count, Json::Value &out);
    static bool JsonToCount(const Json::Value &in, int &count);
    static bool CountMapToJson(std::map<std::string, int> &counts, Json::Value &out);
    static bool JsonToCountMap(Json::Value &in, std::map<std::string, int> &counts);

    static bool SourceToJson(const int &source, Json::Value &out);
    static bool JsonToSource(const Json::Value &in, ESource &source);
    static bool EactivityIDToJson(const FCMBRNetworkChannelAPI::EActivityID &activity, Json::Value &out);
    static bool JsonToEactivityID(const Json::Value &in, FCMBRNetworkChannelAPI::EActivityID &activity);
    static bool HeadEndIDToJson(const std::string &headEndId, Json::Value &out);
    static bool JsonToHeadEndID(const Json::Value &in, std::string &headEndId);
    static bool ZipCodeToJson(const std::string &zipCode, Json::Value &out);
    static bool JsonToZipCode(const Json::Value &in, std::string &zipCode);
    static bool DeviceTypeToJson(const std::string &deviceType, Json::Value &out);
    static bool JsonToDeviceType(const Json::Value &in, std::string &deviceType);
    static bool LocationToJson(const std::string &location, Json::Value &out);
    static bool JsonToLocation(const Json::Value &in, std::string &location);
    static bool MBRNetworkChannelTableToJson(FCMBRNetworkChannelTable &table, Json::Value &out);
    static bool JsonToMBRNetworkChannelTable(Json::Value &in, FCMBRNetworkChannelTable &table);
    static bool QueryTypeToJson(const FCMBRNetworkChannelAPI::EMBRNetworkChannelQuery &query, Json::Value &out);
    static bool JsonToQueryType(const Json::Value &in, FCMBRNetworkChannelAPI::EMBRNetworkChannelQuery &query);
    static bool MBRProgramTableToJson(FCMBRNetworkProgramTable &table, Json::Value &out);
    static bool JsonToMBRProgramTable(Json::Value &in, FCMBRNetworkProgramTable &table);
    static bool MBRProgramToJson(FCMBRNetworkProgram &program, Json::Value &out);
    static bool JsonToMBRProgram(Json::Value &in, FCMBRNetworkProgram &program);
    static bool CurrentTimeToJson(const unsigned long &currentTime, Json::Value &out);
    static bool JsonToCurrentTime(const Json::Value &in, unsigned long &currentTime);
    static bool ChannelIDToJson(const std::string &channelId, Json::Value &out);
    static bool JsonToChannelID(const Json::Value &in, std::string &channelId);
    static bool MBRNetworkChannelToJson(FCMBRNetworkChannel &channel, Json::Value &out);
    static bool JsonToMBRNetworkChannel(Json::Value &in, FCMBRNetworkChannel &channel);
    static bool MajorMinorToJson(const int &major, const int &minor, Json::Value &out);
    static bool JsonToMajorMinor(const Json::Value &in, int &major, int &minor);
    static bool EFavoriteToJson(const FCMBRNetworkChannel::EFavorite &favorite, Json::Value &out);
    static bool JsonToEFavorite(const Json::Value &in, FCMBRNetworkChannel::EFavorite &favorite);
    static bool ChannelIdMajorToJson(const std::string &channelId, const std::string &major, Json::Value &out);
    static bool JsonToChannelIdMajor(const Json::Value &in, std::string &channelId, std::string &major);

    static bool StartTimeToJson(const unsigned int &startTime, Json::Value &out);
    static bool JsonToStartTime(const Json::Value &in, unsigned int &startTime);
    static bool DurationToJson(const unsigned int &duration, Json::Value &out);
    static bool JsonToDuration(const Json::Value &in, unsigned int &duration);
    static bool MetaProgramMapToJson(std::map<unsigned int, FCRemoteProgram> &programs, Json::Value &out);
    static bool JsonToMetaProgramMap(Json::Value &in, std::map<unsigned int, FCRemoteProgram> &programs);
    static bool EProgramIndicatorToJson(const EProgramIndicator &indicator, Json::Value &out);
    static bool JsonToEProgramIndicator(const Json::Value &in, EProgramIndicator &indicator);
    static bool VirtualProgramMapToJson(std::map<unsigned int, FCVirtualProgramData> &programs, Json::Value &out);
    static bool JsonToVirtualProgramMap(const Json::Value &in, std::map<unsigned int, FCVirtualProgramData> &programs);
    static bool VirtualProgramIdToJson(const FCVirtualProgramId &id, Json::Value &out);
    static bool JsonToVirtualProgramId(const Json::Value &in, FCVirtualProgramId &id);
    static bool VirtualProgramDataToJson(const FCVirtualProgramData &program, Json::Value &out);
    static bool JsonToVirtualProgramData(const Json::Value &in, FCVirtualProgramData &program);
    static bool VirtualConfigToJson(const FCVirtualConfig &config, Json::Value &out);
    static bool JsonToVirtualConfig(const Json::Value &in, FCVirtualConfig &config);
    static bool ChannelLogoToJson(const std::string &channelLogo, Json::Value &out);
    static bool JsonToChannelLogo(const Json::Value &in, std::string &channelLogo);
    static bool ProgramLogoToJson(const std::string &programLogo, Json::Value &out);
    static bool JsonToProgramLogo(const Json::Value &in, std::string &programLogo);
    static bool LogoSizeToJson(const FCVirtualChannelsAPI::EChannelLogoSize &size, Json::Value &out);
    static bool JsonToLogoSize(const Json::Value &in, FCVirtualChannelsAPI::EChannelLogoSize &size);
    static bool VCServiceIdToJson(const unsigned long long &serviceId, Json::Value &out);
    static bool VCJsonToServiceId(const Json::Value &in, unsigned long long &serviceId);
    static bool PlayerTypeToJson(const FCVirtualChannelsAPI::EPlayerType &playerType, Json::Value &out);
    static bool JsonToPlayerType(const Json::Value &in, FCVirtualChannelsAPI::EPlayerType &playerType);
    static bool PGNumToJson(const unsigned short &pgNum, Json::Value &out);
    static bool JsonToPGNum(const Json::Value &in, unsigned short &pgNum);
    static bool ProgramLogoTypeToJson(const FCVirtualChannelsAPI::EProgramLogoType &type, Json::Value &out);
    static bool JsonToProgramLogoType(const Json::Value &in, FCVirtualChannelsAPI::EProgramLogoType &type);
    static bool ImageDownloadIdToJson(const long &imageDownloadId, Json::Value &out);
    static bool JsonToImageDownloadId(const Json::Value &in, long &imageDownloadId);
    static bool OnTvProviderIdToJson(const std::string &providerId, Json::Value &out);
    static bool JsonToOnTvProviderId(const Json::Value &in, std::string &providerId);
    static bool PKGIdToJson(const std::string &pkgId, Json::Value &out);
    static bool JsonToPKGId(const Json::Value &in, std::string &pkgId);
    static bool ItemIDToJson(const std::string &itemId, Json::Value &out);
    static bool JsonToItemID(const Json::Value &in, std::string &itemId);
    static bool OnTvServiceIdToJson(const std::string &serviceId, Json::Value &out);
    static bool JsonToOnTvServiceId(const Json::Value &in, std::string &serviceId);
    static bool KPIInfoToJson(const int &type, const std::string &eventName, const std::string &category,
                              const std::string &desc, Json::Value &out);
    static bool JsonToKPIInfo(const Json::Value &in, int &type, std::string &eventName, std::string &category,
                              std::string &desc);

    static bool UrlToJson(const std::string &url, Json::Value &out);
    static bool JsonToUrl(const Json::Value &in, std::string &url);
    static bool EDownloadLocationToJson(const EDownloadLocation &location, Json::Value &out);
    static bool JsonToEDownloadLocation(const Json::Value &in, EDownloadLocation &location);
    static bool FileToJson(const std::string &file, Json::Value &out);
    static bool JsonToFile(const Json::Value &in, std::string &file);
    static bool IdToJson(const int &id, Json::Value &out);
    static bool JsonToId(const Json::Value &in, int &id);
    // The number travels under "ret".
    static bool IntToJson(const int &value, Json::Value &out);
    static bool JsonToInt(const Json::Value &in, int &value);
    static int JsonToInt(const Json::Value &in);
    static bool APPIDAndURLToJson(const std::string &appId, const std::string &url, Json::Value &out);
    static bool JsonToAPPIDAndURL(const Json::Value &in, std::string &appId, std::string &url);
    static bool eTVLumeWebAppVisibleToJson(const eTVLumeWebAppVisible &visible, Json::Value &out);
    static bool JsonToeTVLumeWebAppVisible(const Json::Value &in, eTVLumeWebAppVisible &visible);
    static bool RatingInfoToJson(const RatingInfo &rating, Json::Value &out);
    static bool JsonToRatingInfo(const Json::Value &in, RatingInfo &rating);
    static bool RatingListToJson(std::vector<RatingInfo> &ratings, Json::Value &out);
    // False, with a log line, when the reply holds no rating.
    static bool JsonToRatingList(Json::Value &in, std::vector<RatingInfo> &ratings);
    static bool StrRatingToJson(const std::string &rating, Json::Value &out);
    static bool JsonToStrRating(const Json::Value &in, std::string &rating);
    static bool PositonToJson(const unsigned long &position, Json::Value &out);
    static bool JsonToPositon(const Json::Value &in, unsigned long &position);
    static bool SecToJson(const unsigned int &sec, Json::Value &out);
    static bool JsonToSec(const Json::Value &in, unsigned int &sec);
    static bool FlagToJson(const bool &flag, Json::Value &out);
    static bool JsonToFlag(const Json::Value &in, bool &flag);
    static bool ProgramSourceIDToJson_ACR(const std::string &programSourceId, Json::Value &out);
    static bool JsonToProgramSourceID_ACR(const Json::Value &in, std::string &programSourceId);
    static bool ProgramIDToJson_ACR(const std::string &programId, Json::Value &out);
    static bool JsonToProgramID_ACR(const Json::Value &in, std::string &programId);
    static bool AcrVerifiedToJson(const FIACRSupportAPI::AcrVerified &verified, Json::Value &out);
    static bool JsonToAcrVerified(const Json::Value &in, FIACRSupportAPI::AcrVerified &verified);
    static bool DataServiceTypeToJson(const int &type, Json::Value &out);
    static int JsonToDataServiceType(const Json::Value &in);
    static bool JsonToDataServiceType(const Json::Value &in, EDataServiceType &type);

    static bool ServiceIDListToJson(std::list<unsigned long long> &serviceIds, Json::Value &out);
    static bool JsonToServiceIDList(Json::Value &in, std::list<unsigned long long> &serviceIds);
    static bool ProgramMapToJson(std::map<std::string, std::vector<FCRemoteProgram>> &programs, Json::Value &out);
    // Each source's vector replaces the one stored under it; other sources stay.
    static bool JsonToProgramMap(Json::Value &in, std::map<std::string, std::vector<FCRemoteProgram>> &programs);

    static bool ParseToJson(const std::string &text, Json::Value &out);
};

#endif
