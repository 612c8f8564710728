// system(), gettimeofday() and settimeofday() of a test executable: commands are recorded, not
// run; the time is scripted; the clock is never set.
#ifndef KELVO_TESTS_FAKE_SYSTEM_H
#define KELVO_TESTS_FAKE_SYSTEM_H

#include <functional>
#include <string>
#include <vector>

namespace FakeSystem {
// Nothing recorded, every command answering 0, the time at zero.
void Reset();
// Every system() command, and every settimeofday() as "settimeofday <s> <us>" (" tz" added
// when a time zone is passed), in call order.
std::vector<std::string> Calls();
// system()'s status; a handler answers with the command in hand, e.g. to note when it ran.
void SetStatus(int status);
void SetHandler(std::function<int(const std::string &)> handler);
// gettimeofday(): this time, or failure (-1, the time left as it was).
void SetNow(long long seconds, long long microseconds = 0);
void FailGettimeofday();
}  // namespace FakeSystem

#endif
