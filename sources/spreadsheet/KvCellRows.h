// KvCellRows - the cells of one sheet: rows of 256 values of which only those that were set take room.
//
// Rows and columns count from 0; column 0 is "A". Files write their cells row by row and mostly from
// left to right, so adding to the row written last, at its right end, is the short way; any other order
// gives the same sheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "KvVariant.h"

namespace kv {

/// How a cell's text stands in its column.
enum TAlignment : std::uint8_t { taLeftJustify, taRightJustify, taCenter };

/// Why a cell cannot be imported, although the model holds what stands in for its value.
enum TCellFault : std::uint8_t {
    cfNone,
    cfNoDay,                                        ///< A number shown as a date that no calendar has.
    cfLeapDay,                                      ///< 29 February 1900, which only spreadsheets have.
    cfCodePage                                      ///< The process's code page lacks characters of it.
};

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
    /// `Col` must have a slot. A loan stays one; the cell is without a fault then.
    void Set(int Col, TVariant&& Value, TAlignment Alignment);

    bool HasFaults() const { return FHasFaults; }   ///< False: no cell has one.
    TCellFault Fault(int Col) const;                ///< cfNone where nothing was set.
    void SetFault(int Col, TCellFault Fault);       ///< Of a cell that was set.
    bool IsBlank() const;                           ///< No cell holds more than blanks, and none has a fault.

    std::size_t CellCount() const { return Cells.size(); } ///< Slots that were set.
    /// Makes room for `Count` cells in one go.
    void Reserve(std::size_t Count) { Cells.reserve(Count); }

private:
    struct TCell
    {
        TCell(TVariant&& Given, int Column, TAlignment Justify)
            : Value(std::move(Given)), Col(static_cast<std::uint8_t>(Column)), Alignment(Justify)
        {
        }

        TVariant Value;
        std::uint8_t Col;
        TAlignment Alignment;
        TCellFault Fault = cfNone;
    };

    std::size_t PositionOf(int Col) const;
    const TCell* Find(int Col) const;

    bool FHasFaults = false;                        // beside the number: rows are many
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
    void SetValue(int Col, int Row, const TVariant& Value, TAlignment Alignment)
    {
        Store(Col, Row, TVariant(Value), Alignment);
    }
    /// The same for a text that stays where it is as long as the sheet: many cells may share it.
    void SetSharedText(int Col, int Row, std::string_view Text, TAlignment Alignment)
    {
        Store(Col, Row, TVariant::Borrow(Text), Alignment);
    }
    void SetFault(int Col, int Row, TCellFault Fault); ///< Of a cell that was set, if it has a slot.

    // The extent of what was stored, where 65536 is 65536.
    int CellRows() const { return FCellRows; }      ///< One more than the highest row with a value.
    int CellColumns() const { return FCellColumns; }
    std::size_t CellsBeyond() const { return FCellsBeyond; } ///< Values left out for want of a slot.

private:
    void Store(int Col, int Row, TVariant&& Value, TAlignment Alignment);
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
