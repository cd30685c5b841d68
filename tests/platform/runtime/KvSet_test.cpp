#include "KvSet.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

enum TLetter { ltA, ltB, ltLast = 31 };
using TLetters = TSet<TLetter>;

TEST(KvSet, HoldsWhatWasIncluded)
{
    TLetters Letters{ltB};
    Letters.Include(ltLast);
    EXPECT_FALSE(Letters.Contains(ltA));
    EXPECT_TRUE(Letters.Contains(ltB));
    EXPECT_TRUE(Letters.Contains(ltLast));
    Letters.Exclude(ltB);
    EXPECT_EQ(Letters, TLetters{ltLast});
}

TEST(KvSet, IsEmptyAtFirst)
{
    EXPECT_TRUE(TLetters().IsEmpty());
    EXPECT_FALSE(TLetters{ltA}.IsEmpty());
}

TEST(KvSet, BitNStandsForOrdinalN)
{
    EXPECT_EQ((TLetters{ltA, ltLast}).Bits(), 0x80000001u);
    EXPECT_EQ(TLetters::FromBits(2), TLetters{ltB});
}

} // namespace
} // namespace kv
