#include "FakeCall.h"

#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>

#include "kelvo-dbus-proxy.h"

namespace {

struct State {
    std::vector<FakeCall::CallRecord> calls;
    std::map<std::string, FakeCall::Answer> standing;
    std::map<std::string, std::deque<FakeCall::Answer>> once;
    int outstanding = 0;
};

std::mutex g_lock;
State g_state;

// Runs action on the state under the lock.
template <typename Action>
auto Locked(Action action)
{
    std::lock_guard<std::mutex> guard(g_lock);
    return action(g_state);
}

}  // namespace

namespace FakeCall {

// Results still outstanding stay counted: a leak before a reset must still show.
void Reset()
{
    Locked([](State &s) { s = State{{}, {}, {}, s.outstanding}; });
}
void Script(const std::string &method, const Answer &answer)
{
    Locked([&](State &s) { s.standing[method] = answer; });
}
void ScriptOnce(const std::string &method, const Answer &answer)
{
    Locked([&](State &s) { s.once[method].push_back(answer); });
}
std::vector<CallRecord> Calls()
{
    return Locked([](State &s) { return s.calls; });
}
int Outstanding()
{
    return Locked([](State &s) { return s.outstanding; });
}

std::vector<std::string> Arguments(const std::string &method)
{
    std::vector<std::string> arguments;
    for (const auto &call : Calls())
        if (call.method == method)
            arguments.push_back(call.argument);
    return arguments;
}

}  // namespace FakeCall

extern "C" KelvoCallResult *Call(const char *method, const char *argument)
{
    const std::string name = method != nullptr ? method : "";
    const FakeCall::Answer answer = Locked([&](State &s) {
        s.calls.push_back({name, argument != nullptr ? argument : ""});
        auto &queued = s.once[name];
        if (queued.empty())
            return s.standing.count(name) ? s.standing[name] : FakeCall::Answer::Null();
        FakeCall::Answer next = queued.front();
        queued.pop_front();
        return next;
    });
    if (answer.kind == FakeCall::Answer::NullResult)
        return nullptr;
    Locked([](State &s) { return ++s.outstanding; });
    auto *result = static_cast<KelvoCallResult *>(std::calloc(1, sizeof(KelvoCallResult)));
    result->success = answer.kind == FakeCall::Answer::Reply;
    result->length = static_cast<unsigned int>(answer.text.size());
    result->data = static_cast<char *>(
        std::memcpy(std::malloc(answer.text.size() + 1), answer.text.c_str(), answer.text.size() + 1));
    return result;
}

extern "C" void DisposeCallResult(KelvoCallResult *result)
{
    if (result == nullptr)
        return;
    Locked([](State &s) { return --s.outstanding; });
    std::free(result->data);
    std::free(result);
}

// ---- events ----

namespace {

std::mutex g_eventLock;
std::vector<FakeEvents::EventCall> g_eventCalls;
std::map<std::string, int> g_eventStatuses;

int RecordEvent(const char *function, int event, const void *pointer)
{
    std::lock_guard<std::mutex> guard(g_eventLock);
    g_eventCalls.push_back({function, event, pointer});
    auto found = g_eventStatuses.find(function);
    return found == g_eventStatuses.end() ? 0 : found->second;
}

template <typename Callback>
const void *Address(Callback callback)
{
    return reinterpret_cast<const void *>(callback);
}

}  // namespace

namespace FakeEvents {

void Reset()
{
    std::lock_guard<std::mutex> guard(g_eventLock);
    g_eventCalls.clear();
    g_eventStatuses.clear();
}

void SetStatus(const std::string &function, int status)
{
    std::lock_guard<std::mutex> guard(g_eventLock);
    g_eventStatuses[function] = status;
}

std::vector<EventCall> Calls()
{
    std::lock_guard<std::mutex> guard(g_eventLock);
    return g_eventCalls;
}

}  // namespace FakeEvents

extern "C" {

int RegisterKelvoCallBack_CPP(KelvoEventCallback_CPP callback)
{
    return RecordEvent(__func__, 0, Address(callback));
}
int RegisterKelvoCallBack(KelvoEventCallback callback)
{
    return RecordEvent(__func__, 0, Address(callback));
}
int RegisterKelvoCallBack_Plugin(KelvoEventCallback_Plugin callback)
{
    return RecordEvent(__func__, 0, Address(callback));
}
int SubscribeKelvoEventForCPP(int event)
{
    return RecordEvent(__func__, event, nullptr);
}
int SubscribeKelvoEvent(int event)
{
    return RecordEvent(__func__, event, nullptr);
}
int SubscribeKelvoEventForPlugin(int event, void *userData)
{
    return RecordEvent(__func__, event, userData);
}
int UnSubsribeKelvoEventForCPP(int event)
{
    return RecordEvent(__func__, event, nullptr);
}
int UnSubsribeKelvoEvent(int event)
{
    return RecordEvent(__func__, event, nullptr);
}
int UnSubsribeKelvoEventForPlugin(int event)
{
    return RecordEvent(__func__, event, nullptr);
}

}  // extern "C"
