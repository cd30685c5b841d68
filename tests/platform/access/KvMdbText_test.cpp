#include "KvMdbText.h"

#include <gtest/gtest.h>

#include <string>

#include "KvBytes.h"
#include "KvException.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

std::string Read(std::string_view Bytes)
{
    std::string Storage = "left over";
    return std::string(ReadUnicodeText(Bytes, Storage));
}

std::string MessageOf(std::string_view Bytes)
{
    try {
        Read(Bytes);
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return "";
}

TEST(KvMdbText, PlainTextIsUtf16)
{
    EXPECT_EQ(Read(""), "");
    EXPECT_EQ(Read(TBytes().Text(u"Łódź 漢 𝄞"sv).Str()), "Łódź 漢 𝄞");
}

TEST(KvMdbText, CompressedTextIsLatin1)
{
    EXPECT_EQ(Read("\xFF\xFE"), "");
    EXPECT_EQ(Read("\xFF\xFEK\xF6ln"), "Köln");
}

TEST(KvMdbText, AZeroByteSwitchesBetweenTheForms)
{
    EXPECT_EQ(Read("\xFF\xFE" "ab\0\x22\x6F\0cd"sv), "ab漢cd");
    EXPECT_EQ(Read("\xFF\xFE\0\x22\x6F\x57\x5B"sv), "漢字");
    EXPECT_EQ(Read("\xFF\xFE" "ab\0"sv), "ab") << "nothing has to follow";
}

TEST(KvMdbText, ALetterAmongPairsStaysAPair)
{
    EXPECT_EQ(Read("\xFF\xFE\0\x22\x6F" "A\0\x57\x5B\0z"sv), "漢A字z");
}

TEST(KvMdbText, HalfACharacterIsAnError)
{
    EXPECT_EQ(MessageOf("a\0b"sv), "its text ends within a character");
    EXPECT_EQ(MessageOf("\xFF\xFE" "a\0\x22"sv), "its text ends within a character");
}

} // namespace

} // namespace kv
