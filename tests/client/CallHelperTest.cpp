// The remote call envelope over the fake proxy library, the JSON helpers, and replies that may
// hold anything: readers that let jsoncpp's error pass still do so; everything else must come back
// cleanly (run under AddressSanitizer to see reads out of bounds, not only crashes).
#include <functional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "FCCallHelper.h"
#include "FCJsonHelper.h"
#include "FCMarshal.h"
#include "FakeCall.h"
#include "FakeDlog.h"

TEST(CallHelper, ArgumentTravelsCompactAndEachOutcomeReturnsAndLogsAsItShould)
{
    // logged: the one message after the prefix, or null for none.
    const struct {
        FakeCall::Answer answer;
        bool ok;
        const char *logged;
    } cases[] = {
        {FakeCall::Answer::Text("{\"ret\": true, \"n\": 3}"), true, nullptr},
        {FakeCall::Answer::Null(), false, nullptr},
        {FakeCall::Answer::Failed(), false,
         "DBG_LV[0][FCVirtualChannels_Proxy::Probe] fail to communicate using d-bus\n"},
        {FakeCall::Answer::Text("<html>"), false,
         "DBG_LV[0][FCVirtualChannels_Proxy::Probe] fail to parse json data\n"},
    };
    Json::Value argument, out;
    ASSERT_TRUE(FCJsonHelper::ParseToJson(R"({"activityID":0,"nested":{"list":["a b"]}})", argument));
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer.text + std::to_string(c.answer.kind));
        FakeCall::Reset();
        FakeDlog::Clear();
        FakeCall::Script("Probe", c.answer);
        out = Json::Value();
        out["before"] = 1;
        EXPECT_EQ(FCCallHelper::RemoteCallWithJsonArguments("Probe", argument, out), c.ok);
        // A reply that fails to parse may leave anything; otherwise out holds the reply or is unchanged.
        if (c.ok) {
            EXPECT_EQ(out["n"], 3);
        } else if (c.answer.kind != FakeCall::Answer::Reply) {
            EXPECT_EQ(out["before"], 1);
        }
        EXPECT_EQ(FakeCall::Arguments("Probe"),
                  std::vector<std::string>{R"({"activityID":0,"nested":{"list":["a b"]}})"});
        EXPECT_EQ(FakeDlog::Messages("kelvo-dbus-proxy"),
                  c.logged ? std::vector<std::string>{c.logged} : std::vector<std::string>{});
        EXPECT_EQ(FakeCall::Outstanding(), 0) << "a call result was not released";

        std::string text = "unchanged";
        EXPECT_EQ(FCCallHelper::RemoteCallWithStringArguments("Probe", "raw text", text),
                  c.answer.kind == FakeCall::Answer::Reply);
        EXPECT_EQ(text, c.answer.kind == FakeCall::Answer::Reply ? c.answer.text : "unchanged");
        EXPECT_EQ(FakeCall::Arguments("Probe").back(), "raw text");
    }
}

TEST(JsonHelper, YesNoRepliesMergeAndFilter)
{
    FakeDlog::Clear();
    for (std::string no :
         {"{\"ret\":false}", "{\"other\":1}", "[true]", "7", "\"ret\"", "{\"ret\":\"yes\"}", "{\"ret\":{}}", "null"})
        EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(no)) << no;
    std::string yes = "{\"ret\":true}", broken = "{";
    EXPECT_TRUE(FCJsonHelper::ParseReturnBoolean(yes));
    EXPECT_TRUE(FakeDlog::Lines().empty());
    EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(broken));
    ASSERT_EQ(FakeDlog::Messages().size(), 1u);
    EXPECT_NE(FakeDlog::Messages()[0].find("[FCJsonHelper::ParseReturnBoolean] fail to parse json output data"),
              std::string::npos);

    Json::Value target;
    EXPECT_TRUE(FCJsonHelper::AppendMetaDataToGivenJson("[1,2]", target));
    EXPECT_TRUE(target.isNull());
    target["a"] = "old";
    ASSERT_TRUE(FCJsonHelper::AppendMetaDataToGivenJson(R"({"a":"","b":null,"c":"x","d":[]})", target));
    EXPECT_EQ(FCJsonHelper::WriteCompact(target), R"({"a":"old","b":null,"c":"x","d":[]})");
    EXPECT_FALSE(FCJsonHelper::AppendMetaDataToGivenJson("not json", target));

    Json::Value meta;
    ASSERT_TRUE(FCJsonHelper::ParseToJson(R"({"title":"T","empty":"","secret":"s","n":0})", meta));
    std::set<std::string> except = {"secret"};
    EXPECT_EQ(FCJsonHelper::GetMetaJsonStringWithExceptionTags(meta, except), "{\"n\":0,\"title\":\"T\"}");
}

namespace {

template <typename In, typename T>
std::function<void(Json::Value &)> Into(bool (*reader)(In &, T &))
{
    return [reader](Json::Value &in) {
        T out{};
        reader(in, out);
    };
}

}  // namespace

TEST(HostileReply, ReadersFailCleanlyOrRaiseOnlyJsoncppErrors)
{
    const bool Raises = true, Clean = false;
    const struct {
        std::string reply;
        std::function<void(Json::Value &)> read;
        bool raises;
    } cases[] = {
        {R"({"channel_array":{"a":1,"b":2}})", Into(FCMarshal::JsonToChannelList), Clean},
        {R"({"channel_array":5})", Into(FCMarshal::JsonToChannelList), Clean},
        {R"([{"str_major":"1"}])", Into(FCMarshal::JsonToChannelList), Clean},
        {R"({"channel_array":["x"]})", Into(FCMarshal::JsonToChannelList), Raises},
        {R"({"out_mapProgramWithSourceID":[{"program_source_id":"s","program_array":"x"}]})",
         Into(FCMarshal::JsonToProgramMap), Clean},
        {R"({"out_mapProgramWithSourceID":{"s":{"program_array":[{}]}}})", Into(FCMarshal::JsonToProgramMap), Clean},
        {R"({"meta_program_map":[{"key":-1}]})", Into(FCMarshal::JsonToMetaProgramMap), Raises},
        {R"({"array_genre":[1,2]})", Into(FCMarshal::JsonToGenreList), Raises},
        {R"({"service_list":{"TCServiceId":"1"}})", Into(FCMarshal::JsonToServiceIDList), Clean},
        {R"({"service_list":[{"TCServiceId":")" + std::string(5000, '9') + R"("}]})",
         Into(FCMarshal::JsonToServiceIDList), Clean},
        {R"({"TCServiceId":5})", Into(FCMarshal::VCJsonToServiceId), Raises},
        {R"({"ratings":{"rating":1}})", Into(FCMarshal::JsonToRatingList), Clean},
        {R"({"count":"12"})", Into(FCMarshal::JsonToCount), Raises},
        {R"({"out_vod_providers":{"a":{}}})", Into(FCMarshal::JsonToVODProvider), Clean},
        {R"({"MBR channel table":["a"]})", Into(FCMarshal::JsonToMBRNetworkChannelTable), Raises},
        {R"({"service list":{"x":1}})", Into(FCMarshal::JsonToRFNetworkChannelTable), Clean},
        {R"({"genre array":{"a":"b"}})", Into(FCMarshal::JsonToFCRemoteProgram), Clean},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.reply.substr(0, 80));
        Json::Value reply;
        ASSERT_TRUE(FCJsonHelper::ParseToJson(c.reply, reply));
        bool raised = false;
        try {
            c.read(reply);
        } catch (const Json::Exception &) {
            raised = true;
        }
        EXPECT_EQ(raised, c.raises);
    }
}

TEST(HostileReply, DeepNestingAndMissingRatingsFailAndLog)
{
    const std::string deep = std::string(200000, '[') + std::string(200000, ']');
    Json::Value out;
    EXPECT_FALSE(FCJsonHelper::ParseToJson(deep, out));
    std::string text = deep;
    EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(text));
    FCRemoteProgram program;
    EXPECT_FALSE(program.from_string(text));
    // The reader a thread keeps parses as before after raising.
    EXPECT_TRUE(FCJsonHelper::ParseToJson("{\"a\":[1]}", out));
    EXPECT_EQ(FCJsonHelper::WriteCompact(out), "{\"a\":[1]}");

    FakeCall::Reset();
    FakeDlog::Clear();
    FakeCall::Script("GetProgramMap", FakeCall::Answer::Text("{\"a\":" + deep + "}"));
    EXPECT_FALSE(FCCallHelper::RemoteCallWithJsonArguments("GetProgramMap", Json::Value(), out));
    EXPECT_TRUE(FakeDlog::Contains("fail to parse json data"));
    EXPECT_EQ(FakeCall::Outstanding(), 0);

    FakeDlog::Clear();  // a rating list without ratings logs and fails
    std::vector<RatingInfo> ratings;
    Json::Value reply(Json::objectValue);
    EXPECT_FALSE(FCMarshal::JsonToRatingList(reply, ratings));
    reply["ratings"] = Json::Value(Json::arrayValue);
    EXPECT_FALSE(FCMarshal::JsonToRatingList(reply, ratings));
    EXPECT_EQ(FakeDlog::Messages("kelvo-dbus-proxy"),
              std::vector<std::string>(2, "DBG_LV[0][FCMarshal::JsonToRatingList] has no ['ratings']\n"));
}
