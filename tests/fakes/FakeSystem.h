// Stands in for system(), gettimeofday() and settimeofday() in a test executable: commands are
// recorded instead of run, the clock is never set, and the current time can be scripted.
#ifndef KELVO_TESTS_FAKE_SYSTEM_H
#define KELVO_TESTS_FAKE_SYSTEM_H

#include <functional>
#include <string>
#include <vector>

struct ClockSet {
    long long seconds;
    long long microseconds;
    bool withTimeZone;
};

namespace FakeSystem {
// Forgets everything recorded and scripted; the time is the real one again.
void Reset();

// system(): every command in order; the status comes from the handler when one is set (it
// runs with the command, e.g. to look at the disk at that moment), else from SetStatus.
std::vector<std::string> Commands();
void SetStatus(int status);
void SetHandler(std::function<int(const std::string &)> handler);

// gettimeofday(): a fixed time, or failure (-1 with the time left at zero).
void SetNow(long long seconds, long long microseconds = 0);
void FailGettimeofday();

// settimeofday(): every value asked for, in order.
std::vector<ClockSet> ClockSets();
}  // namespace FakeSystem

#endif
