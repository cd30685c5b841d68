#include "KvxlsPlain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "KvBiffBuilder.h"
#include "KvxlsEvents.h"

using namespace std::string_view_literals;
using testing::ElementsAre;

namespace kv {

namespace {

// Attributes of Excel 2 cells: XF, format, alignment.
constexpr auto Left = "\0\0\1"sv, Centre = "\0\0\2"sv, Right = "\0\0\3"sv;

TEventLines Read(const TBiffBuilder& Stream, TSpreadSheetExtensions Extensions = {})
{
    return TRecordingExcel(Extensions).Plain(Stream.Str());
}

/// A file of that version, without its end: it is not asked for.
TBiffBuilder File(TBiffVersion Version) { return TBiffBuilder(Version).Bof(); }

/// A file that declares an extent, so that nothing is added at its end.
TBiffBuilder Declared(TBiffVersion Version = bv3) { return File(Version).Dimensions(0, 99, 0, 99); }
constexpr auto DeclaredLine = "dimensions -1: 0 100 0 100";

} // namespace

TEST(KvxlsPlain, TheIdOfTheBofTellsTheVersion)
{
    const struct
    {
        TBiffVersion Written;
        TExcelVersion Read;
    } Rows[] = {{bv2, evExcel2}, {bv3, evExcel3}, {bv4, evExcel4}, {bv5, evExcel5}};
    for (const auto& Row : Rows) {
        TRecordingExcel Excel;
        Excel.Plain(File(Row.Written).Eof().Str());
        EXPECT_EQ(Excel.Reader.Version, Row.Read);
    }
}

TEST(KvxlsPlain, AnUnknownBofIsNoExcelFile)
{
    constexpr auto Message = "error: File is not a Excel file";
    EXPECT_THAT(Read(TBiffBuilder().Record(0x0609, TBytes().Zeros(4))), ElementsAre(Message));
    EXPECT_THAT(Read(File(bv2).Record(0x1009, TBytes().Zeros(4))), ElementsAre(Message));
}

TEST(KvxlsPlain, BytesWithoutABofAreNoExcelFile)
{
    for (const auto Bytes : {""sv, "\x09"sv, "\x09\0\0"sv, "<html><body>"sv, "\tname;value\r\n"sv,
                             "name;value\r\n"sv, "\x0A\0\0\0"sv})
        EXPECT_THAT(TRecordingExcel().Plain(Bytes), ElementsAre("error: File is not a Excel file")) << Bytes;
}

TEST(KvxlsPlain, AnEncryptedFileIsRefused)
{
    EXPECT_THAT(Read(File(bv4).FilePass().Number2(0, 0, Left, 1)),
                ElementsAre("error: Can not read: file is encrypted"));
}

TEST(KvxlsPlain, CellsOfExcel2)
{
    EXPECT_THAT(Read(File(bv2)
                         .Blank2(0, 0, Left)
                         .Integer2(1, 1, Right, 65535)
                         .Number2(2, 2, Centre, -1.5)
                         .Label2(3, 3, Left, "text")
                         .Label2(4, 255, Right, "")
                         .Eof()),
                ElementsAre("cell -1: 0 0 null left", "cell -1: 1 1 integer 65535 right",
                            "cell -1: 2 2 double -1.5 centre", "cell -1: 3 3 string text left",
                            "cell -1: 4 255 string  right", "dimensions -1: 0 5 0 256"));
}

TEST(KvxlsPlain, CellsFromExcel3On)
{
    EXPECT_THAT(Read(Declared().Label(1, 2, "text").Rk(3, 4, 7)),
                ElementsAre(DeclaredLine, "cell -1: 1 2 string text left", "cell -1: 3 4 double 0.01 right"));
}

TEST(KvxlsPlain, TheByteAt6AlignsWhateverItIs)
{
    // In a label that is the length, in an RK the number, in a boolean the value.
    EXPECT_THAT(
        Read(
            Declared().Label(0, 0, "ab").Label(0, 1, "abc").Rk(0, 2, RkOfInteger(4)).BoolErr(0, 3, 1, false)),
        ElementsAre(DeclaredLine, "cell -1: 0 0 string ab centre", "cell -1: 0 1 string abc right",
                    "cell -1: 0 2 double 4 centre", "cell -1: 0 3 boolean True left"));
}

TEST(KvxlsPlain, BooleansAndErrors)
{
    EXPECT_THAT(Read(Declared().BoolErr(0, 0, 1, false).BoolErr(0, 1, 0, false).BoolErr(0, 2, 0x07, true)),
                ElementsAre(DeclaredLine, "cell -1: 0 0 boolean True left", "cell -1: 0 1 boolean False left",
                            "cell -1: 0 2 string #DIV/0! right"));
}

TEST(KvxlsPlain, BooleansOfExcel2AreReadAsLaterOnes)
{
    // Their attribute stands where later ones have the value.
    EXPECT_THAT(Read(Declared(bv3).BoolErr2(0, 0, "\0\0\0"sv, 1, false).BoolErr2(0, 1, "\0\0\1"sv, 0, true)),
                ElementsAre(DeclaredLine, "cell -1: 0 0 string #NULL! left",
                            "cell -1: 0 1 boolean True left"));
}

TEST(KvxlsPlain, NumbersFromExcel3OnAndFormulasAreNotRead)
{
    EXPECT_THAT(Read(Declared()
                         .Number(0, 0, 1.5)
                         .Formula(0, 1, TBytes().F64(2))
                         .Formula2(0, 2, Left, TBytes().F64(3))
                         .String("result")
                         .Record(0x0406, TBytes().Zeros(16))
                         .Record(0x00BD, TBytes().Zeros(12))
                         .Record(0x00D6, TBytes().Zeros(12))),
                ElementsAre(DeclaredLine));
}

TEST(KvxlsPlain, TheXfAt4MakesADate)
{
    EXPECT_THAT(Read(Declared(bv5).Xf(0).Xf(14).Rk(0, 0, RkOfInteger(100), 0).Rk(0, 1, RkOfInteger(100), 1)),
                ElementsAre(DeclaredLine, "cell -1: 0 0 double 100 centre", "cell -1: 0 1 date 100 centre"));
    EXPECT_THAT(Read(Declared(bv5).Xf(0).Xf(22).Number2(0, 0, "\1\0\3"sv, 1.5)),
                ElementsAre(DeclaredLine, "cell -1: 0 0 date 1.5 right"));
}

TEST(KvxlsPlain, WithoutXfsTheirNumberCountsAsAFormat)
{
    EXPECT_THAT(Read(Declared().Rk(0, 0, RkOfInteger(8), 14).Rk(0, 1, RkOfInteger(8), 23)),
                ElementsAre(DeclaredLine, "cell -1: 0 0 date 8 centre", "cell -1: 0 1 double 8 centre"));
}

TEST(KvxlsPlain, XfsOfExcel2To4AreNotRead)
{
    for (const auto Version : {bv2, bv3, bv4}) {
        auto Stream = File(Version).Format(0, "yyyy").Xf(0).Xf(0);
        EXPECT_THAT(Read(Stream.Rk(0, 0, RkOfInteger(8), 1)),
                    ElementsAre("cell -1: 0 0 double 8 centre", "dimensions -1: 0 1 0 1"));
    }
}

TEST(KvxlsPlain, DimensionsAreOneMoreThanDeclared)
{
    EXPECT_THAT(Read(File(bv4).Dimensions(2, 5, 1, 3)), ElementsAre("dimensions -1: 0 6 0 4"));
}

TEST(KvxlsPlain, TheCellsGiveTheExtentWhenNoneIsDeclared)
{
    EXPECT_THAT(Read(File(bv4)), ElementsAre("dimensions -1: 0 0 0 0"));
    EXPECT_THAT(Read(File(bv2).Dimensions(0, 5, 0, 5)),
                ElementsAre("dimensions -1: 0 0 0 0")); // in another record
}

TEST(KvxlsPlain, TheCellsGiveTheExtentWhenTheyExceedIt)
{
    EXPECT_THAT(Read(File(bv4).Dimensions(0, 1, 0, 1).Blank2(1, 1, Left)),
                ElementsAre("dimensions -1: 0 2 0 2", "cell -1: 1 1 null left"));
    EXPECT_THAT(Read(File(bv4).Dimensions(0, 1, 0, 1).Blank2(2, 0, Left)),
                ElementsAre("dimensions -1: 0 2 0 2", "cell -1: 2 0 null left", "dimensions -1: 0 3 0 1"));
    EXPECT_THAT(Read(File(bv4).Dimensions(0, 1, 0, 1).Blank2(0, 2, Left)),
                ElementsAre("dimensions -1: 0 2 0 2", "cell -1: 0 2 null left", "dimensions -1: 0 1 0 3"));
}

TEST(KvxlsPlain, ColumnWidthsAreRaisedInCharacters)
{
    const auto Stream = Declared().Record(0x0024, TBytes().U8(2).U8(4).U16(2559));
    EXPECT_THAT(TRecordingExcel().WithSizes().Plain(Stream.Str()),
                ElementsAre(DeclaredLine, "width -1: 2 9", "width -1: 3 9", "width -1: 4 9"));
    EXPECT_THAT(Read(Stream), ElementsAre(DeclaredLine));
    EXPECT_THAT(
        TRecordingExcel().WithSizes().Plain(Declared().Record(0x0024, TBytes().U8(4).U8(2).U16(256)).Str()),
        ElementsAre(DeclaredLine));
}

TEST(KvxlsPlain, NothingIsRaisedThatIsNotBound)
{
    TMSExcel Reader;
    Reader.ReadPlainStream(Declared().Label(0, 0, "a").Record(0x0024, TBytes().Zeros(4)).Str());
    TRecordingExcel Excel;
    Excel.Reader.OnCellValue = nullptr;
    EXPECT_THAT(Excel.Plain(File(bv4).Blank2(3, 3, Left).Str()), ElementsAre("dimensions -1: 0 0 0 0"));
}

TEST(KvxlsPlain, EightBitTextPassesAsItStands)
{
    EXPECT_THAT(Read(Declared().CodePage(850).Label(0, 0, "Gr\x81\xE1")),
                ElementsAre(DeclaredLine, "cell -1: 0 0 string Gr\x81\xE1 left"));
}

TEST(KvxlsPlain, RecordsOfAnySizeAreRead)
{
    EXPECT_THAT(Read(Declared().Label(0, 0, std::string(40000, 'x'))),
                ElementsAre(DeclaredLine, "cell -1: 0 0 string " + std::string(40000, 'x') + " left"));
}

TEST(KvxlsPlain, ReadingGoesOnAfterEof)
{
    EXPECT_THAT(Read(Declared().Eof().Rk(0, 0, 6).Record(0x4444, "unknown").Rk(0, 1, 2)),
                ElementsAre(DeclaredLine, "cell -1: 0 0 double 1 centre", "cell -1: 0 1 double 0 centre"));
}

TEST(KvxlsPlain, AColumnWithoutASlotIsRaisedToo)
{
    EXPECT_THAT(Read(Declared(bv4).Dimensions(0, 300, 0, 300).Rk(0, 256, 6)),
                ElementsAre(DeclaredLine, "dimensions -1: 0 301 0 301", "cell -1: 0 256 double 1 centre"));
}

TEST(KvxlsPlain, ATruncatedFileIsTold)
{
    const auto Stream = Declared().Rk(0, 0, 6).Str();
    const auto Offset = std::to_string(Declared().Size());
    EXPECT_THAT(TRecordingExcel().Plain(std::string_view(Stream).substr(0, Stream.size() - 1)),
                ElementsAre(DeclaredLine, "error: File is truncated: record 0x027E at offset " + Offset +
                                              " needs 10 bytes, 9 are left"));
}

TEST(KvxlsPlain, EveryRecordThatIsTooShortIsTold)
{
    const struct
    {
        std::uint16_t Id;
        unsigned Needed;                            // at least
    } Rows[] = {{0x0001, 7}, {0x0002, 9}, {0x0003, 15}, {0x0004, 8}, {0x0005, 8}, {0x0204, 8}, {0x0205, 8},
                {0x027E, 10}, {0x0200, 8}, {0x00E0, 4}, {0x0024, 4}};
    for (const auto& Row : Rows)
        for (unsigned Size = 0; Size <= Row.Needed; ++Size) {
            const auto Stream = Declared().Record(Row.Id, std::string(Size, '\0'));
            const auto Lines = TRecordingExcel().WithSizes().Plain(Stream.Str());
            const bool IsError = Lines.back().starts_with("error: Record 0x") &&
                                 Lines.back().find(" at offset 24 is too short: ") != std::string::npos;
            EXPECT_EQ(IsError, Size < Row.Needed) << Row.Id << ' ' << Size << ' ' << Lines.back();
        }
    EXPECT_THAT(
        Read(Declared().Record(0x0004, TBytes().Zeros(7).U8(3).Text("ab"))),
        ElementsAre(DeclaredLine, "error: Record 0x0004 at offset 24 is too short: 10 bytes, 11 are needed"));
    EXPECT_THAT(Read(Declared().Record(0x0204, TBytes().Zeros(6).U16(300).Text("ab"))),
                ElementsAre(DeclaredLine,
                            "error: Record 0x0204 at offset 24 is too short: 10 bytes, 308 are needed"));
}

TEST(KvxlsPlain, RecordsThatOnlyExtensionsReadAreNotLookedInto)
{
    for (const auto Version : {bv2, bv3, bv4, bv5}) {
        auto Stream = Declared(Version);
        for (const auto Id : std::initializer_list<std::uint16_t>{0x0006, 0x0007, 0x001E, 0x0022, 0x0042,
                                                                  0x0043, 0x0044, 0x008F, 0x00BD, 0x00D6})
            Stream.Record(Id, {});
        for (const auto Id :
             std::initializer_list<std::uint16_t>{0x0203, 0x0206, 0x0207, 0x0243, 0x0406, 0x041E, 0x0443})
            Stream.Record(Id, {});
        EXPECT_THAT(Read(Stream).size(), 1u);
    }
}

TEST(KvxlsPlain, AColumnWithoutASlotIsNoPartOfTheExtent)
{
    EXPECT_THAT(Read(File(bv4).Rk(2, 1, 6).Rk(3, 65535, 6)),
                ElementsAre("cell -1: 2 1 double 1 centre", "cell -1: 3 65535 double 1 centre",
                            "dimensions -1: 0 4 0 2"));
}

// --- Extensions --------------------------------------------------------------------------------------

TEST(KvxlsPlain, FormulasArriveUnderTheExtension)
{
    EXPECT_THAT(Read(Declared(bv2).Formula2(0, 0, Right, TBytes().F64(2.5)), {seFormulaResults}),
                ElementsAre("cell -1: 0 0 double 2.5 right", "dimensions -1: 0 1 0 1"));
    for (const auto Version : {bv3, bv4, bv5})
        EXPECT_THAT(Read(Declared(Version).Formula(1, 2, TBytes().F64(2.5)), {seFormulaResults}),
                    ElementsAre(DeclaredLine, "cell -1: 1 2 double 2.5 left"));
}

TEST(KvxlsPlain, ResultsOfFormulasArriveAsWhatTheyAre)
{
    for (const auto Version : {bv3, bv4, bv5}) {
        auto Stream = Declared(Version);
        Stream.Formula(0, 0, TextResult()).String("text").Formula(0, 1, BooleanResult(true));
        Stream.Formula(0, 2, ErrorResult(0x2A)).Formula(0, 3, EmptyResult());
        EXPECT_THAT(Read(Stream, {seFormulaResults}),
                    ElementsAre(DeclaredLine, "cell -1: 0 0 string text left",
                                "cell -1: 0 1 boolean True left",
                                "cell -1: 0 2 string #N/A left", "cell -1: 0 3 string  left"));
    }
    auto Stream = File(bv2);
    Stream.Formula2(0, 0, Left, TextResult()).String("text").Formula2(0, 1, Left, BooleanResult(false));
    EXPECT_THAT(Read(Stream, {seFormulaResults}),
                ElementsAre("cell -1: 0 0 string text left", "cell -1: 0 1 boolean False left",
                            "dimensions -1: 0 1 0 2"));
}

TEST(KvxlsPlain, AFormulaWhoseTextIsMissingHasAnEmptyOne)
{
    EXPECT_THAT(Read(File(bv2).Formula2(0, 0, Left, TextResult()).Formula2(0, 1, Left, TBytes().F64(1)),
                     {seFormulaResults}),
                ElementsAre("cell -1: 0 0 string  left", "cell -1: 0 1 double 1 left",
                            "dimensions -1: 0 1 0 2"));
    for (const auto Version : {bv3, bv4, bv5})
        EXPECT_THAT(Read(Declared(Version).Formula(0, 0, TextResult()).Rk(0, 1, 6).Eof(), {seFormulaResults}),
                    ElementsAre(DeclaredLine, "cell -1: 0 1 double 1 centre", "cell -1: 0 0 string  left"));
    auto Workbook = TBiffBuilder(bv4).Bof(static_cast<TBiffPart>(0x0100));
    Workbook.Bof().Dimensions(0, 9, 0, 9).Formula(0, 0, TextResult()).Eof().Bof().Dimensions(0, 9, 0, 9)
            .Eof();
    EXPECT_THAT(Read(Workbook, {seFormulaResults, seCellRecords}),
                ElementsAre("sheet 0 \"\"", "dimensions 0: 0 10 0 10", "cell 0: 0 0 string  left",
                            "sheet 1 \"\"", "dimensions 1: 0 10 0 10"));
}

TEST(KvxlsPlain, FormatsOfCellsOfExcel2MakeDatesUnderTheExtension)
{
    auto Stream = File(bv2);
    Stream.Format(0, "General").Format(1, "d.m.yy").Format(2, "0");
    Stream.Number2(0, 0, "\0\1\0"sv, 9).Number2(0, 1, "\1\2\0"sv, 9)
          .Formula2(0, 2, "\0\xC1\0"sv, TBytes().F64(9));
    EXPECT_THAT(Read(Stream, {seCustomDates, seFormulaResults}),
                ElementsAre("cell -1: 0 0 date 9 left", "cell -1: 0 1 double 9 left",
                            "cell -1: 0 2 date 9 left", "dimensions -1: 0 1 0 3"));
}

TEST(KvxlsPlain, IntegersAreDatesUnderTheExtensionOnly)
{
    const auto Stream = Declared(bv4).Integer2(0, 0, "\x0E\0\0"sv, 9);
    EXPECT_THAT(Read(Stream), ElementsAre(DeclaredLine, "cell -1: 0 0 integer 9 left"));
    EXPECT_THAT(Read(Stream, {seCustomDates}), ElementsAre(DeclaredLine, "cell -1: 0 0 date 9 left"));
}

TEST(KvxlsPlain, XfsOfExcel2MakeDatesUnderTheExtension)
{
    auto Stream = File(bv2);
    Stream.Format(0, "General").Format(1, "d.m.yy").Xf(0).Xf(1);
    Stream.Number2(0, 0, "\x41\0\0"sv, 9).Number2(0, 1, "\0\1\0"sv, 9);
    Stream.Record(0x0044, TBytes().U16(1)).Number2(0, 2, "\x3F\0\0"sv, 9);
    EXPECT_THAT(Read(Stream, {seCustomDates}),
                ElementsAre("cell -1: 0 0 date 9 left", "cell -1: 0 1 double 9 left",
                            "cell -1: 0 2 date 9 left", "dimensions -1: 0 1 0 3"));
}

TEST(KvxlsPlain, XfsOfExcel3To5MakeDatesUnderTheExtension)
{
    for (const auto Version : {bv3, bv4, bv5}) {
        auto Stream = Declared(Version);
        Stream.Format(0, "General").Format(1, "0").Format(2, "yyyy").Xf(0).Xf(2).Xf(1);
        Stream.Rk(0, 0, RkOfInteger(1), 0).Rk(0, 1, RkOfInteger(1), 1).Rk(0, 2, RkOfInteger(1), 2);
        EXPECT_THAT(Read(Stream, {seCustomDates}),
                    ElementsAre(DeclaredLine, "cell -1: 0 0 double 1 centre", "cell -1: 0 1 date 1 centre",
                                "cell -1: 0 2 double 1 centre"));
    }
}

TEST(KvxlsPlain, TheDateModeIsAppliedUnderTheExtension)
{
    const auto Stream = [](unsigned Is1904) {
        return Declared(bv5).DateMode(Is1904).Xf(0).Xf(14).Rk(0, 0, RkOfInteger(1), 0)
                            .Rk(0, 1, RkOfInteger(1), 1);
    };
    EXPECT_THAT(Read(Stream(1)),
                ElementsAre(DeclaredLine, "cell -1: 0 0 double 1 centre", "cell -1: 0 1 date 1 centre"));
    EXPECT_THAT(Read(Stream(1), {seDateMode}),
                ElementsAre(DeclaredLine, "cell -1: 0 0 double 1 centre", "cell -1: 0 1 date 1463 centre"));
    EXPECT_THAT(Read(Stream(0), {seDateMode}),
                ElementsAre(DeclaredLine, "cell -1: 0 0 double 1 centre", "cell -1: 0 1 date 2 centre"));
}

TEST(KvxlsPlain, TheCodePageIsAppliedUnderTheExtension)
{
    auto Stream = Declared(bv4).CodePage(850);
    Stream.Label(0, 0, "Gr\x81\xE1").Label2(0, 1, Left, "\x81").Formula(0, 2, TextResult()).String("\x81");
    EXPECT_THAT(Read(Stream, {seFileCodePage, seFormulaResults}),
                ElementsAre(DeclaredLine, "cell -1: 0 0 string Gr\xC3\xBC\xC3\x9F left",
                            "cell -1: 0 1 string \xC3\xBC left", "cell -1: 0 2 string \xC3\xBC left"));
}

TEST(KvxlsPlain, AllCellsAreReadUnderTheExtension)
{
    auto Stream = Declared(bv4);
    Stream.Number(0, 0, 1.5).Record(0x00D6, TBytes().U16(0).U16(1).U16(0).U16(4).Text("rich").Zeros(4));
    Stream.Record(0x00BD, TBytes().U16(1).U16(2).U16(0).U32(6).U16(0).U32(2).U16(3));
    EXPECT_THAT(Read(Stream, {seCellRecords}),
                ElementsAre(DeclaredLine, "cell -1: 0 0 double 1.5 left", "cell -1: 0 1 string rich left",
                            "cell -1: 1 2 double 1 right", "cell -1: 1 3 double 0 right"));
}

TEST(KvxlsPlain, BooleansOfExcel2HaveTheirOwnLayoutUnderTheExtension)
{
    EXPECT_THAT(
        Read(Declared(bv4).BoolErr2(0, 0, Right, 1, false).BoolErr2(0, 1, Left, 0x24, true), {seCellRecords}),
        ElementsAre(DeclaredLine, "cell -1: 0 0 boolean True right", "cell -1: 0 1 string #NUM! left"));
}

TEST(KvxlsPlain, TheMarkersOfAChartAreNoUnknownBofUnderTheExtension)
{
    EXPECT_THAT(Read(Declared(bv4).Record(0x1009, TBytes().Zeros(20)).Rk(0, 0, 6), {seCellRecords}),
                ElementsAre(DeclaredLine, "cell -1: 0 0 double 1 centre"));
}

TEST(KvxlsPlain, AnExcel4WorkbookHasSheetsUnderTheExtension)
{
    const auto Header = [](std::string_view Name) {
        return TBytes().U32(100).U8(static_cast<unsigned>(Name.size())).Text(Name);
    };
    auto Stream = TBiffBuilder(bv4).Bof(static_cast<TBiffPart>(0x0100)).CodePage(1252);
    Stream.Record(0x008F, Header("One")).Bof().Dimensions(0, 9, 0, 9).Rk(0, 0, 6).Eof();
    Stream.Record(0x008F, Header("Zw\xF6lf")).Bof().Rk(1, 1, 2).Eof().Eof();
    EXPECT_THAT(Read(Stream, {seCellRecords, seFileCodePage}),
                ElementsAre("sheet 0 \"One\"", "dimensions 0: 0 10 0 10", "cell 0: 0 0 double 1 centre",
                            "sheet 1 \"Zw\xC3\xB6lf\"", "cell 1: 1 1 double 0 centre",
                            "dimensions 1: 0 2 0 2"));
    EXPECT_THAT(TRecordingExcel({seCellRecords}).Skipping(0).Plain(Stream.Str()),
                ElementsAre("sheet 0 \"One\"", "dimensions 0: 0 10 0 10", "sheet 1 \"Zw\xF6lf\"",
                            "cell 1: 1 1 double 0 centre", "dimensions 1: 0 2 0 2"));
    EXPECT_THAT(Read(Stream), ElementsAre("dimensions -1: 0 10 0 10", "cell -1: 0 0 double 1 centre",
                                          "cell -1: 1 1 double 0 centre"));
}

} // namespace kv
