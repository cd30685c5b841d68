#include "KvDbaseHeader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvDbaseBuilder.h"
#include "KvException.h"

namespace kv {

namespace {

std::string MessageOf(std::string_view Bytes)
{
    try {
        ReadDbaseHeader(Bytes, "a.dbf");
    }
    catch (const Exception& Error) {
        return Error.Message;
    }
    return "nothing was raised";
}

std::string With(std::string File, std::size_t Offset, std::string_view Bytes)
{
    return File.replace(Offset, Bytes.size(), Bytes);
}

TDbaseBuilder Simple(unsigned Version = 0x03)
{
    return TDbaseBuilder(Version).Field("NAME", 'C', 10).Field("QTY", 'N', 5).Record({"Ada", "3"});
}

struct TKindRow
{
    unsigned Version;
    char Letter;
    unsigned Size, Decimals, Flags;
    TFieldType Type;
    TKvDbaseStorage Storage;
};

struct TRefused
{
    std::string Name;
    std::string File;
    std::string Reason;
};

struct KvDbaseHeaderRefuses : testing::TestWithParam<TRefused>
{
};

} // namespace

TEST(KvDbaseHeader, TellsSizesAndFields)
{
    for (const unsigned Version : {0x02u, 0x03u, 0x05u, 0x30u, 0x83u, 0x8Bu, 0x8Cu, 0xF5u}) {
        const auto Header = ReadDbaseHeader(Simple(Version).Build(), "a.dbf");
        EXPECT_EQ(Header.RecordCount, 1u) << Version;
        EXPECT_EQ(Header.RecordSize, 16u) << Version;
        ASSERT_EQ(Header.Fields.Visible.size(), 2u) << Version;
        const auto& Name = Header.Fields.Visible[0];
        EXPECT_EQ(Name.Name, "NAME");
        EXPECT_EQ(Name.Offset, 1u);
        EXPECT_EQ(Name.Size, 10u);
        const auto& Quantity = Header.Fields.Visible[1];
        EXPECT_EQ(Quantity.Name, "QTY");
        EXPECT_EQ(Quantity.Offset, 11u);
        EXPECT_EQ(Quantity.Size, 5u);
    }
}

TEST(KvDbaseHeader, TheVersionTellsTheKindOfMemos)
{
    const std::vector<std::pair<unsigned, TKvDbaseMemoKind>> Rows = {
        {0x03, dmDbase3}, {0x83, dmDbase3}, {0x8B, dmDbase4}, {0x8C, dmDbase4}, {0x04, dmDbase4},
        {0xCB, dmDbase4}, {0xF5, dmFoxPro}, {0x30, dmFoxPro}, {0x31, dmFoxPro}, {0x32, dmFoxPro},
        {0x05, dmDbase4}, {0x43, dmDbase4}, {0x63, dmDbase4}, {0x7B, dmDbase4}, {0x8E, dmDbase4},
        {0xFB, dmFoxPro}, {0xE5, dmNone},   {0x02, dmNone}};
    for (const auto& [Version, Kind] : Rows)
        EXPECT_EQ(ReadDbaseHeader(Simple(Version).Build(), "a.dbf").MemoKind, Kind) << Version;
}

TEST(KvDbaseHeader, LettersTellTheKindsOfFields)
{
    const TKindRow Rows[] = {
        {0x03, 'C', 10, 0, 0, ftString, dvText},        {0x03, 'N', 4, 0, 0, ftSmallint, dvNumber},
        {0x03, 'N', 5, 0, 0, ftInteger, dvNumber},      {0x03, 'N', 9, 0, 0, ftInteger, dvNumber},
        {0x03, 'N', 10, 0, 0, ftLargeint, dvNumber},    {0x03, 'N', 18, 0, 0, ftLargeint, dvNumber},
        {0x03, 'N', 19, 0, 0, ftBCD, dvNumber},         {0x03, 'N', 4, 2, 0, ftBCD, dvNumber},
        {0x03, 'F', 20, 0, 0, ftFloat, dvFloat},        {0x03, 'L', 1, 0, 0, ftBoolean, dvLogical},
        {0x03, 'D', 8, 0, 0, ftDate, dvDay},            {0x83, 'M', 10, 0, 0, ftMemo, dvMemo},
        {0x8B, 'B', 10, 0, 0, ftBlob, dvMemo},          {0x8B, 'G', 10, 0, 0, ftOle, dvMemo},
        {0xF5, 'P', 10, 0, 0, ftGraphic, dvMemo},       {0x30, 'I', 4, 0, 0, ftInteger, dvLong},
        {0x31, 'I', 4, 0, 0x0C, ftAutoInc, dvLong},     {0x30, 'B', 8, 2, 4, ftFloat, dvDouble},
        {0x30, 'Y', 8, 4, 4, ftCurrency, dvAmount},     {0x30, 'T', 8, 0, 4, ftDateTime, dvMoment},
        {0x30, 'M', 4, 0, 0, ftMemo, dvMemo},           {0x30, 'M', 4, 0, 4, ftBlob, dvMemo},
        {0x30, 'C', 10, 0, 4, ftString, dvRawText},     {0x32, 'W', 4, 0, 4, ftBlob, dvMemo},
        {0x32, 'V', 10, 0, 0, ftString, dvVarText},     {0x32, 'V', 10, 0, 4, ftVarBytes, dvVarBytes},
        {0x32, 'Q', 10, 0, 4, ftVarBytes, dvVarBytes},  {0x30, 'G', 4, 0, 0, ftOle, dvMemo},
        {0x8C, 'I', 4, 0, 0, ftInteger, dvOrderedLong}, {0x8C, '+', 4, 0, 0, ftAutoInc, dvOrderedLong},
        {0x8C, 'O', 8, 0, 0, ftFloat, dvOrderedDouble}, {0x8C, '@', 8, 0, 0, ftDateTime, dvTimestamp},
    };
    for (const auto& Row : Rows) {
        const auto File =
            TDbaseBuilder(Row.Version).Field("A", Row.Letter, Row.Size, Row.Decimals, Row.Flags).Build();
        const auto Field = ReadDbaseHeader(File, "a.dbf").Fields.Visible.at(0);
        EXPECT_EQ(Field.Type, Row.Type) << Row.Letter << Row.Size;
        EXPECT_EQ(Field.Storage, Row.Storage) << Row.Letter << Row.Size;
    }
}

TEST(KvDbaseHeader, BitsGoToTheFieldsInTheirOrder)
{
    const auto File = TDbaseBuilder(0x32)
                          .Field("PLAIN", 'C', 4)
                          .Field("BYTES", 'Q', 4, 0, 2)
                          .Field("HIDDEN", 'C', 4, 0, 3)
                          .Field("MAYBE", 'I', 4, 0, 2)
                          .Field("TEXT", 'V', 4)
                          .Field("_NullFlags", '0', 1, 0, 5)
                          .Build();
    const auto Fields = ReadDbaseHeader(File, "a.dbf").Fields;
    EXPECT_EQ(Fields.BitsOffset, 21u);
    EXPECT_EQ(Fields.BitsSize, 1u);
    std::vector<std::string> Shown;
    for (const auto& Field : Fields.Visible)
        Shown.push_back(Field.Name + " " + std::to_string(Field.SizeBit) + " " +
                        std::to_string(Field.NullBit));
    EXPECT_EQ(Shown, (std::vector<std::string>{"PLAIN -1 -1", "BYTES 0 1", "MAYBE -1 3", "TEXT 4 -1"}));
}

TEST(KvDbaseHeader, WithoutBitsNoValueIsNullAndNoneHasASize)
{
    const auto File = TDbaseBuilder(0x30).Field("A", 'C', 4, 0, 2).Field("B", 'V', 4).Build();
    for (const auto& Field : ReadDbaseHeader(File, "a.dbf").Fields.Visible) {
        EXPECT_EQ(Field.NullBit, TKvDbaseField::NoBit);
        EXPECT_EQ(Field.SizeBit, TKvDbaseField::NoBit);
    }
}

TEST(KvDbaseHeader, FlagsBelongToVisualFoxProAlone)
{
    const auto File = TDbaseBuilder(0x03).Field("A", 'C', 4, 0, 7).Build();
    const auto Field = ReadDbaseHeader(File, "a.dbf").Fields.Visible.at(0);
    EXPECT_EQ(Field.Type, ftString);
    EXPECT_EQ(Field.NullBit, TKvDbaseField::NoBit);
}

TEST(KvDbaseHeader, LongTextsHaveTheHighByteOfTheirSizeAmongTheDecimals)
{
    const auto Long = TDbaseBuilder().Field("LONG", 'C', 1000).Field("B", 'C', 3).Build();
    const auto Header = ReadDbaseHeader(Long, "a.dbf");
    EXPECT_EQ(Header.Fields.Visible[0].Size, 1000u);
    EXPECT_EQ(Header.Fields.Visible[1].Offset, 1001u);
    const auto Short = TDbaseBuilder().Field("SHORT", 'C', 10, 5).Build();
    EXPECT_EQ(ReadDbaseHeader(Short, "a.dbf").Fields.Visible[0].Size, 10u)
        << "decimals of a text mean nothing";
}

TEST(KvDbaseHeader, TheListOfFieldsMayLackItsEnd)
{
    auto File = Simple().Build();
    File.erase(96, 1);
    const auto Header = ReadDbaseHeader(With(std::move(File), 8, std::string("\x60\x00", 2)), "a.dbf");
    EXPECT_EQ(Header.Fields.Visible.size(), 2u);
}

TEST(KvDbaseHeader, AFieldThatNobodyKnowsIsLeftOutAlone)
{
    const auto File = TDbaseBuilder(0x32)
                          .Field("A", 'C', 3)
                          .Field("ODD", 'X', 4, 0, 2)
                          .Field("NARROW", 'C', 0)
                          .Field("LONG", 'L', 2)
                          .Field("MAYBE", 'I', 4, 0, 2)
                          .Field("_NullFlags", '0', 1, 0, 5)
                          .Build();
    const auto Fields = ReadDbaseHeader(File, "a.dbf").Fields;
    ASSERT_EQ(Fields.Visible.size(), 2U);
    EXPECT_EQ(Fields.Visible[1].Name, "MAYBE");
    EXPECT_EQ(Fields.Visible[1].Offset, 10U);
    EXPECT_EQ(Fields.Visible[1].NullBit, 1) << "the field before has bit 0";
    std::vector<std::string> Reasons;
    for (const auto& Each : Fields.LeftOut)
        Reasons.push_back(Each.Name + ": " + Each.Reason);
    EXPECT_EQ(Reasons, (std::vector<std::string>{"ODD: field 2 has the unknown type 'X'",
                                                 "NARROW: field 3 cannot have a size of 0",
                                                 "LONG: field 4 cannot have a size of 2"}));
    EXPECT_EQ(Fields.BytesLeftOut, 0U);
}

TEST(KvDbaseHeader, RecordsMayBeLongerThanTheirFieldsWhereTheListIsSound)
{
    EXPECT_EQ(ReadDbaseHeader(With(Simple().Build(), 10, "\x12"), "a.dbf").Fields.BytesLeftOut, 2U);
    auto Fox = Simple(0x30).Build();
    Fox.insert(97, 263, '\0');                      // where it names its database
    Fox = With(With(Fox, 8, "\x68\x01"), 10, "\x13");
    EXPECT_EQ(ReadDbaseHeader(Fox, "a.dbf").Fields.BytesLeftOut, 3U);
}

TEST(KvDbaseHeader, FieldsOfDbase7MayBeListedAsBefore)
{
    for (const unsigned Version : {0x04u, 0x8Cu}) {
        const auto File = With(Simple().Build(), 0, std::string(1, static_cast<char>(Version)));
        EXPECT_TRUE(IsDbase(File));
        const auto Header = ReadDbaseHeader(File, "a.dbf");
        ASSERT_EQ(Header.Fields.Visible.size(), 2U);
        EXPECT_EQ(Header.Fields.Visible[1].Name, "QTY");
    }
}

TEST(KvDbaseHeader, ADriverNamesTheCodePage)
{
    EXPECT_EQ(ReadDbaseHeader(Simple().Build(), "a.dbf").CodePage, "");
    EXPECT_EQ(ReadDbaseHeader(Simple().Language(0x65).Build(), "a.dbf").CodePage, "866");
    EXPECT_EQ(ReadDbaseHeader(Simple(0x8C).Language("DB437US0").Build(), "a.dbf").CodePage, "437");
    EXPECT_EQ(ReadDbaseHeader(Simple(0x8C).Language(0x02).Language("DBWINUS0").Build(), "a.dbf").CodePage,
              "850");
}

TEST(KvDbaseHeader, KnowsItsFilesByTheirFirstBytes)
{
    for (const unsigned Version : {0x02u, 0x03u, 0x30u, 0x8Cu, 0xF5u})
        EXPECT_TRUE(IsDbase(Simple(Version).Build())) << Version;
    EXPECT_FALSE(IsDbase(""));
    EXPECT_FALSE(IsDbase("\x03"));
    EXPECT_FALSE(IsDbase("NAME;QTY\nAda;3\nBob;5\nCy;7\nDee;11\n"));
    EXPECT_FALSE(IsDbase(With(Simple().Build(), 2, "\x0D"))) << "a thirteenth month";
    EXPECT_FALSE(IsDbase(With(Simple().Build(), 8, std::string("\x20\0", 2)))) << "a header without fields";
}

TEST_P(KvDbaseHeaderRefuses, FilesThatAreNoTables)
{
    EXPECT_EQ(MessageOf(GetParam().File), "File \"a.dbf\" is no dBase table: " + GetParam().Reason);
}

INSTANTIATE_TEST_SUITE_P(
    , KvDbaseHeaderRefuses,
    testing::Values(
        TRefused{"Empty", "", "it is empty"},
        TRefused{"UnknownVersion", "SQLite format 3", "its version 0x53 is unknown"},
        TRefused{"OnlyAVersion", "\x03", "Unexpected end of data at offset 1"},
        TRefused{"CutWithinFields", Simple().Build().substr(0, 90), "Unexpected end of data at offset 90"},
        TRefused{"Dbase2Cut", Simple(0x02).Build().substr(0, 500), "Unexpected end of data at offset 500"},
        TRefused{"HeaderTooSmall", With(Simple().Build(), 8, "\x1F"), "Unexpected end of data at offset 31"},
        TRefused{"NoFields", TDbaseBuilder().Record({}).Build(), "it has no fields"},
        TRefused{"UnknownTypes", TDbaseBuilder().Field("A", 'X', 1).Field("B", 'Z', 1).Build(),
                 "field 1 has the unknown type 'X'"},
        TRefused{"TextWithoutSize", TDbaseBuilder().Field("A", 'C', 0).Build(),
                 "field 1 cannot have a size of 0"},
        TRefused{"LongLogical", TDbaseBuilder().Field("A", 'L', 2).Build(),
                 "field 1 cannot have a size of 2"},
        TRefused{"ShortDate", TDbaseBuilder().Field("A", 'D', 7).Build(), "field 1 cannot have a size of 7"},
        TRefused{"ShortMemo", TDbaseBuilder(0x83).Field("A", 'M', 9).Build(),
                 "field 1 cannot have a size of 9"},
        TRefused{"FieldOutsideTheRecord", With(Simple().Build(), 10, "\x0F"),
                 "field 2 ends outside its records of 15 bytes"},
        TRefused{"ListThatEndsTooEarly", With(Simple().Build(), 64, "\x0D"),
                 "its records have 16 bytes, their fields and the mark of deleted ones 11"},
        TRefused{"ListWithoutItsEndTooSmall", With(With(Simple().Build(), 96, " "), 10, "\x11"),
                 "its records have 17 bytes, their fields and the mark of deleted ones 16"},
        TRefused{"NoRecordSize", With(Simple().Build(), 10, std::string(1, '\0')),
                 "field 1 ends outside its records of 0 bytes"},
        TRefused{"TooFewBits",
                 TDbaseBuilder(0x30)
                     .Field("A", 'I', 4, 0, 2)
                     .Field("B", 'V', 9, 0, 2)
                     .Field("C", 'V', 9, 0, 2)
                     .Field("D", 'V', 9, 0, 2)
                     .Field("E", 'V', 9, 0, 2)
                     .Field("F", '0', 1)
                     .Build(),
                 "its records have too few bits for fields without a value"}),
    [](const auto& Info) { return Info.param.Name; });

TEST(KvDbaseHeader, AnEncryptedTableIsRefusedByThatName)
{
    EXPECT_EQ(MessageOf(Simple().Encrypted().Build()), "File \"a.dbf\" is encrypted");
}

} // namespace kv
