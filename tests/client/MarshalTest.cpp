// Records and the marshal family. One table holds every wrapper pair: the members its writer puts
// on the wire, that its reader gets back what the writer wrote (compared as the writer writes it
// again), and what its reader makes of a reply without the members ({}).
#include <functional>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

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

// Values are compared as the writer writes them: write() the sample, zero() what a reader makes of
// {}, read() what the reader made of a reply.
struct Row {
    std::string name;
    Keys written;
    OnEmpty onEmpty;
    Keys added;
    std::function<Json::Value()> write;
    std::function<Json::Value()> zero;
    std::function<Json::Value(Json::Value &, bool fromSample)> read;
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
        return toJson(got);
    };
    return Row{name,
               written,
               onEmpty,
               added.empty() ? written : added,
               [=] { return toJson(sample); },
               [=] { return toJson(zero); },
               read};
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
// No two fields alike, so that one written under another's key shows.
const char *const kVirtualProgram = R"({"program_data":{"TCServiceId":"10376293541461622784"},"id":"ev",
    "starttime":"2026-11-21T10:00:00","duration":3600,"relative_offset":-4,"playlist_item_index":2,
    "content_type":"movie","content_uri":"http://c","title":"Film","short_desc":"sd",
    "poster":{"url":"http://p","index":"3"},"rating":"12","ratings":"14|16",
    "group_play_list":[{"order":5,"id":"i1","title":"One","content_uri":"http://1","duration":60,
      "subtitle":{"url":"http://s","lang_order_index":"en"}}]})";
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

// A channel whose number, its origin and its minor all differ, named after its channel id.
FCMBRNetworkChannel MakeChannel(int major, int originMajor, int minor, int id)
{
    return With<FCMBRNetworkChannel>([=](FCMBRNetworkChannel &c) mutable {
        std::string name = "ch" + std::to_string(id);
        c.SetMajor(major);
        c.SetOriginMajor(originMajor);
        c.SetMinor(minor);
        c.SetChannelID(id);
        c.SetName(name);
    });
}

// Every field set, and no two fields alike, so that one read or written in the place of another
// shows.
FCMBRNetworkChannel FullMbrChannel()
{
    return With<FCMBRNetworkChannel>([](FCMBRNetworkChannel &c) {
        std::string name = "Edited", origin = "Origin", icon = "icon.png", url = "url-3";
        int id = 4;
        std::bitset<MBR_NETWORKCHANNEL_FAVORITE_MAX> favourites("01001");
        c.SetMajor(11);
        c.SetOriginMajor(12);
        c.SetMinor(3);
        c.SetChannelID(id);
        c.SetName(name);
        c.SetOriginName(origin);
        c.SetIconUrl(icon);
        c.SetUrlIndex(url);
        c.SetRemembered(true);
        c.SetDigitalFlag(false);
        c.SetActivityID(2);
        c.SetacRank(8);
        c.SetFavoriteBitSet(favourites);
    });
}

FCMBRNetworkProgram MakeProgram(unsigned long start, int duration, std::string title)
{
    return With<FCMBRNetworkProgram>([=](FCMBRNetworkProgram &p) mutable {
        std::string id = "p" + title;
        p.SetStartTime(start);
        p.SetDuration(duration);
        p.SetTitle(title);
        p.SetProgramID(id);
        p.SetChannelID(7);
    });
}

template <typename Record>
Record FromJsonText(const char *text)
{
    return With<Record>([&](Record &r) { Record::FromJson(Parse(text), r); });
}
FCVirtualProgramData FullVirtualProgram()
{
    return FromJsonText<FCVirtualProgramData>(kVirtualProgram);
}
// What a programme read from {} holds: the position's two -1 defaults read 0.
FCVirtualProgramData ZeroVirtualProgram()
{
    return With<FCVirtualProgramData>([](FCVirtualProgramData &p) {
        p.SetRelativeOffset(0);
        p.SetPlaylistItemIndex(0);
    });
}

FCRemoteMSOConfig FullConfig()
{
    return With<FCRemoteMSOConfig>([](FCRemoteMSOConfig &c) {
        c.m_headend = "HE";
        c.m_deviceType = "DT";
        c.m_zipCode = "10001";
        c.m_additionalInfoJson = R"({"a":1})";
        c.m_source = 2;
        c.m_antennaMode = 5;
        c.m_serviceMode = 7;
    });
}

CKelvoResponse_CertRule FullCertRule()
{
    return With<CKelvoResponse_CertRule>([](CKelvoResponse_CertRule &r) {
        r.m_strFirstScreen = "first";
        r.m_strAdultDefault = "adult";
        r.m_strBarMode = "bar";
        r.m_strBarRatio = "16:9";
        r.m_strServiceCertType = "cert";
        r.m_strServiceRule = "rule";
        r.m_strServiceUptimeBegin = "06:00";
        r.m_strServiceUptimeEnd = "23:00";
    });
}

CKelvoResponse_VODProviders FullProviders()
{
    return With<CKelvoResponse_VODProviders>([](CKelvoResponse_VODProviders &p) {
        CKelvoResElement_VODProvider &provider = p.m_providers["k"];
        provider.m_name = "N";
        provider.m_providerId = "P";
        provider.m_logo = "L";
        provider.m_widgetId = "W";
        provider.m_version = "V";
    });
}

FCGenreInfo FullGenre()
{
    return With<FCGenreInfo>([](FCGenreInfo &g) {
        g.m_id = "g7";
        g.m_name = "Drama";
        g.m_imgUrl = "http://img";
        g.m_imgType = "png";
        g.m_imgIndex = "3";
    });
}

FCRemoteChannelKey FullKey()
{
    return With<FCRemoteChannelKey>([](FCRemoteChannelKey &k) {
        k.m_activityID = REMOTE_CONTENT_ACTIVITY_SUB;
        k.m_channelNumber = "7-1";
        k.m_major = "7";
        k.m_minor = "1";
        k.m_onid = "on";
        k.m_tsid = "ts";
        k.m_sid = "101";
        k.m_frequency = "fr";
        k.m_digitalFlag = "df";
    });
}

Keys Names(const Json::Value &value)
{
    const auto names = value.getMemberNames();
    return Keys(names.begin(), names.end());
}

// Every member name, nested ones as "outer.inner" and those of array elements as "outer[].inner",
// so that a key misspelt inside a record or a list shows as well as one at the top.
Keys Paths(const Json::Value &value, const std::string &prefix = "")
{
    Keys keys;
    if (value.isArray()) {
        for (const Json::Value &element : value)
            keys.merge(Paths(element, prefix + "[]"));
    } else if (value.isObject()) {
        for (const std::string &name : value.getMemberNames()) {
            const std::string path = prefix.empty() ? name : prefix + "." + name;
            keys.insert(path);
            keys.merge(Paths(value[name], path));
        }
    }
    return keys;
}

// `parent` with each of `members` below it.
Keys Under(const std::string &parent, const Keys &members)
{
    const bool array = parent.size() > 2 && parent.compare(parent.size() - 2, 2, "[]") == 0;
    Keys keys = {array ? parent.substr(0, parent.size() - 2) : parent};
    for (const std::string &member : members)
        keys.insert(parent + "." + member);
    return keys;
}

Keys operator+(Keys a, const Keys &b)
{
    a.insert(b.begin(), b.end());
    return a;
}

// Read from "genre name", written as "gere name".
Keys ChannelReadKeys()
{
    Keys keys = Names(Parse(WithGenreName("")));
    keys.erase("gere name");
    keys.insert("genre name");
    return keys;
}

const Keys kProgramKeys = Names(Parse(kProgram));
const Keys kVirtualProgramKeys = Keys{"program_data",
                                      "program_data.TCServiceId",
                                      "id",
                                      "starttime",
                                      "duration",
                                      "relative_offset",
                                      "playlist_item_index",
                                      "content_type",
                                      "content_uri",
                                      "title",
                                      "short_desc",
                                      "rating",
                                      "ratings"} +
                                 Under("poster", {"url", "index"}) +
                                 Under("group_play_list[]", {"order", "id", "title", "content_uri", "duration"}) +
                                 Under("group_play_list[].subtitle", {"url", "lang_order_index"});
const Keys kChannelKeys = Names(Parse(WithGenreName("")));
const Keys kKeyKeys = {"activityID", "str_channel_number", "str_major",       "str_minor", "str_onid", "str_tsid",
                       "str_sid",    "str_frequency",      "str_digital_flag"};
const Keys kMbrChannelKeys = {"m_activityID",  "m_acRank",   "m_str_icon_url", "m_str_url_index", "m_major",
                              "m_originMajor", "m_minor",    "m_name",         "m_originName",    "m_channelID",
                              "m_remembered",  "m_bDigital", "bit set"};
const Keys kMbrProgramKeys = {"m_startTime", "m_duration", "m_title", "m_channelID", "m_programID"};

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
        MakeRow<FCRemoteMSOConfig>(
            "FCRemoteMSOConfig",
            Under("config", {"strHeadend", "strDeviceType", "strZipCode", "str_additional_info_with_json_format",
                             "source", "antennaMode", "serviceMode"}),
            O::AddsMembers, WRAPPERS(FCRmoteMSOConfigToJson, JsonToFCRemoteMSOConfig), {FullConfig()},
            {With<FCRemoteMSOConfig>([](FCRemoteMSOConfig &c) {
                c.m_source = 0;
                c.m_antennaMode = 0;
                c.m_serviceMode = 0;
            })},
            {"config"}),
        MakeRow<CKelvoResponse_CertRule>(
            "CertRule",
            Under("out_cert_rule",
                  {"str_first_screen", "str_adult_default", "str_bar_mode", "str_bar_ratio", "str_service_cert_type",
                   "str_service_rule", "str_service_uptime_begin", "str_service_uptime_end"}),
            O::AddsMembers, WRAPPERS(CertRuleToJson, JsonToCertRule), {FullCertRule()}, {}, {"out_cert_rule"}),
        MakeRow<CKelvoResponse_VODProviders>(
            "VODProvider",
            Under("out_vod_providers[]", {"string", "name", "provider id", "logo", "widget id", "version"}), O::Keeps,
            WRAPPERS(VODProviderToJson, JsonToVODProvider), {FullProviders()}),
        MakeRow<FCRemoteProgram>("FCRemoteProgram", kProgramKeys, O::Zero,
                                 WRAPPERS(FCRemoteProgramToJson, JsonToFCRemoteProgram), {FullProgram()},
                                 {With<FCRemoteProgram>([](FCRemoteProgram &p) {
                                     p.m_activityID = REMOTE_CONTENT_ACTIVITY_INVALID;
                                     p.m_genres = {"a", "b"};
                                 })}),
        MakeRow<FCRemoteChannel>("FCRemoteChannel", kChannelKeys, O::AddsMembers,
                                 WRAPPERS(FCRemoteChannelToJson, JsonToFCRemoteChannel), {FullChannel()}, {},
                                 ChannelReadKeys()),
        MakeRow<FCMBRNetworkProgram>("MBRProgram", kMbrProgramKeys, O::Raises,
                                     WRAPPERS(MBRProgramToJson, JsonToMBRProgram), {MakeProgram(5, 60, "t")}),
        MakeRow<FCMBRNetworkChannel>("MBRNetworkChannel", kMbrChannelKeys, O::Raises,
                                     WRAPPERS(MBRNetworkChannelToJson, JsonToMBRNetworkChannel), {FullMbrChannel()}),

        MakeRow<FCVirtualProgramId>(
            "VirtualProgramId", Under("program_id", {"TCServiceId", "event_id", "start_time", "duration"}), O::Zero,
            WRAPPERS(VirtualProgramIdToJson, JsonToVirtualProgramId),
            {FromJsonText<FCVirtualProgramId>(
                R"({"program_id":{"TCServiceId":"18446744073709551615","event_id":"e","start_time":7,"duration":9}})")}),
        MakeRow<FCVirtualProgramData>("VirtualProgramData", kVirtualProgramKeys, O::Zero,
                                      WRAPPERS(VirtualProgramDataToJson, JsonToVirtualProgramData),
                                      {FullVirtualProgram()}, {ZeroVirtualProgram()}),
        MakeRow<FCVirtualConfig>(
            "VirtualConfig", Under("ch_position", {"position", "type"}) + Under("vc_banner", {"tv_to_vc", "vc_to_tv"}),
            O::Zero, WRAPPERS(VirtualConfigToJson, JsonToVirtualConfig),
            {FromJsonText<FCVirtualConfig>(R"({"ch_position":{"position":"p","type":"t"},)"
                                           R"("vc_banner":{"tv_to_vc":"a","vc_to_tv":"b"}})")}),

        // Lists and keyed maps: reading {} appends nothing and adds nothing.
        MakeRow<std::vector<FCRemoteChannel>>(
            "ChannelList", Under("channel_array[]", kChannelKeys), O::Keeps,
            WRAPPERS(ChannelListToJson, JsonToChannelList),
            {{FullChannel(), With<FCRemoteChannel>([](FCRemoteChannel &c) { c.m_sid = "1"; })}}),
        MakeRow<std::vector<FCGenreInfo>>("GenreList",
                                          Under("array_genre[]", {"str_id", "str_name", "str_genre_img_url",
                                                                  "str_genre_img_type", "str_genre_img_index"}),
                                          O::Keeps, WRAPPERS(GenreListToJson, JsonToGenreList), {{FullGenre()}}),
        MakeRow<Ids>("SourceIDList", {"sourceIDArray"}, O::Keeps, WRAPPERS(SourceIDListToJson, JsonToSourceIDList),
                     {{"a", "b"}}),
        MakeRow<std::list<ULL>>("ServiceIDList", Under("service_list[]", {"TCServiceId"}), O::Keeps,
                                WRAPPERS(ServiceIDListToJson, JsonToServiceIDList), {{1ULL, 1ULL << 40}}),
        MakeRow<FCRFNetworkChannelTable>("RFNetworkChannelTable", Under("service list[]", {"TCServiceId"}), O::Keeps,
                                         WRAPPERS(RFNetworkChannelTableToJson, JsonToRFNetworkChannelTable),
                                         {With<FCRFNetworkChannelTable>([](FCRFNetworkChannelTable &t) {
                                             t.m_rfNetworkChannelList = {99, 100};
                                         })}),
        MakeRow<FCMBRNetworkChannelTable>("MBRNetworkChannelTable", Under("MBR channel table[]", kMbrChannelKeys),
                                          O::Keeps,
                                          WRAPPERS(MBRNetworkChannelTableToJson, JsonToMBRNetworkChannelTable),
                                          {With<FCMBRNetworkChannelTable>([](FCMBRNetworkChannelTable &t) {
                                              t.AppendNetworkChannel(FullMbrChannel());
                                              t.AppendNetworkChannel(MakeChannel(5, 3, 1, 9));
                                          })}),
        MakeRow<FCMBRNetworkProgramTable>("MBRProgramTable",
                                          Under("mbrProgramTable[]", kMbrProgramKeys + Keys{"first"}), O::Keeps,
                                          WRAPPERS(MBRProgramTableToJson, JsonToMBRProgramTable),
                                          {With<FCMBRNetworkProgramTable>([](FCMBRNetworkProgramTable &t) {
                                              auto a = MakeProgram(20, 1, "a"), b = MakeProgram(10, 1, "b");
                                              t.AppendNetworkProgram(a);
                                              t.AppendNetworkProgram(b);
                                          })}),
        MakeRow<std::map<unsigned int, FCRemoteProgram>>(
            "MetaProgramMap", Under("meta_program_map[]", kProgramKeys + Keys{"key"}), O::Keeps,
            WRAPPERS(MetaProgramMapToJson, JsonToMetaProgramMap), {{{3, FullProgram()}, {1, Program("a", 1)}}}),
        MakeRow<std::map<unsigned int, FCVirtualProgramData>>(
            "VirtualProgramMap", Under("virtual_program_map[]", kVirtualProgramKeys + Keys{"key"}), O::Keeps,
            WRAPPERS(VirtualProgramMapToJson, JsonToVirtualProgramMap),
            {{{3, FullVirtualProgram()}, {1, FCVirtualProgramData()}}}),
        MakeRow<std::map<std::string, FCRemoteChannelKey>>(
            "ProgramSourceMap",
            Under("out_tunable_program_source_id_map[]", Under("channel_key", kKeyKeys) + Keys{"program_source_id"}),
            O::Keeps, WRAPPERS(ProgramSourceMapToJson, JsonToProgramSourceMap), {{{"src", FullKey()}}}),
        MakeRow<std::map<std::string, int>>("CountMap", Under("channel count map[]", {"count", "genre"}), O::Keeps,
                                            WRAPPERS(CountMapToJson, JsonToCountMap), {{{"news", 4}, {"drama", 0}}}),
        MakeRow<ProgramMap>(
            "ProgramMap",
            Under("out_mapProgramWithSourceID[]", Under("program_array[]", kProgramKeys) + Keys{"program_source_id"}),
            O::Keeps, WRAPPERS(ProgramMapToJson, JsonToProgramMap),
            {ProgramMap{{"s1", {FullProgram(), Program("y", 2)}}, {"s2", {}}}}),
        MakeRow<std::vector<RatingInfo>>("RatingList", Under("ratings[]", {"rating", "rating_system", "vsld"}),
                                         O::Keeps, WRAPPERS(RatingListToJson, JsonToRatingList),
                                         {{{1, 2, 3}, {4, 5, 6}}}),
    };
    return rows;
}

}  // namespace

TEST(Marshal, EveryWrapperWritesItsMembersReadsThemBackAndTreatsAnEmptyReplyAsItsShapeSays)
{
    for (const Row &row : Table()) {
        SCOPED_TRACE(row.name);
        Json::Value written = row.write(), empty(Json::objectValue);
        EXPECT_EQ(Paths(written), row.written);
        EXPECT_EQ(row.read(written, true), row.write());
        if (row.onEmpty == OnEmpty::Raises) {
            EXPECT_THROW(row.read(empty, false), Json::LogicError);
            continue;
        }
        EXPECT_EQ(row.read(empty, false), row.onEmpty == OnEmpty::Keeps ? row.write() : row.zero());
        EXPECT_EQ(Names(empty), row.onEmpty == OnEmpty::AddsMembers ? row.added : Keys{});
    }
}

// A writer and reader that share a table of keys and fields read back whatever they wrote, also a
// field written under another field's key: the records' texts are held against their fixed form.
TEST(Marshal, RecordsCarryEachFieldUnderItsOwnName)
{
    const std::map<std::string, std::string> forms = {
        {"FCRemoteProgram", FCJsonHelper::WriteCompact(Parse(kProgram))},
        {"FCRemoteChannel", FCJsonHelper::WriteCompact(Parse(WithGenreName("")))},
        {"FCRemoteMSOConfig",
         R"({"config":{"antennaMode":5,"serviceMode":7,"source":2,"strDeviceType":"DT","strHeadend":"HE",)"
         R"("strZipCode":"10001","str_additional_info_with_json_format":"{\"a\":1}"}})"},
        {"CertRule", R"({"out_cert_rule":{"str_adult_default":"adult","str_bar_mode":"bar","str_bar_ratio":"16:9",)"
                     R"("str_first_screen":"first","str_service_cert_type":"cert","str_service_rule":"rule",)"
                     R"("str_service_uptime_begin":"06:00","str_service_uptime_end":"23:00"}})"},
        {"VODProvider", R"({"out_vod_providers":[{"logo":"L","name":"N","provider id":"P","string":"k","version":"V",)"
                        R"("widget id":"W"}]})"},
        {"GenreList",
         R"({"array_genre":[{"str_genre_img_index":"3","str_genre_img_type":"png","str_genre_img_url":"http://img",)"
         R"("str_id":"g7","str_name":"Drama"}]})"},
        {"ProgramSourceMap",
         R"({"out_tunable_program_source_id_map":[{"channel_key":{"activityID":1,"str_channel_number":"7-1",)"
         R"("str_digital_flag":"df","str_frequency":"fr","str_major":"7","str_minor":"1","str_onid":"on",)"
         R"("str_sid":"101","str_tsid":"ts"},"program_source_id":"src"}]})"},
        {"MBRNetworkChannel",
         R"({"bit set":"01001","m_acRank":8,"m_activityID":2,"m_bDigital":false,"m_channelID":4,"m_major":11,)"
         R"("m_minor":3,"m_name":"Edited","m_originMajor":12,"m_originName":"Origin","m_remembered":true,)"
         R"("m_str_icon_url":"icon.png","m_str_url_index":"url-3"})"},
        {"MBRProgram", R"({"m_channelID":7,"m_duration":60,"m_programID":"pt","m_startTime":5,"m_title":"t"})"},
        {"RatingList",
         R"({"ratings":[{"rating":2,"rating_system":1,"vsld":3},{"rating":5,"rating_system":4,"vsld":6}]})"},
        {"CountMap", R"({"channel count map":[{"count":0,"genre":"drama"},{"count":4,"genre":"news"}]})"},
        {"VirtualProgramData", FCJsonHelper::WriteCompact(Parse(kVirtualProgram))},
        {"VirtualProgramId",
         R"({"program_id":{"TCServiceId":"18446744073709551615","duration":9,"event_id":"e","start_time":7}})"},
        {"VirtualConfig", R"({"ch_position":{"position":"p","type":"t"},"vc_banner":{"tv_to_vc":"a","vc_to_tv":"b"}})"},
    };
    size_t checked = 0;
    for (const Row &row : Table()) {
        const auto form = forms.find(row.name);
        if (form == forms.end())
            continue;
        EXPECT_EQ(FCJsonHelper::WriteCompact(row.write()), form->second) << row.name;
        ++checked;
    }
    EXPECT_EQ(checked, forms.size());
}

// Types on the wire, which the table's round trips cannot see; writers add to what is there.
TEST(Marshal, WireTypesAndExistingMembers)
{
    Json::Value out = Parse(R"({"keep":"me"})");
    FCMarshal::TCServiceIdToJson(18446744073709551615ULL, out);
    FCMarshal::PGNumToJson(static_cast<unsigned short>(7), out);
    FCMarshal::FlagToJson(true, out);
    FCMarshal::IdToJson(-3, out);
    EXPECT_EQ(FCJsonHelper::WriteCompact(out),
              R"({"TCServiceId":"18446744073709551615","flag":true,"id":-3,"keep":"me","pgNum":7})");
    EXPECT_EQ(out["pgNum"].type(), Json::uintValue);
    EXPECT_EQ(out["id"].type(), Json::intValue);
    EXPECT_EQ(FCMarshal::JsonToInt(Parse(R"({"ret":5})")), 5);
    EXPECT_EQ(FCMarshal::JsonToDataServiceType(Parse(R"({"dataType":2})")), 2);
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
    FCMarshal::ProgramMapToJson(reply, out);
    FCMarshal::JsonToProgramMap(out, bySource);
    ASSERT_EQ(bySource["s1"].size(), 1u);  // the vector of a key in the reply is replaced
    EXPECT_EQ(bySource["s1"][0].m_title, "z");
    EXPECT_EQ(bySource["s2"].size(), 1u);  // one the reply does not name stays

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
    FCMarshal::VCJsonToServiceId(in, id);
    FCMarshal::JsonToImageDownloadId(in, download);
    FCMarshal::JsonToTCServiceId(letters, other);
    EXPECT_EQ(id, 123u);
    EXPECT_EQ(download, -12);
    EXPECT_EQ(other, 0u);
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
    FCRemoteChannel::FromJson(json, channel);
    FCRemoteChannel::ToJson(channel, without);
    EXPECT_EQ(without["gere name"], "Read");
    FCRemoteChannelKey fromChannel, back;
    channel.GetKey(fromChannel);
    FCRemoteChannelKey::ToJson(fromChannel, key);
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
    EXPECT_EQ(back.m_title, p.m_title);
    EXPECT_EQ(back.m_utcStartTime, 1795291200u);
    EXPECT_EQ(back.m_desc, "");
    ASSERT_TRUE(none.to_string(text));
    EXPECT_EQ(Parse(text)["genre_array"], Parse("[null]"));
    EXPECT_FALSE(p.from_string(notJson));
    EXPECT_EQ(p.m_genres, FullProgram().m_genres);
}

TEST(RemoteRecords, ProgrammesOrderBySourceThenStartAndCompareByContent)
{
    FCRemoteProgram a = FullProgram(), later = FullProgram(), earlierSource = FullProgram();
    later.m_utcStartTime += 1;
    later.m_title = "other";
    earlierSource.m_programSourceId = "src-0";
    EXPECT_TRUE(a < later);
    EXPECT_FALSE(later < a);
    EXPECT_TRUE(earlierSource < a);

    FCRemoteProgram c = FullProgram();
    c.m_shortDesc = "different";  // presentation only
    c.m_posterType = "different";
    c.m_endTime = 0;
    c.m_isRF = false;
    EXPECT_EQ(a, c);
    c.m_desc = "different";
    EXPECT_NE(a, c);
}

TEST(RemoteRecords, ChannelKeysOrderByActivityThenTextAndRequestsByAllThree)
{
    FCRemoteChannelKey low, high;
    low.m_activityID = REMOTE_CONTENT_ACTIVITY_INVALID;
    high.m_channelNumber = "1";
    EXPECT_TRUE(low < high);  // activity first, signed
    low.m_activityID = high.m_activityID;
    low.m_channelNumber = "1";
    low.m_major = "5";
    high.m_major = "50";
    EXPECT_TRUE(low < high);  // a prefix is smaller
    EXPECT_FALSE(high < low);
    EXPECT_FALSE(low < low);

    FCAdditionalProgramRequest r1("a", 10, 5), r2("a", 10, 6), r3("a", 9, 100);
    EXPECT_TRUE(r1 < r2);
    EXPECT_TRUE(r3 < r1);
}

TEST(ServerResponse, VODProvidersKeyedByStringLaterElementWins)
{
    Json::Value out, json = Parse(R"({"out_vod_providers":[
        {"string":"netflix","name":"first","provider id":"p","logo":"l","widget id":"w","version":"1"},
        {"string":"netflix","name":"second","provider id":"p","logo":"l","widget id":"w2","version":"1"}]})");
    CKelvoResponse_VODProviders providers;
    providers.m_providers["other"].m_name = "kept";
    ASSERT_TRUE(CKelvoResponse_VODProviders::FromJson(json, providers));
    ASSERT_TRUE(CKelvoResponse_VODProviders::ToJson(providers, out));
    ASSERT_EQ(providers.m_providers.size(), 2u);
    EXPECT_EQ(out["out_vod_providers"][0], json["out_vod_providers"][1]);
}

TEST(MBRChannel, DefaultsOnTheWire)
{
    FCMBRNetworkChannel c;
    FCMBRNetworkProgram program;
    Json::Value json, programJson;
    FCMBRNetworkChannel::MBRNetworkChannelToJson(c, json);
    FCMBRNetworkProgram::MBRNetworkProgramToJson(program, programJson);
    EXPECT_EQ(
        FCJsonHelper::WriteCompact(json),
        R"({"bit set":"00000","m_acRank":0,"m_activityID":6,"m_bDigital":true,"m_channelID":-1,"m_major":-1,"m_minor":0,)"
        R"("m_name":"","m_originMajor":-1,"m_originName":"","m_remembered":false,"m_str_icon_url":"","m_str_url_index":""})");
    EXPECT_EQ(FCJsonHelper::WriteCompact(programJson),
              R"({"m_channelID":-1,"m_duration":-1,"m_programID":"","m_startTime":18446744073709551615,"m_title":""})");
}

TEST(MBRChannel, FavouriteListsZeroToFourAreBitsOfTheText)
{
    const struct {
        int list;
        bool accepted;
        const char *bits;  // the "bit set" text after setting the list on a fresh channel
        bool asserted;
    } cases[] = {
        {0, true, "00001", false}, {2, true, "00100", false}, {4, true, "10000", false},
        {5, false, "00000", true}, {7, false, "00000", true}, {-1, false, "00000", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.list);
        FakeDlog::Clear();
        FCMBRNetworkChannel channel;
        const auto list = static_cast<FCMBRNetworkChannel::EFavorite>(c.list);
        EXPECT_EQ(channel.SetFavorite(list, true), c.accepted);
        EXPECT_EQ(channel.GetFavoriteBitSet().to_string(), c.bits);
        EXPECT_EQ(channel.GetFavorite(list), c.accepted);
        EXPECT_EQ(FakeDlog::Contains("favorite < MBR_NETWORKCHANNEL_FAVORITE_MAX"), c.asserted);
        EXPECT_EQ(FakeDlog::Contains("ASSERT!, Func:SetFavorite"), c.asserted);
        EXPECT_EQ(FakeDlog::Contains("ASSERT!, Func:GetFavorite"), c.asserted);
    }
    Json::Value json;
    FCMBRNetworkChannel c;
    FCMBRNetworkChannel::MBRNetworkChannelToJson(c, json);
    json["bit set"] = "10x01";
    EXPECT_THROW(FCMBRNetworkChannel::JsonToMBRNetworkChannel(json, c), std::invalid_argument);
}

// Remembered flag, activity, rank and the two addresses are outside equality; every other field
// is inside it.
TEST(MBRChannel, EqualityComparesTheChannelNotItsPlaceInTheList)
{
    using Edit = std::function<void(FCMBRNetworkChannel &)>;
    static std::string other = "other";
    const struct {
        const char *what;
        Edit edit;
        bool equal;
    } cases[] = {
        {"a copy", [](FCMBRNetworkChannel &) {}, true},
        {"remembered", [](FCMBRNetworkChannel &c) { c.SetRemembered(false); }, true},
        {"activity", [](FCMBRNetworkChannel &c) { c.SetActivityID(6); }, true},
        {"rank", [](FCMBRNetworkChannel &c) { c.SetacRank(0); }, true},
        {"icon", [](FCMBRNetworkChannel &c) { c.SetIconUrl(other); }, true},
        {"url index", [](FCMBRNetworkChannel &c) { c.SetUrlIndex(other); }, true},
        {"major", [](FCMBRNetworkChannel &c) { c.SetMajor(12); }, false},
        {"origin major", [](FCMBRNetworkChannel &c) { c.SetOriginMajor(11); }, false},
        {"minor", [](FCMBRNetworkChannel &c) { c.SetMinor(4); }, false},
        {"name", [](FCMBRNetworkChannel &c) { c.SetName(other); }, false},
        {"origin name", [](FCMBRNetworkChannel &c) { c.SetOriginName(other); }, false},
        {"channel id",
         [](FCMBRNetworkChannel &c) {
             int id = 5;
             c.SetChannelID(id);
         },
         false},
        {"favourites", [](FCMBRNetworkChannel &c) { c.SetFavorite(FCMBRNetworkChannel::FAVORITE_2, true); }, false},
        {"digital", [](FCMBRNetworkChannel &c) { c.SetDigitalFlag(true); }, false},
    };
    const FCMBRNetworkChannel original = FullMbrChannel();
    for (const auto &c : cases) {
        FCMBRNetworkChannel edited = original;
        c.edit(edited);
        EXPECT_EQ(edited == original, c.equal) << c.what;
        EXPECT_EQ(edited != original, !c.equal) << c.what;
    }
}

TEST(MBRChannel, OrderIsMajorThenMinorThenChannelIdSigned)
{
    const struct {
        int a[3], b[3];  // major, minor, channel id
        bool less;
    } cases[] = {
        {{5, 1, 9}, {5, 2, 0}, true},  {{5, 2, 0}, {5, 1, 9}, false}, {{5, 1, 1}, {5, 1, 2}, true},
        {{4, 9, 9}, {5, 0, 0}, true},  {{5, 0, 0}, {4, 9, 9}, false}, {{-1, 0, 0}, {0, 0, 0}, true},
        {{5, 1, 9}, {5, 1, 9}, false},
    };
    for (const auto &c : cases) {
        // The origin majors run against the majors, so an order by origin would come out reversed.
        FCMBRNetworkChannel a = MakeChannel(c.a[0], 10 - c.a[0], c.a[1], c.a[2]);
        FCMBRNetworkChannel b = MakeChannel(c.b[0], 10 - c.b[0], c.b[1], c.b[2]);
        EXPECT_EQ(a < b, c.less) << c.a[0] << "-" << c.a[1] << "/" << c.a[2] << " < " << c.b[0] << "-" << c.b[1] << "/"
                                 << c.b[2];
    }
}

TEST(MBRChannel, RestoreTakesBackTheEditedNumberAndName)
{
    FCMBRNetworkChannel c = FullMbrChannel();
    std::string edited = "Edited again";
    c.SetMajor(77);
    c.SetName(edited);
    EXPECT_TRUE(c.Restore());
    EXPECT_EQ(c.GetMajor(), 12);
    EXPECT_EQ(c.GetName(), "Origin");
    EXPECT_EQ(c.GetOriginMajor(), 12);
    EXPECT_EQ(c.GetOriginName(), "Origin");
}

// Channels 20 share their id; the edited numbers of some equal the origin numbers of others, so
// a lookup that reads one number for the other finds a different channel or none.
class MBRChannelTable : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const auto &c :
             {MakeChannel(1, 11, 1, 10), MakeChannel(5, 3, 0, 20), MakeChannel(3, 9, 9, 30), MakeChannel(3, 5, 9, 20)})
            m_table.AppendNetworkChannel(c);
    }

    // Names of the channels in list order.
    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto &c : m_table.m_mbrNetworkChannelDB)
            names.push_back(c.GetName());
        return names;
    }

    FCMBRNetworkChannelTable m_table;
};

TEST_F(MBRChannelTable, LookupsFindTheFirstMatchOrLeaveTheOutputAlone)
{
    using Find = std::function<bool(FCMBRNetworkChannelTable &, FCMBRNetworkChannel &)>;
    const struct {
        const char *what;
        Find find;
        const char *found;  // the name of the channel handed out, null for none
        int major;          // its major
    } cases[] = {
        {"major-minor 3-9: the first of two",
         [](auto &t, auto &o) { return t.FindNetworkChannelbyMajorMinor(3, 9, o); }, "ch30", 3},
        {"major-minor 0-5: numbers not swapped",
         [](auto &t, auto &o) { return t.FindNetworkChannelbyMajorMinor(0, 5, o); }, nullptr, 0},
        {"major-minor 11-1: the current major, not the origin",
         [](auto &t, auto &o) { return t.FindNetworkChannelbyMajorMinor(11, 1, o); }, nullptr, 0},
        {"id 20: the first of two", [](auto &t, auto &o) { return t.FindNetworkChannelbyChannelID(20, o); }, "ch20", 5},
        {"id 99", [](auto &t, auto &o) { return t.FindNetworkChannelbyChannelID(99, o); }, nullptr, 0},
        {"id 20, origin 3", [](auto &t, auto &o) { return t.FindNetworkChannelByChannelIDOriginMajor(20, 3, o); },
         "ch20", 5},
        {"id 20, origin 5", [](auto &t, auto &o) { return t.FindNetworkChannelByChannelIDOriginMajor(20, 5, o); },
         "ch20", 3},
        {"id 30, origin 3: its current major",
         [](auto &t, auto &o) { return t.FindNetworkChannelByChannelIDOriginMajor(30, 3, o); }, nullptr, 0},
        {"id 11, origin 10: numbers not swapped",
         [](auto &t, auto &o) { return t.FindNetworkChannelByChannelIDOriginMajor(11, 10, o); }, nullptr, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        FCMBRNetworkChannel out = MakeChannel(0, 0, 0, 0);
        EXPECT_EQ(c.find(m_table, out), c.found != nullptr);
        EXPECT_EQ(out.GetName(), c.found != nullptr ? c.found : "ch0");
        EXPECT_EQ(out.GetMajor(), c.major);
    }
}

TEST_F(MBRChannelTable, MaximaAreOfTheCurrentNumbersEachOnItsOwn)
{
    int major = -5, minor = -5;
    EXPECT_TRUE(m_table.GetMaxNumberOfMajorMinor(major, minor));
    EXPECT_EQ(major, 5);
    EXPECT_EQ(minor, 9);

    FakeDlog::Clear();
    FCMBRNetworkChannelTable empty;
    major = minor = -5;
    EXPECT_FALSE(empty.GetMaxNumberOfMajorMinor(major, minor));
    EXPECT_EQ(major, 0);
    EXPECT_EQ(minor, 0);
    ASSERT_EQ(FakeDlog::Lines().size(), 1u);
    EXPECT_EQ(FakeDlog::Lines()[0].logId, LOG_ID_MAIN);
    EXPECT_NE(FakeDlog::Lines()[0].text.find(
                  "FCMBRNetworkChannelDB::GetMaxNumberOfMajorMinor(), m_mbrNetworkChannelDB is empty!"),
              std::string::npos);
}

TEST_F(MBRChannelTable, MergeAppendsDuplicatesAndSortIsStable)
{
    EXPECT_TRUE(m_table.Merge(m_table));
    EXPECT_EQ(Names(), (std::vector<std::string>{"ch10", "ch20", "ch30", "ch20", "ch10", "ch20", "ch30", "ch20"}));
    m_table.Sort();
    std::vector<std::pair<int, int>> order;  // (major, origin major)
    for (const auto &c : m_table.m_mbrNetworkChannelDB)
        order.emplace_back(c.GetMajor(), c.GetOriginMajor());
    EXPECT_EQ(order,
              (std::vector<std::pair<int, int>>{{1, 11}, {1, 11}, {3, 5}, {3, 5}, {3, 9}, {3, 9}, {5, 3}, {5, 3}}));
}

// "[%d][%d]" holds the process, then the thread; they differ only on a thread of its own.
TEST(MBRTables, NumberedLogLinesNameTheProcessThenTheThread)
{
    FakeDlog::Clear();
    long thread = 0;
    std::thread([&thread] {
        thread = syscall(SYS_gettid);
        int major = 0, minor = 0;
        FCMBRNetworkChannelTable().GetMaxNumberOfMajorMinor(major, minor);
    }).join();
    ASSERT_EQ(FakeDlog::Lines().size(), 1u);
    const std::string numbers = "> [" + std::to_string(getpid()) + "][" + std::to_string(thread) + "]FCMBR";
    EXPECT_NE(FakeDlog::Lines()[0].text.find(numbers), std::string::npos) << FakeDlog::Lines()[0].text;
}

TEST(MBRTables, ProgrammeIntervalSearchAndFirstStartTimeWins)
{
    FCMBRNetworkProgramTable table, other;
    FCMBRNetworkProgram first = MakeProgram(1000, 60, "first"), second = MakeProgram(1000, 600, "second"),
                        later = MakeProgram(2000, 60, "later"), found;
    table.AppendNetworkProgram(first);
    table.AppendNetworkProgram(second);
    for (unsigned long start : {999UL, 1000UL, 1059UL, 1060UL}) {
        const bool inside = start == 1000 || start == 1059;
        found = MakeProgram(0, 0, "none");
        EXPECT_EQ(table.FindNetworkProgrambyStartTime(start, found), inside) << start;
        EXPECT_EQ(found.GetTitle(), inside ? "first" : "none") << start;
    }
    other.AppendNetworkProgram(second);
    other.AppendNetworkProgram(later);
    table.Merge(other);
    ASSERT_EQ(table.m_mbrNetworkProgramDB.size(), 2u);
    EXPECT_EQ(table.m_mbrNetworkProgramDB.at(1000).GetTitle(), "first");
    EXPECT_EQ(table.m_mbrNetworkProgramDB.at(2000).GetTitle(), "later");
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
    EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(nullptr, some, 4), 1);
    EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(some, nullptr, 4), 1);
}
