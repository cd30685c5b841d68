#include "KvCodePage.h"

#include <gtest/gtest.h>

#include <string>

#include "KvException.h"
#include "KvSettingsGuard.h"
#include "KvUtf8.h"

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

TEST_F(KvCodePage, KnowsPagesThatIconvLacks)
{
    EXPECT_EQ(CodePageToUtf8("P\xA9\xA1li\xA8 \x91lu\x9Fou\x87k\x98 k\x96\xA4 \xAD\xC9", "895"),
              "Příliš žluťoučký kůň §╔");
    EXPECT_EQ(CodePageToUtf8("Za\xA7\xA2\x92\x8D g\x91\x9El\x86 ja\xA6\xA4 \x8F\x90\x9C\xC9", "Mazovia"),
              "Zażółć gęślą jaźń ĄĘŁ╔");
    EXPECT_EQ(CodePageToUtf8("\xA8\x9F\xEE\xA0\xEF \xC9\xFB", "720"), "\u0630\u0627\u0649\u0628\u064A ╔√");
    EXPECT_EQ(CodePageToUtf8("\xA1\xDB\xE9\xDC \xE7\xF7 \x9C", "mac-greek"), "Γέιή γς €");
    EXPECT_EQ(CodePageToUtf8("\xDD\xDC\xDF\xDE\xDB\xDA", "10081"), "ıİşŞğĞ");
    EXPECT_EQ(MessageOf<EConvertError>([] { CodePageToUtf8("\x80", "cp720"); }),
              "Text is not valid in code page 'cp720'")
        << "a byte that stands for nothing there";
    SetAnsiCodePage("kamenicky");
    EXPECT_EQ(Utf8ToAnsi("Příliš"), "P\xA9\xA1li\xA8") << "and back";
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

TEST_F(KvCodePage, CountsTextsThatAreTakenAsLegacyText)
{
    std::string Buffer;
    const auto Before = LegacyTextCount();
    AnsiToUtf8("K\xC3\xB6ln", Buffer);
    EXPECT_EQ(LegacyTextCount(), Before);
    AnsiToUtf8("K\xF6ln", Buffer);
    EXPECT_EQ(LegacyTextCount(), Before + 1);
    SetAnsiCodePage("windows-1252");
    AnsiToUtf8("K\xF6ln", Buffer);
    EXPECT_EQ(LegacyTextCount(), Before + 1) << "it is text of the page that was said";
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
