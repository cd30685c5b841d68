#include "KvUtf8.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "KvCodePage.h"

namespace kv {
namespace {

TEST(KvUtf8, TellsAscii)
{
    EXPECT_TRUE(IsAscii(""));
    EXPECT_TRUE(IsAscii("nineteen characters\x7F"));
    EXPECT_FALSE(IsAscii("\x80"));
    for (std::size_t I = 0; I < 20; ++I) {
        std::string Text(20, 'a');
        Text[I] = '\xFF';
        EXPECT_FALSE(IsAscii(Text)) << I;
        EXPECT_EQ(AsciiSize(Text), I);
    }
}

TEST(KvUtf8, TellsWhatIsValid)
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
    for (const auto Text : Rows) {
        EXPECT_TRUE(IsValidUtf8(Text)) << testing::PrintToString(Text);
        EXPECT_EQ(ValidUtf8Size(Text), Text.size()) << testing::PrintToString(Text);
    }
}

TEST(KvUtf8, TellsWhatIsNot)
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

TEST(KvUtf8, MeasuresTheValidFront)
{
    EXPECT_EQ(ValidUtf8Size("caf\xC3\xA9\xFFmore"), 5u);
    EXPECT_EQ(ValidUtf8Size("\xC3"), 0u);
    EXPECT_EQ(ValidUtf8Size("twelve bytes\xE2\x82"), 12u);
}

TEST(KvUtf8, MeasuresTheFirstCharacter)
{
    EXPECT_EQ(Utf8SequenceSize(""), 0u);
    EXPECT_EQ(Utf8SequenceSize("ab"), 1u);
    EXPECT_EQ(Utf8SequenceSize("\xC3\xA9x"), 2u);
    EXPECT_EQ(Utf8SequenceSize("\xE2\x82\xACx"), 3u);
    EXPECT_EQ(Utf8SequenceSize("\xF0\x9F\x98\x80x"), 4u);
    EXPECT_EQ(Utf8SequenceSize("\xE2\x82"), 0u);
    EXPECT_EQ(Utf8SequenceSize("\xA9"), 0u);
}

TEST(KvUtf8, AppendsLatin1)
{
    std::string Text = "x";
    AppendLatin1AsUtf8("", Text);
    AppendLatin1AsUtf8("caf\xE9, \x80\xFF and some more ASCII", Text);
    EXPECT_EQ(Text, "xcaf\xC3\xA9, \xC2\x80\xC3\xBF and some more ASCII");
    Text.clear();
    std::string AllBytes;
    for (int Byte = 0; Byte < 256; ++Byte)
        AllBytes += static_cast<char>(Byte);
    AppendLatin1AsUtf8(AllBytes, Text);
    EXPECT_EQ(Text, CodePageToUtf8(AllBytes, "ISO-8859-1"));
}

} // namespace
} // namespace kv
