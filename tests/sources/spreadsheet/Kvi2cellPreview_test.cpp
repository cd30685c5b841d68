// LoadSpreadSheetPreview, on a worksheet: of all readers this one needs the fewest bytes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KvCells.h"
#include "KvException.h"
#include "KvTempFolder.h"
#include "KvWorksheetBuilder.h"
#include "Kvi2cell.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kv {

namespace {

/// What a preview gave its callback.
struct TPreview
{
    std::vector<std::string> Rows;                  // "1: A=x B=y"
    std::vector<std::string> Sheets;
    std::vector<std::string> Columns;               // "A 1": the letters and the number attached
};

/// A worksheet of two columns: the number of the row, from 1, and "x" and that number.
std::string Worksheet(unsigned Rows, unsigned DeclaredRows)
{
    TWorksheetBuilder Builder(wfLotus);
    Builder.Range(1, DeclaredRows);
    for (unsigned Row = 0; Row < Rows; ++Row)
        Builder.Integer(0, Row, static_cast<int>(Row) + 1).Label(1, Row, "x" + std::to_string(Row + 1));
    return Builder.End().Build();
}

TPreview Preview(const std::string& Bytes, int FirstRow, int LastRow, std::string_view ColumnSpec = {},
                 int SheetIndex = 0, TSpreadSheetExtensions Extensions = {})
{
    const TTempFolder Folder;
    TPreview Result;
    TStrings Sheets, Columns{"old"};
    const auto Note = [&Result](TPersistent*, int ColCount, int Row, bool, const TVariant& Values) {
        std::string Text = std::to_string(Row) + ":";
        EXPECT_EQ(Values.LowBound(), 0);
        for (int I = 0; I < ColCount; ++I)
            Text += " " + Values[I][1].ToText() + "=" + Values[I][2].ToText();
        Result.Rows.push_back(Text);
    };
    LoadSpreadSheetPreview(2, nullptr, ColumnSpec, Folder.Write("book.wk1", Bytes), SheetIndex, FirstRow,
                           LastRow, Sheets, false, Columns, Note, Extensions);
    for (int I = 0; I < Columns.Count(); ++I)
        Result.Columns.push_back(Columns[I] + " " + Columns.Object(I).ToText());
    Result.Sheets.assign(Sheets.begin(), Sheets.end());
    return Result;
}

} // namespace

TEST(Kvi2cellPreview, RefusesAnUnknownTypeOfSpreadsheet)
{
    for (const int Type : {0, 4, -1}) {
        TStrings Sheets{"old"};
        TStrings Columns;
        EXPECT_THAT(
            [&] { LoadSpreadSheetPreview(Type, nullptr, {}, "book", 0, 1, 9, Sheets, false, Columns, {}); },
            testing::Throws<Exception>(testing::Field(&Exception::Message, "Incorrect type of spreadsheet")));
        EXPECT_TRUE(Sheets.IsEmpty());
    }
}

TEST(Kvi2cellPreview, EachTypeHasItsReader)
{
    const TTempFolder Folder;
    const auto File = Folder.Write("book", std::string("\0\0\2\0\xFF\xFF", 6));
    const char* const Messages[] = {"File is not a Lotus 1-2-3 file", "File is not a QuattroPro file"};
    for (const int Type : {2, 3}) {
        TStrings Sheets;
        TStrings Columns;
        EXPECT_THAT(
            [&] { LoadSpreadSheetPreview(Type, nullptr, {}, File, 0, 1, 9, Sheets, false, Columns, {}); },
            testing::Throws<Exception>(testing::Field(&Exception::Message,
                                                      testing::HasSubstr(Messages[Type - 2]))));
    }
    TStrings Sheets;
    TStrings Columns;
    EXPECT_THROW(LoadSpreadSheetPreview(1, nullptr, {}, Folder / "none", 0, 1, 9, Sheets, false, Columns, {}),
                 Exception);
}

TEST(Kvi2cellPreview, ListsTheCaptionsOfAllSheets)
{
    EXPECT_THAT(Preview(Worksheet(2, 2), 1, 100).Sheets, ElementsAre("Sheet1"));
}

TEST(Kvi2cellPreview, RowsAreNumberedFrom1)
{
    EXPECT_THAT(Preview(Worksheet(5, 5), 1, 100).Rows,
                ElementsAre("1: A=1 B=x1", "2: A=2 B=x2", "3: A=3 B=x3", "4: A=4 B=x4", "5: A=5 B=x5"));
    EXPECT_THAT(Preview(Worksheet(5, 5), 4, 100).Rows, ElementsAre("1: A=4 B=x4", "2: A=5 B=x5"));
}

TEST(Kvi2cellPreview, ShowsAtMost21Rows)
{
    const auto Shown = Preview(Worksheet(50, 50), 3, 100).Rows;
    ASSERT_EQ(Shown.size(), 21U);
    EXPECT_EQ(Shown.front(), "1: A=3 B=x3");
    EXPECT_EQ(Shown.back(), "21: A=23 B=x23");
}

TEST(Kvi2cellPreview, LastRowIsNotShown)
{
    EXPECT_EQ(Preview(Worksheet(5, 5), 1, 3).Rows.size(), 3U);
    EXPECT_THAT(Preview(Worksheet(5, 5), 1, 0).Rows, IsEmpty());
}

TEST(Kvi2cellPreview, EndsWithTheDeclaredExtent)
{
    EXPECT_EQ(Preview(Worksheet(5, 4), 1, 100).Rows.size(), 4U);
    EXPECT_EQ(Preview(Worksheet(5, 4), 1, 100, {}, 0, {seCellExtent}).Rows.size(), 5U);
}

TEST(Kvi2cellPreview, ARowThatDoesNotExistHasNullInAllColumns)
{
    EXPECT_THAT(Preview(Worksheet(1, 2), 1, 100).Rows, ElementsAre("1: A=1 B=x1", "2: A= B="));
}

TEST(Kvi2cellPreview, ColumnsAreThoseThatWereStoredWithTheirNumberFrom1)
{
    const auto Columns = Preview(Worksheet(1, 1), 1, 100).Columns;
    EXPECT_THAT(Columns, ElementsAre("A 1", "B 2"));
}

TEST(Kvi2cellPreview, ColumnsThatAreAskedForHaveTheirNumberFrom0)
{
    for (const auto* const Spec : {"B;aa", "B;aa;"}) {
        const auto Shown = Preview(Worksheet(1, 1), 1, 100, Spec);
        EXPECT_THAT(Shown.Columns, ElementsAre("B 1", "aa 26"));
        EXPECT_THAT(Shown.Rows, ElementsAre("1: B=x1 aa="));
    }
}

TEST(Kvi2cellPreview, PastTheLastSheetThereIsAnEmptyOne)
{
    const auto Shown = Preview(Worksheet(5, 5), 1, 100, {}, 3);
    EXPECT_THAT(Shown.Rows, IsEmpty());
    EXPECT_THAT(Shown.Columns, IsEmpty());
    EXPECT_THAT(Shown.Sheets, ElementsAre("Sheet1"));
}

TEST(Kvi2cellPreview, HandsSenderAndFlagOn)
{
    const TTempFolder Folder;
    TSpreadSheet Sender;
    TPersistent* Seen = nullptr;
    bool SeenFlag = false;
    TStrings Sheets;
    TStrings Columns;
    LoadSpreadSheetPreview(2, &Sender, {}, Folder.Write("book.wk1", Worksheet(1, 1)), 0, 1, 9, Sheets, true,
                           Columns,
                           [&](TPersistent* Who, int, int, bool Flag, const TVariant& Values) {
                               Seen = Who;
                               SeenFlag = Flag;
                               EXPECT_TRUE(Values[0][0].IsNull());
                           });
    EXPECT_EQ(Seen, &Sender);
    EXPECT_TRUE(SeenFlag);
}

TEST(Kvi2cellPreview, TheLettersOfColumn52LeadToIt)
{
    const auto Book = TWorksheetBuilder(wfLotus).Range(53, 1).Label(50, 0, "AY").Label(51, 0, "AZ")
                                                .Label(52, 0, "BA").End();
    const auto Result = Preview(Book.Build(), 1, 9);
    ASSERT_EQ(Result.Columns.size(), 53u);
    EXPECT_EQ(Result.Columns[50], "AY 51");
    EXPECT_EQ(Result.Columns[51], "B@ 52");
    EXPECT_EQ(Result.Columns[52], "BA 53");
    ASSERT_EQ(Result.Rows.size(), 1u);
    EXPECT_TRUE(Result.Rows[0].ends_with(" AY=AY B@=AZ BA=BA")) << Result.Rows[0];
}

} // namespace kv
