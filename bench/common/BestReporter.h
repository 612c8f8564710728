// What the benchmarks that alternate rounds share: their limit for a reply decoder, and the best
// seconds per iteration of each benchmark over its rounds, by its name without the round
// ("Name#2" counts as "Name"), beside the console's usual lines. Work of this process alone counts
// in its CPU time, which other load on the machine does not stretch; work that waits on other
// processes (a round trip over the bus) counts in wall time.
#ifndef KELVO_BENCH_BESTREPORTER_H
#define KELVO_BENCH_BESTREPORTER_H

#include <benchmark/benchmark.h>
#include <json/json.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// The limit of every reply decoder: jsoncpp's bare parse of the same text, with a fresh reader as
// the client makes one per reply.
inline void KelvoBenchBareParse(benchmark::State &state, const std::string &text)
{
    Json::CharReaderBuilder builder;
    for (auto _ : state) {
        Json::Value reply;
        std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        if (!reader->parse(text.data(), text.data() + text.size(), &reply, nullptr))
            state.SkipWithError("parse failed");
        benchmark::DoNotOptimize(reply);
    }
}

class KelvoBestReporter : public benchmark::ConsoleReporter {
public:
    explicit KelvoBestReporter(std::function<bool(const std::string &name)> ownWork) : m_ownWork(std::move(ownWork)) {}

    // The best seconds of a benchmark; 0 when it did not run.
    double Best(const std::string &name) const
    {
        auto it = m_best.find(name);
        return it == m_best.end() ? 0 : it->second;
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations <= 0 || run.error_occurred)
                continue;
            std::string name = run.run_name.function_name;
            name = name.substr(0, name.find('#'));
            double total = m_ownWork(name) ? run.cpu_accumulated_time : run.real_accumulated_time;
            double seconds = total / static_cast<double>(run.iterations);
            auto it = m_best.find(name);
            if (it == m_best.end() || seconds < it->second)
                m_best[name] = seconds;
        }
        ConsoleReporter::ReportRuns(runs);
    }

private:
    std::function<bool(const std::string &name)> m_ownWork;
    std::map<std::string, double> m_best;
};

#endif
