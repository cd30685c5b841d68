// KvHtmlRows - the rows of the tables of a page, and their cells.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "KvHTMLExtensions.h"
#include "KvHtmlCell.h"
#include "KvHtmlCellText.h"
#include "KvHtmlSpans.h"
#include "KvHtmlTags.h"

namespace kv {

/// The rows of a text, first to last, once. Rows of all tables are one sequence.
class TKvHtmlRows
{
public:
    /// Keeps a view of `Text`, which must outlive the object and the texts of cells. `TableNumber` is that
    /// of the table to read, from 1 in the order in which they begin, those inside others too; 0: all.
    TKvHtmlRows(std::string_view Text, TKvIHTMLExtensions Extensions, TKvHtmlFlavour Flavour,
                int TableNumber = 0);

    /// Moves to the next row. False past the last one, and on every later call. Raises Exception for a
    /// span that reaches too far.
    bool Next();

    /// Tables begun up to the current row; those inside a cell that is read do not count.
    int Tables() const { return FTables; }
    /// After Next() was false: the text has ended inside a table.
    bool IsCutOff() const { return FIsCutOff; }
    /// Where the current row begins in the text: at its tag, or at the cell that begins a row by itself.
    const char* Begin() const { return FBegin; }
    const char* Pos() const { return Tags.Pos(); }  ///< How far the text was passed over.
    /// Cells of the current row, or the columns that they cover.
    std::size_t Columns() const { return Spanned ? Spans.Columns() : Cells.size(); }
    /// The text in column `Column`, from 0: a view until the next Next(). Empty where there is no cell.
    std::string_view Text(std::size_t Column);

private:
    bool FindRow();
    void ReadRow();
    void ReadCell();
    bool BeginTable();
    void BeginSection();
    bool EndsSection() const;
    /// Most cells end so: by their own end tag. </TH> ends no TD.
    bool IsEndOf(std::string_view CellTag, TKvHtmlTag Tag) const
    {
        constexpr int Case = 0x20;
        return Tag == htCellEnd && TablesInCell == 0 &&
               (!Syntax || (Tags.Current()[3] | Case) == (CellTag[2] | Case));
    }
    bool EndsCell(TKvHtmlTag Tag);
    void FollowTableInside(TKvHtmlTag Tag);
    bool EndsRow(TKvHtmlTag Tag) const;

    const bool Syntax;
    const bool Spanned;
    const int TableNumber;
    const TKvHtmlCellText CellText;
    TKvHtmlTags Tags;
    int FTables = 0;
    const char* FBegin;
    bool FIsCutOff = false;
    bool InTable = false;
    char Section = '\0';                            // that is open: 'H', 'B' or 'F'; rows alone are a body
    std::size_t TablesInCell = 0;                   // open inside the current cell
    bool InCellInside = false;                      // in a cell of the innermost of these
    std::vector<TKvHtmlCell> Cells;                 // of the current row
    TKvHtmlSpans Spans;
    std::deque<std::string> Texts;                  // by column, of cells that are not views of the page
};

/// The texts of the cells of the first row, each on one line; none of a page without rows.
std::vector<std::string> ReadHtmlHeader(TKvHtmlRows Rows);

} // namespace kv
