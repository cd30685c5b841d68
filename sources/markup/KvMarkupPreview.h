// KvMarkupPreview - what the previews of files of tags have in common.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Kvibase.h"

namespace kv {

class TKvImportFromMarkup;

/// What a program gave to a preview routine.
struct TKvMarkupPreview
{
    static constexpr int MaxRow = 20;               ///< The last row that a preview shows, from 1.

    TPersistent* Sender;
    std::string_view FieldNames;                    ///< Separated by ";".
    const std::string& FileName;
    int RowFirst, RowLast;
    bool Flag;
    TStrings& Columns;
    const TPreviewCallback& Callback;

    /// The lines of Columns and, behind them, the pieces of FieldNames; empty ones too.
    std::vector<std::string> Names() const;
};

/// Adds the pieces of FieldNames to Columns and calls back for each wanted row, with the values that a look
/// at `Import` has of the columns `Sources`, one for each of Names(). Without FieldNames nothing happens.
void ShowPreview(TKvImportFromMarkup& Import, const TKvMarkupPreview& Preview,
                 std::vector<std::string> Sources);

} // namespace kv
