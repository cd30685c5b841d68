// What a workbook shows without an import: its sheets, and the columns of one of them.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "KvCells.h"
#include "KvColumnLetters.h"
#include "KvFieldConvert.h"
#include "KvText.h"
#include "Kvi2cell.h"

namespace kv {

namespace {

/// What the cells of a column hold.
class TColumnContent
{
public:
    void Add(const TVariant& Value)
    {
        if (Value.IsBlank())
            return;
        switch (Value.Kind()) {
        case vkInteger:  Has.Whole = true; break;
        case vkDouble:
        case vkCurrency: Has.Real = true; break;
        case vkDateTime: AddMoment(Value.DateTime().Days); break;
        case vkBoolean:  Has.Truth = true; break;
        case vkString:   AddText(Value.Text()); break;
        default:         break;
        }
    }

    bool IsEmpty() const { return KindCount() == 0; }
    TFieldType DataType() const
    {
        if (IsEmpty())
            return ftUnknown;
        if (KindCount() > 1 || Has.Text)
            return ftString;
        if (Has.Truth)
            return ftBoolean;
        if (Has.Whole || Has.Real)
            return Has.Real ? ftFloat : ftLargeint;
        return !Has.Time ? ftDate : Has.Day ? ftDateTime : ftTime;
    }
    /// Of the longest text; 0 where not all values are texts.
    int TextSize() const { return KindCount() == 1 ? static_cast<int>(Size) : 0; }

private:
    int KindCount() const { return Has.Text + (Has.Whole || Has.Real) + Has.Truth + (Has.Day || Has.Time); }
    void AddText(std::string_view Text)
    {
        Has.Text = true;
        Size = std::max(Size, CharacterCount(Text));
    }
    void AddMoment(double Days)
    {
        const double Day = std::floor(Days);
        Has.Day = Has.Day || Day != 0;
        Has.Time = Has.Time || Days != Day;
    }

    struct
    {
        bool Text = false, Whole = false, Real = false, Truth = false, Day = false, Time = false;
    } Has;
    std::size_t Size = 0;                           // of the longest text, in characters
};

} // namespace

std::vector<TKvISourcePart> TKvImportFromCell::SourceParts()
{
    LoadOnce();
    WorkBook->Sheets.Spreadsheet(0);                // a file without any has an empty one
    std::vector<TKvISourcePart> Parts;
    for (std::size_t I = 0; I < WorkBook->Sheets.Count(); ++I) {
        const auto& Sheet = WorkBook->Sheets[I];
        Parts.push_back({.Name = Sheet.Caption,
                         .Rows = RowExtent(Sheet.Cells, Extensions),
                         .Columns = ColumnExtent(Sheet.Cells, Extensions)});
    }
    return Parts;
}

void TKvImportFromCell::SelectPart(int Index, const TKvISourcePart&)
{
    SheetIndex = Index;
}

void TKvImportFromCell::BeforeLook(const TKvISourceLook&)
{
    Columns.Clear();
    LoadOnce();
}

void TKvImportFromCell::EndLook()
{
    LoadedAhead = false;
    Record = nullptr;
    WorkBook.reset();
}

/// A column that has neither a title nor values is none.
std::vector<TKvISourceColumn> TKvImportFromCell::SourceColumns(int HeaderRow)
{
    const auto& Sheet = Cells();
    std::vector<TColumnContent> Contents(
        static_cast<std::size_t>(std::max(ColumnExtent(Sheet, Extensions), 0)));
    for (std::size_t I = 0; I < Sheet.Count(); ++I)
        if (Sheet[I].Row >= RowFirst - 1 && Sheet[I].Row < RowLast)
            for (std::size_t Col = 0; Col < Contents.size(); ++Col)
                Contents[Col].Add(Sheet[I].Value(static_cast<int>(Col)));
    std::vector<TKvISourceColumn> Result;
    for (std::size_t Col = 0; Col < Contents.size(); ++Col) {
        const auto& Header = HeaderRow > 0 ? Sheet.GetValue(static_cast<int>(Col), HeaderRow - 1) : Null;
        auto Title = Header.IsString() ? TitleText(Header.Text()) : std::string(Trim(Header.ToText()));
        if (!Title.empty() || !Contents[Col].IsEmpty())
            Result.push_back({.Name = SpreadSheetLetters(static_cast<int>(Col) + 1),
                              .Title = std::move(Title),
                              .DataType = Contents[Col].DataType(),
                              .Size = Contents[Col].TextSize()});
    }
    return Result;
}

TVariant TKvImportFromCell::SourceRecord()
{
    const int Count = WorkBook ? ColumnExtent(Cells(), Extensions) : 0;
    if (!Record || Count < 1)
        return Null;
    auto Values = TVariant::Array(0, Count - 1);
    for (int Col = 0; Col < Count; ++Col)
        Values[Col] = Record->Value(Col);
    return Values;
}

void TKvImportFromCell::LookAtExtent()
{
    Remarks.clear();
    if (!WorkBook)
        return;
    const auto& Sheet = Cells();
    const int RowCount = RowExtent(Sheet, Extensions), ColumnCount = ColumnExtent(Sheet, Extensions);
    if (Sheet.CellRows() > RowCount)
        Remarks.push_back({.Kind = srRowsBeyondExtent, .Count = Sheet.CellRows(), .Limit = RowCount});
    if (Sheet.CellColumns() > ColumnCount)
        Remarks.push_back(
            {.Kind = srColumnsBeyondExtent, .Count = Sheet.CellColumns(), .Limit = ColumnCount});
    if (Sheet.CellsBeyond() > 0)
        Remarks.push_back(
            {.Kind = srCellsBeyondLastColumn, .Count = static_cast<std::int64_t>(Sheet.CellsBeyond())});
}

} // namespace kv
