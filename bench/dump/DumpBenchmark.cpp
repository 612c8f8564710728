// The whole dump of the reference TV made with 300, 1 000 and 3 000 services: the real kelvo-util
// in the simulated TV (tools/kelvo-tv run, as a person runs it), timed per phase from the moments
// its milestones arrive,
// with kelvo-util's own CPU time and peak RSS as the supervisor measured them when it ended. The
// limit is SQLite's own prepared bulk insert of the same rows into the same file system, measured
// in the same run:
//   RATIO dump_export = (export seconds per row) / (bulk insert seconds per row), at 300 services;
//   RATIO dump_cpu_<N> = kelvo-util's CPU seconds (user + system) / bulk insert seconds, at N;
//   RATIO dump_cpu_growth = CPU seconds per row at 3 000 services / at 300 (1.0 is linear).
#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "SqliteBulkInsert.h"

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {
const int kSizes[] = {300, 1000, 3000};
// Each dump is run as many times as the limit, and its best run kept, as the limit keeps its best: on a
// shared machine one run's CPU time can be a fifth above another's.
const int kDumpRuns = 5;
// The export ratio and the growth are taken against the smallest TV.
const int kExportSize = kSizes[0];

struct Line {
    double at;  // seconds since the run started
    std::string text;
};

struct DumpRun {
    bool ok = false;
    double wall = 0;  // the whole `kelvo-tv run`: sandbox, bus, servers and kelvo-util
    std::vector<Line> lines;
    double cpu = -1;  // kelvo-util's own user + system seconds
    long peakRssKb = -1;
    int rfRows = 0;
    int metaRows = 0;
};

struct Figures {
    DumpRun run;
    double backup = 0, exportTime = 0, copy = 0, utilSpan = 0;
    double bulk = 1e9;
    double bestWall = 0;  // the least wall time of the runs, which need not be the run kept
    int bulkRows = 0;
};
std::map<int, Figures> g_figures;

std::string g_work;

// In a forked child: becomes the program, or ends the child.
[[noreturn]] void ExecChild(const std::vector<std::string> &argv)
{
    std::vector<char *> args;
    args.reserve(argv.size() + 1);
    for (const auto &a : argv)
        args.push_back(const_cast<char *>(a.c_str()));
    args.push_back(nullptr);
    execv(args[0], args.data());
    _exit(127);
}

int Exec(const std::vector<std::string> &argv)
{
    pid_t pid = fork();
    if (pid == 0)
        ExecChild(argv);
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string TvOf(int services)
{
    return g_work + "/tv-" + std::to_string(services);
}

// The usage file the supervisor writes when kelvo-util ends: "user_seconds U", "system_seconds S",
// "max_rss_kb K".
void ReadUsage(const std::string &path, DumpRun &run)
{
    std::ifstream in(path);
    std::string key;
    double user = -1, system = -1, value = 0;
    while (in >> key >> value) {
        if (key == "user_seconds")
            user = value;
        else if (key == "system_seconds")
            system = value;
        else if (key == "max_rss_kb")
            run.peakRssKb = static_cast<long>(value);
    }
    if (user >= 0 && system >= 0)
        run.cpu = user + system;
}

DumpRun RunDump(int services)
{
    DumpRun run;
    const std::string tv = TvOf(services), stick = tv + "/stick", out = tv + "/out";
    fs::remove_all(stick);
    fs::create_directories(stick);
    fs::create_directories(out);
    std::vector<std::string> argv = {
        KELVO_TV, "run", "--build-dir", KELVO_BUILD_DIR,      "--tv",      tv,   "--stick", stick,
        "--out",  out,   "--fixture",   tv + "/fixture.json", "--timeout", "300"};
    int pipeFd[2];
    if (pipe(pipeFd) != 0)
        return run;
    Clock::time_point start = Clock::now();
    pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        dup2(pipeFd[1], 1);
        dup2(pipeFd[1], 2);
        close(pipeFd[0]);
        close(pipeFd[1]);
        ExecChild(argv);
    }
    close(pipeFd[1]);
    std::string pending;
    char buffer[65536];
    for (;;) {
        ssize_t n = read(pipeFd[0], buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        double at = std::chrono::duration<double>(Clock::now() - start).count();
        pending.append(buffer, static_cast<size_t>(n));
        size_t newline;
        while ((newline = pending.find('\n')) != std::string::npos) {
            run.lines.push_back({at, pending.substr(0, newline)});
            pending.erase(0, newline + 1);
        }
    }
    close(pipeFd[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    run.wall = std::chrono::duration<double>(Clock::now() - start).count();
    run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    ReadUsage(out + "/kelvo-util.usage", run);

    KelvoBenchRows rows;
    if (KelvoBenchSqlite::Read(stick + "/DumpMWDB/kelvoutilInfo.db", rows)) {
        run.rfRows = static_cast<int>(rows.rf.size());
        run.metaRows = static_cast<int>(rows.meta.size());
    }
    return run;
}

// Moment of the first line holding `needle` (and `also`, if given) at or after `from`; -1 when none.
double At(const DumpRun &run, const char *needle, const char *also = nullptr, double from = 0)
{
    for (const auto &line : run.lines)
        if (line.at >= from && line.text.find(needle) != std::string::npos &&
            (also == nullptr || line.text.find(also) != std::string::npos))
            return line.at;
    return -1;
}

void BM_WholeDump(benchmark::State &state)
{
    const int services = static_cast<int>(state.range(0));
    Figures &figures = g_figures[services];
    for (auto _ : state) {
        DumpRun run = RunDump(services);
        state.SetIterationTime(run.wall);
        if (!run.ok) {
            figures.run = run;
            break;
        }
        if (figures.run.cpu <= 0 || run.cpu < figures.run.cpu)
            figures.run = run;
        figures.bestWall = figures.bestWall > 0 ? std::min(figures.bestWall, run.wall) : run.wall;
    }
    const DumpRun &run = figures.run;
    // The milestones: each is printed when its step has ended.
    double started = At(run, "branch: dump");
    double backupFrom = started;
    double backupTo = At(run, "TVS backup into");
    double exportFrom = backupTo;
    double exportTo = At(run, "metadata export:");
    double copyTo = At(run, "copy of the middleware's data to the stick");
    double ended = At(run, "result posted:");
    if (!run.ok || started < 0 || backupTo < 0 || exportTo < 0 || copyTo < 0 || run.rfRows <= 0) {
        state.SkipWithError("the dump did not complete; see its log");
        return;
    }
    figures.backup = backupTo - backupFrom;
    figures.exportTime = exportTo - exportFrom;
    figures.copy = copyTo - exportTo;
    figures.utilSpan = ended - started;
    state.counters["rows"] = run.rfRows + run.metaRows;
    state.counters["cpu_s"] = run.cpu;
    state.counters["peak_rss_kb"] = static_cast<double>(run.peakRssKb);
}

// The same rows, read back from the stick, written by SQLite's prepared bulk insert.
void BM_SqliteBulkInsert(benchmark::State &state)
{
    const int services = static_cast<int>(state.range(0));
    Figures &figures = g_figures[services];
    KelvoBenchRows rows;
    if (!KelvoBenchSqlite::Read(TvOf(services) + "/stick/DumpMWDB/kelvoutilInfo.db", rows)) {
        state.SkipWithError("no dump database on the stick");
        return;
    }
    for (auto _ : state) {
        double seconds = KelvoBenchSqlite::BulkInsert(TvOf(services) + "/opt/bulk.db", rows);
        if (seconds < 0) {
            state.SkipWithError("the bulk insert failed");
            return;
        }
        state.SetIterationTime(seconds);
        if (seconds < figures.bulk)
            figures.bulk = seconds;
    }
    figures.bulkRows = static_cast<int>(rows.Count());
    state.counters["rows"] = figures.bulkRows;
}

// Each size's dump, then the bulk insert of its rows, before the next size.
void Register()
{
    for (int services : kSizes) {
        benchmark::RegisterBenchmark("BM_WholeDump", BM_WholeDump)
            ->Arg(services)
            ->Iterations(kDumpRuns)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("BM_SqliteBulkInsert", BM_SqliteBulkInsert)
            ->Arg(services)
            ->Iterations(5)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

bool Measured(const Figures &f)
{
    int rows = f.run.rfRows + f.run.metaRows;
    return f.run.ok && rows > 0 && f.bulkRows == rows && f.exportTime > 0 && f.bulk < 1e9 && f.run.cpu > 0;
}

void Report(int services, const Figures &f)
{
    std::printf("\nreference TV: %d services\n", services);
    std::printf("rows: programRF %d, programMETA %d\n", f.run.rfRows, f.run.metaRows);
    std::printf(
        "wall time: kelvo-tv run %.3f s (best of %d: %.3f s), kelvo-util from the dump's start to its result %.3f s\n",
        f.run.wall, kDumpRuns, f.bestWall, f.utilSpan);
    std::printf("phases (as the log lines arrive): TVS backup %.1f ms, export %.1f ms, copy %.1f ms\n", f.backup * 1e3,
                f.exportTime * 1e3, f.copy * 1e3);
    std::printf("kelvo-util: CPU %.3f s (user + system, best of %d), peak RSS %ld kB\n", f.run.cpu, kDumpRuns,
                f.run.peakRssKb);
    std::printf("SQLite prepared bulk insert of the same %d rows: %.3f s (best of 5)\n", f.bulkRows, f.bulk);
}

}  // namespace

int main(int argc, char **argv)
{
    if (Exec({"/usr/bin/bwrap", "--unshare-user", "--ro-bind", "/", "/", "/bin/true"}) != 0) {
        std::printf("kelvo-bench-dump: no user namespace for the sandbox here; nothing measured\n");
        return 0;
    }
    std::string pattern = (fs::temp_directory_path() / "kelvo-bench-dump-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        return 1;
    g_work = pattern;
    // The TV generator makes each TV's whole folder tree with its data.
    long long now = static_cast<long long>(std::time(nullptr)) - 5;
    for (int services : kSizes) {
        if (Exec({KELVO_TV_GEN, "--opt", TvOf(services) + "/opt", "--fixture", TvOf(services) + "/fixture.json",
                  "--services", std::to_string(services), "--now", std::to_string(now)}) != 0) {
            std::fprintf(stderr, "kelvo-bench-dump: the TV generator failed\n");
            fs::remove_all(g_work);
            return 1;
        }
    }
    Register();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove_all(g_work);

    bool all = true;
    for (int services : kSizes) {
        Report(services, g_figures[services]);
        all = all && Measured(g_figures[services]);
    }
    if (!all) {
        std::printf("kelvo-bench-dump: a dump did not complete; no ratio\n");
        return 1;
    }
    std::printf("\n");
    const Figures &small = g_figures[kExportSize];
    int smallRows = small.run.rfRows + small.run.metaRows;
    std::printf("RATIO dump_export %.2f\n", (small.exportTime / smallRows) / (small.bulk / smallRows));
    for (int services : kSizes)
        std::printf("RATIO dump_cpu_%d %.2f\n", services, g_figures[services].run.cpu / g_figures[services].bulk);
    const Figures &large = g_figures[kSizes[2]];
    int largeRows = large.run.rfRows + large.run.metaRows;
    std::printf("RATIO dump_cpu_growth %.2f\n", (large.run.cpu / largeRows) / (small.run.cpu / smallRows));
    return 0;
}
