#include "FakeEvents.h"

#include <map>
#include <mutex>

#include "kelvo-dbus-proxy.h"

namespace {

std::mutex g_lock;
std::vector<FakeEvents::EventCall> g_calls;
std::map<std::string, int> g_statuses;

int Record(const char *function, int event, const void *pointer)
{
    std::lock_guard<std::mutex> guard(g_lock);
    g_calls.push_back({function, event, pointer});
    auto found = g_statuses.find(function);
    return found == g_statuses.end() ? 0 : found->second;
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
    std::lock_guard<std::mutex> guard(g_lock);
    g_calls.clear();
    g_statuses.clear();
}

void SetStatus(const std::string &function, int status)
{
    std::lock_guard<std::mutex> guard(g_lock);
    g_statuses[function] = status;
}

std::vector<EventCall> Calls()
{
    std::lock_guard<std::mutex> guard(g_lock);
    return g_calls;
}

}  // namespace FakeEvents

extern "C" {

int RegisterKelvoCallBack_CPP(KelvoEventCallback_CPP callback)
{
    return Record(__func__, 0, Address(callback));
}
int RegisterKelvoCallBack(KelvoEventCallback callback)
{
    return Record(__func__, 0, Address(callback));
}
int RegisterKelvoCallBack_Plugin(KelvoEventCallback_Plugin callback)
{
    return Record(__func__, 0, Address(callback));
}
int SubscribeKelvoEventForCPP(int event)
{
    return Record(__func__, event, nullptr);
}
int SubscribeKelvoEvent(int event)
{
    return Record(__func__, event, nullptr);
}
int SubscribeKelvoEventForPlugin(int event, void *userData)
{
    return Record(__func__, event, userData);
}
int UnSubsribeKelvoEventForCPP(int event)
{
    return Record(__func__, event, nullptr);
}
int UnSubsribeKelvoEvent(int event)
{
    return Record(__func__, event, nullptr);
}
int UnSubsribeKelvoEventForPlugin(int event)
{
    return Record(__func__, event, nullptr);
}

}  // extern "C"
