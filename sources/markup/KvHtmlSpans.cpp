#include "KvHtmlSpans.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "KvException.h"
#include "KvHtmlAttributes.h"
#include "KvHtmlSpace.h"
#include "KvText.h"

namespace kv {

namespace {

/// As HTML reads a number that is not negative: blanks and a "+" may stand before it, anything behind it.
/// `Usual` where there is none.
std::size_t NumberIn(std::string_view Text, std::size_t Usual)
{
    const auto* First = SkipHtmlSpace(Text.data(), Text.data() + Text.size());
    const auto* const End = Text.data() + Text.size();
    if (First != End && *First == '+')
        ++First;
    std::size_t Number = 0;
    const auto [Last, Error] = std::from_chars(First, End, Number);
    if (Error == std::errc::result_out_of_range)
        return static_cast<std::size_t>(-1);
    return Error == std::errc() ? Number : Usual;
}

/// The number in the attribute `Name` of a tag; `Usual` without one.
std::size_t AttributeNumber(std::string_view Tag, std::string_view Name, std::size_t Usual)
{
    TKvHtmlAttributes Attributes(Tag.data(), Tag.data() + Tag.size());
    while (Attributes.Next())
        if (SameText(Attributes.Name(), Name))
            return NumberIn(Attributes.Value(), Usual);
    return Usual;
}

std::size_t ColumnSpan(std::string_view Tag)
{
    return std::clamp<std::size_t>(AttributeNumber(Tag, "COLSPAN", 1), 1, TKvHtmlSpans::MaxColumnSpan);
}

std::size_t RowSpan(std::string_view Tag)
{
    const auto Rows = std::min(AttributeNumber(Tag, "ROWSPAN", 1), TKvHtmlSpans::MaxRowSpan);
    return Rows == 0 ? TKvHtmlSpans::MaxRowSpan : Rows;
}

constexpr std::size_t PlainSize = 4;                // "<TD>"

/// Most cells have none; then their attributes need not be cut.
bool MayHaveSpans(const TKvHtmlCell& Cell)
{
    constexpr std::string_view Span = "SPAN";
    for (std::size_t Pos = PlainSize; Pos < Cell.Tag.size(); ++Pos)
        if ((Cell.Tag[Pos] | 0x20) == 'p' && SameText(Cell.Tag.substr(Pos - 1, Span.size()), Span))
            return true;
    return false;
}

} // namespace

void TKvHtmlSpans::AddRow(std::span<const TKvHtmlCell> Cells)
{
    const auto IsSpanned = [](const TKvHtmlCell& Each) {
        return Each.Tag.size() > PlainSize && MayHaveSpans(Each);
    };
    if (Above.empty() && std::ranges::none_of(Cells, IsSpanned)) {
        Plain = Cells;
        Row.clear();
        FColumns = Cells.size();
        return;
    }
    Plain = {};
    Row.swap(Above);
    Above.clear();
    FColumns = Row.size();
    std::size_t Column = 0;
    for (const auto& Cell : Cells)
        Place(Cell, Column);
    KeepForBelow();
}

/// At the first column from `Column` on that nothing from above covers; behind the cell it is left.
void TKvHtmlSpans::Place(const TKvHtmlCell& Cell, std::size_t& Column)
{
    while (Column < Row.size() && Row[Column].IsCovered)
        ++Column;
    std::size_t Width = 1, RowsBelow = 0;
    if (MayHaveSpans(Cell)) {
        RowsBelow = RowSpan(Cell.Tag) - 1;
        Width = std::min(ColumnSpan(Cell.Tag), std::max(MaxColumns, Column + 1) - Column);
    }
    if (RowsBelow > 0 && Column >= MaxRowSpanColumn)
        throw Exception("A cell in column " + std::to_string(Column + 1) + " covers several rows; column " +
                        std::to_string(MaxRowSpanColumn) + " is the last that may");
    const auto Last = Column + Width;
    if (Row.size() < Last)
        Row.resize(Last);
    for (; Column < Last; ++Column)
        if (auto& Slot = Row[Column]; !Slot.IsCovered || Slot.RowsBelow <= RowsBelow)
            Slot = {.IsCovered = true, .RowsBelow = RowsBelow, .Cell = Cell};
    FColumns = Row.size();
}

void TKvHtmlSpans::KeepForBelow()
{
    std::size_t Reach = Row.size();
    while (Reach > 0 && Row[Reach - 1].RowsBelow == 0)
        --Reach;
    Above.resize(Reach);
    for (std::size_t Column = 0; Column < Reach; ++Column)
        if (const auto& Slot = Row[Column]; Slot.RowsBelow > 0)
            Above[Column] = {.IsCovered = true, .RowsBelow = Slot.RowsBelow - 1, .Cell = Slot.Cell};
}

const TKvHtmlCell* TKvHtmlSpans::CellAt(std::size_t Column) const
{
    if (Column < Plain.size())
        return &Plain[Column];
    return Plain.empty() && Column < Row.size() && Row[Column].IsCovered ? &Row[Column].Cell : nullptr;
}

} // namespace kv
