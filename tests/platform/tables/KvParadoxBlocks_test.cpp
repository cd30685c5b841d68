#include "KvParadoxBlocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvBytes.h"
#include "KvParadoxBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

using testing::ElementsAre;

/// Records of one byte: 1, 2, 3 ... two in a block.
TParadoxBuilder Table(int Records)
{
    TParadoxBuilder Builder;
    Builder.Field("L", 'Y', 1).RecordsPerBlock(2);
    for (int I = 1; I <= Records; ++I)
        Builder.Record({std::string(1, static_cast<char>(I))});
    return Builder;
}

std::string Patched(std::string File, std::size_t Offset, std::string_view Bytes)
{
    return File.replace(Offset, Bytes.size(), Bytes);
}

TKvParadoxBlocks Follow(std::string_view Bytes)
{
    const TTempFolder Folder;
    TKvFileWindow File(Folder.Write("a.db", Bytes));
    return FollowParadoxBlocks(File, ReadParadoxHeader(Bytes, "a.db"));
}

std::vector<int> RecordsOf(std::string_view File)
{
    std::vector<int> Found;
    for (const auto& Block : Follow(File).Blocks)
        for (std::size_t I = 0; I < Block.Count; ++I)
            Found.push_back(File.at(Block.FirstRecord + I));
    return Found;
}

} // namespace

TEST(KvParadoxBlocks, ATableWithoutRecordsHasNoBlocks)
{
    const auto File = Table(0).Build();
    EXPECT_EQ(Follow(File).RecordCount, 0u);
    EXPECT_EQ(Follow(File).Fault, "");
}

TEST(KvParadoxBlocks, RecordsComeBlockByBlock)
{
    EXPECT_THAT(RecordsOf(Table(5).Build()), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(Follow(Table(5).Build()).RecordCount, 5u);
    EXPECT_EQ(Follow(Table(5).Build()).Fault, "");
}

TEST(KvParadoxBlocks, TheChainGivesTheOrderAndNotTheFile)
{
    const auto File = Table(5).Reversed().Build();
    EXPECT_THAT(RecordsOf(File), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_GT(Follow(File).Blocks.front().FirstRecord, Follow(File).Blocks.back().FirstRecord);
}

TEST(KvParadoxBlocks, ABlockWithoutRecordsIsPassed)
{
    auto File = Patched(Table(5).Build(), TParadoxBuilder::OffsetOfBlock(2) + 4, TBytes().U16(0xFFFF));
    File = Patched(File, 6, TBytes().U32(3));
    EXPECT_THAT(RecordsOf(File), ElementsAre(1, 2, 5));
    EXPECT_EQ(Follow(File).Fault, "");
}

TEST(KvParadoxBlocks, MoreRecordsThanTheHeaderTellsAreAllThere)
{
    const auto File = Patched(Table(5).Build(), 6, TBytes().U32(1));
    EXPECT_EQ(Follow(File).RecordCount, 5u);
    EXPECT_EQ(Follow(File).Fault, "");
}

TEST(KvParadoxBlocks, FewerRecordsThanTheHeaderTellsAreAFault)
{
    const auto File = Patched(Table(5).Build(), 6, TBytes().U32(7));
    EXPECT_EQ(Follow(File).RecordCount, 5u);
    EXPECT_EQ(Follow(File).Fault, "its blocks hold 5 records, its header tells of 7");
}

TEST(KvParadoxBlocks, AChainThatLoopsEndsWhereItReturns)
{
    for (const unsigned Target : {1, 2, 3}) {
        const auto File = Patched(Table(5).Build(), TParadoxBuilder::OffsetOfBlock(3), TBytes().U16(Target));
        EXPECT_THAT(RecordsOf(File), ElementsAre(1, 2, 3, 4, 5));
        EXPECT_EQ(Follow(File).Fault, "its chain of blocks returns to block " + std::to_string(Target));
    }
}

TEST(KvParadoxBlocks, AChainThatLeavesTheFileEndsThere)
{
    for (const unsigned Target : {4u, 0xFFFFu}) {
        const auto File = Patched(Table(5).Build(), TParadoxBuilder::OffsetOfBlock(1), TBytes().U16(Target));
        EXPECT_THAT(RecordsOf(File), ElementsAre(1, 2));
        EXPECT_EQ(Follow(File).Fault, "block " + std::to_string(Target) + " is not there");
    }
}

TEST(KvParadoxBlocks, AFileThatEndsWithinABlockGivesTheRecordsBefore)
{
    const auto File = Table(4).Build();
    const auto Second = TParadoxBuilder::OffsetOfBlock(2);
    EXPECT_EQ(Follow(File.substr(0, Second + 8)).Fault, "");
    EXPECT_THAT(RecordsOf(File.substr(0, Second + 7)), ElementsAre(1, 2, 3));
    EXPECT_EQ(Follow(File.substr(0, Second + 7)).Fault,
              "block 2 tells of 1 bytes before its last record, there is room for 1 records of 1");
    EXPECT_EQ(Follow(File.substr(0, Second + 5)).Fault, "block 2 is not there");
    const auto Empty = Follow(File.substr(0, Second + 6));
    EXPECT_EQ(Empty.Blocks.size(), 1U) << "what holds no record is no block of records";
    EXPECT_EQ(Empty.RecordCount, 2U);
    EXPECT_EQ(Empty.Fault,
              "block 2 tells of 1 bytes before its last record, there is room for 0 records of 1");
}

TEST(KvParadoxBlocks, ABlockThatTellsOfMoreThanItHoldsIsAFault)
{
    auto File = Patched(Table(4).Build(), TParadoxBuilder::OffsetOfBlock(1) + 4, TBytes().U16(2042));
    EXPECT_EQ(Follow(File).RecordCount, 2042u);
    EXPECT_EQ(Follow(File).Fault,
              "block 1 tells of 2042 bytes before its last record, there is room for 2042 records of 1");
}

TEST(KvParadoxBlocks, ABlockThatHoldsPartOfARecordIsAFault)
{
    const auto Good = TParadoxBuilder().Field("S", 'S').Record({ParadoxShort(1)}).Record({ParadoxShort(2)})
                                       .Build();
    const auto File = Patched(Good, TParadoxBuilder::OffsetOfBlock(1) + 4, TBytes().U16(3));
    EXPECT_EQ(Follow(File).RecordCount, 2u);
    EXPECT_EQ(Follow(File).Fault,
              "block 1 tells of 3 bytes before its last record, there is room for 1021 records of 2");
}

} // namespace kv
