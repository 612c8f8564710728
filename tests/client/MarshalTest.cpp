// Every wrapper pair of the marshal family in one table: the member names its writer puts on
// the wire, that its reader gets back what the writer wrote, and what its reader does with a
// reply that lacks the members ({}): raise, give zero values, or give zero values and leave
// null members behind in the reply.
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCMarshal.h"

namespace {

enum class OnEmpty {
    Raises,      // jsoncpp's logic error
    Zero,        // zero values, the reply unchanged
    AddsMembers  // zero values, the reply gains members
};

struct Row {
    std::string name;
    std::set<std::string> written;
    std::function<void(Json::Value &)> write;
    // Reads in; true when the values read are the sample values (sample) or the zero values.
    std::function<bool(Json::Value &, bool sample)> read;
    OnEmpty onEmpty;
    std::set<std::string> addedOnEmpty = {};  // when not the written members
};

using E = eRemoteContentActivity;
using Str = std::string;
using UL = unsigned long;
using ULL = unsigned long long;
using UInt = unsigned int;
using UShort = unsigned short;
using Nav = FCRFNetworkChannelAPI::ENavigationMode;
using Act = FCMBRNetworkChannelAPI::EActivityID;
using Query = FCMBRNetworkChannelAPI::EMBRNetworkChannelQuery;
using Fav = FCMBRNetworkChannel::EFavorite;
using LogoSize = FCVirtualChannelsAPI::EChannelLogoSize;
using Player = FCVirtualChannelsAPI::EPlayerType;
using LogoType = FCVirtualChannelsAPI::EProgramLogoType;
using Acr = FIACRSupportAPI::AcrVerified;

// One value: writer W(value, out), reader R(in, value); S the sample, D what {} reads as.
#define ONE(W, R, T, K, S, D, ON)                                                            \
    Row{#W, {K}, [](Json::Value &o) { FCMarshal::W(T(S), o); },                              \
        [](Json::Value &i, bool s) {                                                         \
            T v = s ? T(D) : T(S);                                                           \
            FCMarshal::R(i, v);                                                              \
            return v == (s ? T(S) : T(D));                                                   \
        },                                                                                   \
        ON}
#define TWO(W, R, T1, K1, S1, D1, T2, K2, S2, D2, ON)                                        \
    Row{#W, {K1, K2}, [](Json::Value &o) { FCMarshal::W(T1(S1), T2(S2), o); },               \
        [](Json::Value &i, bool s) {                                                         \
            T1 a = s ? T1(D1) : T1(S1);                                                      \
            T2 b = s ? T2(D2) : T2(S2);                                                      \
            FCMarshal::R(i, a, b);                                                           \
            return a == (s ? T1(S1) : T1(D1)) && b == (s ? T2(S2) : T2(D2));                 \
        },                                                                                   \
        ON}
#define THREE(W, R, T1, K1, S1, D1, T2, K2, S2, D2, T3, K3, S3, D3, ON)                      \
    Row{#W, {K1, K2, K3}, [](Json::Value &o) { FCMarshal::W(T1(S1), T2(S2), T3(S3), o); },   \
        [](Json::Value &i, bool s) {                                                         \
            T1 a = s ? T1(D1) : T1(S1);                                                      \
            T2 b = s ? T2(D2) : T2(S2);                                                      \
            T3 c = s ? T3(D3) : T3(S3);                                                      \
            FCMarshal::R(i, a, b, c);                                                        \
            return a == (s ? T1(S1) : T1(D1)) && b == (s ? T2(S2) : T2(D2)) &&               \
                   c == (s ? T3(S3) : T3(D3));                                               \
        },                                                                                   \
        ON}

// A container or record wrapper: Make() builds the sample, Empty() what {} reads into.
template <typename T>
Row Whole(const char *name, std::set<std::string> written, bool (*w)(T &, Json::Value &),
          std::function<bool(Json::Value &, T &)> r, std::function<T()> make, OnEmpty on,
          std::set<std::string> added = {})
{
    return Row{name, written,
               [w, make](Json::Value &o) {
                   T v = make();
                   w(v, o);
               },
               [r, make](Json::Value &i, bool s) {
                   T v{};
                   r(i, v);
                   return s ? v == make() : v == T{};
               },
               on, added};
}

FCRemoteChannel Channel()
{
    FCRemoteChannel c;
    c.m_channelName = "Ch";
    c.m_major = "7";
    c.m_embed = 2;
    return c;
}

FCRemoteProgram Program(const std::string &title, unsigned long start)
{
    FCRemoteProgram p;
    p.m_programSourceId = "src";
    p.m_title = title;
    p.m_utcStartTime = start;
    p.m_duration = 1800;
    p.m_genres = {"g1", "g2"};
    return p;
}

FCMBRNetworkChannel MbrChannel()
{
    FCMBRNetworkChannel c;
    c.SetMajor(11);
    c.SetMinor(2);
    c.SetFavorite(FCMBRNetworkChannel::FAVORITE_2, true);
    return c;
}

FCMBRNetworkProgram MbrProgram(unsigned long start)
{
    FCMBRNetworkProgram p;
    std::string id = "p" + std::to_string(start);
    p.SetStartTime(start);
    p.SetDuration(60);
    p.SetProgramID(id);
    return p;
}

bool SameProviders(const CKelvoResponse_VODProviders &a, const CKelvoResponse_VODProviders &b)
{
    return a.m_providers == b.m_providers;
}

struct MbrTables {
    FCMBRNetworkChannelTable channels;
    FCMBRNetworkProgramTable programs;
};

const std::vector<Row> &Table()
{
    static const std::vector<Row> rows = {
        // Read through the non-const member operator.
        ONE(IsFirstEntryToJson, JsonToIsFirstEntry, bool, "IsFirstEntry", true, false, OnEmpty::AddsMembers),
        ONE(IsInstantOnToJson, JsonToIsInstantOn, bool, "IsInstantOn", true, false, OnEmpty::AddsMembers),
        TWO(CountryAndLangToJson, JsonToCountryAndLang, Str, "country", "KR", "", Str, "language", "ko", "",
            OnEmpty::AddsMembers),
        Row{"TVSourceAndTVModeToJson/2", {"in_source", "in_tvmode"},
            [](Json::Value &o) { FCMarshal::TVSourceAndTVModeToJson(3, 4, o); },
            [](Json::Value &i, bool s) {
                ESource src = s ? SOURCE_TV : SOURCE_CATV;
                int mode = s ? 0 : 4;
                FCMarshal::JsonToTVSourceAndTVMode(i, src, mode);
                return s ? (src == SOURCE_CATV && mode == 4) : (src == SOURCE_TV && mode == 0);
            },
            OnEmpty::AddsMembers},
        Row{"TVSourceAndTVModeToJson/3", {"in_source", "in_antennaMode", "in_serviceMode"},
            [](Json::Value &o) { FCMarshal::TVSourceAndTVModeToJson(1, 2, 3, o); },
            [](Json::Value &i, bool s) {
                ESource src = s ? SOURCE_TV : SOURCE_ATV;
                int antenna = s ? 0 : 2, service = s ? 0 : 3;
                FCMarshal::JsonToTVSourceAndTVMode(i, src, antenna, service);
                return s ? (src == SOURCE_ATV && antenna == 2 && service == 3)
                         : (src == SOURCE_TV && antenna == 0 && service == 0);
            },
            OnEmpty::AddsMembers},
        ONE(activityIDToJson, JsonToactivityID, E, "activityID", E(1), E(0), OnEmpty::AddsMembers),
        THREE(ProgramSourceIDAndUtcCurrentTimeToJson, JsonToProgramSourceIdAndUtcCurrentTime, E, "activityID", E(1),
              E(0), Str, "program source id", "s1", "", UL, "utc current time", 1700000000UL, 0UL,
              OnEmpty::AddsMembers),
        TWO(UtcCurrentTimeToJson, JsonToUtcCurrentTime, E, "activityID", E(1), E(0), UL, "utc_current_time",
            1700000000UL, 0UL, OnEmpty::AddsMembers),
        ONE(UtcStartTimeToJson, JsonToUtcStartTime, UL, "utc_start_time", 1700000000UL, 0UL, OnEmpty::AddsMembers),
        ONE(UtcEndTimeToJson, JsonToUtcEndTime, UL, "utc_end_time", 1700003600UL, 0UL, OnEmpty::AddsMembers),
        THREE(MBRChannelAndUTCCurrentTimeToJson, JsonToMBRChannelAndUTCCurrentTime, E, "activityID", E(1), E(0), Str,
              "mbr ch number", "5-1", "", UL, "utc current time", 1700000000UL, 0UL, OnEmpty::AddsMembers),
        ONE(SearchStringToJson, JsonToSearchString, Str, "search string", "news", "", OnEmpty::AddsMembers),
        Row{"SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson",
            {"activityID", "sourceIDArray", "utc start time", "duration", "genre id list"},
            [](Json::Value &o) {
                std::vector<std::string> ids = {"a", "b"};
                FCFilterCriteria f;
                f.m_genreIdList = "1,2";
                FCMarshal::SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson(E(1), ids, 1000, 60, f, o);
            },
            [](Json::Value &i, bool s) {
                E a = E(0);
                std::vector<std::string> ids;
                int start = 0, duration = 0;
                FCFilterCriteria f;
                FCMarshal::JsonToSourceIDLstAndUtcStartTimeAndDurationAndFCFilterCriteria(i, a, ids, start, duration,
                                                                                          f);
                return s ? (a == E(1) && ids == std::vector<std::string>{"a", "b"} && start == 1000 &&
                            duration == 60 && f.m_genreIdList == "1,2")
                         : (a == E(0) && ids.empty() && start == 0 && duration == 0 && f.m_genreIdList.empty());
            },
            OnEmpty::AddsMembers, {"activityID", "utc start time", "duration", "genre id list"}},
        Row{"SourceIDListAndUtcStartTimeAndDurationToJson", {"activityID", "sourceIDArray", "utc_starttime", "duration"},
            [](Json::Value &o) {
                std::vector<std::string> ids = {"a"};
                FCMarshal::SourceIDListAndUtcStartTimeAndDurationToJson(E(1), ids, 1000UL, 60, o);
            },
            [](Json::Value &i, bool s) {
                E a = E(0);
                std::vector<std::string> ids;
                unsigned long start = 0;
                int duration = 0;
                FCMarshal::JsonToSourceIDListAndUtcStartTimeAndDuration(i, a, ids, start, duration);
                return s ? (a == E(1) && ids == std::vector<std::string>{"a"} && start == 1000 && duration == 60)
                         : (a == E(0) && ids.empty() && start == 0 && duration == 0);
            },
            OnEmpty::AddsMembers, {"activityID", "utc_starttime", "duration"}},
        Row{"MarshalingForGetRecommendationOnNow",
            {"activityID", "current_watching_program_source_id", "utc_currenttime", "number_of_recommendation",
             "genre id list"},
            [](Json::Value &o) {
                FCFilterCriteria f;
                f.m_genreIdList = "9";
                FCMarshal::MarshalingForGetRecommendationOnNow(E(1), "cur", 1000UL, 5, f, o);
            },
            [](Json::Value &i, bool s) {
                E a = E(0);
                std::string cur;
                unsigned long now = 0;
                int n = 0;
                FCFilterCriteria f;
                FCMarshal::UnmarshalingForGetRecommendationOnNow(i, a, cur, now, n, f);
                return s ? (a == E(1) && cur == "cur" && now == 1000 && n == 5 && f.m_genreIdList == "9")
                         : (a == E(0) && cur.empty() && now == 0 && n == 0 && f.m_genreIdList.empty());
            },
            OnEmpty::AddsMembers},

        // Read through the const member operator.
        ONE(ChannelCRCToJson, JsonToChannelCRC, Str, "crc", "abcd", "", OnEmpty::Zero),
        Row{"JsonToStr", {"str"}, [](Json::Value &o) { o["str"] = "v1.2"; },
            [](Json::Value &i, bool s) {
                std::string v = s ? "" : "v1.2";
                FCMarshal::JsonToStr(i, v);
                return v == (s ? "v1.2" : "");
            },
            OnEmpty::Zero},
        ONE(EDownloadLocationToJson, JsonToEDownloadLocation, EDownloadLocation, "location", DOWNLOAD_LOCATION_STORAGE,
            DOWNLOAD_LOCATION_MEMORY, OnEmpty::Zero),
        ONE(IdToJson, JsonToId, int, "id", 42, 0, OnEmpty::Zero),
        ONE(IntToJson, JsonToInt, int, "ret", 7, 0, OnEmpty::Zero),
        ONE(eTVLumeWebAppVisibleToJson, JsonToeTVLumeWebAppVisible, eTVLumeWebAppVisible, "show_webapp",
            TVLUME_WEBAPP_SHOW, TVLUME_WEBAPP_HIDE, OnEmpty::Zero),
        ONE(SecToJson, JsonToSec, UInt, "sec", 30u, 0u, OnEmpty::Zero),
        ONE(FlagToJson, JsonToFlag, bool, "flag", true, false, OnEmpty::Zero),
        ONE(AcrVerifiedToJson, JsonToAcrVerified, Acr, "AcrVerified", FIACRSupportAPI::ACR_VERIFIED,
            FIACRSupportAPI::ACR_NOT_VERIFIED, OnEmpty::Zero),
        Row{"DataServiceTypeToJson", {"dataType"}, [](Json::Value &o) { FCMarshal::DataServiceTypeToJson(2, o); },
            [](Json::Value &i, bool s) {
                EDataServiceType t = s ? DATA_SERVICE_TYPE_NONE : DATA_SERVICE_TYPE_AOC;
                FCMarshal::JsonToDataServiceType(i, t);
                return FCMarshal::JsonToDataServiceType(i) == (s ? 2 : 0) && t == (s ? DATA_SERVICE_TYPE_AOC
                                                                                      : DATA_SERVICE_TYPE_NONE);
            },
            OnEmpty::Zero},

        // Numbers that a reply must hold: get() with "" as default raises when absent.
        ONE(NavigationModeToJson, JsonToNavigationMode, Nav, "navigation mode", Nav(1), Nav(0), OnEmpty::Raises),
        ONE(CountToJson, JsonToCount, int, "count", 12, 0, OnEmpty::Raises),
        Row{"SourceToJson", {"source"}, [](Json::Value &o) { FCMarshal::SourceToJson(SOURCE_DTV, o); },
            [](Json::Value &i, bool) {
                ESource v = SOURCE_NONE;
                FCMarshal::JsonToSource(i, v);
                return v == SOURCE_DTV;
            },
            OnEmpty::Raises},
        ONE(EactivityIDToJson, JsonToEactivityID, Act, "activityID", Act(4), Act(0), OnEmpty::Raises),
        ONE(QueryTypeToJson, JsonToQueryType, Query, "query type", Query(2), Query(0), OnEmpty::Raises),
        ONE(CurrentTimeToJson, JsonToCurrentTime, UL, "current time", 1700000000UL, 0UL, OnEmpty::Raises),
        TWO(MajorMinorToJson, JsonToMajorMinor, int, "major", 11, 0, int, "minor", 3, 0, OnEmpty::Raises),
        ONE(EFavoriteToJson, JsonToEFavorite, Fav, "favorite", Fav(3), Fav(0), OnEmpty::Raises),
        ONE(PositonToJson, JsonToPositon, UL, "position", 95UL, 0UL, OnEmpty::Raises),

        // get() with 0 as default.
        ONE(StartTimeToJson, JsonToStartTime, UInt, "start_time", 1700000000u, 0u, OnEmpty::Zero),
        ONE(DurationToJson, JsonToDuration, UInt, "duration", 3600u, 0u, OnEmpty::Zero),
        ONE(EProgramIndicatorToJson, JsonToEProgramIndicator, EProgramIndicator, "program_indicator",
            PROGRAM_INDICATOR_NEXT, PROGRAM_INDICATOR_PRESENT, OnEmpty::Zero),
        ONE(LogoSizeToJson, JsonToLogoSize, LogoSize, "logoSize", LogoSize(2), LogoSize(0), OnEmpty::Zero),
        ONE(PlayerTypeToJson, JsonToPlayerType, Player, "playerType", Player(1), Player(0), OnEmpty::Zero),
        ONE(PGNumToJson, JsonToPGNum, UShort, "pgNum", 513, 0, OnEmpty::Zero),
        ONE(ProgramLogoTypeToJson, JsonToProgramLogoType, LogoType, "programLogoType", LogoType(2), LogoType(0),
            OnEmpty::Zero),
        Row{"RatingInfoToJson", {"rating", "rating_system", "vsld"},
            [](Json::Value &o) { FCMarshal::RatingInfoToJson(RatingInfo{2, 15, 1}, o); },
            [](Json::Value &i, bool s) {
                RatingInfo r{9, 9, 9};
                FCMarshal::JsonToRatingInfo(i, r);
                return s ? r == RatingInfo{2, 15, 1} : r == RatingInfo{};
            },
            OnEmpty::Zero},

        // get() with "" as default, read as text.
        ONE(GenreToJson, JsonToGenre, Str, "genre", "drama", "", OnEmpty::Zero),
        ONE(HeadEndIDToJson, JsonToHeadEndID, Str, "headend id", "HE1", "", OnEmpty::Zero),
        ONE(ZipCodeToJson, JsonToZipCode, Str, "zip code", "10001", "", OnEmpty::Zero),
        ONE(DeviceTypeToJson, JsonToDeviceType, Str, "device type", "tv", "", OnEmpty::Zero),
        ONE(LocationToJson, JsonToLocation, Str, "location", "NY", "", OnEmpty::Zero),
        ONE(ChannelIDToJson, JsonToChannelID, Str, "channelID", "c9", "", OnEmpty::Zero),
        TWO(ChannelIdMajorToJson, JsonToChannelIdMajor, Str, "channel id", "c9", "", Str, "major", "11", "",
            OnEmpty::Zero),
        ONE(ChannelLogoToJson, JsonToChannelLogo, Str, "channelLogo", "/l.png", "", OnEmpty::Zero),
        ONE(ProgramLogoToJson, JsonToProgramLogo, Str, "programLogo", "/p.png", "", OnEmpty::Zero),
        ONE(OnTvProviderIdToJson, JsonToOnTvProviderId, Str, "onTvProviderId", "prov", "", OnEmpty::Zero),
        ONE(PKGIdToJson, JsonToPKGId, Str, "pkgId", "pkg", "", OnEmpty::Zero),
        ONE(ItemIDToJson, JsonToItemID, Str, "itemID", "item", "", OnEmpty::Zero),
        ONE(OnTvServiceIdToJson, JsonToOnTvServiceId, Str, "onTvServiceId", "svc", "", OnEmpty::Zero),
        ONE(UrlToJson, JsonToUrl, Str, "url", "http://x", "", OnEmpty::Zero),
        ONE(FileToJson, JsonToFile, Str, "file", "/tmp/f", "", OnEmpty::Zero),
        TWO(APPIDAndURLToJson, JsonToAPPIDAndURL, Str, "appID", "app", "", Str, "url", "http://x", "", OnEmpty::Zero),
        ONE(StrRatingToJson, JsonToStrRating, Str, "rating", "TV-14", "", OnEmpty::Zero),
        ONE(ProgramSourceIDToJson_ACR, JsonToProgramSourceID_ACR, Str, "programSourceID", "ps", "", OnEmpty::Zero),
        ONE(ProgramIDToJson_ACR, JsonToProgramID_ACR, Str, "programID", "pid", "", OnEmpty::Zero),
        TWO(ProgramSourceIDToJson, JsonToProgramSourceID, E, "activityID", E(1), E(0), Str, "program source id", "s",
            "", OnEmpty::Zero),
        Row{"KPIInfoToJson", {"KPIType", "EventName", "Category", "desc"},
            [](Json::Value &o) { FCMarshal::KPIInfoToJson(1, "ev", "cat", "d", o); },
            [](Json::Value &i, bool s) {
                int type = 5;
                std::string ev, cat, desc;
                FCMarshal::JsonToKPIInfo(i, type, ev, cat, desc);
                return s ? (type == 1 && ev == "ev" && cat == "cat" && desc == "d")
                         : (type == -1 && ev.empty() && cat.empty() && desc.empty());
            },
            OnEmpty::Zero},

        // 64-bit identifiers as decimal text.
        ONE(TCServiceIdToJson, JsonToTCServiceId, ULL, "TCServiceId", 18446744073709551615ULL, 0ULL, OnEmpty::Zero),
        ONE(VCServiceIdToJson, VCJsonToServiceId, ULL, "TCServiceId", 1234567890123ULL, 0ULL, OnEmpty::Zero),
        ONE(ImageDownloadIdToJson, JsonToImageDownloadId, long, "imageDownloadId", -77L, 0L, OnEmpty::Zero),

        // Records.
        Row{"FCRmoteMSOConfigToJson", {"config"},
            [](Json::Value &o) {
                FCRemoteMSOConfig c;
                c.m_headend = "HE";
                c.m_source = 2;
                FCMarshal::FCRmoteMSOConfigToJson(c, o);
            },
            [](Json::Value &i, bool s) {
                FCRemoteMSOConfig c;
                FCMarshal::JsonToFCRemoteMSOConfig(i, c);
                // A missing number reads as null, which is 0, not the record's -1.
                return c.m_headend == (s ? "HE" : "") && c.m_source == (s ? 2 : 0) && c.m_antennaMode == (s ? -1 : 0);
            },
            OnEmpty::AddsMembers},
        Row{"CertRuleToJson", {"out_cert_rule"},
            [](Json::Value &o) {
                CKelvoResponse_CertRule r;
                r.m_strBarRatio = "16:9";
                FCMarshal::CertRuleToJson(r, o);
            },
            [](Json::Value &i, bool s) {
                CKelvoResponse_CertRule r;
                r.m_strServiceRule = "old";
                FCMarshal::JsonToCertRule(i, r);
                return r.m_strBarRatio == (s ? "16:9" : "") && r.m_strServiceRule.empty();
            },
            OnEmpty::AddsMembers},
        Row{"VODProviderToJson", {"out_vod_providers"},
            [](Json::Value &o) {
                CKelvoResponse_VODProviders p;
                p.m_providers["k"].m_name = "Prov";
                FCMarshal::VODProviderToJson(p, o);
            },
            [](Json::Value &i, bool s) {
                CKelvoResponse_VODProviders p, expected;
                if (s)
                    expected.m_providers["k"].m_name = "Prov";
                FCMarshal::JsonToVODProvider(i, p);
                return SameProviders(p, expected);
            },
            OnEmpty::Zero},
        Row{"FCRemoteProgramToJson",
            {"activityID", "program source id", "channel name", "channel number", "program id", "lang", "start time",
             "utc start time", "duration", "title", "cert flag", "genre array", "poster url", "poster type",
             "poster overlay", "poster index", "short desc", "desc", "series", "EndTime", "IsRF"},
            [](Json::Value &o) { FCMarshal::FCRemoteProgramToJson(Program("T", 1000), o); },
            [](Json::Value &i, bool s) {
                FCRemoteProgram p;
                FCMarshal::JsonToFCRemoteProgram(i, p);
                FCRemoteProgram empty;
                empty.m_activityID = REMOTE_CONTENT_ACTIVITY_INVALID;
                return p == (s ? Program("T", 1000) : empty);
            },
            OnEmpty::Zero},
        Whole<FCRemoteChannel>(
            "FCRemoteChannelToJson",
            {"activityID", "str_program_source_id", "str_channel_name", "str_channel_number", "str_alias", "str_major",
             "str_minor", "str_onid", "str_tsid", "str_sid", "str_frequency", "str_ptc", "str_icon_url",
             "str_url_index", "str_dtv", "embed", "str_digital_flag", "str_qam_flag", "genre id", "gere name",
             "ac_rank"},
            FCMarshal::FCRemoteChannelToJson, FCMarshal::JsonToFCRemoteChannel, Channel, OnEmpty::AddsMembers,
            {"activityID", "str_program_source_id", "str_channel_name", "str_channel_number", "str_alias", "str_major",
             "str_minor", "str_onid", "str_tsid", "str_sid", "str_frequency", "str_ptc", "str_icon_url",
             "str_url_index", "str_dtv", "embed", "str_digital_flag", "str_qam_flag", "genre id", "genre name",
             "ac_rank"}),
        Whole<FCMBRNetworkProgram>("MBRProgramToJson",
                                   {"m_startTime", "m_duration", "m_title", "m_channelID", "m_programID"},
                                   FCMarshal::MBRProgramToJson, FCMarshal::JsonToMBRProgram, [] { return MbrProgram(5); },
                                   OnEmpty::Raises),
        Whole<FCMBRNetworkChannel>("MBRNetworkChannelToJson",
                                   {"m_activityID", "m_acRank", "m_str_icon_url", "m_str_url_index", "m_major",
                                    "m_originMajor", "m_minor", "m_name", "m_originName", "m_channelID",
                                    "m_remembered", "m_bDigital", "bit set"},
                                   FCMarshal::MBRNetworkChannelToJson, FCMarshal::JsonToMBRNetworkChannel, MbrChannel,
                                   OnEmpty::Raises),

        // Lists and keyed maps: nothing read from {} and nothing added to it.
        Whole<std::vector<FCRemoteChannel>>("ChannelListToJson", {"channel_array"}, FCMarshal::ChannelListToJson,
                                            FCMarshal::JsonToChannelList,
                                            [] { return std::vector<FCRemoteChannel>{Channel(), FCRemoteChannel()}; },
                                            OnEmpty::Zero),
        Whole<std::vector<FCGenreInfo>>("GenreListToJson", {"array_genre"}, FCMarshal::GenreListToJson,
                                        FCMarshal::JsonToGenreList,
                                        [] {
                                            FCGenreInfo g;
                                            g.m_id = "1";
                                            g.m_imgIndex = "3";
                                            return std::vector<FCGenreInfo>{g};
                                        },
                                        OnEmpty::Zero),
        Whole<std::vector<std::string>>("SourceIDListToJson", {"sourceIDArray"}, FCMarshal::SourceIDListToJson,
                                        FCMarshal::JsonToSourceIDList,
                                        [] { return std::vector<std::string>{"a", "b"}; }, OnEmpty::Zero),
        Whole<std::list<ULL>>("ServiceIDListToJson", {"service_list"}, FCMarshal::ServiceIDListToJson,
                              FCMarshal::JsonToServiceIDList, [] { return std::list<ULL>{1ULL, 1ULL << 40}; },
                              OnEmpty::Zero),
        Row{"RFNetworkChannelTableToJson", {"service list"},
            [](Json::Value &o) {
                FCRFNetworkChannelTable t;
                unsigned long long id = 99;
                t.AppendRFNetworkChannel(id);
                FCMarshal::RFNetworkChannelTableToJson(t, o);
            },
            [](Json::Value &i, bool s) {
                FCRFNetworkChannelTable t;
                FCMarshal::JsonToRFNetworkChannelTable(i, t);
                return t.m_rfNetworkChannelList == (s ? std::list<ULL>{99} : std::list<ULL>{});
            },
            OnEmpty::Zero},
        Row{"MBRNetworkChannelTableToJson", {"MBR channel table"},
            [](Json::Value &o) {
                FCMBRNetworkChannelTable t;
                t.AppendNetworkChannel(MbrChannel());
                FCMarshal::MBRNetworkChannelTableToJson(t, o);
            },
            [](Json::Value &i, bool s) {
                FCMBRNetworkChannelTable t;
                FCMarshal::JsonToMBRNetworkChannelTable(i, t);
                return s ? (t.m_mbrNetworkChannelDB.size() == 1 && t.m_mbrNetworkChannelDB.front() == MbrChannel())
                         : t.m_mbrNetworkChannelDB.empty();
            },
            OnEmpty::Zero},
        Row{"MBRProgramTableToJson", {"mbrProgramTable"},
            [](Json::Value &o) {
                FCMBRNetworkProgramTable t;
                FCMBRNetworkProgram a = MbrProgram(2000), b = MbrProgram(1000);
                t.AppendNetworkProgram(a);
                t.AppendNetworkProgram(b);
                FCMarshal::MBRProgramTableToJson(t, o);
            },
            [](Json::Value &i, bool s) {
                FCMBRNetworkProgramTable t;
                FCMarshal::JsonToMBRProgramTable(i, t);
                if (!s)
                    return t.m_mbrNetworkProgramDB.empty();
                return t.m_mbrNetworkProgramDB.size() == 2 && t.m_mbrNetworkProgramDB.at(1000) == MbrProgram(1000) &&
                       t.m_mbrNetworkProgramDB.at(2000).GetDuration() == 60;
            },
            OnEmpty::Zero},
        Whole<std::map<unsigned int, FCRemoteProgram>>(
            "MetaProgramMapToJson", {"meta_program_map"}, FCMarshal::MetaProgramMapToJson,
            FCMarshal::JsonToMetaProgramMap,
            [] { return std::map<unsigned int, FCRemoteProgram>{{3, Program("c", 3)}, {1, Program("a", 1)}}; },
            OnEmpty::Zero),
        Whole<std::map<std::string, FCRemoteChannelKey>>(
            "ProgramSourceMapToJson", {"out_tunable_program_source_id_map"}, FCMarshal::ProgramSourceMapToJson,
            FCMarshal::JsonToProgramSourceMap,
            [] {
                FCRemoteChannelKey k;
                k.m_major = "7";
                k.m_sid = "101";
                return std::map<std::string, FCRemoteChannelKey>{{"src", k}};
            },
            OnEmpty::Zero),
        Whole<std::map<std::string, int>>("CountMapToJson", {"channel count map"}, FCMarshal::CountMapToJson,
                                          FCMarshal::JsonToCountMap,
                                          [] { return std::map<std::string, int>{{"news", 4}, {"drama", 0}}; },
                                          OnEmpty::Zero),
        Whole<std::map<std::string, std::vector<FCRemoteProgram>>>(
            "ProgramMapToJson", {"out_mapProgramWithSourceID"}, FCMarshal::ProgramMapToJson,
            FCMarshal::JsonToProgramMap,
            [] {
                return std::map<std::string, std::vector<FCRemoteProgram>>{
                    {"s1", {Program("x", 1), Program("y", 2)}}, {"s2", {}}};
            },
            OnEmpty::Zero),
        Whole<std::vector<RatingInfo>>("RatingListToJson", {"ratings"}, FCMarshal::RatingListToJson,
                                       FCMarshal::JsonToRatingList,
                                       [] { return std::vector<RatingInfo>{{1, 2, 3}, {4, 5, 6}}; }, OnEmpty::Zero),
    };
    return rows;
}

std::set<std::string> Names(const Json::Value &value)
{
    const auto names = value.getMemberNames();
    return std::set<std::string>(names.begin(), names.end());
}

}  // namespace

TEST(Marshal, EveryWrapperWritesItsMembersReadsThemBackAndTreatsAnEmptyReplyAsItsShapeSays)
{
    for (const Row &row : Table()) {
        SCOPED_TRACE(row.name);
        Json::Value written(Json::objectValue);
        row.write(written);
        EXPECT_EQ(Names(written), row.written);

        Json::Value copy = written;
        EXPECT_TRUE(row.read(copy, true));

        Json::Value empty(Json::objectValue);
        switch (row.onEmpty) {
        case OnEmpty::Raises:
            EXPECT_THROW(row.read(empty, false), Json::LogicError);
            break;
        case OnEmpty::Zero:
            EXPECT_TRUE(row.read(empty, false));
            EXPECT_EQ(empty, Json::Value(Json::objectValue));
            break;
        case OnEmpty::AddsMembers:
            EXPECT_TRUE(row.read(empty, false));
            EXPECT_EQ(Names(empty), row.addedOnEmpty.empty() ? row.written : row.addedOnEmpty);
            break;
        }
    }
}

TEST(Marshal, WritersKeepMembersAlreadyInTheValueAndUseTheWireTypes)
{
    Json::Value out;
    out["keep"] = "me";
    FCMarshal::TVSourceAndTVModeToJson(1, 2, 3, out);
    FCMarshal::TCServiceIdToJson(18446744073709551615ULL, out);
    FCMarshal::PGNumToJson(static_cast<unsigned short>(7), out);
    FCMarshal::FlagToJson(true, out);
    EXPECT_EQ(out["keep"], "me");
    EXPECT_TRUE(out["in_source"].isInt());
    EXPECT_EQ(out["TCServiceId"], "18446744073709551615");
    EXPECT_EQ(out["pgNum"].type(), Json::uintValue);
    EXPECT_TRUE(out["flag"].isBool());
}

TEST(Marshal, EmptyContainersLeaveTheirMemberAbsent)
{
    Json::Value out(Json::objectValue);
    std::vector<FCRemoteChannel> channels;
    std::map<unsigned int, FCRemoteProgram> programs;
    std::vector<RatingInfo> ratings;
    FCMarshal::ChannelListToJson(channels, out);
    FCMarshal::MetaProgramMapToJson(programs, out);
    FCMarshal::RatingListToJson(ratings, out);
    EXPECT_EQ(out, Json::Value(Json::objectValue));
}

TEST(Marshal, KeyedMapsAreWrittenInKeyOrderWithTheirKey)
{
    std::map<unsigned int, FCRemoteProgram> programs = {{30, Program("c", 30)}, {10, Program("a", 10)}};
    Json::Value out;
    FCMarshal::MetaProgramMapToJson(programs, out);
    ASSERT_EQ(out["meta_program_map"].size(), 2u);
    EXPECT_EQ(out["meta_program_map"][0]["key"], 10u);
    EXPECT_EQ(out["meta_program_map"][0]["title"], "a");
    EXPECT_EQ(out["meta_program_map"][1]["key"], 30u);

    std::map<std::string, int> counts = {{"b", 2}, {"a", 1}};
    Json::Value countsOut;
    FCMarshal::CountMapToJson(counts, countsOut);
    Json::Value firstCount;
    firstCount["count"] = 1;
    firstCount["genre"] = "a";
    EXPECT_EQ(countsOut["channel count map"][0], firstCount);
}

TEST(Marshal, MapReadersAssignPerKeyAndKeepOtherEntries)
{
    Json::Value in;
    Json::Value first = Json::objectValue, second = Json::objectValue;
    first["key"] = 5u;
    first["title"] = "old";
    second["key"] = 5u;
    second["title"] = "new";
    in["meta_program_map"].append(first);
    in["meta_program_map"].append(second);
    std::map<unsigned int, FCRemoteProgram> programs = {{9, Program("kept", 9)}};
    FCMarshal::JsonToMetaProgramMap(in, programs);
    ASSERT_EQ(programs.size(), 2u);
    EXPECT_EQ(programs[5].m_title, "new");
    EXPECT_EQ(programs[9].m_title, "kept");

    // A source's vector is replaced, not extended; list readers append.
    std::map<std::string, std::vector<FCRemoteProgram>> bySource = {{"s1", {Program("a", 1), Program("b", 2)}},
                                                                    {"s2", {Program("c", 3)}}};
    std::map<std::string, std::vector<FCRemoteProgram>> reply = {{"s1", {Program("z", 9)}}};
    Json::Value replyJson;
    FCMarshal::ProgramMapToJson(reply, replyJson);
    FCMarshal::JsonToProgramMap(replyJson, bySource);
    ASSERT_EQ(bySource["s1"].size(), 1u);
    EXPECT_EQ(bySource["s1"][0].m_title, "z");
    EXPECT_EQ(bySource["s2"].size(), 1u);

    std::vector<std::string> ids = {"x"};
    Json::Value list;
    list["sourceIDArray"].append("y");
    FCMarshal::JsonToSourceIDList(list, ids);
    EXPECT_EQ(ids, (std::vector<std::string>{"x", "y"}));
}

TEST(Marshal, DecimalTextReadersStopAtTheFirstNonDigit)
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
