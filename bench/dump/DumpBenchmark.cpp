// The whole dump of the reference TV scaled to 300 services: the real kelvo-util in the
// simulated TV (tools/kelvo-tv run), timed per phase from the moments its log lines arrive, with
// the peak RSS of the kelvo-util process. The limit is SQLite's own prepared bulk insert of the
// same rows into the same file system, measured in the same run:
//   RATIO dump_export = (export seconds per row) / (bulk insert seconds per row).
#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "SqliteBulkInsert.h"

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {
const int kServices = 300;

struct Line {
    double at;  // seconds since the run started
    std::string text;
};

struct DumpRun {
    bool ok = false;
    double wall = 0;  // the whole `kelvo-tv run`: sandbox, bus, servers and kelvo-util
    std::vector<Line> lines;
    long peakRssKb = 0;
    int rfRows = 0;
    int metaRows = 0;
};

struct Figures {
    DumpRun run;
    double backup = 0, exportTime = 0, copy = 0, utilSpan = 0;
    double bulk = 1e9;
    int bulkRows = 0;
} g_figures;

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

long ReadStatusKb(const std::string &pid, const char *key)
{
    std::ifstream in("/proc/" + pid + "/status");
    std::string line;
    while (std::getline(in, line))
        if (line.rfind(key, 0) == 0)
            return std::atol(line.c_str() + std::strlen(key));
    return -1;
}

bool DescendsFrom(std::string pid, pid_t ancestor)
{
    for (int depth = 0; depth < 32 && pid != "0" && pid != "1"; ++depth) {
        if (pid == std::to_string(ancestor))
            return true;
        long ppid = ReadStatusKb(pid, "PPid:");
        if (ppid < 0)
            return false;
        pid = std::to_string(ppid);
    }
    return false;
}

// The peak RSS so far of the kelvo-util process below `root` (VmHWM only grows).
void SampleRss(pid_t root, long &peak)
{
    for (const auto &entry : fs::directory_iterator("/proc", fs::directory_options::skip_permission_denied)) {
        std::string pid = entry.path().filename().string();
        if (pid.find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::ifstream comm(entry.path() / "comm");
        std::string name;
        if (!std::getline(comm, name) || name != "kelvo-util" || !DescendsFrom(pid, root))
            continue;
        long hwm = ReadStatusKb(pid, "VmHWM:");
        if (hwm > peak)
            peak = hwm;
    }
}

DumpRun RunDump()
{
    DumpRun run;
    const std::string tv = g_work + "/tv", stick = g_work + "/stick", out = g_work + "/out";
    fs::remove_all(stick);
    fs::create_directories(stick);
    fs::create_directories(out);
    std::vector<std::string> argv = {
        KELVO_TV, "run", "--build-dir", KELVO_BUILD_DIR,          "--tv",      tv,   "--stick", stick,
        "--out",  out,   "--fixture",   g_work + "/fixture.json", "--timeout", "300"};
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
    // Sampling walks /proc; it runs beside the reader so that lines are stamped as they come.
    std::atomic<bool> done{false};
    std::thread sampler([&]() {
        while (!done) {
            SampleRss(pid, run.peakRssKb);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
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
    done = true;
    sampler.join();
    run.wall = std::chrono::duration<double>(Clock::now() - start).count();
    run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;

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
    for (auto _ : state) {
        DumpRun run = RunDump();
        state.SetIterationTime(run.wall);
        g_figures.run = run;
    }
    const DumpRun &run = g_figures.run;
    double started = At(run, "Start Dump Kelvo DB");
    double backupFrom = At(run, "UTC Current Time", nullptr, started);
    double backupTo = At(run, "/TVS", "backup");
    double exportFrom = At(run, "Start to Backup ProgramData of RF channels");
    double exportTo = At(run, "End to Backup ProgramData of Meta");
    double copyTo = At(run, "dump result=");
    double ended = At(run, "kelvo-util 666");
    if (!run.ok || started < 0 || backupTo < 0 || exportTo < 0 || copyTo < 0 || run.rfRows <= 0) {
        state.SkipWithError("the dump did not complete; see its log");
        return;
    }
    g_figures.backup = backupTo - backupFrom;
    g_figures.exportTime = exportTo - exportFrom;
    g_figures.copy = copyTo - exportTo;
    g_figures.utilSpan = ended - started;
    state.counters["rows"] = run.rfRows + run.metaRows;
    state.counters["peak_rss_kb"] = static_cast<double>(run.peakRssKb);
}

// The same rows, read back from the stick, written by SQLite's prepared bulk insert.
void BM_SqliteBulkInsert(benchmark::State &state)
{
    KelvoBenchRows rows;
    if (!KelvoBenchSqlite::Read(g_work + "/stick/DumpMWDB/kelvoutilInfo.db", rows)) {
        state.SkipWithError("no dump database on the stick");
        return;
    }
    for (auto _ : state) {
        double seconds = KelvoBenchSqlite::BulkInsert(g_work + "/tv/opt/bulk.db", rows);
        if (seconds < 0) {
            state.SkipWithError("the bulk insert failed");
            return;
        }
        state.SetIterationTime(seconds);
        if (seconds < g_figures.bulk)
            g_figures.bulk = seconds;
    }
    g_figures.bulkRows = static_cast<int>(rows.Count());
    state.counters["rows"] = g_figures.bulkRows;
}

BENCHMARK(BM_WholeDump)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SqliteBulkInsert)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
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
    // The TV generator makes the TV's whole folder tree with its data.
    long long now = static_cast<long long>(std::time(nullptr)) - 5;
    if (Exec({KELVO_TV_GEN, "--opt", g_work + "/tv/opt", "--fixture", g_work + "/fixture.json", "--services",
              std::to_string(kServices), "--now", std::to_string(now)}) != 0) {
        std::fprintf(stderr, "kelvo-bench-dump: the TV generator failed\n");
        fs::remove_all(g_work);
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    const Figures &f = g_figures;
    int rows = f.run.rfRows + f.run.metaRows;
    bool measured = f.run.ok && rows > 0 && f.bulkRows == rows && f.exportTime > 0 && f.bulk < 1e9;
    std::printf("\nreference TV: %d services\n", kServices);
    std::printf("rows: programRF %d, programMETA %d\n", f.run.rfRows, f.run.metaRows);
    std::printf("wall time: kelvo-tv run %.3f s, kelvo-util from \"Start Dump\" to its end %.3f s\n", f.run.wall,
                f.utilSpan);
    std::printf("phases (as the log lines arrive): TVS backup %.1f ms, export %.1f ms, copy %.1f ms\n", f.backup * 1e3,
                f.exportTime * 1e3, f.copy * 1e3);
    std::printf("peak RSS of kelvo-util: %ld kB\n", f.run.peakRssKb);
    std::printf("SQLite prepared bulk insert of the same %d rows: %.3f s (best of 5)\n", f.bulkRows, f.bulk);
    fs::remove_all(g_work);
    if (!measured) {
        std::printf("kelvo-bench-dump: the dump did not complete; no ratio\n");
        return 1;
    }
    std::printf("RATIO dump_export %.2f\n", (f.exportTime / rows) / (f.bulk / rows));
    return 0;
}
