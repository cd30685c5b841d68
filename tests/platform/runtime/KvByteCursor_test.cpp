#include "KvByteCursor.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string_view>

#include "KvException.h"
#include "KvSettingsGuard.h"

using namespace std::string_view_literals;

namespace kv {

TEST(KvByteCursor, TakesNumbersLowByteFirst)
{
    TKvByteCursor In("\x01\x02\x03\xFF\xFF\x04\x03\x02\x01\x08\x07\x06\x05\x04\x03\x02\x01"sv);
    EXPECT_EQ(In.Take<std::uint8_t>(), 0x01);
    EXPECT_EQ(In.Take<std::uint16_t>(), 0x0302);
    EXPECT_EQ(In.Take<std::int16_t>(), -1);
    EXPECT_EQ(In.Take<std::uint32_t>(), 0x01020304u);
    EXPECT_EQ(In.Take<std::uint64_t>(), 0x0102030405060708u);
    EXPECT_TRUE(In.AtEnd());
}

TEST(KvByteCursor, TakesNumbersHighByteFirst)
{
    TKvByteCursor In("\x01\x02\x03\xFF\xFE\x01\x02\x03\x04\x01\x02\x03\x04\x05\x06\x07\x08"sv);
    EXPECT_EQ(In.TakeBigEndian<std::uint8_t>(), 0x01);
    EXPECT_EQ(In.TakeBigEndian<std::uint16_t>(), 0x0203);
    EXPECT_EQ(In.TakeBigEndian<std::int16_t>(), -2);
    EXPECT_EQ(In.TakeBigEndian<std::uint32_t>(), 0x01020304u);
    EXPECT_EQ(In.TakeBigEndian<std::uint64_t>(), 0x0102030405060708u);
    EXPECT_TRUE(In.AtEnd());
}

TEST(KvByteCursor, TakesFloatingPointNumbers)
{
    TKvByteCursor In("\0\0\0\0\0\0\xF8\x3F\x3F\xF8\0\0\0\0\0\0"sv);
    EXPECT_EQ(In.Take<double>(), 1.5);
    EXPECT_EQ(In.TakeBigEndian<double>(), 1.5);
}

TEST(KvByteCursor, ReadsAtAPositionWithoutMoving)
{
    TKvByteCursor In("abc\x01\x02z"sv);
    In.Skip(2);
    EXPECT_EQ(In.At<std::uint16_t>(3), 0x0201);
    EXPECT_EQ(In.BigEndianAt<std::uint16_t>(3), 0x0102);
    EXPECT_EQ(In.BytesAt(0, 3), "abc");
    EXPECT_EQ(In.Position(), 2u);
    EXPECT_EQ(In.Remaining(), 4u);
}

TEST(KvByteCursor, ASliceEndsWhereItsPartEnds)
{
    TKvByteCursor In("abcdef"sv);
    In.Skip(1);
    auto Slice = In.TakeSlice(3);
    EXPECT_EQ(Slice.Bytes(), "bcd");
    EXPECT_EQ(In.TakeBytes(2), "ef");
    EXPECT_EQ(MessageOf<EFormatError>([&] { Slice.TakeBytes(4); }), "Unexpected end of data at offset 4");
    EXPECT_EQ(Slice.TakeBytes(3), "bcd");
}

TEST(KvByteCursor, CountsOffsetsFromTheFirstByteOfTheFile)
{
    TKvByteCursor In("abcdef"sv, 1000);
    EXPECT_EQ(In.Offset(), 1000u);
    In.Skip(2);
    EXPECT_EQ(In.Offset(), 1002u);
    const auto Slice = In.TakeSlice(3);
    EXPECT_EQ(Slice.Offset(), 1002u);
    EXPECT_EQ(Slice.Position(), 0u);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.Take<std::uint16_t>(); }),
              "Unexpected end of data at offset 1006");
}

TEST(KvByteCursor, SeeksAnywhereUpToTheEnd)
{
    TKvByteCursor In("abc"sv);
    In.Seek(3);
    EXPECT_TRUE(In.AtEnd());
    In.Seek(1);
    EXPECT_EQ(In.TakeBytes(2), "bc");
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.Seek(4); }), "Unexpected end of data at offset 3");
}

TEST(KvByteCursor, TakesNoBytesAnywhere)
{
    TKvByteCursor Empty;
    EXPECT_EQ(Empty.TakeBytes(0), "");
    EXPECT_TRUE(Empty.TakeSlice(0).AtEnd());
}

TEST(KvByteCursor, StaysWhereItWasWhenThereIsTooLittle)
{
    constexpr auto Huge = std::numeric_limits<std::size_t>::max();
    constexpr auto Message = "Unexpected end of data at offset 3";
    TKvByteCursor In("abc"sv);
    In.Skip(1);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.Take<std::uint32_t>(); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.TakeBigEndian<double>(); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.TakeBytes(Huge); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.TakeSlice(3); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.Skip(Huge); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.Seek(Huge); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.At<std::uint16_t>(2); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.At<std::uint16_t>(Huge); }), Message);
    EXPECT_EQ(MessageOf<EFormatError>([&] { In.BytesAt(1, Huge); }), Message);
    EXPECT_EQ(In.TakeBytes(2), "bc");
}

} // namespace kv
