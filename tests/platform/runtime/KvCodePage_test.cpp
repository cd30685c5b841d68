#include "KvCodePage.h"

#include <gtest/gtest.h>

#include <string>

#include "KvException.h"
#include "KvSettingsGuard.h"

namespace kv {
namespace {

class KvCodePage : public testing::Test
{
protected:
    ~KvCodePage() override
    {
        SetAnsiCodePage("UTF-8");
        SetOemCodePage("437");
        SetLegacyCodePage("windows-1252");
    }

    std::string ToUtf8(std::string_view Text)
    {
        std::string Buffer;
        return std::string(AnsiToUtf8(Text, Buffer));
    }

    static std::string AllBytes()
    {
        std::string Bytes;
        for (int Byte = 0; Byte < 256; ++Byte)
            Bytes += static_cast<char>(Byte);
        return Bytes;
    }
};

TEST_F(KvCodePage, StartsWithUtf8)
{
    EXPECT_EQ(AnsiCodePage(), "UTF-8");
    EXPECT_EQ(OemCodePage(), "437");
    EXPECT_EQ(LegacyCodePage(), "windows-1252");
}

TEST_F(KvCodePage, RefusesUnknownPages)
{
    for (const auto* const Name : {"", "no such page", "99999", "437//TRANSLIT", "UTF-8//IGNORE", "/"}) {
        const auto Message = "Unknown code page '" + std::string(Name) + "'";
        EXPECT_EQ(MessageOf<EConvertError>([&] { SetAnsiCodePage(Name); }), Message);
        EXPECT_EQ(MessageOf<EConvertError>([&] { SetOemCodePage(Name); }), Message);
        EXPECT_EQ(MessageOf<EConvertError>([&] { SetLegacyCodePage(Name); }), Message);
        EXPECT_EQ(MessageOf<EConvertError>([&] { CodePageToUtf8("a", Name); }), Message);
    }
    EXPECT_EQ(AnsiCodePage(), "UTF-8");
}

TEST_F(KvCodePage, KnowsPagesByNameAndNumber)
{
    for (const auto* const Name :
         {"437", "850", "1252", "windows-1252", "CP1252", "iso-8859-15", "utf8", "65001", "932", "KOI8-R"})
    {
        SetAnsiCodePage(Name);
        EXPECT_EQ(AnsiCodePage(), Name);
    }
}

TEST_F(KvCodePage, TellsValidUtf8)
{
    const std::string_view Rows[] = {
        {},
        {"\0", 1},
        "plain text of more than eight bytes",
        "\x7F",
        "\xC2\x80",
        "\xDF\xBF",
        "\xE0\xA0\x80",
        "\xED\x9F\xBF",
        "\xEE\x80\x80",
        "\xEF\xBF\xBF",
        "\xF0\x90\x80\x80",
        "\xF4\x8F\xBF\xBF",
        "eight by\xC3\xA9te ascii run, then one",
    };
    for (const auto Text : Rows)
        EXPECT_TRUE(IsValidUtf8(Text)) << testing::PrintToString(Text);
}

TEST_F(KvCodePage, TellsInvalidUtf8)
{
    const std::pair<const char*, const char*> Rows[] = {
        {"lone continuation", "\x80"},
        {"last continuation", "abcdefgh\xBF"},
        {"overlong, two bytes", "\xC0\x80"},
        {"overlong, two bytes, last", "\xC1\xBF"},
        {"overlong, three bytes", "\xE0\x9F\xBF"},
        {"overlong, four bytes", "\xF0\x8F\xBF\xBF"},
        {"first surrogate", "\xED\xA0\x80"},
        {"last surrogate", "\xED\xBF\xBF"},
        {"past the last character", "\xF4\x90\x80\x80"},
        {"lead past the last", "\xF5\x80\x80\x80"},
        {"five bytes", "\xF8\x88\x80\x80\x80"},
        {"no lead", "\xFF"},
        {"two bytes cut short", "\xC3"},
        {"three bytes cut short", "\xE2\x82"},
        {"four bytes cut short", "\xF0\x9F\x98"},
        {"continuation missing", "\xC3(abcdefgh"},
        {"third byte no continuation", "\xE2\x82("},
        {"fourth byte no continuation", "\xF0\x9F\x98("},
    };
    for (const auto& [Name, Text] : Rows)
        EXPECT_FALSE(IsValidUtf8(Text)) << Name;
}

TEST_F(KvCodePage, EveryCharacterOfUtf16BecomesValidUtf8)
{
    for (char32_t Point = 1; Point <= 0x10FFFF; Point += Point < 0x900 ? 1 : 251) {
        if (Point >= 0xD800 && Point <= 0xDFFF)
            continue;
        std::u16string Units;
        if (Point >= 0x10000) {
            Units += static_cast<char16_t>(0xD800 + ((Point - 0x10000) >> 10));
            Units += static_cast<char16_t>(0xDC00 + ((Point - 0x10000) & 0x3FF));
        } else {
            Units += static_cast<char16_t>(Point);
        }
        const auto Bytes = std::string(reinterpret_cast<const char*>(Units.data()), 2 * Units.size());
        ASSERT_TRUE(IsValidUtf8(Utf16ToAnsi(Units)));
        ASSERT_EQ(Utf16ToAnsi(Units), CodePageToUtf8(Bytes, "UTF-16LE")) << static_cast<std::uint32_t>(Point);
    }
}

TEST_F(KvCodePage, RefusesUnpairedSurrogates)
{
    for (const auto* const Text :
         {u"\xD83D", u"\xDE00", u"a\xD83D", u"\xD83Dx", u"\xDE00\xD83D", u"\xD83D\xD83D\xDE00"})
        EXPECT_EQ(MessageOf<EConvertError>([&] { Utf16ToAnsi(Text); }), "Text is not valid in code page 'UTF-16'");
}

TEST_F(KvCodePage, ConvertsUtf16ToTheAnsiPage)
{
    EXPECT_EQ(Utf16ToAnsi(u""), "");
    EXPECT_EQ(Utf16ToAnsi(u"caf\u00E9 \U0001F600"), "caf\xC3\xA9 \xF0\x9F\x98\x80");
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(Utf16ToAnsi(u"caf\u00E9 \u20AC"), "caf\xE9 \x80");
    EXPECT_EQ(MessageOf<EConvertError>([] { Utf16ToAnsi(u"\u0416"); }),
              "'\xD0\x96' has a character that does not exist in code page 'windows-1252'");
}

TEST_F(KvCodePage, TellsWhetherTheAnsiPageIsUtf8)
{
    EXPECT_TRUE(AnsiIsUtf8());
    SetAnsiCodePage("windows-1252");
    EXPECT_FALSE(AnsiIsUtf8());
    SetAnsiCodePage("65001");
    EXPECT_TRUE(AnsiIsUtf8());
}

TEST_F(KvCodePage, AppendsLatin1AsUtf8)
{
    std::string Text = "x";
    AppendLatin1AsUtf8("", Text);
    AppendLatin1AsUtf8("caf\xE9, \x80\xFF and some more ASCII", Text);
    EXPECT_EQ(Text, "xcaf\xC3\xA9, \xC2\x80\xC3\xBF and some more ASCII");
    Text.clear();
    AppendLatin1AsUtf8(AllBytes(), Text);
    EXPECT_EQ(Text, CodePageToUtf8(AllBytes(), "ISO-8859-1"));
}

TEST_F(KvCodePage, AppendsUtf16AsUtf8)
{
    std::string Text = "x";
    AppendUtf16AsUtf8(std::string_view("a\0\xE9\0\x16\x04\x3D\xD8\0\xDE" "b\0c", 13), Text);
    EXPECT_EQ(Text, "xa\xC3\xA9\xD0\x96\xF0\x9F\x98\x80" "b");
}

TEST_F(KvCodePage, AnUnpairedSurrogateBecomesAPrivateUseCharacter)
{
    const auto Utf8Of = [](std::string_view Bytes) {
        std::string Text;
        AppendUtf16AsUtf8(Bytes, Text);
        return Text;
    };
    EXPECT_EQ(Utf8Of("\x3D\xD8"), "\xF4\x8D\xA0\xBD");                    // U+10D83D
    EXPECT_EQ(Utf8Of({"\0\xDE", 2}), "\xF4\x8D\xB8\x80");                 // U+10DE00
    EXPECT_EQ(Utf8Of({"\x3D\xD8x\0", 4}), "\xF4\x8D\xA0\xBDx");
    EXPECT_EQ(Utf8Of({"\0\xDE\x3D\xD8\0\xDE", 6}), "\xF4\x8D\xB8\x80\xF0\x9F\x98\x80");
    EXPECT_TRUE(IsValidUtf8(Utf8Of({"\xFF\xDB\xFF\xDF\xFF\xDF", 6})));
}

TEST_F(KvCodePage, ConvertsOemToTheAnsiPage)
{
    EXPECT_EQ(OemToAnsi("\x81 \xE1 \xC4"), "\xC3\xBC \xC3\x9F \xE2\x94\x80");
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(OemToAnsi("\x81 \xE1"), "\xFC \xDF");
    EXPECT_EQ(MessageOf<EConvertError>([] { OemToAnsi("\xC4"); }),
              "'\xE2\x94\x80' has a character that does not exist in code page 'windows-1252'");
    SetOemCodePage("windows-1252");
    EXPECT_EQ(OemToAnsi("\x81\xE1"), "\x81\xE1") << "the same page on both sides";
}

TEST_F(KvCodePage, RefusesUndefinedOemBytes)
{
    SetOemCodePage("857");
    EXPECT_EQ(MessageOf<EConvertError>([] { OemToAnsi("a\xE7"); }), "Text is not valid in code page '857'");
}

TEST_F(KvCodePage, ValidUtf8PassesWithoutACopy)
{
    const std::string Text = "caf\xC3\xA9";
    std::string Buffer = "unchanged";
    EXPECT_EQ(AnsiToUtf8(Text, Buffer).data(), Text.data());
    EXPECT_EQ(Buffer, "unchanged");
}

TEST_F(KvCodePage, AsciiPassesWithoutACopy)
{
    SetAnsiCodePage("windows-1252");
    const std::string Text = "plain text of more than eight bytes";
    std::string Buffer;
    EXPECT_EQ(AnsiToUtf8(Text, Buffer).data(), Text.data());
}

TEST_F(KvCodePage, InvalidUtf8IsTakenAsLegacyText)
{
    EXPECT_EQ(ToUtf8("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(ToUtf8("\x80 \xC3\xA9 \xFF"), "\xE2\x82\xAC \xC3\x83\xC2\xA9 \xC3\xBF");
    SetLegacyCodePage("1251");
    EXPECT_EQ(ToUtf8("\xC6"), "\xD0\x96");
}

TEST_F(KvCodePage, UndefinedBytesBecomeControlAndPrivateCharacters)
{
    EXPECT_EQ(ToUtf8("\x81\x9D"), "\xC2\x81\xC2\x9D");
    SetLegacyCodePage("1253");
    EXPECT_EQ(ToUtf8("\xAA\xFF"), "\xEF\x9E\xAA\xEF\x9F\xBF");
    SetLegacyCodePage("UTF-8");
    EXPECT_EQ(ToUtf8("a\x80\xC3\xA9\xFF"), "a\xC2\x80\xC3\xA9\xEF\x9F\xBF");
    SetLegacyCodePage("932");
    EXPECT_EQ(ToUtf8("\x83\x41\x83"), "\xE3\x82\xA2\xC2\x83");
}

TEST_F(KvCodePage, EveryByteOfASingleBytePageReadsBack)
{
    for (const auto* const Name :
         {"windows-1250", "1251", "1252", "1253", "1254", "1255", "1256", "1257", "437", "850", "852", "857",
          "866", "iso-8859-1", "iso-8859-15", "KOI8-R", "874"})
    {
        SetAnsiCodePage(Name);
        const auto Utf8 = ToUtf8(AllBytes());
        EXPECT_TRUE(IsValidUtf8(Utf8)) << Name;
        EXPECT_EQ(Utf8ToAnsi(Utf8), AllBytes()) << Name;
    }
}

TEST_F(KvCodePage, MultiBytePagesReadBack)
{
    const std::string Utf8 = "ASCII \xE4\xB8\x80\xE4\xB8\xAD";
    for (const auto* const Name : {"932", "EUC-JP", "GB18030", "BIG5"}) {
        SetAnsiCodePage(Name);
        const auto Text = Utf8ToAnsi(Utf8);
        EXPECT_NE(Text, Utf8) << Name;
        EXPECT_EQ(ToUtf8(Text), Utf8) << Name;
    }
}

TEST_F(KvCodePage, LongTextOfMultiBytePagesReadsBack)
{
    std::string Utf8;
    for (int I = 0; I < 3000; ++I)
        Utf8 += I % 3 ? "\xE3\x82\xA2" : "a";
    SetAnsiCodePage("932");
    EXPECT_EQ(ToUtf8(Utf8ToAnsi(Utf8)), Utf8);
}

TEST_F(KvCodePage, PagesThatCombineCharactersKeepTheLastOne)
{
    EXPECT_EQ(CodePageToUtf8("ba", "1258"), "ba");
    EXPECT_EQ(CodePageToUtf8("\xE1", "1258"), "\xC3\xA1");
    EXPECT_EQ(CodePageToUtf8("\xE5\xEC", "1258"), "\xC3\xA5\xCC\x81");
}

TEST_F(KvCodePage, ConvertsUtf8ToTheAnsiPage)
{
    EXPECT_EQ(Utf8ToAnsi("caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(Utf8ToAnsi("\xFF"), "\xFF") << "nothing to convert";
    SetAnsiCodePage("windows-1252");
    EXPECT_EQ(Utf8ToAnsi("caf\xC3\xA9"), "caf\xE9");
    EXPECT_EQ(MessageOf<EConvertError>([] { Utf8ToAnsi("\xD0\x96"); }),
              "'\xD0\x96' has a character that does not exist in code page 'windows-1252'");
    EXPECT_EQ(MessageOf<EConvertError>([] { Utf8ToAnsi("\xFF"); }), "Text is not valid in code page 'UTF-8'");
    SetAnsiCodePage("932");
    EXPECT_THROW(Utf8ToAnsi("\xF0\x9F\x98\x80"), EConvertError);
}

TEST_F(KvCodePage, ConvertsNamedPagesToUtf8)
{
    EXPECT_EQ(CodePageToUtf8("\x81", "437"), "\xC3\xBC");
    EXPECT_EQ(CodePageToUtf8("\xE9", "iso-8859-1"), "\xC3\xA9");
    EXPECT_EQ(CodePageToUtf8("\xC3\xA9", "UTF-8"), "\xC3\xA9");
    EXPECT_EQ(CodePageToUtf8("", "932"), "");
    for (const auto& [Text, Page] : {std::pair("\x81", "windows-1252"), {"\xFF", "UTF-8"}, {"\x83", "932"}})
        EXPECT_EQ(MessageOf<EConvertError>(
                      [&, Name = std::string(Page), Bytes = Text] { CodePageToUtf8(Bytes, Name); }),
                  "Text is not valid in code page '" + std::string(Page) + "'");
}

} // namespace
} // namespace kv
