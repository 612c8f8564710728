// Stands in for the event functions of the content daemon's D-Bus proxy library: records every
// registration, subscription and unsubscription, and returns a status set per function.
// Thread-safe. Part of the fake D-Bus proxy library (kelvo-fake-call).
#ifndef KELVO_TESTS_FAKE_EVENTS_H
#define KELVO_TESTS_FAKE_EVENTS_H

#include <string>
#include <vector>

namespace FakeEvents {

// function: the platform function's name; event: its event (0 for a registration); pointer: the
// callback registered, or the user data of a plugin subscription.
struct EventCall {
    std::string function;
    int event;
    const void *pointer;
};

// Forgets the calls and the statuses; every function then returns 0.
void Reset();
void SetStatus(const std::string &function, int status);
std::vector<EventCall> Calls();

}  // namespace FakeEvents

#endif
