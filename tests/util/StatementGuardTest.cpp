// The statement guard before SQLite's formatter, checked against the formatter itself: text
// without an argument-reading directive formats exactly as it would without the guard, no
// guarded text makes the formatter read an argument, and whatever a title or description holds,
// its INSERT stores at most its own row with both values inside their quotes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <random>
#include <sqlite3.h>
#include <unistd.h>

#include "DumpDbTestSupport.h"
#include "FakeDlog.h"
#include "dbQueryHelper.h"

namespace {

using Texts = std::vector<std::string>;

// sqlite3_mprintf of a format that must read no argument.
std::string Format(const std::string &format)
{
    char *formatted = sqlite3_mprintf(format.c_str());
    std::string text = formatted != nullptr ? formatted : "<null>";
    sqlite3_free(formatted);
    return text;
}

// Arguments for a format that might read some: every pointer is a distinct writable text (so
// "%n" has somewhere to write), every double a distinct value. Two sets format alike only
// when the format reads none of them.
struct Arguments {
    explicit Arguments(char mark)
    {
        for (int i = 0; i < 8; ++i)
            snprintf(texts[i], sizeof texts[i], "argument-%c%d", mark, i);
        for (int i = 0; i < 8; ++i)
            numbers[i] = mark * 10.0 + i;
    }
    char texts[8][32];
    double numbers[8];
};

std::string FormatWith(const std::string &format, Arguments &a)
{
    char *formatted = sqlite3_mprintf(format.c_str(), a.texts[0], a.texts[1], a.texts[2], a.texts[3], a.texts[4],
                                      a.texts[5], a.texts[6], a.texts[7], a.numbers[0], a.numbers[1], a.numbers[2],
                                      a.numbers[3], a.numbers[4], a.numbers[5], a.numbers[6], a.numbers[7]);
    std::string text = formatted != nullptr ? formatted : "<null>";
    sqlite3_free(formatted);
    return text;
}

size_t Quotes(const std::string &text)
{
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\''));
}

struct GuardCase {
    const char *name;
    const char *text;
    const char *guarded;
};

template <typename Case>
std::string CaseName(const ::testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

// Benign text, and every '%' that reads nothing: left exactly as it is, for the formatter.
const GuardCase kLeftAsTheyAre[] = {
    {"Apostrophe", "Bob's", "Bob's"},
    {"DoubledPercent", "100%% Fun", "100%% Fun"},
    {"SpaceFlagBeforeNoConversion", "100% Fun", "100% Fun"},  // 'F' is none: the formatter stops
    {"PercentBeforeTheQuote", "Evil%", "Evil%"},
    {"LonePercent", "%", "%"},
    {"OnlyDoubledPercent", "%%", "%%"},
    {"QuotedPercent", "'%'", "'%'"},
    {"TrailingLength", "%l", "%l"},
    {"TrailingFlag", "%-", "%-"},
    {"TrailingSpace", "% ", "% "},
    {"Positional", "%1$s", "%1$s"},  // '$' stops the formatter before any argument is read
    {"PaddedPercents", "%5%|%-3%|%.2%", "%5%|%-3%|%.2%"},
    {"WidestPaddingLeft", "%9999%", "%9999%"},
    {"FlagAfterWidth", "%5-d", "%5-d"},
    {"ThreeLengthLetters", "%llls", "%llls"},
    {"LengthsOfOtherFormatters", "%hd%jd%Ld%td", "%hd%jd%Ld%td"},
    {"ApostropheFlag", "%'d", "%'d"},
};

// Directives that read an argument, or pad up to a gigabyte: taken out.
const GuardCase kTakenOut[] = {
    {"SpaceFlagBeforeN", "Save 20% now", "Save 20ow"},
    {"String", "%s", ""},
    {"Count", "%n", ""},
    {"StarWidth", "%*d", ""},
    {"StarPrecision", "%.*s", ""},
    {"LongLong", "%lld", ""},
    {"Escaped", "%q", ""},
    {"Freed", "%z", ""},
    {"Numbers", "a%db%ic%ud%xe%Xf%og%ch%pi", "abcdefghi"},
    {"Others", "%Q%w%f%e%E%g%G%r%T%S", ""},
    {"EveryFlagWidthPrecisionLength", "%!,+ #0-10.3lld|%ls|%.5s", "||"},
    {"StarredPercent", "%*%|%.*%", "|"},
    {"HugePadding", "%10000%|%99999999999%", "|"},
    // A '*' before a character that is no conversion: the read goes, the character stays.
    {"StarBeforeTheQuote", "%*'", "'"},
    {"FlagsStarsLengthBeforeTheQuote", "%-*.*l'x", "'x"},
    {"TwoStars", "%**s", "*s"},
    {"TrailingStar", "%*", ""},
};

class LeftAsTheyAre : public ::testing::TestWithParam<GuardCase> {};
class TakenOut : public ::testing::TestWithParam<GuardCase> {};

TEST_P(LeftAsTheyAre, AreNotChanged)
{
    EXPECT_EQ(KelvoUtilStatementGuard::Apply(GetParam().text), GetParam().guarded);
}

TEST_P(LeftAsTheyAre, FormatAsWithoutTheGuard)
{
    EXPECT_EQ(Format(KelvoUtilStatementGuard::Apply(GetParam().text)), Format(GetParam().text));
}

TEST_P(TakenOut, AreRemovedWhole)
{
    EXPECT_EQ(KelvoUtilStatementGuard::Apply(GetParam().text), GetParam().guarded);
}

TEST_P(TakenOut, LeaveNothingThatReadsAnArgument)
{
    const std::string guarded = KelvoUtilStatementGuard::Apply(GetParam().text);
    Arguments first('A'), second('B');
    EXPECT_EQ(FormatWith(guarded, first), FormatWith(guarded, second));
}

INSTANTIATE_TEST_SUITE_P(StatementGuard, LeftAsTheyAre, ::testing::ValuesIn(kLeftAsTheyAre), CaseName<GuardCase>);
INSTANTIATE_TEST_SUITE_P(StatementGuard, TakenOut, ::testing::ValuesIn(kTakenOut), CaseName<GuardCase>);

TEST(StatementGuard, StopsAtTheFirstNulAsTheFormatterDoes)
{
    EXPECT_EQ(KelvoUtilStatementGuard::Apply(std::string("a%\0%s", 5)), "a%");
}

// Random texts of the characters that matter. Fixed seeds: a failure reproduces.
std::string RandomText(std::mt19937 &random, const std::string &alphabet)
{
    std::uniform_int_distribution<size_t> length(1, 14), pick(0, alphabet.size() - 1);
    std::string text;
    for (size_t n = length(random); n > 0; --n)
        text += alphabet[pick(random)];
    return text;
}

TEST(StatementGuardProperty, NoGuardedTextReadsAnArgumentOrLosesAQuote)
{
    std::mt19937 random(20261123);
    const std::string alphabet = "%%%%%%*.-+ #!0,159llsdnzqQwcpfgxXTSr'F$\"a)";
    for (int i = 0; i < 20000; ++i) {
        const std::string text = RandomText(random, alphabet);
        const std::string guarded = KelvoUtilStatementGuard::Apply(text);
        Arguments first('A'), second('B');
        ASSERT_EQ(FormatWith(guarded, first), FormatWith(guarded, second)) << text;
        ASSERT_EQ(Quotes(guarded), Quotes(text)) << text;
        ASSERT_EQ(KelvoUtilStatementGuard::Apply(guarded), guarded) << text;
    }
}

// With no conversion letter and no '*', nothing can read an argument: the guard must not change
// what the formatter makes of the text. The one exception, a '%' padded to 10000 columns or more,
// needs five digits in a row, which are left out.
TEST(StatementGuardProperty, FormatsLikeTheFormatterOverRandomTextsWithoutConversions)
{
    std::mt19937 random(1123);
    const std::string alphabet = "%%%%%-+ #!0,.159lF$'a";
    for (int i = 0; i < 20000; ++i) {
        const std::string text = RandomText(random, alphabet);
        if (std::search_n(text.begin(), text.end(), 5, 0, [](char c, int) { return c >= '0' && c <= '9'; }) !=
            text.end())
            continue;
        ASSERT_EQ(Format(KelvoUtilStatementGuard::Apply(text)), Format(text)) << text;
    }
}

// ---- through the real database ----------------------------------------------------------------

Texts Entries(const std::string &folder)
{
    Texts names;
    if (DIR *dir = opendir(folder.c_str())) {
        while (dirent *entry = readdir(dir))
            if (entry->d_name[0] != '.')
                names.push_back(entry->d_name);
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// What a value becomes in the table: its apostrophes made double quotes, then formatted as
// the statement is, but on its own.
std::string Stored(const std::string &value)
{
    std::string quoted = KelvoUtilDbQueryHelper().ReplaceApostropheForQuery(value);
    std::string formatted = Format(KelvoUtilStatementGuard::Apply(quoted));
    return formatted.substr(1, formatted.size() - 2);
}

class HostileRow : public ::testing::Test {
protected:
    // Inserts a benign row, the hostile one into both tables, and another benign row.
    void InsertBetweenBenignRows(const std::string &title, const std::string &description)
    {
        m_helper.OpenDB();
        m_helper.InsertProgramRF(RfRow("before"));
        m_helper.InsertProgramMeta(MetaRow("before"));
        m_helper.InsertProgramRF(RfRow(title, std::u16string(description.begin(), description.end())));
        m_helper.InsertProgramMeta(MetaRow(title, description));
        m_helper.InsertProgramRF(RfRow("after"));
        m_helper.InsertProgramMeta(MetaRow("after"));
        m_helper.CloseDB();
    }

    // Title and description of the rows that are neither "before" nor "after".
    Texts Crafted(const std::string &table)
    {
        return QueryRows(m_helper.DbPath(), "SELECT title || '|' || descript FROM " + table +
                                                " WHERE title NOT IN ('before', 'after') ORDER BY rowid");
    }

    // Nothing but the crafted row itself may differ from a benign run.
    void ExpectNothingElseTouched()
    {
        EXPECT_EQ(QueryRows(m_helper.DbPath(), "SELECT name FROM sqlite_master ORDER BY name"),
                  (Texts{"programMETA", "programRF"}));
        for (const char *table : {"programRF", "programMETA"})
            EXPECT_EQ(QueryRows(m_helper.DbPath(), std::string("SELECT title FROM ") + table +
                                                       " WHERE title IN ('before', 'after') ORDER BY rowid"),
                      (Texts{"before", "after"}))
                << table;
        for (const char *table : {"programRF", "programMETA"})
            EXPECT_LE(std::stoi(QueryRows(m_helper.DbPath(), std::string("SELECT count(*) FROM ") + table).at(0)), 3)
                << table;
        EXPECT_EQ(Entries(m_temp.Path() + "/data"), Texts{"kelvoutilInfo.db"});
        EXPECT_EQ(Entries(m_temp.Path()), Texts{"data"});
    }

    TempFolder m_temp;
    RelocatedDatabaseHelper m_helper{m_temp.Path() + "/data"};
};

struct RowCase {
    const char *name;
    const char *title;
    const char *description;
    const char *stored;  // "title|description" in both tables, or nullptr when the row fails
};

const RowCase kRowCases[] = {
    {"QuoteEatingPercentThenDelete", "Evil%", ", 0); DELETE FROM programRF; --", nullptr},
    {"ApostropheAndLonePercent", "Bob's", "%", nullptr},
    {"PercentThenAttach", "%", "); ATTACH DATABASE 'hostile.db' AS h; CREATE TABLE h.t(x); --", nullptr},
    {"StarBeforeTheQuoteThenDrop", "x%*", "'); DROP TABLE programMETA; --", "x|\"); DROP TABLE programMETA; --"},
    {"ArgumentReadersRemoved", "%s%n%*d!", "%lld%q%z%T%.*s", "!|"},
    {"DoubledPercentStaysOne", "100%% Fun", "Save 20%% now", "100% Fun|Save 20% now"},
    {"SpaceFlagMakesADirective", "Save 20% now", "plain", "Save 20ow|plain"},
    {"PaddedPercent", "%5%", "%%", "    %|%"},
    {"HugePadding", "%999999999%", "x", "|x"},
    {"QuotedSemicolons", "'; DELETE FROM programRF; '", "\"", "\"; DELETE FROM programRF; \"|\""},
};

// Runs in the temporary folder, where a relative ATTACH would leave its file.
class HostileRowTable : public HostileRow, public ::testing::WithParamInterface<RowCase> {
protected:
    void SetUp() override
    {
        ASSERT_NE(getcwd(m_previous, sizeof m_previous), nullptr);
        ASSERT_EQ(chdir(m_temp.Path().c_str()), 0);
    }
    void TearDown() override { EXPECT_EQ(chdir(m_previous), 0); }
    char m_previous[4096] = {};
};

TEST_P(HostileRowTable, StoresItsOwnRowOrNothing)
{
    const RowCase &c = GetParam();
    FakeDlog::Clear();
    InsertBetweenBenignRows(c.title, c.description);
    const Texts expected = c.stored != nullptr ? Texts{c.stored} : Texts{};
    EXPECT_EQ(Crafted("programRF"), expected);
    EXPECT_EQ(Crafted("programMETA"), expected);
    EXPECT_EQ(LoggedFailures({"Insert error"}).size(), c.stored != nullptr ? 0u : 2u);
    ExpectNothingElseTouched();
}

INSTANTIATE_TEST_SUITE_P(Attacks, HostileRowTable, ::testing::ValuesIn(kRowCases), CaseName<RowCase>);

// Random titles and descriptions made of directives and SQL: each row is stored with both
// values inside their quotes, or not at all, and touches nothing else.
TEST_F(HostileRow, RandomTextsStoreAtMostTheirOwnRow)
{
    std::mt19937 random(4242);
    const Texts pieces = {
        "%", "%%", "%s", "%n", "%*", "%.*", "%l", "%5", "'", ")", ",", "; --", " ", "%-", "DELETE FROM programRF",
        "0", "x"};
    std::uniform_int_distribution<size_t> count(0, 6), pick(0, pieces.size() - 1);
    auto text = [&] {
        std::string t;
        for (size_t n = count(random); n > 0; --n)
            t += pieces[pick(random)];
        return t;
    };
    for (int i = 0; i < 40; ++i) {
        const std::string title = text(), description = text();
        SCOPED_TRACE(title + " | " + description);
        InsertBetweenBenignRows(title, description);
        const Texts rf = Crafted("programRF");
        ASSERT_LE(rf.size(), 1u);
        if (!rf.empty()) {
            EXPECT_EQ(rf[0], Stored(title) + "|" + Stored(description));
        }
        EXPECT_EQ(Crafted("programMETA"), rf);
        ExpectNothingElseTouched();
    }
}

}  // namespace
