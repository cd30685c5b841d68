#include "KvHtmlSpans.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "KvException.h"
#include "KvText.h"

namespace kv {

namespace {

bool IsSpace(char Char)
{
    return static_cast<unsigned char>(Char) <= ' ';
}

void SkipSpace(std::string_view& Text)
{
    while (!Text.empty() && IsSpace(Text.front()))
        Text.remove_prefix(1);
}

/// The number after "=" and perhaps a quote; `Usual` where there is none.
std::size_t NumberIn(std::string_view Text, std::size_t Usual)
{
    SkipSpace(Text);
    if (!Text.starts_with('='))
        return Usual;
    Text.remove_prefix(1);
    SkipSpace(Text);
    if (Text.starts_with('"') || Text.starts_with('\''))
        Text.remove_prefix(1);
    SkipSpace(Text);
    std::size_t Number = 0;
    const auto [Last, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Number);
    if (Error == std::errc::result_out_of_range)
        return static_cast<std::size_t>(-1);
    return Error == std::errc() ? Number : Usual;
}

/// The number in the attribute `Name` of a tag; `Usual` without one.
std::size_t AttributeNumber(std::string_view Tag, std::string_view Name, std::size_t Usual)
{
    for (std::size_t Pos = 1; Pos + Name.size() < Tag.size(); ++Pos)
        if (IsSpace(Tag[Pos - 1]) && SameText(Tag.substr(Pos, Name.size()), Name))
            return NumberIn(Tag.substr(Pos + Name.size()), Usual);
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

bool HasAttributes(const TKvHtmlCell& Cell)
{
    constexpr std::size_t PlainSize = 4;            // "<TD>"
    return Cell.Tag.size() > PlainSize && std::ranges::any_of(Cell.Tag, IsSpace);
}

} // namespace

void TKvHtmlSpans::Place(const TPlaced& Placed)
{
    Row.push_back(Placed);
    FColumns = std::max(FColumns, Placed.Column + Placed.Width);
}

void TKvHtmlSpans::AddRow(std::span<const TKvHtmlCell> Cells)
{
    Row.clear();
    Plain = Cells;
    FColumns = Cells.size();
    if (!Above.empty() || std::ranges::any_of(Cells, HasAttributes))
        PlaceAll();
}

void TKvHtmlSpans::PlaceAll()
{
    FColumns = 0;
    auto Covered = Above.begin();
    for (const auto& Cell : Plain) {
        while (Covered != Above.end() && Covered->Column <= FColumns)
            Place(*Covered++);
        TPlaced New{.Column = FColumns, .Width = 1, .RowsBelow = 0, .Cell = Cell};
        if (HasAttributes(Cell)) {
            New.RowsBelow = RowSpan(Cell.Tag) - 1;
            const auto Reach = Covered != Above.end() ? Covered->Column
                                                      : std::max(MaxColumns, New.Column + 1);
            New.Width = std::min(ColumnSpan(Cell.Tag), Reach - New.Column);
        }
        if (New.RowsBelow > 0 && New.Column >= MaxRowSpanColumn)
            throw Exception("A cell in column " + std::to_string(New.Column + 1) +
                            " covers several rows; column " +
                            std::to_string(MaxRowSpanColumn) + " is the last that may");
        Place(New);
    }
    while (Covered != Above.end())
        Place(*Covered++);
    Plain = {};

    Above.clear();
    for (const auto& Placed : Row)
        if (Placed.RowsBelow > 0) {
            Above.push_back(Placed);
            --Above.back().RowsBelow;
        }
}

const TKvHtmlCell* TKvHtmlSpans::CellAt(std::size_t Column) const
{
    if (Column < Plain.size())
        return &Plain[Column];
    const auto Behind = std::ranges::upper_bound(Row, Column, {}, &TPlaced::Column);
    if (Behind == Row.begin())
        return nullptr;
    const auto& Placed = *std::prev(Behind);
    return Column < Placed.Column + Placed.Width ? &Placed.Cell : nullptr;
}

} // namespace kv
