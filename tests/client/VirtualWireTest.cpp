// The virtual-channel and streaming-control proxies against the daemon simulator on a private bus:
// the method each operation names, the argument the daemon receives, what the caller gets back
// and the operation's answer, for "ret" true and false, a failed call and a reply that is no JSON.
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCTVLumeControl_Proxy.h"
#include "FCVirtualChannels_Proxy.h"
#include "FakeDlog.h"
#include "FakeVconf.h"
#include "KelvoTestBus.h"

namespace {

const char *const kDisclaimer = "db/menu/tarn_deck/homedatacontrol/defaultdisclaimeragree";

FCVirtualChannels_Proxy g_vc;
FCTVLumeControl_Proxy g_lume;

class VirtualWireTest : public KelvoBusTest {
protected:
    void SetUp() override
    {
        KelvoBusTest::SetUp();
        s_bus->SetOlder(false);
        FakeVconf::Clear();
        FakeVconf::SetInt(kDisclaimer, 1);
    }
};

std::string Text(const FCVirtualProgramData &p)
{
    return std::to_string(p.GetServiceId()) + "/" + p.GetEventId() + "/" + p.GetTitle() + "/" +
           std::to_string(p.GetPlaylist().size());
}

FCVirtualProgramId Id()
{
    FCVirtualProgramId id;
    id.SetServiceId(42);
    id.SetEventId("E1");
    id.SetStartTime(1000);
    id.SetDuration(600);
    return id;
}

// How an operation answers: the reply's "ret", whether the call went through, the download id, or
// the reply's "ret" as a number (-1 when the call fails).
enum class Answer { kRet, kCalled, kDownloadId, kNumber };

struct TypedCase {
    const char *method;
    const char *argument;  // exactly as the daemon must receive it
    const char *outputs;   // what the operation handed back from kReply
    Answer answer;
    std::function<int(std::string &outputs)> run;
};

// One reply that carries what any typed operation reads; scripted with "ret" true and false.
const char *const kReply =
    R"({"program_data":{"TCServiceId":"42"},"id":"E1","title":"T","duration":600,)"
    R"("group_play_list":[{"id":"i1","duration":60},{"id":"i2","duration":40}],)"
    R"("virtual_program_map":[{"key":5,"id":"M1","title":"MT","program_data":{"TCServiceId":"7"}}],)"
    R"("channelLogo":"logo.png","programLogo":"img.png","imageDownloadId":"77","TCServiceId":"99","dataType":2,)"
    R"("ratings":[{"rating":4,"rating_system":8,"vsld":1}],"appID":"A","url":"U","version":"V"})";
const char *const kProgramId = R"("program_id":{"TCServiceId":"42","duration":600,"event_id":"E1","start_time":1000})";
// A virtual channel's full service id with programme number 123.
const unsigned long long kColdBootService = (9ULL << 60) | (123ULL << 23);

std::string Json(const std::string &members)
{
    return "{" + members + "}";
}

const std::vector<TypedCase> &TypedCases()
{
    using O = std::string &;
    static const std::string id = Json(kProgramId);
    static const std::string indicated = Json(std::string(kProgramId) + R"(,"program_indicator":1)");
    static const std::string image = Json(std::string(R"("programLogoType":1,)") + kProgramId);
    static const std::string coldBoot =
        R"({"TCServiceId":")" + std::to_string(kColdBootService) + R"(","pgNum":123,"playerType":1})";
    auto program = [](std::function<bool(FCVirtualProgramData &)> op) {
        return [op](O o) {
            FCVirtualProgramData p;
            int r = op(p);
            o = Text(p);
            return r;
        };
    };
    static const std::vector<TypedCase> cases = {
        {"GetProgramList", R"({"TCServiceId":"42","duration":3600,"start_time":1000})", "5:7/M1/MT/0", Answer::kRet,
         [](O o) {
             std::map<unsigned int, FCVirtualProgramData> m;
             int r = g_vc.GetProgramList(42, 1000, 3600, m);
             for (const auto &e : m)
                 o += std::to_string(e.first) + ":" + Text(e.second);
             return r;
         }},
        {"GetProgramWithIndicator", indicated.c_str(), "42/E1/T/2", Answer::kRet,
         program([](auto &p) { return g_vc.GetProgram(PROGRAM_INDICATOR_NEXT, Id(), p); })},
        {"GetProgram", id.c_str(), "42/E1/T/2", Answer::kRet,
         program([](auto &p) { return g_vc.GetProgram(Id(), p); })},
        {"GetPresentProgram", R"({"TCServiceId":"42"})", "42/E1/T/2", Answer::kRet,
         program([](auto &p) { return g_vc.GetPresentProgram(42, p); })},
        {"GetTVLumeProgramOnColdBoot", coldBoot.c_str(), "42/E1/T/2", Answer::kRet, program([](auto &p) {
             return g_vc.GetTVLumeProgramOnColdBoot(FCVirtualChannelsAPI::PLAYER_TYPE_PREVIEW, kColdBootService, p);
         })},
        {"GetChannelLogo", R"({"TCServiceId":"42","logoSize":2})", "logo.png", Answer::kRet,
         [](O o) { return g_vc.GetChannelLogo(42, FCVirtualChannelsAPI::CHANNEL_LOGO_SIZE_LARGE, o); }},
        {"GetProgramThumbnail", id.c_str(), "img.png", Answer::kRet,
         [](O o) { return g_vc.GetProgramThumbnail(Id(), o); }},
        {"GetProgramBackground", id.c_str(), "img.png", Answer::kRet,
         [](O o) { return g_vc.GetProgramBackground(Id(), o); }},
        {"GetProgramImage", image.c_str(), "img.png", Answer::kDownloadId,
         [](O o) { return g_vc.GetProgramImage(Id(), FCVirtualChannelsAPI::PROGRAM_LOGO_TYPE_POSTER, o); }},
        {"GetServiceIdFromOnTVProviderAndService", R"({"onTvProviderId":"p","onTvServiceId":"s"})", "99", Answer::kRet,
         [](O o) {
             unsigned long long service = 0;
             int r = g_vc.GetServiceIdFromOnTVProviderAndService("p", "s", service);
             o = std::to_string(service);
             return r;
         }},
        {"SendLogKPI", R"({"Category":"c","EventName":"e","KPIType":1,"desc":"d"})", "", Answer::kRet,
         [](O) {
             std::string e = "e", c = "c", d = "d";
             return g_vc.SendLogKPI(FCVirtualChannelsAPI::KPI_TYPE_ACTION, e, c, d);
         }},
        {"GetViewingAgreement", "{}", "", Answer::kRet, [](O) { return g_vc.GetViewingAgreement(); }},
        {"GetMyTvlume", "{}", "", Answer::kRet, [](O) { return g_vc.GetMyTvlume(); }},
        {"GetHomeScreenFlag", "{}", "", Answer::kRet, [](O) { return g_vc.GetHomeScreenFlag(); }},
        {"IsTVLumeLaunched", "{}", "", Answer::kRet, [](O) { return g_vc.IsTVLumeLaunched(); }},
        {"SetMyTvlume", R"({"ret":true})", "", Answer::kCalled, [](O) { return g_vc.SetMyTvlume(true); }},
        {"SetTVLumeOnOff", R"({"ret":false})", "", Answer::kCalled, [](O) { return g_vc.SetTVLumeOnOff(false); }},
        {"SetHomeScreenFlag", R"({"ret":true})", "", Answer::kCalled, [](O) { return g_vc.SetHomeScreenFlag(true); }},
        {"LaunchTVLumeHomeScreen", "{}", "", Answer::kNumber, [](O) { return g_vc.LaunchTVLumeHomeScreen(); }},
        {"SetDataServiceType", R"({"ret":2})", "", Answer::kCalled,
         [](O) {
             EDataServiceType t = DATA_SERVICE_TYPE_AOC;
             return g_vc.SetDataServiceType(t);
         }},
        {"GetDataServiceType", R"({"ret":1})", "2", Answer::kRet,
         [](O o) {
             EDataServiceType t = DATA_SERVICE_TYPE_TVLUME;
             int r = g_vc.GetDataServiceType(t);
             o = std::to_string(t);
             return r;
         }},
        {"GetAppIDAndURL", R"({"appID":"a","url":"u"})", "A/U", Answer::kRet,
         [](O o) {
             std::string a = "a", u = "u";
             int r = g_lume.GetAppIDAndURL(a, u);
             o = a + "/" + u;
             return r;
         }},
        {"GetAppIDAndURLAndVersion", R"({"appID":"a","url":"u","version":"v"})", "A/U/V", Answer::kRet,
         [](O o) {
             std::string a = "a", u = "u", v = "v";
             int r = g_lume.GetAppIDAndURLAndVersion(a, u, v);
             o = a + "/" + u + "/" + v;
             return r;
         }},
        {"EnterTVLumeWebApp", R"({"show_webapp":1})", "", Answer::kRet,
         [](O) { return g_lume.EnterTVLumeWebApp(TVLUME_WEBAPP_SHOW); }},
        {"SetUnlockedFlag", R"({"ret":true})", "", Answer::kRet, [](O) { return g_lume.SetUnlockedFlag(true); }},
        {"SetUnlockedFlag", R"({"ret":false})", "", Answer::kRet,
         [](O) { return g_lume.SetUnlockedFlagCompat(false); }},
        {"GetRatingInfo", "{}", "8:4:1", Answer::kRet,
         [](O o) {
             std::vector<RatingInfo> v;
             int r = g_lume.GetRatingInfo(v);
             for (const auto &i : v)
                 o += std::to_string(i.rating_system) + ":" + std::to_string(i.rating) + ":" + std::to_string(i.vsld);
             return r;
         }},
        {"NotifyContentIsChanged", R"({"rating":"12","ret":true})", "", Answer::kRet,
         [](O) { return g_lume.NotifyContentIsChanged(true, "12"); }},
        {"SetUnlockedInfo", R"({"ret":3})", "", Answer::kRet, [](O) { return g_lume.SetUnlockedInfo(3); }},
    };
    return cases;
}

int Expected(Answer answer, bool ret)
{
    return answer == Answer::kCalled ? 1 : answer == Answer::kDownloadId ? 77 : ret;
}

// The outputs reach the caller also when the reply says "ret": false.
TEST_F(VirtualWireTest, TypedOperationsSendTheirArgumentAndReadTheReply)
{
    for (bool ret : {true, false}) {
        for (const auto &c : TypedCases()) {
            SCOPED_TRACE(std::string(c.method) + " " + c.argument + (ret ? " ret true" : " ret false"));
            s_bus->ClearRecords();
            ASSERT_TRUE(s_bus->SetScript(
                c.method, KelvoScriptReply(std::string("{\"ret\":") + (ret ? "true," : "false,") + (kReply + 1))));
            std::string outputs;
            EXPECT_EQ(c.run(outputs), Expected(c.answer, ret));
            EXPECT_EQ(outputs, c.outputs);
            EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{c.method, c.argument}}));
        }
    }
}

// A failed call answers false (or -1) and leaves the outputs alone; a reply that is no JSON is
// read as an empty one; without a daemon nothing crashes either.
TEST_F(VirtualWireTest, TypedOperationsFailCleanly)
{
    KelvoTestBus noDaemon("{}", false);
    for (const char *failure : {R"({"error":"org.freedesktop.DBus.Error.Failed"})", R"({"reply":"not json"})",
                                R"({"reply":"[1,2]"})", "no daemon"}) {
        const bool absent = failure == std::string("no daemon");
        const bool answered = failure[2] == 'r';
        if (absent)
            noDaemon.UseForCalls();
        for (const auto &c : TypedCases()) {
            SCOPED_TRACE(std::string(c.method) + " " + failure);
            if (!absent)
                s_bus->SetScript(c.method, failure);
            std::string outputs;
            const int result = c.run(outputs);
            if (c.answer == Answer::kDownloadId)
                EXPECT_EQ(result, -1);
            else if (c.answer == Answer::kNumber)
                EXPECT_EQ(result, answered ? 0 : -1);
            else
                EXPECT_EQ(result, answered && c.answer == Answer::kCalled);
        }
        // A failed call leaves the caller's programme as it was; an empty reply is read into it.
        FCVirtualProgramData program;
        program.SetTitle("kept");
        EXPECT_FALSE(g_vc.GetProgram(Id(), program));
        EXPECT_EQ(program.GetTitle(), answered ? "" : "kept");
    }
    EXPECT_EQ(g_vc.LaunchTVLumeHomeScreen(), -1);
    EXPECT_TRUE(FakeDlog::Contains("FCVirtualChannels_Proxy.cpp: RemoteCallWithStringArguments("));
    EXPECT_TRUE(
        FakeDlog::Contains("[FCVirtualChannels_Proxy::LaunchTVLumeHomeScreen] fail to communicate using d-bus"));
}

struct TextCase {
    const char *method;
    bool sendsCallerText;  // else the empty text
    std::function<int(const std::string &in, std::string &out)> run;
};

// String forms hand the caller's text over unchanged and give back the reply text; argumentless
// forms send the empty text. Both answer the reply's "ret".
TEST_F(VirtualWireTest, StringAndArgumentlessFormsPassTextThroughBothWays)
{
    using I = const std::string &;
    using O = std::string &;
    const std::vector<TextCase> cases = {
        {"GetProgramList", true, [](I i, O o) { return g_vc.GetProgramList(i, o); }},
        {"GetProgram", true, [](I i, O o) { return g_vc.GetProgram(i, o); }},
        {"GetPresentProgram", true, [](I i, O o) { return g_vc.GetPresentProgram(i, o); }},
        {"GetChannelLogo", true, [](I i, O o) { return g_vc.GetChannelLogo(i, o); }},
        {"GetProgramThumbnail", true, [](I i, O o) { return g_vc.GetProgramThumbnail(i, o); }},
        {"GetProgramBackground", true, [](I i, O o) { return g_vc.GetProgramBackground(i, o); }},
        {"GetServiceIdFromOnTVProviderAndService", true,
         [](I i, O o) { return g_vc.GetServiceIdFromOnTVProviderAndService(i, o); }},
        {"SetDeepLink", true,
         [](I i, O) {
             std::string link = i;
             return g_vc.SetDeepLink(link);
         }},
        {"TVLumeProgramInfoIsAvailable", false, [](I, O o) { return g_vc.TVLumeProgramInfoIsAvailable(o); }},
        {"RestartTvlumeInfo", false, [](I, O o) { return g_vc.RestartTvlumeInfo(o); }},
        {"GetTvlumePreviewData", false, [](I, O o) { return g_vc.GetTvlumePreviewData(o); }},
        {"TVLumeProgramInfoIsAvailable", false, [](I, O) { return g_vc.TVLumeProgramInfoIsAvailable(); }},
        {"RestartTvlumeInfo", false, [](I, O) { return g_vc.RestartTvlumeInfo(); }},
        {"RecoverDeletedTvlumeServices", false, [](I, O) { return g_vc.RecoverDeletedTvlumeServices(); }},
        {"Reset", false, [](I, O) { return g_vc.Reset(); }},
    };
    std::vector<TextCase> all = cases;
    for (const char *name :
         {"LaunchedTVLumeWebApp", "BlockOnChLeave", "EnterFullPage", "ExitFullPage", "BlockClear",
          "NotifyPepperPluginIsDown", "IsFirstEntryToTvlume", "IsInstantOn", "IsEnterFullPage",
          "CheckDoNotSendTuneSuccess", "UnMuteRatingLockByPinCode", "CheckRatingLockATSC", "ResetTemporalUnLockStatus",
          "ResetTemporalUnLockStatusWhenChannelChange", "CheckTVLumeRatingLock"}) {
        static const std::map<std::string, bool (FCTVLumeControl_Proxy::*)()> kOperations = {
            {"LaunchedTVLumeWebApp", &FCTVLumeControl_Proxy::LaunchedTVLumeWebApp},
            {"BlockOnChLeave", &FCTVLumeControl_Proxy::BlockOnChLeave},
            {"EnterFullPage", &FCTVLumeControl_Proxy::EnterFullPage},
            {"ExitFullPage", &FCTVLumeControl_Proxy::ExitFullPage},
            {"BlockClear", &FCTVLumeControl_Proxy::BlockClear},
            {"NotifyPepperPluginIsDown", &FCTVLumeControl_Proxy::NotifyPepperPluginIsDown},
            {"IsFirstEntryToTvlume", &FCTVLumeControl_Proxy::IsFirstEntryToTvlume},
            {"IsInstantOn", &FCTVLumeControl_Proxy::IsInstantOn},
            {"IsEnterFullPage", &FCTVLumeControl_Proxy::IsEnterFullPage},
            {"CheckDoNotSendTuneSuccess", &FCTVLumeControl_Proxy::CheckDoNotSendTuneSuccess},
            {"UnMuteRatingLockByPinCode", &FCTVLumeControl_Proxy::UnMuteRatingLockByPinCode},
            {"CheckRatingLockATSC", &FCTVLumeControl_Proxy::CheckRatingLockATSC},
            {"ResetTemporalUnLockStatus", &FCTVLumeControl_Proxy::ResetTemporalUnLockStatus},
            {"ResetTemporalUnLockStatusWhenChannelChange",
             &FCTVLumeControl_Proxy::ResetTemporalUnLockStatusWhenChannelChange},
            {"CheckTVLumeRatingLock", &FCTVLumeControl_Proxy::CheckTVLumeRatingLock},
        };
        auto operation = kOperations.at(name);
        all.push_back({name, false, [operation](I, O) { return (g_lume.*operation)(); }});
    }
    const std::string in = R"({"any":  "text as the caller wrote it"})";
    for (const auto &c : all) {
        for (bool ret : {true, false}) {
            SCOPED_TRACE(std::string(c.method) + (ret ? " ret true" : " ret false"));
            const std::string reply = ret ? R"({"ret":true,"x":1})" : R"({"ret":false,"x":1})";
            s_bus->ClearRecords();
            s_bus->SetScript(c.method, KelvoScriptReply(reply));
            std::string out = "previous";
            EXPECT_EQ(c.run(in, out), ret);
            EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{c.method, c.sendsCallerText ? in : ""}}));
            if (out != "previous") {
                EXPECT_EQ(out, reply);
            }
        }
        s_bus->SetScript(c.method, R"({"reply":"not json"})");
        std::string out;
        EXPECT_FALSE(c.run(in, out)) << c.method;
    }
}

// The image's string form answers the download id; the deep link comes back as plain text.
TEST_F(VirtualWireTest, ImageIdAndDeepLinkOfTheStringForms)
{
    std::string out;
    s_bus->SetScript("GetProgramImage", KelvoScriptReply(R"({"ret":false,"imageDownloadId":"31"})"));
    EXPECT_EQ(g_vc.GetProgramImage("{}", out), 31);
    EXPECT_EQ(out, R"({"ret":false,"imageDownloadId":"31"})");
    s_bus->SetScript("GetProgramImage", KelvoScriptReply("not json"));
    EXPECT_EQ(g_vc.GetProgramImage("{}", out), -1);
    s_bus->SetScript("GetProgramImage", R"({"error":"org.freedesktop.DBus.Error.Failed"})");
    EXPECT_EQ(g_vc.GetProgramImage("{}", out), -1);

    std::string link = "tvlume://channel/vc-2?from=guide";
    EXPECT_TRUE(g_vc.SetDeepLink(link));
    std::string back;
    EXPECT_TRUE(g_vc.GetDeepLink(back));
    EXPECT_EQ(back, link);
    EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{"GetProgramImage", "{}"},
                                                          {"GetProgramImage", "{}"},
                                                          {"GetProgramImage", "{}"},
                                                          {"SetDeepLink", link},
                                                          {"GetDeepLink", ""}}));
}

TEST_F(VirtualWireTest, StringGetProgramAsksWithIndicatorOnlyWhenTheRequestHoldsOne)
{
    std::string out;
    const std::string indicated = R"({"program_indicator":2,"program_id":{}})";
    const std::string plain = R"({"program_id":{}})";
    g_vc.GetProgram(indicated, out);
    g_vc.GetProgram(plain, out);
    g_vc.GetProgram("[\"program_indicator\"]", out);
    EXPECT_FALSE(g_vc.GetProgram("program_indicator", out));
    EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{"GetProgramWithIndicator", indicated},
                                                          {"GetProgram", plain},
                                                          {"GetProgram", "[\"program_indicator\"]"}}));
    EXPECT_TRUE(FakeDlog::Contains("[FCConnectedContent_Proxy::GetProgram] fail to parse json output data"));
}

// No usage statistic leaves the set without the user's agreement to the default disclaimer.
TEST_F(VirtualWireTest, StatisticsNeedTheDisclaimerAgreed)
{
    std::string e = "e", c = "c", d = "d";
    FakeVconf::SetInt(kDisclaimer, 0);
    EXPECT_FALSE(g_vc.SendLogKPI(FCVirtualChannelsAPI::KPI_TYPE_VIEW, e, c, d));
    EXPECT_TRUE(FakeDlog::Contains("defaultdisclaimeragree is false"));
    FakeVconf::Clear();
    EXPECT_FALSE(g_vc.SendLogKPI(FCVirtualChannelsAPI::KPI_TYPE_VIEW, e, c, d));
    EXPECT_TRUE(FakeDlog::Contains("db/menu/tarn_deck/homedatacontrol/defaultdisclaimeragree Fail"));
    EXPECT_TRUE(s_bus->Records().empty());
}

// Against a daemon that predates them, the unlock information falls back to the unlocked flag and
// the rating lock check to the ATSC one; a current daemon is asked once.
TEST_F(VirtualWireTest, OlderDaemonsAreAskedWhatTheyKnow)
{
    using Records = KelvoTestBus::RecordList;
    ASSERT_TRUE(g_lume.NotifyContentIsChanged(true, "16"));
    for (bool older : {false, true}) {
        SCOPED_TRACE(older ? "older daemon" : "current daemon");
        ASSERT_TRUE(s_bus->SetOlder(older));
        ASSERT_TRUE(g_lume.ResetTemporalUnLockStatus());
        s_bus->ClearRecords();
        EXPECT_TRUE(g_lume.CheckTVLumeRatingLock());
        EXPECT_TRUE(g_lume.SetUnlockedInfo(3));
        EXPECT_FALSE(g_lume.CheckTVLumeRatingLock());
        const Records current = {
            {"CheckTVLumeRatingLock", ""}, {"SetUnlockedInfo", R"({"ret":3})"}, {"CheckTVLumeRatingLock", ""}};
        const Records fallback = {{"CheckTVLumeRatingLock", ""},       {"CheckRatingLockATSC", ""},
                                  {"SetUnlockedInfo", R"({"ret":3})"}, {"SetUnlockedFlag", R"({"ret":true})"},
                                  {"CheckTVLumeRatingLock", ""},       {"CheckRatingLockATSC", ""}};
        EXPECT_EQ(s_bus->Records(), older ? fallback : current);
    }
    EXPECT_TRUE(FakeDlog::Contains("FCTVLumeControl_Proxy.cpp: RemoteCallWithStringArguments("));
    EXPECT_TRUE(FakeDlog::Contains("[FCTVLumeControl_Proxy::SetUnlockedInfo] fail to communicate using d-bus"));
}

// The simulator keeps what a Set... told it for the next Get....
TEST_F(VirtualWireTest, SwitchesKeepWhatWasSet)
{
    for (bool on : {false, true, false}) {
        EXPECT_TRUE(g_vc.SetMyTvlume(on));
        EXPECT_EQ(g_vc.GetMyTvlume(), on);
        EXPECT_TRUE(g_vc.SetHomeScreenFlag(!on));
        EXPECT_EQ(g_vc.GetHomeScreenFlag(), !on);
        EXPECT_TRUE(g_vc.SetTVLumeOnOff(on));
        EXPECT_EQ(g_vc.LaunchTVLumeHomeScreen(), on ? 1 : 0);
        EXPECT_EQ(g_vc.IsTVLumeLaunched(), on);
    }
    EDataServiceType type = DATA_SERVICE_TYPE_AOC, read = DATA_SERVICE_TYPE_NONE;
    EXPECT_TRUE(g_vc.SetDataServiceType(type));
    EXPECT_TRUE(g_vc.GetDataServiceType(read));
    EXPECT_EQ(read, DATA_SERVICE_TYPE_AOC);
    EXPECT_TRUE(g_lume.EnterFullPage());
    EXPECT_TRUE(g_lume.IsEnterFullPage());
    EXPECT_TRUE(g_lume.ExitFullPage());
    EXPECT_FALSE(g_lume.IsEnterFullPage());
}

}  // namespace
