// The event proxy asked for by several threads at once, each request the process's first: one
// instance is made, registering one callback, and every thread gets it. A program of its own, so
// that no earlier test has made the instance; under ThreadSanitizer it also shows that the first
// requests do not race.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FCEMSProxy.h"
#include "FakeCall.h"
#include "RunTogether.h"

namespace {

constexpr int kThreads = 8;

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

int CountOf(const std::string &function)
{
    int count = 0;
    for (const auto &call : FakeEvents::Calls())
        count += call.function == function ? 1 : 0;
    return count;
}

TEST(FCEMSProxyThreads, FirstRequestsFromManyThreadsMakeOneInstance)
{
    std::vector<FCEMSProxy *> got(kThreads, nullptr);
    // Half ask as CS clients, half as plugins: whichever comes first makes the instance.
    KelvoRunTogether(kThreads, [&got](int t) {
        got[t] = t % 2 ? FCEMSProxy::GetInstanceForCS(nullptr, &CSCallback)
                       : FCEMSProxy::GetInstanceForPlugin(nullptr, &PluginCallback);
    });

    ASSERT_NE(got[0], nullptr);
    for (int t = 1; t < kThreads; ++t)
        EXPECT_EQ(got[t], got[0]) << "thread " << t;
    EXPECT_EQ(CountOf("RegisterKelvoCallBack") + CountOf("RegisterKelvoCallBack_Plugin"), 1);

    // A CPP client coming later gets the same instance and registers its callback on it.
    EXPECT_EQ(FCEMSProxy::GetInstance(nullptr, &CPPCallback), got[0]);
    EXPECT_EQ(CountOf("RegisterKelvoCallBack_CPP"), 1);
}

}  // namespace
