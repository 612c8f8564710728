// FCAPI and the object factory, with the daemon's call library replaced by FakeCall.
#include <functional>
#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

#include "FCACRSupport_Proxy.h"
#include "FCAocAppInfo_Proxy.h"
#include "FCAocProgramInfo_Proxy.h"
#include "FCTVLumeControl_Proxy.h"
#include "FCThumbnailManager_Proxy.h"
#include "FCVirtualChannels_Proxy.h"
#include "FakeCall.h"
#include "FakeDlog.h"
#include "FenvoraDefine.h"
#include "MBRNetworkChannelManager_Proxy.h"
#include "RFNetworkChannelManager_Proxy.h"

namespace {

bool Logged(const std::string& message) {
    for (const auto& m : FakeDlog::Messages("kelvo-dbus-proxy")) {
        if (m == message) return true;
    }
    return false;
}

// One row per service: the accessor of FCAPI, the factory operation, the class it must make.
struct Service {
    const char* name;
    std::function<void*()> accessor;
    std::function<void*(FCFenvoraObjectFactory&)> make;
    std::function<bool(void*)> isExpectedClass;
    std::function<void(void*)> destroy;
};

template <typename Interface, typename Proxy>
Service Row(const char* name, Interface* (*accessor)(), Interface* (FCFenvoraObjectFactory::*make)()) {
    return {name, [accessor] { return static_cast<void*>(accessor()); },
            [make](FCFenvoraObjectFactory& f) { return static_cast<void*>((f.*make)()); },
            [](void* p) { return dynamic_cast<Proxy*>(static_cast<Interface*>(p)) != nullptr; },
            [](void* p) { delete static_cast<Interface*>(p); }};
}

const std::vector<Service>& Services() {
    using F = FCFenvoraObjectFactory;
    static const std::vector<Service> rows = {
        Row<FCMBRNetworkChannelAPI, FCMBRNetworkChannelManager_Proxy>("MBR", &FCAPI::GetMBRNetworkChannelAPI, &F::GetMBRNetworkChannelManager),
        Row<FCRFNetworkChannelAPI, FCRFNetworkChannelManager_Proxy>("RF", &FCAPI::GetRFNetworkChannelAPI, &F::GetRFNetworkChannelManager),
        Row<FCRemoteContentAPI, FCRemoteContentOnTV_Proxy>("content", &FCAPI::GetRemoteContentAPI, &F::GetRemoteContentAPI),
        Row<FCRemoteContent_MSOAPI, FCRemoteContentOnTV_MSO_Proxy>("MSO", &FCAPI::GetRemoteContentMSOAPI, &F::GetRemoteContentMSOAPI),
        Row<FCTVLumeAPI, FCTVLumeControl_Proxy>("TVLume", &FCAPI::GetTVLumeAPI, &F::GetTVLumeAPI),
        Row<FIMatchFinder, FCMatchFinder_Proxy>("match finder", &FCAPI::GetMatchFinder, &F::GetMatchFinder),
        Row<FCVirtualChannelsAPI, FCVirtualChannels_Proxy>("virtual", &FCAPI::GetVirtualChannelsAPI, &F::GetVirtualChannelsAPI),
        Row<FCThumbnailManagerAPI, FCThumbnailManager_Proxy>("thumbnail", &FCAPI::GetThumbnailManagerAPI, &F::GetThumbnailManagerAPI),
        Row<FIACRSupportAPI, FCACRSupport_Proxy>("ACR", &FCAPI::GetACRSupportAPI, &F::GetACRSupportAPI),
        Row<FCAocAppInfoAPI, FCAocAppInfo_Proxy>("AOC app", &FCAPI::GetAocAppInfoAPI, &F::GetAocAppInfoAPI),
        Row<FCAocProgramInfoAPI, FCAocProgramInfo_Proxy>("AOC programme", &FCAPI::GetAocProgramInfoAPI, &F::GetAocProgramInfoAPI),
    };
    return rows;
}

// The state is the process's; the steps run in order in one test.
TEST(FCAPI, InitializeAndFinalizeGuardEachOther) {
    FakeCall::Reset();
    FakeDlog::Clear();
    EXPECT_FALSE(FCAPI::Finalize());
    EXPECT_TRUE(Logged("DBG_LV[0][FCAPI::Finalize] already finalized\n"));

    EXPECT_TRUE(FCAPI::Initialize());
    EXPECT_TRUE(FCAPI::is_initailzed);
    FIMatchFinder* finder = FCAPI::GetMatchFinder();
    EXPECT_NE(finder, nullptr);

    FakeDlog::Clear();
    EXPECT_FALSE(FCAPI::Initialize());
    EXPECT_TRUE(Logged("DBG_LV[0][FCAPI::Initialize] called\n"));
    EXPECT_TRUE(Logged("DBG_LV[0][FCAPI::Initialize] already initialized\n"));

    EXPECT_TRUE(FCAPI::Finalize());
    EXPECT_FALSE(FCAPI::is_initailzed);
    EXPECT_TRUE(FCAPI::Initialize());
    EXPECT_EQ(FCAPI::GetMatchFinder(), finder);  // kept through Finalize
    EXPECT_TRUE(FakeCall::Calls().empty());      // nothing of this talks to the daemon
}

TEST(FCAPI, EachAccessorKeepsOneObjectOfItsProxy) {
    for (const auto& s : Services()) {
        void* first = s.accessor();
        ASSERT_NE(first, nullptr) << s.name;
        EXPECT_EQ(s.accessor(), first) << s.name;
        EXPECT_TRUE(s.isExpectedClass(first)) << s.name;
    }
}

TEST(FCFenvoraObjectFactory, OneFactoryThatMakesANewProxyEachTime) {
    FCFenvoraObjectFactory* factory = FCFenvoraObjectFactory::GetInstance();
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(FCFenvoraObjectFactory::GetInstance(), factory);
    EXPECT_NE(dynamic_cast<FCObjectFactoryKR*>(factory), nullptr);
    for (const auto& s : Services()) {
        void* a = s.make(*factory);
        void* b = s.make(*factory);
        EXPECT_NE(a, b) << s.name;
        EXPECT_NE(a, s.accessor()) << s.name;
        EXPECT_TRUE(s.isExpectedClass(a)) << s.name;
        s.destroy(a);
        s.destroy(b);
    }
}

TEST(FCAPI, ResetAsksTheDaemonDirectly) {
    const struct {
        const char* what;
        FakeCall::Answer answer;
        bool result;
        const char* logged;  // expected line, or null
    } cases[] = {
        {"no bus", FakeCall::Answer::Null(), false, nullptr},
        {"failed call", FakeCall::Answer::Failed(), false, "DBG_LV[0][FCAPI::Reset] fail to communicate using d-bus\n"},
        {"not JSON", FakeCall::Answer::Text("{oops"), false, "DBG_LV[0][FCAPI::Reset] fail to parse json data\n"},
        {"ret false", FakeCall::Answer::Text(R"({"ret":false})"), false, nullptr},
        {"no ret", FakeCall::Answer::Text("{}"), false, nullptr},
        {"not an object", FakeCall::Answer::Text("[true]"), false, nullptr},
        {"ret true", FakeCall::Answer::Text(R"({"ret":true})"), true, nullptr},
    };
    for (const auto& c : cases) {
        FakeCall::Reset();
        FakeDlog::Clear();
        FakeCall::Script("Reset", c.answer);
        EXPECT_EQ(FCAPI::Reset(), c.result) << c.what;
        EXPECT_TRUE(Logged("DBG_LV[0][FCAPI::Reset] called\n")) << c.what;
        if (c.logged) {
            EXPECT_TRUE(Logged(c.logged)) << c.what;
        }
        ASSERT_EQ(FakeCall::Calls().size(), 1u) << c.what;
        EXPECT_EQ(FakeCall::Calls()[0].argument, "") << c.what;
        EXPECT_EQ(FakeCall::Outstanding(), 0) << c.what;
    }
}

}  // namespace
