// The virtual-channel content records: reading the daemon's JSON (numbers as text, drm as a key's
// presence, the extra data), writing it back with what is dropped on purpose, the log texts, the
// playlist lookups and the ratings per country of the set.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCJsonHelper.h"
#include "FCTvlumeContent.h"
#include "FakeTvs.h"

namespace {

Json::Value Parse(const std::string &text)
{
    Json::Value value;
    EXPECT_TRUE(FCJsonHelper::ParseToJson(text, value)) << text;
    return value;
}

// Every key the content reads or leaves out of its extra data, and some it does not know.
const char *const kContent = R"({"id":"ev-7","content_type":"movie","content_uri":"http://c","title":"Film",
    "short_desc":"Short","poster":{"url":"http://p","index":"3"},"rating":"12","ratings":"A10,A12",
    "drm":false,"sequence":"0x10","empty":"","extra":{"k":[1,2]},
    "program_data":{"TCServiceId":"1"},"relative_offset":5,"playlist_item_index":1,"starttime":"x","duration":9,
    "lang":"en","mid_desc":"m","desc":"d","genres":["g"],"video_quality":"hd","schedule_type":"s",
    "trailer_url":"t","website":"w",
    "group_play_list":[
      {"order":"0x1","id":"i1","title":"One","content_uri":"http://1","duration":60,
       "subtitle":{"url":"http://s1","lang_order_index":"en"},"drm":null,"note":"n1","blank":""},
      {"order":2,"id":"i2","title":"Two","content_uri":"http://2","duration":"40","subtitle":{"url":"http://s2"}}]})";

TEST(TvlumeContent, ReadsEveryFieldAndKeepsUnknownKeysAsExtraData)
{
    FCTvlumeContent content(Parse(kContent));
    EXPECT_EQ(content.GetEventId(), "ev-7");
    EXPECT_EQ(content.GetContentType(), "movie");
    EXPECT_EQ(content.GetContentUri(), "http://c");
    EXPECT_EQ(content.GetTitle(), "Film");
    EXPECT_EQ(content.GetShortDescription(), "Short");
    EXPECT_EQ(content.GetPosterUrl(), "http://p");
    EXPECT_EQ(content.GetPosterIndex(), "3");
    EXPECT_TRUE(content.IsDRM());
    EXPECT_EQ(content.GetRating(), "A10|A12");
    EXPECT_EQ(content.GetExtraData(),
              R"({"drm":false,"extra":{"k":[1,2]},"rating":"12","ratings":"A10,A12","sequence":"0x10"})");
    ASSERT_EQ(content.GetPlaylist().size(), 2u);

    const FCTvlumePlaylistItem &first = content.GetPlaylist()[0];
    EXPECT_EQ(first.GetOrder(), 1u);
    EXPECT_EQ(first.GetItemId(), "i1");
    EXPECT_EQ(first.GetTitle(), "One");
    EXPECT_EQ(first.GetContentUri(), "http://1");
    EXPECT_EQ(first.GetDuration(), 60u);
    EXPECT_EQ(first.GetSubtitle().url, "http://s1");
    EXPECT_EQ(first.GetSubtitle().lang_order_index, "en");
    EXPECT_TRUE(first.IsDRM());
    EXPECT_EQ(first.GetExtraData(), R"({"drm":null,"note":"n1"})");
    EXPECT_FALSE(content.GetPlaylist()[1].IsDRM());
    EXPECT_EQ(content.GetPlaylist()[1].GetDuration(), 40u);
    EXPECT_EQ(content.GetPlaylist()[1].GetExtraData(), "{}");
}

// Numbers that come as a number or as text; a value of another type reads 0, never raises.
// A fraction is cut off, as jsoncpp converts it.
TEST(TvlumeContent, NumbersComeAsNumbersOrAsTextOfAnyBase)
{
    const std::vector<std::pair<std::string, unsigned int>> values = {
        {"90", 90},
        {R"("90")", 90},
        {R"("0x10")", 16},
        {R"("017")", 15},
        {R"("abc")", 0},
        {"-1", 0},
        {"1.5", 1},
        {"true", 1},
        {"[7]", 0},
        {R"({"a":1})", 0},
        {"null", 0},
        {R"("")", 0},
        {"4294967295", 4294967295u},
    };
    for (const auto &value : values) {
        SCOPED_TRACE(value.first);
        FCTvlumePlaylistItem item(Parse(R"({"order":)" + value.first + R"(,"duration":)" + value.first + "}"));
        FCTvlumeSchedule schedule(Parse(R"({"duration":)" + value.first + "}"));
        EXPECT_EQ(item.GetOrder(), value.second);
        EXPECT_EQ(item.GetDuration(), value.second);
        EXPECT_EQ(schedule.GetDuration(), value.second);
    }
}

TEST(TvlumeSchedule, StartTimeIsAW3CDateTimeOrANumber)
{
    const std::vector<std::pair<std::string, unsigned int>> starts = {
        {R"("2020-05-01T10:20:30Z")", 1588328430u},
        {R"("2020-05-01T10:20:30+09:00")", 1588328430u - 9 * 3600},
        {R"("2020-05-01T10:20:30")", 1588328430u},
        {R"("1600000000")", 1600000000u},
        {"1600000000", 1600000000u},
        {R"("0x10")", 16u},
        {R"("soon")", 0u},
        {"[1]", 0u},
    };
    for (const auto &start : starts) {
        SCOPED_TRACE(start.first);
        EXPECT_EQ(FCTvlumeSchedule(Parse(R"({"starttime":)" + start.first + "}")).GetStartTime(), start.second);
    }
}

TEST(TvlumeRecords, DefaultsAndWhatAnythingButAnObjectReads)
{
    FCTvlumeSchedule schedule;
    EXPECT_EQ(schedule.GetRelativeOffset(), -1);
    EXPECT_EQ(schedule.GetPlaylistItemIndex(), -1);
    // Missing keys read 0, also the two that a new schedule holds as -1.
    FCTvlumeSchedule read(Parse("{}"));
    EXPECT_EQ(read.GetRelativeOffset(), 0);
    EXPECT_EQ(read.GetPlaylistItemIndex(), 0);

    for (const char *text :
         {"[1,2]", R"("text")", "7", "null", R"({"poster":"p","group_play_list":{"0":{}},"id":{"a":1}})"}) {
        SCOPED_TRACE(text);
        FCTvlumeContent content(Parse(text));
        EXPECT_EQ(content.GetPosterUrl(), "");
        EXPECT_EQ(content.GetEventId(), "");
        EXPECT_TRUE(content.GetPlaylist().empty());
        FCTvlumePlaylistItem item(Parse(R"({"subtitle":"s"})"));
        EXPECT_EQ(item.GetSubtitle().url, "");
    }
}

// What goes back to the daemon: drm, sequence and the extra data stay behind, the ratings keep
// their "|", and the start is a W3C date-time in UTC.
TEST(TvlumeRecords, WriteTheirOwnKeysOnly)
{
    Json::Value out(Json::objectValue);
    out["kept"] = 1;
    FCTvlumeContent(Parse(kContent)).ToJson(out);
    EXPECT_EQ(FCJsonHelper::WriteCompact(out),
              R"({"content_type":"movie","content_uri":"http://c","group_play_list":[)"
              R"({"content_uri":"http://1","duration":60,"id":"i1","order":1,)"
              R"("subtitle":{"lang_order_index":"en","url":"http://s1"},"title":"One"},)"
              R"({"content_uri":"http://2","duration":40,"id":"i2","order":2,)"
              R"("subtitle":{"lang_order_index":"","url":"http://s2"},"title":"Two"}],)"
              R"("id":"ev-7","kept":1,"poster":{"index":"3","url":"http://p"},"rating":"12","ratings":"A10|A12",)"
              R"("short_desc":"Short","title":"Film"})");
    EXPECT_EQ(out["group_play_list"][0]["order"].type(), Json::uintValue);

    FCTvlumeContent again(out);
    EXPECT_FALSE(again.IsDRM());
    EXPECT_FALSE(again.GetPlaylist()[0].IsDRM());
    EXPECT_EQ(again.GetExtraData(), R"({"kept":1,"rating":"12","ratings":"A10|A12"})");
    EXPECT_EQ(again.GetPlaylist()[0].GetExtraData(), "{}");

    Json::Value schedule;
    FCTvlumeSchedule(Parse(R"({"id":"e","starttime":"2020-05-01T10:20:30+09:00","duration":"60",)"
                           R"("relative_offset":-5,"playlist_item_index":2})"))
        .ToJson(schedule);
    EXPECT_EQ(FCJsonHelper::WriteCompact(schedule), R"({"duration":60,"id":"e","playlist_item_index":2,)"
                                                    R"("relative_offset":-5,"starttime":"2020-05-01T01:20:30"})");
    EXPECT_EQ(schedule["relative_offset"].type(), Json::intValue);
}

TEST(TvlumeRecords, LogTexts)
{
    FCTvlumeContent content(Parse(kContent));
    EXPECT_EQ(content.GetPlaylist()[0].ToString(), "order[1] itemId[i1] title[One]\n"
                                                   "duration[60] contentUri[http://1]\n"
                                                   "subtitle.url[http://s1] subtitle.langOrderIndex[en]");
    EXPECT_EQ(content.ToString(), "Content::eventId[ev-7] title[Film]\ncontentType[movie] contentUri[http://c]\n"
                                  "posterUrl[http://p] posterIndex[3]\nshortDescription[Short]\n"
                                  "meta[" +
                                      content.GetExtraData() + "]\nplaylistItemSize[2]\n" +
                                      content.GetPlaylist()[0].ToString() + "\n" + content.GetPlaylist()[1].ToString() +
                                      "\n");
    FCTvlumeSchedule schedule(
        Parse(R"({"id":"e","starttime":"4000000000","duration":7,"relative_offset":-5,"playlist_item_index":-1})"));
    EXPECT_EQ(schedule.ToString(), "Schedule::eventId[e] starttime[4000000000] duration[7]\n"
                                   "relativeOffset[-5] playlistItenIndex[-1]");
}

// Items a, b, a, c: lookups by id find the first a.
TEST(TvlumeContent, PlaylistLookupsDoNotWrapAndLeaveTheItemAloneWhenNothingIsFound)
{
    FCTvlumeContent content(Parse(R"({"group_play_list":[{"id":"a","order":1},{"id":"b","order":2},)"
                                  R"({"id":"a","order":3},{"id":"c","order":4}]})"));
    struct Lookup {
        const char *what;
        std::function<bool(FCTvlumePlaylistItem &)> find;
        unsigned int order;  // of the item found; 0: none
    };
    const std::vector<Lookup> lookups = {
        {"first", [&](FCTvlumePlaylistItem &i) { return content.GetFirstPlaylistItem(i); }, 1},
        {"index 0", [&](FCTvlumePlaylistItem &i) { return content.GetPlaylistItem(0, i); }, 1},
        {"index 3", [&](FCTvlumePlaylistItem &i) { return content.GetPlaylistItem(3, i); }, 4},
        {"index -1", [&](FCTvlumePlaylistItem &i) { return content.GetPlaylistItem(-1, i); }, 0},
        {"index 4", [&](FCTvlumePlaylistItem &i) { return content.GetPlaylistItem(4, i); }, 0},
        {"id a", [&](FCTvlumePlaylistItem &i) { return content.GetPlaylistItem("a", i); }, 1},
        {"id A", [&](FCTvlumePlaylistItem &i) { return content.GetPlaylistItem("A", i); }, 0},
        {"id c", [&](FCTvlumePlaylistItem &i) { return content.GetPlaylistItem("c", i); }, 4},
        {"next a", [&](FCTvlumePlaylistItem &i) { return content.GetNextPlaylistItem("a", i); }, 2},
        {"next b", [&](FCTvlumePlaylistItem &i) { return content.GetNextPlaylistItem("b", i); }, 3},
        {"next c", [&](FCTvlumePlaylistItem &i) { return content.GetNextPlaylistItem("c", i); }, 0},
        {"next x", [&](FCTvlumePlaylistItem &i) { return content.GetNextPlaylistItem("x", i); }, 0},
    };
    for (const Lookup &lookup : lookups) {
        SCOPED_TRACE(lookup.what);
        FCTvlumePlaylistItem item(Parse(R"({"order":99})"));
        EXPECT_EQ(lookup.find(item), lookup.order != 0);
        EXPECT_EQ(item.GetOrder(), lookup.order != 0 ? lookup.order : 99u);
    }
    FCTvlumePlaylistItem item(Parse(R"({"order":99})"));
    EXPECT_FALSE(FCTvlumeContent().GetFirstPlaylistItem(item));
}

class Ratings : public testing::Test {
protected:
    void SetUp() override { FakeTvs::Reset(); }
    void TearDown() override { FakeTvs::Reset(); }

    // The rating of a content on a set of that country, starting from system 0, rating 77, vsld 5.
    static std::optional<RatingInfo> Rate(std::optional<int> country, const std::string &ratings)
    {
        FakeTvs::SetCountry(country);
        Json::Value json;
        json["ratings"] = ratings;
        RatingInfo out;
        out.rating_system = 0;
        out.rating = 77;
        out.vsld = 5;
        if (!FCTvlumeContent(json).GetRatingInfo(out))
            return std::nullopt;
        return out;
    }
};

struct RatingRow {
    int country;
    std::string ratings;
    int system, rating;  // vsld stays 5
};

RatingInfo Rating(int system, int rating)
{
    RatingInfo info;
    info.rating_system = system;
    info.rating = rating;
    info.vsld = 5;
    return info;
}

// Every entry of every country's table, and a code the table does not hold: Brazil alone names
// its rating system then.
TEST_F(Ratings, EachCountrysTable)
{
    const std::vector<RatingRow> rows = {
        {34, "10", 8, 2},
        {34, "12", 8, 3},
        {34, "14", 8, 4},
        {34, "16", 8, 5},
        {34, "18", 8, 6},
        {34, "A10", 8, 10},
        {34, "A12", 8, 11},
        {34, "A14", 8, 12},
        {34, "A16", 8, 13},
        {34, "A18", 8, 14},
        {34, "L", 8, 1},
        {34, "AL", 8, 9},
        {34, "l", 8, 77},
        {34, "A10,A12", 8, 77},
        {67, "13", 8, 2},
        {67, "16", 8, 3},
        {67, "18", 8, 4},
        {67, "C", 8, 5},
        {67, "12", 0, 77},
        {79, "P", 8, 1},
        {79, "C", 8, 3},
        {79, "G", 8, 7},
        {79, "PG13", 8, 10},
        {79, "PG18", 8, 15},
        {79, "Adults", 8, 16},
        {79, "adults", 0, 77},
        {39, "G", 8, 1},
        {39, "PG", 8, 4},
        {39, "PG13", 8, 10},
        {39, "NC16", 8, 13},
        {39, "M18", 8, 15},
        {39, "R21", 8, 18},
        {39, "R", 0, 77},
        {37, "G", 8, 6},
        {37, "PGR", 8, 8},
        {37, "AO", 8, 15},
        {37, "PG", 0, 77},
        {23, "G", 8, 6},
        {23, "PG", 8, 8},
        {23, "M", 8, 10},
        {23, "MA", 8, 12},
        {23, "AV", 8, 14},
        {23, "R", 8, 15},
        {23, "G,PG", 0, 77},
        // EU: the leading age less 3, in one byte.
        {1, "12", 8, 9},
        {1, "18,16", 8, 15},
        {1, "3", 8, 0},
        {1, "", 8, 253},
        {1, "PG", 8, 253},
    };
    for (const RatingRow &row : rows) {
        SCOPED_TRACE(testing::Message() << row.country << " " << row.ratings);
        EXPECT_EQ(Rate(row.country, row.ratings), Rating(row.system, row.rating));
    }
}

// The set's country picks the table; a code in the right table is told apart from the others.
TEST_F(Ratings, TheSetsCountryPicksTheTable)
{
    struct Country {
        std::optional<int> code;
        std::string ratings;
        std::optional<RatingInfo> rating;
    };
    const std::vector<Country> countries = {
        {0, "12", std::nullopt},   {2, "12", std::nullopt},       {std::nullopt, "12", Rating(8, 9)},
        {23, "MA", Rating(8, 12)}, {37, "AO", Rating(8, 15)},     {39, "M18", Rating(8, 15)},
        {67, "C", Rating(8, 5)},   {79, "Adults", Rating(8, 16)}, {64, "AL", Rating(8, 9)},
        {65, "AL", Rating(8, 9)},  {69, "AL", Rating(8, 9)},      {71, "AL", Rating(8, 9)},
        {72, "AL", Rating(8, 9)},  {74, "AL", Rating(8, 9)},      {80, "AL", Rating(8, 9)},
        {1, "16", Rating(8, 13)},  {3, "16", Rating(8, 13)},      {33, "16", Rating(8, 13)},
        {35, "16", Rating(8, 13)}, {81, "16", Rating(8, 13)},     {-1, "16", Rating(8, 13)},
    };
    for (const Country &country : countries) {
        SCOPED_TRACE(country.code ? std::to_string(*country.code) : "no product information");
        EXPECT_EQ(Rate(country.code, country.ratings), country.rating);
        EXPECT_EQ(FakeTvs::LiveSOSpecApps(), 0);
    }
}

TEST_F(Ratings, AsksProfileOneForItemOneAndFallsToEuWithoutAnAnswer)
{
    FakeTvs::FailCountryQuery();
    RatingInfo out;
    Json::Value json;
    json["ratings"] = "12";
    EXPECT_TRUE(FCTvlumeContent(json).GetRatingInfo(out));
    EXPECT_EQ(out.rating_system, 8);
    EXPECT_EQ(out.rating, 9);
    EXPECT_EQ(FakeTvs::Calls(), (std::vector<std::string>{"CreateSOSpecApp(1, 0)", "GetIntValue(1)"}));
    EXPECT_EQ(FakeTvs::LiveSOSpecApps(), 0);
}

}  // namespace
