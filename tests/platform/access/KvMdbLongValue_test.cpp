#include "KvMdbLongValue.h"

#include <gtest/gtest.h>

#include <string>

#include "KvByteCursor.h"
#include "KvBytes.h"
#include "KvException.h"
#include "KvJetBuilder.h"
#include "KvTempFolder.h"

namespace kv {

namespace {

/// Bytes that do not repeat before 64 KB.
std::string BytesOf(std::size_t Size)
{
    std::string Bytes;
    for (std::size_t I = 0; I < Size; ++I)
        Bytes += static_cast<char>((I ^ I >> 8) & 0xFF);
    return Bytes;
}

/// The value that `Bytes` of a record tell of, or an error.
std::string ValueOf(const TJetBuilder& Builder, std::string_view Bytes)
{
    const TTempFolder Folder;
    const TMdbFile File(Folder.Write("a.mdb", Builder.Build()));
    std::string Storage = "left over";
    try {
        return std::string(ReadLongValue(File, Bytes, Storage));
    }
    catch (const EFormatError& Error) {
        return "[" + Error.Message + "]";
    }
}

const std::string Cut = "[its value is damaged: not all of it is there]";
constexpr std::uint32_t OnePage = 0x40000000;

/// What a record has of a value.
std::string Told(std::uint32_t SizeAndKind, std::uint32_t Place)
{
    return TBytes().U32(SizeAndKind).U32(Place).U32(0);
}

TEST(KvMdbLongValue, MayStandInItsRecord)
{
    EXPECT_EQ(ValueOf(TJetBuilder(), JetInline("short")), "short");
    EXPECT_EQ(ValueOf(TJetBuilder(), JetInline("")), "");
    EXPECT_EQ(ValueOf(TJetBuilder(), ""), "");
    EXPECT_EQ(ValueOf(TJetBuilder(), JetInline("short") + "behind it"), "short");
}

TEST(KvMdbLongValue, MayStandOnAPageOfItsOwn)
{
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4}) {
        TJetBuilder Builder(Version);
        const auto First = Builder.OnOnePage(BytesOf(1000)), Second = Builder.OnOnePage("the second"),
                   Empty = Builder.OnOnePage("");
        EXPECT_EQ(ValueOf(Builder, First), BytesOf(1000));
        EXPECT_EQ(ValueOf(Builder, Second), "the second");
        EXPECT_EQ(ValueOf(Builder, Empty), "");
    }
}

TEST(KvMdbLongValue, MayStandOnManyPages)
{
    for (const auto Version : {TJetBuilder::Jet3, TJetBuilder::Jet4})
        for (const std::size_t Size : {1, 2000, 2001, 4000, 65'535, 65'536, 300'000}) {
            TJetBuilder Builder(Version);
            const auto Bytes = Builder.OnPages(BytesOf(Size), 2000);
            EXPECT_EQ(ValueOf(Builder, Bytes), BytesOf(Size)) << Version << ' ' << Size;
        }
}

TEST(KvMdbLongValue, PiecesMayBeShort)
{
    TJetBuilder Builder;
    const auto Bytes = Builder.OnPages(BytesOf(100), 1);
    EXPECT_EQ(ValueOf(Builder, Bytes), BytesOf(100));
}

TEST(KvMdbLongValue, WhatIsNotAllThereIsDamage)
{
    TJetBuilder Builder;
    auto OnOne = Builder.OnOnePage("short");
    auto OnMany = Builder.OnPages("in several pieces", 4);
    auto Inside = JetInline("short");
    for (auto* const Bytes : {&OnOne, &OnMany, &Inside}) {
        (*Bytes)[0] = static_cast<char>((*Bytes)[0] + 1);
        EXPECT_EQ(ValueOf(Builder, *Bytes), Cut);
    }
    EXPECT_EQ(ValueOf(Builder, "short"), Cut) << "the beginning itself";
}

TEST(KvMdbLongValue, APlaceThatIsNotThereIsDamage)
{
    EXPECT_EQ(ValueOf(TJetBuilder(), Told(10, 0xFFFFFF00)), Cut);
    EXPECT_EQ(ValueOf(TJetBuilder(), Told(OnePage | 10, 0xFFFFFF00)), Cut);
    TJetBuilder Builder;
    const auto Bytes = Builder.OnOnePage("short");
    EXPECT_EQ(ValueOf(Builder, Told(OnePage | 5, LoadLittleEndian<std::uint32_t>(Bytes.data() + 4) + 7)), Cut)
        << "another slot";
}

TEST(KvMdbLongValue, AChainWithoutAnEndBringsNoMoreThanItsSize)
{
    constexpr std::uint32_t Place = 3 << 8;         // of the first long value of a database
    TJetBuilder Circle;
    Circle.OnOnePage(TBytes().U32(Place).Text("!").Str());
    EXPECT_EQ(ValueOf(Circle, Told(3, Place)), "!!!");
    EXPECT_EQ(ValueOf(Circle, Told(100'000'000, Place)), Cut) << "more than the file has";
    TJetBuilder Nothing;
    Nothing.OnOnePage(TBytes().U32(Place).Str());
    EXPECT_EQ(ValueOf(Nothing, Told(1, Place)), Cut) << "pieces without bytes";
}

} // namespace

} // namespace kv
