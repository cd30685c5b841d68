#include "Kvxls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "KvBiffBuilder.h"
#include "KvBiffStrings.h"
#include "KvCompoundBuilder.h"
#include "KvException.h"
#include "KvTempFolder.h"
#include "KvxlsEvents.h"

namespace kv {

namespace {

class Kvxls : public testing::Test
{
protected:
    std::string FileOf(std::string_view Bytes) const { return Folder.Write("book.xls", Bytes); }
    /// The message that loading gives; "" for none.
    std::string Load(const std::string& Name)
    {
        try {
            Reader.LoadFromFile(Name);
        } catch (const Exception& Error) {
            return Error.Message;
        }
        return "";
    }
    std::string CellText(int Sheet, int Col, int Row)
    {
        return Describe(Reader.Sheets.Spreadsheet(Sheet).Cells.GetValue(Col, Row));
    }

    TTempFolder Folder;
    TMSExcel Reader;
};

std::string Workbook(std::u16string_view StreamName, std::string_view Stream)
{
    return TCompoundBuilder().Stream(u"\x0005SummaryInformation", "summary").Stream(StreamName, Stream)
                             .Build();
}

std::string OneSheet(TBiffVersion Version)
{
    return TWorkbookBuilder(Version)
        .Sheet("One", TBiffBuilder(Version).Dimensions(0, 1, 0, 1).Number(0, 0, 1.5))
        .Build();
}

} // namespace

TEST_F(Kvxls, AnExcel4FileFillsTheFirstSheet)
{
    const auto Stream = TBiffBuilder(bv4).Bof().Dimensions(0, 3, 0, 2).Label(2, 1, "text").Eof();
    EXPECT_EQ(Load(FileOf(Stream.Str())), "");
    ASSERT_EQ(Reader.Sheets.Count(), 1u);
    EXPECT_EQ(Reader.Sheets[0].Caption, "Sheet1");
    EXPECT_EQ(CellText(0, 1, 2), "string text");
    EXPECT_EQ(Reader.Sheets[0].Cells.LastRow, 4);
    EXPECT_EQ(Reader.Sheets[0].Cells.LastColumn, 3);
    EXPECT_EQ(Reader.Version, evExcel4);
    EXPECT_EQ(Reader.SheetIndex, -1);
}

TEST_F(Kvxls, TheStreamTellsTheVersion)
{
    EXPECT_EQ(Load(FileOf(Workbook(u"Book", OneSheet(bv5)))), "");
    EXPECT_EQ(Reader.Version, evExcel7);
    EXPECT_EQ(CellText(0, 0, 0), "double 1.5");
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", OneSheet(bv8)))), "");
    EXPECT_EQ(Reader.Version, evExcel8);
    EXPECT_EQ(CellText(0, 0, 0), "double 1.5");
    EXPECT_EQ(Reader.Sheets.Count(), 1u);
    EXPECT_EQ(Reader.Sheets[0].Caption, "One");
    EXPECT_EQ(Reader.Sheets[0].Cells.LastRow, 1);
    EXPECT_EQ(Reader.SheetIndex, 0);
}

TEST_F(Kvxls, TheStreamTellsTheVersionWhateverItHolds)
{
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", OneSheet(bv5)))),
              "Record 0x0200 at offset 42 is too short: 10 bytes, 12 are needed");
    EXPECT_EQ(Load(FileOf(Workbook(u"Book", OneSheet(bv8)))), "");
    EXPECT_EQ(Reader.Version, evExcel7);
    EXPECT_EQ(Reader.Sheets[0].Cells.LastRow, 0);   // the upper half of the first row
}

TEST_F(Kvxls, UnderTheExtensionTheFirstRecordTellsTheVersion)
{
    Reader.Extensions = {seCellRecords};
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", OneSheet(bv5)))), "");
    EXPECT_EQ(Reader.Version, evExcel7);
    EXPECT_EQ(Reader.Sheets[0].Cells.LastRow, 1);
    EXPECT_EQ(Load(FileOf(Workbook(u"Book", OneSheet(bv8)))), "");
    EXPECT_EQ(Reader.Version, evExcel8);
    EXPECT_EQ(Reader.Sheets[0].Cells.LastRow, 1);
}

TEST_F(Kvxls, WithoutAFirstRecordTheStreamTellsTheVersionUnderTheExtensionToo)
{
    Reader.Extensions = {seCellRecords};
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", TBiffBuilder().Eof().Str()))), "");
    EXPECT_EQ(Reader.Version, evExcel8);
}

TEST_F(Kvxls, NamesOfStreamsHaveNoCase)
{
    EXPECT_EQ(Load(FileOf(Workbook(u"WORKBOOK", OneSheet(bv8)))), "");
    EXPECT_EQ(Reader.Version, evExcel8);
}

TEST_F(Kvxls, TheFirstStreamOfTheDirectoryCounts)
{
    const auto File = TCompoundBuilder().Stream(u"Workbook", OneSheet(bv8)).Stream(u"Book", OneSheet(bv5))
                                        .Build();
    EXPECT_EQ(Load(FileOf(File)), "");
    EXPECT_EQ(Reader.Version, evExcel7);            // shorter names come first
}

TEST_F(Kvxls, ADocumentWithoutAWorkbookIsRefused)
{
    EXPECT_EQ(Load(FileOf(Workbook(u"WordDocument", "text"))), "File is not a Excel Workbook");
}

TEST_F(Kvxls, OtherFilesAreRefused)
{
    EXPECT_EQ(Load(FileOf("name;value\r\n1;2\r\n")), "File is not a Excel file");
    EXPECT_EQ(Load(FileOf("")), "File is not a Excel file");
    EXPECT_EQ(Load(""), "File is not defined.");
    EXPECT_EQ(Load(Folder / "none.xls"), "File is not exists.");
}

TEST_F(Kvxls, AnEncryptedFileIsRefused)
{
    const auto Stream = TWorkbookBuilder().Globals(TBiffBuilder().FilePass()).Sheet("S", {}).Build();
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", Stream))), "Can not read: file is encrypted");
    EXPECT_EQ(Reader.Sheets.Count(), 0u);
}

TEST_F(Kvxls, WhatWasReadBeforeAnErrorStays)
{
    const auto Stream = TWorkbookBuilder().Sheet("S", TBiffBuilder().Number(0, 0, 1.5).LabelSst(0, 1, 7))
                                          .Build();
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", Stream))),
              "Record 0x00FD at offset 75: there is no shared string 7, only 0");
    EXPECT_EQ(CellText(0, 0, 0), "double 1.5");
}

TEST_F(Kvxls, ADamagedDocumentIsToldBeforeItsRecords)
{
    TCompoundBuilder Builder;
    Builder.Stream(u"Workbook",
                   TWorkbookBuilder().Sheet("S", TBiffBuilder().Label(0, 0, std::string(8000, 'x'))).Build());
    auto File = Builder.Build();
    // It ends after one sector.
    File.replace(Builder.OffsetOfLink(Builder.FirstSectorOf(1)), 4, "\xFE\xFF\xFF\xFF");
    EXPECT_THAT(Load(FileOf(File)), testing::StartsWith("Cannot read stream \"Workbook\" of file "));
}

TEST_F(Kvxls, EveryLoadStartsAnew)
{
    const auto First = TWorkbookBuilder().Globals(TBiffBuilder().Xf(14)).Sheet("A", {}).Sheet("B", {})
                                         .Build();
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", First))), "");
    EXPECT_EQ(Reader.Sheets.Count(), 2u);
    EXPECT_TRUE(Reader.FormatIsDateTime(0));
    EXPECT_EQ(Load(FileOf(Workbook(u"Book", OneSheet(bv5)))), "");
    EXPECT_EQ(Reader.Sheets.Count(), 1u);
    EXPECT_FALSE(Reader.FormatIsDateTime(0));
    EXPECT_EQ(Reader.Sheets[0].Caption, "One");
}

TEST_F(Kvxls, AFileThatIsRefusedLeavesNothingOfTheOneBefore)
{
    const auto First = TWorkbookBuilder().Globals(TBiffBuilder().Xf(14)).Sheet("A", {}).Build();
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", First))), "");
    EXPECT_EQ(Load(FileOf(Workbook(u"WordDocument", "text"))), "File is not a Excel Workbook");
    EXPECT_EQ(Reader.Version, evUnknown);
    EXPECT_EQ(Reader.SheetIndex, -1);
    EXPECT_FALSE(Reader.FormatIsDateTime(0));
    EXPECT_EQ(Reader.Sheets.Count(), 0u);
}

TEST_F(Kvxls, ARunOfItsOwnKeepsTheEvents)
{
    Reader.FileName = FileOf(Workbook(u"Workbook", OneSheet(bv8)));
    int Cells = 0;
    Reader.OnCellValue = [&](auto&&...) { ++Cells; };
    Reader.ImportFromOLEStream();
    EXPECT_EQ(Cells, 1);
    Reader.FileName = FileOf(TBiffBuilder(bv2).Bof().Label2(0, 0, "\1\1\1", "a").Str());
    Reader.ImportFromStream();
    EXPECT_EQ(Cells, 2);
    EXPECT_EQ(Reader.Sheets.Count(), 0u);
}

TEST_F(Kvxls, TellsWhichFormatsAreDates)
{
    EXPECT_FALSE(Reader.FormatIsDateTime(13));
    EXPECT_TRUE(Reader.FormatIsDateTime(14));
    EXPECT_TRUE(Reader.FormatIsDateTime(22));
    EXPECT_FALSE(Reader.FormatIsDateTime(23));
    EXPECT_FALSE(Reader.FormatIsDateTime(-1));
    EXPECT_FALSE(Reader.FormatIsDateTime(0x1000E));
    Reader.ReadWorkbookStream(TBiffBuilder().Xf(14).Xf(0).Xf(164).Str(), evExcel8);
    EXPECT_TRUE(Reader.FormatIsDateTime(0));
    EXPECT_FALSE(Reader.FormatIsDateTime(1));
    EXPECT_FALSE(Reader.FormatIsDateTime(2));
    Reader.ClearFormats();
    EXPECT_FALSE(Reader.FormatIsDateTime(0));
}

TEST_F(Kvxls, StartsWithoutAVersion)
{
    EXPECT_EQ(Reader.Version, evUnknown);
    EXPECT_EQ(evUnknown, 0);
    EXPECT_EQ(evExcel8, 6);
}

TEST_F(Kvxls, PublishesVersionAndSheet)
{
    Reader.ReadWorkbookStream(OneSheet(bv5), evExcel7);
    const auto Properties = Reader.PublishedProperties();
    const auto ValueOf = [&](std::string_view Name) {
        for (const auto& Property : Properties)
            if (Property.Name == Name)
                return Property.Get(Reader).Integer();
        return std::int64_t{-9};
    };
    EXPECT_EQ(ValueOf("Version"), evExcel7);
    EXPECT_EQ(ValueOf("SheetIndex"), 0);
}

TEST_F(Kvxls, CellsBeyondTheLastColumnAreCounted)
{
    const auto Stream = TWorkbookBuilder().Sheet("S", TBiffBuilder().Number(0, 255, 1).Number(0, 256, 2))
                                          .Build();
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", Stream))), "");
    EXPECT_EQ(CellText(0, 255, 0), "double 1");
    EXPECT_EQ(Reader.Sheets[0].Cells.CellsBeyond(), 1u);
}

namespace {

/// A document with a workbook of Excel 5 and one of Excel 8, in the order of the directory.
std::string TwoWorkbooks(std::string_view Newer)
{
    const auto Older = TWorkbookBuilder(bv5).Sheet("Old", TBiffBuilder(bv5).Number(0, 0, 5)).Build();
    return TCompoundBuilder().Stream(u"Book", Older).Stream(u"Workbook", Newer).Build();
}

} // namespace

TEST_F(Kvxls, OfTwoWorkbooksTheFirstIsRead)
{
    EXPECT_EQ(Load(FileOf(TwoWorkbooks(OneSheet(bv8)))), "");
    EXPECT_EQ(CellText(0, 0, 0), "double 5");
}

TEST_F(Kvxls, OfTwoWorkbooksTheNewerIsReadUnderTheExtension)
{
    Reader.Extensions = {seFileCodePage};
    EXPECT_EQ(Load(FileOf(TwoWorkbooks(OneSheet(bv8)))), "");
    EXPECT_EQ(CellText(0, 0, 0), "double 1.5");
    EXPECT_EQ(Reader.Version, evExcel8);
    EXPECT_TRUE(Reader.Remarks.empty());
}

TEST_F(Kvxls, TheOlderWorkbookIsReadWhenTheNewerCannotBe)
{
    Reader.Extensions = {seFileCodePage};
    const auto Encrypted = TBiffBuilder().Bof(bpGlobals).FilePass();
    EXPECT_EQ(Load(FileOf(TwoWorkbooks(Encrypted.Str()))), "");
    ASSERT_EQ(Reader.Sheets.Count(), 1u);
    EXPECT_EQ(Reader.Sheets[0].Caption, "Old");
    EXPECT_EQ(CellText(0, 0, 0), "double 5");
    ASSERT_EQ(Reader.Remarks.size(), 1u);
    EXPECT_EQ(Reader.Remarks[0].Kind, srOlderWorkbook);
    EXPECT_EQ(Reader.Remarks[0].Reason, "Can not read: file is encrypted");
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", OneSheet(bv8)))), "");
    EXPECT_TRUE(Reader.Remarks.empty());
}

TEST_F(Kvxls, AStorageThatIsNamedLikeAWorkbookIsNone)
{
    const auto Document = [](std::u16string_view Name) {
        return TCompoundBuilder().Storage(Name).Stream(u"X", "x").Build();
    };
    for (const auto* const Name : {u"Book", u"Workbook"}) {
        const auto File = FileOf(Document(Name));
        Reader.Extensions = {};
        EXPECT_EQ(Load(File), "File \"" + File + "\" has no stream \"" +
                                  (Name[0] == u'B' ? "Book" : "Workbook") + "\"");
        Reader.Extensions = {seFileCodePage};
        EXPECT_EQ(Load(File), "File is not a Excel Workbook");
    }
    EXPECT_EQ(Load(FileOf(TCompoundBuilder().Storage(u"Book").Stream(u"Workbook", OneSheet(bv8)).Build())),
              "");
    EXPECT_EQ(CellText(0, 0, 0), "double 1.5");
}

TEST_F(Kvxls, WhatIsNoWorkbookIsNamedUnderTheExtension)
{
    const auto Page = FileOf("<table border=1><tr><td>A</td></tr></table>");
    EXPECT_EQ(Load(Page), "File is not a Excel file");
    Reader.Extensions = {seTellingErrors, seFileCodePage};
    EXPECT_EQ(Load(Page), "File is not a Excel file, but a page of HTML");
    EXPECT_EQ(Load(FileOf("\x01\x02\x03\x04\x05")), "File is not a Excel file");
    EXPECT_EQ(Load(FileOf(TCompoundBuilder().Stream(u"EncryptedPackage", "x").Build())),
              "File is not a Excel Workbook, but a newer one with a password");
    EXPECT_EQ(Load(FileOf(TCompoundBuilder().Stream(u"WordDocument", "x").Build())),
              "File is not a Excel Workbook, but a document of Word");
    EXPECT_EQ(Load(FileOf(TCompoundBuilder().Stream(u"X", "x").Build())), "File is not a Excel Workbook");
}

TEST_F(Kvxls, ALongSharedTextIsHeldOnce)
{
    const std::u16string Long(1000, u'x'), Other(40, u'y');
    const auto Strings = BiffSharedStrings({{.Text = Long}, {.Text = u"short"}, {.Text = Other}});
    TBiffBuilder Sheet;
    for (unsigned Row = 0; Row < 100; ++Row)
        Sheet.LabelSst(Row, 0, 0).LabelSst(Row, 1, 1).LabelSst(Row, 2, 2);
    const auto Stream = TBiffBuilder().Bof(bpGlobals).Str() + Strings + TBiffBuilder().Eof().Str() +
                        TBiffBuilder().Bof().Add(Sheet).Eof().Str();
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", Stream))), "");
    auto& Cells = Reader.Sheets.Spreadsheet(0).Cells;
    for (int Row = 0; Row < 100; ++Row) {
        EXPECT_EQ(Cells.GetValue(0, Row).Text(), std::string(1000, 'x'));
        EXPECT_EQ(Cells.GetValue(0, Row).Text().data(), Cells.GetValue(0, 0).Text().data());
        EXPECT_EQ(Cells.GetValue(1, Row).Text(), "short");
        EXPECT_EQ(Cells.GetValue(2, Row).Text(), std::string(40, 'y'));
    }
    const TVariant Copy = Cells.GetValue(0, 99);
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", OneSheet(bv8)))), "");
    EXPECT_EQ(Copy.Text(), std::string(1000, 'x'));
}

TEST_F(Kvxls, ASecondTableOfSharedTextsLeavesTheFirst)
{
    const std::u16string One(1000, u'x'), Two(5000, u'y');
    const auto Stream = TBiffBuilder().Bof(bpGlobals).Str() + BiffSharedStrings({{.Text = One}}) +
                        TBiffBuilder().Eof().Bof().LabelSst(0, 0, 0).Str() +
                        BiffSharedStrings({{.Text = Two}}) + TBiffBuilder().LabelSst(1, 0, 0).Eof().Str();
    EXPECT_EQ(Load(FileOf(Workbook(u"Workbook", Stream))), "");
    auto& Cells = Reader.Sheets.Spreadsheet(0).Cells;
    EXPECT_EQ(Cells.GetValue(0, 0).Text(), std::string(1000, 'x'));
    EXPECT_EQ(Cells.GetValue(0, 1).Text(), std::string(5000, 'y'));
}

} // namespace kv
