#include "KvHtmlRows.h"

#include <algorithm>

namespace kv {

namespace {

/// The letter by which names of tags differ: "<THEAD" and "</THEAD", "<TD" and "</TD".
char LetterOf(std::string_view Tag)
{
    const char Letter = Tag[Tag[1] == '/' ? 3 : 2];
    return Letter >= 'a' && Letter <= 'z' ? static_cast<char>(Letter - 'a' + 'A') : Letter;
}

} // namespace

TKvHtmlRows::TKvHtmlRows(std::string_view Text, TKvIHTMLExtensions Extensions, TKvHtmlFlavour Flavour,
                         int TheTableNumber)
    : Syntax(Extensions.Contains(xhTagSyntax)),
      Spanned(Extensions.Contains(xhSpans)),
      TableNumber(TheTableNumber),
      CellText(Extensions, Flavour),
      Tags(Text, Extensions, Flavour),
      FBegin(Text.data())
{
}

bool TKvHtmlRows::Next()
{
    Cells.clear();
    if (!FindRow())
        return false;
    FBegin = Tags.Current().data();
    if (Section == '\0') {
        Spans.Clear();
        Section = 'B';
    }
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
            FIsCutOff = InTable;
            return false;
        case htTable:
            if (!BeginTable())
                return false;
            break;
        case htTableEnd:
            InTable = false;
            if (TableNumber != 0 && FTables >= TableNumber)
                return false;
            break;
        case htSection:
            BeginSection();
            break;
        case htSectionEnd:
            if (EndsSection())
                Section = '\0';
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

/// By the syntax of tags a table that begins outside of a cell ends the one before it. False when that was
/// the last to read.
bool TKvHtmlRows::BeginTable()
{
    if (Syntax && InTable && TableNumber != 0)
        return false;
    if (Syntax || !InTable)
        Section = '\0';
    ++FTables;
    InTable = InTable || TableNumber == 0 || FTables == TableNumber;
    return true;
}

/// Cells do not reach into another group of rows.
void TKvHtmlRows::BeginSection()
{
    Spans.Clear();
    Section = LetterOf(Tags.Current());
}

/// The tag ends the group of rows that is open, and not one that is not.
bool TKvHtmlRows::EndsSection() const
{
    return LetterOf(Tags.Current()) == Section;
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
    switch (Tag) {
    case htRow:
    case htTable:
    case htTableEnd:
    case htSection:    return true;
    case htSectionEnd: return EndsSection();
    default:           return false;
    }
}

void TKvHtmlRows::ReadCell()
{
    auto& Cell = Cells.emplace_back();
    const auto CellTag = Tags.Current();
    Cell.Tag = CellTag;
    const auto* const First = Tags.Pos();
    TablesInCell = 0;
    auto Tag = Tags.Next();
    bool HasTags = false;
    for (; !IsEndOf(CellTag, Tag) && !EndsCell(Tag); Tag = Tags.Next())
        HasTags = true;
    const auto* const Last = Tags.Current().data();
    Cell.HasTags = HasTags || Tags.TextEnd() != Last; // a comment
    Cell.Content = {First, static_cast<std::size_t>(Last - First)};
    if (Tag != htCellEnd)
        Tags.PutBack();
}

/// By another tag than its own: the end of the text ends the cell, too, and by the syntax of tags whatever
/// begins or ends another thing of its table.
bool TKvHtmlRows::EndsCell(TKvHtmlTag Tag)
{
    if (Tag == htNone)
        return true;
    if (!Syntax)
        return false;
    if (TablesInCell > 0 || Tag == htTable) {
        FollowTableInside(Tag);
        return false;
    }
    return Tag == htCell || Tag == htRowEnd || EndsRow(Tag);
}

/// One that begins outside of the cells of the innermost table takes its place.
void TKvHtmlRows::FollowTableInside(TKvHtmlTag Tag)
{
    switch (Tag) {
    case htTable:
        TablesInCell += TablesInCell == 0 || InCellInside ? 1 : 0;
        InCellInside = false;
        break;
    case htTableEnd:
        --TablesInCell;
        InCellInside = true;                        // where that table stood
        break;
    case htCell:
        InCellInside = true;
        break;
    case htCellEnd:
    case htRow:
    case htRowEnd:
    case htSection:
        InCellInside = false;
        break;
    default:
        break;
    }
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
