#include "KvUtf16.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "KvCodePage.h"
#include "KvException.h"
#include "KvSettingsGuard.h"
#include "KvUtf8.h"

namespace kv {
namespace {

TEST(KvUtf16, EveryCharacterBecomesValidUtf8)
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
        ASSERT_TRUE(IsValidUtf8(Utf16ToUtf8(Units)));
        ASSERT_EQ(Utf16ToUtf8(Units), CodePageToUtf8(Bytes, "UTF-16LE")) << static_cast<std::uint32_t>(Point);
    }
}

TEST(KvUtf16, RefusesUnpairedSurrogates)
{
    for (const auto* const Text :
         {u"\xD83D", u"\xDE00", u"a\xD83D", u"\xD83Dx", u"\xDE00\xD83D", u"\xD83D\xD83D\xDE00"})
        EXPECT_EQ(MessageOf<EConvertError>([&] { Utf16ToUtf8(Text); }),
                  "Text is not valid in code page 'UTF-16'");
}

TEST(KvUtf16, AppendsTheBytesOfAFile)
{
    std::string Text = "x";
    AppendUtf16AsUtf8(std::string_view("a\0\xE9\0\x16\x04\x3D\xD8\0\xDE" "b\0c", 13), Text);
    EXPECT_EQ(Text, "xa\xC3\xA9\xD0\x96\xF0\x9F\x98\x80" "b");
}

TEST(KvUtf16, AnUnpairedSurrogateBecomesAPrivateUseCharacter)
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

} // namespace
} // namespace kv
