// Records and the marshal family. One table holds every wrapper pair: the members its writer puts
// on the wire, that its reader gets back what the writer wrote (compared as the writer writes it
// again), and what its reader makes of a reply without the members ({}).
#include <functional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "FCJsonHelper.h"
#include "FCMarshal.h"
#include "FakeDlog.h"
#include "dlog.h"

namespace {

enum class OnEmpty {
    Raises,      // jsoncpp's logic error
    Zero,        // zero values; the reply unchanged
    Keeps,       // outputs as they were; the reply unchanged
    AddsMembers  // zero values; the reply gains (null) members
};

using Keys = std::set<std::string>;

// read: true when the values are as expected.
struct Row {
    std::string name;
    Keys written;
    OnEmpty onEmpty;
    Keys added;
    std::function<Json::Value()> write;
    std::function<bool(Json::Value &, bool fromSample)> read;
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

#define WRAPPERS(W, R)                                                                                                 \
    {                                                                                                                  \
        FCMarshal::W, FCMarshal::R                                                                                     \
    }

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

// A record with the fields the setter gives it.
template <typename T, typename Setter>
T With(Setter setter)
{
    T value;
    setter(value);
    return value;
}

const char *const kProgram = R"({"activityID":1,"program source id":"src-1","channel name":"News 24",
    "channel number":"7-1","program id":"prog-9","lang":"eng","start time":"20:00","utc start time":1795291200,
    "duration":3600,"title":"Evening \"News\"","cert flag":"TV-G","genre array":["a","b"],"poster url":"http://p",
    "poster type":"wide","poster overlay":"ov","poster index":"2","short desc":"short","desc":"long description",
    "series":"S1","EndTime":1795294800,"IsRF":true})";
// The genre name is read from "genre name" but written as "gere name".
const char *const kChannel = R"({"activityID":1,"str_program_source_id":"ps","str_channel_name":"cn",
    "str_channel_number":"7-1","str_alias":"al","str_major":"7","str_minor":"1","str_onid":"on","str_tsid":"ts",
    "str_sid":"si","str_frequency":"fr","str_ptc":"36","str_icon_url":"iu","str_url_index":"ui","str_dtv":"dt",
    "embed":3,"str_digital_flag":"df","str_qam_flag":"qf","genre id":"gi","gere name":"%s","ac_rank":"ar"})";

Json::Value Parse(const std::string &text)
{
    Json::Value value;
    EXPECT_TRUE(FCJsonHelper::ParseToJson(text, value));
    return value;
}

std::string WithGenreName(const char *name)
{
    return std::string(kChannel).replace(std::string(kChannel).find("%s"), 2, name);
}
FCRemoteProgram FullProgram()
{
    return With<FCRemoteProgram>([](FCRemoteProgram &p) { FCRemoteProgram::FromJson(Parse(kProgram), p); });
}
FCRemoteChannel FullChannel()
{
    return With<FCRemoteChannel>([](FCRemoteChannel &c) {
        Json::Value j = Parse(WithGenreName("lost"));
        FCRemoteChannel::FromJson(j, c);
    });
}
FCFilterCriteria Filter(const std::string &ids)
{
    return With<FCFilterCriteria>([&](FCFilterCriteria &f) { f.m_genreIdList = ids; });
}
FCRemoteProgram Program(const std::string &title, unsigned long start)
{
    return With<FCRemoteProgram>([&](FCRemoteProgram &p) {
        p.m_title = title, p.m_utcStartTime = start, p.m_genres = {"g1", "g2"};
    });
}

FCMBRNetworkChannel MakeChannel(int major, int minor, int id = -1)
{
    return With<FCMBRNetworkChannel>([=](FCMBRNetworkChannel &c) mutable {
        c.SetMajor(major), c.SetOriginMajor(major), c.SetMinor(minor), c.SetChannelID(id);
        c.SetFavorite(FCMBRNetworkChannel::FAVORITE_2, true);
    });
}

FCMBRNetworkProgram MakeProgram(unsigned long start, int duration, std::string title)
{
    return With<FCMBRNetworkProgram>([=](FCMBRNetworkProgram &p) mutable {
        std::string id = "p" + title;
        p.SetStartTime(start), p.SetDuration(duration), p.SetTitle(title), p.SetProgramID(id);
    });
}

Keys Names(const Json::Value &value)
{
    const auto names = value.getMemberNames();
    return Keys(names.begin(), names.end());
}

// Read from "genre name", written as "gere name".
Keys ChannelReadKeys()
{
    Keys keys = Names(Parse(WithGenreName("")));
    keys.erase("gere name");
    return keys.insert("genre name"), keys;
}

const std::vector<Row> &Table()
{
    using O = OnEmpty;
    static const std::vector<Row> rows = {
        // The non-const member operator: {} reads zero and gains null members.
        MakeRow<bool>("IsFirstEntry", {"IsFirstEntry"}, O::AddsMembers,
                      WRAPPERS(IsFirstEntryToJson, JsonToIsFirstEntry), {true}),
        MakeRow<bool>("IsInstantOn", {"IsInstantOn"}, O::AddsMembers, WRAPPERS(IsInstantOnToJson, JsonToIsInstantOn),
                      {true}),
        MakeRow<S, S>("CountryAndLang", {"country", "language"}, O::AddsMembers,
                      WRAPPERS(CountryAndLangToJson, JsonToCountryAndLang), {"KR", "ko"}),
        MakeRow<ESource, int>(
            "TVSourceAndTVMode", {"in_source", "in_tvmode"}, O::AddsMembers,
            {[](ESource &s, int &m, Json::Value &o) { return FCMarshal::TVSourceAndTVModeToJson(s, m, o); },
             [](Json::Value &i, ESource &s, int &m) { return FCMarshal::JsonToTVSourceAndTVMode(i, s, m); }},
            {SOURCE_CATV, 4}),
        MakeRow<ESource, int, int>(
            "TVSourceAndTVMode/3", {"in_source", "in_antennaMode", "in_serviceMode"}, O::AddsMembers,
            {[](ESource &s, int &a, int &m, Json::Value &o) { return FCMarshal::TVSourceAndTVModeToJson(s, a, m, o); },
             [](Json::Value &i, ESource &s, int &a, int &m) { return FCMarshal::JsonToTVSourceAndTVMode(i, s, a, m); }},
            {SOURCE_ATV, 2, 3}),
        MakeRow<E>("activityID", {"activityID"}, O::AddsMembers, WRAPPERS(activityIDToJson, JsonToactivityID), {E(1)}),
        MakeRow<E, S, UL>("ProgramSourceIDAndUtcCurrentTime", {"activityID", "program source id", "utc current time"},
                          O::AddsMembers,
                          WRAPPERS(ProgramSourceIDAndUtcCurrentTimeToJson, JsonToProgramSourceIdAndUtcCurrentTime),
                          {E(1), "s1", 1700000000UL}),
        MakeRow<E, UL>("UtcCurrentTime", {"activityID", "utc_current_time"}, O::AddsMembers,
                       WRAPPERS(UtcCurrentTimeToJson, JsonToUtcCurrentTime), {E(1), 17UL}),
        MakeRow<UL>("UtcStartTime", {"utc_start_time"}, O::AddsMembers,
                    WRAPPERS(UtcStartTimeToJson, JsonToUtcStartTime), {1700000000UL}),
        MakeRow<UL>("UtcEndTime", {"utc_end_time"}, O::AddsMembers, WRAPPERS(UtcEndTimeToJson, JsonToUtcEndTime),
                    {1700003600UL}),
        MakeRow<E, S, UL>(
            "MBRChannelAndUTCCurrentTime", {"activityID", "mbr ch number", "utc current time"}, O::AddsMembers,
            WRAPPERS(MBRChannelAndUTCCurrentTimeToJson, JsonToMBRChannelAndUTCCurrentTime), {E(1), "5-1", 9UL}),
        MakeRow<S>("SearchString", {"search string"}, O::AddsMembers, WRAPPERS(SearchStringToJson, JsonToSearchString),
                   {"news"}),
        MakeRow<E, Ids, int, int, FCFilterCriteria>(
            "SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteria",
            {"activityID", "sourceIDArray", "utc start time", "duration", "genre id list"}, O::AddsMembers,
            WRAPPERS(SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson,
                     JsonToSourceIDLstAndUtcStartTimeAndDurationAndFCFilterCriteria),
            {E(1), {"a", "b"}, 1000, 60, Filter("1,2")}, {E(0), {"a", "b"}, 0, 0, Filter("")},
            {"activityID", "utc start time", "duration", "genre id list"}),
        MakeRow<E, Ids, UL, int>(
            "SourceIDListAndUtcStartTimeAndDuration", {"activityID", "sourceIDArray", "utc_starttime", "duration"},
            O::AddsMembers,
            WRAPPERS(SourceIDListAndUtcStartTimeAndDurationToJson, JsonToSourceIDListAndUtcStartTimeAndDuration),
            {E(1), {"a"}, 1000UL, 60}, {E(0), {"a"}, 0UL, 0}, {"activityID", "utc_starttime", "duration"}),
        MakeRow<E, S, UL, int, FCFilterCriteria>(
            "GetRecommendationOnNow",
            {"activityID", "current_watching_program_source_id", "utc_currenttime", "number_of_recommendation",
             "genre id list"},
            O::AddsMembers, WRAPPERS(MarshalingForGetRecommendationOnNow, UnmarshalingForGetRecommendationOnNow),
            {E(1), "cur", 1000UL, 5, Filter("9")}),

        // The const member operator: {} reads zero and stays {}.
        MakeRow<S>("ChannelCRC", {"crc"}, O::Zero, WRAPPERS(ChannelCRCToJson, JsonToChannelCRC), {"abcd"}),
        MakeRow<S>("Str", {"str"}, O::Zero,
                   {[](S &s, Json::Value &o) {
                        o["str"] = s;
                        return true;
                    },
                    FCMarshal::JsonToStr},
                   {"v1.2"}),
        MakeRow<EDownloadLocation>("EDownloadLocation", {"location"}, O::Zero,
                                   WRAPPERS(EDownloadLocationToJson, JsonToEDownloadLocation),
                                   {DOWNLOAD_LOCATION_STORAGE}),
        MakeRow<int>("Id", {"id"}, O::Zero, WRAPPERS(IdToJson, JsonToId), {42}),
        MakeRow<int>("Int", {"ret"}, O::Zero,
                     {FCMarshal::IntToJson, [](Json::Value &i, int &v) { return FCMarshal::JsonToInt(i, v); }}, {7}),
        MakeRow<eTVLumeWebAppVisible>("eTVLumeWebAppVisible", {"show_webapp"}, O::Zero,
                                      WRAPPERS(eTVLumeWebAppVisibleToJson, JsonToeTVLumeWebAppVisible),
                                      {TVLUME_WEBAPP_SHOW}),
        MakeRow<unsigned int>("Sec", {"sec"}, O::Zero, WRAPPERS(SecToJson, JsonToSec), {30u}),
        MakeRow<bool>("Flag", {"flag"}, O::Zero, WRAPPERS(FlagToJson, JsonToFlag), {true}),
        MakeRow<Acr>("AcrVerified", {"AcrVerified"}, O::Zero, WRAPPERS(AcrVerifiedToJson, JsonToAcrVerified),
                     {FIACRSupportAPI::ACR_VERIFIED}),
        MakeRow<EDataServiceType>(
            "DataServiceType", {"dataType"}, O::Zero,
            {[](EDataServiceType &t, Json::Value &o) { return FCMarshal::DataServiceTypeToJson(t, o); },
             [](Json::Value &i, EDataServiceType &t) { return FCMarshal::JsonToDataServiceType(i, t); }},
            {DATA_SERVICE_TYPE_AOC}),

        // get() with "" as default: a missing number raises.
        MakeRow<Nav>("NavigationMode", {"navigation mode"}, O::Raises,
                     WRAPPERS(NavigationModeToJson, JsonToNavigationMode), {Nav(1)}),
        MakeRow<int>("Count", {"count"}, O::Raises, WRAPPERS(CountToJson, JsonToCount), {12}),
        MakeRow<ESource>(
            "Source", {"source"}, O::Raises,
            {[](ESource &s, Json::Value &o) { return FCMarshal::SourceToJson(s, o); }, FCMarshal::JsonToSource},
            {SOURCE_DTV}),
        MakeRow<Act>("EactivityID", {"activityID"}, O::Raises, WRAPPERS(EactivityIDToJson, JsonToEactivityID),
                     {Act(4)}),
        MakeRow<Query>("QueryType", {"query type"}, O::Raises, WRAPPERS(QueryTypeToJson, JsonToQueryType), {Query(2)}),
        MakeRow<UL>("CurrentTime", {"current time"}, O::Raises, WRAPPERS(CurrentTimeToJson, JsonToCurrentTime),
                    {1700000000UL}),
        MakeRow<int, int>("MajorMinor", {"major", "minor"}, O::Raises, WRAPPERS(MajorMinorToJson, JsonToMajorMinor),
                          {11, 3}),
        MakeRow<Fav>("EFavorite", {"favorite"}, O::Raises, WRAPPERS(EFavoriteToJson, JsonToEFavorite), {Fav(3)}),
        MakeRow<UL>("Positon", {"position"}, O::Raises, WRAPPERS(PositonToJson, JsonToPositon), {95UL}),

        // get() with 0 as default.
        MakeRow<unsigned int>("StartTime", {"start_time"}, O::Zero, WRAPPERS(StartTimeToJson, JsonToStartTime),
                              {1700000000u}),
        MakeRow<unsigned int>("Duration", {"duration"}, O::Zero, WRAPPERS(DurationToJson, JsonToDuration), {3600u}),
        MakeRow<EProgramIndicator>("EProgramIndicator", {"program_indicator"}, O::Zero,
                                   WRAPPERS(EProgramIndicatorToJson, JsonToEProgramIndicator),
                                   {PROGRAM_INDICATOR_NEXT}),
        MakeRow<Logo>("LogoSize", {"logoSize"}, O::Zero, WRAPPERS(LogoSizeToJson, JsonToLogoSize), {Logo(2)}),
        MakeRow<Player>("PlayerType", {"playerType"}, O::Zero, WRAPPERS(PlayerTypeToJson, JsonToPlayerType),
                        {Player(1)}),
        MakeRow<unsigned short>("PGNum", {"pgNum"}, O::Zero, WRAPPERS(PGNumToJson, JsonToPGNum), {513}),
        MakeRow<LogoType>("ProgramLogoType", {"programLogoType"}, O::Zero,
                          WRAPPERS(ProgramLogoTypeToJson, JsonToProgramLogoType), {LogoType(2)}),
        MakeRow<RatingInfo>("RatingInfo", {"rating", "rating_system", "vsld"}, O::Zero,
                            WRAPPERS(RatingInfoToJson, JsonToRatingInfo), {RatingInfo{2, 15, 1}}),

        // get() with "" as default, read as text.
        MakeRow<S>("Genre", {"genre"}, O::Zero, WRAPPERS(GenreToJson, JsonToGenre), {"drama"}),
        MakeRow<S>("HeadEndID", {"headend id"}, O::Zero, WRAPPERS(HeadEndIDToJson, JsonToHeadEndID), {"HE1"}),
        MakeRow<S>("ZipCode", {"zip code"}, O::Zero, WRAPPERS(ZipCodeToJson, JsonToZipCode), {"10001"}),
        MakeRow<S>("DeviceType", {"device type"}, O::Zero, WRAPPERS(DeviceTypeToJson, JsonToDeviceType), {"tv"}),
        MakeRow<S>("Location", {"location"}, O::Zero, WRAPPERS(LocationToJson, JsonToLocation), {"NY"}),
        MakeRow<S>("ChannelID", {"channelID"}, O::Zero, WRAPPERS(ChannelIDToJson, JsonToChannelID), {"c9"}),
        MakeRow<S, S>("ChannelIdMajor", {"channel id", "major"}, O::Zero,
                      WRAPPERS(ChannelIdMajorToJson, JsonToChannelIdMajor), {"c9", "11"}),
        MakeRow<S>("ChannelLogo", {"channelLogo"}, O::Zero, WRAPPERS(ChannelLogoToJson, JsonToChannelLogo), {"/l.png"}),
        MakeRow<S>("ProgramLogo", {"programLogo"}, O::Zero, WRAPPERS(ProgramLogoToJson, JsonToProgramLogo), {"/p.png"}),
        MakeRow<S>("OnTvProviderId", {"onTvProviderId"}, O::Zero, WRAPPERS(OnTvProviderIdToJson, JsonToOnTvProviderId),
                   {"prov"}),
        MakeRow<S>("PKGId", {"pkgId"}, O::Zero, WRAPPERS(PKGIdToJson, JsonToPKGId), {"pkg"}),
        MakeRow<S>("ItemID", {"itemID"}, O::Zero, WRAPPERS(ItemIDToJson, JsonToItemID), {"item"}),
        MakeRow<S>("OnTvServiceId", {"onTvServiceId"}, O::Zero, WRAPPERS(OnTvServiceIdToJson, JsonToOnTvServiceId),
                   {"svc"}),
        MakeRow<S>("Url", {"url"}, O::Zero, WRAPPERS(UrlToJson, JsonToUrl), {"http://x"}),
        MakeRow<S>("File", {"file"}, O::Zero, WRAPPERS(FileToJson, JsonToFile), {"/tmp/f"}),
        MakeRow<S, S>("APPIDAndURL", {"appID", "url"}, O::Zero, WRAPPERS(APPIDAndURLToJson, JsonToAPPIDAndURL),
                      {"app", "http://x"}),
        MakeRow<S>("StrRating", {"rating"}, O::Zero, WRAPPERS(StrRatingToJson, JsonToStrRating), {"TV-14"}),
        MakeRow<S>("ProgramSourceID_ACR", {"programSourceID"}, O::Zero,
                   WRAPPERS(ProgramSourceIDToJson_ACR, JsonToProgramSourceID_ACR), {"ps"}),
        MakeRow<S>("ProgramID_ACR", {"programID"}, O::Zero, WRAPPERS(ProgramIDToJson_ACR, JsonToProgramID_ACR),
                   {"pid"}),
        MakeRow<E, S>("ProgramSourceID", {"activityID", "program source id"}, O::Zero,
                      WRAPPERS(ProgramSourceIDToJson, JsonToProgramSourceID), {E(1), "s"}),
        MakeRow<int, S, S, S>("KPIInfo", {"KPIType", "EventName", "Category", "desc"}, O::Zero,
                              WRAPPERS(KPIInfoToJson, JsonToKPIInfo), {1, "ev", "cat", "d"}, {-1, "", "", ""}),

        // 64-bit identifiers as decimal text.
        MakeRow<ULL>("TCServiceId", {"TCServiceId"}, O::Zero, WRAPPERS(TCServiceIdToJson, JsonToTCServiceId),
                     {18446744073709551615ULL}),
        MakeRow<ULL>("VCServiceId", {"TCServiceId"}, O::Zero, WRAPPERS(VCServiceIdToJson, VCJsonToServiceId),
                     {1234567890123ULL}),
        MakeRow<long>("ImageDownloadId", {"imageDownloadId"}, O::Zero,
                      WRAPPERS(ImageDownloadIdToJson, JsonToImageDownloadId), {-77L}),

        // Records: the record's own form.
        MakeRow<FCRemoteMSOConfig>("FCRemoteMSOConfig", {"config"}, O::AddsMembers,
                                   WRAPPERS(FCRmoteMSOConfigToJson, JsonToFCRemoteMSOConfig),
                                   {With<FCRemoteMSOConfig>([](FCRemoteMSOConfig &c) {
                                       c.m_headend = "HE";
                                       c.m_source = 2;
                                   })},
                                   {With<FCRemoteMSOConfig>([](FCRemoteMSOConfig &c) {
                                       c.m_source = c.m_antennaMode = c.m_serviceMode = 0;
                                   })}),
        MakeRow<CKelvoResponse_CertRule>(
            "CertRule", {"out_cert_rule"}, O::AddsMembers, WRAPPERS(CertRuleToJson, JsonToCertRule),
            {With<CKelvoResponse_CertRule>([](CKelvoResponse_CertRule &r) { r.m_strBarRatio = "16:9"; })}),
        MakeRow<CKelvoResponse_VODProviders>("VODProvider", {"out_vod_providers"}, O::Keeps,
                                             WRAPPERS(VODProviderToJson, JsonToVODProvider),
                                             {With<CKelvoResponse_VODProviders>([](CKelvoResponse_VODProviders &p) {
                                                 p.m_providers["k"].m_logo = "l";
                                             })}),
        MakeRow<FCRemoteProgram>("FCRemoteProgram", Names(Parse(kProgram)), O::Zero,
                                 WRAPPERS(FCRemoteProgramToJson, JsonToFCRemoteProgram), {FullProgram()},
                                 {With<FCRemoteProgram>([](FCRemoteProgram &p) {
                                     p.m_activityID = REMOTE_CONTENT_ACTIVITY_INVALID;
                                     p.m_genres = {"a", "b"};
                                 })}),
        MakeRow<FCRemoteChannel>("FCRemoteChannel", Names(Parse(WithGenreName(""))), O::AddsMembers,
                                 WRAPPERS(FCRemoteChannelToJson, JsonToFCRemoteChannel), {FullChannel()}, {},
                                 ChannelReadKeys()),
        MakeRow<FCMBRNetworkProgram>("MBRProgram",
                                     {"m_startTime", "m_duration", "m_title", "m_channelID", "m_programID"}, O::Raises,
                                     WRAPPERS(MBRProgramToJson, JsonToMBRProgram), {MakeProgram(5, 60, "t")}),
        MakeRow<FCMBRNetworkChannel>(
            "MBRNetworkChannel",
            {"m_activityID", "m_acRank", "m_str_icon_url", "m_str_url_index", "m_major", "m_originMajor", "m_minor",
             "m_name", "m_originName", "m_channelID", "m_remembered", "m_bDigital", "bit set"},
            O::Raises, WRAPPERS(MBRNetworkChannelToJson, JsonToMBRNetworkChannel), {MakeChannel(11, 3, 4)}),

        // Lists and keyed maps: reading {} appends nothing and adds nothing.
        MakeRow<std::vector<FCRemoteChannel>>(
            "ChannelList", {"channel_array"},
            O::Keeps, WRAPPERS(ChannelListToJson, JsonToChannelList),
            {{FCRemoteChannel(), With<FCRemoteChannel>([](FCRemoteChannel &c) { c.m_sid = "1"; })}}),
        MakeRow<std::vector<FCGenreInfo>>("GenreList", {"array_genre"}, O::Keeps,
                                          WRAPPERS(GenreListToJson, JsonToGenreList),
                                          {{With<FCGenreInfo>([](FCGenreInfo &g) { g.m_imgIndex = "3"; })}}),
        MakeRow<Ids>("SourceIDList", {"sourceIDArray"}, O::Keeps, WRAPPERS(SourceIDListToJson, JsonToSourceIDList),
                     {{"a", "b"}}),
        MakeRow<std::list<ULL>>("ServiceIDList", {"service_list"}, O::Keeps,
                                WRAPPERS(ServiceIDListToJson, JsonToServiceIDList), {{1ULL, 1ULL << 40}}),
        MakeRow<FCRFNetworkChannelTable>("RFNetworkChannelTable", {"service list"}, O::Keeps,
                                         WRAPPERS(RFNetworkChannelTableToJson, JsonToRFNetworkChannelTable),
                                         {With<FCRFNetworkChannelTable>([](FCRFNetworkChannelTable &t) {
                                             t.m_rfNetworkChannelList = {99, 100};
                                         })}),
        MakeRow<FCMBRNetworkChannelTable>("MBRNetworkChannelTable", {"MBR channel table"}, O::Keeps,
                                          WRAPPERS(MBRNetworkChannelTableToJson, JsonToMBRNetworkChannelTable),
                                          {With<FCMBRNetworkChannelTable>([](FCMBRNetworkChannelTable &t) {
                                              t.AppendNetworkChannel(MakeChannel(11, 3, 4));
                                          })}),
        MakeRow<FCMBRNetworkProgramTable>("MBRProgramTable", {"mbrProgramTable"}, O::Keeps,
                                          WRAPPERS(MBRProgramTableToJson, JsonToMBRProgramTable),
                                          {With<FCMBRNetworkProgramTable>([](FCMBRNetworkProgramTable &t) {
                                              auto a = MakeProgram(20, 1, "a"), b = MakeProgram(10, 1, "b");
                                              t.AppendNetworkProgram(a);
                                              t.AppendNetworkProgram(b);
                                          })}),
        MakeRow<std::map<unsigned int, FCRemoteProgram>>("MetaProgramMap", {"meta_program_map"}, O::Keeps,
                                                         WRAPPERS(MetaProgramMapToJson, JsonToMetaProgramMap),
                                                         {{{3, Program("c", 3)}, {1, Program("a", 1)}}}),
        MakeRow<std::map<std::string, FCRemoteChannelKey>>(
            "ProgramSourceMap", {"out_tunable_program_source_id_map"}, O::Keeps,
            WRAPPERS(ProgramSourceMapToJson, JsonToProgramSourceMap),
            {{{"src", With<FCRemoteChannelKey>([](FCRemoteChannelKey &k) { k.m_sid = "101"; })}}}),
        MakeRow<std::map<std::string, int>>("CountMap", {"channel count map"}, O::Keeps,
                                            WRAPPERS(CountMapToJson, JsonToCountMap), {{{"news", 4}, {"drama", 0}}}),
        MakeRow<ProgramMap>("ProgramMap", {"out_mapProgramWithSourceID"}, O::Keeps,
                            WRAPPERS(ProgramMapToJson, JsonToProgramMap),
                            {ProgramMap{{"s1", {Program("x", 1), Program("y", 2)}}, {"s2", {}}}}),
        MakeRow<std::vector<RatingInfo>>("RatingList", {"ratings"}, O::Keeps,
                                         WRAPPERS(RatingListToJson, JsonToRatingList), {{{1, 2, 3}, {4, 5, 6}}}),
    };
    return rows;
}

}  // namespace

TEST(Marshal, EveryWrapperWritesItsMembersReadsThemBackAndTreatsAnEmptyReplyAsItsShapeSays)
{
    for (const Row &row : Table()) {
        SCOPED_TRACE(row.name);
        Json::Value written = row.write(), empty(Json::objectValue);
        EXPECT_EQ(Names(written), row.written);
        EXPECT_TRUE(row.read(written, true));
        if (row.onEmpty == OnEmpty::Raises) {
            EXPECT_THROW(row.read(empty, false), Json::LogicError);
            continue;
        }
        EXPECT_TRUE(row.read(empty, false));
        EXPECT_EQ(Names(empty), row.onEmpty == OnEmpty::AddsMembers ? row.added : Keys{});
    }
}

// Types on the wire, which the table's round trips cannot see; writers add to what is there.
TEST(Marshal, WireTypesAndExistingMembers)
{
    Json::Value out = Parse(R"({"keep":"me"})");
    FCMarshal::TCServiceIdToJson(18446744073709551615ULL, out),
        FCMarshal::PGNumToJson(static_cast<unsigned short>(7), out);
    FCMarshal::FlagToJson(true, out), FCMarshal::IdToJson(-3, out);
    EXPECT_EQ(FCJsonHelper::WriteCompact(out),
              R"({"TCServiceId":"18446744073709551615","flag":true,"id":-3,"keep":"me","pgNum":7})");
    EXPECT_TRUE(out["pgNum"].type() == Json::uintValue && out["id"].type() == Json::intValue);
    EXPECT_EQ(FCMarshal::JsonToInt(Parse(R"({"ret":5})")) * 10 +
                  FCMarshal::JsonToDataServiceType(Parse(R"({"dataType":2})")),
              52);
}

TEST(Marshal, ContainersKeepKeyOrderAndMapReadersAssignPerKey)
{
    std::map<unsigned int, FCRemoteProgram> programs = {{30, Program("c", 30)}, {10, Program("a", 10)}};
    Json::Value out;
    FCMarshal::MetaProgramMapToJson(programs, out);
    ASSERT_EQ(out["meta_program_map"].size(), 2u);
    EXPECT_EQ(out["meta_program_map"][0]["key"].asString() + out["meta_program_map"][0]["title"].asString(), "10a");
    out["meta_program_map"][1]["key"] = 10u;  // a later element with the same key replaces
    std::map<unsigned int, FCRemoteProgram> read = {{9, Program("kept", 9)}};
    FCMarshal::JsonToMetaProgramMap(out, read);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[10].m_title + read[9].m_title, "ckept");

    ProgramMap bySource = {{"s1", {Program("a", 1), Program("b", 2)}}, {"s2", {Program("c", 3)}}};
    ProgramMap reply = {{"s1", {Program("z", 9)}}};
    FCMarshal::ProgramMapToJson(reply, out);
    FCMarshal::JsonToProgramMap(out, bySource);
    ASSERT_EQ(bySource["s1"].size() * 10 + bySource["s2"].size(), 11u);
    EXPECT_EQ(bySource["s1"][0].m_title, "z");

    Ids ids = {"x"};
    Json::Value list = Parse(R"({"sourceIDArray":["y"]})");
    FCMarshal::JsonToSourceIDList(list, ids);
    EXPECT_EQ(ids, (Ids{"x", "y"}));
}

TEST(Marshal, DecimalTextStopsAtTheFirstNonDigit)
{
    unsigned long long id = 5, other = 5;
    long download = 1;
    Json::Value in = Parse(R"({"TCServiceId":"123abc","imageDownloadId":"-12x"})"),
                letters = Parse(R"({"TCServiceId":"abc"})");
    FCMarshal::VCJsonToServiceId(in, id), FCMarshal::JsonToImageDownloadId(in, download),
        FCMarshal::JsonToTCServiceId(letters, other);
    EXPECT_EQ(std::to_string(id) + "|" + std::to_string(download) + "|" + std::to_string(other), "123|-12|0");
}

// Every other field's round trip is in the marshal table.
TEST(RemoteRecords, GenresAndTheChannelsGenreNameAndKey)
{
    FCRemoteProgram program = FullProgram();
    Json::Value without, json = Parse(WithGenreName("Sports")), key;
    program.m_genres.clear();
    FCRemoteProgram::ToJson(program, without);
    EXPECT_FALSE(without.isMember("genre array"));

    FCRemoteChannel channel = FullChannel();  // its "gere name" is not read
    EXPECT_EQ(channel.m_genreName, "");
    json["genre name"] = "Read";
    FCRemoteChannel::FromJson(json, channel), FCRemoteChannel::ToJson(channel, without);
    EXPECT_EQ(without["gere name"], "Read");
    FCRemoteChannelKey fromChannel, back;
    channel.GetKey(fromChannel), FCRemoteChannelKey::ToJson(fromChannel, key);
    EXPECT_EQ(
        FCJsonHelper::WriteCompact(key),
        R"({"channel_key":{"activityID":1,"str_channel_number":"7-1","str_digital_flag":"df",)"
        R"("str_frequency":"fr","str_major":"7","str_minor":"1","str_onid":"on","str_sid":"si","str_tsid":"ts"}})");
    FCRemoteChannelKey::FromJson(key, back);
    EXPECT_EQ(back, fromChannel);
}

TEST(RemoteRecords, AProgrammeMemberOfTheWrongTypeIsCaughtLoggedAndAsserted)
{
    FakeDlog::Clear();
    Json::Value json = Parse(kProgram);
    json["title"] = Json::Value(Json::objectValue);
    FCRemoteProgram p;
    EXPECT_FALSE(FCRemoteProgram::FromJson(json, p));
    EXPECT_EQ(p.m_programSourceId, "src-1");  // read before the bad member: kept
    for (const char *text :
         {"DBG_LV[0][FCRemoteProgram::FromJson] Exception Catch: ", "ASSERT!, Func:FromJson", "ASSERT(0)"})
        EXPECT_TRUE(FakeDlog::Contains(text)) << text;
}

TEST(RemoteRecords, ProgrammeTextFormKeepsOnlyTheLastGenreAndLeavesOutDescriptionEndAndRF)
{
    FCRemoteProgram p = FullProgram(), back, none;
    std::string text, notJson = "{not json";
    ASSERT_TRUE(p.to_string(text));
    EXPECT_EQ(
        text,
        R"({"activityID":1,"duration":3600,"genre_array":[{"id":"b"}],"series":"S1","strTitle":"Evening \"News\"",)"
        R"("str_cert_flag":"TV-G","str_channel_name":"News 24","str_channel_number":"7-1","str_lang":"eng",)"
        R"("str_poster_index":"2","str_poster_overlay":"ov","str_poster_type":"wide","str_poster_url":"http://p",)"
        R"("str_program_id":"prog-9","str_program_source_id":"src-1","str_short_desc":"short","str_starttime":"20:00",)"
        R"("utc_starttime":1795291200})");
    back.m_genres = {"x"};
    ASSERT_TRUE(back.from_string(text));
    EXPECT_EQ(back.m_genres, (std::vector<std::string>{"x", "b"}));
    EXPECT_EQ(back.m_title + std::to_string(back.m_utcStartTime) + back.m_desc, p.m_title + "1795291200");
    ASSERT_TRUE(none.to_string(text));
    EXPECT_EQ(Parse(text)["genre_array"], Parse("[null]"));
    EXPECT_FALSE(p.from_string(notJson));
    EXPECT_EQ(p.m_genres, FullProgram().m_genres);
}

TEST(RemoteRecords, Order)
{
    FCRemoteProgram a = FullProgram(), b = FullProgram(), c = FullProgram();
    b.m_utcStartTime += 1, b.m_title = "other";
    EXPECT_TRUE(a < b && !(b < a));
    b.m_programSourceId = "src-0";
    EXPECT_TRUE(b < a);
    c.m_shortDesc = c.m_posterType = "different", c.m_endTime = 0, c.m_isRF = false;  // presentation only
    EXPECT_EQ(a, c);
    c.m_desc = "different";
    EXPECT_NE(a, c);

    FCRemoteChannelKey low, high;
    low.m_activityID = REMOTE_CONTENT_ACTIVITY_INVALID, high.m_channelNumber = "1";
    EXPECT_TRUE(low < high);  // activity first, signed
    low.m_activityID = high.m_activityID, low.m_channelNumber = "1", low.m_major = "5", high.m_major = "50";
    EXPECT_TRUE(low < high && !(high < low) && !(low < low));  // a prefix is smaller
    FCAdditionalProgramRequest r1("a", 10, 5), r2("a", 10, 6), r3("a", 9, 100);
    EXPECT_TRUE(r1 < r2 && r3 < r1);
}

TEST(ServerResponse, VODProvidersKeyedByStringLaterElementWins)
{
    Json::Value out, json = Parse(R"({"out_vod_providers":[
        {"string":"netflix","name":"first","provider id":"p","logo":"l","widget id":"w","version":"1"},
        {"string":"netflix","name":"second","provider id":"p","logo":"l","widget id":"w2","version":"1"}]})");
    CKelvoResponse_VODProviders providers;
    providers.m_providers["other"].m_name = "kept";
    ASSERT_TRUE(CKelvoResponse_VODProviders::FromJson(json, providers) &&
                CKelvoResponse_VODProviders::ToJson(providers, out));
    ASSERT_EQ(providers.m_providers.size(), 2u);
    EXPECT_EQ(out["out_vod_providers"][0], json["out_vod_providers"][1]);
}

TEST(MBRChannel, DefaultsFavouritesEqualityOrderAndRestore)
{
    FakeDlog::Clear();
    FCMBRNetworkChannel c;
    FCMBRNetworkProgram program;
    Json::Value json, programJson;
    EXPECT_TRUE(c.SetFavorite(FCMBRNetworkChannel::FAVORITE_5, true));
    FCMBRNetworkChannel::MBRNetworkChannelToJson(c, json);
    FCMBRNetworkProgram::MBRNetworkProgramToJson(program, programJson);
    EXPECT_EQ(
        FCJsonHelper::WriteCompact(json) + FCJsonHelper::WriteCompact(programJson),
        R"({"bit set":"10000","m_acRank":0,"m_activityID":6,"m_bDigital":true,"m_channelID":-1,"m_major":-1,"m_minor":0,)"
        R"("m_name":"","m_originMajor":-1,"m_originName":"","m_remembered":false,"m_str_icon_url":"","m_str_url_index":""})"
        R"({"m_channelID":-1,"m_duration":-1,"m_programID":"","m_startTime":18446744073709551615,"m_title":""})");
    EXPECT_TRUE(c.GetFavorite(FCMBRNetworkChannel::FAVORITE_5) && !c.GetFavorite(FCMBRNetworkChannel::FAVORITE_1));
    EXPECT_FALSE(c.SetFavorite(FCMBRNetworkChannel::EFavorite(5), true) ||
                 c.GetFavorite(FCMBRNetworkChannel::EFavorite(7)));
    EXPECT_TRUE(FakeDlog::Contains("favorite < MBR_NETWORKCHANNEL_FAVORITE_MAX") &&
                FakeDlog::Contains("ASSERT!, Func:SetFavorite"));
    json["bit set"] = "10x01";
    EXPECT_THROW(FCMBRNetworkChannel::JsonToMBRNetworkChannel(json, c), std::invalid_argument);

    FCMBRNetworkChannel a = MakeChannel(5, 1, 9), b = MakeChannel(5, 1, 9);
    b.SetRemembered(true), b.SetActivityID(2), b.SetacRank(8);  // outside equality
    EXPECT_EQ(a, b);
    b.SetDigitalFlag(false);
    EXPECT_NE(a, b);
    EXPECT_TRUE(MakeChannel(5, 1, 9) < MakeChannel(5, 2, 0) && MakeChannel(5, 1, 1) < MakeChannel(5, 1, 2) && !(a < a));
    std::string origin = "Origin", edited = "Edited";
    a.SetOriginName(origin), a.SetName(edited), a.SetMajor(77);
    EXPECT_TRUE(a.Restore());
    EXPECT_EQ(std::to_string(a.GetMajor()) + a.GetName(), "5Origin");
}

TEST(MBRTables, ChannelLookupsMergeSortAndMaximum)
{
    FakeDlog::Clear();
    FCMBRNetworkChannelTable table;
    int major = -5, minor = -5;
    EXPECT_FALSE(table.GetMaxNumberOfMajorMinor(major, minor));
    EXPECT_EQ(major * 100 + minor, 0);
    ASSERT_EQ(FakeDlog::Lines().size(), 1u);
    EXPECT_EQ(FakeDlog::Lines()[0].logId, LOG_ID_MAIN);
    EXPECT_NE(FakeDlog::Lines()[0].text.find(
                  "FCMBRNetworkChannelDB::GetMaxNumberOfMajorMinor(), m_mbrNetworkChannelDB is empty!"),
              std::string::npos);
    for (const auto &c : {MakeChannel(1, 1, 10), MakeChannel(5, 0, 20), MakeChannel(3, 9, 30)})
        table.AppendNetworkChannel(c);
    EXPECT_TRUE(table.GetMaxNumberOfMajorMinor(major, minor));
    EXPECT_EQ(major * 100 + minor, 509);
    FCMBRNetworkChannel found = MakeChannel(0, 0);
    EXPECT_TRUE(table.FindNetworkChannelbyMajorMinor(3, 9, found) && found.GetChannelID() == 30);
    EXPECT_TRUE(table.FindNetworkChannelbyChannelID(20, found) &&
                !table.FindNetworkChannelByChannelIDOriginMajor(20, 3, found));
    EXPECT_EQ(found.GetMajor(), 5);  // the last hit, unchanged by the miss
    table.Merge(table);
    table.Sort();
    ASSERT_EQ(table.m_mbrNetworkChannelDB.size(), 6u);
    EXPECT_EQ(table.m_mbrNetworkChannelDB.front().GetMajor() * 10 + table.m_mbrNetworkChannelDB.back().GetMajor(), 15);
}

TEST(MBRTables, ProgrammeIntervalSearchAndFirstStartTimeWins)
{
    FCMBRNetworkProgramTable table, other;
    FCMBRNetworkProgram first = MakeProgram(1000, 60, "first"), second = MakeProgram(1000, 600, "second"),
                        later = MakeProgram(2000, 60, "later"), found;
    table.AppendNetworkProgram(first), table.AppendNetworkProgram(second);
    for (unsigned long start : {999UL, 1000UL, 1059UL, 1060UL}) {
        const bool inside = start == 1000 || start == 1059;
        found = MakeProgram(0, 0, "none");
        EXPECT_EQ(table.FindNetworkProgrambyStartTime(start, found), inside) << start;
        EXPECT_EQ(found.GetTitle(), inside ? "first" : "none") << start;
    }
    other.AppendNetworkProgram(second), other.AppendNetworkProgram(later);
    table.Merge(other);
    ASSERT_EQ(table.m_mbrNetworkProgramDB.size(), 2u);
    EXPECT_EQ(table.m_mbrNetworkProgramDB.at(1000).GetTitle(), "first");
}

TEST(MBRChannel, ConvertEndianSwapsPairsUpToTerminatorOrLength)
{
    // dst up to the first byte left alone (0xEE).
    const struct {
        std::vector<unsigned char> src;
        int returned;
        std::vector<unsigned char> dst;
    } cases[] = {
        {{0x00, 'A', 0x00, 'B', 0x00, 0x00, 0x11, 0x22}, 4, {'A', 0x00, 'B', 0x00, 0x00, 0x00, 0xEE}},
        {{0x01, 0x02, 0x03, 0x04}, 2, {0x02, 0x01, 0x04, 0x03, 0x00, 0x00, 0xEE}},
    };
    for (const auto &c : cases) {
        std::vector<unsigned char> dst(12, 0xEE), src = c.src;
        EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(dst.data(), src.data(), static_cast<int>(src.size())),
                  c.returned);
        EXPECT_EQ(std::vector<unsigned char>(dst.begin(), dst.begin() + c.dst.size()), c.dst);
    }
    unsigned char some[4] = {1, 2, 3, 4};
    EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(nullptr, some, 4) +
                  FCMBRNetworkChannel::m_ConvertEndian(some, nullptr, 4),
              2);
}
