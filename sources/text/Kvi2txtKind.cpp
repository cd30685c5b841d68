#include "Kvi2txtKind.h"

#include "Kvi2txt.h"
#include "KviExtensions.h"

namespace kv {

/// Nothing tells text from what it may be besides.
const TKvISourceKind& TextSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teText,
                                     .Name = "text",
                                     .Title = "Text, delimited or of fixed width",
                                     .Extensions = {".csv", ".txt", ".tab", ".tsv", ".dat", ".prn", ".asc"},
                                     .Names = cnHeaderRow,
                                     .Create = &NewImport<TKvImportFromText>,
                                     .Extend = &TurnOnExtensions,
                                     .FileFilters = &TKvImportFromText::FillFileFilters};
    return Kind;
}

} // namespace kv
