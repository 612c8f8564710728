// The remote programme and channel records and the server response records: what survives their
// JSON and text forms, what deliberately does not, and their ordering. (Member names and the
// readers' behaviour on {} are in the marshal table.)
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
    p.m_programId = "prog-9";
    p.m_startTime = "2026-11-21T20:00:00Z";
    p.m_utcStartTime = 1795291200UL;
    p.m_duration = 3600;
    p.m_title = "Evening \"News\"";
    p.m_genres = {"a", "b"};
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

Json::Value Parse(const std::string &text)
{
    Json::Value value;
    EXPECT_TRUE(FCJsonHelper::ParseToJson(text, value));
    return value;
}

}  // namespace

TEST(RemoteProgram, JsonRoundTripKeepsEveryFieldAndWritesGenresOnlyWhenThereAreSome)
{
    const FCRemoteProgram original = FullProgram();
    Json::Value json;
    FCRemoteProgram::ToJson(original, json);
    EXPECT_EQ(json["genre array"], Parse(R"(["a","b"])"));
    FCRemoteProgram back;
    ASSERT_TRUE(FCRemoteProgram::FromJson(json, back));
    EXPECT_EQ(back, original);
    // Outside equality, but carried all the same.
    EXPECT_EQ(back.m_posterType + back.m_posterOverlay + back.m_posterIndex + back.m_shortDesc, "wideov2short");
    EXPECT_EQ(back.m_endTime, original.m_endTime);
    EXPECT_TRUE(back.m_isRF);

    FCRemoteProgram noGenres = original;
    noGenres.m_genres.clear();
    Json::Value without;
    FCRemoteProgram::ToJson(noGenres, without);
    EXPECT_FALSE(without.isMember("genre array"));
}

TEST(RemoteProgram, AMemberOfTheWrongTypeIsCaughtLoggedAndAsserted)
{
    FakeDlog::Clear();
    Json::Value json;
    FCRemoteProgram::ToJson(FullProgram(), json);
    json["title"] = Json::Value(Json::objectValue);
    FCRemoteProgram p;
    EXPECT_FALSE(FCRemoteProgram::FromJson(json, p));
    EXPECT_EQ(p.m_programSourceId, "src-1");  // read before the bad member: kept

    const auto messages = FakeDlog::Messages("kelvo-dbus-proxy");
    auto has = [&](const std::string &text) {
        for (const auto &m : messages)
            if (m.find(text) != std::string::npos)
                return true;
        return false;
    };
    EXPECT_TRUE(has("DBG_LV[0][FCRemoteProgram::FromJson] Exception Catch: "));
    EXPECT_TRUE(has("ASSERT!, Func:FromJson"));
    EXPECT_TRUE(FakeDlog::Contains("ASSERT(0)"));
}

TEST(RemoteProgram, TextFormKeepsOnlyTheLastGenreAndLeavesOutDescriptionEndAndRF)
{
    FCRemoteProgram p = FullProgram();
    std::string text;
    ASSERT_TRUE(p.to_string(text));
    EXPECT_EQ(text.find('\n'), std::string::npos);
    const Json::Value parsed = Parse(text);
    EXPECT_EQ(parsed["genre_array"], Parse(R"([{"id":"b"}])"));
    EXPECT_EQ(parsed["strTitle"], p.m_title);
    EXPECT_EQ(parsed["utc_starttime"].type(), Json::intValue);
    for (const char *absent : {"desc", "EndTime", "IsRF", "title"})
        EXPECT_FALSE(parsed.isMember(absent)) << absent;

    FCRemoteProgram back;
    back.m_genres = {"x"};
    ASSERT_TRUE(back.from_string(text));
    EXPECT_EQ(back.m_genres, (std::vector<std::string>{"x", "b"}));
    EXPECT_EQ(back.m_title, p.m_title);
    EXPECT_EQ(back.m_utcStartTime, p.m_utcStartTime);
    EXPECT_EQ(back.m_desc, "");

    FCRemoteProgram none;
    ASSERT_TRUE(none.to_string(text));
    EXPECT_EQ(Parse(text)["genre_array"], Parse("[null]"));

    std::string notJson = "{not json";
    EXPECT_FALSE(p.from_string(notJson));
    EXPECT_EQ(p.m_genres, FullProgram().m_genres);
}

TEST(RemoteProgram, OrderBySourceThenStartAndEqualityIgnoresPresentation)
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
}

TEST(RemoteChannel, LosesOnlyItsGenreNameThroughItsRoundTrip)
{
    FCRemoteChannel c;
    c.m_activityID = REMOTE_CONTENT_ACTIVITY_SUB;
    c.m_ptc = "36";
    c.m_embed = 3;
    c.m_genreName = "Sports";
    Json::Value json;
    FCRemoteChannel::ToJson(c, json);
    EXPECT_EQ(json["gere name"], "Sports");

    FCRemoteChannel back;
    FCRemoteChannel::FromJson(json, back);
    FCRemoteChannel expected = c;
    expected.m_genreName.clear();
    EXPECT_EQ(back, expected);
    json["genre name"] = "Read";
    FCRemoteChannel::FromJson(json, back);
    EXPECT_EQ(back.m_genreName, "Read");

    FCRemoteChannelKey key;
    c.GetKey(key);
    EXPECT_EQ(key.m_activityID, REMOTE_CONTENT_ACTIVITY_SUB);
}

TEST(RemoteChannelKey, NestsItsMembersAndOrdersLexicographically)
{
    FCRemoteChannelKey k;
    Json::Value json;
    FCRemoteChannelKey::ToJson(k, json);
    const auto names = json["channel_key"].getMemberNames();
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()),
              (std::set<std::string>{"activityID", "str_channel_number", "str_major", "str_minor", "str_onid",
                                     "str_tsid", "str_sid", "str_frequency", "str_digital_flag"}));

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
    EXPECT_EQ(FCRemoteMSOConfig().m_serviceMode, -1);
}

TEST(ServerResponse, VODProvidersKeyedByStringLaterElementWins)
{
    Json::Value json = Parse(R"({"out_vod_providers":[
        {"string":"netflix","name":"first","provider id":"p","logo":"l","widget id":"w","version":"1"},
        {"string":"netflix","name":"second","provider id":"p","logo":"l","widget id":"w2","version":"1"}]})");
    CKelvoResponse_VODProviders providers;
    providers.m_providers["other"].m_name = "kept";
    ASSERT_TRUE(CKelvoResponse_VODProviders::FromJson(json, providers));
    ASSERT_EQ(providers.m_providers.size(), 2u);
    EXPECT_EQ(providers.m_providers["netflix"].m_name, "second");
    EXPECT_EQ(providers.m_providers["netflix"].m_widgetId, "w2");

    Json::Value out;
    CKelvoResponse_VODProviders::ToJson(providers, out);
    EXPECT_EQ(out["out_vod_providers"][0], json["out_vod_providers"][1]);
}
