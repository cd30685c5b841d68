#include "KvxlsText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>


using namespace std::string_view_literals;

namespace kv {

namespace {

class KvxlsText : public testing::Test
{
protected:
    ~KvxlsText() override { SetAnsiCodePage("UTF-8"); }

    static std::string Wide(std::string_view Bytes)
    {
        std::string Text;
        AppendWide(Bytes, Text);
        return Text;
    }
    static std::string Compressed(std::string_view Bytes)
    {
        std::string Text;
        AppendCompressed(Bytes, Text);
        return Text;
    }
    static std::string Converted(unsigned CodePage, std::string_view Bytes)
    {
        TKvxlsByteText Text;
        Text.SetCodePage(static_cast<std::uint16_t>(CodePage));
        return std::string(Text.Convert(Bytes));
    }
};

} // namespace

TEST_F(KvxlsText, WideTextLosesNothing)
{
    EXPECT_EQ(Wide(""), "");
    EXPECT_EQ(Wide("a\0\xE9\0\x16\x04\x3D\xD8\0\xDE"sv), "a\xC3\xA9\xD0\x96\xF0\x9F\x98\x80");
    EXPECT_EQ(Wide("\x3D\xD8"), "\xF4\x8D\xA0\xBD"); // half a pair: U+10D83D
}

TEST_F(KvxlsText, CompressedTextIsUtf16WithoutHighBytes)
{
    EXPECT_EQ(Compressed("Caf\xE9 \x80"), "Caf\xC3\xA9 \xC2\x80");
}

TEST_F(KvxlsText, AnotherPageTakesItsCharactersOfWideText)
{
    SetAnsiCodePage("windows-1251");
    EXPECT_EQ(Wide("a\0\x16\x04"sv), "a\xC6");
    std::string Text = "<";
    EXPECT_TRUE(AppendWide("a\0"sv, Text));
    EXPECT_FALSE(AppendWide("\xE9\0\x16\x04\x3D\xD8\0\xDE"sv, Text));
    EXPECT_EQ(Text, "<a?\xC6?");
}

TEST_F(KvxlsText, CompressedTextPassesAsTextOfAnotherPage)
{
    SetAnsiCodePage("windows-1251");
    EXPECT_EQ(Compressed("Caf\xE9"), "Caf\xE9");
}

TEST_F(KvxlsText, NamesCodePages)
{
    EXPECT_EQ(CodePageName(367), "ASCII");
    EXPECT_EQ(CodePageName(437), "437");
    EXPECT_EQ(CodePageName(1361), "1361");
    EXPECT_EQ(CodePageName(10000), "MACINTOSH");
    EXPECT_EQ(CodePageName(10029), "MAC-CENTRALEUROPE");
    EXPECT_EQ(CodePageName(32768), "MACINTOSH");
    EXPECT_EQ(CodePageName(32769), "windows-1252");
    EXPECT_EQ(CodePageName(1200), "");              // UTF-16, which says nothing of 8-bit text
    EXPECT_EQ(CodePageName(0), "");
}

TEST_F(KvxlsText, EveryNamedCodePageConverts)
{
    int Pages = 0;
    for (unsigned Number = 0; Number <= 0xFFFF; ++Number)
        if (const auto Name = CodePageName(static_cast<std::uint16_t>(Number)); !Name.empty()) {
            EXPECT_EQ(CodePageToUtf8("A", Name), "A") << Number;
            ++Pages;
        }
    EXPECT_EQ(Pages, 39);
}

TEST_F(KvxlsText, BytesPassWithoutACodePage)
{
    TKvxlsByteText Text;
    EXPECT_EQ(Text.Convert("Gr\xFC\xDF"), "Gr\xFC\xDF");
    Text.SetCodePage(1234);                         // unknown
    EXPECT_EQ(Text.Convert("Gr\xFC\xDF"), "Gr\xFC\xDF");
}

TEST_F(KvxlsText, BytesAreConvertedFromTheCodePage)
{
    EXPECT_EQ(Converted(1252, "Gr\xFC\xDF"), "Gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(Converted(850, "Gr\x81\xE1"), "Gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(Converted(10000, "Gr\x9F\xA7"), "Gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(Converted(932, "\x93\xFA"), "\xE6\x97\xA5");
}

TEST_F(KvxlsText, AsciiPassesWithoutACopy)
{
    TKvxlsByteText Text;
    Text.SetCodePage(1252);
    constexpr auto Ascii = "plain"sv;
    EXPECT_EQ(Text.Convert(Ascii).data(), Ascii.data());
}

TEST_F(KvxlsText, BytesThatThePageLacksPass)
{
    EXPECT_EQ(Converted(1253, "\xFF"), "\xFF");
}

TEST_F(KvxlsText, ACharacterThatTheProcessPageLacksIsReplacedAndToldOf)
{
    SetAnsiCodePage("windows-1252");
    TKvxlsByteText Text;
    Text.SetCodePage(1251);
    EXPECT_EQ(Text.Convert("a\xC6\x85"), "a?\x85"); // dots are in both
    EXPECT_TRUE(Text.HasReplaced());
    EXPECT_EQ(Text.Convert("a"), "a");
    EXPECT_FALSE(Text.HasReplaced());
}

TEST_F(KvxlsText, OldTextMayBeWideWhereItIsNotAscii)
{
    EXPECT_EQ(Converted(1200, "plain text!\r\n\t"), "plain text!\r\n\t");
    EXPECT_EQ(Converted(1200, "G\0r\0\xFC\0"sv), "Gr\xC3\xBC");
    EXPECT_EQ(Converted(1200, "\x16\x04\x43\x04"), "\xD0\x96\xD1\x83");
    EXPECT_EQ(Converted(1200, "\x16\x04\x43"), "\x16\x04\x43"); // half a character is none
    EXPECT_EQ(Converted(1252, "G\0r\0"sv), "G\0r\0"sv);
}

} // namespace kv
