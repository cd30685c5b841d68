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
    std::optional<char> Qualifier;                  ///< #0 is one too.
    std::string_view Separator;
    TKvITextExtensions Extensions;

    /// What a byte order mark at the start of the file is.
    TKvByteOrderMark Mark() const
    {
        return Extensions.Contains(xtByteOrderMark) ? bmTellsEncoding : bmIsText;
    }
    /// Cuts `Text`, which must outlive the result, into lines.
    TKvTextLines LineCutter(std::string_view Text) const;
    /// Cuts lines into values.
    TKvTextFields FieldCutter() const;
};

/// That of `Import`, as long as its settings stay.
TKvTextLayout LayoutOf(const TKvImportFromText& Import);

} // namespace kv
