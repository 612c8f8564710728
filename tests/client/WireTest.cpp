// Call, and the remote-content, MSO and match-finder proxies on it, against the daemon simulator on a
// private bus: what reaches the daemon (method name, argument text) and what the caller gets back.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "FCRemoteContentOnTV_Proxy.h"
#include "FakeDlog.h"
#include "KelvoTestBus.h"
#include "kelvo-dbus-proxy.h"

namespace {

// ---- Call and DisposeCallResult ----

// The reply text of a call; "(failed)" when the result's flag is clear, "(none)" without a result.
std::string CallText(const char *method, const char *argument = "{}")
{
    KelvoCallResult *result = Call(method, argument);
    if (!result)
        return "(none)";
    std::string text = result->success ? std::string(result->data, result->length) : "(failed)";
    DisposeCallResult(result);
    return text;
}

const char *const kVersionReply = "{\"ret\":true,\"str\":\"7.1 \xC3\xA9t\xC3\xA9\"}";

using CallTest = KelvoBusTest;

TEST_F(CallTest, TextArrivesWholeBothWaysAndNullArgumentArrivesEmpty)
{
    EXPECT_EQ(CallText("GetFenvoraVersion"), kVersionReply);
    CallText("NotifyDVRContentUpdate", nullptr);
    EXPECT_EQ(s_bus->Records(),
              (KelvoTestBus::RecordList{{"GetFenvoraVersion", "{}"}, {"NotifyDVRContentUpdate", ""}}));
}

// Every way a call can fail after the bus was reached gives a result with the flag clear.
TEST_F(CallTest, FailedCallsClearTheSuccessFlag)
{
    s_bus->SetScript("GetGenreList", R"({"error": "org.freedesktop.DBus.Error.Failed"})");
    s_bus->SetScript("GetChannelCRC", R"({"delay_ms": 600})");
    setenv("KELVO_CALL_TIMEOUT_MS", "200", 1);
    // An error reply, an unknown method, a time-out, a member name D-Bus refuses, no method.
    for (const char *method :
         {"GetGenreList", "NoSuchMethod", "GetChannelCRC", "Not-A-Member", (const char *)nullptr}) {
        EXPECT_EQ(CallText(method), "(failed)") << (method ? method : "no method");
    }
    // The late reply of the timed-out call arrives while the next call on the same connection
    // waits; that call must get its own reply.
    unsetenv("KELVO_CALL_TIMEOUT_MS");
    s_bus->SetScript("GetFenvoraVersion", R"({"delay_ms": 900})");
    EXPECT_EQ(CallText("GetFenvoraVersion"), kVersionReply);
}

TEST_F(CallTest, BusctlReachesTheSimulator)
{
    std::string command = "busctl --address='" + s_bus->Address() +
                          "' call com.halvorn.tv.KelvoDaemon /com/halvorn/tv/KelvoDaemon "
                          "com.halvorn.tv.KelvoDaemon.Provider GetFullProgramSourceIdList s '{\"activityID\":0}' 2>&1";
    std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
    ASSERT_TRUE(pipe);
    std::string output;
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe.get()))
        output += buffer;
    EXPECT_EQ(output, "s \"{\\\"ret\\\":true,\\\"sourceIDArray\\\":[\\\"S1\\\",\\\"S2\\\"]}\"\n");
}

// ---- The proxies ----

const eRemoteContentActivity kMain = REMOTE_CONTENT_ACTIVITY_MAIN;
const eRemoteContentActivity kSub = REMOTE_CONTENT_ACTIVITY_SUB;
using Channels = std::vector<FCRemoteChannel>;
using ServiceIds = std::list<unsigned long long>;
using ProgramMap = std::map<std::string, std::vector<FCRemoteProgram>>;

// What an operation handed back, as text a row can state.
template <typename C, typename = typename C::const_iterator>
std::string Text(const C &items);
template <typename K, typename V>
std::string Text(const std::pair<K, V> &e);
std::string Text(const std::string &s)
{
    return s;
}
std::string Text(unsigned long long n)
{
    return std::to_string(n);
}
std::string Text(const FCRemoteChannel &c)
{
    return c.m_channelName + "/" + c.m_programSourceId + "/" + Text(c.m_embed);
}
std::string Text(const FCRemoteProgram &p)
{
    return p.m_title + "@" + Text(p.m_utcStartTime);
}
std::string Text(const FCRemoteChannelKey &k)
{
    return k.m_major;
}
std::string Text(const FCGenreInfo &g)
{
    return g.m_id + ":" + g.m_name;
}
std::string Text(const CKelvoResElement_VODProvider &p)
{
    return p.m_name + "/" + p.m_providerId;
}
std::string Text(const CKelvoResponse_VODProviders &v)
{
    return Text(v.m_providers);
}
std::string Text(const CKelvoResponse_CertRule &r)
{
    return r.m_strBarMode + "/" + r.m_strServiceUptimeEnd;
}
std::string Text(const FCRemoteMSOConfig &c)
{
    return c.m_headend + "/" + Text(c.m_source) + Text(c.m_antennaMode) + Text(c.m_serviceMode);
}
template <typename K, typename V>
std::string Text(const std::pair<K, V> &e)
{
    return e.first + ":" + Text(e.second);
}
template <typename C, typename>
std::string Text(const C &items)
{
    std::ostringstream out;
    for (const auto &item : items)
        out << (out.tellp() > 0 ? "," : "") << Text(item);
    return out.str();
}

using Run = std::function<bool(std::string &outputs)>;
// An operation with one output of type T, reported as Text(T).
template <typename T>
Run Out(std::function<bool(T &)> operation)
{
    return [operation](std::string &outputs) {
        T out{};
        bool result = operation(out);
        outputs = Text(out);
        return result;
    };
}

FCRemoteContentOnTV_Proxy g_content;
FCRemoteContentOnTV_MSO_Proxy g_mso;
FCMatchFinder_Proxy g_finder;

struct TypedCase {
    const char *wireMethod;
    const char *argument;  // exactly as the daemon must receive it
    const char *outputs;   // what `run` reports the operation handed back from kReply
    // The string form on the same method, where there is one.
    std::function<bool(const std::string &in, std::string &out)> text;
    Run run;
};

// One reply that carries what any typed operation reads, scripted with "ret" true and false.
const char *const kReply =
    R"({"str_channel_name":"News","str_program_source_id":"S1","embed":3,"TCServiceId":"18446744073709551615",)"
    R"("channel_array":[{"str_channel_name":"A"},{"str_channel_name":"B"}],"crc":"abc","str":"1.0",)"
    R"("service_list":[{"TCServiceId":"1"},{"TCServiceId":"2"}],"title":"T","utc start time":450,)"
    R"("out_mapProgramWithSourceID":[{"program_source_id":"S1","program_array":[{"title":"a"},{"title":"b"}]}],)"
    R"("config":{"strHeadend":"H","source":3,"antennaMode":1,"serviceMode":2},"activityID":1,)"
    R"("out_cert_rule":{"str_bar_mode":"B","str_service_uptime_end":"E"},"search string":"Q",)"
    R"("out_tunable_program_source_id_map":[{"channel_key":{"str_major":"9"},"program_source_id":"S9"}],)"
    R"("array_genre":[{"str_id":"g","str_name":"Drama"}],"sourceIDArray":["S1","S2"],"country":"US",)"
    R"("out_vod_providers":[{"string":"k","name":"N","provider id":"P"}],"language":"en"})";
const char *const kChannelArgument =
    R"({"ac_rank":"","activityID":1,"embed":2,"genre id":"","gere name":"g","str_alias":"","str_channel_name":"",)"
    R"("str_channel_number":"","str_digital_flag":"","str_dtv":"","str_frequency":"","str_icon_url":"","str_major":"",)"
    R"("str_minor":"","str_onid":"","str_program_source_id":"S1","str_ptc":"","str_qam_flag":"","str_sid":"",)"
    R"("str_tsid":"","str_url_index":""})";
const char *const kMap = "S1:a@0,b@0";
const char *const kNames = "A//0,B//0";

// Every typed operation of the three proxies.
const std::vector<TypedCase> &TypedCases()
{
    using S = const std::string &;
    using O = std::string &;
    static const std::vector<TypedCase> cases = {
        // FCMatchFinder_Proxy
        {"GetFCRemoteChannelByTCServiceId", R"({"TCServiceId":"12345678901234","activityID":1})", "News/S1/3",
         [](S i, O o) { return g_finder.GetFCRemoteChannelByTCServiceId(i, o); }, Out<FCRemoteChannel>([](auto &c) {
             unsigned long long id = 12345678901234ULL;
             return g_finder.GetFCRemoteChannelByTCServiceId(kSub, id, c);
         })},
        {"GetTCServiceIdByFCRemoteChannel", kChannelArgument, "18446744073709551615",
         [](S i, O o) { return g_finder.GetTCServiceIdByFCRemoteChannel(i, o); }, Out<unsigned long long>([](auto &id) {
             FCRemoteChannel c;
             c.m_activityID = kSub;
             c.m_programSourceId = "S1";
             c.m_embed = 2;
             c.m_genreName = "g";
             return g_finder.GetTCServiceIdByFCRemoteChannel(kSub, c, id);
         })},
        {"GetTCServiceIdByProgramSourceID", R"({"activityID":0,"program source id":"S1"})", "18446744073709551615",
         [](S i, O o) { return g_finder.GetTCServiceIdByProgramSourceID(i, o); },
         Out<unsigned long long>([](auto &id) { return g_finder.GetTCServiceIdByProgramSourceID(kMain, "S1", id); })},
        {"GetTCServiceIdListByProgramSourceID", R"({"activityID":0,"program source id":"S2"})", "1,2", nullptr,
         Out<ServiceIds>([](auto &v) { return g_finder.GetTCServiceIdListByProgramSourceID(kMain, "S2", v); })},
        {"GetRemoteChannelListByChannelName", R"({"ret":true,"search string":"new"})", kNames, nullptr,
         Out<Channels>([](auto &v) { return g_finder.GetRemoteChannelListByChannelName("new", v, true); })},
        {"GetRemoteChannelByChannelNumber", R"({"major":7,"minor":2})", "News/S1/3", nullptr,
         Out<FCRemoteChannel>([](auto &c) { return g_finder.GetRemoteChannelByChannelNumber(7, 2, c); })},
        {"GetRemoteChannelListByChannelName", R"({"search string":"x"})", kNames, nullptr,
         Out<Channels>([](auto &v) { return g_finder.GetRemoteChannelListByChannelName("x", v); })},
        {"GetRemoteChannelByChannelNumber", R"({"ret":7})", "News/S1/3", nullptr,
         Out<FCRemoteChannel>([](auto &c) { return g_finder.GetRemoteChannelByChannelNumber(7, c); })},
        {"GetRemoteProgramByKeyword", R"({"search string":"k","utc_end_time":200,"utc_start_time":100})", kMap, nullptr,
         Out<ProgramMap>([](auto &m) { return g_finder.GetRemoteProgramByKeyword("k", m, 100, 200); })},
        {"GetRemoteProgramByTitle", R"({"search string":"t","utc_end_time":2,"utc_start_time":1})", kMap, nullptr,
         Out<ProgramMap>([](auto &m) { return g_finder.GetRemoteProgramByTitle("t", m, 1, 2); })},
        {"GetRemoteProgramByDescription", R"({"search string":"d","utc_end_time":4,"utc_start_time":3})", kMap, nullptr,
         Out<ProgramMap>([](auto &m) { return g_finder.GetRemoteProgramByDescription("d", m, 3, 4); })},
        // FCRemoteContentOnTV_MSO_Proxy
        {"GetRemoteContentConfig", R"({"activityID":1})", "H/312",
         [](S i, O o) { return g_mso.GetRemoteContentConfig(i, o); },
         Out<FCRemoteMSOConfig>([](auto &c) { return g_mso.GetRemoteContentConfig(kSub, c); })},
        {"SetRemoteContentConfig",
         R"({"activityID":0,"config":{"antennaMode":2,"serviceMode":3,"source":1,"strDeviceType":"D","strHeadend":"H",)"
         R"("strZipCode":"Z","str_additional_info_with_json_format":"{}"}})",
         "", [](S i, O o) { return g_mso.SetRemoteContentConfig(i, o); },
         [](O) {
             FCRemoteMSOConfig c;
             c.m_headend = "H";
             c.m_deviceType = "D";
             c.m_zipCode = "Z";
             c.m_source = 1;
             c.m_antennaMode = 2;
             c.m_serviceMode = 3;
             c.m_additionalInfoJson = "{}";
             return g_mso.SetRemoteContentConfig(kMain, c);
         }},
        {"GetCertRule", R"({"activityID":0})", "B/E", [](S i, O o) { return g_mso.GetCertRule(i, o); },
         Out<CKelvoResponse_CertRule>([](auto &r) { return g_mso.GetCertRule(kMain, r); })},
        {"GetFullChannelList", R"({"activityID":0})", kNames, [](S i, O o) { return g_mso.GetFullChannelList(i, o); },
         Out<Channels>([](auto &v) { return g_mso.GetFullChannelList(kMain, v); })},
        {"GetTunableChannelList", R"({"activityID":1})", kNames,
         [](S i, O o) { return g_mso.GetTunableChannelList(i, o); },
         Out<Channels>([](auto &v) { return g_mso.GetTunableChannelList(kSub, v); })},
        {"GetTunableProgramSourceIdMap", R"({"activityID":0})", "S9:9", nullptr,
         Out<std::map<std::string, FCRemoteChannelKey>>(
             [](auto &m) { return g_mso.GetTunableProgramSourceIdMap(kMain, m); })},
        {"GetProgramMap",
         R"({"activityID":0,"duration":86400,"genre id list":"g1","sourceIDArray":["S1","S2"],"utc start time":1000})",
         kMap, [](S i, O o) { return g_mso.GetProgramMap(i, o); }, Out<ProgramMap>([](auto &m) {
             std::vector<std::string> ids = {"S1", "S2"};
             FCFilterCriteria f;
             f.m_genreIdList = "g1";
             return g_mso.GetProgramMap(kMain, ids, 1000, 86400, f, m);
         })},
        {"LoadAdditionalProgramMapFromServer",
         R"({"activityID":0,"duration":60,"sourceIDArray":["S1"],"utc_starttime":1000})", "",
         [](S i, O o) { return g_mso.LoadAdditionalProgramMapFromServer(i, o); },
         [](O) {
             std::vector<std::string> ids = {"S1"};
             return g_mso.LoadAdditionalProgramMapFromServer(kMain, ids, 1000, 60);
         }},
        {"GetGenreList", R"({"activityID":0})", "g:Drama", [](S i, O o) { return g_mso.GetGenreList(i, o); },
         Out<std::vector<FCGenreInfo>>([](auto &v) { return g_mso.GetGenreList(kMain, v); })},
        {"GetVODProviders", R"({"activityID":0})", "k:N/P", [](S i, O o) { return g_mso.GetVODProviders(i, o); },
         Out<CKelvoResponse_VODProviders>([](auto &v) { return g_mso.GetVODProviders(kMain, v); })},
        {"GetFCRemoteProgramByProgramSourceID", R"({"activityID":0,"program source id":"S1","utc current time":500})",
         "T@450", [](S i, O o) { return g_mso.GetFCRemoteProgramByProgramSourceID(i, o); },
         Out<FCRemoteProgram>([](auto &p) { return g_mso.GetFCRemoteProgramByProgramSourceID(kMain, "S1", 500, p); })},
        {"GetFCRemoteChannelByProgramSourceID", R"({"activityID":1,"program source id":"S1"})", "News/S1/3",
         [](S i, O o) { return g_mso.GetFCRemoteChannelByProgramSourceID(i, o); },
         Out<FCRemoteChannel>([](auto &c) { return g_mso.GetFCRemoteChannelByProgramSourceID(kSub, "S1", c); })},
        {"GetSearchKeyStringInRFMode", R"({"TCServiceId":"42","activityID":0,"utc_current_time":500})", "Q", nullptr,
         [](O o) {
             unsigned long long id = 42;
             return g_mso.GetSearchKeyStringInRFMode(kMain, id, 500, o);
         }},
        {"GetSearchKeyStringInMBRMode", R"({"activityID":0,"mbr ch number":"5-1","utc current time":500})", "Q",
         nullptr, [](O o) { return g_mso.GetSearchKeyStringInMBRMode(kMain, "5-1", 500, o); }},
        {"GetFeaturedChannels", R"({"activityID":0})", kNames, nullptr,
         Out<Channels>([](auto &v) { return g_mso.GetFeaturedChannels(kMain, v); })},
        {"GetFullProgramSourceIdList", R"({"activityID":0})", "S1,S2", nullptr,
         Out<std::vector<std::string>>([](auto &v) { return g_mso.GetFullProgramSourceIdList(kMain, v); })},
        // FCRemoteContentOnTV_Proxy
        {"FCRemoteContent_Reset", "{}", "", nullptr, [](O) { return g_content.Reset(); }},
        {"ToggleKelvoTimeoutTest", R"({"ret":true})", "", nullptr,
         [](O) { return g_content.ToggleKelvoTimeoutTest(true); }},
        {"SetRemoteContentEnv", R"({"country":"KR","language":"ko"})", "",
         [](S i, O o) { return g_content.SetRemoteContentEnvForEmp(i, o); },
         [](O) { return g_content.SetRemoteContentEnv("KR", "ko"); }},
        {"GetRemoteContentEnv", "{}", "US/en", nullptr,
         [](O o) {
             std::string c, l;
             bool r = g_content.GetRemoteContentEnv(c, l);
             o = c + "/" + l;
             return r;
         }},
        {"GetRemoteContentActivityByTVSourceAndTSTVMode", R"({"in_antennaMode":2,"in_serviceMode":3,"in_source":1})",
         "1", [](S i, O o) { return g_content.GetRemoteContentActivityByTVSourceAndTVMode(i, o); },
         Out<eRemoteContentActivity>(
             [](auto &a) { return g_content.GetRemoteContentActivityByTVSourceAndTVMode(1, 2, 3, a); })},
        {"GetChannelCRC", "{}", "abc", nullptr, [](O o) { return g_content.GetChannelCRC(o); }},
        {"GetFenvoraVersion", "{}", "1.0", nullptr, [](O o) { return g_content.GetFenvoraVersion(o); }},
    };
    return cases;
}

using ProxyWireTest = KelvoBusTest;

// The outputs reach the caller also when the reply says "ret": false.
TEST_F(ProxyWireTest, TypedOperationsSendTheirArgumentAndReadTheReply)
{
    for (const char *ret : {"true", "false"}) {
        for (const auto &c : TypedCases()) {
            SCOPED_TRACE(c.wireMethod + std::string(" ") + c.argument + " ret " + ret);
            s_bus->ClearRecords();
            ASSERT_TRUE(
                s_bus->SetScript(c.wireMethod, KelvoScriptReply(std::string("{\"ret\":") + ret + "," + (kReply + 1))));
            std::string outputs;
            EXPECT_EQ(c.run(outputs), *ret == 't');
            EXPECT_EQ(outputs, c.outputs);
            EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{c.wireMethod, c.argument}}));
        }
    }
}

// A daemon that fails the call, or answers no JSON object (also one cut short after "ret": true),
// leaves every typed operation false; so does a bus without the daemon, without a crash (the calls
// must follow the changed bus address, not keep the connection to the first bus).
TEST_F(ProxyWireTest, TypedOperationsAreFalseWhenTheCallFails)
{
    KelvoTestBus noDaemon("{}", false);
    for (const char *failure :
         {R"({"error":"org.freedesktop.DBus.Error.Failed"})", R"({"reply":"not json"})", R"({"reply":"[1,2]"})",
          R"({"reply":"true"})", R"({"reply":"{\"ret\":true,\"TCServiceId\":\"5\","})", "no daemon"}) {
        const bool absent = failure == std::string("no daemon");
        if (absent) {
            s_bus->ClearScript();
            noDaemon.UseForCalls();
        }
        for (const auto &c : TypedCases()) {
            if (!absent)
                s_bus->SetScript(c.wireMethod, failure);
            std::string outputs;
            EXPECT_FALSE(c.run(outputs)) << c.wireMethod << " " << failure;
        }
    }
    std::string out;
    EXPECT_FALSE(g_content.NotifyDVRContentUpdate());
    EXPECT_TRUE(g_mso.GetVODProviders("{}", out));
    // Call itself: a result with the flag clear from a bus without the daemon, none without a bus.
    EXPECT_EQ(CallText("GetFullProgramSourceIdList"), "(failed)");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/kelvo-bus", 1);
    EXPECT_EQ(CallText("GetFullProgramSourceIdList"), "(none)");
    DisposeCallResult(nullptr);
}

// The string forms hand the caller's text over unchanged and give back the reply text.
TEST_F(ProxyWireTest, StringFormsPassTextThroughBothWays)
{
    const std::string in = R"({"activityID":0, "any":  "text as the caller wrote it"})";
    for (const auto &c : TypedCases()) {
        for (bool ret : {true, false}) {
            if (!c.text)
                continue;
            const std::string reply = ret ? R"({"ret":true,"x":1})" : R"({"ret":false,"x":1})";
            s_bus->ClearRecords();
            s_bus->SetScript(c.wireMethod, KelvoScriptReply(reply));
            std::string out = "previous";
            // The providers' text is the caller's to read: that form answers true whatever "ret" said.
            EXPECT_EQ(c.text(in, out), ret || std::string(c.wireMethod) == "GetVODProviders") << c.wireMethod;
            EXPECT_EQ(out, reply);
            EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{c.wireMethod, in}}));
        }
    }
}

TEST_F(ProxyWireTest, LocalOperationsEnvironmentTextNotificationsAndEntryLines)
{
    // The guide is always active on the daemon's side and operator contents are refused: no call.
    std::string in = "{}", out, env = "ignored by the call", note = R"({"file":"/tmp/p.png"})";
    EXPECT_TRUE(g_mso.ActivateProgramGuide(kMain));
    EXPECT_TRUE(g_mso.ActivateProgramGuide(in, out));
    EXPECT_TRUE(g_mso.DeactivateProgramGuide(kSub));
    EXPECT_TRUE(g_mso.DeactivateProgramGuide(in, out));
    EXPECT_FALSE(g_mso.SetMVPDContents(in, out));
    // The environment's string form sends nothing and hands the reply back in its argument.
    s_bus->SetScript("GetRemoteContentEnv", KelvoScriptReply(R"({"ret":true,"country":"DE"})"));
    EXPECT_TRUE(g_content.GetRemoteContentEnv(env));
    EXPECT_EQ(env, R"({"ret":true,"country":"DE"})");
    EXPECT_TRUE(g_content.NotifyPreviewDownloaderFinish(note));
    EXPECT_TRUE(g_content.NotifyDVRContentUpdate());
    EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{"GetRemoteContentEnv", ""},
                                                          {"NotifyPreviewDownloaderFinish", note},
                                                          {"NotifyDVRContentUpdate", ""}}));
    s_bus->SetScript("NotifyDVRContentUpdate", KelvoScriptReply(R"({"ret":false})"));
    s_bus->SetScript("NotifyPreviewDownloaderFinish", R"({"error":"org.freedesktop.DBus.Error.Failed"})");
    EXPECT_FALSE(g_content.NotifyDVRContentUpdate());
    EXPECT_FALSE(g_content.NotifyPreviewDownloaderFinish(note));

    unsigned long long id = 0;
    g_finder.GetTCServiceIdByProgramSourceID(kMain, "S1", id);
    g_content.GetFenvoraVersion(env);
    for (const char *line :
         {"> DBG_LV[0][FCRemoteContentOnTV_MSO_Proxy::ActivateProgramGuide] called\n",
          "> DBG_LV[0][FCRemoteContentOnTV_Proxy::NotifyDVRContentUpdate] called\n",
          "> DBG_LV[0][FCMatchFinder_Proxy::GetTCServiceIdByProgramSourceID] called\n", "> DBG_LV[0]called\n"}) {
        EXPECT_TRUE(FakeDlog::Contains(line)) << line;
    }
}

// Many threads of one process calling the daemon at once: every reply must reach its own caller.
// The service ids are distinct per thread and call, and above 2^32 so that all 64 bits must survive.
TEST(ProxyLoad, EveryReplyReachesItsOwnCaller)
{
    const int kThreads = 8, kCallsPerThread = 10000;
    auto sourceId = [](int t, int i) { return "t" + std::to_string(t) + "-" + std::to_string(i); };
    auto serviceId = [](int t, int i) { return (static_cast<unsigned long long>(t + 1) << 32) + i; };
    Json::Value fixture;
    for (int t = 0; t < kThreads; ++t) {
        for (int i = 0; i < kCallsPerThread; ++i)
            fixture["sourceToService"][sourceId(t, i)] = Text(serviceId(t, i));
    }
    KelvoTestBus bus(Json::writeString(Json::StreamWriterBuilder(), fixture));
    ASSERT_TRUE(bus.Ready());
    bus.UseForCalls();
    std::atomic<int> failed{0}, crossed{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            FCMatchFinder_Proxy finder;
            for (int i = 0; i < kCallsPerThread; ++i) {
                unsigned long long service = 0;
                if (!finder.GetTCServiceIdByProgramSourceID(kMain, sourceId(t, i), service))
                    ++failed;
                else if (service != serviceId(t, i))
                    ++crossed;
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(failed.load(), 0);
    EXPECT_EQ(crossed.load(), 0);
    EXPECT_EQ(bus.Records().size(), static_cast<size_t>(kThreads * kCallsPerThread));
}

}  // namespace
