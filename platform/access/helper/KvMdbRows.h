// KvMdbRows - the records of one table, in the order of their pages.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KvMdbFile.h"

namespace kv {

/// One field of the current record.
struct TMdbValue
{
    bool IsNull = true;                             ///< For a Yes/No field: No.
    std::string_view Bytes;                         ///< Valid until the next record.
};

/// Errors are Exceptions that name the table and the record.
class TMdbRows
{
public:
    /// `Entry` is a table of `File`, which outlives the rows.
    TMdbRows(const TMdbFile& File, MdbCatalogEntry& Entry);

    std::size_t FieldCount() const { return Table->num_cols; }
    const MdbColumn& Column(std::size_t Field) const;
    /// Its values are stored as CalculatedValue takes them.
    bool IsCalculated(std::size_t Field) const { return Calculated[Field]; }
    std::uint32_t RecordCount() const { return Table->num_rows; }

    /// Moves to the next record, at first to the first. False past the last one; raises there when the
    /// pages held fewer records than the definition of the table counts.
    bool Next();
    std::uint32_t RecordNumber() const { return Number; } ///< Of the current record, from 1.
    TMdbValue Value(std::size_t Field) const;

    /// "record 7 of table Orders"
    std::string Place() const;

private:
    struct TFree
    {
        void operator()(MdbTableDef* Definition) const { mdb_free_tabledef(Definition); }
    };

    bool NextPage();
    bool LoadRow(unsigned Slot);
    bool LoadMovedRow(std::uint32_t Pointer);
    void Crack(std::size_t Start, std::size_t Size);
    [[noreturn]] void RaiseDamaged(const std::string& What) const;

    const TMdbFile& File;
    MdbHandle* const Handle;
    std::unique_ptr<MdbTableDef, TFree> Table;
    std::vector<bool> Calculated;                   // a flag a field
    std::vector<bool> Visited;                      // a flag a page of the file
    unsigned PageRows = 0, NextSlot = 0;            // of the current page
    std::uint32_t Number = 0;
    std::array<MdbField, MDB_MAX_COLS> Fields{};    // of the current record
    std::string_view Row;                           // its bytes
    std::size_t RowStart = 0;                       // where they stood in their page
    std::array<char, MDB_PGSIZE> MovedRow;          // Row's bytes when they were taken from another page
};

} // namespace kv
