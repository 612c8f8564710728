// Stands in for the content daemon's D-Bus proxy library: Call / DisposeCallResult record every
// call and answer from a script per method; the event functions record every registration,
// subscription and unsubscription and return a status set per function. Thread-safe.
#ifndef KELVO_TESTS_FAKE_CALL_H
#define KELVO_TESTS_FAKE_CALL_H

#include <string>
#include <vector>

namespace FakeCall {

struct Answer {
    enum Kind { NullResult, Failure, Reply };
    Kind kind = NullResult;
    std::string text;

    static Answer Null() { return Answer{NullResult, ""}; }  // no bus: Call returns null
    static Answer Failed() { return Answer{Failure, ""}; }   // a result with success clear
    static Answer Text(const std::string &reply) { return Answer{Reply, reply}; }
};

// The argument text exactly as passed.
struct CallRecord {
    std::string method, argument;
};

// Forgets calls and script; unscripted methods then answer Null().
void Reset();
// The standing answer of every call of method.
void Script(const std::string &method, const Answer &answer);
// An answer used once, before the standing one; several queue up in order.
void ScriptOnce(const std::string &method, const Answer &answer);

std::vector<CallRecord> Calls();
std::vector<std::string> Arguments(const std::string &method);
// Results handed out and not yet released with DisposeCallResult.
int Outstanding();

}  // namespace FakeCall

// The event functions.
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
