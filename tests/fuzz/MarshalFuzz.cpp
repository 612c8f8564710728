// A reply of the content daemon is outside text. Parsed as the client parses it and read by every
// marshal and record reader, it may hold any sizes, types and depth: nothing may crash, read out
// of bounds or overflow. Readers that let jsoncpp's logic error pass by design are allowed to
// raise it (and the MBR channel reader its bit-text error); the readers that promise never to
// raise are called bare, so an exception out of them ends the run as a crash.
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "CKelvoResponse.h"
#include "FCElementData.h"
#include "FCJsonHelper.h"
#include "FCMarshal.h"
#include "FCVirtualProgramData.h"
#include "FakeDlog.h"
#include "MBRNetworkChannel.h"
#include "MBRNetworkChannelTable.h"
#include "RFNetworkChannelTable.h"

namespace {

// Members of an object (or elements of an array) that are read again as a reply of their own:
// records sit one level down in most replies.
const unsigned kNestedReplies = 8;

// Everything a reader may write into.
struct Out {
    bool flag = false;
    int number = 0, second = 0, third = 0;
    unsigned int unsignedNumber = 0;
    unsigned short shortNumber = 0;
    unsigned long time = 0;
    unsigned long long id = 0;
    long downloadId = 0;
    std::string text, text2, text3, text4;
    eRemoteContentActivity activity = REMOTE_CONTENT_ACTIVITY_MAIN;
    ESource source = SOURCE_NONE;
    EProgramIndicator indicator = PROGRAM_INDICATOR_PRESENT;
    EDataServiceType dataType = DATA_SERVICE_TYPE_NONE;
    EDownloadLocation location = DOWNLOAD_LOCATION_MEMORY;
    eTVLumeWebAppVisible visible = TVLUME_WEBAPP_HIDE;
    FCRFNetworkChannelAPI::ENavigationMode navigation = FCRFNetworkChannelAPI::NAVIGATION_MODE_ALL;
    FCMBRNetworkChannelAPI::EActivityID mbrActivity{};
    FCMBRNetworkChannelAPI::EMBRNetworkChannelQuery query{};
    FCMBRNetworkChannel::EFavorite favorite = FCMBRNetworkChannel::FAVORITE_1;
    FCVirtualChannelsAPI::EChannelLogoSize logoSize{};
    FCVirtualChannelsAPI::EPlayerType player = FCVirtualChannelsAPI::PLAYER_TYPE_TV;
    FCVirtualChannelsAPI::EProgramLogoType logoType{};
    FIACRSupportAPI::AcrVerified verified = FIACRSupportAPI::ACR_NOT_VERIFIED;
    RatingInfo rating;
    FCFilterCriteria filter;
    FCRemoteMSOConfig config;
    CKelvoResponse_CertRule certRule;
    CKelvoResponse_VODProviders providers;
    FCRemoteProgram program;
    FCRemoteChannel channel;
    FCRemoteChannelKey key;
    FCGenreInfo genre;
    FCMBRNetworkChannel mbrChannel;
    FCMBRNetworkProgram mbrProgram;
    FCRFNetworkChannelTable rfTable;
    FCMBRNetworkChannelTable mbrChannels;
    FCMBRNetworkProgramTable mbrPrograms;
    std::vector<std::string> ids;
    std::vector<FCRemoteChannel> channels;
    std::vector<FCGenreInfo> genres;
    std::vector<RatingInfo> ratings;
    std::list<unsigned long long> serviceIds;
    std::map<std::string, FCRemoteChannelKey> sourceMap;
    std::map<std::string, int> counts;
    std::map<unsigned int, FCRemoteProgram> metaPrograms;
    std::map<std::string, std::vector<FCRemoteProgram>> programMap;
    std::map<unsigned int, FCVirtualProgramData> virtualPrograms;
    FCVirtualProgramData virtualProgram;
    FCVirtualProgramId virtualId;
    FCVirtualConfig virtualConfig;
};

// One reader. The non-const readers add members to what they read, and each reader is to see the
// reply as the daemon sent it: those read a copy.
template <typename Read>
void MayRaise(const Json::Value &reply, Out &out, const Read &read)
{
    try {
        if constexpr (std::is_invocable_v<Read, const Json::Value &, Out &>) {
            read(reply, out);
        } else {
            Json::Value in(reply);
            read(in, out);
        }
    } catch (const Json::Exception &) {}
}

void ReadScalars(const Json::Value &reply, Out &o)
{
    using M = FCMarshal;
    using V = Json::Value;
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToIsFirstEntry(in, o.flag); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToIsInstantOn(in, o.flag); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToCountryAndLang(in, o.text, o.text2); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToTVSourceAndTVMode(in, o.source, o.number); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToTVSourceAndTVMode(in, o.source, o.number, o.second); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToactivityID(in, o.activity); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToChannelCRC(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToStr(in, o.text); });
    MayRaise(reply, o,
             [](V &in, Out &o) { M::JsonToProgramSourceIdAndUtcCurrentTime(in, o.activity, o.text, o.time); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToProgramSourceID(in, o.activity, o.text); });
    MayRaise(reply, o, [](V &in, Out &o) {
        M::JsonToSourceIDLstAndUtcStartTimeAndDurationAndFCFilterCriteria(in, o.activity, o.ids, o.number, o.second,
                                                                          o.filter);
    });
    MayRaise(reply, o, [](V &in, Out &o) {
        M::JsonToSourceIDListAndUtcStartTimeAndDuration(in, o.activity, o.ids, o.time, o.number);
    });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToUtcCurrentTime(in, o.activity, o.time); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToUtcStartTime(in, o.time); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToUtcEndTime(in, o.time); });
    MayRaise(reply, o, [](V &in, Out &o) {
        M::UnmarshalingForGetRecommendationOnNow(in, o.activity, o.text, o.time, o.number, o.filter);
    });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToTCServiceId(in, o.id); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToMBRChannelAndUTCCurrentTime(in, o.activity, o.text, o.time); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToSearchString(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToNavigationMode(in, o.navigation); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToGenre(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToCount(in, o.number); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToSource(in, o.source); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToEactivityID(in, o.mbrActivity); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToHeadEndID(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToZipCode(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToDeviceType(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToLocation(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToQueryType(in, o.query); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToCurrentTime(in, o.time); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToChannelID(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToMajorMinor(in, o.number, o.second); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToEFavorite(in, o.favorite); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToChannelIdMajor(in, o.text, o.text2); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToStartTime(in, o.unsignedNumber); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToDuration(in, o.unsignedNumber); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToEProgramIndicator(in, o.indicator); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToChannelLogo(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToProgramLogo(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToLogoSize(in, o.logoSize); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::VCJsonToServiceId(in, o.id); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToPlayerType(in, o.player); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToPGNum(in, o.shortNumber); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToProgramLogoType(in, o.logoType); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToImageDownloadId(in, o.downloadId); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToOnTvProviderId(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToPKGId(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToItemID(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToOnTvServiceId(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToKPIInfo(in, o.number, o.text, o.text2, o.text3); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToUrl(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToEDownloadLocation(in, o.location); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToFile(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToId(in, o.number); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToInt(in, o.number); });
    MayRaise(reply, o, [](const V &in, Out &o) { o.third = M::JsonToInt(in); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToAPPIDAndURL(in, o.text, o.text4); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToeTVLumeWebAppVisible(in, o.visible); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToRatingInfo(in, o.rating); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToStrRating(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToPositon(in, o.time); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToSec(in, o.unsignedNumber); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToFlag(in, o.flag); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToProgramSourceID_ACR(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToProgramID_ACR(in, o.text); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToAcrVerified(in, o.verified); });
    MayRaise(reply, o, [](const V &in, Out &o) { o.third = M::JsonToDataServiceType(in); });
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToDataServiceType(in, o.dataType); });
}

void ReadRecordsAndLists(const Json::Value &reply, Out &o)
{
    using M = FCMarshal;
    using V = Json::Value;
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToFCRemoteMSOConfig(in, o.config); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToCertRule(in, o.certRule); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToVODProvider(in, o.providers); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToFCRemoteChannel(in, o.channel); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToMBRProgram(in, o.mbrProgram); });
    MayRaise(reply, o, [](V &in, Out &o) { FCRemoteChannelKey::FromJson(in, o.key); });
    MayRaise(reply, o, [](V &in, Out &o) { FCGenreInfo::FromJson(in, o.genre); });
    MayRaise(reply, o, [](V &in, Out &o) { FCFilterCriteria::FromJson(in, o.filter); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToChannelList(in, o.channels); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToGenreList(in, o.genres); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToProgramSourceMap(in, o.sourceMap); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToSourceIDList(in, o.ids); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToRFNetworkChannelTable(in, o.rfTable); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToCountMap(in, o.counts); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToMBRProgramTable(in, o.mbrPrograms); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToMetaProgramMap(in, o.metaPrograms); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToRatingList(in, o.ratings); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToServiceIDList(in, o.serviceIds); });
    MayRaise(reply, o, [](V &in, Out &o) { M::JsonToProgramMap(in, o.programMap); });
    // The map's key is read as the keyed maps read it, which raises on a key of another type.
    MayRaise(reply, o, [](const V &in, Out &o) { M::JsonToVirtualProgramMap(in, o.virtualPrograms); });
    // The MBR channel readers also raise the standard library's error on a bit text of other
    // characters than '0' and '1', by design.
    MayRaise(reply, o, [](V &in, Out &o) {
        try {
            M::JsonToMBRNetworkChannel(in, o.mbrChannel);
        } catch (const std::invalid_argument &) {}
    });
    MayRaise(reply, o, [](V &in, Out &o) {
        try {
            M::JsonToMBRNetworkChannelTable(in, o.mbrChannels);
        } catch (const std::invalid_argument &) {}
    });

    // Never raise: reading a programme, in either of its forms, and the virtual-channel records.
    Json::Value in(reply);
    M::JsonToFCRemoteProgram(in, o.program);
    FCRemoteProgram::FromJson(reply, o.program);
    M::JsonToVirtualProgramData(reply, o.virtualProgram);
    M::JsonToVirtualProgramId(reply, o.virtualId);
    M::JsonToVirtualConfig(reply, o.virtualConfig);
}

// What the client does next with tables read from a reply: lookups, sorting, merging.
void UseTables(Out &o)
{
    o.mbrChannels.Sort();
    o.mbrChannels.GetMaxNumberOfMajorMinor(o.number, o.second);
    o.mbrChannels.FindNetworkChannelbyMajorMinor(o.number, o.second, o.mbrChannel);
    o.mbrChannels.FindNetworkChannelByChannelIDOriginMajor(o.number, o.second, o.mbrChannel);
    o.mbrChannels.Merge(o.mbrChannels);
    for (const auto &entry : o.mbrPrograms.m_mbrNetworkProgramDB)
        o.mbrPrograms.FindNetworkProgrambyStartTime(entry.first + static_cast<unsigned long>(o.number), o.mbrProgram);
    o.mbrPrograms.Merge(o.mbrPrograms);
    std::string text;
    o.program.to_string(text);
    o.program.from_string(text);
    for (auto &entry : o.programMap)
        for (FCRemoteProgram &program : entry.second)
            program.to_string(text);
    // Playback positions and lookups over whatever the daemon sent, and its text and JSON again.
    o.virtualPrograms[0] = o.virtualProgram;
    for (auto &entry : o.virtualPrograms) {
        FCVirtualProgramData &program = entry.second;
        program.UpdateOffsetAndPlaylistIndex(program.GetStartTime() + o.unsignedNumber, STREAM_TYPE_CIRCLE);
        FCTvlumePlaylistItem item;
        if (program.GetFirstPlaylistItem(item)) {
            program.UpdateOffsetAndPlaylistIndexForResumeCirculate(item.GetItemId());
            program.GetNextPlaylistItem(item.GetItemId(), item);
        }
        text = program.ToString();
        Json::Value json;
        FCVirtualProgramData::ToJson(program, json);
    }
    o.virtualId.ToString();
}

void ReadReply(const Json::Value &reply)
{
    Out out;
    ReadScalars(reply, out);
    ReadRecordsAndLists(reply, out);
    UseTables(out);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string text(reinterpret_cast<const char *>(data), size);

    // The text-level helpers take the reply as it came; none of them raises.
    FCJsonHelper::ParseReturnBoolean(text);
    Json::Value merged(Json::objectValue);
    FCJsonHelper::AppendMetaDataToGivenJson(text, merged);
    FCRemoteProgram fromText;
    fromText.from_string(text);

    Json::Value reply;
    if (FCMarshal::ParseToJson(text, reply)) {
        std::set<std::string> except = {"title", "activityID"};
        FCJsonHelper::GetMetaJsonStringWithExceptionTags(reply, except);
        FCJsonHelper::WriteCompact(reply);
        ReadReply(reply);
        unsigned nested = 0;
        for (const Json::Value &member : reply) {
            if (++nested > kNestedReplies)
                break;
            ReadReply(member);
        }
    }
    FakeDlog::Clear();
    return 0;
}
