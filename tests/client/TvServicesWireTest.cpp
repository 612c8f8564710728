// The MBR channel manager, RF navigation, thumbnail and ACR proxies against the daemon simulator on
// a private bus: what reaches the daemon, what the caller gets back from a reply saying "ret" true
// or false and from a failed call, what each proxy logs, and the simulator's state through them.
#include <atomic>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "FCACRSupport_Proxy.h"
#include "FCThumbnailManager_Proxy.h"
#include "FakeDlog.h"
#include "FenvoraDefine.h"
#include "KelvoTestBus.h"
#include "MBRNetworkChannelManager_Proxy.h"
#include "RFNetworkChannelManager_Proxy.h"
#include "dlog.h"

namespace {

using Activity = FCMBRNetworkChannelAPI::EActivityID;
using ProgramMap = std::map<unsigned int, FCRemoteProgram>;

// Channels 5, 7, 9 and 11 with services 101 to 104 (7 is the only film channel), a channel without
// a service, and three programmes on channel 5 around "now".
constexpr char kFixture[] = R"({
  "now": 1050,
  "channels": [
    {"str_program_source_id": "S9", "str_major": "9", "str_minor": "1", "genre id": "news", "gere name": "News"},
    {"str_program_source_id": "S5", "str_major": "5", "str_minor": "1", "genre id": "news", "gere name": "News"},
    {"str_program_source_id": "S7", "str_major": "7", "str_minor": "1", "genre id": "movies", "gere name": "Movies"},
    {"str_program_source_id": "S11", "str_major": "11", "str_minor": "1", "genre id": "news", "gere name": "News"},
    {"str_program_source_id": "WEB", "str_major": "2", "str_minor": "1", "genre id": "news", "gere name": "News"}],
  "sourceToService": {"S5": "101", "S7": "102", "S9": "103", "S11": "104"},
  "programs": {"S5": [
    {"program source id": "S5", "program id": "B", "title": "Noon", "utc start time": 1000, "duration": 100},
    {"program source id": "S5", "program id": "A", "title": "Morning", "utc start time": 900, "duration": 100},
    {"program source id": "S5", "program id": "C", "title": "Evening", "utc start time": 1100, "duration": 100}]}})";

// What a proxy handed back, as text a row can state.
std::string Text(const FCRemoteProgram &p)
{
    return p.m_title + "@" + std::to_string(p.m_utcStartTime);
}
std::string Text(const ProgramMap &map)
{
    std::ostringstream out;
    for (const auto &entry : map)
        out << (out.tellp() > 0 ? "," : "") << entry.first << ":" << Text(entry.second);
    return out.str();
}
std::string Text(const FCRFNetworkChannelTable &table)
{
    std::ostringstream out;
    for (unsigned long long id : table.m_rfNetworkChannelList)
        out << (out.tellp() > 0 ? "," : "") << id;
    return out.str();
}
std::string Text(bool flag)
{
    return flag ? "true" : "false";
}

FCMBRNetworkChannelManager_Proxy g_mbr;
FCRFNetworkChannelManager_Proxy g_rf;
FCThumbnailManager_Proxy g_thumbnail;
FCACRSupport_Proxy g_acr;

FCRemoteProgram Program(const std::string &title, unsigned long start, const std::string &source = "")
{
    FCRemoteProgram p;
    p.m_title = title;
    p.m_utcStartTime = start;
    p.m_programSourceId = source;
    return p;
}

// What an operation gives: its result and its outputs, both as text.
struct Outcome {
    std::string result;
    std::string outputs;
    bool operator==(const Outcome &other) const { return result == other.result && outputs == other.outputs; }
};
std::ostream &operator<<(std::ostream &out, const Outcome &o)
{
    return out << o.result << " / " << o.outputs;
}

// Every output starts from a value of the caller's, so that an output left untouched shows.
using Run = std::function<std::string(std::string &outputs)>;

Outcome Perform(const Run &run)
{
    Outcome outcome;
    try {
        outcome.result = run(outcome.outputs);
    } catch (const Json::Exception &) {
        outcome = {"throws", ""};
    }
    return outcome;
}

struct Case {
    const char *name;
    const char *wireMethod;  // null: the operation sends nothing
    const char *argument;    // exactly as the daemon must receive it
    Outcome retTrue, retFalse, failed;
    Run run;
};

// One reply that carries what any of these operations reads; "ret" is put in front.
const char *const kReply =
    R"("activityID":3,"genre":"Drama","service list":[{"TCServiceId":"11"},{"TCServiceId":"12"}],)"
    R"("TCServiceId":"18446744073709551615","count":4,"title":"T","utc start time":450,)"
    R"("meta_program_map":[{"key":450,"title":"a","utc start time":450},{"key":900,"title":"b"}],)"
    R"("file":"/img/1.png","flag":true,"AcrVerified":1,"programSourceID":"S1","programID":"P1","utc_start_time":450})";
const char *const kFromArgument =
    R"({"EndTime":0,"IsRF":false,"activityID":0,"cert flag":"","channel name":"","channel number":"","desc":"",)"
    R"("duration":0,"lang":"","poster index":"","poster overlay":"","poster type":"","poster url":"","program id":"",)"
    R"("program source id":"S5","series":"","short desc":"","start time":"","title":"F","utc start time":1000})";
const std::string kUrl = "http://img.example/a.png";

// The MBR activity operations: an activity read from the reply also after "ret": false, and the
// strictly read activity of an empty reply raises jsoncpp's error after a failed call.
std::string Activities(std::string &outputs, const std::function<bool(Activity &)> &operation)
{
    Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_2;
    const bool result = operation(id);
    outputs = std::to_string(id);
    return Text(result);
}

std::string Flag(bool result)
{
    return Text(result);
}

const std::vector<Case> &Cases()
{
    using O = std::string &;
    const Activity k4 = FCMBRNetworkChannelAPI::ACTIVITY_ID_4;
    const Activity k5 = FCMBRNetworkChannelAPI::ACTIVITY_ID_MAX;
    const auto kMinus1 = static_cast<Activity>(-1);
    const auto k1 = FCMBRNetworkChannelAPI::ACTIVITY_ID_1;
    const Outcome kTrue{"true", ""}, kFalse{"false", ""};
    static const std::vector<Case> cases = {
        // FCMBRNetworkChannelManager_Proxy
        {"MBR Reset", nullptr, "", kTrue, kTrue, kTrue, [](O) { return Flag(g_mbr.Reset()); }},
        {"MBR Allocate source 2",
         "AllocateActivityIDBySourceID",
         R"({"source":2})",
         {"true", "3"},
         {"false", "3"},
         {"throws", ""},
         [](O o) { return Activities(o, [](Activity &id) { return g_mbr.AllocateActivityIDBySourceID(2, id); }); }},
        {"MBR Allocate source -2",
         "AllocateActivityIDBySourceID",
         R"({"source":-2})",
         {"true", "3"},
         {"false", "3"},
         {"throws", ""},
         [](O o) { return Activities(o, [](Activity &id) { return g_mbr.AllocateActivityIDBySourceID(-2, id); }); }},
        {"MBR Allocate source -1",
         nullptr,
         "",
         {"false", "2"},
         {"false", "2"},
         {"false", "2"},
         [](O o) { return Activities(o, [](Activity &id) { return g_mbr.AllocateActivityIDBySourceID(-1, id); }); }},
        {"MBR GetActivity",
         "GetActivityIDBySourceID",
         R"({"source":1})",
         {"true", "3"},
         {"false", "3"},
         {"throws", ""},
         [](O o) { return Activities(o, [](Activity &id) { return g_mbr.GetActivityIDBySourceID(1, id); }); }},
        {"MBR Delete 4",
         "DeleteActivityID",
         R"({"activityID":4})",
         kTrue,
         kFalse,
         {"throws", ""},
         [k4](O) { return Flag(g_mbr.DeleteActivityID(k4)); }},
        {"MBR Delete 5", nullptr, "", kFalse, kFalse, kFalse, [k5](O) { return Flag(g_mbr.DeleteActivityID(k5)); }},
        {"MBR Delete -1", nullptr, "", kFalse, kFalse, kFalse,
         [kMinus1](O) { return Flag(g_mbr.DeleteActivityID(kMinus1)); }},
        {"MBR Set", "SetActivityIDSourceID", R"({"activityID":4,"source":3})", kTrue, kFalse, kFalse,
         [k4](O) { return Flag(g_mbr.SetActivityIDSourceID(k4, SOURCE_CATV)); }},
        {"MBR Set 5", nullptr, "", kFalse, kFalse, kFalse,
         [k5](O) { return Flag(g_mbr.SetActivityIDSourceID(k5, SOURCE_CATV)); }},
        {"MBR Append", "AppendSourceIDIntoActivityID", R"({"activityID":1,"source":0})", kTrue, kFalse, kFalse,
         [k1](O) { return Flag(g_mbr.AppendSourceIDIntoActivityID(k1, SOURCE_TV)); }},
        {"MBR Append -1", nullptr, "", kFalse, kFalse, kFalse,
         [kMinus1](O) { return Flag(g_mbr.AppendSourceIDIntoActivityID(kMinus1, SOURCE_TV)); }},
        {"MBR Remove", "RemoveSourceIDWithinActivityID", R"({"activityID":1,"source":4})", kTrue, kFalse, kFalse,
         [k1](O) { return Flag(g_mbr.RemoveSourceIDWithinActivityID(k1, SOURCE_CDTV)); }},
        {"MBR Remove 5", nullptr, "", kFalse, kFalse, kFalse,
         [k5](O) { return Flag(g_mbr.RemoveSourceIDWithinActivityID(k5, SOURCE_CDTV)); }},
        // FCRFNetworkChannelManager_Proxy: outputs read also from the empty reply of a failed call,
        // except by the four programme operations.
        {"RF Reset", nullptr, "", kTrue, kTrue, kTrue, [](O) { return Flag(g_rf.Reset()); }},
        {"RF SetNavigationMode", nullptr, "", kFalse, kFalse, kFalse,
         [](O) { return Flag(g_rf.SetNavigationMode(FCRFNetworkChannelAPI::NAVIGATION_MODE_GENRE)); }},
        {"RF GetNavigationMode",
         nullptr,
         "",
         {"false", "1"},
         {"false", "1"},
         {"false", "1"},
         [](O o) {
             auto mode = FCRFNetworkChannelAPI::NAVIGATION_MODE_GENRE;
             const bool result = g_rf.GetNavigationMode(mode);
             o = std::to_string(mode);
             return Flag(result);
         }},
        {"RF SetGenre", "SetGenreForNavigation", R"({"genre":"Drama"})", kTrue, kFalse, kFalse,
         [](O) { return Flag(g_rf.SetGenreForNavigation("Drama")); }},
        {"RF GetGenre",
         "GetGenreForNavigation",
         "{}",
         {"true", "Drama"},
         {"false", "Drama"},
         {"false", ""},
         [](O o) {
             o = "mine";
             return Flag(g_rf.GetGenreForNavigation(o));
         }},
        {"RF Map",
         "GetRFNetworkChannelMapByGenre",
         R"({"genre":"news"})",
         {"true", "9,11,12"},
         {"false", "9,11,12"},
         {"false", "9"},
         [](O o) {
             FCRFNetworkChannelTable table;
             table.m_rfNetworkChannelList = {9};
             const bool result = g_rf.GetRFNetworkChannelMapByGenre("news", table);
             o = Text(table);
             return Flag(result);
         }},
        {"RF Up",
         "GetRFNetworkChannelUpByGenre",
         R"({"TCServiceId":"5","genre":"news"})",
         {"true", "18446744073709551615"},
         {"false", "18446744073709551615"},
         {"false", "0"},
         [](O o) {
             unsigned long long current = 5, next = 7;
             const bool result = g_rf.GetRFNetworkChannelUpByGenre("news", current, next);
             o = std::to_string(next);
             return Flag(result);
         }},
        {"RF Down",
         "GetRFNetworkChannelDownByGenre",
         R"({"TCServiceId":"6","genre":""})",
         {"true", "18446744073709551615"},
         {"false", "18446744073709551615"},
         {"false", "0"},
         [](O o) {
             unsigned long long current = 6, next = 7;
             const bool result = g_rf.GetRFNetworkChannelDownByGenre("", current, next);
             o = std::to_string(next);
             return Flag(result);
         }},
        {"RF Count",
         "GetRFNetworkChannelCountByGenre",
         R"({"genre":"news"})",
         {"4", ""},
         {"4", ""},
         {"throws", ""},
         [](O) { return std::to_string(g_rf.GetRFNetworkChannelCountByGenre("news")); }},
        {"RF Present",
         "GetPresentMetaProgram",
         R"({"TCServiceId":"42"})",
         {"true", "T@450"},
         {"false", "T@450"},
         {"false", "old@7"},
         [](O o) {
             FCRemoteProgram p = Program("old", 7);
             const bool result = g_rf.GetPresentMetaProgram(42, p);
             o = Text(p);
             return Flag(result);
         }},
        {"RF Next",
         "GetNextMetaProgram",
         kFromArgument,
         {"true", "T@450"},
         {"false", "T@450"},
         {"false", "old@7"},
         [](O o) {
             FCRemoteProgram p = Program("old", 7);
             const bool result = g_rf.GetNextMetaProgram(Program("F", 1000, "S5"), p);
             o = Text(p);
             return Flag(result);
         }},
        {"RF Prev",
         "GetPrevMetaProgram",
         kFromArgument,
         {"true", "T@450"},
         {"false", "T@450"},
         {"false", "old@7"},
         [](O o) {
             FCRemoteProgram p = Program("old", 7);
             const bool result = g_rf.GetPrevMetaProgram(Program("F", 1000, "S5"), p);
             o = Text(p);
             return Flag(result);
         }},
        {"RF ProgramMap",
         "GetMetaProgramMap",
         R"({"TCServiceId":"42","duration":60,"start_time":1000})",
         {"true", "7:old@7,450:a@450,900:b@0"},
         {"false", "7:old@7,450:a@450,900:b@0"},
         {"false", "7:old@7"},
         [](O o) {
             ProgramMap map = {{7, Program("old", 7)}};
             const bool result = g_rf.GetMetaProgramMap(42, 1000, 60, map);
             o = Text(map);
             return Flag(result);
         }},
        {"RF CheckMetaProgramExist", "CheckMetaProgramExist", "{}", kTrue, kFalse, kFalse,
         [](O) { return Flag(g_rf.CheckMetaProgramExist()); }},
        {"RF IsSupportMetadataforEPG", "IsSupportMetadataforEPG", "{}", kTrue, kFalse, kFalse,
         [](O) { return Flag(g_rf.IsSupportMetadataforEPG()); }},
        // FCThumbnailManager_Proxy: "ret" as a number; a failed call gives 0 and leaves the file.
        {"Thumbnail Register",
         "RegisterDownloadItem",
         R"({"file":"hint","location":1,"url":"http://img.example/a.png"})",
         {"1", "/img/1.png"},
         {"0", "/img/1.png"},
         {"0", "hint"},
         [](O o) {
             o = "hint";
             return std::to_string(g_thumbnail.RegisterDownloadItem(kUrl, DOWNLOAD_LOCATION_STORAGE, o));
         }},
        {"Thumbnail GetByUrl",
         "GetDownloadedItemByUrl",
         R"({"url":"http://img.example/a.png"})",
         {"1", "/img/1.png"},
         {"0", "/img/1.png"},
         {"0", "old"},
         [](O o) {
             o = "old";
             return std::to_string(g_thumbnail.GetDownloadedItem(kUrl, o));
         }},
        {"Thumbnail GetById",
         "GetDownloadedItemById",
         R"({"id":3})",
         {"1", "/img/1.png"},
         {"0", "/img/1.png"},
         {"0", "old"},
         [](O o) {
             o = "old";
             return std::to_string(g_thumbnail.GetDownloadedItem(3, o));
         }},
        {"Thumbnail UnregisterById", "UnregisterDownloadItemById", R"({"id":3})", kTrue, kFalse, kFalse,
         [](O) { return Flag(g_thumbnail.UnregisterDownloadItem(3)); }},
        {"Thumbnail UnregisterByUrl", "UnregisterDownloadItemByUrl", R"({"url":"http://img.example/a.png"})", kTrue,
         kFalse, kFalse, [](O) { return Flag(g_thumbnail.UnregisterDownloadItem(kUrl)); }},
        {"Thumbnail DeleteAllImage", "DeleteAllImage", R"({"location":0})", kTrue, kFalse, kFalse,
         [](O) { return Flag(g_thumbnail.DeleteAllImage(DOWNLOAD_LOCATION_MEMORY)); }},
        // FCACRSupport_Proxy: a failed call leaves every output.
        {"ACR IsNearProgramBoundary",
         "IsNearProgramBoundary",
         R"({"sec":30,"source":2})",
         {"true", "true"},
         {"false", "true"},
         {"false", "false"},
         [](O o) {
             bool near = false;
             const bool result = g_acr.IsNearProgramBoundary(SOURCE_DTV, 30, near);
             o = Text(near);
             return Flag(result);
         }},
        {"ACR GetVerifiedMeta",
         "GetVerifiedMeta",
         R"({"source":2})",
         {"true", "1/S1/P1/450"},
         {"false", "1/S1/P1/450"},
         {"false", "0/ps/p/7"},
         [](O o) {
             FIACRSupportAPI::AcrVerified verified = FIACRSupportAPI::ACR_NOT_VERIFIED;
             std::string source = "ps", program = "p";
             unsigned long start = 7;
             const bool result = g_acr.GetVerifiedMeta(SOURCE_DTV, verified, source, program, start);
             o = std::to_string(verified) + "/" + source + "/" + program + "/" + std::to_string(start);
             return Flag(result);
         }},
        {"ACR SetVerifiedACRInfo", "SetVerifiedACRInfo",
         R"({"flag":true,"programID":"P1","programSourceID":"S1","source":2})", kTrue, kFalse, kFalse,
         [](O) { return Flag(g_acr.SetVerifiedACRInfo(SOURCE_DTV, true, "S1", "P1")); }},
    };
    return cases;
}

class TvServicesWireTest : public KelvoBusTestOf<kFixture> {
protected:
    void SetUp() override
    {
        KelvoBusTestOf::SetUp();
        FakeDlog::Clear();
    }
};

TEST_F(TvServicesWireTest, EveryOperationWithRetTrueRetFalseAndAFailedCall)
{
    const std::string failed = R"({"error":"org.freedesktop.DBus.Error.Failed"})";
    for (const Case &c : Cases()) {
        const std::string method = c.wireMethod != nullptr ? c.wireMethod : "";
        const KelvoTestBus::RecordList sent =
            c.wireMethod != nullptr ? KelvoTestBus::RecordList{{method, c.argument}} : KelvoTestBus::RecordList{};
        for (const auto &[script, expected] :
             {std::make_pair(KelvoScriptReply(std::string("{\"ret\":true,") + kReply), c.retTrue),
              std::make_pair(KelvoScriptReply(std::string("{\"ret\":false,") + kReply), c.retFalse),
              std::make_pair(failed, c.failed)}) {
            SCOPED_TRACE(std::string(c.name) + " with " + script);
            s_bus->ClearRecords();
            if (!method.empty()) {
                ASSERT_TRUE(s_bus->SetScript(method, script));
            }
            EXPECT_EQ(Perform(c.run), expected);
            EXPECT_EQ(s_bus->Records(), sent);
        }
    }
}

// The channel-map operations of the interface are not the daemon's: the proxy keeps their bodies.
TEST_F(TvServicesWireTest, DefaultOperationsOfTheMBRInterfaceAreFalseOnTheProxy)
{
    FCMBRNetworkChannelAPI &api = g_mbr;
    const auto a = FCMBRNetworkChannelAPI::ACTIVITY_ID_0;
    const auto all = FCMBRNetworkChannelAPI::MBR_NETWORKCHANNEL_QUERY_ALL;
    const auto fav = FCMBRNetworkChannel::FAVORITE_1;
    std::string text;
    FCMBRNetworkChannel channel, other;
    FCMBRNetworkProgram program;
    FCMBRNetworkChannelTable table;
    FCMBRNetworkProgramTable programs;
    int major = 0, minor = 0;
    const std::vector<std::function<bool()>> defaults = {
        [&] { return api.SetZipCode(a, text); },
        [&] { return api.GetZipCode(a, text); },
        [&] { return api.SetAdditionalInfo(a, text); },
        [&] { return api.GetAdditionalInfo(a, text); },
        [&] { return api.SetDeviceType(a, text); },
        [&] { return api.GetDeviceType(a, text); },
        [&] { return api.SetHeadEndID(a, text); },
        [&] { return api.GetHeadEndID(a, text); },
        [&] { return api.SetLocation(a, text); },
        [&] { return api.GetLocation(a, text); },
        [&] { return api.ConstructMBRNetworkChannelMap(a); },
        [&] { return api.ConstructMBRNetworkProgramMap(a); },
        [&] { return api.GetCurrentMBRNetworkProgram(a, channel, program); },
        [&] { return api.GetCurrentMBRNetworkProgrambyCurrentTime(a, 1000, channel, program); },
        [&] { return api.SetMBRNetworkChannelMap(a, table); },
        [&] { return api.GetMBRNetworkChannelMap(a, table, all); },
        [&] { return api.GetMBRNetworkChannelUp(a, channel, other); },
        [&] { return api.GetMBRNetworkChannelDown(a, channel, other); },
        [&] { return api.GetMBRNetworkChannelByMajorMinor(a, 5, 1, channel); },
        [&] { return api.SaveMBRNetworkChannelMap(a); },
        [&] { return api.AddNewMBRNetworkChannel(a, channel); },
        [&] { return api.SetRememberMBRNetworkChannel(a, channel, true); },
        [&] { return api.ExistMBRNetworkChannelByMajorMinor(a, 5, 1); },
        [&] { return api.AddFavoriteMBRNetworkChannel(a, fav, channel); },
        [&] { return api.DeleteFavoriteMBRNetworkChannel(a, fav, channel); },
        [&] { return api.SetMBRNetworkProgramMap(programs, "1"); },
        [&] { return api.GetMBRNetworkProgrmaMap(programs, "1"); },
        [&] { return api.RemoveMBRNetworkChannel(a, channel); },
        [&] { return api.GetMaxNumberOfMajorMinor(a, major, minor); },
        [&] { return api.ExistChannelInActivityID(a, all); },
        [&] {
            api.ClearMBRProgramMap();
            return false;
        },
        [&] { return api.GetFeaturedMBRChannels(a, table); },
        [&] { return api.SetEditedMBRNetworkChannel(a, channel); },
        [&] { return api.NotifyMBRChannelEditCompleted(a); },
        [&] { return api.GetMBRNetworkChannelByChannelIDOriginMajor(a, "1", "5", channel); },
        [&] { return api.SetCurrentMBRNetworkChannel(a, channel); },
        [&] { return api.GetCurrentMBRNetworkChannel(a, channel); },
        [&] { return api.RegisterMBRNetworkChannelHistory(nullptr); },
    };
    for (size_t i = 0; i < defaults.size(); ++i)
        EXPECT_FALSE(defaults[i]()) << "default operation " << i + 8;
    EXPECT_EQ(s_bus->Records(), KelvoTestBus::RecordList{});
}

// (priority, tag, text without its "file: function(line) > " prefix) of every line since the clear.
std::vector<std::string> LoggedLines()
{
    std::vector<std::string> lines;
    for (const DlogLine &line : FakeDlog::Lines()) {
        const size_t cut = line.text.find(") > ");
        lines.push_back(std::to_string(line.prio) + " " + line.tag + " " +
                        (cut == std::string::npos ? line.text : line.text.substr(cut + 4)));
    }
    return lines;
}

TEST_F(TvServicesWireTest, LogLinesTagsAndPriorities)
{
    const std::string ids = "[" + std::to_string(getpid()) + "][" + std::to_string(gettid()) + "]";
    const std::string rf = "4 kelvo-dbus-proxy " + ids + "FCRFNetworkChannelManager_Proxy::";
    const std::string kInvalidSource =
        "DBG_LV[0]FCMBRNetworkChannelManager_Proxy::AllocateActivityIDBySourceID() return false. source is invalid!\n";
    const std::string kActivityAndSource =
        "DBG_LV[0]activityId(2), sourceId(1)(If failed, same source could exists on other activityId)\n";
    Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_0;
    g_mbr.Reset();
    g_mbr.AllocateActivityIDBySourceID(-1, id);
    g_mbr.GetActivityIDBySourceID(3, id);
    g_mbr.AppendSourceIDIntoActivityID(FCMBRNetworkChannelAPI::ACTIVITY_ID_2, SOURCE_ATV);
    g_mbr.DeleteActivityID(FCMBRNetworkChannelAPI::ACTIVITY_ID_0);
    auto mode = FCRFNetworkChannelAPI::NAVIGATION_MODE_ALL;
    std::string genre = "mine";
    unsigned long long current = 101, next = 0;
    FCRFNetworkChannelTable table;
    g_rf.Reset();
    g_rf.SetNavigationMode(FCRFNetworkChannelAPI::NAVIGATION_MODE_GENRE);
    g_rf.GetNavigationMode(mode);
    g_rf.GetGenreForNavigation(genre);
    g_rf.GetRFNetworkChannelMapByGenre("news", table);
    g_rf.GetRFNetworkChannelUpByGenre("news", current, next);
    g_rf.GetRFNetworkChannelDownByGenre("movies", current, next);
    g_rf.GetRFNetworkChannelCountByGenre("kids");
    g_rf.SetGenreForNavigation("");
    std::string file;
    g_thumbnail.GetDownloadedItem(kUrl, file);
    EXPECT_EQ(LoggedLines(), (std::vector<std::string>{
                                 "4 kelvo-dbus-proxy DBG_LV[0]FCMBRNetworkChannelManager_Proxy::Reset()\n",
                                 "5 kelvo-dbus-proxy " + kInvalidSource,
                                 "4 kelvo-dbus-proxy DBG_LV[0]sourceId(3)\n",
                                 "4 kelvo-dbus-proxy " + kActivityAndSource,
                                 rf + "Reset()\n",
                                 rf + "SetNavigationMode() Called, navigationMode : 1\n",
                                 rf + "GetNavigationMode(), navigationMode : 0\n",
                                 rf + "GetGenreForNavigation(), genre : mine\n",
                                 rf + "GetRFNetworkChannelMapByGenre(), key(genre) : news\n",
                                 rf + "GetRFNetworkChannelUpByGenre(), key(genre) : news\n",
                                 rf + "GetRFNetworkChannelDownByGenre(), key(genre) : movies\n",
                                 rf + "GetRFNetworkChannelCountByGenre(), genre : kids\n",
                             }));
    FakeDlog::Clear();

    // The recognition proxy: a start line, and its own failure line at priority 7 after the shared one.
    bool near = false;
    s_bus->SetScript("IsNearProgramBoundary", R"({"error":"org.freedesktop.DBus.Error.Failed"})");
    g_acr.IsNearProgramBoundary(SOURCE_DTV, 30, near);
    g_acr.SetVerifiedACRInfo(SOURCE_DTV, false, "S5", "B");
    const std::vector<DlogLine> lines = FakeDlog::Lines();
    ASSERT_EQ(lines.size(), 4U);
    const std::regex start(R"(FCACRSupport_Proxy\.cpp: (IsNearProgramBoundary|SetVerifiedACRInfo)\(\d+\) start)");
    const std::regex failure(
        R"(FCACRSupport_Proxy\.cpp: IsNearProgramBoundary\(\d+\) fail to communicate using d-bus)");
    EXPECT_EQ(lines[0].tag, "kelvo-acr");
    EXPECT_EQ(lines[0].prio, DLOG_INFO);
    EXPECT_TRUE(std::regex_match(lines[0].text, start)) << lines[0].text;
    EXPECT_EQ(lines[1].tag, "kelvo-dbus-proxy");
    EXPECT_EQ(lines[1].prio, DLOG_ERROR);
    EXPECT_NE(lines[1].text.find("[FCVirtualChannels_Proxy::IsNearProgramBoundary] fail to communicate using d-bus"),
              std::string::npos);
    EXPECT_EQ(lines[2].tag, "kelvo-acr");
    EXPECT_EQ(lines[2].prio, 7);
    EXPECT_TRUE(std::regex_match(lines[2].text, failure)) << lines[2].text;
    EXPECT_EQ(lines[3].tag, "kelvo-acr");
    EXPECT_EQ(lines[3].prio, DLOG_INFO);
    EXPECT_TRUE(std::regex_match(lines[3].text, start)) << lines[3].text;
}

// ---- the simulator's state through the proxies ----

std::string Allocate(int source)
{
    Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_MAX;
    const bool result = g_mbr.AllocateActivityIDBySourceID(source, id);
    return Text(result) + " " + std::to_string(id);
}

std::string Lookup(int source)
{
    Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_MAX;
    const bool result = g_mbr.GetActivityIDBySourceID(source, id);
    return Text(result) + " " + std::to_string(id);
}

TEST_F(TvServicesWireTest, ActivitiesPerSourceAllocatedLookedUpAndDeleted)
{
    const auto a = [](int id) { return static_cast<Activity>(id); };
    EXPECT_EQ(Allocate(0), "true 0");
    EXPECT_EQ(Allocate(2), "true 1");
    EXPECT_EQ(Allocate(4), "true 2");
    EXPECT_EQ(Lookup(2), "true 1");
    EXPECT_TRUE(g_mbr.DeleteActivityID(a(1)));
    EXPECT_EQ(Lookup(2), "false -1");
    EXPECT_FALSE(g_mbr.DeleteActivityID(a(1)));
    // The lowest free activity goes to a new source; a source keeps the one it has.
    EXPECT_EQ(Allocate(3), "true 1");
    EXPECT_EQ(Allocate(0), "true 0");
    EXPECT_EQ(Allocate(5), "true 3");
    EXPECT_EQ(Allocate(6), "true 4");
    EXPECT_EQ(Allocate(7), "false -1");
    // A source is on one activity at most.
    EXPECT_TRUE(g_mbr.AppendSourceIDIntoActivityID(a(0), static_cast<ESource>(8)));
    EXPECT_EQ(Lookup(8), "true 0");
    EXPECT_FALSE(g_mbr.AppendSourceIDIntoActivityID(a(1), static_cast<ESource>(8)));
    EXPECT_FALSE(g_mbr.SetActivityIDSourceID(a(2), SOURCE_TV));
    EXPECT_TRUE(g_mbr.SetActivityIDSourceID(a(2), static_cast<ESource>(9)));
    EXPECT_EQ(Lookup(4), "false -1");
    EXPECT_TRUE(g_mbr.RemoveSourceIDWithinActivityID(a(0), static_cast<ESource>(8)));
    EXPECT_FALSE(g_mbr.RemoveSourceIDWithinActivityID(a(0), static_cast<ESource>(8)));
    EXPECT_EQ(Lookup(8), "false -1");
    for (int id = 0; id <= 4; ++id)
        EXPECT_TRUE(g_mbr.DeleteActivityID(a(id))) << id;
}

std::string Step(bool up, const std::string &genre, unsigned long long current)
{
    unsigned long long next = 0;
    const bool result = up ? g_rf.GetRFNetworkChannelUpByGenre(genre, current, next)
                           : g_rf.GetRFNetworkChannelDownByGenre(genre, current, next);
    return Text(result) + " " + std::to_string(next);
}

// Channels 5 (101), 9 (103) and 11 (104) are news, 7 (102) is a film channel.
TEST_F(TvServicesWireTest, NavigationStepsWithinTheGenreAndRoundAtTheEnds)
{
    struct StepCase {
        bool up;
        const char *genre;
        unsigned long long current;
        const char *expected;
    } steps[] = {
        {true, "news", 101, "true 103"},   {true, "news", 103, "true 104"},   {true, "news", 104, "true 101"},
        {false, "news", 101, "true 104"},  {false, "news", 104, "true 103"},  {true, "news", 102, "true 103"},
        {false, "news", 102, "true 101"},  {true, "news", 999, "true 101"},   {false, "news", 999, "true 104"},
        {true, "Movies", 101, "true 102"}, {true, "movies", 102, "true 102"}, {true, "", 101, "true 102"},
        {false, "", 101, "true 104"},      {true, "kids", 101, "false 0"},
    };
    for (const StepCase &s : steps)
        EXPECT_EQ(Step(s.up, s.genre, s.current), s.expected) << s.up << " " << s.genre << " " << s.current;

    for (const auto &[genre, count] : {std::make_pair("news", 3), std::make_pair("News", 3),
                                       std::make_pair("movies", 1), std::make_pair("", 4), std::make_pair("kids", 0)})
        EXPECT_EQ(g_rf.GetRFNetworkChannelCountByGenre(genre), count) << genre;
    FCRFNetworkChannelTable table;
    EXPECT_TRUE(g_rf.GetRFNetworkChannelMapByGenre("news", table));
    EXPECT_EQ(Text(table), "101,103,104");

    std::string genre;
    EXPECT_TRUE(g_rf.SetGenreForNavigation("movies"));
    EXPECT_TRUE(g_rf.GetGenreForNavigation(genre));
    EXPECT_EQ(genre, "movies");
    EXPECT_TRUE(g_rf.CheckMetaProgramExist());
    EXPECT_TRUE(g_rf.IsSupportMetadataforEPG());
}

// Now is 1050: "Noon" (1000 to 1100) runs, "Morning" was before, "Evening" comes after.
TEST_F(TvServicesWireTest, MetadataProgrammesOfAChannel)
{
    FCRemoteProgram present, next, previous, none;
    EXPECT_TRUE(g_rf.GetPresentMetaProgram(101, present));
    EXPECT_EQ(Text(present), "Noon@1000");
    EXPECT_TRUE(g_rf.GetNextMetaProgram(present, next));
    EXPECT_EQ(Text(next), "Evening@1100");
    EXPECT_TRUE(g_rf.GetPrevMetaProgram(present, previous));
    EXPECT_EQ(Text(previous), "Morning@900");
    EXPECT_FALSE(g_rf.GetNextMetaProgram(next, none));
    EXPECT_FALSE(g_rf.GetPresentMetaProgram(102, none));

    ProgramMap map;
    EXPECT_TRUE(g_rf.GetMetaProgramMap(101, 950, 100, map));
    EXPECT_EQ(Text(map), "900:Morning@900,1000:Noon@1000");
}

TEST_F(TvServicesWireTest, DownloadItemsRegisteredFoundAndRemoved)
{
    const std::string a = "http://img.example/a.png", b = "http://img.example/b.png";
    std::string fileA = "/data/a.png", fileB, found;
    const int idA = g_thumbnail.RegisterDownloadItem(a, DOWNLOAD_LOCATION_STORAGE, fileA);
    const int idB = g_thumbnail.RegisterDownloadItem(b, DOWNLOAD_LOCATION_MEMORY, fileB);
    EXPECT_GT(idA, 0);
    EXPECT_GT(idB, idA);
    EXPECT_EQ(fileA, "/data/a.png");
    EXPECT_FALSE(fileB.empty());
    EXPECT_EQ(g_thumbnail.GetDownloadedItem(b, found), idB);
    EXPECT_EQ(found, fileB);
    EXPECT_EQ(g_thumbnail.GetDownloadedItem(idA, found), idA);
    EXPECT_EQ(found, fileA);
    std::string again;
    EXPECT_EQ(g_thumbnail.RegisterDownloadItem(a, DOWNLOAD_LOCATION_STORAGE, again), idA);

    EXPECT_TRUE(g_thumbnail.UnregisterDownloadItem(idA));
    EXPECT_FALSE(g_thumbnail.UnregisterDownloadItem(a));
    EXPECT_EQ(g_thumbnail.GetDownloadedItem(a, found), -1);
    EXPECT_TRUE(g_thumbnail.DeleteAllImage(DOWNLOAD_LOCATION_STORAGE));
    EXPECT_EQ(g_thumbnail.GetDownloadedItem(idB, found), idB);
    EXPECT_TRUE(g_thumbnail.DeleteAllImage(DOWNLOAD_LOCATION_MEMORY));
    EXPECT_EQ(g_thumbnail.GetDownloadedItem(idB, found), -1);
    EXPECT_EQ(g_thumbnail.RegisterDownloadItem("", DOWNLOAD_LOCATION_MEMORY, found), -1);
}

TEST_F(TvServicesWireTest, RecognitionResultsPerSourceAndProgrammeBoundaries)
{
    auto verified = FIACRSupportAPI::ACR_NOT_VERIFIED;
    std::string source, program;
    unsigned long start = 0;
    bool near = true;
    EXPECT_FALSE(g_acr.GetVerifiedMeta(SOURCE_ATV, verified, source, program, start));
    EXPECT_FALSE(g_acr.IsNearProgramBoundary(SOURCE_ATV, 60, near));
    EXPECT_FALSE(near);

    EXPECT_TRUE(g_acr.SetVerifiedACRInfo(SOURCE_DTV, true, "S5", "B"));
    EXPECT_TRUE(g_acr.GetVerifiedMeta(SOURCE_DTV, verified, source, program, start));
    EXPECT_EQ(verified, FIACRSupportAPI::ACR_VERIFIED);
    EXPECT_EQ(source + "/" + program + "/" + std::to_string(start), "S5/B/1000");
    // "Noon" began 50 s ago and ends in 50 s.
    EXPECT_TRUE(g_acr.IsNearProgramBoundary(SOURCE_DTV, 40, near));
    EXPECT_FALSE(near);
    EXPECT_TRUE(g_acr.IsNearProgramBoundary(SOURCE_DTV, 50, near));
    EXPECT_TRUE(near);
}

// Many threads of one process allocate, look up and delete activities for their own sources
// through the one proxy FCAPI hands out. With eight sources and five activities some allocations
// are refused; none may fail, and every reply must be the caller's own.
TEST(TvServicesLoad, ActivitiesOfEightSourcesAtOnce)
{
    const int kThreads = 8, kRounds = 800;
    KelvoTestBus bus;
    ASSERT_TRUE(bus.Ready());
    bus.UseForCalls();
    FCMBRNetworkChannelAPI *mbr = FCAPI::GetMBRNetworkChannelAPI();
    std::atomic<int> lost{0}, crossed{0}, refused{0}, calls{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            const int source = 100 + t;
            for (int i = 0; i < kRounds; ++i) {
                try {
                    Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_MAX, found = id;
                    ++calls;
                    if (!mbr->AllocateActivityIDBySourceID(source, id)) {
                        refused += id == -1 ? 1 : 0;
                        crossed += id == -1 ? 0 : 1;
                        continue;
                    }
                    calls += 2;
                    if (!mbr->GetActivityIDBySourceID(source, found) || found != id)
                        ++crossed;
                    if (!mbr->DeleteActivityID(id))
                        ++crossed;
                } catch (const Json::Exception &) {
                    ++lost;
                }
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(lost.load(), 0);
    EXPECT_EQ(crossed.load(), 0);
    EXPECT_LT(refused.load(), kThreads * kRounds);
    EXPECT_EQ(bus.Records().size(), static_cast<size_t>(calls.load()));

    // The table is empty again: no source holds an activity and all five are free.
    std::set<int> ids;
    for (int source = 100; source < 100 + kThreads; ++source) {
        Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_MAX;
        EXPECT_FALSE(mbr->GetActivityIDBySourceID(source, id)) << source;
    }
    for (int source = 0; source < 5; ++source) {
        Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_MAX;
        EXPECT_TRUE(mbr->AllocateActivityIDBySourceID(source, id));
        ids.insert(id);
    }
    EXPECT_EQ(ids, (std::set<int>{0, 1, 2, 3, 4}));
    Activity id = FCMBRNetworkChannelAPI::ACTIVITY_ID_MAX;
    EXPECT_FALSE(mbr->AllocateActivityIDBySourceID(5, id));
}

}  // namespace
