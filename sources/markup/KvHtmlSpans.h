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
    static constexpr std::size_t MaxColumns = 16384;    ///< No span reaches further.
    static constexpr std::size_t MaxRowSpanColumn = 1024; ///< The last column that may span rows, from 1.

    /// A new table begins: nothing reaches into it from above.
    void Clear() { Above.clear(); }
    /// Places the cells of the next row, of which it keeps a view. Raises Exception for a cell over several
    /// rows beyond MaxRowSpanColumn: each of those costs every row below it.
    void AddRow(std::span<const TKvHtmlCell> Cells);

    std::size_t Columns() const { return FColumns; }
    /// The cell that covers column `Column`, from 0, of the row; none where there is none.
    const TKvHtmlCell* CellAt(std::size_t Column) const;

private:
    struct TPlaced
    {
        std::size_t Column;
        std::size_t Width;
        std::size_t RowsBelow;                      // that the cell still reaches into
        TKvHtmlCell Cell;
    };

    void PlaceAll();
    void Place(const TPlaced& Placed);

    std::span<const TKvHtmlCell> Plain;             // the row, when each cell stands at its own number
    std::vector<TPlaced> Row;                       // the row otherwise, by column
    std::vector<TPlaced> Above;                     // cells of earlier rows that reach further down
    std::size_t FColumns = 0;
};

} // namespace kv
