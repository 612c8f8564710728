// The dump database when the process is killed while it writes: a forked child inserts rows
// through the helper and reports each one through a pipe; the parent kills it (SIGKILL) once a
// given number of rows is reported, wherever it then is (inserting, committing, closing), and
// reads what is left with the command-line client.
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "DumpDbTestSupport.h"

namespace {

const int kRowsInChild = 20000;
const unsigned int kBatch = KelvoUtilDatabaseHelper::kRowsPerBatch;

// Child: inserts rows "row 0", "row 1", ... and writes one byte per finished insert; after
// `closeAfter` rows (if not 0) it writes 'c' and closes the database.
[[noreturn]] void InsertUntilKilled(const std::string &folder, int report, int closeAfter)
{
    RelocatedDatabaseHelper helper(folder);
    helper.OpenDB();
    for (int i = 0; i < kRowsInChild; ++i) {
        helper.InsertProgramRF(RfRow("row " + std::to_string(i), u"killed somewhere", static_cast<unsigned short>(i)));
        if (write(report, "r", 1) != 1)
            _exit(1);
        if (i + 1 == closeAfter) {
            if (write(report, "c", 1) != 1)
                _exit(1);
            helper.CloseDB();
            break;
        }
    }
    _exit(0);
}

struct KillCase {
    const char *name;
    int killAfterRows;  // rows reported before the kill
    int closeAfter;     // the child closes the database after this many rows (0: never)
};

class DatabaseKill : public ::testing::TestWithParam<KillCase> {};

TEST_P(DatabaseKill, LeavesAnIntactFileWithEveryCommittedRow)
{
    const KillCase &c = GetParam();
    TempFolder temp;
    const std::string folder = temp.Path() + "/data";
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        close(pipeEnds[0]);
        InsertUntilKilled(folder, pipeEnds[1], c.closeAfter);
    }
    close(pipeEnds[1]);
    int reported = 0;
    bool closing = false;
    for (char mark;
         (reported < c.killAfterRows || (c.closeAfter != 0 && !closing)) && read(pipeEnds[0], &mark, 1) == 1;) {
        if (mark == 'c')
            closing = true;
        else
            ++reported;
    }
    kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    close(pipeEnds[0]);
    ASSERT_GE(reported, c.killAfterRows) << "the child stopped early";

    const std::string db = folder + "/kelvoutilInfo.db";
    EXPECT_EQ(QueryRows(db, "PRAGMA integrity_check"), std::vector<std::string>{"ok"});
    // Rows come in order, so the rows present are "row 0" to "row n-1" for some n, which holds
    // at least every batch completed before the kill.
    const std::vector<std::string> rows = QueryRows(db, "SELECT eventId || '|' || title FROM programRF ORDER BY rowid");
    const size_t committed = static_cast<size_t>(c.killAfterRows) / kBatch * kBatch;
    EXPECT_GE(rows.size(), committed);
    for (size_t i = 0; i < rows.size(); ++i)
        ASSERT_EQ(rows[i], std::to_string(i) + "|row " + std::to_string(i));
}

INSTANTIATE_TEST_SUITE_P(
    Points, DatabaseKill,
    ::testing::Values(KillCase{"FirstRow", 1, 0}, KillCase{"EndOfFirstBatch", static_cast<int>(kBatch) - 1, 0},
                      KillCase{"FirstCommit", static_cast<int>(kBatch), 0},
                      KillCase{"AfterFirstCommit", static_cast<int>(kBatch) + 1, 0},
                      KillCase{"MidThirdBatch", static_cast<int>(kBatch) * 5 / 2, 0},
                      KillCase{"FifthCommit", static_cast<int>(kBatch) * 5, 0},
                      KillCase{"LateBatch", static_cast<int>(kBatch) * 9 + 377, 0},
                      KillCase{"WhileClosing", static_cast<int>(kBatch) * 3 + 999, static_cast<int>(kBatch) * 3 + 999}),
    [](const ::testing::TestParamInfo<KillCase> &c) { return c.param.name; });

}  // namespace
