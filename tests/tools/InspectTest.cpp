// kelvo-inspect's judgements on what a dump database gives back: which service ids it kept
// exactly, where a schedule has gaps and overlaps, and which text any reader can take. The
// whole tool on real dumps and damaged files is in tests/integration/inspect.sh.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "InspectDump.h"
#include "InspectReport.h"

namespace {
using EKind = KelvoInspectServiceId::EKind;

struct RealCase {
    const char *name;
    double stored;
    EKind kind;
    unsigned long long value;
    unsigned long long spread;
    bool allOnes;
};

class InspectRealServiceId : public testing::TestWithParam<RealCase> {};

TEST_P(InspectRealServiceId, KindNearestIdAndSpread)
{
    const RealCase &c = GetParam();
    KelvoInspectServiceId id = KelvoInspectServiceId::FromReal(c.stored);
    EXPECT_EQ(id.kind, c.kind);
    EXPECT_EQ(id.value, c.value);
    EXPECT_EQ(id.spread, c.spread);
    EXPECT_EQ(id.allOnes, c.allOnes);
}

INSTANTIATE_TEST_SUITE_P(
    Stored, InspectRealServiceId,
    testing::Values(RealCase{"SmallWholeNumber", 12345.0, EKind::kExact, 12345, 0, false},
                    RealCase{"LastExactDouble", 9007199254740991.0, EKind::kExact, 9007199254740991ull, 0, false},
                    RealCase{"TwoTo53", 9007199254740992.0, EKind::kInexact, 9007199254740992ull, 1, false},
                    RealCase{"TwoTo63", 9223372036854775808.0, EKind::kInexact, 9223372036854775808ull, 1024, false},
                    RealCase{"VirtualChannel", 10381113850534676480.0, EKind::kInexact, 10381113850534676480ull, 1024,
                             false},
                    RealCase{"AllOnes", 18446744073709551616.0, EKind::kInexact, 18446744073709551615ull, 1024, true},
                    RealCase{"BeyondTwoTo64", 36893488147419103232.0, EKind::kNotAnId, 0, 0, false},
                    RealCase{"Fraction", 1.5, EKind::kNotAnId, 0, 0, false},
                    RealCase{"Negative", -2.0, EKind::kNotAnId, 0, 0, false},
                    RealCase{"NotANumber", std::nan(""), EKind::kNotAnId, 0, 0, false},
                    RealCase{"Infinity", HUGE_VAL, EKind::kNotAnId, 0, 0, false}),
    [](const testing::TestParamInfo<RealCase> &c) { return std::string(c.param.name); });

TEST(InspectServiceId, IntegersAreExactAndANegativeOneIsTheAllOnesPattern)
{
    KelvoInspectServiceId id = KelvoInspectServiceId::FromInteger(1153203425467392001LL);
    EXPECT_EQ(id.kind, EKind::kExact);
    EXPECT_EQ(id.value, 1153203425467392001ull);
    EXPECT_FALSE(id.allOnes);
    EXPECT_TRUE(KelvoInspectServiceId::FromInteger(-1).allOnes);
    EXPECT_EQ(KelvoInspectServiceId::FromText("abc").kind, EKind::kNotAnId);
}

KelvoInspectProgramme Row(long long start, long long duration, const std::string &source = "")
{
    KelvoInspectProgramme row;
    row.service = KelvoInspectServiceId::FromInteger(7);
    row.source = source;
    row.timed = true;
    row.start = start;
    row.duration = duration;
    return row;
}

std::string Stretches(const std::vector<KelvoInspectStretch> &stretches)
{
    std::string text;
    for (const KelvoInspectStretch &s : stretches)
        text += std::to_string(s.from) + "-" + std::to_string(s.to) + " ";
    return text;
}

struct ScheduleCase {
    const char *name;
    std::vector<KelvoInspectProgramme> rows;
    const char *gaps;
    const char *overlaps;
};

class InspectSchedule : public testing::TestWithParam<ScheduleCase> {};

TEST_P(InspectSchedule, GapsAndOverlaps)
{
    const ScheduleCase &c = GetParam();
    KelvoInspectTable table = KelvoInspectAnalysis::SummarizeTable("programRF", c.rows, false);
    ASSERT_EQ(table.schedules.size(), 1u);
    EXPECT_EQ(Stretches(table.schedules[0].gaps), c.gaps);
    EXPECT_EQ(Stretches(table.schedules[0].overlaps), c.overlaps);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, InspectSchedule,
    testing::Values(
        ScheduleCase{"BackToBack", {Row(0, 100), Row(100, 50), Row(150, 10)}, "", ""},
        ScheduleCase{"OutOfOrder", {Row(150, 10), Row(0, 100), Row(100, 50)}, "", ""},
        ScheduleCase{"Gap", {Row(0, 100), Row(130, 10)}, "100-130 ", ""},
        ScheduleCase{"SameStartTwice", {Row(0, 100), Row(0, 100)}, "", "0-100 "},
        // A long programme covers two short ones: both overlap it, no gap between them.
        ScheduleCase{"CoveredByALongOne", {Row(0, 1000), Row(100, 100), Row(300, 100)}, "", "100-200 300-400 "},
        ScheduleCase{"GapAfterALongOne", {Row(0, 1000), Row(100, 100), Row(1200, 10)}, "1000-1200 ", "100-200 "}),
    [](const testing::TestParamInfo<ScheduleCase> &c) { return std::string(c.param.name); });

TEST(InspectTable, SourcesWithoutAServiceAreSchedulesOfTheirOwnAndNoService)
{
    std::vector<KelvoInspectProgramme> rows = {Row(0, 100, "a"), Row(0, 100, "b"), Row(50, 10, "a")};
    for (KelvoInspectProgramme &row : rows)
        row.service = KelvoInspectServiceId::FromReal(18446744073709551616.0);
    rows.push_back(Row(0, 100, "c"));  // service 7
    KelvoInspectTable table = KelvoInspectAnalysis::SummarizeTable("programMETA", rows, true);
    EXPECT_EQ(table.services, 1u);
    ASSERT_EQ(table.schedules.size(), 3u);
    size_t overlapping = 0;
    for (const KelvoInspectSchedule &schedule : table.schedules)
        overlapping += schedule.overlaps.size();
    EXPECT_EQ(overlapping, 1u);  // a's two rows; a and b at the same time are no overlap
}

struct TextCase {
    const char *name;
    std::string text;
    std::string clean;  // Clean(text, true)
    size_t utf16;
};

class InspectText : public testing::TestWithParam<TextCase> {};

TEST_P(InspectText, CleanAndUtf16Units)
{
    const TextCase &c = GetParam();
    EXPECT_EQ(KelvoInspectText::Clean(c.text, true), c.clean);
    EXPECT_EQ(KelvoInspectAnalysis::Utf16Units(c.text), c.utf16);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, InspectText,
    testing::Values(TextCase{"Plain", "Evening News", "Evening News", 12},
                    TextCase{"OutsideTheBasicPlane", "Music \xF0\x9D\x84\x9E Hall", "Music \xF0\x9D\x84\x9E Hall", 13},
                    TextCase{"LineBreakKept", "a\nb\tc", "a\nb\tc", 5},
                    TextCase{"ControlCharacters", std::string("a\x01\x1B[31m\x7F", 8), "a??[31m?", 8},
                    TextCase{"C1Control", "a\xC2\x85z", "a?z", 3},
                    TextCase{"ReplacementCharacter", "\xEF\xBF\xBD", "?", 1},
                    TextCase{"StrayContinuation", "\x80z", "?z", 2}, TextCase{"CutSequence", "\xE3\x81", "??", 2},
                    TextCase{"Overlong", "\xC0\xAF", "??", 2}, TextCase{"EncodedSurrogate", "\xED\xA0\x80", "???", 3},
                    TextCase{"BeyondUnicode", "\xF4\x90\x80\x80", "????", 4}),
    [](const testing::TestParamInfo<TextCase> &c) { return std::string(c.param.name); });

TEST(InspectXmltv, EscapesMarkupAndLabelsChannelIds)
{
    EXPECT_EQ(KelvoInspectXmltv::Escape("Tom & \"Jerry\" <live>\r"), "Tom &amp; &quot;Jerry&quot; &lt;live&gt;&#13;");
    EXPECT_EQ(KelvoInspectXmltv::Label("10756"), "10756");
    EXPECT_EQ(KelvoInspectXmltv::Label("a.b"), "h612e62");
    EXPECT_EQ(KelvoInspectXmltv::Label(""), "h");
    EXPECT_EQ(KelvoInspectXmltv::Time(1800000000), "20270115080000 +0000");
}
}  // namespace
