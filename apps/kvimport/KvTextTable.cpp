#include "KvTextTable.h"

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string_view>

#include "KvConsoleLine.h"
#include "KvTerminalText.h"
#include "KvText.h"

namespace kv {

namespace {

constexpr int Gap = 2, MinWidth = 6, MaxWidth = 200;

/// Digits with whatever stands between them: dates and amounts line up as well.
bool LooksLikeNumber(std::string_view Text)
{
    return Text.find_first_of("0123456789") != Text.npos &&
           Text.find_first_not_of("0123456789.,+-/: ") == Text.npos;
}

} // namespace

std::vector<TTextTable::TColumn> TTextTable::Measure() const
{
    std::vector<TColumn> Columns;
    const auto Widen = [&Columns](std::size_t Index, const std::string& Cell) -> TColumn& {
        if (Columns.size() <= Index)
            Columns.resize(Index + 1);
        auto& Column = Columns[Index];
        Column.Width = std::max(Column.Width, std::min(DisplayWidth(VisibleText(Cell)), MaxWidth));
        return Column;
    };
    for (const auto& Row : Headings)
        for (std::size_t I = 0; I < Row.size(); ++I)
            Widen(I, Row[I]);
    for (const auto& Row : Rows)
        for (std::size_t I = 0; I < Row.size(); ++I) {
            auto& Column = Widen(I, Row[I]);
            if (Trim(Row[I]).empty())
                continue;
            Column.IsEmpty = false;
            Column.IsNumber = Column.IsNumber && LooksLikeNumber(Row[I]);
        }
    return Columns;
}

/// Takes from the widest column as long as that helps.
void TTextTable::Shrink(std::vector<TColumn>& Columns, int Width)
{
    const auto Narrower = [](const TColumn& A, const TColumn& B) { return A.Width < B.Width; };
    int Total = -Gap;
    for (const auto& Column : Columns)
        Total += Column.Width + Gap;
    for (; Total > Width && !Columns.empty(); --Total) {
        auto& Widest = *std::ranges::max_element(Columns, Narrower);
        if (Widest.Width <= MinWidth)
            return;
        --Widest.Width;
    }
}

void TTextTable::PrintLine(std::ostream& Out, const std::vector<std::string>& Cells,
                           const std::vector<TColumn>& Columns, int Width)
{
    std::string Line;
    for (std::size_t I = 0; I < Columns.size(); ++I) {
        const auto& Column = Columns[I];
        const auto Text = I < Cells.size() ? FitToWidth(VisibleText(Cells[I]), Column.Width) : std::string();
        Line += PadToWidth(Text, Column.Width, Column.IsNumber && !Column.IsEmpty) + std::string(Gap, ' ');
    }
    const auto Used = Line.find_last_not_of(' ');
    Line.resize(Used == Line.npos ? 0 : Used + 1);
    Out << (Width > 0 ? FitToWidth(Line, Width) : Line) << '\n';
}

void TTextTable::PrintToScreen() const
{
    constexpr int StandardOutput = 1;
    const TConsoleLine Output(StandardOutput);
    Print(std::cout, Output.IsTerminal() ? Output.Width() : 0);
}

void TTextTable::Print(std::ostream& Out, int Width) const
{
    auto Columns = Measure();
    if (Width > 0)
        Shrink(Columns, Width);
    for (const auto& Heading : Headings)
        PrintLine(Out, Heading, Columns, Width);
    std::vector<std::string> Rule;
    for (const auto& Column : Columns)
        Rule.emplace_back(static_cast<std::size_t>(Column.Width), '-');
    PrintLine(Out, Rule, Columns, Width);
    for (const auto& Row : Rows)
        PrintLine(Out, Row, Columns, Width);
}

} // namespace kv
