// Virtual programmes: where playback stands at a moment, the key's wildcard service id, the JSON
// of programme, key and configuration, and their log texts.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCJsonHelper.h"
#include "FCVirtualProgramData.h"
#include "FakeClock.h"

namespace {

Json::Value Parse(const std::string &text)
{
    Json::Value value;
    EXPECT_TRUE(FCJsonHelper::ParseToJson(text, value)) << text;
    return value;
}

// A slot starting at 1000 whose playlist holds items of the given durations.
FCVirtualProgramData Slot(const std::vector<unsigned int> &durations, unsigned int start = 1000)
{
    Json::Value json;
    json["starttime"] = std::to_string(start);
    json["group_play_list"] = Json::Value(Json::arrayValue);
    for (size_t i = 0; i < durations.size(); ++i) {
        Json::Value item;
        item["id"] = "item" + std::to_string(i);
        item["duration"] = durations[i];
        json["group_play_list"].append(item);
    }
    FCVirtualProgramData program(json);
    program.SetPlaylistItemIndex(7);  // a position left as it was shows
    program.SetRelativeOffset(3);
    return program;
}

struct PositionRow {
    std::vector<unsigned int> durations;
    unsigned long now;
    EStreamType type;
    bool result;
    int index, offset;
};

TEST(VirtualProgramData, PlaybackPositionAtAMoment)
{
    const std::vector<unsigned int> items = {60, 40};
    const std::vector<PositionRow> rows = {
        {items, 1000, STREAM_TYPE_CIRCLE, true, 0, 0},
        {items, 1059, STREAM_TYPE_CIRCLE, true, 0, 59},
        {items, 1060, STREAM_TYPE_CIRCLE, true, 1, 0},  // the end second belongs to the next item
        {items, 1099, STREAM_TYPE_CIRCLE, true, 1, 39},
        {items, 1100, STREAM_TYPE_CIRCLE, true, 0, 0},  // past the end: the first item again, no modulo
        {items, 1130, STREAM_TYPE_CIRCLE, true, 0, 0},
        {items, 999, STREAM_TYPE_CIRCLE, true, 0, 0},
        {items, 1070, STREAM_TYPE_RTS, true, 1, 10},
        {items, (1UL << 32) + 1030, STREAM_TYPE_RTS, true, 0, 30},  // 32-bit seconds
        {items, 1030, STREAM_TYPE_LIVE, true, -1, 0},
        {items, 5, STREAM_TYPE_LIVE, true, -1, 0},
        {items, 1030, STREAM_TYPE_VOD, false, 7, 3},
        {items, 1030, STREAM_TYPE_OWN, false, 7, 3},
        {items, 1030, STREAM_TYPE_UNKNOWN, false, 7, 3},
        {items, 1030, static_cast<EStreamType>(9), false, 7, 3},
        {{0, 30}, 1000, STREAM_TYPE_CIRCLE, true, 1, 0},  // an empty item is never current
        {{}, 990, STREAM_TYPE_CIRCLE, true, -1, -10},
        {{}, 1005, STREAM_TYPE_RTS, true, -1, 5},
        {{}, 1005, STREAM_TYPE_LIVE, true, -1, 0},
    };
    for (const PositionRow &row : rows) {
        SCOPED_TRACE(testing::Message() << row.durations.size() << " items, " << row.now << ", type " << row.type);
        FCVirtualProgramData program = Slot(row.durations);
        EXPECT_EQ(program.UpdateOffsetAndPlaylistIndex(row.now, row.type), row.result);
        EXPECT_EQ(program.GetPlaylistItemIndex(), row.index);
        EXPECT_EQ(program.GetRelativeOffset(), row.offset);
    }
}

TEST(VirtualProgramData, ResumeReplaysTheItemOrPlaysTheSlotFromTheOffset)
{
    struct Resume {
        std::vector<unsigned int> durations;
        std::string id;
        bool result;
        int index, offset;
    };
    const std::vector<Resume> rows = {
        {{10, 20, 30}, "item1", true, 1, 0},  {{10, 20, 30}, "item0", true, 0, 0}, {{10, 20, 30}, "item2", true, 2, 0},
        {{10, 20, 30}, "item9", false, 7, 3}, {{10, 20, 30}, "", false, 7, 3},     {{}, "item0", false, 7, 3},
    };
    for (const Resume &row : rows) {
        SCOPED_TRACE(row.id);
        FCVirtualProgramData program = Slot(row.durations);
        EXPECT_EQ(program.UpdateOffsetAndPlaylistIndexForResumeCirculate(row.id), row.result);
        EXPECT_EQ(program.GetPlaylistItemIndex(), row.index);
        EXPECT_EQ(program.GetRelativeOffset(), row.offset);
    }

    FCVirtualProgramData program = Slot({10, 20});
    EXPECT_TRUE(program.UpdateOffsetAndPlaylistIndexForResume("item1", 25));
    EXPECT_EQ(program.GetPlaylistItemIndex(), -1);
    EXPECT_EQ(program.GetRelativeOffset(), 25);
}

TEST(VirtualProgramData, TimeOffsetIsSinceTheSlotsStartAndZeroBeforeIt)
{
    FCVirtualProgramData program = Slot({});
    FakeClock::SetNow(1250);
    EXPECT_EQ(program.GetTimeOffset(), 250u);
    FakeClock::SetNow(1000);
    EXPECT_EQ(program.GetTimeOffset(), 0u);
    FakeClock::SetNow(999);
    EXPECT_EQ(program.GetTimeOffset(), 0u);
    EXPECT_EQ(program.GetSeriesId(), "");
}

FCVirtualProgramId Id(unsigned long long service, unsigned int start, const std::string &event, unsigned int duration)
{
    FCVirtualProgramId id;
    id.SetServiceId(service);
    id.SetStartTime(start);
    id.SetEventId(event);
    id.SetDuration(duration);
    return id;
}

// A zero service id matches any; duration orders nothing but takes part in equality.
TEST(VirtualProgramId, OrderAndEqualityWithTheWildcardServiceId)
{
    struct Pair {
        const char *what;
        FCVirtualProgramId a, b;
        bool less, greater, equal;
    };
    const std::vector<Pair> pairs = {
        {"unknown service", Id(0, 10, "e", 5), Id(5, 10, "e", 5), false, false, true},
        {"both unknown", Id(0, 10, "e", 5), Id(0, 10, "e", 5), false, false, true},
        {"service first", Id(5, 99, "z", 5), Id(6, 10, "a", 5), true, false, false},
        {"then start", Id(5, 10, "z", 5), Id(5, 11, "a", 5), true, false, false},
        {"start across a wildcard", Id(0, 10, "z", 5), Id(6, 11, "a", 5), true, false, false},
        {"then event id", Id(5, 10, "ab", 5), Id(5, 10, "b", 5), true, false, false},
        {"a prefix is less", Id(5, 10, "a", 5), Id(5, 10, "ab", 5), true, false, false},
        {"bytes unsigned", Id(5, 10, "a", 5), Id(5, 10, "\xE9", 5), true, false, false},
        {"duration", Id(5, 10, "e", 5), Id(5, 10, "e", 6), false, false, false},
        {"other service", Id(5, 10, "e", 5), Id(6, 10, "e", 5), true, false, false},
    };
    for (const Pair &pair : pairs) {
        SCOPED_TRACE(pair.what);
        EXPECT_EQ(pair.a < pair.b, pair.less);
        EXPECT_EQ(pair.b < pair.a, pair.greater);
        EXPECT_EQ(pair.a == pair.b, pair.equal);
        EXPECT_EQ(pair.a != pair.b, !pair.equal);
    }
}

TEST(VirtualProgramId, JsonAndText)
{
    Json::Value out;
    FCVirtualProgramId::ToJson(Id(18446744073709551615ULL, 1700000000, "ev", 1800), out);
    EXPECT_EQ(FCJsonHelper::WriteCompact(out), R"({"program_id":{"TCServiceId":"18446744073709551615",)"
                                               R"("duration":1800,"event_id":"ev","start_time":1700000000}})");
    EXPECT_EQ(Id(42, 7, "ev", 60).ToString(), "TCServiceId: 42\nid: ev\nstart_time: 7\nduration: 60\n");

    const std::vector<std::pair<std::string, unsigned long long>> services = {
        {R"({"program_id":{"TCServiceId":"123abc","event_id":"e","start_time":4,"duration":5}})", 123},
        {R"({"program_id":{"event_id":"e","start_time":4,"duration":5}})", 0},
        {R"({"TCServiceId":"9","program_id":{"event_id":"e","start_time":4,"duration":5}})", 0},
    };
    for (const auto &service : services) {
        FCVirtualProgramId id = Id(1, 1, "x", 1);
        EXPECT_TRUE(FCVirtualProgramId::FromJson(Parse(service.first), id));
        EXPECT_EQ(id.GetServiceId(), service.second);
        EXPECT_EQ(id.GetEventId(), "e");
        EXPECT_EQ(id.GetStartTime(), 4u);
        EXPECT_EQ(id.GetDuration(), 5u);
    }
    FCVirtualProgramId missing = Id(1, 1, "x", 1);
    FCVirtualProgramId::FromJson(Parse(R"({"program_id":[1]})"), missing);
    EXPECT_EQ(missing, Id(0, 0, "", 0));
    EXPECT_EQ(missing.GetServiceId(), 0u);
}

const char *const kProgramJson = R"({"program_data":{"TCServiceId":"10376293541461622784"},"id":"ev-1",
    "starttime":"2020-05-01T10:20:30Z","duration":3600,"relative_offset":12,"playlist_item_index":1,
    "content_type":"movie","title":"Film","ratings":"12","drm":true,
    "group_play_list":[{"id":"i1","duration":1800},{"id":"i2","duration":1800}]})";

TEST(VirtualProgramData, JsonOfTheTwoBasesAndTheServiceId)
{
    FCVirtualProgramData program;
    EXPECT_TRUE(FCVirtualProgramData::FromJson(Parse(kProgramJson), program));
    EXPECT_EQ(program.GetServiceId(), 10376293541461622784ULL);
    EXPECT_EQ(program.GetStartTime(), 1588328430u);
    EXPECT_EQ(program.GetDuration(), 3600u);
    EXPECT_EQ(program.GetRelativeOffset(), 12);
    EXPECT_EQ(program.GetPlaylistItemIndex(), 1);
    EXPECT_EQ(program.GetTitle(), "Film");
    EXPECT_TRUE(program.IsDRM());
    EXPECT_EQ(program.GetPlaylist().size(), 2u);

    FCVirtualProgramId id;
    EXPECT_TRUE(program.GetProgramId(id));
    EXPECT_EQ(id, Id(10376293541461622784ULL, 1588328430, "ev-1", 3600));
    EXPECT_EQ(id.GetServiceId(), 10376293541461622784ULL);

    // Both bases write "id": the content's stays.
    program.FCTvlumeSchedule::SetEventId("schedule");
    Json::Value out;
    FCVirtualProgramData::ToJson(program, out);
    EXPECT_EQ(out["id"], "ev-1");
    EXPECT_EQ(out["program_data"]["TCServiceId"], "10376293541461622784");
    EXPECT_EQ(out["starttime"], "2020-05-01T10:20:30");
    EXPECT_EQ(out["relative_offset"], 12);

    FCVirtualProgramData back;
    FCVirtualProgramData::FromJson(out, back);
    EXPECT_EQ(back.GetEventId(), "ev-1");
    EXPECT_FALSE(back.IsDRM());  // drm stays with the daemon
    Json::Value again;
    FCVirtualProgramData::ToJson(back, again);
    EXPECT_EQ(again, out);

    // No service id without "program_data"."TCServiceId".
    FCVirtualProgramData bare(Parse(R"({"TCServiceId":"5","program_data":{}})"));
    EXPECT_EQ(bare.GetServiceId(), 0u);
}

TEST(VirtualProgramData, BuiltFromItsBasesAndEventIdOfBoth)
{
    FCTvlumeSchedule schedule(Parse(R"({"id":"s","starttime":"100","duration":5})"));
    FCTvlumeContent content(Parse(R"({"id":"c","title":"t"})"));
    FCVirtualProgramData without(schedule, content);
    FCVirtualProgramData with(schedule, content, 77ULL);
    EXPECT_EQ(without.GetServiceId(), 0u);
    EXPECT_EQ(with.GetServiceId(), 77u);
    EXPECT_EQ(with.GetEventId(), "s");
    EXPECT_EQ(with.FCTvlumeContent::GetEventId(), "c");
    with.SetEventId("both");
    EXPECT_EQ(with.FCTvlumeSchedule::GetEventId(), "both");
    EXPECT_EQ(with.FCTvlumeContent::GetEventId(), "both");
    EXPECT_EQ(with.ToString(),
              "serviceId[77]\n" + with.FCTvlumeSchedule::ToString() + "\n" + with.FCTvlumeContent::ToString());
    EXPECT_EQ(with.ToString().rfind("serviceId[77]\nSchedule::eventId[both] starttime[100] duration[5]\n", 0), 0u);

    // Destroyed through either base.
    FCTvlumeContent *asContent = new FCVirtualProgramData(with);
    delete asContent;
    FCTvlumeSchedule *asSchedule = new FCVirtualProgramData(with);
    delete asSchedule;
}

TEST(VirtualConfig, JsonBothWays)
{
    FCVirtualConfig config;
    EXPECT_TRUE(FCVirtualConfig::FromJson(
        Parse(R"({"ch_position":{"position":"top","type":"fixed"},"vc_banner":{"tv_to_vc":"to","vc_to_tv":"from"}})"),
        config));
    EXPECT_EQ(config.GetChPosition(), "top");
    EXPECT_EQ(config.GetChPositionType(), "fixed");
    EXPECT_EQ(config.GetBannerTvToVc(), "to");
    EXPECT_EQ(config.GetBannerVcToTv(), "from");
    Json::Value out;
    FCVirtualConfig::ToJson(config, out);
    EXPECT_EQ(FCJsonHelper::WriteCompact(out), R"({"ch_position":{"position":"top","type":"fixed"},)"
                                               R"("vc_banner":{"tv_to_vc":"to","vc_to_tv":"from"}})");
    FCVirtualConfig::FromJson(Parse(R"({"vc_banner":{"tv_to_vc":"x"}})"), config);
    EXPECT_EQ(config.GetChPosition(), "");
    EXPECT_EQ(config.GetBannerVcToTv(), "");
    EXPECT_EQ(config.GetBannerTvToVc(), "x");
}

}  // namespace
