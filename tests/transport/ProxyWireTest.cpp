// The remote-content, MSO and match-finder proxies against the daemon simulator on a private bus:
// what reaches the daemon (method name, argument text) and what the caller gets back.
#include <algorithm>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCRemoteContentOnTV_Proxy.h"
#include "FakeDlog.h"
#include "KelvoTestBus.h"

namespace {

const eRemoteContentActivity kMain = REMOTE_CONTENT_ACTIVITY_MAIN;
const eRemoteContentActivity kSub = REMOTE_CONTENT_ACTIVITY_SUB;

// The compact form jsoncpp gives the text (members sorted, no blanks): the form every argument
// must arrive in.
std::string Compact(const std::string& text) {
    Json::Value value;
    Json::CharReaderBuilder reader;
    std::unique_ptr<Json::CharReader> parser(reader.newCharReader());
    if (!parser->parse(text.data(), text.data() + text.size(), &value, nullptr)) return "unparsable: " + text;
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "";
    return Json::writeString(writer, value);
}

template <typename C, typename F>
std::string Join(const C& items, F describe) {
    std::ostringstream out;
    for (const auto& item : items) out << (out.tellp() > 0 ? "," : "") << describe(item);
    return out.str();
}

std::string Programmes(const std::map<std::string, std::vector<FCRemoteProgram>>& map) {
    return Join(map, [](const auto& entry) {
        return entry.first + ":" + Join(entry.second, [](const FCRemoteProgram& p) { return p.m_title; });
    });
}

FCRemoteContentOnTV_Proxy g_content;
FCRemoteContentOnTV_MSO_Proxy g_mso;
FCMatchFinder_Proxy g_finder;

struct TypedCase {
    const char* wireMethod;
    const char* argument;  // as the daemon must receive it (compared in compact form)
    const char* reply;     // the daemon's answer
    bool result;
    const char* outputs;   // what `run` reports the operation handed back
    std::function<bool(std::string& outputs)> run;
};

const char* const kChannelReply = R"({"ret":false,"str_channel_name":"News","str_program_source_id":"S1","embed":3})";
const char* const kMapReply =
    R"({"ret":true,"out_mapProgramWithSourceID":[{"program_source_id":"S1","program_array":[{"title":"a"},{"title":"b"}]}]})";
const char* const kListReply = R"({"ret":false,"channel_array":[{"str_channel_name":"A"},{"str_channel_name":"B"}]})";

std::string ChannelText(const FCRemoteChannel& c) { return c.m_channelName + "/" + c.m_programSourceId + "/" + std::to_string(c.m_embed); }
std::string ChannelNames(const std::vector<FCRemoteChannel>& v) { return Join(v, [](const FCRemoteChannel& c) { return c.m_channelName; }); }

// Every typed operation of the three proxies. Replies that say "ret": false still carry outputs,
// which must reach the caller.
const std::vector<TypedCase>& TypedCases() {
    static const std::vector<TypedCase> cases = {
        // FCMatchFinder_Proxy
        {"GetFCRemoteChannelByTCServiceId", R"({"activityID":1,"TCServiceId":"12345678901234"})", kChannelReply, false,
         "News/S1/3", [](std::string& o) { unsigned long long id = 12345678901234ULL; FCRemoteChannel c;
             bool r = g_finder.GetFCRemoteChannelByTCServiceId(kSub, id, c); o = ChannelText(c); return r; }},
        {"GetTCServiceIdByFCRemoteChannel",
         R"({"activityID":1,"ac_rank":"","embed":2,"genre id":"","gere name":"g","str_alias":"",
             "str_channel_name":"","str_channel_number":"","str_digital_flag":"","str_dtv":"","str_frequency":"",
             "str_icon_url":"","str_major":"","str_minor":"","str_onid":"","str_program_source_id":"S1","str_ptc":"",
             "str_qam_flag":"","str_sid":"","str_tsid":"","str_url_index":""})",
         R"({"ret":true,"TCServiceId":"18446744073709551615"})", true, "18446744073709551615",
         [](std::string& o) { FCRemoteChannel c; c.m_activityID = kSub; c.m_programSourceId = "S1"; c.m_embed = 2;
             c.m_genreName = "g"; unsigned long long id = 0;
             bool r = g_finder.GetTCServiceIdByFCRemoteChannel(kSub, c, id); o = std::to_string(id); return r; }},
        {"GetTCServiceIdByProgramSourceID", R"({"activityID":0,"program source id":"S1"})",
         R"({"ret":false,"TCServiceId":"77"})", false, "77", [](std::string& o) { unsigned long long id = 0;
             bool r = g_finder.GetTCServiceIdByProgramSourceID(kMain, "S1", id); o = std::to_string(id); return r; }},
        {"GetTCServiceIdListByProgramSourceID", R"({"activityID":0,"program source id":"S2"})",
         R"({"ret":true,"service_list":[{"TCServiceId":"1"},{"TCServiceId":"2"}]})", true, "1,2",
         [](std::string& o) { std::list<unsigned long long> ids;
             bool r = g_finder.GetTCServiceIdListByProgramSourceID(kMain, "S2", ids);
             o = Join(ids, [](unsigned long long id) { return std::to_string(id); }); return r; }},
        {"GetRemoteChannelListByChannelName", R"({"search string":"new","ret":true})", kListReply, false, "A,B",
         [](std::string& o) { std::vector<FCRemoteChannel> v;
             bool r = g_finder.GetRemoteChannelListByChannelName("new", v, true); o = ChannelNames(v); return r; }},
        {"GetRemoteChannelByChannelNumber", R"({"major":7,"minor":2})", kChannelReply, false, "News/S1/3",
         [](std::string& o) { FCRemoteChannel c; bool r = g_finder.GetRemoteChannelByChannelNumber(7, 2, c);
             o = ChannelText(c); return r; }},
        {"GetRemoteChannelListByChannelName", R"({"search string":"x"})", kListReply, false, "A,B",
         [](std::string& o) { std::vector<FCRemoteChannel> v;
             bool r = g_finder.GetRemoteChannelListByChannelName("x", v); o = ChannelNames(v); return r; }},
        {"GetRemoteChannelByChannelNumber", R"({"ret":7})", kChannelReply, false, "News/S1/3",
         [](std::string& o) { FCRemoteChannel c; bool r = g_finder.GetRemoteChannelByChannelNumber(7, c);
             o = ChannelText(c); return r; }},
        {"GetRemoteProgramByKeyword", R"({"search string":"k","utc_start_time":100,"utc_end_time":200})", kMapReply,
         true, "S1:a,b", [](std::string& o) { std::map<std::string, std::vector<FCRemoteProgram>> m;
             bool r = g_finder.GetRemoteProgramByKeyword("k", m, 100, 200); o = Programmes(m); return r; }},
        {"GetRemoteProgramByTitle", R"({"search string":"t","utc_start_time":1,"utc_end_time":2})", kMapReply, true,
         "S1:a,b", [](std::string& o) { std::map<std::string, std::vector<FCRemoteProgram>> m;
             bool r = g_finder.GetRemoteProgramByTitle("t", m, 1, 2); o = Programmes(m); return r; }},
        {"GetRemoteProgramByDescription", R"({"search string":"d","utc_start_time":3,"utc_end_time":4})", kMapReply,
         true, "S1:a,b", [](std::string& o) { std::map<std::string, std::vector<FCRemoteProgram>> m;
             bool r = g_finder.GetRemoteProgramByDescription("d", m, 3, 4); o = Programmes(m); return r; }},
        // FCRemoteContentOnTV_MSO_Proxy
        {"GetRemoteContentConfig", R"({"activityID":1})",
         R"({"ret":false,"config":{"strHeadend":"H","source":3,"antennaMode":1,"serviceMode":2}})", false, "H/3/1/2",
         [](std::string& o) { FCRemoteMSOConfig c; bool r = g_mso.GetRemoteContentConfig(kSub, c);
             o = c.m_headend + "/" + std::to_string(c.m_source) + "/" + std::to_string(c.m_antennaMode) + "/" +
                 std::to_string(c.m_serviceMode); return r; }},
        {"SetRemoteContentConfig",
         R"({"activityID":0,"config":{"antennaMode":2,"serviceMode":3,"source":1,"strDeviceType":"D",
             "strHeadend":"H","strZipCode":"Z","str_additional_info_with_json_format":"{}"}})",
         R"({"ret":true})", true, "", [](std::string&) { FCRemoteMSOConfig c; c.m_headend = "H"; c.m_deviceType = "D";
             c.m_zipCode = "Z"; c.m_source = 1; c.m_antennaMode = 2; c.m_serviceMode = 3; c.m_additionalInfoJson = "{}";
             return g_mso.SetRemoteContentConfig(kMain, c); }},
        {"GetCertRule", R"({"activityID":0})",
         R"({"ret":false,"out_cert_rule":{"str_bar_mode":"B","str_service_uptime_end":"E"}})", false, "B/E",
         [](std::string& o) { CKelvoResponse_CertRule c; bool r = g_mso.GetCertRule(kMain, c);
             o = c.m_strBarMode + "/" + c.m_strServiceUptimeEnd; return r; }},
        {"GetFullChannelList", R"({"activityID":0})", kListReply, false, "A,B", [](std::string& o) {
             std::vector<FCRemoteChannel> v; bool r = g_mso.GetFullChannelList(kMain, v); o = ChannelNames(v); return r; }},
        {"GetTunableChannelList", R"({"activityID":1})", kListReply, false, "A,B", [](std::string& o) {
             std::vector<FCRemoteChannel> v; bool r = g_mso.GetTunableChannelList(kSub, v); o = ChannelNames(v); return r; }},
        {"GetTunableProgramSourceIdMap", R"({"activityID":0})",
         R"({"ret":true,"out_tunable_program_source_id_map":[{"channel_key":{"str_major":"9"},"program_source_id":"S9"}]})",
         true, "S9:9", [](std::string& o) { std::map<std::string, FCRemoteChannelKey> m;
             bool r = g_mso.GetTunableProgramSourceIdMap(kMain, m);
             o = Join(m, [](const auto& e) { return e.first + ":" + e.second.m_major; }); return r; }},
        {"GetProgramMap",
         R"({"activityID":0,"sourceIDArray":["S1","S2"],"utc start time":1000,"duration":86400,"genre id list":"g1"})",
         kMapReply, true, "S1:a,b", [](std::string& o) { std::vector<std::string> ids = {"S1", "S2"};
             FCFilterCriteria f; f.m_genreIdList = "g1"; std::map<std::string, std::vector<FCRemoteProgram>> m;
             bool r = g_mso.GetProgramMap(kMain, ids, 1000, 86400, f, m); o = Programmes(m); return r; }},
        {"LoadAdditionalProgramMapFromServer",
         R"({"activityID":0,"sourceIDArray":["S1"],"utc_starttime":1000,"duration":60})", R"({"ret":true})", true, "",
         [](std::string&) { std::vector<std::string> ids = {"S1"};
             return g_mso.LoadAdditionalProgramMapFromServer(kMain, ids, 1000, 60); }},
        {"GetGenreList", R"({"activityID":0})", R"({"ret":true,"array_genre":[{"str_id":"g","str_name":"Drama"}]})",
         true, "g:Drama", [](std::string& o) { std::vector<FCGenreInfo> v; bool r = g_mso.GetGenreList(kMain, v);
             o = Join(v, [](const FCGenreInfo& g) { return g.m_id + ":" + g.m_name; }); return r; }},
        {"GetVODProviders", R"({"activityID":0})",
         R"({"ret":false,"out_vod_providers":[{"string":"k","name":"N","provider id":"P"}]})", false, "k:N/P",
         [](std::string& o) { CKelvoResponse_VODProviders v; bool r = g_mso.GetVODProviders(kMain, v);
             o = Join(v.m_providers, [](const auto& e) { return e.first + ":" + e.second.m_name + "/" + e.second.m_providerId; });
             return r; }},
        {"GetFCRemoteProgramByProgramSourceID", R"({"activityID":0,"program source id":"S1","utc current time":500})",
         R"({"ret":true,"title":"T","utc start time":450})", true, "T@450", [](std::string& o) { FCRemoteProgram p;
             bool r = g_mso.GetFCRemoteProgramByProgramSourceID(kMain, "S1", 500, p);
             o = p.m_title + "@" + std::to_string(p.m_utcStartTime); return r; }},
        {"GetFCRemoteChannelByProgramSourceID", R"({"activityID":1,"program source id":"S1"})", kChannelReply, false,
         "News/S1/3", [](std::string& o) { FCRemoteChannel c;
             bool r = g_mso.GetFCRemoteChannelByProgramSourceID(kSub, "S1", c); o = ChannelText(c); return r; }},
        {"GetSearchKeyStringInRFMode", R"({"activityID":0,"utc_current_time":500,"TCServiceId":"42"})",
         R"({"ret":true,"search string":"Q"})", true, "Q", [](std::string& o) { unsigned long long id = 42;
             return g_mso.GetSearchKeyStringInRFMode(kMain, id, 500, o); }},
        {"GetSearchKeyStringInMBRMode", R"({"activityID":0,"mbr ch number":"5-1","utc current time":500})",
         R"({"ret":false,"search string":"Q"})", false, "Q",
         [](std::string& o) { return g_mso.GetSearchKeyStringInMBRMode(kMain, "5-1", 500, o); }},
        {"GetFeaturedChannels", R"({"activityID":0})", kListReply, false, "A,B", [](std::string& o) {
             std::vector<FCRemoteChannel> v; bool r = g_mso.GetFeaturedChannels(kMain, v); o = ChannelNames(v); return r; }},
        {"GetFullProgramSourceIdList", R"({"activityID":0})", R"({"ret":true,"sourceIDArray":["S1","S2"]})", true,
         "S1,S2", [](std::string& o) { std::vector<std::string> v; bool r = g_mso.GetFullProgramSourceIdList(kMain, v);
             o = Join(v, [](const std::string& s) { return s; }); return r; }},
        // FCRemoteContentOnTV_Proxy
        {"FCRemoteContent_Reset", "{}", R"({"ret":true})", true, "", [](std::string&) { return g_content.Reset(); }},
        {"ToggleKelvoTimeoutTest", R"({"ret":true})", R"({"ret":false})", false, "",
         [](std::string&) { return g_content.ToggleKelvoTimeoutTest(true); }},
        {"SetRemoteContentEnv", R"({"country":"KR","language":"ko"})", R"({"ret":true})", true, "",
         [](std::string&) { return g_content.SetRemoteContentEnv("KR", "ko"); }},
        {"GetRemoteContentEnv", "{}", R"({"ret":false,"country":"US","language":"en"})", false, "US/en",
         [](std::string& o) { std::string c, l; bool r = g_content.GetRemoteContentEnv(c, l); o = c + "/" + l; return r; }},
        {"GetRemoteContentActivityByTVSourceAndTSTVMode", R"({"in_source":1,"in_antennaMode":2,"in_serviceMode":3})",
         R"({"ret":true,"activityID":1})", true, "1", [](std::string& o) { eRemoteContentActivity a = kMain;
             bool r = g_content.GetRemoteContentActivityByTVSourceAndTVMode(1, 2, 3, a); o = std::to_string(a); return r; }},
        {"GetChannelCRC", "{}", R"({"ret":false,"crc":"abc"})", false, "abc",
         [](std::string& o) { return g_content.GetChannelCRC(o); }},
        {"GetFenvoraVersion", "{}", R"({"ret":true,"str":"1.0"})", true, "1.0",
         [](std::string& o) { return g_content.GetFenvoraVersion(o); }},
    };
    return cases;
}

struct StringCase {
    const char* wireMethod;
    bool resultOnFalseReply;  // what the operation answers when the reply says "ret": false
    std::function<bool(const std::string& in, std::string& out)> run;
};

// The string forms hand the caller's text over unchanged and give back the reply text.
const std::vector<StringCase>& StringCases() {
    using S = const std::string&;
    using O = std::string&;
    static const std::vector<StringCase> cases = {
        {"GetFCRemoteChannelByTCServiceId", false, [](S i, O o) { return g_finder.GetFCRemoteChannelByTCServiceId(i, o); }},
        {"GetTCServiceIdByFCRemoteChannel", false, [](S i, O o) { return g_finder.GetTCServiceIdByFCRemoteChannel(i, o); }},
        {"GetTCServiceIdByProgramSourceID", false, [](S i, O o) { return g_finder.GetTCServiceIdByProgramSourceID(i, o); }},
        {"GetRemoteContentConfig", false, [](S i, O o) { return g_mso.GetRemoteContentConfig(i, o); }},
        {"SetRemoteContentConfig", false, [](S i, O o) { return g_mso.SetRemoteContentConfig(i, o); }},
        {"GetCertRule", false, [](S i, O o) { return g_mso.GetCertRule(i, o); }},
        {"GetFullChannelList", false, [](S i, O o) { return g_mso.GetFullChannelList(i, o); }},
        {"GetTunableChannelList", false, [](S i, O o) { return g_mso.GetTunableChannelList(i, o); }},
        {"GetProgramMap", false, [](S i, O o) { return g_mso.GetProgramMap(i, o); }},
        {"LoadAdditionalProgramMapFromServer", false, [](S i, O o) { return g_mso.LoadAdditionalProgramMapFromServer(i, o); }},
        {"GetGenreList", false, [](S i, O o) { return g_mso.GetGenreList(i, o); }},
        {"GetVODProviders", true, [](S i, O o) { return g_mso.GetVODProviders(i, o); }},
        {"GetFCRemoteProgramByProgramSourceID", false, [](S i, O o) { return g_mso.GetFCRemoteProgramByProgramSourceID(i, o); }},
        {"GetFCRemoteChannelByProgramSourceID", false, [](S i, O o) { return g_mso.GetFCRemoteChannelByProgramSourceID(i, o); }},
        {"SetRemoteContentEnv", false, [](S i, O o) { return g_content.SetRemoteContentEnvForEmp(i, o); }},
        {"GetRemoteContentActivityByTVSourceAndTSTVMode", false,
         [](S i, O o) { return g_content.GetRemoteContentActivityByTVSourceAndTVMode(i, o); }},
    };
    return cases;
}

class ProxyWireTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_bus = new KelvoTestBus(); }
    static void TearDownTestSuite() { delete s_bus; }
    void SetUp() override {
        ASSERT_TRUE(s_bus->Ready());
        s_bus->UseForCalls();
        s_bus->ClearScript();
        s_bus->ClearRecords();
        FakeDlog::Clear();
    }
    static KelvoTestBus* s_bus;
};
KelvoTestBus* ProxyWireTest::s_bus = nullptr;

TEST_F(ProxyWireTest, TypedOperationsSendTheirArgumentAndReadTheReply) {
    for (const auto& c : TypedCases()) {
        SCOPED_TRACE(c.wireMethod + std::string(" ") + c.argument);
        s_bus->ClearRecords();
        ASSERT_TRUE(s_bus->SetScript(c.wireMethod, "{\"reply\":" + Compact(c.reply) + "}"));
        std::string outputs;
        EXPECT_EQ(c.run(outputs), c.result);
        EXPECT_EQ(outputs, c.outputs);
        auto records = s_bus->Records();
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].first, c.wireMethod);
        EXPECT_EQ(records[0].second, Compact(c.argument));
        s_bus->SetScript(c.wireMethod, "");
    }
}

// A daemon that fails the call, or answers no JSON object (also one cut short after "ret": true),
// leaves every typed operation false.
TEST_F(ProxyWireTest, TypedOperationsAreFalseWhenTheCallFails) {
    const char* const failures[] = {R"({"error":"org.freedesktop.DBus.Error.Failed"})", R"({"reply":"not json"})",
                                    R"({"reply":"[1,2]"})", R"({"reply":"true"})",
                                    R"({"reply":"{\"ret\":true,\"TCServiceId\":\"5\","})"};
    for (const char* failure : failures) {
        for (const auto& c : TypedCases()) {
            SCOPED_TRACE(std::string(c.wireMethod) + " " + failure);
            s_bus->SetScript(c.wireMethod, failure);
            std::string outputs;
            EXPECT_FALSE(c.run(outputs));
            s_bus->SetScript(c.wireMethod, "");
        }
    }
}

TEST_F(ProxyWireTest, StringFormsPassTextThroughBothWays) {
    const std::string in = R"({"activityID":0, "any":  "text as the caller wrote it"})";
    for (const auto& c : StringCases()) {
        SCOPED_TRACE(c.wireMethod);
        for (bool ret : {true, false}) {
            s_bus->ClearRecords();
            const std::string reply = std::string("{\"ret\":") + (ret ? "true" : "false") + ",\"x\":1}";
            s_bus->SetScript(c.wireMethod, Json::writeString(Json::StreamWriterBuilder(), [&] {
                Json::Value entry;
                entry["reply"] = reply;
                return entry;
            }()));
            std::string out = "previous";
            EXPECT_EQ(c.run(in, out), ret ? true : c.resultOnFalseReply);
            EXPECT_EQ(out, reply);
            auto records = s_bus->Records();
            ASSERT_EQ(records.size(), 1u);
            EXPECT_EQ(records[0].first, c.wireMethod);
            EXPECT_EQ(records[0].second, in);
        }
        s_bus->SetScript(c.wireMethod, "");
    }
}

TEST_F(ProxyWireTest, EnvironmentTextAndNotifications) {
    // The environment's string form sends nothing and hands the reply back in its argument.
    s_bus->SetScript("GetRemoteContentEnv", R"({"reply":"{\"ret\":true,\"country\":\"DE\"}"})");
    std::string env = "ignored by the call";
    EXPECT_TRUE(g_content.GetRemoteContentEnv(env));
    EXPECT_EQ(env, "{\"ret\":true,\"country\":\"DE\"}");

    std::string note = R"({"file":"/tmp/p.png"})";
    EXPECT_TRUE(g_content.NotifyPreviewDownloaderFinish(note));
    EXPECT_TRUE(g_content.NotifyDVRContentUpdate());
    auto records = s_bus->Records();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0], std::make_pair(std::string("GetRemoteContentEnv"), std::string()));
    EXPECT_EQ(records[1], std::make_pair(std::string("NotifyPreviewDownloaderFinish"), note));
    EXPECT_EQ(records[2], std::make_pair(std::string("NotifyDVRContentUpdate"), std::string()));

    s_bus->SetScript("NotifyDVRContentUpdate", R"({"reply":"{\"ret\":false}"})");
    s_bus->SetScript("NotifyPreviewDownloaderFinish", R"({"error":"org.freedesktop.DBus.Error.Failed"})");
    EXPECT_FALSE(g_content.NotifyDVRContentUpdate());
    EXPECT_FALSE(g_content.NotifyPreviewDownloaderFinish(note));
}

TEST_F(ProxyWireTest, GuideActivationAndMvpdStayLocal) {
    std::string in = "{}", out;
    EXPECT_TRUE(g_mso.ActivateProgramGuide(kMain));
    EXPECT_TRUE(g_mso.ActivateProgramGuide(in, out));
    EXPECT_TRUE(g_mso.DeactivateProgramGuide(kSub));
    EXPECT_TRUE(g_mso.DeactivateProgramGuide(in, out));
    EXPECT_FALSE(g_mso.SetMVPDContents(in, out));
    EXPECT_TRUE(s_bus->Records().empty());
}

TEST_F(ProxyWireTest, EntryLinesNameClassAndOperation) {
    unsigned long long id = 0;
    std::string version;
    g_finder.GetTCServiceIdByProgramSourceID(kMain, "S1", id);
    g_content.Reset();
    g_content.GetFenvoraVersion(version);
    auto messages = FakeDlog::Messages("kelvo-dbus-proxy");
    auto has = [&](const std::string& text) { return std::find(messages.begin(), messages.end(), text) != messages.end(); };
    EXPECT_TRUE(has("DBG_LV[0][FCMatchFinder_Proxy::GetTCServiceIdByProgramSourceID] called\n"));
    EXPECT_TRUE(has("DBG_LV[0][FCRemoteContentOnTV_Proxy::Reset] called\n"));
    EXPECT_TRUE(has("DBG_LV[0]called\n"));
}

// The utility's road: source ids, the programme map over the guide period, a service per source.
TEST(ProxyWireWithFixture, GuideExportRoadAgainstTheFixture) {
    KelvoTestBus bus(R"({"programs": {
        "S2": [{"program source id":"S2","utc start time":1000,"duration":60,"title":"in"},
               {"program source id":"S2","utc start time":2000,"duration":60,"title":"after"}],
        "S1": [{"program source id":"S1","utc start time":999,"duration":60,"title":"before"}],
        "S3": [{"program source id":"S3","utc start time":1999,"duration":60,"title":"last"}]},
        "sourceToService": {"S2": "4294967296001"}})");
    ASSERT_TRUE(bus.Ready());
    bus.UseForCalls();
    std::vector<std::string> ids;
    ASSERT_TRUE(g_mso.GetFullProgramSourceIdList(kMain, ids));
    EXPECT_EQ(ids, (std::vector<std::string>{"S1", "S2", "S3"}));
    FCFilterCriteria filter;
    std::map<std::string, std::vector<FCRemoteProgram>> map;
    EXPECT_TRUE(g_mso.GetProgramMap(kMain, ids, 1000, 1000, filter, map));
    EXPECT_EQ(Programmes(map), "S2:in,S3:last");
    unsigned long long service = 0;
    EXPECT_TRUE(g_finder.GetTCServiceIdByProgramSourceID(kMain, "S2", service));
    EXPECT_EQ(service, 4294967296001ULL);
    EXPECT_FALSE(g_finder.GetTCServiceIdByProgramSourceID(kMain, "S3", service));
}

TEST(ProxyWireWithoutDaemon, OperationsAreFalseWithoutCrash) {
    KelvoTestBus bus("{}", false);
    ASSERT_TRUE(bus.Ready());
    bus.UseForCalls();
    for (const auto& c : TypedCases()) {
        std::string outputs;
        EXPECT_FALSE(c.run(outputs)) << c.wireMethod;
    }
    std::string out;
    EXPECT_FALSE(g_content.NotifyDVRContentUpdate());
    EXPECT_TRUE(g_mso.GetVODProviders("{}", out));
}

}  // namespace
