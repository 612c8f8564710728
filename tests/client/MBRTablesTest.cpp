// Network-channel records and tables: favourites, ordering, lookups, the programme table's
// interval search and the 16-bit text byte swap.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "FakeDlog.h"
#include "dlog.h"
#include "MBRNetworkChannelTable.h"

namespace {

FCMBRNetworkChannel MakeChannel(int major, int minor, int id = -1)
{
    FCMBRNetworkChannel c;
    c.SetMajor(major);
    c.SetOriginMajor(major);
    c.SetMinor(minor);
    c.SetChannelID(id);
    return c;
}

FCMBRNetworkProgram MakeProgram(unsigned long start, int duration, const std::string &title)
{
    FCMBRNetworkProgram p;
    std::string t = title;
    p.SetStartTime(start);
    p.SetDuration(duration);
    p.SetTitle(t);
    return p;
}

}  // namespace

TEST(MBRChannel, DefaultsAndFavourites)
{
    FakeDlog::Clear();
    FCMBRNetworkChannel c;
    EXPECT_EQ(c.GetMajor(), -1);
    EXPECT_EQ(c.GetChannelID(), -1);
    EXPECT_EQ(c.GetActivityID(), 6);
    EXPECT_TRUE(c.IsDigital());

    EXPECT_TRUE(c.SetFavorite(FCMBRNetworkChannel::FAVORITE_5, true));
    Json::Value json;
    FCMBRNetworkChannel::MBRNetworkChannelToJson(c, json);
    EXPECT_EQ(json["bit set"], "10000");
    EXPECT_TRUE(c.GetFavorite(FCMBRNetworkChannel::FAVORITE_5));
    EXPECT_FALSE(c.GetFavorite(FCMBRNetworkChannel::FAVORITE_1));

    EXPECT_FALSE(c.SetFavorite(static_cast<FCMBRNetworkChannel::EFavorite>(5), true));
    EXPECT_FALSE(c.GetFavorite(static_cast<FCMBRNetworkChannel::EFavorite>(7)));
    EXPECT_TRUE(FakeDlog::Contains("favorite < MBR_NETWORKCHANNEL_FAVORITE_MAX"));
    EXPECT_TRUE(FakeDlog::Contains("ASSERT!, Func:SetFavorite"));
    EXPECT_EQ(c.GetFavoriteBitSet().to_string(), "10000");
}

TEST(MBRChannel, BitTextOfOtherCharactersRaises)
{
    FCMBRNetworkChannel c;
    Json::Value json;
    FCMBRNetworkChannel::MBRNetworkChannelToJson(c, json);
    json["bit set"] = "10x01";
    EXPECT_THROW(FCMBRNetworkChannel::JsonToMBRNetworkChannel(json, c), std::invalid_argument);
}

TEST(MBRChannel, EqualityOrderAndRestore)
{
    FCMBRNetworkChannel a = MakeChannel(5, 1, 9), b = MakeChannel(5, 1, 9);
    b.SetRemembered(true);
    b.SetActivityID(2);
    b.SetacRank(8);
    EXPECT_EQ(a, b);
    b.SetDigitalFlag(false);
    EXPECT_NE(a, b);

    EXPECT_TRUE(MakeChannel(5, 1, 9) < MakeChannel(5, 2, 0));
    EXPECT_TRUE(MakeChannel(5, 1, 1) < MakeChannel(5, 1, 2));
    EXPECT_FALSE(MakeChannel(5, 1, 1) < MakeChannel(5, 1, 1));

    std::string origin = "Origin", edited = "Edited";
    a.SetOriginName(origin);
    a.SetName(edited);
    a.SetMajor(77);
    EXPECT_TRUE(a.Restore());
    EXPECT_EQ(a.GetMajor(), 5);
    EXPECT_EQ(a.GetName(), "Origin");
}

TEST(MBRChannelTable, LookupsMergeSortAndMaximum)
{
    FakeDlog::Clear();
    FCMBRNetworkChannelTable table;
    int major = -5, minor = -5;
    EXPECT_FALSE(table.GetMaxNumberOfMajorMinor(major, minor));
    EXPECT_EQ(major, 0);
    EXPECT_EQ(minor, 0);
    bool logged = false;
    for (const auto &line : FakeDlog::Lines()) {
        logged |= line.logId == LOG_ID_MAIN &&
                  line.text.find("FCMBRNetworkChannelDB::GetMaxNumberOfMajorMinor(), m_mbrNetworkChannelDB is empty!") !=
                      std::string::npos;
    }
    EXPECT_TRUE(logged);

    table.AppendNetworkChannel(MakeChannel(1, 1, 10));
    table.AppendNetworkChannel(MakeChannel(5, 0, 20));
    table.AppendNetworkChannel(MakeChannel(3, 9, 30));
    EXPECT_TRUE(table.GetMaxNumberOfMajorMinor(major, minor));
    EXPECT_EQ(major, 5);
    EXPECT_EQ(minor, 9);

    FCMBRNetworkChannel found = MakeChannel(0, 0);
    EXPECT_TRUE(table.FindNetworkChannelbyMajorMinor(3, 9, found));
    EXPECT_EQ(found.GetChannelID(), 30);
    EXPECT_TRUE(table.FindNetworkChannelbyChannelID(20, found));
    EXPECT_EQ(found.GetMajor(), 5);
    EXPECT_FALSE(table.FindNetworkChannelByChannelIDOriginMajor(20, 3, found));
    EXPECT_EQ(found.GetMajor(), 5);  // unchanged on a miss

    table.Merge(table);
    EXPECT_EQ(table.m_mbrNetworkChannelDB.size(), 6u);
    table.Sort();
    EXPECT_EQ(table.m_mbrNetworkChannelDB.front().GetMajor(), 1);
    EXPECT_EQ(table.m_mbrNetworkChannelDB.back().GetMajor(), 5);
}

TEST(MBRProgramTable, IntervalSearchAndFirstStartTimeWins)
{
    FCMBRNetworkProgramTable table;
    FCMBRNetworkProgram first = MakeProgram(1000, 60, "first"), second = MakeProgram(1000, 600, "second");
    table.AppendNetworkProgram(first);
    table.AppendNetworkProgram(second);
    FCMBRNetworkProgram found;
    EXPECT_TRUE(table.FindNetworkProgrambyStartTime(1000, found));
    EXPECT_EQ(found.GetTitle(), "first");
    EXPECT_TRUE(table.FindNetworkProgrambyStartTime(1059, found));
    EXPECT_FALSE(table.FindNetworkProgrambyStartTime(1060, found));
    EXPECT_FALSE(table.FindNetworkProgrambyStartTime(999, found));

    FCMBRNetworkProgramTable other;
    FCMBRNetworkProgram later = MakeProgram(2000, 60, "later");
    other.AppendNetworkProgram(second);
    other.AppendNetworkProgram(later);
    table.Merge(other);
    EXPECT_EQ(table.m_mbrNetworkProgramDB.size(), 2u);
    EXPECT_EQ(table.m_mbrNetworkProgramDB.at(1000).GetTitle(), "first");

    FCMBRNetworkProgram fresh;
    EXPECT_EQ(fresh.GetStartTime(), static_cast<unsigned long>(-1));
    Json::Value json;
    FCMBRNetworkProgram::MBRNetworkProgramToJson(fresh, json);
    FCMBRNetworkProgram back = MakeProgram(1, 1, "x");
    FCMBRNetworkProgram::JsonToMBRNetworkProgram(json, back);
    EXPECT_EQ(back.GetStartTime(), fresh.GetStartTime());
    EXPECT_EQ(back.GetDuration(), -1);
}

TEST(MBRChannel, ConvertEndianSwapsPairsUpToTerminatorOrLength)
{
    unsigned char src[] = {0x00, 'A', 0x00, 'B', 0x00, 0x00, 0x11, 0x22};
    unsigned char dst[12];
    std::memset(dst, 0xEE, sizeof dst);
    EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(dst, src, 8), 4);
    const unsigned char terminated[] = {'A', 0x00, 'B', 0x00, 0x00, 0x00};
    EXPECT_EQ(std::memcmp(dst, terminated, sizeof terminated), 0);
    EXPECT_EQ(dst[6], 0xEE);

    unsigned char full[] = {0x01, 0x02, 0x03, 0x04};
    std::memset(dst, 0xEE, sizeof dst);
    EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(dst, full, 4), 2);
    const unsigned char swapped[] = {0x02, 0x01, 0x04, 0x03, 0x00, 0x00};
    EXPECT_EQ(std::memcmp(dst, swapped, sizeof swapped), 0);

    EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(nullptr, full, 4), 1);
    EXPECT_EQ(FCMBRNetworkChannel::m_ConvertEndian(dst, nullptr, 4), 1);
}
