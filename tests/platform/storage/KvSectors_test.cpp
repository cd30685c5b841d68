#include "KvSectors.h"

#include <gtest/gtest.h>

#include <string>

namespace kv {

namespace {

/// Sectors of four bytes: "aaaa", "bbbb", ...
TKvSectors FourByteSectors(std::string_view Bytes, std::vector<std::uint32_t> Next)
{
    return {.Bytes = Bytes, .SectorSize = 4, .Next = std::move(Next)};
}

constexpr std::string_view FourSectors = "aaaabbbbccccdddd";

std::string Text(const TKvSectors& Sectors, std::uint32_t First, std::uint64_t Size = TKvChainBytes::ToTheEnd)
{
    return std::string(TKvChainBytes(Sectors, First, Size).View());
}

std::string Fault(const TKvSectors& Sectors, std::uint32_t First,
                  std::uint64_t Size = TKvChainBytes::ToTheEnd)
{
    return TKvChainBytes(Sectors, First, Size).Fault();
}

} // namespace

TEST(KvSectors, AChainOfNoSectorsHasNoBytes)
{
    const auto Sectors = FourByteSectors(FourSectors, {});
    EXPECT_EQ(Text(Sectors, EndOfChain), "");
    EXPECT_EQ(Fault(Sectors, EndOfChain), "");
    EXPECT_EQ(Fault(Sectors, 77, 0), "");           // where nothing begins is of no interest
}

TEST(KvSectors, SectorsThatFollowEachOtherAreNotCopied)
{
    const auto Sectors = FourByteSectors(FourSectors, {1, 2, EndOfChain, FreeSector});
    const TKvChainBytes Chain(Sectors, 0, TKvChainBytes::ToTheEnd);
    EXPECT_EQ(Chain.View(), "aaaabbbbcccc");
    EXPECT_EQ(Chain.View().data(), FourSectors.data());
}

TEST(KvSectors, ScatteredSectorsBecomeOnePiece)
{
    const auto Sectors = FourByteSectors(FourSectors, {EndOfChain, 0, 3, 1});
    EXPECT_EQ(Text(Sectors, 2), "ccccddddbbbbaaaa");
    EXPECT_EQ(Fault(Sectors, 2), "");
}

TEST(KvSectors, ASizeEndsWithinASector)
{
    const auto Sectors = FourByteSectors(FourSectors, {EndOfChain, 0, 3, 1});
    EXPECT_EQ(Text(Sectors, 2, 9), "ccccddddb");
    EXPECT_EQ(Text(Sectors, 2, 16), "ccccddddbbbbaaaa");
    EXPECT_EQ(Fault(Sectors, 2, 16), "");
}

TEST(KvSectors, SectorsPastTheSizeDoNotMatter)
{
    const auto Sectors = FourByteSectors(FourSectors, {1, 1, FreeSector, FreeSector});
    EXPECT_EQ(Text(Sectors, 0, 8), "aaaabbbb");
    EXPECT_EQ(Fault(Sectors, 0, 8), "");
}

TEST(KvSectors, TheLastSectorMayBeShort)
{
    const auto Sectors = FourByteSectors("aaaabb", {1, EndOfChain});
    EXPECT_EQ(Sectors.Count(), 2u);
    EXPECT_EQ(Sectors.Sector(1), "bb");
    EXPECT_EQ(Sectors.Sector(2), "");
    EXPECT_EQ(Text(Sectors, 0, 6), "aaaabb");
    EXPECT_EQ(Fault(Sectors, 0, 6), "");
    EXPECT_EQ(Text(Sectors, 0, 8), "aaaabb");
    EXPECT_EQ(Fault(Sectors, 0, 8), "the file ends in sector 1");
}

TEST(KvSectors, ABrokenChainGivesWhatComesBefore)
{
    struct TRow
    {
        std::vector<std::uint32_t> Next;
        std::string Text, Fault;
    };
    const TRow Rows[] = {
        {{1, EndOfChain, 0, 0}, "aaaabbbb", "its chain of sectors ends"},
        {{1, FreeSector, 0, 0}, "aaaabbbb", "its chain of sectors breaks off after sector 1"},
        {{1}, "aaaabbbb", "its chain of sectors breaks off after sector 1"},
        {{1, 4, 0, 0}, "aaaabbbb", "its chain of sectors leads to sector 4, which is not there"},
        {{1, 0xFFFFFFFD, 0, 0}, "aaaabbbb",
         "its chain of sectors leads to sector 4294967293, which is not there"},
        {{0, 0, 0, 0}, "aaaa", "its chain of sectors returns to sector 0"},
        {{2, 2, 1, 0}, "aaaaccccbbbb", "its chain of sectors returns to sector 2"},
    };
    for (const auto& Row : Rows) {
        const auto Sectors = FourByteSectors(FourSectors, Row.Next);
        EXPECT_EQ(Text(Sectors, 0, 1000), Row.Text);
        EXPECT_EQ(Fault(Sectors, 0, 1000), Row.Fault);
    }
}

TEST(KvSectors, ALoopEndsAChainOfUnknownSize)
{
    const auto Sectors = FourByteSectors(FourSectors, {1, 2, 0, FreeSector});
    EXPECT_EQ(Text(Sectors, 0), "aaaabbbbcccc");
    EXPECT_EQ(Fault(Sectors, 0), "its chain of sectors returns to sector 0");
}

TEST(KvSectors, AHugeSizeTakesNoMoreThanTheFile)
{
    const auto Sectors = FourByteSectors(FourSectors, {1, 2, 3, EndOfChain});
    EXPECT_EQ(Text(Sectors, 0, TKvChainBytes::ToTheEnd - 1), FourSectors);
}

} // namespace kv
