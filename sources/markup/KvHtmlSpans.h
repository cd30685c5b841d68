// KvHtmlSpans - finds the columns in which the cells of a table stand when some cover several columns or
// rows.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "KvHtmlCell.h"

namespace kv {

/// The columns of one row after the other.
class TKvHtmlSpans
{
public:
    static constexpr std::size_t MaxColumnSpan = 1000;  ///< Larger ones count as this, as in HTML.
    static constexpr std::size_t MaxRowSpan = 65534;    ///< The same; 0 means all rows to the table's end.
    static constexpr std::size_t MaxColumns = 4096;     ///< No span reaches further.
    static constexpr std::size_t MaxRowSpanColumn = 1024; ///< The last column that may span rows, from 1.

    /// A new table begins, or a new group of rows: nothing reaches into it from above.
    void Clear() { Above.clear(); }
    /// Places the cells of the next row, of which it keeps a view. Raises Exception for a cell over several
    /// rows beyond MaxRowSpanColumn: each of those costs every row below it.
    void AddRow(std::span<const TKvHtmlCell> Cells);

    std::size_t Columns() const { return FColumns; }
    /// The cell that covers column `Column`, from 0, of the row; none where there is none. Of two that cover
    /// it the one that reaches further down, else the later one.
    const TKvHtmlCell* CellAt(std::size_t Column) const;

private:
    struct TSlot                                    // a column of a row
    {
        bool IsCovered = false;
        std::size_t RowsBelow = 0;                  // that the cell still reaches into
        TKvHtmlCell Cell = {};
    };
    using TSlots = std::vector<TSlot>;

    void Place(const TKvHtmlCell& Cell, std::size_t& Column);
    void KeepForBelow();

    std::span<const TKvHtmlCell> Plain;             // the row, when each cell stands at its own number
    TSlots Row;                                     // the row otherwise
    TSlots Above;                                   // as far as earlier rows reach into the next one
    std::size_t FColumns = 0;
};

} // namespace kv
