// The content daemon simulator writes a day's programme map from texts kept per programme; the
// reply must be the very text it would write from the answer built as one JSON tree.
#include <string>

#include <gtest/gtest.h>
#include <json/json.h>

#include "SimContent.h"

namespace {

const char *const kFixture = R"({
  "programs": {
    "s1": [{"utc start time": 100, "duration": 50, "title": "Nachrichten \u00fc \"quoted\" \\ back"},
           {"utc start time": 150, "duration": 50, "title": "\ud83d\ude00 emoji", "genres": ["a", "b"]},
           {"utc start time": "200", "duration": 10, "title": "start as text"}],
    "s2": [{"utc start time": 90, "duration": 20, "title": "early"}],
    "s\"3": [{"utc start time": 120, "duration": 5, "title": "odd source id"}]
  }
})";

TEST(DaemonAnswer, ProgramMapTextIsTheCompactTextOfTheAnswer)
{
    Json::Value fixture;
    ASSERT_TRUE(Json::Reader().parse(kFixture, fixture));
    KelvoSimContent content;
    std::string error;
    ASSERT_TRUE(content.Load(fixture, error)) << error;
    const char *const requests[] = {
        R"({"sourceIDArray": ["s1", "s2", "s\"3"], "utc start time": 0, "duration": 1000})",
        R"({"sourceIDArray": ["s1"], "utc start time": 150, "duration": 51})",
        R"({"sourceIDArray": ["s2", "s2", "nope", 7, "s1"], "utc start time": 95, "duration": 100})",
        R"({"sourceIDArray": ["s1"], "utc start time": 9223372036854775000, "duration": 9000})",
        R"({"sourceIDArray": ["s2"], "utc start time": 500, "duration": 10})",
        R"({})",
        "not json",
    };
    for (const char *request : requests) {
        Json::Value reply;
        ASSERT_TRUE(content.Answer("GetProgramMap", request, reply));
        std::string text;
        ASSERT_TRUE(content.AnswerText("GetProgramMap", request, text));
        EXPECT_EQ(text, KelvoSimContent::ToCompactText(reply)) << request;
    }
}

TEST(DaemonAnswer, OtherMethodsAnswerTheirCompactTextAndUnknownOnesNothing)
{
    KelvoSimContent content;
    std::string text;
    ASSERT_TRUE(content.AnswerText("GetChannelCRC", "{}", text));
    EXPECT_EQ(text, R"({"crc":"","ret":true})");
    EXPECT_FALSE(content.AnswerText("NoSuchMethod", "{}", text));
}

}  // namespace
