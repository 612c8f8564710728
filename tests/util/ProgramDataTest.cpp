// The row of the dump database, from a broadcast event or a server programme.
#include <gtest/gtest.h>

#include "DumpDbTestSupport.h"
#include "FakeDlog.h"

namespace {

std::string Repeat(const std::string &unit, size_t times)
{
    std::string text;
    while (times-- > 0)
        text += unit;
    return text;
}

TEST(ProgramData, EachFormTakesItsFields)
{
    TCProgramData event = MakeEvent(u"News", u"Today's headlines", 0x667261);
    EXPECT_EQ(Fields(KelvoUtilProgramData(&event)),
              "1234605616436508552|4711|1700000000|3600|fra|0|0|News|Today's headlines|0||");
    // The activity id is kept as its low 16 bits.
    const struct {
        int activity;
        const char *stored;
    } cases[] = {{0, "0"}, {65535, "65535"}, {65536, "0"}, {65536 + 7, "7"}, {3 * 65536 + 12345, "12345"}};
    for (const auto &c : cases)
        EXPECT_EQ(Fields(MetaRow("Bob's show", "the long description", c.activity)),
                  std::string("42|0|1700003600|1800|eng|0|0|Bob's show|the long description|") + c.stored +
                      "|src'1|prog-9");
}

TEST(ProgramData, LanguageIsReadFromTheLow24BitsFirstCharacterHighest)
{
    const struct {
        unsigned int code;
        const char *language;
    } cases[] = {
        {0x656E67, "eng"}, {0x0, ""},        {0xFF656E67, "eng"},  // the top byte is not part of it
        {0x646575, "deu"}, {0x006B6F, ""},                         // a zero first character ends it
        {0x6B006F, "k"},   {0x6B6F00, "ko"},
    };
    for (const auto &c : cases) {
        TCProgramData event = MakeEvent(u"x", u"", c.code);
        EXPECT_EQ(KelvoUtilProgramData(&event).Language(), c.language) << std::hex << c.code;
    }
}

// The middleware delivers big-endian UTF-16; anything beyond ASCII shows a wrong byte order or a
// lost surrogate pair at once. Only the title is cut, after 256 units; 171 three-byte characters
// fill the 513-byte title buffer to its last byte, two letters and 1365 of them the 4097 bytes of
// a description: no terminator is left, and neither text may be read past its buffer.
TEST(ProgramData, TextsAreConvertedFromBigEndianUtf16AndBounded)
{
    const struct {
        std::u16string title, text;
        std::string utf8Title, utf8Text;
    } cases[] = {
        {u"Fu\u00DFball \u00FCber", u"\u0100",
         "Fu\xC3\x9F"
         "ball \xC3\xBC"
         "ber",
         "\xC4\x80"},  // swapped: U+0001
        {u"\uB274\uC2A4 \u65B0\u95FB", u"\u0410\u0411 \u0627\u0644",
         "\xEB\x89\xB4\xEC\x8A\xA4 \xE6\x96\xB0\xE9\x97\xBB", "\xD0\x90\xD0\x91 \xD8\xA7\xD9\x84"},
        {u"Music \U0001F3B5!", u"", "Music \xF0\x9F\x8E\xB5!", ""},
        {std::u16string(255, u'a'), std::u16string(255, u'b'), std::string(255, 'a'), std::string(255, 'b')},
        {std::u16string(256, u'a'), std::u16string(256, u'b'), std::string(256, 'a'), std::string(256, 'b')},
        {std::u16string(257, u'a'), std::u16string(257, u'b'), std::string(256, 'a'), std::string(257, 'b')},
        {std::u16string(300, u'a'), std::u16string(300, u'b'), std::string(256, 'a'), std::string(300, 'b')},
        {std::u16string(256, u'\u65B0'), u"ab" + std::u16string(2000, u'\u95FB'), Repeat("\xE6\x96\xB0", 171),
         "ab" + Repeat("\xE9\x97\xBB", 1365)},
    };
    for (const auto &c : cases) {
        TCProgramData event = MakeEvent(c.title, c.text);
        KelvoUtilProgramData row(&event);
        EXPECT_EQ(row.Title(), c.utf8Title);
        EXPECT_EQ(row.Description(), c.utf8Text);
    }
}

TEST(ProgramData, LogLinesAndBrokenUtf16)
{
    const struct {
        std::u16string title, text;
        std::vector<std::string> logged;
    } cases[] = {
        {u"News", u"Long text", {"Enter\n", "Title length 4\n", "Title News\n", "Enter\n", "Description length 9\n"}},
        {u"", u"", {"Enter\n", "Enter\n"}},
    };
    for (const auto &c : cases) {
        TCProgramData event = MakeEvent(c.title, c.text);
        FakeDlog::Clear();
        KelvoUtilProgramData row(&event);
        EXPECT_EQ(FakeDlog::Messages("kelvo-util"), c.logged);
    }
    TCProgramData event = MakeEvent(u"ok\xD800x", u"");  // a lone high surrogate
    FakeDlog::Clear();
    EXPECT_EQ(KelvoUtilProgramData(&event).Title(), "ok");  // what was converted before stays
    EXPECT_TRUE(FakeDlog::Contains("iconv failed: "));

    // The converter serves one text after another: a text that failed, or ended inside a
    // surrogate pair, leaves nothing behind for the next.
    for (const std::u16string &broken : {std::u16string(u"ok\xD800x"), std::u16string(u"end\xD83D")}) {
        TCProgramData before = MakeEvent(broken, u"");
        KelvoUtilProgramData{&before};
        TCProgramData after = MakeEvent(u"Next \xD83D\xDE00", u"Text");
        KelvoUtilProgramData row(&after);
        EXPECT_EQ(row.Title(), "Next \xF0\x9F\x98\x80");
        EXPECT_EQ(row.Description(), "Text");
    }
}

}  // namespace
