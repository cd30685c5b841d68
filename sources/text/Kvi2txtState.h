// Kvi2txtState - what a text import holds of its file, for the files of Kvi2txt.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "KvTextFields.h"
#include "KvTextLoader.h"
#include "Kvi2txt.h"
#include "KviSourceColumns.h"

namespace kv {

/// To read of a file that is looked at; it holds the first lines of nearly all.
inline constexpr std::size_t BytesToLookAt = std::size_t{1} << 20;

struct TKvImportFromText::TColumn
{
    static TColumn OfDelimited(std::string_view Source);
    static TColumn OfFixed(std::string_view Source);

    std::size_t First = 0;                          // value or byte of the line, from 1; 0: no position
    std::size_t Last = 0;                           // byte of the line; 0: none
    bool NamesField = false;                        // a name that stands for nothing else
};

/// One run, one look, or one automatic mapping.
struct TKvImportFromText::TState
{
    bool HasRecord() const { return CurrentRow < Text.Lines().size(); }
    std::string_view Line() const { return Text.Lines()[CurrentRow]; }
    void Restart()
    {
        Fields.reset();
        CurrentRow = 0;
        CurrentLine = {};
        Columns.Clear();
        ComparedFields = 0;
    }

    TKvTextLoader Text;                             // its lines from RowFirst to RowLast; all below view it
    std::optional<TKvTextFields> Fields;            // of the current line; none for fixed lines
    std::size_t CurrentRow = 0;                     // into the lines
    std::string_view CurrentLine;
    TKvSourceColumns<TColumn> Columns;
    std::size_t ComparedFields = 0;                 // values of LineToCompare(); 0: not counted
};

inline std::string_view TKvImportFromText::WithoutDelimiter(std::string_view Value) const
{
    if (!Value.empty() && Value.back() == GetFieldDelimiterCustom())
        Value.remove_suffix(1);
    return Value;
}

inline std::string_view TKvImportFromText::ValueAt(std::size_t Index) const
{
    const auto Value = State->Fields->Value(Index);
    return Extensions.Contains(xtDoubledQualifiers) ? Value : WithoutDelimiter(Value);
}

} // namespace kv
