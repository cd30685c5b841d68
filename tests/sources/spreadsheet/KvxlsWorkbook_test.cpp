#include "KvxlsWorkbook.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <string>

#include "KvBiffBuilder.h"
#include "KvBiffStrings.h"
#include "KvxlsEvents.h"

using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

/// The events of a workbook that consists of this one sheet, without the sheet's own.
TEventLines ReadSheet(const TBiffBuilder& Sheet, const TBiffBuilder& Globals)
{
    auto Lines =
        TRecordingExcel().Workbook(TWorkbookBuilder(Sheet.Version).Globals(Globals).Sheet("S", Sheet).Build(),
                                   Sheet.Version == bv8 ? evExcel8 : evExcel7);
    EXPECT_EQ(Lines.front(), "sheet 0 \"S\"");
    Lines.erase(Lines.begin());
    return Lines;
}

/// XF 0 is no date, XF 1 one.
TEventLines ReadSheet(const TBiffBuilder& Sheet)
{
    return ReadSheet(Sheet, TBiffBuilder(Sheet.Version).Xf(0).Xf(14));
}

std::string F64(double Value) { return TBytes().F64(Value); }

TBiffBuilder Cells(int Value) { return TBiffBuilder().Rk(0, 0, RkOfInteger(Value)); }

/// Three sheets with one cell each.
TWorkbookBuilder ThreeSheets()
{
    return TWorkbookBuilder().Sheet("One", Cells(1)).Sheet("Two", Cells(2)).Sheet("Three", Cells(3));
}

} // namespace

// --- Cells -------------------------------------------------------------------------------------------

TEST(KvxlsWorkbook, NumbersGoToTheRightAndDatesToTheLeft)
{
    for (const auto Version : {bv5, bv8}) {
        TBiffBuilder Sheet(Version);
        Sheet.Number(1, 2, 1.5).Number(65535, 255, 36526.25, 1);
        EXPECT_THAT(ReadSheet(Sheet),
                    ElementsAre("cell 0: 1 2 double 1.5 right", "cell 0: 65535 255 date 36526.25 left"));
    }
}

TEST(KvxlsWorkbook, RkValues)
{
    TBiffBuilder Sheet;
    Sheet.Rk(0, 0, 2).Rk(0, 1, 6).Rk(0, 2, 7).Rk(0, 3, RkOfInteger(36526), 1).Rk(0, 4, RkOfDouble(-2.5));
    EXPECT_THAT(ReadSheet(Sheet), ElementsAre("cell 0: 0 0 double 0 right", "cell 0: 0 1 double 1 right",
                                              "cell 0: 0 2 double 0.01 right", "cell 0: 0 3 date 36526 left",
                                              "cell 0: 0 4 double -2.5 right"));
}

TEST(KvxlsWorkbook, RkValuesHaveAnOlderRecordToo)
{
    EXPECT_THAT(ReadSheet(TBiffBuilder().Record(0x007E, TBytes().U16(1).U16(2).U16(1).U32(6))),
                ElementsAre("cell 0: 1 2 date 1 left"));
}

TEST(KvxlsWorkbook, SeveralRkValuesInOneRecord)
{
    const auto Row = TBytes().U16(3).U16(5).U16(0).U32(6).U16(1).U32(10).U16(0).U32(7).U16(7);
    EXPECT_THAT(ReadSheet(TBiffBuilder().Record(0x00BD, Row)),
                ElementsAre("cell 0: 3 5 double 1 right", "cell 0: 3 6 date 2 left",
                            "cell 0: 3 7 double 0.01 right"));
    const auto None = TBytes().U16(3).U16(5).U16(4);
    EXPECT_THAT(ReadSheet(TBiffBuilder().Record(0x00BD, None)), IsEmpty());
    const auto NotAWholeOne = TBytes(None).Zeros(5);
    EXPECT_THAT(ReadSheet(TBiffBuilder().Record(0x00BD, NotAWholeOne)), IsEmpty());
}

TEST(KvxlsWorkbook, SeveralBlanksInOneRecord)
{
    EXPECT_THAT(ReadSheet(TBiffBuilder().Record(0x00BE, TBytes().U16(3).U16(5).U16(0).U16(0).U16(6))),
                ElementsAre("cell 0: 3 5 null left", "cell 0: 3 6 null left"));
    EXPECT_THAT(ReadSheet(TBiffBuilder().Record(0x00BE, TBytes().U16(3).U16(5).U16(4))), IsEmpty());
}

TEST(KvxlsWorkbook, BooleansAndErrors)
{
    TBiffBuilder Sheet;
    Sheet.BoolErr(0, 0, 1, false).BoolErr(0, 1, 0, false).BoolErr(0, 2, 0x17, true).BoolErr(0, 3, 0x99, true);
    Sheet.Record(0x0005, TBytes().U16(1).U16(300).U16(0).U8(1).U8(0));
    EXPECT_THAT(ReadSheet(Sheet),
                ElementsAre("cell 0: 0 0 boolean True left", "cell 0: 0 1 boolean False left",
                            "cell 0: 0 2 string #REF! left", "cell 0: 0 3 string #??? left",
                            "cell 0: 1 300 boolean True left"));
}

TEST(KvxlsWorkbook, FormulasAreTheirNumbers)
{
    for (const auto Version : {bv5, bv8}) {
        TBiffBuilder Sheet(Version);
        Sheet.Formula(0, 0, F64(2.5)).Formula(0, 1, F64(36526), 1);
        EXPECT_THAT(ReadSheet(Sheet),
                    ElementsAre("cell 0: 0 0 double 2.5 right", "cell 0: 0 1 date 36526 left"));
    }
}

TEST(KvxlsWorkbook, AFormulaIsANumberWhateverItsResult)
{
    TBiffBuilder Sheet;
    Sheet.Formula(0, 0, TextResult()).String("text").Formula(0, 1, BooleanResult(true));
    TRecordingExcel Excel;
    std::vector<double> Numbers;
    Excel.Reader.OnCellValue = [&](auto&, int, int, int, const TVariant& Value, TAlignment) {
        Numbers.push_back(Value.Double());
    };
    Excel.Workbook(TWorkbookBuilder().Sheet("S", Sheet).Build());
    ASSERT_EQ(Numbers.size(), 2u);
    EXPECT_TRUE(std::isnan(Numbers[0]) && std::isnan(Numbers[1]));
}

TEST(KvxlsWorkbook, LabelsAreEightBitText)
{
    for (const auto Version : {bv5, bv8})
        EXPECT_THAT(ReadSheet(TBiffBuilder(Version).CodePage(1252).Label(0, 300, "Gr\xFC\xDF")
                                                   .Label(1, 0, "")),
                    ElementsAre("cell 0: 0 300 string Gr\xFC\xDF left", "cell 0: 1 0 string  left"));
}

TEST(KvxlsWorkbook, SharedStrings)
{
    TBiffBuilder Sheet;
    const auto Strings = BiffSharedStrings({{.Text = u"first"}, {.Text = u"\u0416", .IsWide = true}});
    Sheet.LabelSst(0, 0, 1).LabelSst(0, 1, 0).LabelSst(0, 2, 1);
    const auto Stream =
        TBiffBuilder().Bof(bpGlobals).Str() + Strings + TBiffBuilder().Eof().Bof().Str() + Sheet.Str();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"", "cell 0: 0 0 string \xD0\x96 left",
                            "cell 0: 0 1 string first left", "cell 0: 0 2 string \xD0\x96 left"));
}

TEST(KvxlsWorkbook, ASharedStringThatIsNotThereIsTold)
{
    const auto Stream = TBiffBuilder().Bof(bpGlobals).Str() + BiffSharedStrings({{.Text = u"only"}}) +
                        TBiffBuilder().Bof().LabelSst(0, 0, 1).Str();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"",
                            "error: Record 0x00FD at offset 59: there is no shared string 1, only 1"));
    EXPECT_THAT(ReadSheet(TBiffBuilder().LabelSst(0, 0, 0)),
                ElementsAre("error: Record 0x00FD at offset 105: there is no shared string 0, only 0"));
}

TEST(KvxlsWorkbook, CellsInTheRecordsOfExcel2)
{
    TBiffBuilder Sheet;
    Sheet.Blank2(1, 0x123, "\0\0\2"sv).Integer2(2, 0x123, "\0\0\3"sv, 65535)
         .Number2(3, 0x123, "\0\0\1"sv, 1.5);
    Sheet.Number2(4, 4, "\1\0\3"sv, 2.5).Label2(5, 0x123, "\0\0\2"sv, "text");
    EXPECT_THAT(ReadSheet(Sheet), ElementsAre("cell 0: 1 291 null centre", "cell 0: 2 35 integer 65535 right",
                                              "cell 0: 3 35 double 1.5 left", "cell 0: 4 4 date 2.5 right",
                                              "cell 0: 5 35 string text centre"));
}

TEST(KvxlsWorkbook, OtherRecordsAreSkipped)
{
    TBiffBuilder Sheet;
    Sheet.Record(0x0007, "\4text"sv).Record(0x0207, "\4\0\0text"sv).Record(0x00D6, TBytes().Zeros(20));
    Sheet.Record(0x0206, TBytes().Zeros(20)).Record(0x0406, TBytes().Zeros(20)).Record(0x4444, "unknown");
    Sheet.Record(0x003C, "stray").DateMode(1).CodePage(1252);
    EXPECT_THAT(ReadSheet(Sheet), IsEmpty());
}

TEST(KvxlsWorkbook, UserDefinedDateFormatsAreNumbers)
{
    const auto Globals = TBiffBuilder().Format(164, "yyyy-mm-dd").Xf(0).Xf(164);
    EXPECT_THAT(ReadSheet(TBiffBuilder().Number(0, 0, 36526, 1), Globals),
                ElementsAre("cell 0: 0 0 double 36526 right"));
}

TEST(KvxlsWorkbook, TheDateModeIsNotRead)
{
    EXPECT_THAT(ReadSheet(TBiffBuilder().Number(0, 0, 1, 1), TBiffBuilder().DateMode(1).Xf(0).Xf(14)),
                ElementsAre("cell 0: 0 0 date 1 left"));
}

// --- Extents and sizes -------------------------------------------------------------------------------

TEST(KvxlsWorkbook, DimensionsArriveAsStored)
{
    EXPECT_THAT(ReadSheet(TBiffBuilder(bv8).Dimensions(2, 65536, 1, 256)),
                ElementsAre("dimensions 0: 2 65536 1 256"));
    EXPECT_THAT(ReadSheet(TBiffBuilder(bv5).Dimensions(2, 16384, 1, 256)),
                ElementsAre("dimensions 0: 2 16384 1 256"));
    EXPECT_THAT(ReadSheet(TBiffBuilder(bv8).Dimensions(0, 0xFFFFFFFF, 0, 0)),
                ElementsAre("dimensions 0: 0 -1 0 0"));
}

TEST(KvxlsWorkbook, HeightsAndWidthsArriveRaw)
{
    TBiffBuilder Sheet;
    Sheet.Record(0x0208, TBytes().U16(7).U16(0).U16(3).U16(300).Zeros(8));
    Sheet.Record(0x007D, TBytes().U16(1).U16(2).U16(2560).Zeros(6));
    Sheet.Record(0x007D, TBytes().U16(2).U16(1).U16(2560).Zeros(6));
    Sheet.Record(0x007D, TBytes().U16(254).U16(256).U16(100).Zeros(6)); // up to the end
    EXPECT_THAT(TRecordingExcel().WithSizes().Workbook(TWorkbookBuilder().Sheet("S", Sheet).Build()),
                ElementsAre("sheet 0 \"S\"", "height 0: 7 300", "width 0: 1 2560", "width 0: 2 2560",
                            "width 0: 254 100", "width 0: 255 100", "width 0: 256 100"));
    EXPECT_THAT(ReadSheet(Sheet), IsEmpty());
}

TEST(KvxlsWorkbook, NothingIsRaisedThatIsNotBound)
{
    TMSExcel Reader;
    const auto Stream =
        TWorkbookBuilder().Sheet("S", TBiffBuilder().Dimensions(0, 1, 0, 1).Number(0, 0, 1)).Build();
    EXPECT_TRUE(Reader.ReadWorkbookStream(Stream, evExcel8));
    EXPECT_EQ(Reader.SheetIndex, 0);
}

TEST(KvxlsWorkbook, ARecordLongerThanAnyOfItsVersionIsPassedOver)
{
    const auto LabelOf = [](TBiffVersion Version, unsigned BodySize) {
        return TBiffBuilder(Version).Label(0, 0, std::string(BodySize - 8, 'x')).Rk(1, 0, 6);
    };
    EXPECT_THAT(ReadSheet(LabelOf(bv5, 2080)).size(), 2u);
    EXPECT_THAT(ReadSheet(LabelOf(bv5, 2081)), ElementsAre("cell 0: 1 0 double 1 right"));
    EXPECT_THAT(ReadSheet(LabelOf(bv8, 8224)).size(), 2u);
    EXPECT_THAT(ReadSheet(LabelOf(bv8, 8225)), ElementsAre("cell 0: 1 0 double 1 right"));
}

TEST(KvxlsWorkbook, SharedStringsMayBeLongerThanAnyOtherRecord)
{
    const auto Stream =
        TBiffBuilder().Bof(bpGlobals).Str() +
        TBiffBuilder()
            .Record(0x00FC, TBytes().U32(1).U32(1).U16(9000).U8(0).Text(std::string(9000, 'x')))
            .Str() +
        TBiffBuilder().Bof().LabelSst(0, 0, 0).Str();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"", "cell 0: 0 0 string " + std::string(9000, 'x') + " left"));
}

// --- Sheets ------------------------------------------------------------------------------------------

TEST(KvxlsWorkbook, EverySheetIsAnnouncedAndRead)
{
    TRecordingExcel Excel;
    EXPECT_THAT(Excel.Workbook(ThreeSheets().Build()),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "sheet 1 \"Two\"",
                            "cell 1: 0 0 double 2 right", "sheet 2 \"Three\"", "cell 2: 0 0 double 3 right"));
    EXPECT_EQ(Excel.Reader.SheetIndex, 2);
}

TEST(KvxlsWorkbook, ASkippedSheetIsPassedOver)
{
    const auto Stream = ThreeSheets().Build();
    EXPECT_THAT(TRecordingExcel().Skipping(0).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "sheet 1 \"Two\"", "cell 1: 0 0 double 2 right",
                            "sheet 2 \"Three\"", "cell 2: 0 0 double 3 right"));
    EXPECT_THAT(TRecordingExcel().Skipping(1).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "sheet 1 \"Two\"",
                            "sheet 2 \"Three\"", "cell 2: 0 0 double 3 right"));
    EXPECT_THAT(TRecordingExcel().Skipping(2).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "sheet 1 \"Two\"",
                            "cell 1: 0 0 double 2 right", "sheet 2 \"Three\""));
}

TEST(KvxlsWorkbook, TheSheetAfterASkippedOneIsSought)
{
    // What stands between them is not looked at: here a record that reaches past the stream.
    auto Builder = TWorkbookBuilder().Sheet("One", TBiffBuilder().Number(0, 0, 1)).Sheet("Two", Cells(2));
    auto Stream = Builder.Build();
    const auto SizeOfNumber = Builder.OffsetOfSheet(0) + TBiffBuilder().Bof().Size() + 2;
    Stream.replace(SizeOfNumber, 2, "\xFF\xFF");
    EXPECT_THAT(TRecordingExcel().Skipping(0).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "sheet 1 \"Two\"", "cell 1: 0 0 double 2 right"));
}

TEST(KvxlsWorkbook, ASheetCannotBeSoughtBackwards)
{
    auto Builder = TWorkbookBuilder().Sheet("One", Cells(1)).Sheet("Two", Cells(2));
    auto Stream = Builder.Build();
    const auto SecondEntry = TBiffBuilder().Bof().Size() + 4 + 11 + 4;
    Stream.replace(SecondEntry, 4, TBytes().U32(0).Str());
    EXPECT_THAT(
        TRecordingExcel().Skipping(0).Workbook(Stream),
        ElementsAre("sheet 0 \"One\"",
                    "error: Record 0x0809 at offset 54: the next sheet cannot begin before it, at offset 0"));
    Stream.replace(SecondEntry, 4, TBytes().U32(5000).Str());
    EXPECT_THAT(TRecordingExcel().Skipping(0).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"",
                            "error: Unexpected end of data at offset " + std::to_string(Stream.size())));
}

TEST(KvxlsWorkbook, ReadingEndsWithTheLastSheet)
{
    for (const bool HasEntries : {true, false}) {
        const auto Stream = (HasEntries ? TWorkbookBuilder().Sheet("S", Cells(1)).Build()
                                        : TBiffBuilder().Bof(bpGlobals).Eof().Bof().Add(Cells(1)).Eof()
                                                        .Str()) +
                            Cells(9).Str() + "damaged";
        TRecordingExcel Excel;
        EXPECT_EQ(Excel.Workbook(Stream).back(), "cell 0: 0 0 double 1 right");
        EXPECT_TRUE(Excel.Reader.ReadWorkbookStream(Stream, evExcel8));
    }
}

TEST(KvxlsWorkbook, AStreamThatEndsBeforeItsLastSheetIsReadAndTold)
{
    TMSExcel Reader;
    EXPECT_FALSE(Reader.ReadWorkbookStream("", evExcel8));
    EXPECT_FALSE(Reader.ReadWorkbookStream(TBiffBuilder().Bof(bpGlobals).Eof().Str(), evExcel8));
    const auto Stream = TBiffBuilder().Bof(bpGlobals).Eof().Bof().Add(Cells(1)).Str();
    EXPECT_FALSE(Reader.ReadWorkbookStream(Stream, evExcel8));
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"", "cell 0: 0 0 double 1 right"));
}

TEST(KvxlsWorkbook, ASheetBeginsInTheBofOfAnyVersion)
{
    const auto Stream = TBiffBuilder(bv3).Bof().Add(TBiffBuilder().Rk(0, 0, 6)).Str();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"", "cell 0: 0 0 double 1 right"));
}

TEST(KvxlsWorkbook, WhatStandsInOtherPartsBelongsToTheSheetBefore)
{
    const auto Chart = TBiffBuilder().Bof(bpChart).Dimensions(0, 7, 0, 3).Number(0, 0, 9).Eof();
    for (const auto Part : {bpChart, bpMacro, bpModule}) {
        const auto Stream = TWorkbookBuilder()
                                .Sheet("One", TBiffBuilder().Add(Cells(1)).Add(Chart).Rk(1, 1, 6))
                                .Sheet("Other", Cells(7), Part)
                                .Sheet("Two", Cells(2))
                                .Build();
        EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                    ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "dimensions 0: 0 7 0 3",
                                "cell 0: 0 0 double 9 right", "cell 0: 1 1 double 1 right",
                                "cell 0: 0 0 double 7 right", "sheet 1 \"Other\"",
                                "cell 1: 0 0 double 2 right"));
    }
}

TEST(KvxlsWorkbook, WhatStandsBeforeTheFirstSheetHasTheSheetMinus1)
{
    const auto Stream = TWorkbookBuilder().Sheet("Chart", Cells(7), bpChart).Sheet("One", Cells(1)).Build();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("cell -1: 0 0 double 7 right", "sheet 0 \"Chart\"",
                            "cell 0: 0 0 double 1 right"));
}

TEST(KvxlsWorkbook, AnyEndWithinTheLastSheetEndsReading)
{
    const auto Chart = TBiffBuilder().Bof(bpChart).Number(0, 0, 9).Eof();
    const auto Sheet = TBiffBuilder().Add(Cells(1)).Add(Chart).Rk(1, 1, 6);
    EXPECT_THAT(TRecordingExcel().Workbook(TWorkbookBuilder().Sheet("One", Sheet).Build()),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "cell 0: 0 0 double 9 right"));
}

TEST(KvxlsWorkbook, EveryIdWithTheLowByteOfABofIsOne)
{
    const auto Stream = TWorkbookBuilder()
                            .Sheet("One",
                                   TBiffBuilder().Record(0x1009, TBytes().U16(0).U16(0x10)).Rk(0, 0, 6))
                            .Sheet("Two", {})
                            .Build();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "sheet 1 \"Two\"", "cell 1: 0 0 double 1 right"));
}

TEST(KvxlsWorkbook, NamesOfSheetsAreEightBitText)
{
    for (const auto Version : {bv5, bv8})
        EXPECT_THAT(TRecordingExcel().Workbook(
                        TWorkbookBuilder(Version).Sheet("Gr\xFC\xDF", TBiffBuilder(Version)).Build(),
                        Version == bv8 ? evExcel8 : evExcel7),
                    ElementsAre("sheet 0 \"Gr\xFC\xDF\""));
}

TEST(KvxlsWorkbook, SixteenBitNamesArriveAsTheirBytes)
{
    EXPECT_THAT(TRecordingExcel().Workbook(TWorkbookBuilder().Sheet(u"A\u0416", TBiffBuilder()).Build()),
                ElementsAre("sheet 0 \"A" + std::string(1, '\0') + "\x16\x04\""));
}

TEST(KvxlsWorkbook, ANameThatReachesPastItsEntryIsTold)
{
    for (const auto Version : {bv5, bv8}) {
        const auto Name = TBytes().Zeros(6).U8(3).Text(Version == bv8 ? "\0ab"sv : "ab"sv);
        const auto Stream = TBiffBuilder(Version).Bof(bpGlobals).Record(0x0085, Name).Str();
        EXPECT_THAT(TRecordingExcel().Workbook(Stream, Version == bv8 ? evExcel8 : evExcel7),
                    ElementsAre(Version == bv8
                                    ? "error: Record 0x0085 at offset 20 is too short: "
                                      "10 bytes, 11 are needed"
                                    : "error: Record 0x0085 at offset 12 is too short: "
                                      "9 bytes, 10 are needed"));
    }
}

// --- Failures ----------------------------------------------------------------------------------------

TEST(KvxlsWorkbook, AnEncryptedWorkbookIsRefusedBeforeAnyCell)
{
    EXPECT_THAT(TRecordingExcel().Workbook(
                    TWorkbookBuilder().Globals(TBiffBuilder().FilePass()).Sheet("S", Cells(1)).Build()),
                ElementsAre("error: Can not read: file is encrypted"));
}

TEST(KvxlsWorkbook, WhatStandsBeforeAnErrorIsRaised)
{
    const auto Stream = TWorkbookBuilder().Sheet("S", TBiffBuilder().Rk(0, 0, 6).Record(0x0203, "short"))
                                          .Build();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"S\"", "cell 0: 0 0 double 1 right",
                            "error: Record 0x0203 at offset 71 is too short: 5 bytes, 14 are needed"));
}

TEST(KvxlsWorkbook, EveryRecordThatIsTooShortIsTold)
{
    const struct
    {
        std::uint16_t Id;
        unsigned Needed;                            // at least
    } Rows[] = {{0x0001, 7},  {0x0002, 9},  {0x0003, 15}, {0x0004, 8},  {0x0005, 8},  {0x0006, 14},
                {0x007D, 6},
                {0x007E, 10}, {0x0085, 8},  {0x00BD, 6},  {0x00BE, 4},  {0x00E0, 4},  {0x00FD, 10},
                {0x0200, 12},
                {0x0203, 14}, {0x0204, 8},  {0x0205, 8},  {0x0208, 8},  {0x027E, 10}, {0x0809, 4}};
    const auto Head = TBiffBuilder().Bof(bpGlobals).Str() + BiffSharedStrings({{.Text = u"a"}}) +
                      TBiffBuilder().Bof().Str();
    for (const auto& Row : Rows)
        for (unsigned Size = 0; Size <= Row.Needed; ++Size) {
            const auto Record = TBiffBuilder().Record(Row.Id, std::string(Size, '\0')).Str();
            const auto Lines = TRecordingExcel().WithSizes().Workbook(Head + Record);
            const bool IsError = Lines.back().starts_with("error: Record 0x") &&
                                 Lines.back().find(" at offset 56 is too short: ") != std::string::npos;
            EXPECT_EQ(IsError, Size < Row.Needed) << std::hex << Row.Id << ' ' << Size << ' ' << Lines.back();
        }
}

TEST(KvxlsWorkbook, RecordsThatOnlyExtensionsReadAreNotLookedInto)
{
    for (const auto Version : {bv5, bv8}) {
        TBiffBuilder Sheet(Version);
        for (const auto Id : std::initializer_list<std::uint16_t>{0x0007, 0x0022, 0x0042, 0x00D6, 0x0207,
                                                                  0x041E})
            Sheet.Record(Id, {});
        EXPECT_THAT(ReadSheet(Sheet), IsEmpty());
    }
}

TEST(KvxlsWorkbook, ATruncatedStreamIsTold)
{
    const auto Stream = TWorkbookBuilder().Sheet("S", Cells(1)).Build();
    EXPECT_EQ(TRecordingExcel().Workbook(std::string_view(Stream).substr(0, Stream.size() - 5)).back(),
              "error: File is truncated: record 0x027E at offset 57 needs 10 bytes, 9 are left");
}

TEST(KvxlsWorkbook, ErrorsOfSharedStringsEndTheLoad)
{
    const auto Stream = TBiffBuilder().Bof(bpGlobals).Record(0x00FC, TBytes().U32(1).U32(1).U16(1).U8(4))
                                      .Str();
    EXPECT_THAT(TRecordingExcel().Workbook(Stream), ElementsAre("error: Unhandled string in SST [04]"));
}

} // namespace kv
