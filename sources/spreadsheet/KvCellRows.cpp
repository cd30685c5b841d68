#include "KvCellRows.h"

#include <algorithm>
#include <cassert>

namespace kv {

namespace {

const TVariant EmptyValue;
const TVariant NullValue = Null;

// Rows of a sheet are alike: a new one makes room for as many cells as the one before, within reason.
constexpr std::size_t MaxReserved = 16;

constexpr int MaxRowNumber = 0x7FFFFFFE;            // one more still is a number

} // namespace

// TSpreadSheetRow

/// Where the cell of `Col` stands or would be inserted. Without gaps to its left, at position `Col`.
std::size_t TSpreadSheetRow::PositionOf(int Col) const
{
    if (Cells.empty() || Cells.back().Col < Col)
        return Cells.size();
    const auto Guess = static_cast<std::size_t>(Col);
    if (Guess < Cells.size() && Cells[Guess].Col == Col)
        return Guess;
    const auto Found = std::ranges::lower_bound(Cells, Col, {},
                                                [](const TCell& Cell) { return int{Cell.Col}; });
    return static_cast<std::size_t>(Found - Cells.begin());
}

const TSpreadSheetRow::TCell* TSpreadSheetRow::Find(int Col) const
{
    if (Col < 0)
        return nullptr;
    const auto Position = PositionOf(Col);
    return Position < Cells.size() && Cells[Position].Col == Col ? &Cells[Position] : nullptr;
}

const TVariant& TSpreadSheetRow::Value(int Col) const
{
    const auto* const Cell = Find(Col);
    return Cell ? Cell->Value : EmptyValue;
}

TAlignment TSpreadSheetRow::Alignment(int Col) const
{
    const auto* const Cell = Find(Col);
    return Cell ? Cell->Alignment : taLeftJustify;
}

TCellFault TSpreadSheetRow::Fault(int Col) const
{
    const auto* const Cell = Find(Col);
    return Cell ? Cell->Fault : cfNone;
}

void TSpreadSheetRow::SetFault(int Col, TCellFault Fault)
{
    assert(Find(Col) != nullptr);
    Cells[PositionOf(Col)].Fault = Fault;
    FHasFaults = FHasFaults || Fault != cfNone;
}

bool TSpreadSheetRow::IsBlank() const
{
    return std::ranges::all_of(Cells, [](const TCell& Cell) {
        return Cell.Value.IsBlank() && Cell.Fault == cfNone;
    });
}

void TSpreadSheetRow::Set(int Col, TVariant&& Value, TAlignment Alignment)
{
    assert(Col >= 0 && Col < MaxColumns);
    const auto Position = PositionOf(Col);
    if (Position == Cells.size()) {
        Cells.emplace_back(std::move(Value), Col, Alignment);
    } else if (Cells[Position].Col == Col) {
        Cells[Position] = TCell(std::move(Value), Col, Alignment);
    } else {
        const auto Place = Cells.begin() + static_cast<std::ptrdiff_t>(Position);
        Cells.emplace(Place, std::move(Value), Col, Alignment);
    }
}

// TSpreadSheetCells

int TSpreadSheetCells::AddRow(int Row)
{
    const int Position = static_cast<int>(Rows.size());
    const std::size_t Room = Rows.empty() ? 0 : std::min(Rows.back().CellCount(), MaxReserved);
    if (AreAscending && !Rows.empty() && Row <= Rows.back().Row) {
        AreAscending = false;
        IndexRows();
    }
    Rows.emplace_back(Row).Reserve(Room);
    if (!AreAscending)
        Positions.try_emplace(Row, Position);
    return Position;
}

void TSpreadSheetCells::IndexRows()
{
    Positions.clear();
    for (std::size_t I = 0; I < Rows.size(); ++I)
        Positions.try_emplace(Rows[I].Row, static_cast<int>(I));
}

int TSpreadSheetCells::GetRow(int Row) const
{
    const auto Last = static_cast<std::size_t>(LastFound);
    if (Last < Rows.size() && Rows[Last].Row == Row)
        return LastFound;
    return FindRow(Row);
}

int TSpreadSheetCells::FindRow(int Row) const
{
    if (!AreAscending) {
        const auto Found = Positions.find(Row);
        return Found == Positions.end() ? -1 : Found->second;
    }
    if (Rows.empty() || Rows.back().Row < Row)
        return -1;
    // An import asks for row after row.
    const auto Next = static_cast<std::size_t>(LastFound) + 1;
    if (Next < Rows.size() && Rows[Next].Row == Row)
        return static_cast<int>(Next);
    const auto Found = std::ranges::lower_bound(Rows, Row, {}, &TSpreadSheetRow::Row);
    return Found->Row == Row ? static_cast<int>(Found - Rows.begin()) : -1;
}

int TSpreadSheetCells::GetRow(int Row, bool Create)
{
    int Position = std::as_const(*this).GetRow(Row);
    if (Position < 0 && Create)
        Position = AddRow(Row);
    if (Position >= 0)
        LastFound = Position;
    return Position;
}

void TSpreadSheetCells::RemoveRow(std::size_t Index)
{
    Rows.erase(Rows.begin() + static_cast<std::ptrdiff_t>(Index));
    if (!AreAscending)
        IndexRows();
    LastFound = 0;
}

void TSpreadSheetCells::Clear()
{
    *this = {};
}

const TVariant& TSpreadSheetCells::GetValue(int Col, int Row) const
{
    const int Position = GetRow(Row);
    return Position < 0 ? NullValue : Rows[static_cast<std::size_t>(Position)].Value(Col);
}

TAlignment TSpreadSheetCells::GetAlignment(int Col, int Row) const
{
    const int Position = GetRow(Row);
    return Position < 0 ? taLeftJustify : Rows[static_cast<std::size_t>(Position)].Alignment(Col);
}

void TSpreadSheetCells::SetFault(int Col, int Row, TCellFault Fault)
{
    if (Col >= 0 && Col < TSpreadSheetRow::MaxColumns)
        Rows[static_cast<std::size_t>(GetRow(Row, false))].SetFault(Col, Fault);
}

void TSpreadSheetCells::Store(int Col, int Row, TVariant&& Value, TAlignment Alignment)
{
    if (Col < 0 || Col >= TSpreadSheetRow::MaxColumns) {
        FCellsBeyond += Value.HasValue();
        return;
    }
    const bool HasValue = Value.HasValue();
    const int Position = GetRow(Row, HasValue);
    if (Position < 0)
        return;
    Rows[static_cast<std::size_t>(Position)].Set(Col, std::move(Value), Alignment);
    if (Col >= ColCount)
        ColCount = static_cast<std::uint16_t>(Col + 1);
    if (Row >= RowCount)
        RowCount = static_cast<std::uint16_t>(Row + 1);
    if (HasValue)
        CountCell(Col, Row);
}

void TSpreadSheetCells::CountCell(int Col, int Row)
{
    FCellColumns = std::max(FCellColumns, Col + 1);
    FCellRows = std::max(FCellRows, std::min(Row, MaxRowNumber) + 1);
}

} // namespace kv
