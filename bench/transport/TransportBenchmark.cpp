// Two costs of talking to the content daemon, each against its limit measured in the same run:
//  - proxy_call: FCMatchFinder_Proxy::GetTCServiceIdByProgramSourceID (argument writing, Call,
//    reply parsing and decoding, the entry log line) against a bare sd-bus call of the same method
//    with the same text on a connection of its own, both to the simulator on a private bus;
//  - programmap_decode: reading a 50 000-programme GetProgramMap reply as the proxy does (parse,
//    then FCMarshal::JsonToProgramMap) against jsoncpp's bare parse of the same text.
// Round trips are compared call by call in turn (median wall time of each side); the decoding pair
// runs in alternating rounds and the best round of each side counts, in CPU time, so that load of
// the machine does not land on one side only. Prints "RATIO <name> <ours / limit>".
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include <benchmark/benchmark.h>
#include <json/json.h>
#include <systemd/sd-bus.h>

#include "BestReporter.h"
#include "FCJsonHelper.h"
#include "FCMarshal.h"
#include "FCRemoteContentOnTV_Proxy.h"
#include "KelvoDaemonBus.h"
#include "KelvoTestBus.h"

namespace {

const int kRounds = 3;
const int kPairs = 20000;
const int kSources = 500;
const int kProgrammesPerSource = 100;  // 50 000 in all
const char *const kArgument = R"({"activityID":0,"program source id":"S1"})";

KelvoTestBus *g_bus = nullptr;
sd_bus *g_bare = nullptr;
std::string g_programMapReply;

bool ProxyCall()
{
    static FCMatchFinder_Proxy finder;
    unsigned long long service = 0;
    bool ok = finder.GetTCServiceIdByProgramSourceID(REMOTE_CONTENT_ACTIVITY_MAIN, "S1", service);
    benchmark::DoNotOptimize(service);
    return ok && service == 4294967296001ULL;
}

bool BareCall()
{
    sd_bus_message *reply = nullptr;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    const char *text = nullptr;
    int r = sd_bus_call_method(g_bare, KelvoDaemonBus::kBusName, KelvoDaemonBus::kObjectPath,
                               KelvoDaemonBus::kProviderInterface, "GetTCServiceIdByProgramSourceID", &error, &reply,
                               "s", kArgument);
    if (r >= 0)
        r = sd_bus_message_read(reply, "s", &text);
    benchmark::DoNotOptimize(text);
    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
    return r >= 0;
}

void BM_ProxyCall(benchmark::State &state)
{
    for (auto _ : state) {
        if (!ProxyCall())
            state.SkipWithError("wrong answer");
    }
}

void BM_BareSdBusCall(benchmark::State &state)
{
    for (auto _ : state) {
        if (!BareCall())
            state.SkipWithError("bare call failed");
    }
}

// The ratio of the round trips comes from calls made in pairs, one of each kind in turn, so that
// both see the same load of the machine; the medians keep a stalled call from weighing in.
double PairedCallRatio(int pairs, double &proxyMedian, double &bareMedian)
{
    std::vector<double> proxy, bare;
    for (int i = 0; i < pairs; ++i) {
        auto t0 = std::chrono::steady_clock::now();
        if (!ProxyCall())
            return 0;
        auto t1 = std::chrono::steady_clock::now();
        if (!BareCall())
            return 0;
        auto t2 = std::chrono::steady_clock::now();
        proxy.push_back(std::chrono::duration<double>(t1 - t0).count());
        bare.push_back(std::chrono::duration<double>(t2 - t1).count());
    }
    auto median = [](std::vector<double> &v) {
        std::nth_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2), v.end());
        return v[v.size() / 2];
    };
    proxyMedian = median(proxy);
    bareMedian = median(bare);
    return bareMedian > 0 ? proxyMedian / bareMedian : 0;
}

void BM_ProgramMapDecode(benchmark::State &state)
{
    for (auto _ : state) {
        Json::Value reply;
        std::map<std::string, std::vector<FCRemoteProgram>> map;
        FCJsonHelper::ParseToJson(g_programMapReply, reply);
        FCMarshal::JsonToProgramMap(reply, map);
        if (map.size() != static_cast<size_t>(kSources))
            state.SkipWithError("wrong map");
        benchmark::DoNotOptimize(map);
    }
}

void BM_JsoncppParse(benchmark::State &state)
{
    KelvoBenchBareParse(state, g_programMapReply);
}

// A reply as the daemon sends it: every member of every programme filled.
std::string ProgramMapReply()
{
    std::map<std::string, std::vector<FCRemoteProgram>> map;
    for (int s = 0; s < kSources; ++s) {
        std::string source = "src-" + std::to_string(100000 + s);
        auto &programmes = map[source];
        for (int p = 0; p < kProgrammesPerSource; ++p) {
            FCRemoteProgram program;
            program.m_programSourceId = source;
            program.m_channelName = "Channel " + std::to_string(s);
            program.m_channelNumber = std::to_string(s + 1);
            program.m_programId = "prog-" + std::to_string(s * kProgrammesPerSource + p);
            program.m_lang = "eng";
            program.m_startTime = "2026-11-21T10:00:00Z";
            program.m_utcStartTime = 1795000000UL + static_cast<unsigned long>(p) * 1800UL;
            program.m_duration = 1800;
            program.m_title = "A programme title number " + std::to_string(p);
            program.m_certFlag = "0";
            program.m_genres = {"news", "sport"};
            program.m_posterUrl = "http://images.example/poster/" + std::to_string(p) + ".jpg";
            program.m_posterType = "1";
            program.m_posterOverlay = "0";
            program.m_posterIndex = "2";
            program.m_shortDesc = "Short description of the programme";
            program.m_desc = "A longer description of the programme, as the guide shows it on the info banner.";
            program.m_series = "S01E02";
            program.m_endTime = program.m_utcStartTime + 1800UL;
            program.m_isRF = (p % 2) == 0;
            programmes.push_back(program);
        }
    }
    Json::Value reply;
    reply["ret"] = true;
    FCMarshal::ProgramMapToJson(map, reply);
    return FCJsonHelper::WriteCompact(reply);
}

bool StartBare(const std::string &address)
{
    if (sd_bus_new(&g_bare) < 0)
        return false;
    return sd_bus_set_address(g_bare, address.c_str()) >= 0 && sd_bus_set_bus_client(g_bare, 1) >= 0 &&
           sd_bus_start(g_bare) >= 0;
}

void Ratio(const char *name, KelvoBestReporter &reporter, const char *ours, const char *limit)
{
    double a = reporter.Best(ours);
    double b = reporter.Best(limit);
    if (a <= 0 || b <= 0) {
        std::printf("RATIO %s unavailable\n", name);
        return;
    }
    std::printf("%s: %.1f us per call, limit %.1f us\n", name, a * 1e6, b * 1e6);
    std::printf("RATIO %s %.2f\n", name, a / b);
}

}  // namespace

int main(int argc, char **argv)
{
    g_bus = new KelvoTestBus(R"({"sourceToService": {"S1": "4294967296001"}})");
    if (!g_bus->Ready() || !StartBare(g_bus->Address())) {
        std::printf("RATIO proxy_call unavailable\nRATIO programmap_decode unavailable\n");
        delete g_bus;
        return 1;
    }
    g_bus->UseForCalls();
    g_programMapReply = ProgramMapReply();

    for (int round = 0; round < kRounds; ++round) {
        std::string suffix = "#" + std::to_string(round);
        benchmark::RegisterBenchmark(("ProxyCall" + suffix).c_str(), BM_ProxyCall)
            ->MinTime(0.5)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("BareSdBusCall" + suffix).c_str(), BM_BareSdBusCall)
            ->MinTime(0.5)
            ->Unit(benchmark::kMicrosecond);
    }
    for (int round = 0; round < kRounds; ++round) {
        std::string suffix = "#" + std::to_string(round);
        benchmark::RegisterBenchmark(("ProgramMapDecode" + suffix).c_str(), BM_ProgramMapDecode)
            ->Iterations(3)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("JsoncppParse" + suffix).c_str(), BM_JsoncppParse)
            ->Iterations(3)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);

    // The proxy logs its entry through dlog, which on this host writes to standard error; that
    // cost stays in the measurement, the lines go to /dev/null.
    std::fflush(stderr);
    const int savedStderr = dup(STDERR_FILENO);
    const int devNull = open("/dev/null", O_WRONLY);
    dup2(devNull, STDERR_FILENO);
    // The round trips involve other processes and count in wall time; decoding is this process's
    // own work.
    KelvoBestReporter reporter([](const std::string &name) {
        return name.rfind("ProgramMapDecode", 0) == 0 || name.rfind("JsoncppParse", 0) == 0;
    });
    benchmark::RunSpecifiedBenchmarks(&reporter);
    double proxyMedian = 0, bareMedian = 0;
    const double callRatio = PairedCallRatio(kPairs, proxyMedian, bareMedian);
    dup2(savedStderr, STDERR_FILENO);
    close(devNull);
    close(savedStderr);

    sd_bus_flush_close_unref(g_bare);
    delete g_bus;
    std::printf("programme map reply: %zu bytes, %d programmes\n", g_programMapReply.size(),
                kSources * kProgrammesPerSource);
    if (callRatio > 0) {
        std::printf("proxy_call: median %.1f us per call, limit %.1f us (%d calls of each, in turn)\n",
                    proxyMedian * 1e6, bareMedian * 1e6, kPairs);
        std::printf("RATIO proxy_call %.2f\n", callRatio);
    } else {
        std::printf("RATIO proxy_call unavailable\n");
    }
    Ratio("programmap_decode", reporter, "ProgramMapDecode", "JsoncppParse");
    return 0;
}
