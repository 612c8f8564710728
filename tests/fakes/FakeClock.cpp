#include "FakeClock.h"

#include <atomic>

#include "FCTimeWrapper.h"

namespace {
std::atomic<unsigned long> g_now{0};
}

unsigned long FCTimeWrapper::EpochTime()
{
    return g_now.load();
}

namespace FakeClock {
void SetNow(unsigned long utcSeconds)
{
    g_now.store(utcSeconds);
}
}  // namespace FakeClock
