// Every wrapper pair of the marshal family in one table: the members its writer puts on the
// wire, that its reader gets back what the writer wrote (compared as the writer writes it
// again), and what its reader makes of a reply without the members ({}).
#include <functional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "FCMarshal.h"

namespace {

enum class OnEmpty {
    Raises,      // jsoncpp's logic error
    Zero,        // zero values; the reply unchanged
    Keeps,       // outputs as they were; the reply unchanged
    AddsMembers  // zero values; the reply gains (null) members
};

using Keys = std::set<std::string>;

struct Row {
    std::string name;
    Keys written;
    OnEmpty onEmpty;
    Keys added;
    std::function<Json::Value()> write;
    std::function<bool(Json::Value &, bool fromSample)> read;  // true when the values are as expected
};

template <typename... T>
struct Pair {
    std::function<bool(T &..., Json::Value &)> write;
    std::function<bool(Json::Value &, T &...)> read;
};

// sample is what the writer writes; zero what a reader makes of sample outputs from {}.
template <typename... T>
Row MakeRow(const char *name, Keys written, OnEmpty onEmpty, Pair<T...> fns, std::tuple<T...> sample,
            std::tuple<T...> zero = {}, Keys added = {})
{
    auto toJson = [fns](std::tuple<T...> values) {
        Json::Value out(Json::objectValue);
        std::apply([&](T &...v) { fns.write(v..., out); }, values);
        return out;
    };
    auto read = [=](Json::Value &in, bool fromSample) {
        // Start from other values, so that a reader that writes nothing is seen.
        std::tuple<T...> got = fromSample ? std::tuple<T...>{} : sample;
        std::apply([&](T &...v) { fns.read(in, v...); }, got);
        const bool keeps = !fromSample && onEmpty == OnEmpty::Keeps;
        return toJson(got) == toJson(fromSample || keeps ? sample : zero);
    };
    return Row{name, written, onEmpty, added.empty() ? written : added, [=] { return toJson(sample); }, read};
}

#define WRAPPERS(W, R) {FCMarshal::W, FCMarshal::R}

using E = eRemoteContentActivity;
using S = std::string;
using UL = unsigned long;
using ULL = unsigned long long;
using Nav = FCRFNetworkChannelAPI::ENavigationMode;
using Act = FCMBRNetworkChannelAPI::EActivityID;
using Query = FCMBRNetworkChannelAPI::EMBRNetworkChannelQuery;
using Fav = FCMBRNetworkChannel::EFavorite;
using Logo = FCVirtualChannelsAPI::EChannelLogoSize;
using Player = FCVirtualChannelsAPI::EPlayerType;
using LogoType = FCVirtualChannelsAPI::EProgramLogoType;
using Acr = FIACRSupportAPI::AcrVerified;
using Ids = std::vector<std::string>;
using ProgramMap = std::map<std::string, std::vector<FCRemoteProgram>>;

FCRemoteProgram Program(const std::string &title, unsigned long start)
{
    FCRemoteProgram p;
    p.m_programSourceId = "src";
    p.m_title = title;
    p.m_utcStartTime = start;
    p.m_genres = {"g1", "g2"};
    return p;
}

template <typename T, typename... Setters>
T With(Setters... setters)
{
    T value;
    (setters(value), ...);
    return value;
}

FCFilterCriteria Filter(const std::string &ids)
{
    return With<FCFilterCriteria>([&](FCFilterCriteria &f) { f.m_genreIdList = ids; });
}

FCMBRNetworkChannel MbrChannel()
{
    return With<FCMBRNetworkChannel>([](FCMBRNetworkChannel &c) {
        c.SetMajor(11);
        c.SetFavorite(FCMBRNetworkChannel::FAVORITE_2, true);
    });
}

FCMBRNetworkProgram MbrProgram(unsigned long start)
{
    return With<FCMBRNetworkProgram>([=](FCMBRNetworkProgram &p) {
        std::string id = "p" + std::to_string(start);
        p.SetStartTime(start);
        p.SetProgramID(id);
    });
}

const Keys kProgramKeys = {"activityID", "program source id", "channel name", "channel number", "program id",
                           "lang", "start time", "utc start time", "duration", "title", "cert flag", "genre array",
                           "poster url", "poster type", "poster overlay", "poster index", "short desc", "desc",
                           "series", "EndTime", "IsRF"};
const Keys kChannelKeys = {"activityID", "str_program_source_id", "str_channel_name", "str_channel_number",
                           "str_alias", "str_major", "str_minor", "str_onid", "str_tsid", "str_sid", "str_frequency",
                           "str_ptc", "str_icon_url", "str_url_index", "str_dtv", "embed", "str_digital_flag",
                           "str_qam_flag", "genre id", "gere name", "ac_rank"};

Keys WithGenreNameReadKey()
{
    Keys keys = kChannelKeys;
    keys.erase("gere name");
    keys.insert("genre name");
    return keys;
}

const std::vector<Row> &Table()
{
    using O = OnEmpty;
    static const std::vector<Row> rows = {
        // The non-const member operator: {} reads zero and gains null members.
        MakeRow<bool>("IsFirstEntry", {"IsFirstEntry"}, O::AddsMembers, WRAPPERS(IsFirstEntryToJson, JsonToIsFirstEntry), {true}),
        MakeRow<bool>("IsInstantOn", {"IsInstantOn"}, O::AddsMembers, WRAPPERS(IsInstantOnToJson, JsonToIsInstantOn), {true}),
        MakeRow<S, S>("CountryAndLang", {"country", "language"}, O::AddsMembers, WRAPPERS(CountryAndLangToJson, JsonToCountryAndLang), {"KR", "ko"}),
        MakeRow<ESource, int>("TVSourceAndTVMode", {"in_source", "in_tvmode"}, O::AddsMembers,
            {[](ESource &s, int &m, Json::Value &o) { return FCMarshal::TVSourceAndTVModeToJson(s, m, o); },
             [](Json::Value &i, ESource &s, int &m) { return FCMarshal::JsonToTVSourceAndTVMode(i, s, m); }}, {SOURCE_CATV, 4}),
        MakeRow<ESource, int, int>("TVSourceAndTVMode/3", {"in_source", "in_antennaMode", "in_serviceMode"}, O::AddsMembers,
            {[](ESource &s, int &a, int &m, Json::Value &o) { return FCMarshal::TVSourceAndTVModeToJson(s, a, m, o); },
             [](Json::Value &i, ESource &s, int &a, int &m) { return FCMarshal::JsonToTVSourceAndTVMode(i, s, a, m); }}, {SOURCE_ATV, 2, 3}),
        MakeRow<E>("activityID", {"activityID"}, O::AddsMembers, WRAPPERS(activityIDToJson, JsonToactivityID), {E(1)}),
        MakeRow<E, S, UL>("ProgramSourceIDAndUtcCurrentTime", {"activityID", "program source id", "utc current time"}, O::AddsMembers,
            WRAPPERS(ProgramSourceIDAndUtcCurrentTimeToJson, JsonToProgramSourceIdAndUtcCurrentTime), {E(1), "s1", 1700000000UL}),
        MakeRow<E, UL>("UtcCurrentTime", {"activityID", "utc_current_time"}, O::AddsMembers, WRAPPERS(UtcCurrentTimeToJson, JsonToUtcCurrentTime), {E(1), 17UL}),
        MakeRow<UL>("UtcStartTime", {"utc_start_time"}, O::AddsMembers, WRAPPERS(UtcStartTimeToJson, JsonToUtcStartTime), {1700000000UL}),
        MakeRow<UL>("UtcEndTime", {"utc_end_time"}, O::AddsMembers, WRAPPERS(UtcEndTimeToJson, JsonToUtcEndTime), {1700003600UL}),
        MakeRow<E, S, UL>("MBRChannelAndUTCCurrentTime", {"activityID", "mbr ch number", "utc current time"}, O::AddsMembers,
            WRAPPERS(MBRChannelAndUTCCurrentTimeToJson, JsonToMBRChannelAndUTCCurrentTime), {E(1), "5-1", 9UL}),
        MakeRow<S>("SearchString", {"search string"}, O::AddsMembers, WRAPPERS(SearchStringToJson, JsonToSearchString), {"news"}),
        MakeRow<E, Ids, int, int, FCFilterCriteria>("SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteria",
            {"activityID", "sourceIDArray", "utc start time", "duration", "genre id list"}, O::AddsMembers,
            WRAPPERS(SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson, JsonToSourceIDLstAndUtcStartTimeAndDurationAndFCFilterCriteria),
            {E(1), {"a", "b"}, 1000, 60, Filter("1,2")}, {E(0), {"a", "b"}, 0, 0, Filter("")},
            {"activityID", "utc start time", "duration", "genre id list"}),
        MakeRow<E, Ids, UL, int>("SourceIDListAndUtcStartTimeAndDuration", {"activityID", "sourceIDArray", "utc_starttime", "duration"},
            O::AddsMembers, WRAPPERS(SourceIDListAndUtcStartTimeAndDurationToJson, JsonToSourceIDListAndUtcStartTimeAndDuration),
            {E(1), {"a"}, 1000UL, 60}, {E(0), {"a"}, 0UL, 0}, {"activityID", "utc_starttime", "duration"}),
        MakeRow<E, S, UL, int, FCFilterCriteria>("GetRecommendationOnNow",
            {"activityID", "current_watching_program_source_id", "utc_currenttime", "number_of_recommendation", "genre id list"},
            O::AddsMembers, WRAPPERS(MarshalingForGetRecommendationOnNow, UnmarshalingForGetRecommendationOnNow),
            {E(1), "cur", 1000UL, 5, Filter("9")}),

        // The const member operator: {} reads zero and stays {}.
        MakeRow<S>("ChannelCRC", {"crc"}, O::Zero, WRAPPERS(ChannelCRCToJson, JsonToChannelCRC), {"abcd"}),
        MakeRow<S>("Str", {"str"}, O::Zero, {[](S &s, Json::Value &o) { o["str"] = s; return true; }, FCMarshal::JsonToStr}, {"v1.2"}),
        MakeRow<EDownloadLocation>("EDownloadLocation", {"location"}, O::Zero, WRAPPERS(EDownloadLocationToJson, JsonToEDownloadLocation), {DOWNLOAD_LOCATION_STORAGE}),
        MakeRow<int>("Id", {"id"}, O::Zero, WRAPPERS(IdToJson, JsonToId), {42}),
        MakeRow<int>("Int", {"ret"}, O::Zero, {FCMarshal::IntToJson, [](Json::Value &i, int &v) { return FCMarshal::JsonToInt(i, v); }}, {7}),
        MakeRow<eTVLumeWebAppVisible>("eTVLumeWebAppVisible", {"show_webapp"}, O::Zero, WRAPPERS(eTVLumeWebAppVisibleToJson, JsonToeTVLumeWebAppVisible), {TVLUME_WEBAPP_SHOW}),
        MakeRow<unsigned int>("Sec", {"sec"}, O::Zero, WRAPPERS(SecToJson, JsonToSec), {30u}),
        MakeRow<bool>("Flag", {"flag"}, O::Zero, WRAPPERS(FlagToJson, JsonToFlag), {true}),
        MakeRow<Acr>("AcrVerified", {"AcrVerified"}, O::Zero, WRAPPERS(AcrVerifiedToJson, JsonToAcrVerified), {FIACRSupportAPI::ACR_VERIFIED}),
        MakeRow<EDataServiceType>("DataServiceType", {"dataType"}, O::Zero,
            {[](EDataServiceType &t, Json::Value &o) { return FCMarshal::DataServiceTypeToJson(t, o); },
             [](Json::Value &i, EDataServiceType &t) { return FCMarshal::JsonToDataServiceType(i, t); }}, {DATA_SERVICE_TYPE_AOC}),

        // get() with "" as default: a missing number raises.
        MakeRow<Nav>("NavigationMode", {"navigation mode"}, O::Raises, WRAPPERS(NavigationModeToJson, JsonToNavigationMode), {Nav(1)}),
        MakeRow<int>("Count", {"count"}, O::Raises, WRAPPERS(CountToJson, JsonToCount), {12}),
        MakeRow<ESource>("Source", {"source"}, O::Raises,
            {[](ESource &s, Json::Value &o) { return FCMarshal::SourceToJson(s, o); }, FCMarshal::JsonToSource}, {SOURCE_DTV}),
        MakeRow<Act>("EactivityID", {"activityID"}, O::Raises, WRAPPERS(EactivityIDToJson, JsonToEactivityID), {Act(4)}),
        MakeRow<Query>("QueryType", {"query type"}, O::Raises, WRAPPERS(QueryTypeToJson, JsonToQueryType), {Query(2)}),
        MakeRow<UL>("CurrentTime", {"current time"}, O::Raises, WRAPPERS(CurrentTimeToJson, JsonToCurrentTime), {1700000000UL}),
        MakeRow<int, int>("MajorMinor", {"major", "minor"}, O::Raises, WRAPPERS(MajorMinorToJson, JsonToMajorMinor), {11, 3}),
        MakeRow<Fav>("EFavorite", {"favorite"}, O::Raises, WRAPPERS(EFavoriteToJson, JsonToEFavorite), {Fav(3)}),
        MakeRow<UL>("Positon", {"position"}, O::Raises, WRAPPERS(PositonToJson, JsonToPositon), {95UL}),

        // get() with 0 as default.
        MakeRow<unsigned int>("StartTime", {"start_time"}, O::Zero, WRAPPERS(StartTimeToJson, JsonToStartTime), {1700000000u}),
        MakeRow<unsigned int>("Duration", {"duration"}, O::Zero, WRAPPERS(DurationToJson, JsonToDuration), {3600u}),
        MakeRow<EProgramIndicator>("EProgramIndicator", {"program_indicator"}, O::Zero, WRAPPERS(EProgramIndicatorToJson, JsonToEProgramIndicator), {PROGRAM_INDICATOR_NEXT}),
        MakeRow<Logo>("LogoSize", {"logoSize"}, O::Zero, WRAPPERS(LogoSizeToJson, JsonToLogoSize), {Logo(2)}),
        MakeRow<Player>("PlayerType", {"playerType"}, O::Zero, WRAPPERS(PlayerTypeToJson, JsonToPlayerType), {Player(1)}),
        MakeRow<unsigned short>("PGNum", {"pgNum"}, O::Zero, WRAPPERS(PGNumToJson, JsonToPGNum), {513}),
        MakeRow<LogoType>("ProgramLogoType", {"programLogoType"}, O::Zero, WRAPPERS(ProgramLogoTypeToJson, JsonToProgramLogoType), {LogoType(2)}),
        MakeRow<RatingInfo>("RatingInfo", {"rating", "rating_system", "vsld"}, O::Zero, WRAPPERS(RatingInfoToJson, JsonToRatingInfo), {RatingInfo{2, 15, 1}}),

        // get() with "" as default, read as text.
        MakeRow<S>("Genre", {"genre"}, O::Zero, WRAPPERS(GenreToJson, JsonToGenre), {"drama"}),
        MakeRow<S>("HeadEndID", {"headend id"}, O::Zero, WRAPPERS(HeadEndIDToJson, JsonToHeadEndID), {"HE1"}),
        MakeRow<S>("ZipCode", {"zip code"}, O::Zero, WRAPPERS(ZipCodeToJson, JsonToZipCode), {"10001"}),
        MakeRow<S>("DeviceType", {"device type"}, O::Zero, WRAPPERS(DeviceTypeToJson, JsonToDeviceType), {"tv"}),
        MakeRow<S>("Location", {"location"}, O::Zero, WRAPPERS(LocationToJson, JsonToLocation), {"NY"}),
        MakeRow<S>("ChannelID", {"channelID"}, O::Zero, WRAPPERS(ChannelIDToJson, JsonToChannelID), {"c9"}),
        MakeRow<S, S>("ChannelIdMajor", {"channel id", "major"}, O::Zero, WRAPPERS(ChannelIdMajorToJson, JsonToChannelIdMajor), {"c9", "11"}),
        MakeRow<S>("ChannelLogo", {"channelLogo"}, O::Zero, WRAPPERS(ChannelLogoToJson, JsonToChannelLogo), {"/l.png"}),
        MakeRow<S>("ProgramLogo", {"programLogo"}, O::Zero, WRAPPERS(ProgramLogoToJson, JsonToProgramLogo), {"/p.png"}),
        MakeRow<S>("OnTvProviderId", {"onTvProviderId"}, O::Zero, WRAPPERS(OnTvProviderIdToJson, JsonToOnTvProviderId), {"prov"}),
        MakeRow<S>("PKGId", {"pkgId"}, O::Zero, WRAPPERS(PKGIdToJson, JsonToPKGId), {"pkg"}),
        MakeRow<S>("ItemID", {"itemID"}, O::Zero, WRAPPERS(ItemIDToJson, JsonToItemID), {"item"}),
        MakeRow<S>("OnTvServiceId", {"onTvServiceId"}, O::Zero, WRAPPERS(OnTvServiceIdToJson, JsonToOnTvServiceId), {"svc"}),
        MakeRow<S>("Url", {"url"}, O::Zero, WRAPPERS(UrlToJson, JsonToUrl), {"http://x"}),
        MakeRow<S>("File", {"file"}, O::Zero, WRAPPERS(FileToJson, JsonToFile), {"/tmp/f"}),
        MakeRow<S, S>("APPIDAndURL", {"appID", "url"}, O::Zero, WRAPPERS(APPIDAndURLToJson, JsonToAPPIDAndURL), {"app", "http://x"}),
        MakeRow<S>("StrRating", {"rating"}, O::Zero, WRAPPERS(StrRatingToJson, JsonToStrRating), {"TV-14"}),
        MakeRow<S>("ProgramSourceID_ACR", {"programSourceID"}, O::Zero, WRAPPERS(ProgramSourceIDToJson_ACR, JsonToProgramSourceID_ACR), {"ps"}),
        MakeRow<S>("ProgramID_ACR", {"programID"}, O::Zero, WRAPPERS(ProgramIDToJson_ACR, JsonToProgramID_ACR), {"pid"}),
        MakeRow<E, S>("ProgramSourceID", {"activityID", "program source id"}, O::Zero, WRAPPERS(ProgramSourceIDToJson, JsonToProgramSourceID), {E(1), "s"}),
        MakeRow<int, S, S, S>("KPIInfo", {"KPIType", "EventName", "Category", "desc"}, O::Zero, WRAPPERS(KPIInfoToJson, JsonToKPIInfo),
            {1, "ev", "cat", "d"}, {-1, "", "", ""}),

        // 64-bit identifiers as decimal text.
        MakeRow<ULL>("TCServiceId", {"TCServiceId"}, O::Zero, WRAPPERS(TCServiceIdToJson, JsonToTCServiceId), {18446744073709551615ULL}),
        MakeRow<ULL>("VCServiceId", {"TCServiceId"}, O::Zero, WRAPPERS(VCServiceIdToJson, VCJsonToServiceId), {1234567890123ULL}),
        MakeRow<long>("ImageDownloadId", {"imageDownloadId"}, O::Zero, WRAPPERS(ImageDownloadIdToJson, JsonToImageDownloadId), {-77L}),

        // Records: the record's own form.
        MakeRow<FCRemoteMSOConfig>("FCRemoteMSOConfig", {"config"}, O::AddsMembers, WRAPPERS(FCRmoteMSOConfigToJson, JsonToFCRemoteMSOConfig),
            {With<FCRemoteMSOConfig>([](FCRemoteMSOConfig &c) { c.m_headend = "HE"; c.m_source = 2; })},
            {With<FCRemoteMSOConfig>([](FCRemoteMSOConfig &c) { c.m_source = c.m_antennaMode = c.m_serviceMode = 0; })}),
        MakeRow<CKelvoResponse_CertRule>("CertRule", {"out_cert_rule"}, O::AddsMembers, WRAPPERS(CertRuleToJson, JsonToCertRule),
            {With<CKelvoResponse_CertRule>([](CKelvoResponse_CertRule &r) { r.m_strBarRatio = "16:9"; })}),
        MakeRow<CKelvoResponse_VODProviders>("VODProvider", {"out_vod_providers"}, O::Keeps, WRAPPERS(VODProviderToJson, JsonToVODProvider),
            {With<CKelvoResponse_VODProviders>([](CKelvoResponse_VODProviders &p) { p.m_providers["k"].m_logo = "l"; })}),
        MakeRow<FCRemoteProgram>("FCRemoteProgram", kProgramKeys, O::Zero, WRAPPERS(FCRemoteProgramToJson, JsonToFCRemoteProgram),
            {Program("T", 1000)},
            {With<FCRemoteProgram>([](FCRemoteProgram &p) { p.m_activityID = REMOTE_CONTENT_ACTIVITY_INVALID; p.m_genres = {"g1", "g2"}; })}),
        MakeRow<FCRemoteChannel>("FCRemoteChannel", kChannelKeys, O::AddsMembers, WRAPPERS(FCRemoteChannelToJson, JsonToFCRemoteChannel),
            {With<FCRemoteChannel>([](FCRemoteChannel &c) { c.m_major = "7"; c.m_embed = 2; })}, {}, WithGenreNameReadKey()),
        MakeRow<FCMBRNetworkProgram>("MBRProgram", {"m_startTime", "m_duration", "m_title", "m_channelID", "m_programID"}, O::Raises,
            WRAPPERS(MBRProgramToJson, JsonToMBRProgram), {MbrProgram(5)}),
        MakeRow<FCMBRNetworkChannel>("MBRNetworkChannel", {"m_activityID", "m_acRank", "m_str_icon_url", "m_str_url_index", "m_major",
            "m_originMajor", "m_minor", "m_name", "m_originName", "m_channelID", "m_remembered", "m_bDigital", "bit set"}, O::Raises,
            WRAPPERS(MBRNetworkChannelToJson, JsonToMBRNetworkChannel), {MbrChannel()}),

        // Lists and keyed maps: reading {} appends nothing and adds nothing.
        MakeRow<std::vector<FCRemoteChannel>>("ChannelList", {"channel_array"}, O::Keeps, WRAPPERS(ChannelListToJson, JsonToChannelList),
            {{FCRemoteChannel(), With<FCRemoteChannel>([](FCRemoteChannel &c) { c.m_sid = "1"; })}}),
        MakeRow<std::vector<FCGenreInfo>>("GenreList", {"array_genre"}, O::Keeps, WRAPPERS(GenreListToJson, JsonToGenreList),
            {{With<FCGenreInfo>([](FCGenreInfo &g) { g.m_imgIndex = "3"; })}}),
        MakeRow<Ids>("SourceIDList", {"sourceIDArray"}, O::Keeps, WRAPPERS(SourceIDListToJson, JsonToSourceIDList), {{"a", "b"}}),
        MakeRow<std::list<ULL>>("ServiceIDList", {"service_list"}, O::Keeps, WRAPPERS(ServiceIDListToJson, JsonToServiceIDList), {{1ULL, 1ULL << 40}}),
        MakeRow<FCRFNetworkChannelTable>("RFNetworkChannelTable", {"service list"}, O::Keeps, WRAPPERS(RFNetworkChannelTableToJson, JsonToRFNetworkChannelTable),
            {With<FCRFNetworkChannelTable>([](FCRFNetworkChannelTable &t) { t.m_rfNetworkChannelList = {99, 100}; })}),
        MakeRow<FCMBRNetworkChannelTable>("MBRNetworkChannelTable", {"MBR channel table"}, O::Keeps, WRAPPERS(MBRNetworkChannelTableToJson, JsonToMBRNetworkChannelTable),
            {With<FCMBRNetworkChannelTable>([](FCMBRNetworkChannelTable &t) { t.AppendNetworkChannel(MbrChannel()); })}),
        MakeRow<FCMBRNetworkProgramTable>("MBRProgramTable", {"mbrProgramTable"}, O::Keeps, WRAPPERS(MBRProgramTableToJson, JsonToMBRProgramTable),
            {With<FCMBRNetworkProgramTable>([](FCMBRNetworkProgramTable &t) { auto a = MbrProgram(20), b = MbrProgram(10); t.AppendNetworkProgram(a); t.AppendNetworkProgram(b); })}),
        MakeRow<std::map<unsigned int, FCRemoteProgram>>("MetaProgramMap", {"meta_program_map"}, O::Keeps, WRAPPERS(MetaProgramMapToJson, JsonToMetaProgramMap),
            {{{3, Program("c", 3)}, {1, Program("a", 1)}}}),
        MakeRow<std::map<std::string, FCRemoteChannelKey>>("ProgramSourceMap", {"out_tunable_program_source_id_map"}, O::Keeps,
            WRAPPERS(ProgramSourceMapToJson, JsonToProgramSourceMap), {{{"src", With<FCRemoteChannelKey>([](FCRemoteChannelKey &k) { k.m_sid = "101"; })}}}),
        MakeRow<std::map<std::string, int>>("CountMap", {"channel count map"}, O::Keeps, WRAPPERS(CountMapToJson, JsonToCountMap), {{{"news", 4}, {"drama", 0}}}),
        MakeRow<ProgramMap>("ProgramMap", {"out_mapProgramWithSourceID"}, O::Keeps, WRAPPERS(ProgramMapToJson, JsonToProgramMap),
            {ProgramMap{{"s1", {Program("x", 1), Program("y", 2)}}, {"s2", {}}}}),
        MakeRow<std::vector<RatingInfo>>("RatingList", {"ratings"}, O::Keeps, WRAPPERS(RatingListToJson, JsonToRatingList), {{{1, 2, 3}, {4, 5, 6}}}),
    };
    return rows;
}

Keys Names(const Json::Value &value)
{
    const auto names = value.getMemberNames();
    return Keys(names.begin(), names.end());
}

}  // namespace

TEST(Marshal, EveryWrapperWritesItsMembersReadsThemBackAndTreatsAnEmptyReplyAsItsShapeSays)
{
    for (const Row &row : Table()) {
        SCOPED_TRACE(row.name);
        Json::Value written = row.write();
        EXPECT_EQ(Names(written), row.written);
        EXPECT_TRUE(row.read(written, true));

        Json::Value empty(Json::objectValue);
        if (row.onEmpty == OnEmpty::Raises) {
            EXPECT_THROW(row.read(empty, false), Json::LogicError);
            continue;
        }
        EXPECT_TRUE(row.read(empty, false));
        EXPECT_EQ(Names(empty), row.onEmpty == OnEmpty::AddsMembers ? row.added : Keys{});
    }
}

TEST(Marshal, WireTypesAndExistingMembers)
{
    Json::Value out;
    out["keep"] = "me";
    FCMarshal::TCServiceIdToJson(18446744073709551615ULL, out);
    FCMarshal::PGNumToJson(static_cast<unsigned short>(7), out);
    FCMarshal::FlagToJson(true, out);
    FCMarshal::IdToJson(-3, out);
    EXPECT_EQ(out["keep"], "me");
    EXPECT_EQ(out["TCServiceId"], "18446744073709551615");
    EXPECT_EQ(out["pgNum"].type(), Json::uintValue);
    EXPECT_EQ(out["flag"].type(), Json::booleanValue);
    EXPECT_EQ(out["id"].type(), Json::intValue);

    Json::Value reply;
    reply["ret"] = 5;
    reply["dataType"] = 2;
    EXPECT_EQ(FCMarshal::JsonToInt(reply), 5);
    EXPECT_EQ(FCMarshal::JsonToDataServiceType(reply), 2);
}

TEST(Marshal, ContainersKeepKeyOrderAndMapReadersAssignPerKey)
{
    std::map<unsigned int, FCRemoteProgram> programs = {{30, Program("c", 30)}, {10, Program("a", 10)}};
    Json::Value out;
    FCMarshal::MetaProgramMapToJson(programs, out);
    ASSERT_EQ(out["meta_program_map"].size(), 2u);
    EXPECT_EQ(out["meta_program_map"][0]["key"], 10u);
    EXPECT_EQ(out["meta_program_map"][0]["title"], "a");

    out["meta_program_map"][1]["key"] = 10u;  // a later element with the same key replaces
    std::map<unsigned int, FCRemoteProgram> read = {{9, Program("kept", 9)}};
    FCMarshal::JsonToMetaProgramMap(out, read);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[10].m_title, "c");
    EXPECT_EQ(read[9].m_title, "kept");

    ProgramMap bySource = {{"s1", {Program("a", 1), Program("b", 2)}}, {"s2", {Program("c", 3)}}};
    ProgramMap reply = {{"s1", {Program("z", 9)}}};
    Json::Value replyJson;
    FCMarshal::ProgramMapToJson(reply, replyJson);
    FCMarshal::JsonToProgramMap(replyJson, bySource);
    ASSERT_EQ(bySource["s1"].size(), 1u);
    EXPECT_EQ(bySource["s1"][0].m_title, "z");
    EXPECT_EQ(bySource["s2"].size(), 1u);

    Ids ids = {"x"};
    Json::Value list;
    list["sourceIDArray"].append("y");
    FCMarshal::JsonToSourceIDList(list, ids);
    EXPECT_EQ(ids, (Ids{"x", "y"}));
}

TEST(Marshal, DecimalTextStopsAtTheFirstNonDigit)
{
    unsigned long long id = 5;
    Json::Value in;
    in["TCServiceId"] = "123abc";
    FCMarshal::VCJsonToServiceId(in, id);
    EXPECT_EQ(id, 123u);
    in["TCServiceId"] = "abc";
    FCMarshal::JsonToTCServiceId(in, id);
    EXPECT_EQ(id, 0u);
    long download = 1;
    in["imageDownloadId"] = "-12x";
    FCMarshal::JsonToImageDownloadId(in, download);
    EXPECT_EQ(download, -12);
}
