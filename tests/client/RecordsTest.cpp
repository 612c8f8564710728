// The remote channel and programme records and the server response records: what survives
// their JSON forms, what deliberately does not, and their ordering.
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "CKelvoResponse.h"
#include "FCElementData.h"
#include "FCJsonHelper.h"
#include "FakeDlog.h"

namespace {

FCRemoteProgram FullProgram()
{
    FCRemoteProgram p;
    p.m_activityID = REMOTE_CONTENT_ACTIVITY_SUB;
    p.m_programSourceId = "src-1";
    p.m_channelName = "News 24";
    p.m_channelNumber = "24";
    p.m_programId = "prog-9";
    p.m_lang = "en";
    p.m_startTime = "2026-11-21T20:00:00Z";
    p.m_utcStartTime = 1795291200UL;
    p.m_duration = 3600;
    p.m_title = "Evening \"News\"";
    p.m_certFlag = "TV-PG";
    p.m_genres = {"a", "b"};
    p.m_posterUrl = "http://p/1.jpg";
    p.m_posterType = "wide";
    p.m_posterOverlay = "ov";
    p.m_posterIndex = "2";
    p.m_shortDesc = "short";
    p.m_desc = "long description";
    p.m_series = "S1";
    p.m_endTime = 1795294800UL;
    p.m_isRF = true;
    return p;
}

std::set<std::string> Names(const Json::Value &value)
{
    const auto names = value.getMemberNames();
    return std::set<std::string>(names.begin(), names.end());
}

}  // namespace

TEST(RemoteProgram, SurvivesItsJsonRoundTripIncludingFieldsOutsideEquality)
{
    const FCRemoteProgram original = FullProgram();
    Json::Value json;
    ASSERT_TRUE(FCRemoteProgram::ToJson(original, json));
    EXPECT_EQ(json["genre array"], [] {
        Json::Value a;
        a.append("a");
        a.append("b");
        return a;
    }());
    EXPECT_TRUE(json["IsRF"].isBool());
    EXPECT_TRUE(json["utc start time"].isUInt());

    FCRemoteProgram back;
    ASSERT_TRUE(FCRemoteProgram::FromJson(json, back));
    EXPECT_EQ(back, original);
    EXPECT_EQ(back.m_posterType, "wide");
    EXPECT_EQ(back.m_posterOverlay, "ov");
    EXPECT_EQ(back.m_posterIndex, "2");
    EXPECT_EQ(back.m_shortDesc, "short");
    EXPECT_EQ(back.m_endTime, 1795294800UL);
    EXPECT_TRUE(back.m_isRF);

    FCRemoteProgram noGenres = original;
    noGenres.m_genres.clear();
    Json::Value withoutGenres;
    FCRemoteProgram::ToJson(noGenres, withoutGenres);
    EXPECT_FALSE(withoutGenres.isMember("genre array"));
}

TEST(RemoteProgram, FromJsonOfAnEmptyObjectGivesDefaultsAndAddsNothing)
{
    Json::Value empty(Json::objectValue);
    FCRemoteProgram p = FullProgram();
    p.m_genres = {"kept"};
    ASSERT_TRUE(FCRemoteProgram::FromJson(empty, p));
    EXPECT_EQ(p.m_activityID, REMOTE_CONTENT_ACTIVITY_INVALID);
    EXPECT_EQ(p.m_title, "");
    EXPECT_EQ(p.m_desc, "");
    EXPECT_EQ(p.m_utcStartTime, 0UL);
    EXPECT_EQ(p.m_duration, 0);
    EXPECT_EQ(p.m_endTime, 0UL);
    EXPECT_FALSE(p.m_isRF);
    EXPECT_EQ(p.m_genres, std::vector<std::string>{"kept"});
    EXPECT_EQ(empty, Json::Value(Json::objectValue));
}

TEST(RemoteProgram, AMemberOfTheWrongTypeIsCaughtLoggedAndAsserted)
{
    FakeDlog::Clear();
    Json::Value json;
    FCRemoteProgram::ToJson(FullProgram(), json);
    json["title"] = Json::Value(Json::objectValue);
    FCRemoteProgram p;
    EXPECT_FALSE(FCRemoteProgram::FromJson(json, p));
    EXPECT_EQ(p.m_programSourceId, "src-1");  // filled before the bad member stays

    bool caught = false, asserted = false;
    for (const auto &message : FakeDlog::Messages("kelvo-dbus-proxy")) {
        caught |= message.rfind("DBG_LV[0][FCRemoteProgram::FromJson] Exception Catch: ", 0) == 0;
        asserted |= message.find("ASSERT!, Func:FromJson") != std::string::npos;
    }
    EXPECT_TRUE(caught);
    EXPECT_TRUE(asserted);
    EXPECT_TRUE(FakeDlog::Contains("ASSERT(0)"));
}

TEST(RemoteProgram, TextFormKeepsOnlyTheLastGenre)
{
    FCRemoteProgram p = FullProgram();
    std::string text;
    ASSERT_TRUE(p.to_string(text));
    EXPECT_EQ(text.find('\n'), std::string::npos);
    Json::Value parsed;
    FCJsonHelper::ParseToJson(text, parsed);
    Json::Value lastGenre;
    lastGenre["id"] = "b";
    Json::Value genres;
    genres.append(lastGenre);
    EXPECT_EQ(parsed["genre_array"], genres);
    EXPECT_EQ(parsed["strTitle"], "Evening \"News\"");
    EXPECT_TRUE(parsed["utc_starttime"].isInt());
    EXPECT_FALSE(parsed.isMember("desc"));
    EXPECT_FALSE(parsed.isMember("EndTime"));
    EXPECT_FALSE(parsed.isMember("IsRF"));

    FCRemoteProgram back;
    back.m_genres = {"x"};
    ASSERT_TRUE(back.from_string(text));
    EXPECT_EQ(back.m_genres, (std::vector<std::string>{"x", "b"}));
    EXPECT_EQ(back.m_title, p.m_title);
    EXPECT_EQ(back.m_utcStartTime, p.m_utcStartTime);
    EXPECT_EQ(back.m_desc, "");

    FCRemoteProgram none;
    ASSERT_TRUE(none.to_string(text));
    FCJsonHelper::ParseToJson(text, parsed);
    Json::Value onlyNull(Json::arrayValue);
    onlyNull.append(Json::Value());
    EXPECT_EQ(parsed["genre_array"], onlyNull);

    FCRemoteProgram untouched = FullProgram();
    std::string notJson = "{not json";
    EXPECT_FALSE(untouched.from_string(notJson));
    EXPECT_EQ(untouched.m_genres, FullProgram().m_genres);
}

TEST(RemoteProgram, OrderAndEquality)
{
    FCRemoteProgram a = FullProgram(), b = FullProgram();
    b.m_utcStartTime += 1;
    b.m_title = "other";
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    b.m_programSourceId = "src-0";
    EXPECT_TRUE(b < a);

    FCRemoteProgram c = FullProgram();
    c.m_shortDesc = "different";
    c.m_posterType = "tall";
    c.m_endTime = 0;
    c.m_isRF = false;
    EXPECT_EQ(a, c);
    c.m_desc = "different";
    EXPECT_NE(a, c);
    FCRemoteProgram d = FullProgram();
    d.m_genres = {"a"};
    EXPECT_NE(a, d);
}

TEST(RemoteChannel, LosesOnlyItsGenreNameThroughItsRoundTrip)
{
    FCRemoteChannel c;
    c.m_activityID = REMOTE_CONTENT_ACTIVITY_SUB;
    c.m_programSourceId = "ps";
    c.m_alias = "al";
    c.m_ptc = "36";
    c.m_qamFlag = "q";
    c.m_embed = 3;
    c.m_genreId = "g7";
    c.m_genreName = "Sports";
    c.m_acRank = "1";
    Json::Value json;
    FCRemoteChannel::ToJson(c, json);
    EXPECT_EQ(json["gere name"], "Sports");
    EXPECT_FALSE(json.isMember("genre name"));

    FCRemoteChannel back;
    FCRemoteChannel::FromJson(json, back);
    EXPECT_EQ(back.m_genreName, "");
    FCRemoteChannel expected = c;
    expected.m_genreName.clear();
    EXPECT_EQ(back, expected);

    json["genre name"] = "Read";
    FCRemoteChannel::FromJson(json, back);
    EXPECT_EQ(back.m_genreName, "Read");

    FCRemoteChannelKey key;
    c.GetKey(key);
    EXPECT_EQ(key.m_activityID, REMOTE_CONTENT_ACTIVITY_SUB);
    EXPECT_EQ(key.m_sid, c.m_sid);
}

TEST(RemoteChannelKey, NestsUnderChannelKeyAndOrdersLexicographically)
{
    FCRemoteChannelKey k;
    k.m_major = "7";
    k.m_digitalFlag = "1";
    Json::Value json;
    FCRemoteChannelKey::ToJson(k, json);
    EXPECT_EQ(Names(json), std::set<std::string>{"channel_key"});
    EXPECT_EQ(Names(json["channel_key"]),
              (std::set<std::string>{"activityID", "str_channel_number", "str_major", "str_minor", "str_onid",
                                     "str_tsid", "str_sid", "str_frequency", "str_digital_flag"}));
    FCRemoteChannelKey back;
    FCRemoteChannelKey::FromJson(json, back);
    EXPECT_EQ(back, k);

    FCRemoteChannelKey low, high;
    low.m_activityID = REMOTE_CONTENT_ACTIVITY_INVALID;
    high.m_channelNumber = "1";
    EXPECT_TRUE(low < high);  // activity first, as a signed number
    low.m_activityID = high.m_activityID;
    low.m_channelNumber = "1";
    low.m_major = "5";
    high.m_major = "50";
    EXPECT_TRUE(low < high);  // a prefix is smaller
    EXPECT_FALSE(high < low);
    EXPECT_FALSE(low < low);
}

TEST(RemoteRecords, ConfigGenreAndFilterForms)
{
    FCRemoteMSOConfig config;
    EXPECT_EQ(config.m_source, -1);
    EXPECT_EQ(config.m_serviceMode, -1);
    config.m_zipCode = "10001";
    config.m_antennaMode = 1;
    Json::Value json;
    FCRemoteMSOConfig::ToJson(config, json);
    EXPECT_EQ(Names(json["config"]),
              (std::set<std::string>{"strHeadend", "strDeviceType", "strZipCode", "source", "antennaMode",
                                     "serviceMode", "str_additional_info_with_json_format"}));
    FCRemoteMSOConfig back;
    FCRemoteMSOConfig::FromJson(json, back);
    EXPECT_EQ(back, config);

    FCGenreInfo genre;
    genre.m_name = "Drama";
    Json::Value genreJson;
    FCGenreInfo::ToJson(genre, genreJson);
    EXPECT_EQ(Names(genreJson), (std::set<std::string>{"str_id", "str_name", "str_genre_img_url",
                                                       "str_genre_img_type", "str_genre_img_index"}));

    FCFilterCriteria filter;
    filter.m_genreIdList = "1,2";
    Json::Value filterJson;
    FCFilterCriteria::ToJson(filter, filterJson);
    EXPECT_EQ(filterJson["genre id list"], "1,2");
    EXPECT_TRUE(filter.Clear());
    EXPECT_TRUE(filter.m_genreIdList.empty());

    FCAdditionalProgramRequest r1("a", 10, 5), r2("a", 10, 6), r3("a", 9, 100);
    EXPECT_TRUE(r1 < r2);
    EXPECT_TRUE(r3 < r1);
    EXPECT_EQ(r1, FCAdditionalProgramRequest("a", 10, 5));
}

TEST(ServerResponse, CertRuleNestsEightTextsAndReadsEmptyWhenAbsent)
{
    CKelvoResponse_CertRule rule;
    rule.m_strFirstScreen = "home";
    rule.m_strServiceUptimeEnd = "23:00";
    Json::Value json;
    CKelvoResponse_CertRule::ToJson(rule, json);
    EXPECT_EQ(Names(json["out_cert_rule"]),
              (std::set<std::string>{"str_first_screen", "str_adult_default", "str_bar_mode", "str_bar_ratio",
                                     "str_service_cert_type", "str_service_rule", "str_service_uptime_begin",
                                     "str_service_uptime_end"}));
    CKelvoResponse_CertRule back;
    CKelvoResponse_CertRule::FromJson(json, back);
    EXPECT_EQ(back.m_strFirstScreen, "home");
    EXPECT_EQ(back.m_strServiceUptimeEnd, "23:00");

    Json::Value empty(Json::objectValue);
    CKelvoResponse_CertRule blank = rule;
    EXPECT_TRUE(CKelvoResponse_CertRule::FromJson(empty, blank));
    EXPECT_EQ(blank.m_strFirstScreen, "");
    EXPECT_EQ(blank.m_strServiceUptimeEnd, "");
}

TEST(ServerResponse, VODProvidersKeyedByStringLaterElementWins)
{
    Json::Value json;
    for (const char *name : {"first", "second"}) {
        Json::Value element;
        element["string"] = "netflix";
        element["name"] = name;
        element["provider id"] = "p";
        element["logo"] = "l";
        element["widget id"] = "w";
        element["version"] = "1";
        json["out_vod_providers"].append(element);
    }
    CKelvoResponse_VODProviders providers;
    providers.m_providers["other"].m_name = "kept";
    ASSERT_TRUE(CKelvoResponse_VODProviders::FromJson(json, providers));
    ASSERT_EQ(providers.m_providers.size(), 2u);
    EXPECT_EQ(providers.m_providers["netflix"].m_name, "second");
    EXPECT_EQ(providers.m_providers["netflix"].m_widgetId, "w");

    Json::Value out;
    CKelvoResponse_VODProviders::ToJson(providers, out);
    ASSERT_EQ(out["out_vod_providers"].size(), 2u);
    EXPECT_EQ(Names(out["out_vod_providers"][0]),
              (std::set<std::string>{"string", "name", "provider id", "logo", "widget id", "version"}));
    EXPECT_EQ(out["out_vod_providers"][0]["string"], "netflix");

    CKelvoResponse_VODProviders none;
    Json::Value nothing(Json::objectValue);
    CKelvoResponse_VODProviders::ToJson(none, nothing);
    EXPECT_FALSE(nothing.isMember("out_vod_providers"));
}
