#include "KvRecords.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "KvException.h"

using namespace std::string_view_literals;

namespace kv {

namespace {

std::string MessageOf(const std::function<void()>& Action)
{
    try {
        Action();
    } catch (const EFormatError& Error) {
        return Error.Message;
    }
    return {};
}

/// The first record of a stream.
TKvRecord First(std::string_view Stream)
{
    TKvRecords Records(Stream);
    EXPECT_TRUE(Records.Next());
    return Records.Record();
}

constexpr auto TwoRecords = "\xFD\x00\x03\x00"
                            "abc"
                            "\x09\x08\x00\x00"sv;

} // namespace

TEST(KvRecords, AnEmptyStreamHasNoRecord)
{
    TKvRecords Records("");
    EXPECT_FALSE(Records.Next());
    EXPECT_FALSE(Records.Next());
}

TEST(KvRecords, GivesIdBodyAndOffsetOfEachRecord)
{
    TKvRecords Records(TwoRecords);
    ASSERT_TRUE(Records.Next());
    EXPECT_EQ(Records.Record().Id, 0x00FD);
    EXPECT_EQ(Records.Record().Body, "abc");
    EXPECT_EQ(Records.Record().Size(), 3u);
    EXPECT_EQ(Records.Record().Offset, 0u);
    ASSERT_TRUE(Records.Next());
    EXPECT_EQ(Records.Record().Id, 0x0809);
    EXPECT_EQ(Records.Record().Body, "");
    EXPECT_EQ(Records.Record().Offset, 7u);
    EXPECT_FALSE(Records.Next());
}

TEST(KvRecords, TellsWhatFollows)
{
    TKvRecords Records(TwoRecords);
    EXPECT_EQ(Records.NextId(), 0x00FD);
    EXPECT_TRUE(Records.IsNext(0x00FD));
    EXPECT_FALSE(Records.IsNext(0x0809));
    Records.Next();
    EXPECT_EQ(Records.NextId(), 0x0809);
    Records.Next();
    EXPECT_EQ(Records.NextId(), std::nullopt);
    EXPECT_EQ(TKvRecords("\x09\x08"sv).NextId(), std::nullopt);
}

TEST(KvRecords, SeeksToARecord)
{
    TKvRecords Records(TwoRecords);
    Records.Seek(7);
    ASSERT_TRUE(Records.Next());
    EXPECT_EQ(Records.Record().Id, 0x0809);
    Records.Seek(0);
    ASSERT_TRUE(Records.Next());
    EXPECT_EQ(Records.Record().Body, "abc");
    Records.Seek(TwoRecords.size());
    EXPECT_FALSE(Records.Next());
    EXPECT_EQ(MessageOf([&] { Records.Seek(12); }), "Unexpected end of data at offset 11");
}

TEST(KvRecords, ReadsNumbersAndTextByTheirPositionInTheBody)
{
    const auto Record = First("\x03\x00\x0D\x00\x01\x02\x03\xFF\xFF\0\0\0\0\0\0\xF8\x3F"sv);
    EXPECT_EQ(Record.At<std::uint8_t>(2), 3);
    EXPECT_EQ(Record.At<std::uint16_t>(0), 0x0201);
    EXPECT_EQ(Record.At<std::int16_t>(3), -1);
    EXPECT_EQ(Record.At<std::uint32_t>(0), 0xFF030201u);
    EXPECT_EQ(Record.At<double>(5), 1.5);
    EXPECT_EQ(Record.Text(1, 2), "\x02\x03");
    EXPECT_EQ(Record.Text(13, 0), "");
}

TEST(KvRecords, ACursorOverABodyCountsFromTheStart)
{
    auto In = First("\xFC\x00\x04\x00\x01\x02\x03\x04"sv).From(1);
    EXPECT_EQ(In.Offset(), 5u);
    EXPECT_EQ(In.TakeBytes(3), "\x02\x03\x04");
    EXPECT_EQ(MessageOf([&] { In.Take<std::uint8_t>(); }), "Unexpected end of data at offset 8");
}

TEST(KvRecords, ABodyThatIsTooShortIsNamedWithItsOffset)
{
    TKvRecords Records("\x09\x08\x00\x00\xFD\x00\x03\x00"
                       "abc"sv);
    Records.Next();
    Records.Next();
    const auto Record = Records.Record();
    EXPECT_EQ(MessageOf([&] { Record.At<std::uint32_t>(6); }),
              "Record 0x00FD at offset 4 is too short: 3 bytes, 10 are needed");
    EXPECT_EQ(MessageOf([&] { Record.At<std::uint16_t>(2); }),
              "Record 0x00FD at offset 4 is too short: 3 bytes, 4 are needed");
    EXPECT_EQ(MessageOf([&] { Record.Text(1, 3); }),
              "Record 0x00FD at offset 4 is too short: 3 bytes, 4 are needed");
    EXPECT_EQ(MessageOf([&] { Record.From(4); }),
              "Record 0x00FD at offset 4 is too short: 3 bytes, 4 are needed");
}

TEST(KvRecords, AnErrorOfARecordNamesItsPlace)
{
    const TKvRecord Record(0x027E, "", 1234);
    EXPECT_EQ(MessageOf([&] { Record.Raise("no such cell"); }), "Record 0x027E at offset 1234: no such cell");
}

TEST(KvRecords, AStreamThatEndsWithinABodyIsTruncated)
{
    TKvRecords Records("\x09\x08\x00\x00\xFD\x00\x03\x00"
                       "ab"sv);
    ASSERT_TRUE(Records.Next());
    EXPECT_EQ(MessageOf([&] { Records.Next(); }),
              "File is truncated: record 0x00FD at offset 4 needs 3 bytes, 2 are left");
}

TEST(KvRecords, AStreamThatEndsWithinAHeaderIsTruncated)
{
    for (std::size_t Size = 1; Size < 4; ++Size) {
        TKvRecords Records(TwoRecords.substr(0, 7 + Size));
        ASSERT_TRUE(Records.Next());
        EXPECT_EQ(MessageOf([&] { Records.Next(); }),
                  "File is truncated: it ends within the header of the record at offset 7");
    }
}

TEST(KvRecords, UpToThreeZerosAfterTheLastRecordArePadding)
{
    for (std::size_t Size = 1; Size < 4; ++Size) {
        const auto Padded = std::string(TwoRecords) + std::string(Size, '\0');
        TKvRecords Records(Padded);
        EXPECT_EQ(Records.Remaining(), 11 + Size);
        Records.Next();
        EXPECT_TRUE(Records.Next());
        EXPECT_EQ(Records.Remaining(), Size);
        EXPECT_FALSE(Records.Next());
    }
}

} // namespace kv
