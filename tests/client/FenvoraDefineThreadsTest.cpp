// FCAPI asked for every service by several threads at once, each request the process's first: all
// must get the one object of the service. A program of its own, so that no earlier test has made
// the objects already; under ThreadSanitizer it also shows that the first requests do not race.
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "FenvoraDefine.h"
#include "RunTogether.h"

namespace {

constexpr int kThreads = 8;

const struct {
    const char *name;
    const void *(*get)();
} kServices[] = {
    {"factory", [] { return static_cast<const void *>(FCFenvoraObjectFactory::GetInstance()); }},
    {"MBR network channel", [] { return static_cast<const void *>(FCAPI::GetMBRNetworkChannelAPI()); }},
    {"RF network channel", [] { return static_cast<const void *>(FCAPI::GetRFNetworkChannelAPI()); }},
    {"remote content", [] { return static_cast<const void *>(FCAPI::GetRemoteContentAPI()); }},
    {"remote content MSO", [] { return static_cast<const void *>(FCAPI::GetRemoteContentMSOAPI()); }},
    {"TVLume", [] { return static_cast<const void *>(FCAPI::GetTVLumeAPI()); }},
    {"match finder", [] { return static_cast<const void *>(FCAPI::GetMatchFinder()); }},
    {"virtual channels", [] { return static_cast<const void *>(FCAPI::GetVirtualChannelsAPI()); }},
    {"thumbnail manager", [] { return static_cast<const void *>(FCAPI::GetThumbnailManagerAPI()); }},
    {"ACR support", [] { return static_cast<const void *>(FCAPI::GetACRSupportAPI()); }},
    {"app-on-channel app info", [] { return static_cast<const void *>(FCAPI::GetAocAppInfoAPI()); }},
    {"app-on-channel programme info", [] { return static_cast<const void *>(FCAPI::GetAocProgramInfoAPI()); }},
};
constexpr std::size_t kServiceCount = sizeof(kServices) / sizeof(kServices[0]);

TEST(FCAPIThreads, FirstRequestsFromManyThreadsGetOneObjectPerService)
{
    std::vector<std::vector<const void *>> got(kThreads, std::vector<const void *>(kServiceCount));
    // All threads ask in the same order, so that the first requests of each service meet.
    KelvoRunTogether(kThreads, [&got](int t) {
        for (std::size_t s = 0; s < kServiceCount; ++s)
            got[t][s] = kServices[s].get();
    });

    for (std::size_t s = 0; s < kServiceCount; ++s) {
        SCOPED_TRACE(kServices[s].name);
        EXPECT_NE(got[0][s], nullptr);
        for (int t = 1; t < kThreads; ++t)
            EXPECT_EQ(got[t][s], got[0][s]) << "thread " << t;
        EXPECT_EQ(kServices[s].get(), got[0][s]) << "a later request";
    }
}

}  // namespace
