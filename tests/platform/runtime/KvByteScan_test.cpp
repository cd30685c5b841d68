#include "KvByteScan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace kv {
namespace {

/// The offset of the first byte of `Text` from `From` on that is in the set, or the size of the text.
std::size_t Find(std::string_view Values, std::string_view Text, std::size_t From = 0)
{
    const char* const Last = Text.data() + Text.size();
    return static_cast<std::size_t>(TKvByteSet(Values).FindIn(Text.data() + From, Last) - Text.data());
}

std::string RandomText(std::mt19937& Random, std::size_t Size, unsigned Alphabet)
{
    std::string Text(Size, '\0');
    std::ranges::generate(Text, [&] { return static_cast<char>(Random() % Alphabet * 37); });
    return Text;
}

TEST(KvByteScan, FindsNothingInNothing)
{
    EXPECT_EQ(Find(",", ""), 0u);
}

TEST(KvByteScan, FindsTheFirstAtEveryOffset)
{
    for (std::size_t Size = 1; Size < 40; ++Size)
        for (std::size_t Hit = 0; Hit < Size; ++Hit) {
            std::string Text(Size, 'x');
            Text[Hit] = ',';
            Text.back() = ',';
            EXPECT_EQ(Find(",;", Text), Hit) << Size;
        }
}

TEST(KvByteScan, EndsAtTheLastByte)
{
    EXPECT_EQ(Find(",", std::string_view("abcdefgh,", 8)), 8u);
    EXPECT_EQ(Find(",", std::string_view("abc,", 3)), 3u);
}

TEST(KvByteScan, IsNotMisledByNeighbours)
{
    // A zero byte borrows from the one above: 0x01 there must not count as a hit of its own.
    const std::string Text{'\x01', '\x01', '\x01', '\0', '\x01', '\x80', '\xFF', '\0'};
    EXPECT_EQ(Find(std::string_view("\0", 1), Text), 3u);
    EXPECT_EQ(Find(std::string_view("\0", 1), Text, 4), 7u);
    EXPECT_EQ(Find("\x80", Text), 5u);
    EXPECT_EQ(Find("\xFF", Text), 6u);
}

TEST(KvByteScan, ContainsItsValuesOnly)
{
    const TKvByteSet Set(std::string_view("\0\xFF,", 3));
    for (int Byte = 0; Byte < 256; ++Byte)
        EXPECT_EQ(Set.Contains(static_cast<char>(Byte)), Byte == 0 || Byte == 0xFF || Byte == ',') << Byte;
}

TEST(KvByteScan, AgreesWithASearchByteByByte)
{
    std::mt19937 Random(1);
    for (int Round = 0; Round < 20000; ++Round) {
        const auto Values = RandomText(Random, 1 + Random() % 4, 256);
        const auto Text = RandomText(Random, Random() % 64, Round % 2 ? 256 : 12);
        const auto From = Random() % (Text.size() + 1);
        const auto Expected = std::min(Text.find_first_of(Values, From), Text.size());
        ASSERT_EQ(Find(Values, Text, From), Expected) << testing::PrintToString(Text);
    }
}

TEST(KvLowByteSet, ContainsTheBytesUpToItsLimitAndTheOthers)
{
    const TKvLowByteSet Set(' ', "&\xC2");
    for (int Byte = 0; Byte < 256; ++Byte)
        EXPECT_EQ(Set.Contains(static_cast<char>(Byte)), Byte <= ' ' || Byte == '&' || Byte == 0xC2) << Byte;
}

TEST(KvLowByteSet, AgreesWithASearchByteByByte)
{
    std::mt19937 Random(2);
    for (int Round = 0; Round < 20000; ++Round) {
        const TKvLowByteSet Set(static_cast<char>(Random() % 40), RandomText(Random, 1 + Random() % 3, 256));
        const auto Text = RandomText(Random, Random() % 64, Round % 2 ? 256 : 12);
        const char* const Last = Text.data() + Text.size();
        const char* const First = Text.data() + Random() % (Text.size() + 1);
        const auto* const Expected = std::find_if(First, Last, [&Set](char Each) {
            return Set.Contains(Each);
        });
        ASSERT_EQ(Set.FindIn(First, Last), Expected) << testing::PrintToString(Text);
    }
}

TEST(KvByteScan, FindNearAgreesWithASearchByteByByte)
{
    std::mt19937 Random(3);
    for (int Round = 0; Round < 20000; ++Round) {
        const auto Text = RandomText(Random, Random() % 128, Round % 2 ? 256 : 40);
        const char* const Last = Text.data() + Text.size();
        const char* const First = Text.data() + Random() % (Text.size() + 1);
        const char Value = static_cast<char>(Random() % 40 * 37);
        ASSERT_EQ(FindNear(First, Last, Value), std::find(First, Last, Value))
            << testing::PrintToString(Text);
    }
}

} // namespace
} // namespace kv
