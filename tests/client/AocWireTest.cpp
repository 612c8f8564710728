// The app-on-channel proxies against the daemon simulator on a private bus: what reaches the daemon,
// what the caller gets back with "ret" true, false or absent, what a failed call leaves, and a round
// trip through the simulator's state.
#include <ctime>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCAocAppInfo_Proxy.h"
#include "FCAocProgramInfo_Proxy.h"
#include "KelvoTestBus.h"

namespace {

using ProgramMap = std::map<unsigned int, FCAocProgramData>;

FCAocAppInfo_Proxy g_appInfo;
FCAocProgramInfo_Proxy g_programInfo;

std::string Text(const FCAocProgramData &p)
{
    return p.m_title + "@" + std::to_string(p.m_startTime);
}

std::string Text(const ProgramMap &programs)
{
    std::ostringstream out;
    for (const auto &entry : programs)
        out << (out.tellp() > 0 ? "," : "") << entry.first << ":" << entry.second.m_title;
    return out.str();
}

// Every operation starts from outputs the caller already holds, so that a row shows whether they
// were read, replaced or added to.
FCAocProgramData Held()
{
    FCAocProgramData p;
    p.m_title = "held";
    p.m_startTime = 1;
    return p;
}

ProgramMap HeldMap()
{
    return {{1, Held()}};
}

const FCAocProgramId kId(77, "e", 100, 60);

struct Case {
    const char *wireMethod;
    const char *argument;  // exactly as the daemon must receive it
    const char *outputs;   // what the operation hands back from kReply
    std::function<bool(std::string &outputs)> run;
};

// One reply carrying what any operation reads.
const char *const kReply = R"({"aocProgramData":[{"startTime":10,"title":"a"},{"startTime":20,"title":"b"}],)"
                           R"("title":"P","startTime":5,"programEventId":"pe"})";
const char *const kAppInfo = R"({"packageId": "com.a", "name":"App"})";

const std::vector<Case> &Cases()
{
    static const std::vector<Case> cases = {
        {"CreateAppInfo", kAppInfo, "", [](std::string &) { return g_appInfo.CreateAppInfo(kAppInfo); }},
        {"RemoveAppInfo", kAppInfo, "", [](std::string &) { return g_appInfo.RemoveAppInfo(kAppInfo); }},
        {"UpdateAppInfo", kAppInfo, "", [](std::string &) { return g_appInfo.UpdateAppInfo(kAppInfo); }},
        {"RemoveProgramInfo", R"({"packageId":"com.a"})", "",
         [](std::string &) { return g_programInfo.RemoveProgramInfo("com.a"); }},
        {"UpdateProgramInfo",
         R"({"TCServiceId":"77","aocProgramData":[{"channelId":"","channelName":"","contentUri":"",)"
         R"("detailDescription":"","duration":0,"extraData":"","isReadable":false,"packageId":"",)"
         R"("programEventId":"","providerFlag":"","relativeOffset":"0","shortDescription":"","startTime":100,)"
         R"("title":"x","tvsServiceId":"0"}],"packageId":"com.a"})",
         "",
         [](std::string &) {
             ProgramMap programs;
             programs[100].m_title = "x";
             return g_programInfo.UpdateProgramInfo("com.a", 77, programs);
         }},
        {"GetProgramInfoList", R"({"TCServiceId":"77","duration":3600,"start_time":1000})", "1:held,10:a,20:b",
         [](std::string &o) {
             ProgramMap programs = HeldMap();
             bool r = g_programInfo.GetProgramInfoList(77, 1000, 3600, programs);
             o = Text(programs);
             return r;
         }},
        {"GetPresentProgramInfo", R"({"TCServiceId":"18446744073709551615"})", "P@5",
         [](std::string &o) {
             FCAocProgramData p = Held();
             bool r = g_programInfo.GetPresentProgramInfo(18446744073709551615ULL, p);
             o = Text(p);
             return r;
         }},
        {"GetProgramInfo_Indicator",
         R"({"duration":60,"event_id":"e","program_indicator":1,"serviceId":"77","startTime":100})", "P@5",
         [](std::string &o) {
             FCAocProgramData p = Held();
             bool r = g_programInfo.GetProgramInfoByIndicator(PROGRAM_INDICATOR_NEXT, kId, p);
             o = Text(p);
             return r;
         }},
        {"GetProgramInfo", R"({"duration":60,"event_id":"e","serviceId":"77","startTime":100})", "P@5",
         [](std::string &o) {
             FCAocProgramData p = Held();
             bool r = g_programInfo.GetProgramInfo(kId, p);
             o = Text(p);
             return r;
         }},
        {"SetVODResumeInfo", R"({"TCServiceId":"77","itemID":"item-3","position":90})", "",
         [](std::string &) { return g_programInfo.SetVODResumeInfo(77, "item-3", 90); }},
    };
    return cases;
}

using AocWireTest = KelvoBusTest;

// The outputs reach the caller whenever the call went through; only "ret": true is success.
TEST_F(AocWireTest, EveryOperationSendsItsArgumentAndReadsTheReply)
{
    for (const char *ret : {"\"ret\":true,", "\"ret\":false,", ""}) {
        for (const auto &c : Cases()) {
            SCOPED_TRACE(std::string(c.wireMethod) + " " + ret);
            s_bus->ClearRecords();
            ASSERT_TRUE(s_bus->SetScript(c.wireMethod, KelvoScriptReply(std::string("{") + ret + (kReply + 1))));
            std::string outputs;
            EXPECT_EQ(c.run(outputs), std::string(ret) == "\"ret\":true,");
            EXPECT_EQ(outputs, c.outputs);
            EXPECT_EQ(s_bus->Records(), (KelvoTestBus::RecordList{{c.wireMethod, c.argument}}));
        }
    }
}

// A call that fails (an error reply, a reply that is no JSON, no daemon) is false and leaves what
// the caller held.
TEST_F(AocWireTest, AFailedCallLeavesTheOutputsUntouched)
{
    KelvoTestBus noDaemon("{}", false);
    for (const char *failure :
         {R"({"error":"org.freedesktop.DBus.Error.Failed"})", R"({"reply":"not json"})", "no daemon"}) {
        const bool absent = failure == std::string("no daemon");
        if (absent)
            noDaemon.UseForCalls();
        for (const auto &c : Cases()) {
            if (!absent)
                s_bus->SetScript(c.wireMethod, failure);
            std::string outputs;
            EXPECT_FALSE(c.run(outputs)) << c.wireMethod << " " << failure;
            const std::string held = c.outputs[0] == '\0' ? "" : c.outputs[0] == '1' ? "1:held" : "held@1";
            EXPECT_EQ(outputs, held) << c.wireMethod << " " << failure;
        }
    }
}

FCAocProgramData Programme(const std::string &event, unsigned int start, unsigned int duration)
{
    FCAocProgramData p;
    p.m_packageId = "com.rt";
    p.m_tvsServiceId = 4242;
    p.m_programEventId = event;
    p.m_title = event;
    p.m_startTime = start;
    p.m_duration = duration;
    return p;
}

// What a package publishes is what the guide reads back, by list, present and indicator, until
// the package removes it.
TEST_F(AocWireTest, PublishedGuideRoundTripsThroughTheDaemon)
{
    const unsigned int now = static_cast<unsigned int>(time(nullptr));
    ProgramMap published = {{now - 1800, Programme("before", now - 1800, 1200)},
                            {now - 600, Programme("now", now - 600, 1200)},
                            {now + 600, Programme("next", now + 600, 1200)}};
    ASSERT_TRUE(g_programInfo.UpdateProgramInfo("com.rt", 4242, published));

    ProgramMap guide;
    EXPECT_TRUE(g_programInfo.GetProgramInfoList(4242, now - 3600, 7200, guide));
    EXPECT_EQ(Text(guide), std::to_string(now - 1800) + ":before," + std::to_string(now - 600) + ":now," +
                               std::to_string(now + 600) + ":next");
    ProgramMap window;
    EXPECT_TRUE(g_programInfo.GetProgramInfoList(4242, now - 600, 1200, window));
    EXPECT_EQ(Text(window), std::to_string(now - 600) + ":now");
    ProgramMap otherService;
    EXPECT_FALSE(g_programInfo.GetProgramInfoList(4243, now - 3600, 7200, otherService));
    EXPECT_TRUE(otherService.empty());

    FCAocProgramData present;
    ASSERT_TRUE(g_programInfo.GetPresentProgramInfo(4242, present));
    EXPECT_EQ(present.m_programEventId, "now");
    EXPECT_EQ(present.m_tvsServiceId, 4242u);
    const FCAocProgramId id = present.GetProgramID();
    const std::map<EProgramIndicator, std::string> around = {
        {PROGRAM_INDICATOR_PRESENT, "now"}, {PROGRAM_INDICATOR_NEXT, "next"}, {PROGRAM_INDICATOR_PREVIOUS, "before"}};
    for (const auto &row : around) {
        FCAocProgramData p;
        EXPECT_TRUE(g_programInfo.GetProgramInfoByIndicator(row.first, id, p));
        EXPECT_EQ(p.m_title, row.second);
    }
    FCAocProgramData byId;
    EXPECT_TRUE(g_programInfo.GetProgramInfo(FCAocProgramId(0, "next", now + 600, 1200), byId));
    EXPECT_EQ(byId.m_startTime, now + 600);

    EXPECT_TRUE(g_programInfo.RemoveProgramInfo("com.rt"));
    ProgramMap after;
    EXPECT_FALSE(g_programInfo.GetProgramInfoList(4242, now - 3600, 7200, after));
    EXPECT_TRUE(after.empty());
    FCAocProgramData none;
    EXPECT_FALSE(g_programInfo.GetPresentProgramInfo(4242, none));
    EXPECT_FALSE(g_programInfo.RemoveProgramInfo("com.rt"));
}

TEST_F(AocWireTest, ApplicationInformationAndResumePositionsAreKept)
{
    const std::string info = R"({"packageId":"com.z","name":"Z"})";
    EXPECT_TRUE(g_appInfo.CreateAppInfo(info));
    EXPECT_FALSE(g_appInfo.CreateAppInfo(info));
    EXPECT_TRUE(g_appInfo.UpdateAppInfo(info));
    EXPECT_TRUE(g_appInfo.RemoveAppInfo(info));
    EXPECT_FALSE(g_appInfo.UpdateAppInfo(info));
    EXPECT_FALSE(g_appInfo.CreateAppInfo("not json"));
    EXPECT_TRUE(g_programInfo.SetVODResumeInfo(4242, "item-1", 95));
    EXPECT_FALSE(g_programInfo.SetVODResumeInfo(4242, "", 95));
}

}  // namespace
