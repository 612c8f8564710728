#include "FakeCall.h"

#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>

#include "kelvo-dbus-proxy.h"

namespace {

struct State {
    std::mutex lock;
    std::vector<FakeCall::CallRecord> calls;
    std::map<std::string, FakeCall::Answer> standing;
    std::map<std::string, std::deque<FakeCall::Answer>> once;
    FakeCall::Answer fallback;
    int outstanding = 0;
};

State &TheState()
{
    static State state;
    return state;
}

FakeCall::Answer NextAnswer(State &state, const std::string &method)
{
    auto queued = state.once.find(method);
    if (queued != state.once.end() && !queued->second.empty()) {
        FakeCall::Answer answer = queued->second.front();
        queued->second.pop_front();
        return answer;
    }
    auto standing = state.standing.find(method);
    return standing != state.standing.end() ? standing->second : state.fallback;
}

}  // namespace

namespace FakeCall {

void Reset()
{
    State &state = TheState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.calls.clear();
    state.standing.clear();
    state.once.clear();
    state.fallback = Answer::Null();
}

void Script(const std::string &method, const Answer &answer)
{
    State &state = TheState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.standing[method] = answer;
}

void ScriptOnce(const std::string &method, const Answer &answer)
{
    State &state = TheState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.once[method].push_back(answer);
}

void ScriptDefault(const Answer &answer)
{
    State &state = TheState();
    std::lock_guard<std::mutex> guard(state.lock);
    state.fallback = answer;
}

std::vector<CallRecord> Calls()
{
    State &state = TheState();
    std::lock_guard<std::mutex> guard(state.lock);
    return state.calls;
}

std::vector<std::string> Arguments(const std::string &method)
{
    std::vector<std::string> arguments;
    for (const auto &call : Calls()) {
        if (call.method == method)
            arguments.push_back(call.argument);
    }
    return arguments;
}

std::size_t Count(const std::string &method)
{
    return Arguments(method).size();
}

int Outstanding()
{
    State &state = TheState();
    std::lock_guard<std::mutex> guard(state.lock);
    return state.outstanding;
}

}  // namespace FakeCall

extern "C" KelvoCallResult *Call(const char *method, const char *argument)
{
    State &state = TheState();
    std::lock_guard<std::mutex> guard(state.lock);
    const std::string name = method != nullptr ? method : "";
    state.calls.push_back({name, argument != nullptr ? argument : ""});
    const FakeCall::Answer answer = NextAnswer(state, name);
    if (answer.kind == FakeCall::Answer::NullResult)
        return nullptr;
    auto *result = static_cast<KelvoCallResult *>(std::calloc(1, sizeof(KelvoCallResult)));
    result->success = answer.kind == FakeCall::Answer::Reply;
    result->length = static_cast<unsigned int>(answer.text.size());
    result->data = static_cast<char *>(std::malloc(answer.text.size() + 1));
    std::memcpy(result->data, answer.text.c_str(), answer.text.size() + 1);
    ++state.outstanding;
    return result;
}

extern "C" void DisposeCallResult(KelvoCallResult *result)
{
    if (result == nullptr)
        return;
    State &state = TheState();
    {
        std::lock_guard<std::mutex> guard(state.lock);
        --state.outstanding;
    }
    std::free(result->data);
    std::free(result);
}
