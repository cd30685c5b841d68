#include "KvHtmlRows.h"

#include <algorithm>

namespace kv {

TKvHtmlRows::TKvHtmlRows(std::string_view Text, TKvIHTMLExtensions Extensions, int TheTableNumber)
    : Syntax(Extensions.Contains(xhTagSyntax)),
      Spanned(Extensions.Contains(xhSpans)),
      TableNumber(TheTableNumber),
      CellText(Extensions),
      Tags(Text, Extensions),
      FBegin(Text.data())
{
}

bool TKvHtmlRows::Next()
{
    Cells.clear();
    if (!FindRow())
        return false;
    FBegin = Tags.Current().data();
    ReadRow();
    if (Spanned)
        Spans.AddRow(Cells);
    return true;
}

/// Moves behind the tag that begins a row, or up to the cell that begins one by itself.
bool TKvHtmlRows::FindRow()
{
    for (;;) {
        switch (Tags.Next()) {
        case htNone:
            return false;
        case htTable:
            if (!InTable)
                Spans.Clear();
            ++FTables;
            InTable = InTable || TableNumber == 0 || FTables == TableNumber;
            break;
        case htTableEnd:
            InTable = false;
            if (TableNumber != 0 && FTables >= TableNumber)
                return false;
            break;
        case htRow:
            if (InTable)
                return true;
            break;
        case htCell:
            if (InTable && Syntax) {
                Tags.PutBack();
                return true;
            }
            break;
        default:
            break;
        }
    }
}

/// The end of the text ends the row, too.
void TKvHtmlRows::ReadRow()
{
    for (auto Tag = Tags.Next(); Tag != htNone && Tag != htRowEnd; Tag = Tags.Next()) {
        if (Tag == htCell) {
            ReadCell();
        }
        else if (Syntax && EndsRow(Tag)) {
            Tags.PutBack();
            return;
        }
    }
}

/// A tag other than </TR> after which a row cannot go on.
bool TKvHtmlRows::EndsRow(TKvHtmlTag Tag) const
{
    return Tag == htRow || Tag == htTableEnd || Tag == htSection;
}

void TKvHtmlRows::ReadCell()
{
    auto& Cell = Cells.emplace_back();
    Cell.Tag = Tags.Current();
    const auto* const First = Tags.Pos();
    TablesInCell = 0;
    auto Tag = Tags.Next();
    bool HasTags = false;
    for (; !EndsCell(Tag); Tag = Tags.Next())
        HasTags = true;
    const auto* const Last = Tags.Current().data();
    Cell.HasTags = HasTags || Tags.TextEnd() != Last; // a comment
    Cell.Content = {First, static_cast<std::size_t>(Last - First)};
    if (Tag != htCellEnd)
        Tags.PutBack();
}

/// The end of the text ends the cell, too. By the syntax of tags a cell also ends where another thing of
/// its own table begins or ends.
bool TKvHtmlRows::EndsCell(TKvHtmlTag Tag)
{
    if (Tag == htNone)
        return true;
    if (!Syntax)
        return Tag == htCellEnd;
    if (Tag == htTable)
        ++TablesInCell;
    if (TablesInCell == 0)
        return Tag == htCellEnd || Tag == htCell || Tag == htRowEnd || EndsRow(Tag);
    if (Tag == htTableEnd)
        --TablesInCell;
    return false;
}

std::string_view TKvHtmlRows::Text(std::size_t Column)
{
    const TKvHtmlCell* Cell = nullptr;
    if (Spanned)
        Cell = Spans.CellAt(Column);
    else if (Column < Cells.size())
        Cell = &Cells[Column];
    if (!Cell)
        return {};
    if (CellText.IsPlain(*Cell, Tags.TextLast()))
        return Cell->Content;
    if (Texts.size() <= Column)
        Texts.resize(Column + 1);
    CellText.Write(*Cell, Texts[Column]);
    return Texts[Column];
}

std::vector<std::string> ReadHtmlHeader(TKvHtmlRows Rows)
{
    std::vector<std::string> Names;
    if (!Rows.Next())
        return Names;
    for (std::size_t I = 0; I < Rows.Columns(); ++I) {
        auto& Name = Names.emplace_back(Rows.Text(I));
        std::ranges::replace(Name, '\n', ' ');
    }
    return Names;
}

} // namespace kv
