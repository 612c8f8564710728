// Many threads of one process calling the daemon at once: every reply must reach its own caller.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "FCRemoteContentOnTV_Proxy.h"
#include "FakeDlog.h"
#include "KelvoTestBus.h"

namespace {

const int kThreads = 8;
const int kCallsPerThread = 10000;

std::string SourceId(int thread, int call) { return "t" + std::to_string(thread) + "-" + std::to_string(call); }

// Distinct per thread and call, and above 2^32 so that the full 64 bits must survive.
unsigned long long ServiceId(int thread, int call) {
    return (static_cast<unsigned long long>(thread + 1) << 32) + static_cast<unsigned long long>(call);
}

TEST(CallLoad, EveryReplyReachesItsOwnCaller) {
    Json::Value fixture;
    for (int t = 0; t < kThreads; ++t) {
        for (int i = 0; i < kCallsPerThread; ++i) fixture["sourceToService"][SourceId(t, i)] = std::to_string(ServiceId(t, i));
    }
    KelvoTestBus bus(Json::writeString(Json::StreamWriterBuilder(), fixture));
    ASSERT_TRUE(bus.Ready());
    bus.UseForCalls();

    std::atomic<int> failed{0}, crossed{0};
    auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &failed, &crossed] {
            FCMatchFinder_Proxy finder;
            for (int i = 0; i < kCallsPerThread; ++i) {
                unsigned long long service = 0;
                if (!finder.GetTCServiceIdByProgramSourceID(REMOTE_CONTENT_ACTIVITY_MAIN, SourceId(t, i), service)) {
                    ++failed;
                } else if (service != ServiceId(t, i)) {
                    ++crossed;
                }
                if (i % 1000 == 999) FakeDlog::Clear();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    printf("%d calls from %d threads in %.2f s (%.0f calls/s)\n", kThreads * kCallsPerThread, kThreads, seconds,
           kThreads * kCallsPerThread / seconds);

    EXPECT_EQ(failed.load(), 0);
    EXPECT_EQ(crossed.load(), 0);
    EXPECT_EQ(bus.RecordFileLines().size(), static_cast<size_t>(kThreads * kCallsPerThread));
}

}  // namespace
