// The remote call envelope over the fake proxy library, and the JSON helpers.
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "FCCallHelper.h"
#include "FCJsonHelper.h"
#include "FakeCall.h"
#include "FakeDlog.h"

namespace {

class CallHelper : public ::testing::Test {
protected:
    void SetUp() override
    {
        FakeCall::Reset();
        FakeDlog::Clear();
    }
    void TearDown() override { EXPECT_EQ(FakeCall::Outstanding(), 0) << "a call result was not released"; }
};

Json::Value Argument()
{
    Json::Value in;
    in["activityID"] = 0;
    in["nested"]["list"].append("a b");
    return in;
}

}  // namespace

TEST_F(CallHelper, SendsCompactJsonAndParsesTheReply)
{
    FakeCall::Script("GetFullChannelList", FakeCall::Answer::Text("{\"ret\": true, \"n\": 3}"));
    Json::Value out;
    ASSERT_TRUE(FCCallHelper::RemoteCallWithJsonArguments("GetFullChannelList", Argument(), out));
    EXPECT_EQ(out["n"], 3);
    const auto arguments = FakeCall::Arguments("GetFullChannelList");
    ASSERT_EQ(arguments.size(), 1u);
    EXPECT_EQ(arguments[0], "{\"activityID\":0,\"nested\":{\"list\":[\"a b\"]}}");
    EXPECT_TRUE(FakeDlog::Lines().empty());
}

TEST_F(CallHelper, FailuresReturnFalseLeaveOutputsAndLogAsTheyShould)
{
    struct Case {
        const char *name;
        FakeCall::Answer answer;
        const char *logged;  // message after the prefix, or null for no line
    };
    const Case cases[] = {
        {"null result", FakeCall::Answer::Null(), nullptr},
        {"success flag clear", FakeCall::Answer::Failed(),
         "DBG_LV[0][FCVirtualChannels_Proxy::Probe] fail to communicate using d-bus\n"},
        {"reply not json", FakeCall::Answer::Text("<html>"),
         "DBG_LV[0][FCVirtualChannels_Proxy::Probe] fail to parse json data\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        FakeCall::Reset();
        FakeDlog::Clear();
        FakeCall::Script("Probe", c.answer);
        Json::Value out;
        out["before"] = 1;
        EXPECT_FALSE(FCCallHelper::RemoteCallWithJsonArguments("Probe", Argument(), out));
        if (c.answer.kind != FakeCall::Answer::Reply) {
            EXPECT_EQ(out["before"], 1);
        }
        const auto messages = FakeDlog::Messages("kelvo-dbus-proxy");
        if (c.logged == nullptr) {
            EXPECT_TRUE(messages.empty());
        } else {
            ASSERT_EQ(messages.size(), 1u);
            EXPECT_EQ(messages[0], c.logged);
        }
    }
}

TEST_F(CallHelper, StringCallsReplaceTheOutputOnlyOnSuccess)
{
    std::string out = "unchanged";
    FakeCall::Script("M", FakeCall::Answer::Failed());
    EXPECT_FALSE(FCCallHelper::RemoteCallWithStringArguments("M", "{}", out));
    EXPECT_EQ(out, "unchanged");
    FakeCall::Script("M", FakeCall::Answer::Text("{\"ret\":true}"));
    EXPECT_TRUE(FCCallHelper::RemoteCallWithStringArguments("M", "raw text", out));
    EXPECT_EQ(out, "{\"ret\":true}");
    EXPECT_EQ(FakeCall::Arguments("M").back(), "raw text");
}

TEST(JsonHelper, ParseReturnBooleanReadsRet)
{
    FakeDlog::Clear();
    std::string yes = "{\"ret\":true}", no = "{\"ret\":false}", absent = "{\"other\":1}", broken = "{";
    EXPECT_TRUE(FCJsonHelper::ParseReturnBoolean(yes));
    EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(no));
    EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(absent));
    EXPECT_TRUE(FakeDlog::Lines().empty());
    EXPECT_FALSE(FCJsonHelper::ParseReturnBoolean(broken));
    ASSERT_EQ(FakeDlog::Messages().size(), 1u);
    EXPECT_NE(FakeDlog::Messages()[0].find("[FCJsonHelper::ParseReturnBoolean] fail to parse json output data"),
              std::string::npos);
}

TEST(JsonHelper, MergeSkipsOnlyEmptyStrings)
{
    Json::Value target;
    target["a"] = "old";
    target["keep"] = 1;
    ASSERT_TRUE(FCJsonHelper::AppendMetaDataToGivenJson("{\"a\":\"\",\"b\":null,\"c\":\"x\",\"d\":[]}", target));
    EXPECT_EQ(target["a"], "old");
    EXPECT_TRUE(target.isMember("b"));
    EXPECT_TRUE(target["b"].isNull());
    EXPECT_EQ(target["c"], "x");
    EXPECT_TRUE(target["d"].isArray());
    EXPECT_EQ(target["keep"], 1);
    EXPECT_FALSE(FCJsonHelper::AppendMetaDataToGivenJson("not json", target));
}

TEST(JsonHelper, FilterDropsExceptedKeysAndEmptyStrings)
{
    Json::Value meta;
    meta["title"] = "T";
    meta["empty"] = "";
    meta["secret"] = "s";
    meta["n"] = 0;
    std::set<std::string> except = {"secret"};
    EXPECT_EQ(FCJsonHelper::GetMetaJsonStringWithExceptionTags(meta, except), "{\"n\":0,\"title\":\"T\"}");
}
