// FCEMSProxy's table of platform calls per kind of client, against the fake event functions: which
// function each operation calls (or that it calls none), with which event and user data, and that
// the platform's status comes back unchanged.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCEMSProxy.h"
#include "FakeCall.h"

namespace {

int CPPCallback(int, FSEventData)
{
    return 0;
}
int CSCallback(int, int, int, int)
{
    return 0;
}
int PluginCallback(int, FSEventData, void *)
{
    return 0;
}

template <typename Callback>
const void *Address(Callback callback)
{
    return reinterpret_cast<const void *>(callback);
}

enum Kind { kCPP, kCS, kPlugin };

std::unique_ptr<FCEMSProxy> Make(Kind kind)
{
    switch (kind) {
    case kCPP:
        return std::make_unique<FCEMSProxy>(nullptr, &CPPCallback);
    case kCS:
        return std::make_unique<FCEMSProxy>(nullptr, &CSCallback);
    case kPlugin:
        break;
    }
    return std::make_unique<FCEMSProxy>(nullptr, &PluginCallback);
}

// Every function answers a status of its own, so that a status coming back names its function.
const struct {
    const char *function;
    int status;
} kStatuses[] = {
    {"SubscribeKelvoEventForCPP", 11},   {"SubscribeKelvoEvent", 12},   {"SubscribeKelvoEventForPlugin", 13},
    {"UnSubsribeKelvoEventForCPP", -21}, {"UnSubsribeKelvoEvent", -22}, {"UnSubsribeKelvoEventForPlugin", -23},
};

class FCEMSProxyTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        FakeEvents::Reset();
        for (const auto &entry : kStatuses)
            FakeEvents::SetStatus(entry.function, entry.status);
    }
};

TEST_F(FCEMSProxyTest, EachConstructorRegistersItsCallbackWithItsFamily)
{
    const struct {
        Kind kind;
        const char *function;
        const void *callback;
    } cases[] = {
        {kCPP, "RegisterKelvoCallBack_CPP", Address(&CPPCallback)},
        {kCS, "RegisterKelvoCallBack", Address(&CSCallback)},
        {kPlugin, "RegisterKelvoCallBack_Plugin", Address(&PluginCallback)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.function);
        FakeEvents::Reset();
        auto proxy = Make(c.kind);
        auto calls = FakeEvents::Calls();
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_EQ(calls[0].function, c.function);
        EXPECT_EQ(calls[0].pointer, c.callback);
    }
}

TEST_F(FCEMSProxyTest, OperationsCallTheirKindsFamilyAndPassTheStatusThrough)
{
    const int kEvent = 4097;
    int userData = 0;
    const std::function<int(FCEMSProxy &)> subscribe = [&](FCEMSProxy &p) { return p.SubscribeSignal(kEvent); };
    const std::function<int(FCEMSProxy &)> unsubscribe = [&](FCEMSProxy &p) { return p.UnsubscribeSignal(kEvent); };
    const std::function<int(FCEMSProxy &)> subscribePlugin = [&](FCEMSProxy &p) {
        return p.SubscribeSignalForPlugin(kEvent, &userData);
    };
    const std::function<int(FCEMSProxy &)> unsubscribePlugin = [&](FCEMSProxy &p) {
        return p.UnsubscribeSignalForPlugin(kEvent);
    };
    // function "": the operation calls nothing and returns status on its own.
    const struct {
        const char *name;
        Kind kind;
        const std::function<int(FCEMSProxy &)> &operation;
        const char *function;
        int status;
        const void *userData;
    } cases[] = {
        {"CPP subscribe", kCPP, subscribe, "SubscribeKelvoEventForCPP", 11, nullptr},
        {"CPP unsubscribe", kCPP, unsubscribe, "UnSubsribeKelvoEventForCPP", -21, nullptr},
        {"CPP subscribe plugin", kCPP, subscribePlugin, "SubscribeKelvoEventForPlugin", 13, &userData},
        {"CPP unsubscribe plugin", kCPP, unsubscribePlugin, "UnSubsribeKelvoEventForPlugin", -23, nullptr},
        {"CS subscribe", kCS, subscribe, "SubscribeKelvoEvent", 12, nullptr},
        {"CS unsubscribe", kCS, unsubscribe, "UnSubsribeKelvoEvent", -22, nullptr},
        {"CS subscribe plugin", kCS, subscribePlugin, "SubscribeKelvoEventForPlugin", 13, &userData},
        {"CS unsubscribe plugin", kCS, unsubscribePlugin, "UnSubsribeKelvoEventForPlugin", -23, nullptr},
        {"plugin subscribe", kPlugin, subscribe, "", -1, nullptr},
        {"plugin unsubscribe", kPlugin, unsubscribe, "", 0, nullptr},
        {"plugin subscribe plugin", kPlugin, subscribePlugin, "SubscribeKelvoEventForPlugin", 13, &userData},
        {"plugin unsubscribe plugin", kPlugin, unsubscribePlugin, "UnSubsribeKelvoEventForPlugin", -23, nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        auto proxy = Make(c.kind);
        size_t before = FakeEvents::Calls().size();
        EXPECT_EQ(c.operation(*proxy), c.status);
        auto calls = FakeEvents::Calls();
        std::vector<FakeEvents::EventCall> made(calls.begin() + static_cast<std::ptrdiff_t>(before), calls.end());
        if (std::string(c.function).empty()) {
            EXPECT_TRUE(made.empty());
            continue;
        }
        ASSERT_EQ(made.size(), 1u);
        EXPECT_EQ(made[0].function, c.function);
        EXPECT_EQ(made[0].event, kEvent);
        EXPECT_EQ(made[0].pointer, c.userData);
    }
}

}  // namespace
