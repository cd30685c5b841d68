// The extensions of workbooks; those of plain streams stand with their own tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "KvBiffBuilder.h"
#include "KvBiffStrings.h"
#include "KvxlsEvents.h"

using testing::ElementsAre;

namespace kv {

namespace {

/// The events of a workbook of one sheet.
TEventLines Read(const TBiffBuilder& Globals, const TBiffBuilder& Sheet, TSpreadSheetExtensions Extensions)
{
    const auto Stream = TWorkbookBuilder(Sheet.Version).Globals(Globals).Sheet("S", Sheet).Build();
    return TRecordingExcel(Extensions).Workbook(Stream, Sheet.Version == bv8 ? evExcel8 : evExcel7);
}

constexpr auto SheetLine = "sheet 0 \"S\"";

/// A label of Excel 8 whose characters have 16 bits.
std::string WideLabel(unsigned Row, unsigned Col, std::u16string_view Text)
{
    const auto Size = static_cast<unsigned>(Text.size());
    return TBytes().U16(Row).U16(Col).U16(0).U16(Size).U8(1).Text(Text);
}

std::string CompressedLabel(unsigned Row, unsigned Col, std::string_view Text)
{
    const auto Size = static_cast<unsigned>(Text.size());
    return TBytes().U16(Row).U16(Col).U16(0).U16(Size).U8(0).Text(Text);
}

} // namespace

TEST(KvxlsExtensions, ResultsOfFormulasArriveAsWhatTheyAre)
{
    for (const auto Version : {bv5, bv8}) {
        TBiffBuilder Sheet(Version);
        Sheet.Formula(0, 0, TextResult()).Record(0x04BC, "shared formula").String("Gr\xFC\xDF");
        Sheet.Formula(0, 1, BooleanResult(true))
            .Formula(0, 2, BooleanResult(false))
            .Formula(0, 3, ErrorResult(0x07));
        Sheet.Formula(0, 4, EmptyResult()).Formula(0, 5, TBytes().F64(1.5))
             .Formula(0, 6, TBytes().F64(36526), 1);
        const auto Text = Version == bv8 ? "Gr\xC3\xBC\xC3\x9F" : "Gr\xFC\xDF";
        EXPECT_THAT(Read(TBiffBuilder(Version).Xf(0).Xf(14), Sheet, {seFormulaResults}),
                    ElementsAre(SheetLine, "cell 0: 0 0 string " + std::string(Text) + " left",
                                "cell 0: 0 1 boolean True left", "cell 0: 0 2 boolean False left",
                                "cell 0: 0 3 string #DIV/0! left", "cell 0: 0 4 string  left",
                                "cell 0: 0 5 double 1.5 right", "cell 0: 0 6 date 36526 left"));
    }
}

TEST(KvxlsExtensions, TheTextOfAFormulaMayRunOnFromRecordToRecord)
{
    TBiffBuilder Sheet;
    Sheet.Formula(0, 0, TextResult())
        .Record(0x0207, TBytes().U16(4).U8(1).Text(u"\u0416"))
        .Record(0x003C, TBytes().U8(0).Text("abc"));
    EXPECT_THAT(Read({}, Sheet, {seFormulaResults}), ElementsAre(SheetLine, "cell 0: 0 0 string \xD0\x96"
                                                                            "abc left"));
}

TEST(KvxlsExtensions, ATextBelongsToTheFormulaBeforeIt)
{
    TBiffBuilder Sheet;
    Sheet.String("stray").Formula(0, 0, TextResult()).Formula(0, 1, TBytes().F64(1)).String("stray");
    Sheet.Formula(0, 2, TextResult()).String("text").String("stray");
    EXPECT_THAT(Read({}, Sheet, {seFormulaResults}),
                ElementsAre(SheetLine, "cell 0: 0 0 string  left", "cell 0: 0 1 double 1 right",
                            "cell 0: 0 2 string text left"));
}

TEST(KvxlsExtensions, AFormulaWhoseTextIsMissingHasAnEmptyOne)
{
    for (const auto Version : {bv5, bv8}) {
        TBiffBuilder Sheet(Version);
        Sheet.Formula(0, 0, TextResult()).Formula(0, 1, TextResult()).Rk(0, 2, 6);
        const auto Workbook = TWorkbookBuilder(Version).Sheet("One", Sheet).Sheet("Two", Sheet).Build();
        EXPECT_THAT(TRecordingExcel({seFormulaResults}).Workbook(Workbook,
                                                                 Version == bv8 ? evExcel8 : evExcel7),
                    ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 string  left", "cell 0: 0 2 double 1 right",
                                "cell 0: 0 1 string  left", "sheet 1 \"Two\"", "cell 1: 0 0 string  left",
                                "cell 1: 0 2 double 1 right", "cell 1: 0 1 string  left"));
    }
}

TEST(KvxlsExtensions, AFormulaWhoseTextIsMissingAtTheEndOfACutStreamIsRaised)
{
    const auto Stream = TBiffBuilder().Bof(bpGlobals).Eof().Bof().Formula(0, 0, TextResult()).Str();
    EXPECT_THAT(TRecordingExcel({seFormulaResults}).Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"", "cell 0: 0 0 string  left"));
}

TEST(KvxlsExtensions, AResultOfUnknownKindIsTold)
{
    const auto Result = TBytes().U8(4).Zeros(5).U16(0xFFFF).Str();
    EXPECT_THAT(Read({}, TBiffBuilder().Formula(0, 0, Result), {seFormulaResults}),
                ElementsAre(SheetLine,
                            "error: Record 0x0006 at offset 57: the kind of its result is unknown"));
}

TEST(KvxlsExtensions, DatePatternsMakeDates)
{
    for (const auto Version : {bv5, bv8}) {
        const auto Globals = TBiffBuilder(Version)
                                 .Format(164, "yyyy-mm-dd")
                                 .Format(165, "0.00\" days\"")
                                 .Xf(0)
                                 .Xf(164)
                                 .Xf(165)
                                 .Xf(46);
        TBiffBuilder Sheet(Version);
        Sheet.Number(0, 0, 36526, 1).Number(0, 1, 36526, 2).Number(0, 2, 0.5, 3)
             .Formula(0, 3, TBytes().F64(2), 1);
        EXPECT_THAT(Read(Globals, Sheet, {seCustomDates}),
                    ElementsAre(SheetLine, "cell 0: 0 0 date 36526 left", "cell 0: 0 1 double 36526 right",
                                "cell 0: 0 2 date 0.5 left", "cell 0: 0 3 date 2 left"));
    }
}

TEST(KvxlsExtensions, DatePatternsOfSixteenBitsAreUnderstood)
{
    const auto Pattern = std::u16string_view(u"yyyy\u5E74m\u6708d\u65E5");
    const auto Size = static_cast<unsigned>(Pattern.size());
    const auto Globals = TBiffBuilder().Record(0x041E, TBytes().U16(164).U16(Size).U8(1).Text(Pattern))
                                       .Xf(164);
    EXPECT_THAT(Read(Globals, TBiffBuilder().Number(0, 0, 1), {seCustomDates}),
                ElementsAre(SheetLine, "cell 0: 0 0 date 1 left"));
}

TEST(KvxlsExtensions, IntegersMayBeDates)
{
    const auto Globals = TBiffBuilder().Xf(0).Xf(14);
    const auto Sheet = TBiffBuilder().Integer2(0, 0, std::string("\1\0\0", 3), 9);
    EXPECT_THAT(Read(Globals, Sheet, {seCustomDates}), ElementsAre(SheetLine, "cell 0: 0 0 date 9 left"));
    EXPECT_THAT(Read(Globals, Sheet, {}), ElementsAre(SheetLine, "cell 0: 0 0 integer 9 left"));
}

TEST(KvxlsExtensions, TheDateModeShiftsDatesOnly)
{
    const auto Globals = TBiffBuilder().DateMode(1).Xf(0).Xf(14);
    const auto Sheet = TBiffBuilder().Number(0, 0, 0, 1).Number(0, 1, 0, 0);
    EXPECT_THAT(Read(Globals, Sheet, {seDateMode}),
                ElementsAre(SheetLine, "cell 0: 0 0 date 1462 left", "cell 0: 0 1 double 0 right"));
    EXPECT_THAT(Read(TBiffBuilder().DateMode(0).Xf(0).Xf(14), Sheet, {seDateMode}),
                ElementsAre(SheetLine, "cell 0: 0 0 date 1 left", "cell 0: 0 1 double 0 right"));
}

TEST(KvxlsExtensions, TheCodePageOfAFileIsUsed)
{
    const auto Stream = TWorkbookBuilder(bv5)
                            .Globals(TBiffBuilder(bv5).CodePage(1251))
                            .Sheet("\xCB\xE8\xF1\xF2", TBiffBuilder(bv5).Label(0, 0, "\xC6"))
                            .Build();
    EXPECT_THAT(TRecordingExcel({seFileCodePage}).Workbook(Stream, evExcel7),
                ElementsAre("sheet 0 \"\xD0\x9B\xD0\xB8\xD1\x81\xD1\x82\"",
                            "cell 0: 0 0 string \xD0\x96 left"));
}

TEST(KvxlsExtensions, NamesOfExcel8SheetsAreUnicode)
{
    const auto Stream =
        TWorkbookBuilder().Sheet(u"A\u0416", TBiffBuilder()).Sheet("Gr\xFC\xDF", TBiffBuilder()).Build();
    EXPECT_THAT(TRecordingExcel({seFileCodePage}).Workbook(Stream),
                ElementsAre("sheet 0 \"A\xD0\x96\"", "sheet 1 \"Gr\xC3\xBC\xC3\x9F\""));
}

TEST(KvxlsExtensions, RichTextIsRead)
{
    TBiffBuilder Sheet(bv5);
    Sheet.Record(0x00D6, TBytes().U16(1).U16(2).U16(0).U16(4).Text("rich").U8(1).U8(0).U8(5));
    EXPECT_THAT(Read(TBiffBuilder(bv5), Sheet, {seCellRecords}),
                ElementsAre(SheetLine, "cell 0: 1 2 string rich left"));
}

TEST(KvxlsExtensions, LabelsOfExcel8HaveOptions)
{
    TBiffBuilder Sheet;
    Sheet.Record(0x0204, CompressedLabel(0, 0, "Gr\xFC\xDF"))
        .Record(0x0204, WideLabel(0, 1, u"\u0416"))
        .Record(0x00D6, WideLabel(0, 2, u"r"));
    EXPECT_THAT(Read({}, Sheet, {seCellRecords}),
                ElementsAre(SheetLine, "cell 0: 0 0 string Gr\xC3\xBC\xC3\x9F left",
                            "cell 0: 0 1 string \xD0\x96 left", "cell 0: 0 2 string r left"));
    EXPECT_THAT(Read({}, TBiffBuilder().Record(0x0204, CompressedLabel(0, 0, "abc")), {}),
                ElementsAre(SheetLine, "cell 0: 0 0 string " + std::string(1, '\0') + "ab left"));
}

TEST(KvxlsExtensions, ALabelMayRunOnFromRecordToRecord)
{
    const auto First = TBytes().U16(7).U16(8).U16(0).U16(4).U8(0).Text("ab");
    TBiffBuilder Sheet;
    Sheet.Record(0x0204, First).Record(0x003C, TBytes().U8(1).Text(u"cd"));
    EXPECT_THAT(Read({}, Sheet, {seCellRecords}), ElementsAre(SheetLine, "cell 0: 7 8 string abcd left"));
    EXPECT_THAT(Read({}, TBiffBuilder().Record(0x0204, First), {seCellRecords}),
                ElementsAre(SheetLine,
                            "error: Record 0x0204 at offset 57 is too short: 11 bytes, 13 are needed"));
}

TEST(KvxlsExtensions, SharedStringsMayHavePhoneticText)
{
    const auto Strings = BiffSharedStrings({{.Text = u"\u65E5", .IsWide = true, .Phonetic = 8}});
    const auto Stream =
        TBiffBuilder().Bof(bpGlobals).Str() + Strings + TBiffBuilder().Bof().LabelSst(0, 0, 0).Str();
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"", "cell 0: 0 0 string \xE6\x97\xA5 left"));
}

TEST(KvxlsExtensions, ChartsTakeNoNameFromASheet)
{
    const auto Cells = TBiffBuilder().Rk(0, 0, 6);
    const auto Stream = TWorkbookBuilder()
                            .Sheet("Chart", {}, bpChart)
                            .Sheet("One", Cells)
                            .Sheet("Two", Cells)
                            .Sheet("Last", {}, bpChart)
                            .Build();
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "sheet 1 \"Two\"",
                            "cell 1: 0 0 double 1 right"));
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Skipping(0).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "sheet 1 \"Two\"", "cell 1: 0 0 double 1 right"));
    EXPECT_THAT(TRecordingExcel().Workbook(Stream),
                ElementsAre("sheet 0 \"Chart\"", "cell 0: 0 0 double 1 right", "sheet 1 \"One\"",
                            "cell 1: 0 0 double 1 right"));
}

TEST(KvxlsExtensions, WhatStandsInChartsAndMacroSheetsIsNoCell)
{
    const auto Chart = TBiffBuilder()
                           .Bof(bpChart)
                           .Dimensions(0, 7, 0, 3)
                           .Bof(bpChart)
                           .Number(0, 0, 8)
                           .Eof()
                           .Label(0, 0, "x")
                           .Eof();
    const auto Sheet = TBiffBuilder().Rk(0, 0, 6).Add(Chart).Rk(1, 1, 6);
    for (const auto Part : {bpChart, bpMacro, bpModule}) {
        const auto Stream = TWorkbookBuilder()
                                .Sheet("One", Sheet)
                                .Sheet("Other", TBiffBuilder().Number(0, 0, 7), Part)
                                .Sheet("Two", Sheet)
                                .Build();
        EXPECT_THAT(TRecordingExcel({seCellRecords}).Workbook(Stream),
                    ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right", "cell 0: 1 1 double 1 right",
                                "sheet 1 \"Two\"", "cell 1: 0 0 double 1 right",
                                "cell 1: 1 1 double 1 right"));
    }
}

TEST(KvxlsExtensions, TheMarkersOfAChartBeginNoPart)
{
    // A record of charts whose id has the low byte of a BOF; its colour may say anything.
    for (const unsigned Part : {0x0000, 0x0010, 0x0020}) {
        const auto Chart = TBiffBuilder().Bof(bpChart).Record(0x1009, TBytes().U16(0).U16(Part).Zeros(16))
                                         .Eof();
        const auto Sheet = TBiffBuilder().Add(Chart).Rk(1, 1, 6);
        EXPECT_THAT(Read({}, Sheet, {seCellRecords}), ElementsAre(SheetLine, "cell 0: 1 1 double 1 right"));
    }
}

TEST(KvxlsExtensions, ASheetAfterAChartWithoutEndIsRead)
{
    const auto Stream =
        TBiffBuilder().Bof(bpGlobals).Bof(bpChart).Number(0, 0, 9).Bof().Rk(0, 0, 6).Str();
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Workbook(Stream),
                ElementsAre("sheet 0 \"Sheet1\"", "cell 0: 0 0 double 1 right"));
}

TEST(KvxlsExtensions, WhatStandsInASkippedSheetIsNoCell)
{
    const auto Chart = TBiffBuilder().Bof(bpChart).Number(0, 0, 8).Eof();
    const auto Sheet = TBiffBuilder().Dimensions(0, 1, 0, 1).Rk(0, 0, 6).Add(Chart).Rk(0, 1, 6);
    const auto Stream = TWorkbookBuilder().Sheet("One", Sheet).Sheet("Two", Sheet).Build();
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Skipping(0).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "sheet 1 \"Two\"", "dimensions 1: 0 1 0 1",
                            "cell 1: 0 0 double 1 right", "cell 1: 0 1 double 1 right"));
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Skipping(1).Workbook(Stream),
                ElementsAre("sheet 0 \"One\"", "dimensions 0: 0 1 0 1", "cell 0: 0 0 double 1 right",
                            "cell 0: 0 1 double 1 right", "sheet 1 \"Two\""));
}

TEST(KvxlsExtensions, RecordsOfAnySizeAreRead)
{
    for (const auto Version : {bv5, bv8})
        for (const unsigned Size : {2081u, 8225u, 65535u}) {
            const auto Row = TBytes().U16(0).U16(0).U16(0).U32(6).Zeros(Size - 10);
            EXPECT_THAT(Read(TBiffBuilder(Version), TBiffBuilder(Version).Record(0x027E, Row),
                             {seCellRecords}),
                        ElementsAre(SheetLine, "cell 0: 0 0 double 1 right"));
        }
}

TEST(KvxlsExtensions, AStreamWithoutAllOfItsSheetsIsTruncated)
{
    auto Builder = TWorkbookBuilder().Sheet("One", TBiffBuilder().Rk(0, 0, 6)).Sheet("Two", {})
                                     .Sheet("Three", {});
    const auto Stream = Builder.Build();
    const auto ReadFirst = [&](std::size_t Size) {
        return TRecordingExcel({seCellRecords}).Workbook(std::string_view(Stream).substr(0, Size));
    };
    EXPECT_THAT(ReadFirst(Builder.OffsetOfSheet(0)),
                ElementsAre("error: File is truncated: of its 3 sheets only 0 are there"));
    EXPECT_THAT(ReadFirst(Builder.OffsetOfSheet(1)),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right",
                            "error: File is truncated: of its 3 sheets only 1 are there"));
    EXPECT_THAT(ReadFirst(Stream.size() - 4),
                ElementsAre("sheet 0 \"One\"", "cell 0: 0 0 double 1 right",
                                                     "sheet 1 \"Two\"", "sheet 2 \"Three\""));
    EXPECT_THAT(TRecordingExcel().Workbook(std::string_view(Stream).substr(0, Builder.OffsetOfSheet(0))),
                testing::IsEmpty());
}

TEST(KvxlsExtensions, AWorkbookOfChartsOnlyHasNoSheets)
{
    const auto Stream = TWorkbookBuilder().Sheet("Chart", TBiffBuilder().Number(0, 0, 9), bpChart).Build();
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Workbook(Stream), testing::IsEmpty());
}

TEST(KvxlsExtensions, AWorkbookMayStandOutsideACompoundDocument)
{
    for (const auto Version : {bv5, bv8}) {
        const auto Sheet = TBiffBuilder(Version).Dimensions(0, 1, 0, 1).Number(0, 0, 1.5);
        const auto Stream = TWorkbookBuilder(Version).Sheet("One", Sheet).Sheet("Two", Sheet).Build();
        TRecordingExcel Excel({seCellRecords});
        EXPECT_THAT(Excel.Plain(Stream),
                    ElementsAre("sheet 0 \"One\"", "dimensions 0: 0 1 0 1", "cell 0: 0 0 double 1.5 right",
                                "sheet 1 \"Two\"", "dimensions 1: 0 1 0 1", "cell 1: 0 0 double 1.5 right"));
        EXPECT_EQ(Excel.Reader.Version, Version == bv8 ? evExcel8 : evExcel7);
    }
}

TEST(KvxlsExtensions, FormulasInTheRecordsOfExcel3And4AreCells)
{
    for (const auto Version : {bv5, bv8})
        for (const auto Id : std::initializer_list<std::uint16_t>{0x0206, 0x0406}) {
            const auto Cell = TBytes().U16(1).U16(2).U16(0).F64(2.5).Zeros(8);
            const auto Date = TBytes().U16(1).U16(3).U16(1).F64(36526).Zeros(8);
            const auto Globals = TBiffBuilder(Version).Xf(0).Xf(14);
            const auto Sheet = TBiffBuilder(Version).Record(Id, Cell).Record(Id, Date);
            EXPECT_THAT(Read(Globals, Sheet, {seCellRecords}),
                        ElementsAre(SheetLine, "cell 0: 1 2 double 2.5 right",
                                    "cell 0: 1 3 date 36526 left"));
            EXPECT_THAT(Read(Globals, Sheet, {}), ElementsAre(SheetLine));
        }
}

TEST(KvxlsExtensions, ALabelOfExcel5MayRunOnFromRecordToRecord)
{
    const auto First = TBytes().U16(7).U16(8).U16(0).U16(6).Text("ab");
    TBiffBuilder Sheet(bv5);
    Sheet.Record(0x0204, First).Record(0x003C, "cd").Record(0x003C, "efgh").Number(9, 9, 1);
    EXPECT_THAT(Read(TBiffBuilder(bv5), Sheet, {seCellRecords}),
                ElementsAre(SheetLine, "cell 0: 7 8 string abcdef left", "cell 0: 9 9 double 1 right"));
    for (const bool HasMore : {false, true}) {
        TBiffBuilder Cut(bv5);
        Cut.Record(0x0204, First);
        if (HasMore)
            Cut.Record(0x003C, "c");
        EXPECT_THAT(Read(TBiffBuilder(bv5), Cut, {seCellRecords}),
                    ElementsAre(SheetLine,
                                "error: Record 0x0204 at offset 40 is too short: 10 bytes, 14 are needed"));
    }
    EXPECT_THAT(Read(TBiffBuilder(bv5), Sheet, {}),
                ElementsAre(SheetLine,
                            "error: Record 0x0204 at offset 40 is too short: 10 bytes, 14 are needed"));
}

TEST(KvxlsExtensions, TheTextOfAFormulaOfExcel5MayRunOnToo)
{
    TBiffBuilder Sheet(bv5);
    Sheet.Formula(0, 0, TextResult()).Record(0x0207, TBytes().U16(4).Text("ab")).Record(0x003C, "cd");
    EXPECT_THAT(Read(TBiffBuilder(bv5), Sheet, {seFormulaResults, seCellRecords}),
                ElementsAre(SheetLine, "cell 0: 0 0 string abcd left"));
}

TEST(KvxlsExtensions, TimesOfDayAreTheSameInThe1904Mode)
{
    const auto Globals = TBiffBuilder().DateMode(1).Xf(20).Xf(14).Xf(46);
    const auto Sheet = TBiffBuilder().Number(0, 0, 0.25, 0).Number(0, 1, 0.25, 1).Number(0, 2, 1.5, 2);
    EXPECT_THAT(Read(Globals, Sheet, {seDateMode, seCustomDates}),
                ElementsAre(SheetLine, "cell 0: 0 0 date 0.25 left", "cell 0: 0 1 date 1462.25 left",
                            "cell 0: 0 2 string 36:00:00 left"));
}

} // namespace kv
