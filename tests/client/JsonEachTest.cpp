// A day's programme map is read element by element; whatever the daemon sends, the outcome must
// be the one of reading the reply whole.
#include <gtest/gtest.h>

#include <string>

#include "FCJsonHelper.h"
#include "JsonEachCheck.h"

namespace {

const char *const kKey = "list";

struct Case {
    const char *name;
    std::string text;
};

TEST(JsonEach, AgreesWithTheWholeReplyOnEveryShape)
{
    const std::string deep = std::string(995, '[') + std::string(995, ']');
    const Case cases[] = {
        {"plain", R"({"ret":true,"list":[{"a":1},{"b":[2,3]},"x",4,null]})"},
        {"spaces everywhere", " \r\n{ \"ret\" : true , \"list\" : [ 1 ,\t2 ] }\n"},
        {"empty array", R"({"list":[],"ret":false})"},
        {"no such member", R"({"ret":true,"other":[1]})"},
        {"member of another type", R"({"ret":true,"list":{"a":[1]}})"},
        {"the key twice", R"({"list":[1],"list":[2,3]})"},
        {"the key escaped", R"({"list":[1],"l\u0069st":[2]})"},
        {"brackets and quotes in strings", R"({"list":["],[\"{",{"k":"}"}],"z":"]"})"},
        {"comment", "{\"list\":[1, /* two */ 2]}"},
        {"NUL byte after an element", std::string("{\"list\":[\"a\"\0]}", 15)},
        {"byte order mark", "\xEF\xBB\xBF{\"list\":[1]}"},
        {"text after the root", R"({"list":[1,2]} trailing)"},
        {"two values in one element", R"({"list":[1 2]})"},
        {"trailing commas", R"({"list":[1, ],"ret":true, })"},
        {"empty element", R"({"list":[1,,2]})"},
        {"broken element", R"({"list":[{"a":}]})"},
        {"broken rest", R"({"ret":tru,"list":[1]})"},
        {"unterminated string", R"({"list":["abc)"},
        {"unterminated array", R"({"list":[1,2)"},
        {"root is an array", R"([{"list":[1]}])"},
        {"nested deeper than the reader allows", "{\"list\":[" + deep + "]}"},
        {"empty text", ""},
    };
    for (const Case &c : cases)
        EXPECT_EQ(KelvoJsonEachDifference(c.text, kKey), "") << c.name;
}

TEST(JsonEach, ElementsArriveInOrderAndTheRestKeepsAnEmptyArray)
{
    Json::Value rest;
    std::string seen;
    ASSERT_TRUE(FCJsonHelper::ParseToJsonEach(R"({"ret":true,"list":["a","b","c"]})", kKey, rest,
                                              [&](const Json::Value &e) { seen += e.asString(); }));
    EXPECT_EQ(seen, "abc");
    EXPECT_TRUE(rest["ret"].asBool());
    EXPECT_TRUE(rest[kKey].isArray());
    EXPECT_EQ(rest[kKey].size(), 0u);
}

}  // namespace
