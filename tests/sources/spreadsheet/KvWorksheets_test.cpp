// What holds for the worksheets of all formats, tried with each.
#include "KvWorksheets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>

#include "KvWorksheetBuilder.h"
#include "KvWorksheetEvents.h"
#include "Kvwks.h"
#include "Kvwq.h"

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace kv {

namespace {

struct TLotusFormat
{
    using TReader = TLotus123;
    static constexpr TWorksheetFormat Format = wfLotus;
    static constexpr std::uint16_t ColumnWidths = 0x24;
};

struct TQuattroFormat
{
    using TReader = TQuattroPro;
    static constexpr TWorksheetFormat Format = wfQuattro;
    static constexpr std::uint16_t ColumnWidths = 0x08;
};

template <class TFormat> class KvWorksheets : public testing::Test
{
protected:
    using TReader = typename TFormat::TReader;

    static TWorksheetBuilder Sheet() { return TWorksheetBuilder(TFormat::Format); }
    static auto Events(const TWorksheetBuilder& Builder, TSpreadSheetExtensions Extensions = {})
    {
        return EventsOf<TReader>(Builder.Build(), Extensions);
    }
    void Load(const TWorksheetBuilder& Builder)
    {
        Reader.LoadFromFile(Folder.Write("sheet", Builder.Build()));
    }
    TSpreadSheetCells& Cells() { return Reader.Sheets[0].Cells; }

    TTempFolder Folder;
    TReader Reader;
};

using TFormats = testing::Types<TLotusFormat, TQuattroFormat>;
TYPED_TEST_SUITE(KvWorksheets, TFormats);

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TYPED_TEST(KvWorksheets, ABeginRecordAloneIsAnEmptySheet)
{
    EXPECT_THAT(this->Events(this->Sheet()), IsEmpty());
    this->Load(this->Sheet());
    EXPECT_EQ(this->Reader.Sheets.Count(), 0u);
}

TYPED_TEST(KvWorksheets, RaisesTheCellsOfItsOneSheetInTheOrderOfTheFile)
{
    const auto Sheet = this->Sheet().Number(2, 5, 1.5).Label(0, 7, "abc").Integer(1, 0, 300).Blank(3, 3)
                                    .End();
    EXPECT_THAT(this->Events(Sheet), ElementsAre("row 5 column 2: number 1.5 left",
                                                 "row 7 column 0: text abc left",
                                                 "row 0 column 1: integer 300 left",
                                                 "row 3 column 3: null left"));
}

TYPED_TEST(KvWorksheets, TheModelNamesTheSheetSheet1)
{
    this->Load(this->Sheet().Range(1, 2).Integer(0, 0, 7).Blank(1, 1).Number(1, 2, 0.5));
    ASSERT_EQ(this->Reader.Sheets.Count(), 1u);
    EXPECT_EQ(this->Reader.Sheets[0].Caption, "Sheet1");
    EXPECT_EQ(this->Cells().GetValue(0, 0), TVariant(7));
    EXPECT_TRUE(this->Cells().GetValue(1, 1).IsNull()); // a blank cell is none
    EXPECT_EQ(this->Cells().GetValue(1, 2), TVariant(0.5));
}

TYPED_TEST(KvWorksheets, AnotherLoadStartsAnew)
{
    this->Load(this->Sheet().Range(9, 9).Integer(0, 0, 7));
    this->Load(this->Sheet().Integer(1, 1, 8));
    EXPECT_TRUE(this->Cells().GetValue(0, 0).IsNull());
    EXPECT_EQ(this->Cells().LastRow, 0);
}

TYPED_TEST(KvWorksheets, RangeRaisesTheLastNumbersAndNotCounts)
{
    const auto Sheet = this->Sheet().Record(0x06, TBytes().U16(1).U16(2).U16(25).U16(8191));
    EXPECT_THAT(this->Events(Sheet), ElementsAre("rows 2 to 8191, columns 1 to 25"));
    this->Load(Sheet);
    EXPECT_EQ(this->Cells().LastRow, 8191);
    EXPECT_EQ(this->Cells().LastColumn, 25);
}

TYPED_TEST(KvWorksheets, WithoutARangeTheLastRowIs0)
{
    this->Load(this->Sheet().Integer(0, 4, 7));
    EXPECT_EQ(this->Cells().LastRow, 0);
    EXPECT_EQ(this->Cells().GetValue(0, 4), TVariant(7));
}

TYPED_TEST(KvWorksheets, ARangeMayBeLongerThanNeeded)
{
    const auto Sheet =
        this->Sheet().Record(0x06, TBytes().U16(0).U16(0).U16(2).U16(3).Zeros(8)); // longer than needed
    EXPECT_THAT(this->Events(Sheet), ElementsAre("rows 0 to 3, columns 0 to 2"));
}

TYPED_TEST(KvWorksheets, ANegativeIntegerArrivesUnsigned)
{
    EXPECT_THAT(this->Events(this->Sheet().Integer(0, 0, -1).Integer(0, 1, -2).Integer(0, 2, 32767)),
                ElementsAre("row 0 column 0: integer 65535 left", "row 1 column 0: integer 65534 left",
                            "row 2 column 0: integer 32767 left"));
}

TYPED_TEST(KvWorksheets, WithTheExtensionIntegersAreSigned)
{
    EXPECT_THAT(this->Events(this->Sheet().Integer(0, 0, -1).Integer(0, 1, -32768).Integer(0, 2, 32767),
                             {seSignedIntegers}),
                ElementsAre("row 0 column 0: integer -1 left", "row 1 column 0: integer -32768 left",
                            "row 2 column 0: integer 32767 left"));
}

TYPED_TEST(KvWorksheets, AlignmentIsLookedForInByte6OfAnyCell)
{
    // The high byte of an integer, the second byte of a double.
    EXPECT_THAT(this->Events(this->Sheet()
                                 .Integer(0, 0, '^' << 8)
                                 .Integer(0, 1, '"' << 8)
                                 .Integer(0, 2, '\'' << 8)
                                 .Number(0, 3, std::bit_cast<double>(0x3FF0'0000'0000'5E00))
                                 .Number(0, 4, std::bit_cast<double>(0x3FF0'0000'0000'2200))
                                 .Number(0, 5, std::bit_cast<double>(0x3FF0'0000'0000'005E))),
                ElementsAre("row 0 column 0: integer 24064 right", "row 1 column 0: integer 8704 center",
                            "row 2 column 0: integer 9984 left", HasSubstr(" right"), HasSubstr(" center"),
                            HasSubstr(" left")));
    EXPECT_THAT(this->Events(this->Sheet().Record(0x0C, TBytes().Zeros(6).U8('^'))),
                ElementsAre("row 0 column 0: null right"));
}

TYPED_TEST(KvWorksheets, ColumnWidthsAreRaisedForEachColumn)
{
    constexpr auto Id = TypeParam::ColumnWidths;
    EXPECT_THAT(this->Events(this->Sheet().Record(Id, TBytes().U8(2).U8(4).U16(10 * 256 + 255))),
                ElementsAre("column 2: width 10", "column 3: width 10", "column 4: width 10"));
    EXPECT_THAT(this->Events(this->Sheet().Record(Id, TBytes().U8(255).U8(255).U16(256))),
                ElementsAre("column 255: width 1"));
    EXPECT_THAT(this->Events(this->Sheet().Record(Id, TBytes().U8(4).U8(2).U16(256))), IsEmpty());
}

TYPED_TEST(KvWorksheets, ARecordOfColumnWidthsThatHoldsASettingIsPassedOver)
{
    EXPECT_THAT(this->Events(this->Sheet().Record(TypeParam::ColumnWidths, "\0"s)), IsEmpty());
    EXPECT_THAT(this->Events(this->Sheet().Record(TypeParam::ColumnWidths, "\0\0\x0A"s)), IsEmpty());
}

TYPED_TEST(KvWorksheets, OtherRecordsArePassedOver)
{
    auto Sheet = this->Sheet();
    for (std::uint16_t Id = 0x02; Id < 0x100; ++Id)
        if (Id != 0x06 && Id != TypeParam::ColumnWidths && (Id < 0x0C || Id > 0x0F))
            Sheet.Record(Id, "x");
    EXPECT_THAT(this->Events(Sheet.Record(0x5405, "\x01H").Record(0xFFFF, "").Integer(0, 0, 7)),
                ElementsAre("row 0 column 0: integer 7 left"));
}

TYPED_TEST(KvWorksheets, ARecordOfLengthZeroIsOnlyAHeader)
{
    auto Sheet = this->Sheet();
    for (const int Id : {0x00, 0x06, 0x0C, 0x0D, 0x0E, 0x0F, 0x10, 0x33})
        Sheet.Record(static_cast<std::uint16_t>(Id), "");
    EXPECT_THAT(this->Events(Sheet.Integer(0, 0, 7), {seFormulaResults}),
                ElementsAre("row 0 column 0: integer 7 left"));
}

TYPED_TEST(KvWorksheets, OnlyAssignedEventsAreRaised)
{
    this->Reader.FileName =
        this->Folder.Write("sheet", this->Sheet()
                                        .Range(1, 1)
                                        .Record(TypeParam::ColumnWidths, TBytes().Zeros(4))
                                        .Record(0x06, "x")
                                        .Record(0x0D, "x")
                                        .Build());
    EXPECT_NO_THROW(this->Reader.ImportFromStream()); // not even what is too short is looked at
}

TYPED_TEST(KvWorksheets, ALabelOfTheLeastLengthIsEmpty)
{
    EXPECT_THAT(this->Events(this->Sheet().Label(0, 0, "")), ElementsAre("row 0 column 0: text  left"));
}

TYPED_TEST(KvWorksheets, ALabelMayBeAsLongAsARecord)
{
    const std::string Text(65535 - 7, 'x');
    const auto Body = TBytes().Zeros(7).Text(Text).Str();
    this->Load(this->Sheet().Record(0x0F, Body));
    EXPECT_EQ(this->Cells().GetValue(0, 0).Text().size(), Text.size());
}

TYPED_TEST(KvWorksheets, TextKeepsItsBytes)
{
    this->Load(this->Sheet().Label(0, 0, "\x80\xE9\xFF two\r\nlines"));
    EXPECT_EQ(this->Cells().GetValue(0, 0).Text(), "\x80\xE9\xFF two\r\nlines");
}

// Files that are not what they should be.

TYPED_TEST(KvWorksheets, AFileThatDoesNotBeginLikeAWorksheetIsOfAnotherFormat)
{
    const std::string Message = TypeParam::Format == wfLotus ? "File is not a Lotus 1-2-3 file"
                                                             : "File is not a QuattroPro file";
    for (const auto& Bytes : {""s, "\0"s, "Name;Place\nAda;London\n"s, "\x0D\0\x07\0\0\0\0\0\0\x07\0"s,
                              "\0\0\0\0\0\0\0\0"s, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"s})
        EXPECT_THAT(EventsOf<typename TypeParam::TReader>(Bytes), ElementsAre(Message));
}

TYPED_TEST(KvWorksheets, AWrongVersionEndsTheLoadAndKeepsTheCellsBeforeIt)
{
    const std::string Message = TypeParam::Format == wfLotus ? "File is not a Lotus 1-2-3 file"
                                                             : "File is not a QuattroPro file";
    for (const unsigned Version : {0x0000, 0x0002, 0x0403, 0x0407, 0x1000, 0x1002, 0x5121, 0x2051})
        EXPECT_THAT(
            this->Events(this->Sheet().Integer(0, 0, 7).Record(0x00, TBytes().U16(Version)).Integer(0, 1, 8)),
            ElementsAre("row 0 column 0: integer 7 left", Message));
}

TYPED_TEST(KvWorksheets, ARecordTooShortForWhatItHoldsIsRefused)
{
    struct TRow
    {
        std::uint16_t Id;
        int Size;
        std::string Message;
    };
    const TRow Rows[] = {
        {0x00, 1, "Record 0x0000 at offset 17 is too short: 1 bytes, 2 are needed"},
        {0x0C, 3, "Record 0x000C at offset 17 is too short: 3 bytes, "},
        {0x0D, 6, "Record 0x000D at offset 17 is too short: 6 bytes, 7 are needed"},
        {0x0E, 12, "Record 0x000E at offset 17 is too short: 12 bytes, 13 are needed"},
        {0x0F, 6, "Record 0x000F at offset 17 is too short: 6 bytes, 7 are needed"},
        {0x10, 12, "Record 0x0010 at offset 17 is too short: 12 bytes, 13 are needed"},
        {0x33, 3, "Record 0x0033 at offset 17 is too short: 3 bytes, "},
    };
    for (const auto& Row : Rows) {
        const auto Sheet = this->Sheet().Integer(0, 0, 7).Record(Row.Id, std::string(Row.Size, '\0'));
        EXPECT_THAT(this->Events(Sheet, {seFormulaResults}),
                    ElementsAre("row 0 column 0: integer 7 left", HasSubstr(Row.Message)));
    }
}

TYPED_TEST(KvWorksheets, ACutFileGivesTheCellsBeforeTheCut)
{
    const auto Whole = this->Sheet().Integer(0, 0, 7).Number(0, 1, 1.5).Build(); // 6, 11 and 17 bytes
    EXPECT_THAT(EventsOf<typename TypeParam::TReader>(Whole.substr(0, 33)),
                ElementsAre("row 0 column 0: integer 7 left",
                            "File is truncated: record 0x000E at offset 17 needs 13 bytes, 12 are left"));
    EXPECT_THAT(EventsOf<typename TypeParam::TReader>(Whole.substr(0, 20)),
                ElementsAre("row 0 column 0: integer 7 left",
                            "File is truncated: it ends within the header of the record at offset 17"));
    EXPECT_THAT(EventsOf<typename TypeParam::TReader>(Whole.substr(0, 5)),
                ElementsAre("File is truncated: record 0x0000 at offset 0 needs 2 bytes, 1 are left"));
}

TYPED_TEST(KvWorksheets, AFileNeedsNoEndRecord)
{
    EXPECT_THAT(this->Events(this->Sheet().Integer(0, 0, 7)), ElementsAre("row 0 column 0: integer 7 left"));
}

TYPED_TEST(KvWorksheets, RecordsBehindTheEndAreRead)
{
    EXPECT_THAT(this->Events(this->Sheet().End().Integer(0, 0, 7)),
                ElementsAre("row 0 column 0: integer 7 left"));
}

TYPED_TEST(KvWorksheets, WhatFillsABlockBehindTheEndIsNoCutRecord)
{
    for (const auto& Padding : {std::string(109, '\x1A'), std::string(126, '\0'), std::string(3, '\0'),
                                "\x0E"s})
        EXPECT_THAT(this->Events(this->Sheet().Integer(0, 0, 7).End().Bytes(Padding)),
                    ElementsAre("row 0 column 0: integer 7 left"));
}

TYPED_TEST(KvWorksheets, AFileThatCannotBeReadIsRefused)
{
    EXPECT_THROW(this->Reader.LoadFromFile(this->Folder / "none"), Exception);
    EXPECT_THROW(this->Reader.LoadFromFile(this->Folder.Path.string()), EFileError);
}

// Extensions, the older reading first.

TYPED_TEST(KvWorksheets, FormulasAreNoCells)
{
    EXPECT_THAT(this->Events(this->Sheet().Formula(0, 0, 1.5).TextFormula(0, 1, "abc")), IsEmpty());
}

TYPED_TEST(KvWorksheets, WithTheExtensionFormulasArriveWithTheirResult)
{
    this->Reader.Extensions = {seFormulaResults};
    this->Load(this->Sheet().Formula(0, 0, 1.5).TextFormula(0, 1, "abc").TextFormula(0, 2, ""));
    EXPECT_EQ(this->Cells().GetValue(0, 0), TVariant(1.5));
    EXPECT_EQ(this->Cells().GetValue(0, 1), TVariant("abc"));
    EXPECT_EQ(this->Cells().GetValue(0, 2), TVariant(""));
}

TYPED_TEST(KvWorksheets, TheTextOfAFormulaNeedNotFollowAtOnce)
{
    this->Reader.Extensions = {seFormulaResults};
    const auto Cell = TBytes().U8(0xF1).U16(0).U16(0).Str();
    const auto Text = TypeParam::Format == wfLotus ? "abc\0"s : "\x03" "abc"s;
    this->Load(this->Sheet().Formula(0, 0, NotANumber).Record(0x9D, Cell).Record(0x33, Cell + Text));
    EXPECT_EQ(this->Cells().GetValue(0, 0), TVariant("abc"));
}

TYPED_TEST(KvWorksheets, NumbersThatStandForAnErrorAreNumbers)
{
    EXPECT_THAT(this->Events(this->Sheet().Number(0, 0, Infinity).Number(0, 1, -Infinity)),
                ElementsAre(HasSubstr("number"), HasSubstr("number")));
}

TYPED_TEST(KvWorksheets, WithTheExtensionErrorsArriveAsSuch)
{
    EXPECT_THAT(
        this->Events(this->Sheet().Number(0, 0, Infinity).Formula(0, 1, -Infinity).Number(0, 2, NotANumber),
                     {seFormulaResults}),
        ElementsAre("row 0 column 0: text NA left", "row 1 column 0: text ERR left",
                    "row 2 column 0: text ERR left"));
}

TYPED_TEST(KvWorksheets, CellsThatShowADateAreNumbers)
{
    EXPECT_THAT(this->Events(this->Sheet().Format(0x72).Number(0, 0, 35262.5).Integer(0, 1, 35262)),
                ElementsAre("row 0 column 0: number 35262.5 left", "row 1 column 0: integer 35262 left"));
}

TYPED_TEST(KvWorksheets, WithTheExtensionCellsThatShowADateAreDates)
{
    const auto Sheet = this->Sheet()
                           .Format(0x72)
                           .Number(0, 0, 35262.5)
                           .Integer(0, 1, 35262)
                           .Formula(0, 2, 0.25)
                           .Label(0, 3, "x");
    EXPECT_THAT(this->Events(Sheet, {seCustomDates, seFormulaResults}),
                ElementsAre("row 0 column 0: date 35262.5 left", "row 1 column 0: date 35262 left",
                            "row 2 column 0: date 0.25 left", "row 3 column 0: text x left"));
}

TYPED_TEST(KvWorksheets, NineFormatsShowADate)
{
    // Kind 7, with and without protection: 2 to 4 and 7 to 12 are dates and times.
    for (unsigned Format = 0; Format < 0x100; ++Format) {
        const unsigned Variety = Format & 0x0F;
        const bool IsDate =
            (Format & 0x70) == 0x70 && Variety >= 2 && Variety <= 12 && Variety != 5 && Variety != 6;
        EXPECT_THAT(this->Events(this->Sheet().Format(static_cast<std::uint8_t>(Format)).Number(0, 0, 1),
                                 {seCustomDates}),
                    ElementsAre(HasSubstr(IsDate ? "date 1" : "number 1")))
            << Format;
    }
}

TYPED_TEST(KvWorksheets, TheExtentIsThatOfTheRange)
{
    EXPECT_THAT(this->Events(this->Sheet().Range(1, 1).Integer(4, 9, 7)),
                ElementsAre("rows 0 to 1, columns 0 to 1", "row 9 column 4: integer 7 left"));
}

TYPED_TEST(KvWorksheets, WithTheExtensionTheExtentIsThatOfTheCells)
{
    EXPECT_THAT(this->Events(this->Sheet().Range(1, 1).Integer(4, 3, 7).Integer(2, 9, 8).Blank(99, 99),
                             {seCellExtent}),
                ElementsAre("rows 0 to 1, columns 0 to 1", "row 3 column 4: integer 7 left",
                            "row 9 column 2: integer 8 left", "row 99 column 99: null left",
                            "rows 0 to 10, columns 0 to 5"));
    EXPECT_THAT(this->Events(this->Sheet().Range(1, 1), {seCellExtent}),
                ElementsAre("rows 0 to 1, columns 0 to 1"));
}

TYPED_TEST(KvWorksheets, WithTheExtensionTheLastRowIsCounted)
{
    this->Reader.Extensions = {seCellExtent};
    this->Load(this->Sheet().Range(0, 4).Integer(0, 4, 7));
    EXPECT_EQ(this->Cells().LastRow, 5);
    EXPECT_EQ(this->Cells().LastColumn, 1);
    this->Load(this->Sheet().Integer(2, 1, 7));     // nothing is left of the sheet before
    EXPECT_EQ(this->Cells().LastRow, 2);
    EXPECT_EQ(this->Cells().LastColumn, 3);
}

TYPED_TEST(KvWorksheets, OtherExtensionsChangeNothing)
{
    const auto Sheet = this->Sheet().Range(0, 4).Integer(0, 4, -7).Number(0, 5, 1.5).Label(0, 6, "\xE9");
    EXPECT_EQ(this->Events(Sheet, {seDateMode, seFileCodePage, seWideRows}), this->Events(Sheet));
}

TYPED_TEST(KvWorksheets, AFormatShowsTimesOfDayOrDays)
{
    for (const auto Format : std::initializer_list<std::uint8_t>{0xF2, 0xF3, 0xF4, 0xF9, 0xFA}) // days
        EXPECT_THAT(this->Events(this->Sheet().Format(Format).Number(0, 0, 61.5), {seCustomDates}),
                    ElementsAre("row 0 column 0: date 61.5 left"));
    for (const auto Format : std::initializer_list<std::uint8_t>{0xF7, 0xF8, 0xFB, 0xFC})
        EXPECT_THAT(this->Events(this->Sheet().Format(Format).Number(0, 0, 0.25).Number(0, 1, -0.25),
                                 {seCustomDates, seDateMode}),
                    ElementsAre("row 0 column 0: date 0.25 left", "row 1 column 0: text -06:00:00 left"));
}

TYPED_TEST(KvWorksheets, WhatIsNoWorksheetIsNamedUnderTheExtension)
{
    const std::string NotThis(this->Reader.ClassName() == "TLotus123" ? "File is not a Lotus 1-2-3 file"
                                                                      : "File is not a QuattroPro file");
    EXPECT_THAT(EventsOf<typename TestFixture::TReader>("a;b\r\n"), ElementsAre(NotThis));
    EXPECT_THAT(EventsOf<typename TestFixture::TReader>("a;b\r\n", {seTellingErrors}),
                ElementsAre(NotThis + ", but text"));
}

} // namespace kv
