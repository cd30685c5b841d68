// KvTextLayout - how the text of a file is cut into lines, and lines into values. Runs, looks and previews
// cut by it.
#pragma once

#include <optional>
#include <string_view>

#include "KvTextExtensions.h"
#include "KvTextFields.h"
#include "KvTextFile.h"
#include "KvTextLines.h"

namespace kv {

class TKvImportFromText;

/// Views the separator that it is given.
struct TKvTextLayout
{
    bool Fixed = false;
    char Delimiter = '\t';
    std::optional<char> Qualifier = {};             ///< #0 is one too.
    std::string_view Separator = {};
    TKvITextExtensions Extensions = {};
    bool NoEmptyRecords = false;                    ///< Lines without values are no records.

    /// What a byte order mark at the start of the file is.
    TKvByteOrderMark Mark() const
    {
        return Extensions.Contains(xtByteOrderMark) ? bmTellsEncoding : bmIsText;
    }
    /// Cuts text into lines.
    TKvTextLines LineCutter() const;
    /// Cuts lines into values.
    TKvTextFields FieldCutter() const;

    /// True for a line that is no record.
    bool IsEmptyRecord(std::string_view Line) const
    {
        return NoEmptyRecords && (Line.empty() || MayBeEmpty(Line.front())) && HoldsNothing(Line);
    }

private:
    bool IsDelimiter(char Value) const { return !Fixed && Value == Delimiter; }
    bool MayBeEmpty(char First) const
    {
        return First == ' ' || First == '\t' || First == '\x1A' || IsDelimiter(First) || First == Qualifier;
    }
    bool HoldsNothing(std::string_view Line) const;
};

/// That of `Import`, as long as its settings stay.
TKvTextLayout LayoutOf(const TKvImportFromText& Import);

} // namespace kv
