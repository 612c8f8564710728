// The time an event of the content daemon takes to reach a client, against its limit measured in
// the same run:
//  - ours: the simulator raises event 1, which a CPP client subscribed through FCEMSProxy; the
//    time runs from the simulator's emission to the client's callback (the host library's match,
//    its dispatch thread, the copy of the data and the callback of the subscribing family);
//  - the limit: the simulator raises event 2, which a bare sd-bus connection of this process
//    matches with the same rule; the time runs from the emission to its bare match callback, run
//    by a bare thread that does nothing but sd_bus_wait and sd_bus_process.
// The simulator answers EmitEvent with its CLOCK_MONOTONIC time of emission, and each callback
// takes the same clock on entry. Events are raised in pairs, one of each kind in turn, so that
// both see the same load of the machine; the medians keep a stalled delivery from weighing in.
// Prints "RATIO event_delivery <ours / limit>".
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <systemd/sd-bus.h>

#include "FCEMSProxy.h"
#include "KelvoDaemonBus.h"
#include "KelvoTestBus.h"

namespace {

const int kClientEvent = 1;
const int kBareEvent = 2;
const int kPairs = 3000;
const int kWarmUp = 100;
const char *const kData =
    R"({"type":"programme map updated","sources":["src-100001","src-100002","src-100003"],"utc":1795000000})";

sd_bus *g_emitter = nullptr;
sd_bus *g_receiver = nullptr;
std::atomic<bool> g_stop{false};

std::mutex g_lock;
std::condition_variable g_arrivedSignal;
uint64_t g_arrived = 0;  // CLOCK_MONOTONIC nanoseconds of the last callback, 0 while waiting

uint64_t Now()
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000000ULL + static_cast<uint64_t>(now.tv_nsec);
}

void Arrived(uint64_t at)
{
    {
        std::lock_guard<std::mutex> guard(g_lock);
        g_arrived = at;
    }
    g_arrivedSignal.notify_one();
}

int OnClientEvent(int, FSEventData data)
{
    uint64_t at = Now();
    benchmark::DoNotOptimize(data);
    Arrived(at);
    return 0;
}

int OnBareEvent(sd_bus_message *message, void *, sd_bus_error *)
{
    uint64_t at = Now();
    const char *number = nullptr;
    const char *text = nullptr;
    int params[3];
    sd_bus_message_read(message, "siiis", &number, &params[0], &params[1], &params[2], &text);
    benchmark::DoNotOptimize(text);
    Arrived(at);
    return 0;
}

void BareDispatch()
{
    while (!g_stop.load()) {
        while (sd_bus_process(g_receiver, nullptr) > 0) {}
        sd_bus_wait(g_receiver, 100000);
    }
}

sd_bus *Connect(const std::string &address)
{
    sd_bus *bus = nullptr;
    if (sd_bus_new(&bus) < 0)
        return nullptr;
    if (sd_bus_set_address(bus, address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 || sd_bus_start(bus) < 0)
        return sd_bus_unref(bus);
    return bus;
}

// Seconds from the simulator's emission of the event to the callback of its receiver, or -1.
double Deliver(int event)
{
    {
        std::lock_guard<std::mutex> guard(g_lock);
        g_arrived = 0;
    }
    sd_bus_message *reply = nullptr;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    uint64_t emitted = 0;
    int r = sd_bus_call_method(g_emitter, KelvoDaemonBus::kBusName, KelvoDaemonBus::kObjectPath,
                               KelvoDaemonBus::kControlInterface, "EmitEvent", &error, &reply, "iiiis", event, 1, 2, 3,
                               kData);
    if (r >= 0)
        r = sd_bus_message_read(reply, "t", &emitted);
    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
    if (r < 0)
        return -1;
    std::unique_lock<std::mutex> lock(g_lock);
    if (!g_arrivedSignal.wait_for(lock, std::chrono::seconds(5), [] { return g_arrived != 0; }))
        return -1;
    return static_cast<double>(g_arrived - emitted) / 1e9;
}

void BM_ClientEvent(benchmark::State &state)
{
    for (auto _ : state) {
        double seconds = Deliver(kClientEvent);
        if (seconds < 0) {
            state.SkipWithError("the event did not arrive");
            break;
        }
        state.SetIterationTime(seconds);
    }
}

void BM_BareMatch(benchmark::State &state)
{
    for (auto _ : state) {
        double seconds = Deliver(kBareEvent);
        if (seconds < 0) {
            state.SkipWithError("the event did not arrive");
            break;
        }
        state.SetIterationTime(seconds);
    }
}

double Median(std::vector<double> &values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

bool PairedRatio(double &ours, double &limit)
{
    std::vector<double> client, bare;
    for (int i = 0; i < kWarmUp + kPairs; ++i) {
        double a = Deliver(kClientEvent);
        double b = Deliver(kBareEvent);
        if (a < 0 || b < 0)
            return false;
        if (i < kWarmUp)
            continue;
        client.push_back(a);
        bare.push_back(b);
    }
    ours = Median(client);
    limit = Median(bare);
    return limit > 0;
}

bool SetUp(const std::string &address)
{
    FCEMSProxy *proxy = FCEMSProxy::GetInstance(nullptr, &OnClientEvent);
    if (!proxy || proxy->SubscribeSignal(kClientEvent) != 0)
        return false;
    g_emitter = Connect(address);
    g_receiver = Connect(address);
    if (!g_emitter || !g_receiver)
        return false;
    // The rule the host library adds for a subscription, for the bare event's number.
    std::string rule = std::string("type='signal',sender='") + KelvoDaemonBus::kBusName + "',path='" +
                       KelvoDaemonBus::kObjectPath + "',interface='" + KelvoDaemonBus::kEventInterface + "',member='" +
                       KelvoDaemonBus::kEventSignal + "',arg0='" + std::to_string(kBareEvent) + "'";
    return sd_bus_add_match(g_receiver, nullptr, rule.c_str(), &OnBareEvent, nullptr) >= 0;
}

}  // namespace

int main(int argc, char **argv)
{
    auto *bus = new KelvoTestBus("{}");
    if (!bus->Ready()) {
        std::printf("RATIO event_delivery unavailable\n");
        delete bus;
        return 1;
    }
    bus->UseForCalls();
    if (!SetUp(bus->Address())) {
        std::printf("RATIO event_delivery unavailable\n");
        delete bus;
        return 1;
    }
    std::thread bare(BareDispatch);

    for (int round = 0; round < 3; ++round) {
        std::string suffix = "#" + std::to_string(round);
        benchmark::RegisterBenchmark(("ClientEvent" + suffix).c_str(), BM_ClientEvent)
            ->UseManualTime()
            ->Iterations(1000)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("BareMatch" + suffix).c_str(), BM_BareMatch)
            ->UseManualTime()
            ->Iterations(1000)
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    double ours = 0, limit = 0;
    bool measured = PairedRatio(ours, limit);

    g_stop = true;
    bare.join();
    sd_bus_flush_close_unref(g_receiver);
    sd_bus_flush_close_unref(g_emitter);
    delete bus;
    if (!measured) {
        std::printf("RATIO event_delivery unavailable\n");
        return 1;
    }
    std::printf("event_delivery: median %.1f us from emission to the client's callback, limit %.1f us (%d events of "
                "each, in turn)\n",
                ours * 1e6, limit * 1e6, kPairs);
    std::printf("RATIO event_delivery %.2f\n", ours / limit);
    return 0;
}
