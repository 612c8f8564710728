// Call and DisposeCallResult over a real private bus with the daemon simulator.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "KelvoTestBus.h"
#include "kelvo-dbus-proxy.h"

namespace {

struct CallOutcome {
    bool reached = false;  // a result came back at all
    bool success = false;
    std::string text;
};

CallOutcome CallOnce(const char* method, const char* argument) {
    CallOutcome outcome;
    KelvoCallResult* result = Call(method, argument);
    if (!result) return outcome;
    outcome.reached = true;
    outcome.success = result->success;
    outcome.text.assign(result->data, result->length);
    DisposeCallResult(result);
    return outcome;
}

const char* const kFixture =
    R"({"programs": {"S2": [], "S1": []}, "sourceToService": {"S1": "18446744073709551615"},
        "version": "7.1 \u00e9t\u00e9"})";

class CallTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_bus = new KelvoTestBus(kFixture); }
    static void TearDownTestSuite() { delete s_bus; }
    void SetUp() override {
        ASSERT_TRUE(s_bus->Ready());
        s_bus->UseForCalls();
        s_bus->ClearScript();
        s_bus->ClearRecords();
        unsetenv("KELVO_CALL_TIMEOUT_MS");
    }
    static KelvoTestBus* s_bus;
};
KelvoTestBus* CallTest::s_bus = nullptr;

TEST_F(CallTest, ReplyTextAndLengthArriveWhole) {
    CallOutcome out = CallOnce("GetFenvoraVersion", "{}");
    EXPECT_TRUE(out.success);
    EXPECT_EQ(out.text, "{\"ret\":true,\"str\":\"7.1 \xC3\xA9t\xC3\xA9\"}");
}

TEST_F(CallTest, ArgumentArrivesAsSentAndNullArrivesEmpty) {
    CallOnce("GetTCServiceIdByProgramSourceID", "{\"activityID\":0,\"program source id\":\"S1\"}");
    CallOnce("NotifyDVRContentUpdate", nullptr);
    auto records = s_bus->Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].first, "GetTCServiceIdByProgramSourceID");
    EXPECT_EQ(records[0].second, "{\"activityID\":0,\"program source id\":\"S1\"}");
    EXPECT_EQ(records[1].first, "NotifyDVRContentUpdate");
    EXPECT_EQ(records[1].second, "");
    // The --record file holds the same requests, one JSON line each.
    auto lines = s_bus->RecordFileLines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 1], "{\"method\":\"NotifyDVRContentUpdate\",\"argument\":\"\"}");
}

// Every way a call can fail after the bus was reached gives a result with the flag clear.
TEST_F(CallTest, FailedCallsClearTheSuccessFlag) {
    s_bus->SetScript("GetGenreList", R"({"error": "org.freedesktop.DBus.Error.Failed"})");
    s_bus->SetScript("GetChannelCRC", R"({"delay_ms": 600})");
    setenv("KELVO_CALL_TIMEOUT_MS", "200", 1);
    const struct {
        const char* what;
        const char* method;
    } cases[] = {
        {"error reply", "GetGenreList"},
        {"unknown method", "NoSuchMethod"},
        {"time-out", "GetChannelCRC"},
        {"member name D-Bus refuses", "Not-A-Member"},
        {"no method", nullptr},
    };
    for (const auto& c : cases) {
        CallOutcome out = CallOnce(c.method, "{}");
        EXPECT_TRUE(out.reached) << c.what;
        EXPECT_FALSE(out.success) << c.what;
    }
    // The late reply of the timed-out call arrives while the next call on the same connection
    // waits; that call must get its own reply.
    unsetenv("KELVO_CALL_TIMEOUT_MS");
    s_bus->SetScript("GetFenvoraVersion", R"({"delay_ms": 900})");
    EXPECT_EQ(CallOnce("GetFenvoraVersion", "{}").text, "{\"ret\":true,\"str\":\"7.1 \xC3\xA9t\xC3\xA9\"}");
}

TEST_F(CallTest, ScriptedReplyIsPassedVerbatim) {
    s_bus->SetScript("GetCertRule", R"({"reply": "not json at all"})");
    CallOutcome out = CallOnce("GetCertRule", "{}");
    EXPECT_TRUE(out.success);
    EXPECT_EQ(out.text, "not json at all");
}

TEST_F(CallTest, BusctlReachesTheSimulator) {
    std::string command = "busctl --address='" + s_bus->Address() +
                          "' call com.halvorn.tv.KelvoDaemon /com/halvorn/tv/KelvoDaemon "
                          "com.halvorn.tv.KelvoDaemon.Provider GetFullProgramSourceIdList s '{\"activityID\":0}' 2>&1";
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    ASSERT_TRUE(pipe);
    std::string output;
    char buffer[256];
    while (fgets(buffer, sizeof buffer, pipe.get())) output += buffer;
    EXPECT_EQ(output, "s \"{\\\"ret\\\":true,\\\"sourceIDArray\\\":[\\\"S1\\\",\\\"S2\\\"]}\"\n");
}

TEST(CallWithoutDaemon, BusWithoutDaemonFailsAndNoBusGivesNull) {
    KelvoTestBus bus("{}", false);
    ASSERT_TRUE(bus.Ready());
    bus.UseForCalls();
    CallOutcome out = CallOnce("GetFullProgramSourceIdList", "{}");
    EXPECT_TRUE(out.reached);
    EXPECT_FALSE(out.success);

    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + bus.Folder() + "/no-such-bus").c_str(), 1);
    EXPECT_FALSE(CallOnce("GetFullProgramSourceIdList", "{}").reached);
    DisposeCallResult(nullptr);
}

TEST(CallWithoutDaemon, SimulatorEndsWhenTheBusGoesAway) {
    KelvoTestBus bus;
    ASSERT_TRUE(bus.Ready());
    EXPECT_TRUE(bus.DaemonExitsWithTheBus(5000));
}

// A thread's connection follows DBUS_SESSION_BUS_ADDRESS: a call after the bus changed reaches
// the new bus, not the old one through a cached connection.
TEST(CallWithoutDaemon, FollowsTheBusAddress) {
    KelvoTestBus first(R"({"version": "first"})");
    KelvoTestBus second(R"({"version": "second"})");
    ASSERT_TRUE(first.Ready() && second.Ready());
    first.UseForCalls();
    EXPECT_EQ(CallOnce("GetFenvoraVersion", "{}").text, "{\"ret\":true,\"str\":\"first\"}");
    second.UseForCalls();
    EXPECT_EQ(CallOnce("GetFenvoraVersion", "{}").text, "{\"ret\":true,\"str\":\"second\"}");
}

}  // namespace
