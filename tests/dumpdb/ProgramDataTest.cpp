#include <gtest/gtest.h>

#include "DumpDbTestSupport.h"
#include "FCElementData.h"
#include "FakeDlog.h"
#include "TVServiceAPI.h"
#include "programData.h"

namespace {

std::u16string Repeat(const std::u16string &unit, size_t times)
{
    std::u16string text;
    for (size_t i = 0; i < times; ++i) {
        text += unit;
    }
    return text;
}

TEST(ProgramData, BroadcastFormTakesTheEventsFields)
{
    TCProgramData event = MakeEvent(u"News", u"Today's headlines", 0x667261);
    KelvoUtilProgramData row(&event);
    EXPECT_EQ(row.ServiceId(), 0x1122334455667788ULL);
    EXPECT_EQ(row.EventId(), 4711);
    EXPECT_EQ(row.Starttime(), 1700000000UL);
    EXPECT_EQ(row.Duration(), 3600UL);
    EXPECT_EQ(row.Language(), "fra");
    EXPECT_EQ(row.Title(), "News");
    EXPECT_EQ(row.Description(), "Today's headlines");
    EXPECT_EQ(row.TSID(), 0);
    EXPECT_EQ(row.ONID(), 0);
    EXPECT_EQ(row.ActivityId(), 0);
    EXPECT_EQ(row.ProgramSourceId(), "");
    EXPECT_EQ(row.MetaProgramId(), "");
}

TEST(ProgramData, LanguageIsReadFromTheLow24BitsFirstCharacterHighest)
{
    const struct {
        unsigned int code;
        const char *language;
    } cases[] = {
        {0x656E67, "eng"}, {0x0, ""},        {0xFF656E67, "eng"},  // the top byte is not part of it
        {0x646575, "deu"}, {0x006B6F, ""},   // a zero first character ends it
        {0x6B006F, "k"},   {0x6B6F00, "ko"},
    };
    for (const auto &c : cases) {
        TCProgramData event = MakeEvent(u"x", u"", c.code);
        EXPECT_EQ(KelvoUtilProgramData(&event).Language(), c.language) << std::hex << c.code;
    }
}

// The middleware delivers big-endian UTF-16; anything beyond ASCII shows a wrong byte order or a
// lost surrogate pair at once.
TEST(ProgramData, TextsAreConvertedFromBigEndianUtf16)
{
    const struct {
        std::u16string utf16;
        const char *utf8;
    } cases[] = {
        {u"Tagesschau", "Tagesschau"},
        {u"Fu\u00DFball \u00FCber alles", "Fu\xC3\x9F" "ball \xC3\xBC" "ber alles"},
        {u"\uB274\uC2A4 \u65B0\u95FB", "\xEB\x89\xB4\xEC\x8A\xA4 \xE6\x96\xB0\xE9\x97\xBB"},
        {u"\u0410\u0411 \u0627\u0644", "\xD0\x90\xD0\x91 \xD8\xA7\xD9\x84"},
        {u"Music \U0001F3B5!", "Music \xF0\x9F\x8E\xB5!"},
        {u"\u0100", "\xC4\x80"},  // swapped bytes would read U+0001
    };
    for (const auto &c : cases) {
        TCProgramData event = MakeEvent(c.utf16, c.utf16);
        KelvoUtilProgramData row(&event);
        EXPECT_EQ(row.Title(), c.utf8);
        EXPECT_EQ(row.Description(), c.utf8);
    }
}

TEST(ProgramData, TitleIsCutAfter256UnitsDescriptionIsNot)
{
    const struct {
        size_t units;
        size_t titleChars;
    } cases[] = {{1, 1}, {255, 255}, {256, 256}, {257, 256}, {300, 256}};
    for (const auto &c : cases) {
        TCProgramData event = MakeEvent(Repeat(u"a", c.units), Repeat(u"b", c.units));
        KelvoUtilProgramData row(&event);
        EXPECT_EQ(row.Title(), std::string(c.titleChars, 'a')) << c.units;
        EXPECT_EQ(row.Description(), std::string(c.units, 'b')) << c.units;
    }
}

// 171 three-byte characters fill the 513-byte title buffer to its last byte, two letters and
// 1365 of them the 4097 bytes of a description: no terminator is left, and neither text may be
// read past its buffer.
TEST(ProgramData, FullOutputBuffersStayBounded)
{
    TCProgramData event = MakeEvent(Repeat(u"\u65B0", 256), u"ab" + Repeat(u"\u95FB", 2000));
    KelvoUtilProgramData row(&event);
    std::string title;
    for (int i = 0; i < 171; ++i) {
        title += "\xE6\x96\xB0";
    }
    EXPECT_EQ(row.Title(), title);
    std::string text = "ab";
    for (int i = 0; i < 1365; ++i) {
        text += "\xE9\x97\xBB";
    }
    EXPECT_EQ(row.Description(), text);
}

TEST(ProgramData, BrokenUtf16KeepsWhatWasConvertedBefore)
{
    TCProgramData event = MakeEvent(u"ok\xD800x", u"");  // a lone high surrogate
    FakeDlog::Clear();
    KelvoUtilProgramData row(&event);
    EXPECT_EQ(row.Title(), "ok");
    EXPECT_TRUE(FakeDlog::Contains("iconv failed: "));
}

TEST(ProgramData, LogLinesOfTheConversion)
{
    TCProgramData event = MakeEvent(u"News", u"Long text");
    FakeDlog::Clear();
    KelvoUtilProgramData row(&event);
    EXPECT_EQ(FakeDlog::Messages("kelvo-util"),
              (std::vector<std::string>{"Enter\n", "Title length 4\n", "Title News\n", "Enter\n",
                                        "Description length 9\n"}));

    TCProgramData empty = MakeEvent(u"", u"");
    FakeDlog::Clear();
    KelvoUtilProgramData emptyRow(&empty);
    EXPECT_EQ(emptyRow.Title(), "");
    EXPECT_EQ(emptyRow.Description(), "");
    EXPECT_EQ(FakeDlog::Messages("kelvo-util"), (std::vector<std::string>{"Enter\n", "Enter\n"}));
}

TEST(ProgramData, RemoteFormTakesTheProgrammesFields)
{
    const struct {
        int activity;
        unsigned short stored;
    } cases[] = {{0, 0}, {65535, 65535}, {65536, 0}, {65536 + 7, 7}, {3 * 65536 + 12345, 12345}};
    for (const auto &c : cases) {
        FCRemoteProgram program;
        program.m_activityID = static_cast<eRemoteContentActivity>(c.activity);
        program.m_programSourceId = "src-1";
        program.m_programId = "prog-9";
        program.m_lang = "kor";
        program.m_utcStartTime = 1700003600UL;
        program.m_duration = 1800;
        program.m_title = "Bob's show";
        program.m_shortDesc = "short";
        program.m_desc = "the long description";
        program.m_startTime = "not used";
        KelvoUtilProgramData row(program, 99ULL);
        EXPECT_EQ(row.ActivityId(), c.stored) << c.activity;
        EXPECT_EQ(row.ServiceId(), 99ULL);
        EXPECT_EQ(row.ProgramSourceId(), "src-1");
        EXPECT_EQ(row.MetaProgramId(), "prog-9");
        EXPECT_EQ(row.Language(), "kor");
        EXPECT_EQ(row.Starttime(), 1700003600UL);
        EXPECT_EQ(row.Duration(), 1800UL);
        EXPECT_EQ(row.Title(), "Bob's show");
        EXPECT_EQ(row.Description(), "the long description");
        EXPECT_EQ(row.EventId(), 0);
        EXPECT_EQ(row.TSID(), 0);
        EXPECT_EQ(row.ONID(), 0);
    }
}

}  // namespace
