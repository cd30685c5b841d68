// KvCellRows - the cells of one sheet: rows of 256 values of which only those that were set take room.
//
// Rows and columns count from 0; column 0 is "A". Files write their cells row by row and mostly from
// left to right, so adding to the row written last, at its right end, is the short way; any other order
// gives the same sheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "KvVariant.h"

namespace kv {

/// How a cell's text stands in its column.
enum TAlignment : std::uint8_t { taLeftJustify, taRightJustify, taCenter };

/// The values of one row.
class TSpreadSheetRow
{
public:
    static constexpr int MaxColumns = 256;          ///< A column from 256 on has no slot.

    explicit TSpreadSheetRow(std::int32_t Number) : Row(Number) {}

    std::int32_t Row;                               ///< The number of the row in its sheet.

    /// The value of column `Col`; empty where nothing was set and beyond the slots. The reference holds
    /// until the row changes.
    const TVariant& Value(int Col) const;
    TAlignment Alignment(int Col) const;            ///< taLeftJustify where nothing was set.
    /// `Col` must have a slot.
    void Set(int Col, const TVariant& Value, TAlignment Alignment);

    std::size_t CellCount() const { return Cells.size(); } ///< Slots that were set.
    /// Makes room for `Count` cells in one go.
    void Reserve(std::size_t Count) { Cells.reserve(Count); }

private:
    struct TCell
    {
        TCell(const TVariant& Given, int Column, TAlignment Justify)
            : Value(Given), Col(static_cast<std::uint8_t>(Column)), Alignment(Justify)
        {
        }

        TVariant Value;
        std::uint8_t Col;
        TAlignment Alignment;
    };

    std::size_t PositionOf(int Col) const;
    const TCell* Find(int Col) const;

    std::vector<TCell> Cells;                       // by column
};

/// The rows of one sheet that hold a value, in the order in which they were first written.
class TSpreadSheetCells
{
public:
    // What the reader declared, and what SetValue stored: one more than the highest number. They have 16
    // bits, as the formats of their time: 65536 reads as 0.
    std::uint16_t LastColumn = 0;                   ///< Columns that the reader declared.
    std::uint16_t LastRow = 0;                      ///< Rows that the reader declared.
    std::uint16_t ColCount = 0;
    std::uint16_t RowCount = 0;

    std::size_t Count() const { return Rows.size(); }
    /// The row at position `Index` of the list. The reference holds until a row is added or removed.
    TSpreadSheetRow& operator[](std::size_t Index) { return Rows[Index]; }
    const TSpreadSheetRow& operator[](std::size_t Index) const { return Rows[Index]; }

    /// Appends an empty row with the number `Row` and gives its position.
    int AddRow(int Row);
    /// The position of the first row with the number `Row`. Without one it is added, with `Create`, or
    /// the answer is -1.
    int GetRow(int Row, bool Create);
    int GetRow(int Row) const;
    void RemoveRow(std::size_t Index);
    void Clear();                                   ///< Removes all rows and zeroes the counters.

    /// Null when there is no such row, empty when the row lacks the value. The reference holds until the
    /// sheet changes.
    const TVariant& GetValue(int Col, int Row) const;
    TAlignment GetAlignment(int Col, int Row) const; ///< taLeftJustify where nothing was set.
    /// Null and empty are stored only into a row that exists. A column without a slot is counted in
    /// CellsBeyond and otherwise left out.
    void SetValue(int Col, int Row, const TVariant& Value, TAlignment Alignment);

    // The extent of what was stored, where 65536 is 65536.
    int CellRows() const { return FCellRows; }      ///< One more than the highest row with a value.
    int CellColumns() const { return FCellColumns; }
    std::size_t CellsBeyond() const { return FCellsBeyond; } ///< Values left out for want of a slot.

private:
    int FindRow(int Row) const;
    void IndexRows();
    void CountCell(int Col, int Row);

    std::vector<TSpreadSheetRow> Rows;
    bool AreAscending = true;                       // each row has a higher number than the one before
    std::unordered_map<int, int> Positions;         // of the first row with a number, unless ascending
    int LastFound = 0;                              // tried first: files store row after row
    int FCellRows = 0;
    int FCellColumns = 0;
    std::size_t FCellsBeyond = 0;
};

} // namespace kv
