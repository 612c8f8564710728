// Stands in for the content daemon's D-Bus proxy library (Call / DisposeCallResult): records
// every call and answers from a script per method. Thread-safe.
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

#endif
