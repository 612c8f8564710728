// FCAPI and the object factory, with the daemon's call library replaced by FakeCall.
#include <memory>
#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

#include "FCACRSupport_Proxy.h"
#include "FCAocAppInfo_Proxy.h"
#include "FCAocProgramInfo_Proxy.h"
#include "FCRemoteContentOnTV_Proxy.h"
#include "FCTVLumeControl_Proxy.h"
#include "FCThumbnailManager_Proxy.h"
#include "FCVirtualChannels_Proxy.h"
#include "FakeCall.h"
#include "FakeDlog.h"
#include "FenvoraDefine.h"
#include "MBRNetworkChannelManager_Proxy.h"
#include "RFNetworkChannelManager_Proxy.h"

namespace {

bool Logged(const std::string &message)
{
    return FakeDlog::Contains("> " + message);
}

// The state is the process's; the steps run in order in one test.
TEST(FCAPI, InitializeAndFinalizeGuardEachOther)
{
    FakeCall::Reset();
    FakeDlog::Clear();
    EXPECT_FALSE(FCAPI::Finalize());
    EXPECT_TRUE(Logged("DBG_LV[0][FCAPI::Finalize] already finalized\n"));

    EXPECT_TRUE(FCAPI::Initialize());
    EXPECT_TRUE(FCAPI::is_initailzed);
    FIMatchFinder *finder = FCAPI::GetMatchFinder();

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

// The accessor of FCAPI keeps one object of the proxy; the factory makes a new one at each request.
template <typename Proxy, typename Interface>
void CheckService(Interface *(*accessor)(), Interface *(FCFenvoraObjectFactory::*make)())
{
    SCOPED_TRACE(typeid(Proxy).name());
    Interface *kept = accessor();
    EXPECT_NE(dynamic_cast<Proxy *>(kept), nullptr);
    EXPECT_EQ(accessor(), kept);
    FCFenvoraObjectFactory *factory = FCFenvoraObjectFactory::GetInstance();
    std::unique_ptr<Interface> a((factory->*make)()), b((factory->*make)());
    EXPECT_NE(dynamic_cast<Proxy *>(a.get()), nullptr);
    EXPECT_NE(a, b);
    EXPECT_NE(a.get(), kept);
}

TEST(FCFenvoraObjectFactory, AccessorsKeepOneObjectAndTheFactoryMakesANewOneEachTime)
{
    using F = FCFenvoraObjectFactory;
    ASSERT_NE(F::GetInstance(), nullptr);
    EXPECT_EQ(F::GetInstance(), F::GetInstance());
    EXPECT_NE(dynamic_cast<FCObjectFactoryKR *>(F::GetInstance()), nullptr);
    CheckService<FCMBRNetworkChannelManager_Proxy>(&FCAPI::GetMBRNetworkChannelAPI, &F::GetMBRNetworkChannelManager);
    CheckService<FCRFNetworkChannelManager_Proxy>(&FCAPI::GetRFNetworkChannelAPI, &F::GetRFNetworkChannelManager);
    CheckService<FCRemoteContentOnTV_Proxy>(&FCAPI::GetRemoteContentAPI, &F::GetRemoteContentAPI);
    CheckService<FCRemoteContentOnTV_MSO_Proxy>(&FCAPI::GetRemoteContentMSOAPI, &F::GetRemoteContentMSOAPI);
    CheckService<FCTVLumeControl_Proxy>(&FCAPI::GetTVLumeAPI, &F::GetTVLumeAPI);
    CheckService<FCMatchFinder_Proxy>(&FCAPI::GetMatchFinder, &F::GetMatchFinder);
    CheckService<FCVirtualChannels_Proxy>(&FCAPI::GetVirtualChannelsAPI, &F::GetVirtualChannelsAPI);
    CheckService<FCThumbnailManager_Proxy>(&FCAPI::GetThumbnailManagerAPI, &F::GetThumbnailManagerAPI);
    CheckService<FCACRSupport_Proxy>(&FCAPI::GetACRSupportAPI, &F::GetACRSupportAPI);
    CheckService<FCAocAppInfo_Proxy>(&FCAPI::GetAocAppInfoAPI, &F::GetAocAppInfoAPI);
    CheckService<FCAocProgramInfo_Proxy>(&FCAPI::GetAocProgramInfoAPI, &F::GetAocProgramInfoAPI);
}

// Reset is true only on a reply with "ret": true; a failed call and a reply that is no JSON are logged.
TEST(FCAPI, ResetAsksTheDaemonDirectly)
{
    const struct {
        FakeCall::Answer answer;
        bool result;
        const char *logged;
    } cases[] = {
        {FakeCall::Answer::Null(), false, "called"},
        {FakeCall::Answer::Failed(), false, "fail to communicate using d-bus"},
        {FakeCall::Answer::Text("{oops"), false, "fail to parse json data"},
        {FakeCall::Answer::Text(R"({"ret":false})"), false, "called"},
        {FakeCall::Answer::Text("{}"), false, "called"},
        {FakeCall::Answer::Text("[true]"), false, "called"},
        {FakeCall::Answer::Text(R"({"ret":true})"), true, "called"},
    };
    for (const auto &c : cases) {
        FakeCall::Reset();
        FakeDlog::Clear();
        FakeCall::Script("Reset", c.answer);
        EXPECT_EQ(FCAPI::Reset(), c.result) << c.logged;
        EXPECT_TRUE(Logged(std::string("DBG_LV[0][FCAPI::Reset] ") + c.logged + "\n"));
        ASSERT_EQ(FakeCall::Calls().size(), 1u);
        EXPECT_EQ(FakeCall::Calls()[0].argument, "");
        EXPECT_EQ(FakeCall::Outstanding(), 0);
    }
}

}  // namespace
