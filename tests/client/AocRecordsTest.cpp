// App-on-channel records: the extra data's rules, the UTF-16 conversions at their edges, the
// records' JSON with their asymmetric keys, and the conversions to and from a virtual programme.
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCAocDataUtil.h"
#include "FCJsonHelper.h"
#include "FCVirtualProgramData.h"
#include "FakeDlog.h"

namespace {

Json::Value Parse(const std::string &text)
{
    Json::Value value;
    EXPECT_TRUE(FCJsonHelper::ParseToJson(text, value)) << text;
    return value;
}

// The bytes of a 16-bit string as they lie in memory.
std::string Bytes(const FCString16 &units)
{
    return std::string(reinterpret_cast<const char *>(units.data()), units.size() * 2);
}

FCString16 Units(const std::string &bytes)
{
    FCString16 units(bytes.size() / 2, 0);
    std::memcpy(&units[0], bytes.data(), units.size() * 2);
    return units;
}

// ---- extra data ----

TEST(AocExtraData, RealDataRule)
{
    struct Row {
        const char *recordPackage;
        unsigned int readable;
        const char *recordFlag;
        const char *askPackage;
        const char *askFlag;
        bool handedOut;
    };
    const Row rows[] = {
        {"com.a", 0, "p", "com.a", "other", true},  // the application itself, whatever the flag
        {"com.a", 0, "p", "com.b", "p", false},     // another provider, not readable
        {"com.a", 1, "p", "com.b", "p", true},      // another provider that may read it
        {"com.a", 1, "p", "com.b", "P", false},     // flags compare exactly
        {"com.a", 7, "p", "com.b", "p", true},      // any non-zero flag
        {"com.a", 1, "", "com.b", "", true},        // an empty flag matches an empty one
        {"com.a", 0, "p", "com.a ", "p", false},    // packages compare exactly
        {"", 0, "", "", "x", true},                 // empty package ids are equal
    };
    for (const Row &row : rows) {
        FCAocExtraData extra(row.recordPackage);
        extra.m_isReadableData = row.readable;
        extra.m_providerFlag = row.recordFlag;
        extra.m_realData = "payload";
        EXPECT_EQ(FCAocDataHelper::GetRealDataFromAocExtraData(extra, row.askPackage, row.askFlag),
                  row.handedOut ? "payload" : "")
            << row.recordPackage << " " << row.readable << " " << row.askPackage << " " << row.askFlag;
    }
}

// What GetFCAocExtraData fills reads back through the two getters.
TEST(AocExtraData, FilledRecordReadsBackThroughTheGetters)
{
    for (bool readable : {true, false}) {
        FCAocExtraData extra;
        extra.m_channelId = "kept";
        FCAocDataHelper::GetFCAocExtraData(extra, APP_TYPE_AOC, "com.a", "prov", readable, "data");
        EXPECT_EQ(FCAocDataHelper::GetAppTypeFromAocExtraData(extra), APP_TYPE_AOC);
        EXPECT_EQ(FCAocDataHelper::GetRealDataFromAocExtraData(extra, "com.a", "x"), "data");
        EXPECT_EQ(FCAocDataHelper::GetRealDataFromAocExtraData(extra, "com.b", "prov"), readable ? "data" : "");
        EXPECT_EQ(extra.m_channelId, "kept");
    }
}

TEST(AocExtraData, JsonKeysAndValuesOfTheWrongKind)
{
    FCAocExtraData extra("com.a");
    ASSERT_TRUE(extra.FromJsonStr(R"({"appType":1,"isReadableData":1,"providerFlag":"f","realData":"r",)"
                                  R"("channelId":"c","programEventId":"e"})"));
    EXPECT_EQ(extra.m_packageId, "com.a");
    EXPECT_EQ(extra.m_appType, 1);
    EXPECT_EQ(extra.m_isReadableData, 1u);
    EXPECT_EQ(extra.m_providerFlag, "f");
    EXPECT_EQ(extra.m_realData, "r");
    EXPECT_EQ(extra.m_channelId, "c");
    EXPECT_EQ(extra.m_programEventId, "e");

    FCAocExtraData missing;
    EXPECT_TRUE(missing.FromJsonStr(R"({"realData":"r"})"));
    EXPECT_EQ(missing.m_appType, APP_TYPE_NONE);
    // A hostile extra data: kinds that do not fit are passed over, no exception.
    FCAocExtraData hostile;
    EXPECT_TRUE(hostile.FromJsonStr(R"({"appType":"1","isReadableData":-1,"realData":{"x":1}})"));
    EXPECT_EQ(hostile.m_appType, APP_TYPE_NONE);
    EXPECT_EQ(hostile.m_isReadableData, 0u);
    EXPECT_EQ(hostile.m_realData, "");
    EXPECT_FALSE(hostile.FromJsonStr("{\"appType\":"));
    EXPECT_FALSE(hostile.FromJsonStr("[1]"));
}

// ---- UTF-16 conversions ----

TEST(AocIconv, Utf16BigEndianInMemoryBothWays)
{
    // "A", U+20AC and U+1D11E (a surrogate pair).
    const std::string text = "A\xE2\x82\xAC\xF0\x9D\x84\x9E";
    const std::string bytes("\x00\x41\x20\xAC\xD8\x34\xDD\x1E", 8);
    EXPECT_EQ(Bytes(FCAocDataHelper::ToUtf16BE(text)), bytes);
    EXPECT_EQ(FCAocDataHelper::ToUtf8(Units(bytes)), text);
}

TEST(AocIconv, Edges)
{
    EXPECT_TRUE(FCAocDataHelper::ToUtf16BE("").empty());
    EXPECT_EQ(FCAocDataHelper::ToUtf8(FCString16()), "");
    // Three units of three UTF-8 bytes each in the 13-byte buffer (ASan watches its end).
    EXPECT_EQ(FCAocDataHelper::ToUtf8(Units(std::string("\x20\xAC\x20\xAC\x20\xAC", 6))),
              "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC");
    // Trailing NUL units are cut, inner ones kept.
    EXPECT_EQ(FCAocDataHelper::ToUtf8(Units(std::string("\x00\x61\x00\x00\x00\x62\x00\x00\x00\x00", 10))),
              std::string("a\0b", 3));
    // ToUtf16BE stops at the first NUL of its input.
    EXPECT_EQ(Bytes(FCAocDataHelper::ToUtf16BE(std::string("ab\0c", 4))), std::string("\x00\x61\x00\x62", 4));
    // Text that does not convert gives an empty result: a lone surrogate, bytes that are no UTF-8.
    FakeDlog::Clear();
    EXPECT_EQ(FCAocDataHelper::ToUtf8(Units(std::string("\x00\x61\xD8\x34", 4))), "");
    EXPECT_TRUE(FCAocDataHelper::ToUtf16BE("a\xFF").empty());
    EXPECT_TRUE(FakeDlog::Contains("Iconv convert failed."));
}

TEST(AocIconv, IconvStringOutcomes)
{
    char in[] = "\x00\x61\x00\x62\x00\x63";  // "abc" and a stray byte of a fourth unit
    char out[8];

    FakeDlog::Clear();
    std::memset(out, 'x', sizeof out);
    EXPECT_TRUE(FCAocDataHelper::IconvString("UTF-8", "UTF-16BE", out, 2, in, 6));
    EXPECT_EQ(std::string(out, 3), "abx");  // cut after two characters, nothing written past them
    EXPECT_TRUE(FakeDlog::Contains("Some chars are not converted and output string is cut."));

    FakeDlog::Clear();
    EXPECT_FALSE(FCAocDataHelper::IconvString("UTF-8", "UTF-16BE", out, sizeof out, in, 5));  // odd byte count
    EXPECT_TRUE(FakeDlog::Contains("Iconv convert failed."));

    FakeDlog::Clear();
    EXPECT_FALSE(FCAocDataHelper::IconvString("NO-SUCH-CODE", "UTF-8", out, sizeof out, in, 6));
    EXPECT_TRUE(FakeDlog::Contains("Iconv open failed."));

    FakeDlog::Clear();
    EXPECT_FALSE(FCAocDataHelper::IconvString("UTF-8", "UTF-16BE", nullptr, 0, in, 6));  // found by the fuzzer
    EXPECT_TRUE(FakeDlog::Contains("Iconv convert failed."));

    FakeDlog::Clear();
    EXPECT_TRUE(FCAocDataHelper::IconvString("UTF-8", "UTF-16BE", out, sizeof out, in, 0));
    EXPECT_TRUE(FakeDlog::Texts().empty());
}

// ---- channel, programme id, programme ----

TEST(AocChannel, ChannelIdReadAndWrittenUnderItsTwoKeys)
{
    FCAppChannelData channel;
    ASSERT_TRUE(FCAppChannelData::FromJson(Parse(R"({"packageId":"p","providerId":"pr","serviceId":"s",)"
                                                 R"("channel_id":"c","channelId":"ignored","major":"7",)"
                                                 R"("serviceProfile":3,"antennaMode":2})"),
                                           channel));
    Json::Value out;
    FCAppChannelData::ToJson(channel, out);
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    EXPECT_EQ(Json::writeString(builder, out), R"({"antennaMode":2,"channelId":"c","major":"7","packageId":"p",)"
                                               R"("providerId":"pr","serviceId":"s","serviceProfile":3})");
    FCAppChannelData fresh;
    EXPECT_EQ(fresh.m_serviceProfile, -1);
    EXPECT_EQ(fresh.m_antennaMode, -1);
    EXPECT_TRUE(fresh.m_isVisible);
}

TEST(AocChannel, StreamTypeTexts)
{
    const std::map<std::string, EStreamType> rows = {{"RTS", STREAM_TYPE_RTS},   {"vod", STREAM_TYPE_VOD},
                                                     {"Live", STREAM_TYPE_LIVE}, {"circle", STREAM_TYPE_CIRCLE},
                                                     {"oWn", STREAM_TYPE_OWN},   {"Live ", STREAM_TYPE_UNKNOWN},
                                                     {"", STREAM_TYPE_UNKNOWN},  {"LIVES", STREAM_TYPE_UNKNOWN}};
    for (const auto &row : rows) {
        FCAppChannelData channel;
        channel.m_streamType = STREAM_TYPE_OWN;
        channel.SetStreamType(row.first);
        EXPECT_EQ(channel.m_streamType, row.second) << "\"" << row.first << "\"";
    }
}

TEST(AocChannel, OrderAndEquality)
{
    const FCAppChannelData a("pkg", "p1", "s1"), b("pkg", "p1", "s2"), c("pkg", "p2", "a");
    FCAppChannelData withChannel("pkg", "p1", "s1"), otherPackage("other", "p1", "s1");
    withChannel.m_channelId = "c";
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(b < c);  // the provider decides first
    EXPECT_TRUE(a < withChannel);
    EXPECT_FALSE(withChannel < a);
    EXPECT_FALSE(a < otherPackage);   // the package takes no part in the order
    EXPECT_FALSE(a == otherPackage);  // but in equality
    EXPECT_FALSE(a == withChannel);
    EXPECT_TRUE(a == FCAppChannelData("pkg", "p1", "s1"));
    EXPECT_EQ(a.ToString().rfind("provider_id: ", 0), 0u);
    EXPECT_NE(a.ToString().find("service_id:"), std::string::npos);
}

TEST(AocProgramId, JsonAndWildcardOrder)
{
    FCAocProgramId id(18446744073709551615ULL, "e", 100, 60);
    Json::Value json;
    FCAocProgramId::ToJson(id, json);
    EXPECT_EQ(json["serviceId"], "18446744073709551615");
    FCAocProgramId back;
    ASSERT_TRUE(FCAocProgramId::FromJson(json, back));
    EXPECT_TRUE(back == id);
    EXPECT_EQ(back.m_duration, 60u);

    const FCAocProgramId any(0, "e", 100, 60), five(5, "e", 100, 60), six(6, "a", 50, 60);
    EXPECT_TRUE(any == five);
    EXPECT_FALSE(any < five);
    EXPECT_FALSE(five < any);
    EXPECT_TRUE(five < six);  // both services known: the service decides before the start
    EXPECT_TRUE(five != six);
    EXPECT_TRUE(FCAocProgramId(0, "a", 100, 1) < FCAocProgramId(0, "b", 100, 1));
    EXPECT_TRUE(FCAocProgramId(0, "b", 99, 1) < FCAocProgramId(0, "a", 100, 1));
    EXPECT_FALSE(FCAocProgramId(0, "a", 100, 1) == FCAocProgramId(0, "a", 100, 2));
}

TEST(AocProgramData, JsonWithTextOrNumberReaders)
{
    FCAocProgramData p;
    p.m_relativeOffset = 30;
    p.m_tvsServiceId = 12345678901234567890ULL;
    p.m_title = "T";
    p.m_isReadable = true;
    Json::Value json;
    p.ToJson(json);
    EXPECT_EQ(json["relativeOffset"], "30");
    EXPECT_EQ(json["tvsServiceId"], "12345678901234567890");
    EXPECT_EQ(json.getMemberNames().size(), 15u);
    FCAocProgramData back;
    back.FromJson(json);
    EXPECT_EQ(back.m_relativeOffset, 30u);
    EXPECT_EQ(back.m_tvsServiceId, 12345678901234567890ULL);
    EXPECT_TRUE(back.m_isReadable);

    const std::map<std::string, unsigned int> offsets = {
        {R"("30")", 30}, {"30", 30}, {R"("0x1E")", 30}, {R"("036")", 30}, {R"("x")", 0}};
    for (const auto &row : offsets) {
        Json::Value in = Parse(R"({"relativeOffset":)" + row.first + "}");
        FCAocProgramData read;
        read.FromJson(in);
        EXPECT_EQ(read.m_relativeOffset, row.second) << row.first;
    }
}

TEST(AocProgramData, FromVirtualChannelContent)
{
    FCAocProgramData p("com.a", Parse(R"({"starttime":"0x10","duration":"90","title":"T","short_desc":"S",)"
                                      R"("content_uri":"u","id":"not read"})"));
    EXPECT_EQ(p.m_packageId, "com.a");
    EXPECT_EQ(p.m_startTime, 16u);
    EXPECT_EQ(p.m_duration, 90u);
    EXPECT_EQ(p.m_title, "T");
    EXPECT_EQ(p.m_shortDescription, "S");
    EXPECT_EQ(p.m_contentUri, "u");
    EXPECT_EQ(p.m_programEventId, "");
    FCAocProgramData numeric("com.a", Parse(R"({"duration":90})"));
    EXPECT_EQ(numeric.m_duration, 90u);
}

FCAocProgramData Sample()
{
    FCAocProgramData p;
    p.m_packageId = "com.a";
    p.m_tvsServiceId = 77;
    p.m_programEventId = "ev";
    p.m_startTime = 1000;
    p.m_duration = 600;
    p.m_contentUri = "uri";
    p.m_relativeOffset = 42;
    p.m_title = "title";
    p.m_shortDescription = "short";
    p.m_detailDescription = "detail";
    p.m_channelName = "channel";
    return p;
}

TEST(AocProgramData, ToVirtualProgramCarriesScheduleContentAndService)
{
    FCVirtualProgramData v;
    ASSERT_TRUE(Sample().ToVirtualProgramData(v));
    EXPECT_EQ(v.GetServiceId(), 77u);
    EXPECT_EQ(v.FCTvlumeSchedule::GetEventId(), "ev");
    EXPECT_EQ(v.FCTvlumeSchedule::GetStartTime(), 1000u);
    EXPECT_EQ(v.FCTvlumeSchedule::GetDuration(), 600u);
    EXPECT_EQ(v.GetRelativeOffset(), 42);
    EXPECT_EQ(v.GetContentUri(), "uri");
    EXPECT_EQ(v.GetTitle(), "title");
    EXPECT_EQ(v.GetShortDescription(), "");  // the description does not travel this way
}

TEST(AocProgramData, FromVirtualProgramTakesSixFieldsAndKeepsTheRest)
{
    FCAocProgramData source = Sample();
    FCVirtualProgramData v;
    source.ToVirtualProgramData(v);
    FCAocProgramData target;
    target.m_contentUri = "own uri";
    target.m_packageId = "own package";
    target.m_relativeOffset = 5;
    target.m_shortDescription = "will change";
    ASSERT_TRUE(target.FromVirtualProgramData(v));
    EXPECT_EQ(target.m_tvsServiceId, 77u);
    EXPECT_EQ(target.m_programEventId, "ev");
    EXPECT_EQ(target.m_startTime, 1000u);
    EXPECT_EQ(target.m_duration, 600u);
    EXPECT_EQ(target.m_title, "title");
    EXPECT_EQ(target.m_shortDescription, "");
    EXPECT_EQ(target.m_contentUri, "own uri");
    EXPECT_EQ(target.m_packageId, "own package");
    EXPECT_EQ(target.m_relativeOffset, 5u);
}

// ---- marshal ----

TEST(AocMarshal, ProgramMapIsKeyedByStartTime)
{
    std::map<unsigned int, FCAocProgramData> programs;
    programs[300] = Sample();  // its own start (1000) gives way to the key
    programs[200] = Sample();
    programs[200].m_title = "first";
    Json::Value json;
    FCAocMarshal::AocProgramMapToJson(programs, json);
    ASSERT_EQ(json["aocProgramData"].size(), 2u);
    EXPECT_EQ(json["aocProgramData"][0]["startTime"].asUInt(), 200u);
    EXPECT_EQ(json["aocProgramData"][0]["title"], "first");
    EXPECT_EQ(json["aocProgramData"][1]["startTime"].asUInt(), 300u);

    std::map<unsigned int, FCAocProgramData> read;
    read[5].m_title = "stays";
    read[200].m_title = "replaced";
    ASSERT_TRUE(FCAocMarshal::JsonToAocProgramMap(json, read));
    EXPECT_EQ(read.size(), 3u);
    EXPECT_EQ(read[5].m_title, "stays");
    EXPECT_EQ(read[200].m_title, "first");
    EXPECT_EQ(read[300].m_startTime, 300u);

    Json::Value empty;
    FCAocMarshal::AocProgramMapToJson({}, empty);
    EXPECT_FALSE(empty.isMember("aocProgramData"));
    std::string package = "old";
    Json::Value reply = Parse(R"({"packageId":"com.x"})");
    FCAocMarshal::JsonToPackageId(reply, package);
    EXPECT_EQ(package, "com.x");
}

}  // namespace
