// Replies of the daemon may hold anything. Readers that let jsoncpp's error pass still do so;
// everything else must come back cleanly (run under AddressSanitizer to see reads out of
// bounds, not only crashes).
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "FCCallHelper.h"
#include "FCJsonHelper.h"
#include "FCMarshal.h"
#include "FakeCall.h"
#include "FakeDlog.h"

namespace {

enum class Outcome { Clean, JsonError };

struct Hostile {
    const char *name;
    std::string reply;
    std::function<void(Json::Value &)> read;
    Outcome outcome;
};

std::string Nested(int depth)
{
    return std::string(depth, '[') + std::string(depth, ']');
}

template <typename T>
std::function<void(Json::Value &)> Into(bool (*reader)(Json::Value &, T &))
{
    return [reader](Json::Value &in) {
        T out{};
        reader(in, out);
    };
}

}  // namespace

TEST(HostileReply, ReadersFailCleanlyOrRaiseOnlyJsoncppErrors)
{
    const Hostile cases[] = {
        {"channel_array an object", R"({"channel_array":{"a":1,"b":2}})", Into(FCMarshal::JsonToChannelList),
         Outcome::Clean},
        {"channel_array a number", R"({"channel_array":5})", Into(FCMarshal::JsonToChannelList), Outcome::Clean},
        {"reply an array", R"([{"str_major":"1"}])", Into(FCMarshal::JsonToChannelList), Outcome::Clean},
        {"channel element a string", R"({"channel_array":["x"]})", Into(FCMarshal::JsonToChannelList),
         Outcome::JsonError},
        {"program_array a string", R"({"out_mapProgramWithSourceID":[{"program_source_id":"s","program_array":"x"}]})",
         Into(FCMarshal::JsonToProgramMap), Outcome::Clean},
        {"program map an object", R"({"out_mapProgramWithSourceID":{"s":{"program_array":[{}]}}})",
         Into(FCMarshal::JsonToProgramMap), Outcome::Clean},
        {"meta key negative", R"({"meta_program_map":[{"key":-1}]})", Into(FCMarshal::JsonToMetaProgramMap),
         Outcome::JsonError},
        {"genre list of numbers", R"({"array_genre":[1,2]})", Into(FCMarshal::JsonToGenreList), Outcome::JsonError},
        {"service list an object", R"({"service_list":{"TCServiceId":"1"}})", Into(FCMarshal::JsonToServiceIDList),
         Outcome::Clean},
        {"service id of 5000 digits", R"({"service_list":[{"TCServiceId":")" + std::string(5000, '9') + R"("}]})",
         Into(FCMarshal::JsonToServiceIDList), Outcome::Clean},
        {"service id a number", R"({"TCServiceId":5})",
         [](Json::Value &in) {
             unsigned long long id = 0;
             FCMarshal::VCJsonToServiceId(in, id);
         },
         Outcome::JsonError},
        {"ratings an object", R"({"ratings":{"rating":1}})", Into(FCMarshal::JsonToRatingList), Outcome::Clean},
        {"count a string", R"({"count":"12"})",
         [](Json::Value &in) {
             int count = 0;
             FCMarshal::JsonToCount(in, count);
         },
         Outcome::JsonError},
        {"vod providers an object", R"({"out_vod_providers":{"a":{}}})", Into(FCMarshal::JsonToVODProvider),
         Outcome::Clean},
        {"mbr table of strings", R"({"MBR channel table":["a"]})", Into(FCMarshal::JsonToMBRNetworkChannelTable),
         Outcome::JsonError},
        {"rf table an object", R"({"service list":{"x":1}})", Into(FCMarshal::JsonToRFNetworkChannelTable),
         Outcome::Clean},
        {"program genre array an object", R"({"genre array":{"a":"b"}})", Into(FCMarshal::JsonToFCRemoteProgram),
         Outcome::Clean},
    };
    for (const Hostile &c : cases) {
        SCOPED_TRACE(c.name);
        Json::Value reply;
        ASSERT_TRUE(FCJsonHelper::ParseToJson(c.reply, reply));
        Outcome outcome = Outcome::Clean;
        try {
            c.read(reply);
        } catch (const Json::Exception &) {
            outcome = Outcome::JsonError;
        }
        EXPECT_EQ(outcome, c.outcome);
    }
}

TEST(HostileReply, DeepNestingIsAParseFailure)
{
    const std::string deep = Nested(200000);
    Json::Value out;
    EXPECT_FALSE(FCJsonHelper::ParseToJson(deep, out));
    std::string text = deep;
    EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(text));
    FCRemoteProgram program;
    EXPECT_FALSE(program.from_string(text));

    FakeCall::Reset();
    FakeDlog::Clear();
    FakeCall::Script("GetProgramMap", FakeCall::Answer::Text("{\"a\":" + deep + "}"));
    Json::Value reply;
    EXPECT_FALSE(FCCallHelper::RemoteCallWithJsonArguments("GetProgramMap", Json::Value(), reply));
    EXPECT_TRUE(FakeDlog::Contains("fail to parse json data"));
    EXPECT_EQ(FakeCall::Outstanding(), 0);
}

TEST(HostileReply, OddRepliesToYesNoQuestionsAnswerNo)
{
    for (std::string text : {"[true]", "7", "\"ret\"", "{\"ret\":\"yes\"}", "{\"ret\":{}}", "null"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(text));
    }
    Json::Value target;
    EXPECT_TRUE(FCJsonHelper::AppendMetaDataToGivenJson("[1,2]", target));
    EXPECT_TRUE(target.isNull());
}

TEST(HostileReply, RatingListWithoutRatingsLogsAndFails)
{
    FakeDlog::Clear();
    std::vector<RatingInfo> out;
    Json::Value empty(Json::objectValue);
    EXPECT_FALSE(FCMarshal::JsonToRatingList(empty, out));
    Json::Value none;
    none["ratings"] = Json::Value(Json::arrayValue);
    EXPECT_FALSE(FCMarshal::JsonToRatingList(none, out));
    const auto messages = FakeDlog::Messages("kelvo-dbus-proxy");
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0], "DBG_LV[0][FCMarshal::JsonToRatingList] has no ['ratings']\n");
}
