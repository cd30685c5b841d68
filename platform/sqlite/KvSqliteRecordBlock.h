// KvSqliteRecordBlock - values of some records that wait to be stored, close together in memory.
// For the units of this folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "KvSqliteValue.h"

namespace kv {

/// Owns its texts and blobs, in one piece of memory that is used again after Clear.
class TSQLiteRecordBlock
{
public:
    void Clear();
    void BeginRow();                                ///< Drops a row that was begun and not ended.
    void Add(const TSQLiteValue& Value);
    void EndRow();

    std::size_t Rows() const { return FRows; }
    std::size_t Bytes() const { return Cells.size() * sizeof(TCell) + Texts.size(); }
    TSQLiteValue Value(std::size_t Index) const;    ///< Of all, from 0; views the block.

private:
    struct TCell
    {
        std::int64_t Content;                       // integer, bits of a real, or where in Texts it begins
        std::uint32_t Size;                         // in bytes
        TSQLiteStorage Storage;
    };

    std::vector<TCell> Cells;
    std::string Texts;                              // and blobs
    std::size_t FRows = 0;
    std::size_t EndedCells = 0, EndedTexts = 0;     // of the rows that were ended
};

} // namespace kv
