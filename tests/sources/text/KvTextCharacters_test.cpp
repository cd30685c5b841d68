#include "KvTextCharacters.h"

#include <gtest/gtest.h>

#include <string>

namespace kv {

namespace {

std::string Cut(std::string_view Line, std::size_t First, std::size_t Last)
{
    TKvTextCharacters Characters;
    Characters.Split(Line);
    return std::string(Characters.Slice(First, Last));
}

} // namespace

TEST(KvTextCharacters, OfAsciiAreBytes)
{
    EXPECT_EQ(Cut("abcdef", 1, 3), "abc");
    EXPECT_EQ(Cut("abcdef", 4, 4), "d");
    EXPECT_EQ(Cut("abcdef", 5, 99), "ef");
    EXPECT_EQ(Cut("abcdef", 7, 9), "");
    EXPECT_EQ(Cut("abcdef", 4, 3), "");
    EXPECT_EQ(Cut("", 1, 1), "");
}

TEST(KvTextCharacters, CountWhateverTheirBytes)
{
    const auto* const Line = "ab\xC3\xB6"
                             "c\xE6\x97\xA5\xF0\x9F\x98\x80"
                             "d"; // 1, 1, 2, 1, 3, 4 and 1 bytes
    EXPECT_EQ(Cut(Line, 1, 2), "ab");
    EXPECT_EQ(Cut(Line, 2, 3), "b\xC3\xB6");
    EXPECT_EQ(Cut(Line, 3, 3), "\xC3\xB6");
    EXPECT_EQ(Cut(Line, 4, 5), "c\xE6\x97\xA5");
    EXPECT_EQ(Cut(Line, 6, 7), "\xF0\x9F\x98\x80"
                               "d");
    EXPECT_EQ(Cut(Line, 7, 9), "d");
    EXPECT_EQ(Cut(Line, 8, 9), "");
}

TEST(KvTextCharacters, AByteOfNoCharacterCountsAsOne)
{
    EXPECT_EQ(Cut("\xE4"
                  "b\xC3",
                  1, 1),
              "\xE4");
    EXPECT_EQ(Cut("\xE4"
                  "b\xC3",
                  2, 2),
              "b");
    EXPECT_EQ(Cut("\xE4"
                  "b\xC3",
                  3, 3),
              "\xC3");
}

TEST(KvTextCharacters, ASecondLineReplacesTheFirst)
{
    TKvTextCharacters Characters;
    Characters.Split("\xC3\xB6\xC3\xB6");
    Characters.Split("ab");
    EXPECT_EQ(Characters.Slice(1, 2), "ab");
}

} // namespace kv
