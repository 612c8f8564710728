// Reading a virtual channel's programme list as the proxy does (parse the reply, then
// FCMarshal::JsonToVirtualProgramMap) against jsoncpp's bare parse of the same text. The reply
// holds 10 000 programmes of 3 playlist items each, with the keys the daemon sends beyond those
// the records read, which each record keeps as its extra-data text. The two sides run in
// alternating rounds and the best round of each counts, in CPU time, so that other load of the
// machine does not land on one side only. Prints "RATIO virtualmap_decode <ours / limit>".
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <json/json.h>

#include "BestReporter.h"
#include "FCJsonHelper.h"
#include "FCMarshal.h"

namespace {

const int kRounds = 3;
const int kProgrammes = 10000;
const int kItemsPerProgramme = 3;

std::string g_reply;

void BM_VirtualMapDecode(benchmark::State &state)
{
    for (auto _ : state) {
        Json::Value reply;
        std::map<unsigned int, FCVirtualProgramData> programmes;
        FCJsonHelper::ParseToJson(g_reply, reply);
        FCMarshal::JsonToVirtualProgramMap(reply, programmes);
        if (programmes.size() != static_cast<size_t>(kProgrammes))
            state.SkipWithError("wrong map");
        benchmark::DoNotOptimize(programmes);
    }
}

void BM_JsoncppParse(benchmark::State &state)
{
    KelvoBenchBareParse(state, g_reply);
}

// A reply as the daemon sends it: every key of schedule, content and item filled, and the keys
// the records pass on in their extra data.
std::string VirtualMapReply()
{
    Json::Value reply;
    reply["ret"] = true;
    Json::Value &array = reply["virtual_program_map"];
    for (int p = 0; p < kProgrammes; ++p) {
        const std::string id = "ev-" + std::to_string(100000 + p);
        Json::Value programme;
        programme["key"] = static_cast<unsigned int>(p);
        programme["program_data"]["TCServiceId"] =
            std::to_string(0x9000000000000000ULL + static_cast<unsigned>(p / 48));
        programme["id"] = id;
        programme["starttime"] = "2026-11-21T10:00:00+09:00";
        programme["duration"] = 1800;
        programme["relative_offset"] = -1;
        programme["playlist_item_index"] = -1;
        programme["content_type"] = "episode";
        programme["content_uri"] = "https://stream.example/content/" + id;
        programme["title"] = "A programme title number " + std::to_string(p);
        programme["short_desc"] = "Short description of the programme";
        programme["desc"] = "A longer description of the programme, as the guide shows it on the info banner.";
        programme["poster"]["url"] = "https://images.example/poster/" + id + ".jpg";
        programme["poster"]["index"] = "2";
        programme["rating"] = "12";
        programme["ratings"] = "12";
        programme["sequence"] = p;
        programme["lang"] = "eng";
        programme["genres"].append("news");
        programme["genres"].append("sport");
        programme["video_quality"] = "HD";
        programme["schedule_type"] = "CIRCLE";
        programme["cp_name"] = "Streaming Partner";
        programme["series_title"] = "Series " + std::to_string(p % 97);
        for (int i = 0; i < kItemsPerProgramme; ++i) {
            Json::Value item;
            item["order"] = i + 1;
            item["id"] = id + "-" + std::to_string(i);
            item["title"] = "Part " + std::to_string(i + 1);
            item["content_uri"] = "https://stream.example/item/" + id + "/" + std::to_string(i) + ".m3u8";
            item["duration"] = 600;
            item["subtitle"]["url"] = "https://subs.example/" + id + "/" + std::to_string(i) + ".vtt";
            item["subtitle"]["lang_order_index"] = "eng,deu";
            item["thumbnail"] = "https://images.example/thumb/" + id + "/" + std::to_string(i) + ".jpg";
            item["ad_break"] = 300;
            programme["group_play_list"].append(item);
        }
        array.append(programme);
    }
    return FCJsonHelper::WriteCompact(reply);
}

}  // namespace

int main(int argc, char **argv)
{
    g_reply = VirtualMapReply();
    for (int round = 0; round < kRounds; ++round) {
        std::string suffix = "#" + std::to_string(round);
        benchmark::RegisterBenchmark(("VirtualMapDecode" + suffix).c_str(), BM_VirtualMapDecode)
            ->Iterations(3)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("JsoncppParse" + suffix).c_str(), BM_JsoncppParse)
            ->Iterations(3)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    // Both decode in this process: CPU time.
    KelvoBestReporter reporter([](const std::string &) { return true; });
    benchmark::RunSpecifiedBenchmarks(&reporter);

    std::printf("virtual programme map reply: %zu bytes, %d programmes of %d items\n", g_reply.size(), kProgrammes,
                kItemsPerProgramme);
    const double ours = reporter.Best("VirtualMapDecode");
    const double limit = reporter.Best("JsoncppParse");
    if (ours <= 0 || limit <= 0) {
        std::printf("RATIO virtualmap_decode unavailable\n");
        return 1;
    }
    std::printf("virtualmap_decode: %.1f ms per reply, limit %.1f ms\n", ours * 1e3, limit * 1e3);
    std::printf("RATIO virtualmap_decode %.2f\n", ours / limit);
    return 0;
}
