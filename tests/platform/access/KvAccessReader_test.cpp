#include "KvAccessReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "KvAccessScript.h"
#include "KvBytes.h"
#include "KvCodePage.h"
#include "KvException.h"

namespace kv {

namespace {

using namespace std::string_literals;

/// A source of bytes that gives `Piece` of them at a time.
std::function<std::size_t(char*, std::size_t)> Source(std::string Bytes, std::size_t Piece = 1 << 20)
{
    return
        [Bytes = std::move(Bytes), Piece, Position = std::size_t(0)](char* Target, std::size_t Size) mutable {
            const auto Count = std::min({Size, Piece, Bytes.size() - Position});
            std::copy_n(Bytes.data() + Position, Count, Target);
            Position += Count;
            return Count;
        };
}

/// What a stream holds, a word a part.
std::vector<std::string> ReadAll(const std::string& Stream, std::size_t Piece = 1 << 20)
{
    std::vector<std::string> Found;
    TAccessReader Reader(Source(Stream, Piece));
    TAccessRecords Records;
    std::size_t Fields = 0;
    for (;;) {
        const auto Message = Reader.Next();
        switch (Message.Kind) {
        case amTable:  Found.push_back("table " + ReadAccessTable(Message.Body).Name); break;
        case amField:  Found.push_back("field " + ReadAccessField(Message.Body).Name); ++Fields; break;
        case amCount:  Found.push_back("count " + std::to_string(ReadAccessCount(Message.Body))); break;
        case amError:  Found.push_back("error " + std::string(Message.Body)); return Found;
        case amDamage: Found.push_back("damage " + std::string(Message.Body)); return Found;
        case amEnd:    Found.push_back("end"); return Found;
        case amRecords:
            Records.SetFieldCount(Fields);
            Records.Load(Message.Body);
            while (Records.Next())
                for (std::size_t I = 0; I < Fields; ++I)
                    Found.push_back(Records.Value(I).ToText());
            break;
        }
    }
}

std::string MessageOf(const std::string& Stream)
{
    try {
        ReadAll(Stream);
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "";
}

const std::string Start = "KVAC\1";

std::string Message(unsigned Kind, const std::string& Body)
{
    return TBytes().U32(static_cast<std::uint32_t>(Body.size())).U8(Kind).Text(Body);
}

/// The start of a stream of records of one field.
const std::string Field = Start + Message(amField, TBytes().U8(afText).U32(50).U8(0).U8(0).Text("A"));

/// A stream with one record that holds `Value`.
std::string OneValue(const std::string& Value)
{
    return Field + Message(amRecords, TBytes().U32(1).Text(Value)) + Message(amEnd, "");
}

std::string TwoRecords()
{
    return AccessStream([](TAccessWriter& Writer) {
        Writer.Field({.Name = "ID", .Type = afLong, .Size = 4});
        Writer.Field({.Name = "CITY", .Type = afText, .Size = 20});
        Writer.Count(2);
        Writer.Integer(7);
        Writer.Text("Köln");
        Writer.EndRecord();
        Writer.Null();
        Writer.Text("");
        Writer.EndRecord();
        Writer.End();
    });
}

/// The value that the calls of `Write` make of the only field.
TVariant ReadBack(const std::function<void(TAccessWriter&)>& Write)
{
    const auto Stream = AccessStream([&Write](TAccessWriter& Writer) {
        Write(Writer);
        Writer.EndRecord();
        Writer.End();
    });
    TAccessReader Reader(Source(Stream));
    TAccessRecords Records;
    Records.SetFieldCount(1);
    Records.Load(Reader.Next().Body);
    EXPECT_TRUE(Records.Next());
    const auto Value = Records.Value(0);
    return TVariant(Value);                         // a copy, since the loan ends with the reader
}

TEST(KvAccessReader, ReadsWhatWasWritten)
{
    EXPECT_THAT(ReadAll(TwoRecords()),
                testing::ElementsAre("field ID", "field CITY", "count 2", "7", "Köln", "", "", "end"));
    EXPECT_THAT(ReadAll(AccessStream([](TAccessWriter& Writer) {
                    Writer.Table("Orders", ttLocal);
                    Writer.Error("is gone");
                })),
                testing::ElementsAre("table Orders", "error is gone"));
}

TEST(KvAccessReader, BytesMayComeOneByOne)
{
    EXPECT_EQ(ReadAll(TwoRecords(), 1), ReadAll(TwoRecords()));
}

TEST(KvAccessReader, ValuesKeepTheirKinds)
{
    EXPECT_TRUE(ReadBack([](auto& Writer) { Writer.Null(); }).IsNull());
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.Boolean(true); }), TVariant(true));
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.Boolean(false); }), TVariant(false));
    EXPECT_EQ(
        ReadBack([](auto& Writer) { Writer.Integer(std::numeric_limits<std::int64_t>::min()); }).Integer(),
        std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.Double(0.1); }).Double(), 0.1);
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.DateTime(-1.25); }).DateTime().Days, -1.25);
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.Currency(-12345); }).Currency().Scaled, -12345);
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.Text(""); }), TVariant(""));
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.Bytes("a\0b"s); }), TVariant("a\0b"s));
    EXPECT_EQ(ReadBack([](auto& Writer) { Writer.Decimal("0.12345"); }), TVariant("0.12345"));
}

TEST(KvAccessReader, TextComesInTheCodePageOfTheProcess)
{
    const std::string Before = AnsiCodePage();
    SetAnsiCodePage("windows-1252");
    const auto City = ReadBack([](auto& Writer) { Writer.Text("Köln"); });
    const auto Raw = ReadBack([](auto& Writer) { Writer.Bytes("Köln"); });
    EXPECT_THROW(ReadBack([](auto& Writer) { Writer.Text("Łódź"); }), EConvertError);
    SetAnsiCodePage(Before);
    EXPECT_EQ(City, TVariant("K\xF6ln"));
    EXPECT_EQ(Raw, TVariant("Köln")) << "bytes are no text";
}

TEST(KvAccessReader, AValueThatCouldNotBeReadIsAnErrorOnlyWhenItIsAskedFor)
{
    const auto Stream = AccessStream([](TAccessWriter& Writer) {
        Writer.Refused("record 1 of table T, field NOTE: it is gone");
        Writer.Integer(5);
        Writer.EndRecord();
    });
    TAccessReader Reader(Source(Stream + Message(amEnd, "")));
    TAccessRecords Records;
    Records.SetFieldCount(2);
    // The writer hands records over with the next message: nothing was sent yet.
    EXPECT_EQ(Reader.Next().Kind, amEnd);

    const auto Whole = AccessStream([](TAccessWriter& Writer) {
        Writer.Refused("record 1 of table T, field NOTE: it is gone");
        Writer.Integer(5);
        Writer.EndRecord();
        Writer.End();
    });
    TAccessReader Second(Source(Whole));
    const auto Body = Second.Next().Body;
    Records.Load(Body);
    ASSERT_TRUE(Records.Next());
    EXPECT_EQ(Records.Value(1).Integer(), 5);
    try {
        Records.Value(0);
        FAIL() << "no error";
    }
    catch (const EDatabaseError& Error) {
        EXPECT_EQ(Error.Message, "record 1 of table T, field NOTE: it is gone");
    }
}

TEST(KvAccessReader, RecordsAreGatheredIntoMessages)
{
    std::vector<std::size_t> Sizes;
    TAccessWriter Writer([&Sizes](std::string_view Bytes) { Sizes.push_back(Bytes.size()); });
    Sizes.clear();
    const std::string Value(1000, 'x');
    for (int I = 0; I < 1000; ++I) {
        Writer.Text(Value);
        Writer.EndRecord();
    }
    ASSERT_EQ(Sizes.size(), 7);
    EXPECT_GE(Sizes[0], TAccessWriter::BatchSize);
    EXPECT_LT(Sizes[0], TAccessWriter::BatchSize + 2000);
}

TEST(KvAccessReader, ARecordThatWasNotEndedIsNotSent)
{
    EXPECT_THAT(ReadAll(AccessStream([](TAccessWriter& Writer) {
                    Writer.Field({.Name = "ID"});
                    Writer.Integer(1);
                    Writer.EndRecord();
                    Writer.Integer(2);
                    Writer.Error("record 2 is damaged");
                })),
                testing::ElementsAre("field ID", "1", "error record 2 is damaged"));
}

TEST(KvAccessReader, AStreamThatEndsEarlyIsAnError)
{
    const auto Whole = TwoRecords();
    for (std::size_t Size = 0; Size < Whole.size(); ++Size)
        EXPECT_EQ(MessageOf(Whole.substr(0, Size)), "the reader of Access databases stopped before its end")
            << Size;
}

struct TRefusedStream
{
    const char* Name;
    std::string Stream;
    std::string Message;
};

const std::string NoMeaning = "the reader of Access databases gave an answer that has no meaning ";

class KvAccessReaderRefuses : public testing::TestWithParam<TRefusedStream>
{
};

TEST_P(KvAccessReaderRefuses, Stream)
{
    EXPECT_EQ(MessageOf(GetParam().Stream), GetParam().Message);
}

INSTANTIATE_TEST_SUITE_P(
    , KvAccessReaderRefuses,
    testing::Values(
        TRefusedStream{"AnotherProgram", "ELF\x7F\1", NoMeaning + "(not its own)"},
        TRefusedStream{"AnotherVersion", "KVAC\2",
                       "the reader of Access databases is of another version (2 instead of 1)"},
        TRefusedStream{"AnUnknownMessage", Start + Message(9, ""), NoMeaning + "(a message of kind 9)"},
        TRefusedStream{"AMessageWithoutBounds", Start + "\xFF\xFF\xFF\xFF\6",
                       NoMeaning + "(a message of 4294967295 bytes)"},
        TRefusedStream{"ANameWithoutCharacters", Start + Message(amTable, std::string(1, '\0')),
                       NoMeaning + "(a name)"},
        TRefusedStream{"ANameThatIsNoText", Start + Message(amTable, "\1\xFF"s), NoMeaning + "(a name)"},
        TRefusedStream{"ANameWithoutBounds", Start + Message(amTable, "\1"s + std::string(2000, 'x')),
                       NoMeaning + "(a name)"},
        TRefusedStream{"MoreRecordsThanBytes", Field + Message(amRecords, TBytes().U32(127).U8(atNull)),
                       NoMeaning + "(127 records)"},
        TRefusedStream{"NoRecords", Start + Message(amRecords, TBytes().U32(0)), NoMeaning + "(0 records)"},
        TRefusedStream{"RecordsWithoutFields", Start + Message(amRecords, TBytes().U32(1).U8(0)),
                       NoMeaning + "(1 records)"},
        TRefusedStream{"AnUnknownValue", OneValue("\x63"), NoMeaning + "(a value of kind 99)"},
        TRefusedStream{"AShortNumber",
                       OneValue("\3"
                                "1234567"),
                       NoMeaning + "(a value longer than its message)"},
        TRefusedStream{"AShortSize",
                       OneValue("\x08"
                                "12"),
                       NoMeaning + "(a size)"},
        TRefusedStream{"ATextLongerThanItsMessage", OneValue(TBytes().U8(atText).U32(~0u).Text("x")),
                       NoMeaning + "(a value longer than its message)"},
        TRefusedStream{"BytesAfterTheLastRecord", OneValue("\1\1"),
                       NoMeaning + "(bytes after the last record)"}),
    [](const auto& Row) { return Row.param.Name; });

TEST(KvAccessReader, ALyingSizeTakesNoMemory)
{
    // 500 MB are announced and one byte comes.
    std::size_t Asked = 0;
    const auto Bytes = Start + TBytes().U32(500 << 20).U8(amRecords).U8(1).Str();
    TAccessReader Reader([Give = Source(Bytes), &Asked](char* Target, std::size_t Size) mutable {
        Asked = std::max(Asked, Size);
        return Give(Target, Size);
    });
    EXPECT_THROW(Reader.Next(), EFormatError);
    EXPECT_LE(Asked, 1 << 20);
}

} // namespace

} // namespace kv
