#include "KvParadoxBlobs.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "KvBytes.h"
#include "KvException.h"
#include "KvParadoxBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

std::string Patched(std::string File, std::size_t Offset, std::string_view Bytes)
{
    return File.replace(Offset, Bytes.size(), Bytes);
}

std::string Read(std::string_view Bytes, std::uint32_t Place, std::size_t Size)
{
    const TTempFolder Folder;
    TKvFileWindow File(Folder.Write("blobs", Bytes), 16 << 10);
    std::string Buffer = "of another blob";
    return std::string(ParadoxBlobBytes(File, {.Leader = {}, .Place = Place, .Size = Size}, Buffer));
}

std::string ErrorOf(std::string_view File, std::uint32_t Place, std::size_t Size)
{
    try {
        Read(File, Place, Size);
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return "";
}

TBytes FormattedMemo(std::string_view Text)
{
    return TBytes().U16(2).U16(0).U32(static_cast<std::uint32_t>(Text.size())).U16(7).U32(3).Text(Text)
                   .Text("fmt");
}

std::string MemoErrorOf(std::string_view Memo)
{
    try {
        FormattedMemoText(Memo);
    }
    catch (const EFormatError& Error) {
        return Error.Message;
    }
    return "";
}

} // namespace

TEST(KvParadoxBlobs, AFieldTellsLeaderPlaceAndSize)
{
    const auto Field = ParadoxBlobField("begin", 0x103F, 169);
    const auto Blob = ParadoxBlob(Field);
    EXPECT_EQ(Blob.Leader, "begin");
    EXPECT_EQ(Blob.Place, 0x103Fu);
    EXPECT_EQ(Blob.Size, 169u);
    EXPECT_FALSE(Blob.IsInLeader());
}

TEST(KvParadoxBlobs, AValueThatIsNoLongerThanTheLeaderStandsInIt)
{
    EXPECT_TRUE(ParadoxBlob(ParadoxBlobField("begin", 0, 5)).IsInLeader());
    EXPECT_TRUE(ParadoxBlob(ParadoxBlobField("begin", 0, 1)).IsInLeader());
    EXPECT_FALSE(ParadoxBlob(ParadoxBlobField("begin", 0, 6)).IsInLeader());
}

TEST(KvParadoxBlobs, AValueMayHaveABlockOfItsOwn)
{
    for (const std::size_t Size : {1, 4087, 4088, 100000}) {
        TParadoxBlobBuilder Builder;
        Builder.Add("another");
        const std::string Value(Size, 'x');
        const auto Place = Builder.Add(Value);
        EXPECT_EQ(Read(Builder.Build(), Place, Size), Value) << Size;
    }
}

TEST(KvParadoxBlobs, SmallValuesShareABlock)
{
    TParadoxBlobBuilder Builder;
    std::vector<std::string> Values;
    std::vector<std::uint32_t> Places;
    for (std::size_t I = 0; I < 200; ++I) {
        Values.emplace_back(1 + I * 7 % 50, static_cast<char>('a' + I % 26));
        Places.push_back(Builder.AddSmall(Values.back()));
    }
    for (std::size_t I = 0; I < Values.size(); ++I)
        EXPECT_EQ(Read(Builder.Build(), Places[I], Values[I].size()), Values[I]);
}

TEST(KvParadoxBlobs, AFullLastChunkMayBeToldAsNone)
{
    TParadoxBlobBuilder Builder;
    const std::string Value(32, 'x');
    const auto Place = Builder.AddSmall(Value);
    EXPECT_EQ(Read(Builder.Build(), Place, 32), Value);
    constexpr std::size_t EntryAt = 4096 + 12 + 63 * 5;
    EXPECT_EQ(Read(Patched(Builder.Build(), EntryAt + 4, TBytes().U8(0)), Place, 32), Value);
}

TEST(KvParadoxBlobs, AValueOfAnotherSizeThanItsRecordTellsIsAnError)
{
    TParadoxBlobBuilder Builder;
    const auto Large = Builder.Add("0123456789"), Small = Builder.AddSmall("0123456789");
    EXPECT_EQ(ErrorOf(Builder.Build(), Large, 11), "its record tells of 11 bytes, the file of blobs of 10");
    EXPECT_EQ(ErrorOf(Builder.Build(), Small, 9), "its record tells of 9 bytes, the file of blobs of 10");
}

TEST(KvParadoxBlobs, APlaceThatIsNoneIsAnError)
{
    TParadoxBlobBuilder Builder;
    const auto Large = Builder.Add("0123456789"), Small = Builder.AddSmall("0123456789");
    const auto& File = Builder.Build();
    EXPECT_EQ(ErrorOf("", Large, 10), "the file of blobs ends before offset 4096");
    EXPECT_EQ(ErrorOf(File, 0xFFFFFF00, 10), "the file of blobs ends before offset 4294967040");
    EXPECT_EQ(ErrorOf(File, 0xFF, 10), "the block at offset 0 is none of one blob");
    EXPECT_EQ(ErrorOf(File, 0x3F, 10), "the block at offset 0 is none of small blobs");
    EXPECT_EQ(ErrorOf(File, Large ^ 0xFF, 10), "the block at offset 4096 is none of small blobs");
    EXPECT_EQ(ErrorOf(File, Small | 0xFF, 10), "the block at offset 8192 is none of one blob");
    EXPECT_EQ(ErrorOf(File, 0x2040, 10), "a block of small blobs has no entry 64");
    EXPECT_EQ(ErrorOf(File, 0x2000, 10), "entry 0 of the block at offset 8192 is empty or damaged");
}

TEST(KvParadoxBlobs, ABlockThatIsCutIsAnError)
{
    TParadoxBlobBuilder Builder;
    const std::string Value(5000, 'x');
    const auto Large = Builder.Add(Value);
    EXPECT_EQ(ErrorOf(Builder.Build().substr(0, 4096 + 5008), Large, 5000),
              "Unexpected end of data at offset 9104");
    EXPECT_EQ(ErrorOf(Builder.Build().substr(0, 4097), Large, 5000), "Unexpected end of data at offset 4097");
    EXPECT_EQ(ErrorOf(Patched(Builder.Build(), 4097, TBytes().U16(1)), Large, 5000),
              "5000 bytes do not fit into 1 blocks");
}

TEST(KvParadoxBlobs, AnEntryThatLeavesItsBlockIsAnError)
{
    TParadoxBlobBuilder Builder;
    const auto Place = Builder.AddSmall("0123456789");
    Builder.Add("what follows");
    constexpr std::size_t EntryAt = 4096 + 12 + 63 * 5;
    const auto With = [&](TBytes Entry) { return Patched(Builder.Build(), EntryAt, Entry); };
    EXPECT_EQ(ErrorOf(With(TBytes().U8(255).U8(2).U16(1).U8(10)), Place, 26),
              "Unexpected end of data at offset 8192");
    EXPECT_EQ(ErrorOf(With(TBytes().U8(20).U8(1).U16(1).U8(10)), Place, 10),
              "entry 63 of the block at offset 4096 is empty or damaged");
    EXPECT_EQ(ErrorOf(With(TBytes().U8(21).U8(1).U16(1).U8(17)), Place, 17),
              "entry 63 of the block at offset 4096 is empty or damaged");
}

TEST(KvParadoxBlobs, AFormattedMemoIsItsText)
{
    EXPECT_EQ(FormattedMemoText(FormattedMemo(std::string("123\0", 4))), "123");
    EXPECT_EQ(FormattedMemoText(FormattedMemo(std::string("\0", 1))), "");
    EXPECT_EQ(FormattedMemoText(FormattedMemo(std::string("a\0", 2)).Text("more")), "a");
}

TEST(KvParadoxBlobs, WhatIsNoFormattedMemoIsAnError)
{
    const std::string Good = FormattedMemo(std::string("123\0", 4));
    for (const auto& Memo :
         {std::string(), Good.substr(0, 1), Good.substr(0, 20), Good.substr(0, Good.size() - 1), // cut
          Patched(Good, 2, "\x01"),                                                      // no text
          Patched(Good, 0, TBytes().U16(0)), Patched(Good, 0, TBytes().U16(0xFFFF)),
          Patched(Good, 4, TBytes().U32(0)), Patched(Good, 4, TBytes().U32(0xFFFFFFFF)),
          Patched(Good, 4, TBytes().U32(3)),                                             // no zero at its end
          Patched(Good, 15, TBytes().U8(0))})                                            // one before it
        EXPECT_EQ(MemoErrorOf(Memo), "it is no formatted memo");
}

} // namespace kv
