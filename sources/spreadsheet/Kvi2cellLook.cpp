// What a workbook shows without an import: its sheets, and the columns of one of them.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "KvCellText.h"
#include "KvCells.h"
#include "KvCodePage.h"
#include "KvColumnLetters.h"
#include "KvFieldConvert.h"
#include "KvText.h"
#include "Kvi2cell.h"

namespace kv {

namespace {

bool IsWhole(double Number)
{
    constexpr double Exact = 9007199254740992.0;    // 2^53: from there on every double is whole
    return std::abs(Number) < Exact && Number == std::floor(Number);
}

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
        case vkDouble:   (IsWhole(Value.Double()) ? Has.Whole : Has.Real) = true; break;
        case vkCurrency: Has.Real = true; break;
        case vkDateTime: AddMoment(Value.DateTime().Days); break;
        case vkBoolean:  Has.Truth = true; break;
        default:         Has.Text = true; break;
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

private:
    int KindCount() const
    {
        return Has.Text + (Has.Whole || Has.Real) + Has.Truth + Has.Moment;
    }
    void AddMoment(double Days)
    {
        const double Day = std::floor(Days);
        Has.Moment = true;
        Has.Day = Has.Day || Day != 0;
        Has.Time = Has.Time || Days != Day;
    }

    struct
    {
        bool Text = false, Whole = false, Real = false, Truth = false;
        bool Moment = false, Day = false, Time = false; // a date-time, one with a day, one with a time
    } Has;
};

/// Characters of process text, or of the bytes that become such where it is stored.
std::size_t LengthOf(std::string_view Text)
{
    std::string Buffer;
    return CharacterCount(AnsiIsUtf8() ? AnsiToUtf8(Text, Buffer) : Text);
}

} // namespace

// Sheets.

std::vector<TKvISourcePart> TKvImportFromCell::SourceParts()
{
    if (!IsKept())
        LoadWorkBook();
    auto& Sheets = WorkBook->Sheets;
    Sheets.Spreadsheet(0);                          // adds the empty one
    std::vector<TKvISourcePart> Parts;
    for (std::size_t I = 0; I < Sheets.Count(); ++I)
        Parts.push_back({.Name = Sheets[I].Caption,
                         .Rows = RowExtent(Sheets[I].Cells, Extensions),
                         .Columns = ColumnExtent(Sheets[I].Cells, Extensions),
                         .IsHidden = Sheets[I].Hidden});
    return Parts;
}

void TKvImportFromCell::SelectPart(int Index, const TKvISourcePart&)
{
    SheetIndex = Index;
}

void TKvImportFromCell::LookAtExtent()
{
    Remarks.clear();
    const auto* const Cells = Sheet();
    if (!Cells)
        return;
    const auto Add = [this](TKvISourceRemarkKind Kind, std::int64_t Count, std::int64_t Limit) {
        if (Count > Limit)
            Remarks.push_back({.Kind = Kind, .Count = Count, .Limit = Limit});
    };
    Add(srRowsBeyondExtent, Cells->CellRows(), RowExtent(*Cells, Extensions));
    Add(srColumnsBeyondExtent, Cells->CellColumns(), ColumnExtent(*Cells, Extensions));
    Add(srCellsBeyondLastColumn, static_cast<std::int64_t>(Cells->CellsBeyond()), 0);
    if (SkipsEmptyRows())
        RemarkEmptyRows(*Cells);
    for (const auto& Remark : WorkBook->Remarks)
        if (Remark.Kind != srOldText || CharacterSet != csiASCII_MSDOS)
            Remarks.push_back(Remark);
}

void TKvImportFromCell::RemarkEmptyRows(const TSpreadSheetCells& Cells)
{
    TKvISourceRemark Remark{.Kind = srEmptyRows};
    const int End = std::min(RowLast, RowExtent(Cells, Extensions));
    for (int Row = std::max(RowFirst, 1) - 1; Row < End; ++Row)
        if (IsEmptyRow(Row) && Remark.Count++ == 0)
            Remark.First = std::int64_t{Row} + 1;
    if (Remark.Count > 0)
        Remarks.push_back(Remark);
}

// A look.

void TKvImportFromCell::BeforeLook(const TKvISourceLook&)
{
    LoadOnce();
}

void TKvImportFromCell::EndLook()
{
    if (LoadedAhead)
        AfterImport();
}

/// Only rows that hold a value.
template <class TVisit> void TKvImportFromCell::ForImportedRows(TVisit Visit) const
{
    const auto& Cells = *Sheet();
    const int End = std::min(RowLast, RowExtent(Cells, Extensions));
    for (std::size_t I = 0; I < Cells.Count(); ++I)
        if (Cells[I].Row < End && Cells[I].Row >= RowFirst - 1)
            Visit(Cells[I]);
}

std::vector<TKvISourceColumn> TKvImportFromCell::SourceColumns(int HeaderRow)
{
    if (!Sheet())
        return {};
    std::vector<TColumnContent> Contents(static_cast<std::size_t>(ColumnExtent(*Sheet(), Extensions)));
    ForImportedRows([&Contents](const TSpreadSheetRow& Row) {
        for (int Column = 0; std::cmp_less(Column, Contents.size()); ++Column)
            if (!Row.HasFaults() || Row.Fault(Column) == cfNone) // its record will be refused
                Contents[static_cast<std::size_t>(Column)].Add(Row.Value(Column));
    });
    std::vector<TKvISourceColumn> Result;
    for (std::size_t I = 0; I < Contents.size(); ++I) {
        const int Column = static_cast<int>(I);
        auto Title = TitleOf(Column, HeaderRow);
        if (Title.empty() && Contents[I].IsEmpty())
            continue;
        const auto DataType = Contents[I].DataType();
        Result.push_back({.Name = SpreadSheetLetters(Column + 1),
                          .Title = std::move(Title),
                          .DataType = DataType,
                          .Size = DataType == ftString ? LongestText(Column) : 0});
    }
    return Result;
}

std::string TKvImportFromCell::TitleOf(int Column, int HeaderRow) const
{
    if (HeaderRow < 1)
        return {};
    const auto& Value = Sheet()->GetValue(Column, HeaderRow - 1);
    return Value.IsString() ? TitleText(Value.Text()) : std::string(Trim(CellText(Value)));
}

/// In characters, of rows that are imported.
int TKvImportFromCell::LongestText(int Column) const
{
    std::size_t Result = 0;
    ForImportedRows([&, this](const TSpreadSheetRow& Row) {
        const auto& Value = Row.Value(Column);
        const bool IsOem = CharacterSet == csiASCII_MSDOS && Value.IsString();
        Result = std::max(Result, LengthOf(UECode(IsOem, CellText(Value))));
    });
    return static_cast<int>(Result);
}

// Names in mappings.

/// There are no constants: any name is read as letters, and most of them lead nowhere.
TKvISourceName TKvImportFromCell::ResolveName(const std::string& Wanted,
                                              const std::vector<TKvISourceColumn>& Shown) const
{
    const int Column = ColumnOfLetters(Wanted);
    const auto Letters = SpreadSheetLetters(Column + 1);
    const bool IsName = SameText(Wanted, Letters) || SameText(Wanted, LettersOfColumn(Column + 1));
    if (Column < 0 || Column >= TSpreadSheetRow::MaxColumns || !IsName)
        return {.Kind = snNothing, .Name = Wanted};
    bool HasValues = std::ranges::count(Shown, Letters, &TKvISourceColumn::Name) > 0;
    if (!HasValues && Sheet())                      // it may lie beyond what the sheet declares
        ForImportedRows([&](const auto& Row) { HasValues = HasValues || !Row.Value(Column).IsBlank(); });
    return {.Kind = HasValues ? snColumn : snBlank, .Name = Letters};
}

} // namespace kv
