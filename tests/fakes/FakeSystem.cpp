#include "FakeSystem.h"

#include <errno.h>
#include <sys/time.h>
#include <time.h>

#include <cstdlib>
#include <mutex>

namespace {
std::mutex g_mutex;
std::vector<std::string> g_commands;
int g_status = 0;
std::function<int(const std::string &)> g_handler;
enum class ClockMode { Real, Fixed, Failing } g_clockMode = ClockMode::Real;
struct timeval g_now = {0, 0};
std::vector<ClockSet> g_clockSets;
}  // namespace

extern "C" int system(const char *command)
{
    std::function<int(const std::string &)> handler;
    int status = 0;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        if (command == nullptr)
            return 1;  // "a shell is available"
        g_commands.push_back(command);
        handler = g_handler;
        status = g_status;
    }
    return handler ? handler(command) : status;
}

extern "C" int gettimeofday(struct timeval *__restrict tv, void *__restrict tz) noexcept
{
    (void)tz;
    std::lock_guard<std::mutex> lock(g_mutex);
    switch (g_clockMode) {
    case ClockMode::Fixed:
        *tv = g_now;
        return 0;
    case ClockMode::Failing:
        errno = EFAULT;
        return -1;
    case ClockMode::Real:
    default: {
        struct timespec ts;
        clock_gettime(CLOCK_REALTIME, &ts);
        tv->tv_sec = ts.tv_sec;
        tv->tv_usec = ts.tv_nsec / 1000;
        return 0;
    }
    }
}

extern "C" int settimeofday(const struct timeval *tv, const struct timezone *tz) noexcept
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (tv == nullptr)
        return -1;
    g_clockSets.push_back({static_cast<long long>(tv->tv_sec), static_cast<long long>(tv->tv_usec), tz != nullptr});
    return 0;
}

namespace FakeSystem {
void Reset()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_commands.clear();
    g_status = 0;
    g_handler = nullptr;
    g_clockMode = ClockMode::Real;
    g_now = {0, 0};
    g_clockSets.clear();
}

std::vector<std::string> Commands()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_commands;
}

void SetStatus(int status)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_status = status;
}

void SetHandler(std::function<int(const std::string &)> handler)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_handler = std::move(handler);
}

void SetNow(long long seconds, long long microseconds)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_clockMode = ClockMode::Fixed;
    g_now.tv_sec = static_cast<time_t>(seconds);
    g_now.tv_usec = static_cast<suseconds_t>(microseconds);
}

void FailGettimeofday()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_clockMode = ClockMode::Failing;
}

std::vector<ClockSet> ClockSets()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_clockSets;
}
}  // namespace FakeSystem
