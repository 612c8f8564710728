// The service id's three layouts, and W3C date-times with their inverted zone offset.
#include <string>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "FCServiceIdUtil.h"
#include "FakeDlog.h"

namespace {

struct IdRow {
    unsigned long long id;
    bool directTune;
    int type;
    unsigned short number;
    int profile;
    unsigned short major, minor, programNumber;
};

// Each field at its extreme values and its boundary bits, so that a field shifted or masked by
// one bit shows. A direct-tune id keeps the start values of all but its number.
const std::vector<IdRow> kIds = {
    {0xFA00000000001234ULL, true, -1, 0x1234, -1, 0, 0, 0},
    {0xFAFFFFFFFFFFFFFFULL, true, -1, 0xFFFF, -1, 0, 0, 0},
    {0xFB00000000000000ULL, false, 15, 0x5800, 0, 0, 0, 0},
    {0xF9FFFFFFFFFFFFFFULL, false, 15, 0x4FFF, 63, 0x1FFF, 0x3FF, 0xFFFF},
    {0x9FFFE0C000C00601ULL, false, 9, 0x7FFF, 1, 0x1001, 0x201, 0x8001},
    {0x0000208000800401ULL, false, 0, 1, 1, 1, 1, 1},
    {0x1000000000000000ULL, false, 1, 0, 0, 0, 0, 0},
    {0x9000000000000000ULL, false, 9, 0, 0, 0, 0, 0},
    {0x0000000100000000ULL, false, 0, 0, 0, 0, 0, 0x200},
    // Below 2^32: profile, number and an eleven-bit type, nothing else.
    {0x00000000FFFFFFFFULL, false, 0x7FF, 0x7FFF, 63, 0, 0, 0},
    {9ULL << 21, false, 9, 0, 0, 0, 0, 0},
    {1ULL << 21, false, 1, 0, 0, 0, 0, 0},
    {1ULL << 20, false, 0, 0x4000, 0, 0, 0, 0},
    {1ULL << 6, false, 0, 1, 0, 0, 0, 0},
    {0x3FULL, false, 0, 0, 63, 0, 0, 0},
    {0ULL, false, 0, 0, 0, 0, 0, 0},
};

TEST(ServiceIdUtil, ExtractsEachLayoutToTheBit)
{
    for (const IdRow &row : kIds) {
        SCOPED_TRACE(testing::Message() << std::hex << row.id);
        ExtractedServiceInfomations out;
        out.major = 77;  // what extraction starts from replaces what was there
        EXPECT_TRUE(FCServiceIdUtil::ExtractServiceInformationsFromServiceId(row.id, out));
        EXPECT_EQ(out.service_id, row.id);
        EXPECT_EQ(out.direct_tune, row.directTune);
        EXPECT_EQ(out.channel_type, row.type);
        EXPECT_EQ(out.channel_number, row.number);
        EXPECT_EQ(out.service_profile, row.profile);
        EXPECT_EQ(out.major, row.major);
        EXPECT_EQ(out.minor, row.minor);
        EXPECT_EQ(out.program_number, row.programNumber);
        EXPECT_EQ(FCServiceIdUtil::IsVirtualChannel(row.id), row.type == 9);
    }
}

TEST(ServiceIdUtil, LogsTheDirectTuneAndTheFullLine)
{
    FakeDlog::Clear();
    ExtractedServiceInfomations out;
    FCServiceIdUtil::ExtractServiceInformationsFromServiceId(0xFA00000000000007ULL, out);
    FCServiceIdUtil::IsVirtualChannel(0x9FFFE0C000C00601ULL);
    const auto messages = FakeDlog::Messages("kelvo-dbus-proxy");
    ASSERT_EQ(messages.size(), 3u);
    const std::string ids = "[" + std::to_string(getpid()) + "][";
    EXPECT_NE(messages[0].find("[FCServiceIdUtil::ExtractServiceInformationsFromServiceId] (direct tune) "
                               "service_id:18014398509481984007, channel_number:7\n"),
              std::string::npos);
    EXPECT_NE(messages[1].find("[FCServiceIdUtil::ExtractServiceInformationsFromServiceId]service_id:"
                               "11529180686342686209, major:4097, minor:513, program_number:32769, "
                               "service_profile:1, channel_number:32767, channel_type:9\n"),
              std::string::npos);
    EXPECT_NE(messages[2].find("[FCServiceIdUtil::IsVirtualChannel] service_info.channel_type:9\n"), std::string::npos);
    EXPECT_EQ(messages[0].rfind(ids, 0), 0u);
}

struct ParseRow {
    std::string text;
    bool ok;
    int year, month, day, hour, minute, second;
    unsigned int offsetHours, offsetMinutes;
    int offset;
};

// Each parse starts from zone fields 1, 2 and 62, so that a zone left as it was shows.
const std::vector<ParseRow> kParses = {
    // A zone designator counts only with more than one character after the date-time, so a
    // lone 'Z' is the one-character tail.
    {"2020-05-01T10:20:30Z", true, 2020, 5, 1, 10, 20, 30, 1, 2, 62},
    {"2020-05-01T10:20:30+09:30", true, 2020, 5, 1, 10, 20, 30, 9, 30, -570},
    {"2020-05-01T10:20:30-05:00", true, 2020, 5, 1, 10, 20, 30, 5, 0, 300},
    {"1999-12-31T23:59:59+00:00", true, 1999, 12, 31, 23, 59, 59, 0, 0, 0},
    // No zone, a one-character tail and a character that is no designator keep the zone.
    {"2020-05-01T10:20:30", true, 2020, 5, 1, 10, 20, 30, 1, 2, 62},
    {"2020-05-01T10:20:30+", true, 2020, 5, 1, 10, 20, 30, 1, 2, 62},
    {"2020-05-01T10:20:30Z9", true, 2020, 5, 1, 10, 20, 30, 0, 0, 0},
    {"2020-05-01T10:20:30.5+09:00", true, 2020, 5, 1, 10, 20, 30, 1, 2, 62},
    // A sign with only one number fails.
    {"2020-05-01T10:20:30+9", false, 2020, 5, 1, 10, 20, 30, 9, 2, 62},
    {"2020-05-01T10:20:30+09", false, 2020, 5, 1, 10, 20, 30, 9, 2, 62},
    {"2020-05-01 10:20:30", false, 0, 0, 0, 0, 0, 0, 1, 2, 62},
    {"1600000000", false, 0, 0, 0, 0, 0, 0, 1, 2, 62},
    {"", false, 0, 0, 0, 0, 0, 0, 1, 2, 62},
};

TEST(FCTime, ParsesW3CDateTimesWithTheOffsetInverted)
{
    for (const ParseRow &row : kParses) {
        SCOPED_TRACE(row.text);
        FCTime time;
        time.m_offsetHours = 1;
        time.m_offsetMinutes = 2;
        time.m_offset = 62;
        EXPECT_EQ(time.from_W3CDateTimeFormat(row.text, true), row.ok);
        EXPECT_EQ(time.m_year, row.year);
        EXPECT_EQ(time.m_month, row.month);
        EXPECT_EQ(time.m_day, row.day);
        EXPECT_EQ(time.m_hour, row.hour);
        EXPECT_EQ(time.m_minute, row.minute);
        EXPECT_EQ(time.m_second, row.second);
        EXPECT_EQ(time.m_offsetHours, row.offsetHours);
        EXPECT_EQ(time.m_offsetMinutes, row.offsetMinutes);
        EXPECT_EQ(time.m_offset, row.offset);
        EXPECT_EQ(time.m_daylightSaving, row.ok);
    }
}

TEST(FCTime, PrintsTheZoneOnlyWhenThereIsAnOffsetAndParsesBackToIt)
{
    const std::vector<std::string> texts = {"2020-05-01T10:20:30+09:30", "2020-05-01T10:20:30-05:00",
                                            "0999-01-02T03:04:05+00:01"};
    for (const std::string &text : texts) {
        FCTime time;
        ASSERT_TRUE(time.from_W3CDateTimeFormat(text, false));
        EXPECT_EQ(time.to_W3CDateTimeFormat(), text);
    }
    FCTime utc;
    ASSERT_TRUE(utc.from_W3CDateTimeFormat("2020-05-01T10:20:30Z", false));
    EXPECT_EQ(utc.to_W3CDateTimeFormat(), "2020-05-01T10:20:30");
}

TEST(FCTime, ConvertsToAndFromUtcSecondsThroughTheOffset)
{
    const unsigned long utc = 1588328430;  // 2020-05-01T10:20:30Z
    FCTime time;
    ASSERT_TRUE(time.from_W3CDateTimeFormat("2020-05-01T10:20:30+09:00", false));
    EXPECT_EQ(time.to_UTC(), utc - 9 * 3600);

    FCTime local;
    EXPECT_TRUE(local.from_UTC(utc, -570, false));
    EXPECT_EQ(local.to_W3CDateTimeFormat(), "2020-05-01T19:50:30+09:30");
    EXPECT_EQ(local.to_UTC(), utc);

    // A zero offset leaves the hours and minutes of the zone as they were; daylight saving is
    // one hour ahead.
    EXPECT_TRUE(local.from_UTC(utc, 0, true));
    EXPECT_EQ(local.m_hour, 11);
    EXPECT_EQ(local.m_offsetHours, 9u);
    EXPECT_EQ(local.m_offsetMinutes, 30u);
    EXPECT_EQ(local.to_UTC(), utc);
}

}  // namespace
