#include "FakeSystem.h"

#include <errno.h>
#include <sys/time.h>

namespace {
std::vector<std::string> g_calls;
std::function<int(const std::string &)> g_handler;
struct timeval g_now = {0, 0};
bool g_failClock = false;
}  // namespace

extern "C" int system(const char *command)
{
    if (command == nullptr)
        return 1;  // "a shell is available"
    g_calls.push_back(command);
    return g_handler ? g_handler(command) : 0;
}

extern "C" int gettimeofday(struct timeval *__restrict tv, void *__restrict) noexcept
{
    if (g_failClock) {
        errno = EFAULT;
        return -1;
    }
    *tv = g_now;
    return 0;
}

extern "C" int settimeofday(const struct timeval *tv, const struct timezone *tz) noexcept
{
    if (tv == nullptr)
        return -1;
    g_calls.push_back("settimeofday " + std::to_string(tv->tv_sec) + " " + std::to_string(tv->tv_usec) +
                      (tz != nullptr ? " tz" : ""));
    return 0;
}

namespace FakeSystem {
void Reset()
{
    g_calls.clear();
    g_handler = nullptr;
    g_now = {0, 0};
    g_failClock = false;
}

std::vector<std::string> Calls()
{
    return g_calls;
}
void SetStatus(int status)
{
    g_handler = [status](const std::string &) { return status; };
}
void SetHandler(std::function<int(const std::string &)> handler)
{
    g_handler = std::move(handler);
}
void FailGettimeofday()
{
    g_failClock = true;
}

void SetNow(long long seconds, long long microseconds)
{
    g_now.tv_sec = static_cast<time_t>(seconds);
    g_now.tv_usec = static_cast<suseconds_t>(microseconds);
}
}  // namespace FakeSystem
