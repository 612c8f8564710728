// 100 000 programme rows, half broadcast and half server metadata, written by the dump database
// and, as the limit, by prepared and bound inserts of the same rows in one transaction into the
// same schema. Prints both rates and "RATIO dumpdb <our time per row / the limit's>".
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <sqlite3.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "FCElementData.h"
#include "SqliteBulkInsert.h"
#include "TVServiceAPI.h"
#include "databaseHelper.h"

namespace {

const int kRows = 100000;

class BenchDatabaseHelper : public KelvoUtilDatabaseHelper {
public:
    explicit BenchDatabaseHelper(const std::string &folder)
    {
        m_dbFolder = folder + "/";
        m_dbPath = m_dbFolder + "kelvoutilInfo.db";
    }
};

struct Rows {
    std::vector<KelvoUtilProgramData> rf;
    std::vector<KelvoUtilProgramData> meta;
};

const std::u16string kTitles[] = {
    u"Evening News",
    u"Tagesschau \u2013 Nachrichten",
    u"\uB274\uC2A4\uB370\uC2A4\uD06C",
    u"Le Journal de 20h",
    u"\u65B0\u95FB\u8054\u64AD",
    u"Bob's Kitchen",
    u"100%% Football",
    u"\u0627\u0644\u0623\u062E\u0628\u0627\u0631",
    u"Grey's Anatomy S12E04",
    u"Fu\u00DFball: Bundesliga live",
};
const std::u16string kTexts[] = {
    u"The day's headlines from home and abroad, with weather and sport.",
    u"Aktuelle Berichte aus aller Welt. Anschlie\u00DFend das Wetter f\u00FCr morgen.",
    u"\uC624\uB298\uC758 \uC8FC\uC694 \uB274\uC2A4\uC640 \uB0A0\uC528\uB97C \uC804\uD574 \uB4DC\uB9BD\uB2C8\uB2E4.",
    u"Tout ce qu'il faut savoir sur l'actualit\u00E9 du jour, avec 100%% d'info.",
    u"Chef Bob's guests cook a three-course dinner in 30 minutes; the audience votes for the best plate.",
};

std::string Utf8(const std::u16string &text)
{
    TCProgramData event;
    event.SetTitle(text);
    return KelvoUtilProgramData(&event).Title();
}

Rows MakeRows()
{
    Rows rows;
    rows.rf.reserve(kRows / 2);
    rows.meta.reserve(kRows / 2);
    for (int i = 0; i < kRows / 2; ++i) {
        TCProgramData event;
        event.SetServiceId(0x0001000200030000ULL + static_cast<unsigned long long>(i % 300));
        event.SetEventId(static_cast<unsigned short>(i));
        event.SetStartTime(1700000000U + static_cast<unsigned int>(i) * 60U);
        event.SetDuration(1800U + static_cast<unsigned int>(i % 7) * 300U);
        event.SetLanguage(i % 3 == 0 ? 0x656E67 : (i % 3 == 1 ? 0x646575 : 0x6B6F72));
        event.SetTitle(kTitles[i % 10]);
        event.SetExtendedText(kTexts[i % 5]);
        rows.rf.emplace_back(&event);

        FCRemoteProgram program;
        program.m_activityID = static_cast<eRemoteContentActivity>(i % 2);
        program.m_programSourceId = "src" + std::to_string(i % 500);
        program.m_programId = "EP" + std::to_string(1000000 + i);
        program.m_lang = i % 2 ? "eng" : "fra";
        program.m_utcStartTime = 1700000000UL + static_cast<unsigned long>(i) * 90UL;
        program.m_duration = 3600;
        program.m_title = Utf8(kTitles[(i + 3) % 10]);
        program.m_desc = Utf8(kTexts[(i + 2) % 5]);
        rows.meta.emplace_back(program, 0x0001000200040000ULL + static_cast<unsigned long long>(i % 300));
    }
    return rows;
}

const Rows &TheRows()
{
    static const Rows rows = MakeRows();
    return rows;
}

std::string Folder()
{
    static std::string folder;
    if (folder.empty()) {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-bench-dumpdb-XXXXXX").string();
        if (mkdtemp(&pattern[0]) == nullptr) {
            std::perror("mkdtemp");
            std::exit(1);
        }
        folder = pattern;
    }
    return folder;
}

void BM_DumpDatabase(benchmark::State &state)
{
    const Rows &rows = TheRows();
    BenchDatabaseHelper helper(Folder() + "/ours");
    for (auto _ : state) {
        helper.OpenDB();
        for (int i = 0; i < kRows / 2; ++i) {
            helper.InsertProgramRF(rows.rf[i]);
            helper.InsertProgramMeta(rows.meta[i]);
        }
        helper.CloseDB();
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}

KelvoBenchCell Integer(long long value)
{
    return {SQLITE_INTEGER, value, 0, ""};
}
KelvoBenchCell Text(const std::string &value)
{
    return {SQLITE_TEXT, 0, 0, value};
}

// The same rows as cells of the two tables, for SQLite's own bulk insert.
const KelvoBenchRows &TheCells()
{
    static const KelvoBenchRows cells = [] {
        KelvoBenchRows c;
        for (const KelvoUtilProgramData &r : TheRows().rf)
            c.rf.push_back({Integer(static_cast<long long>(r.ServiceId())), Integer(r.EventId()),
                            Integer(static_cast<long long>(r.Starttime())),
                            Integer(static_cast<long long>(r.Duration())), Text(r.Language()), Integer(r.TSID()),
                            Integer(r.ONID()), Text(r.Title()), Text(r.Description())});
        for (const KelvoUtilProgramData &m : TheRows().meta)
            c.meta.push_back({Integer(static_cast<long long>(m.ServiceId())), Integer(m.ActivityId()),
                              Text(m.ProgramSourceId()), Text(m.MetaProgramId()),
                              Integer(static_cast<long long>(m.Starttime())),
                              Integer(static_cast<long long>(m.Duration())), Text(m.Language()), Text(m.Title()),
                              Text(m.Description())});
        return c;
    }();
    return cells;
}

void BM_SqliteLimit(benchmark::State &state)
{
    const KelvoBenchRows &cells = TheCells();
    for (auto _ : state)
        if (KelvoBenchSqlite::BulkInsert(Folder() + "/limit.db", cells) < 0)
            state.SkipWithError("the bulk insert failed");
    state.SetItemsProcessed(state.iterations() * kRows);
}

// Keeps the seconds per iteration of each benchmark for the summary.
class SummaryReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> secondsPerIteration;  // by the name it was registered with

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
                secondsPerIteration[run.run_name.function_name] =
                    run.real_accumulated_time / static_cast<double>(run.iterations);
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

int main(int argc, char **argv)
{
    benchmark::RegisterBenchmark("DumpDatabase/100000rows", BM_DumpDatabase)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(3);
    benchmark::RegisterBenchmark("SqliteLimit/100000rows", BM_SqliteLimit)
        ->Unit(benchmark::kMillisecond)
        ->Iterations(3);
    benchmark::Initialize(&argc, argv);

    // Building and writing rows logs through dlog, which on this host writes lines to standard
    // error; they go to /dev/null meanwhile so that the report stays readable.
    std::fflush(stderr);
    const int savedStderr = dup(STDERR_FILENO);
    const int devNull = open("/dev/null", O_WRONLY);
    dup2(devNull, STDERR_FILENO);
    TheCells();
    SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    dup2(savedStderr, STDERR_FILENO);
    close(devNull);
    close(savedStderr);
    std::filesystem::remove_all(Folder());

    const double ours = reporter.secondsPerIteration["DumpDatabase/100000rows"] / kRows;
    const double limit = reporter.secondsPerIteration["SqliteLimit/100000rows"] / kRows;
    if (ours <= 0 || limit <= 0) {
        std::printf("RATIO dumpdb unavailable\n");
        return 1;
    }
    std::printf("dumpdb: %.0f rows/s\n", 1.0 / ours);
    std::printf("sqlite prepared insert, one transaction: %.0f rows/s\n", 1.0 / limit);
    std::printf("RATIO dumpdb %.2f\n", ours / limit);
    return 0;
}
