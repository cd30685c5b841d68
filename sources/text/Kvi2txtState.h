// Kvi2txtState - what a text import holds of its file, for the files of Kvi2txt.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "KvTextCharacters.h"
#include "KvTextFields.h"
#include "KvTextRecords.h"
#include "Kvi2txt.h"
#include "KviSourceColumns.h"

namespace kv {

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
    void Restart()
    {
        Fields.reset();
        Characters.reset();
        CurrentLine = {};
        Columns.Clear();
        ComparedFields = 0;
    }

    TKvTextRecords Text;                            // lines from RowFirst to RowLast; all below view it
    std::optional<TKvTextFields> Fields;            // of the current line; none for fixed lines
    std::optional<TKvTextCharacters> Characters;    // of a fixed line; none where bytes count
    std::string_view CurrentLine;
    TKvSourceColumns<TColumn> Columns;
    std::size_t ComparedFields = 0;                 // values of LineToCompare(); 0: not counted
    char Delimiter = '\0';                          // in force: that of the setting, or of the file

    // What the last look or run has met.
    TKvEmptyLines EmptyLines;
    std::int64_t WideLines = 0, FirstWide = 0;      // with characters of several bytes, where bytes count
};

inline std::string_view TKvImportFromText::WithoutDelimiter(std::string_view Value) const
{
    if (!Value.empty() && Value.back() == State->Delimiter)
        Value.remove_suffix(1);
    return Value;
}

inline std::string_view TKvImportFromText::ValueAt(std::size_t Index) const
{
    const auto Value = State->Fields->Value(Index);
    return Extensions.Contains(xtDoubledQualifiers) ? Value : WithoutDelimiter(Value);
}

} // namespace kv
