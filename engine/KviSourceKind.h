// KviSourceKind - what there is to know of a kind of source before one is opened. Each folder of sources
// describes its own.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KviTypes.h"

namespace kv {

class TComponent;
class TKvImportBaseComponent;

/// How the part of a file that is imported is told apart from others in it.
enum TKvISourcePartKind {
    spNone,                                         ///< The file is the table.
    spSheet,                                        ///< A sheet, by number or name.
    spTable,                                        ///< A table, by name.
    spTableNumber,                                  ///< A table, by number; without one all of them.
    spRowTag                                        ///< The tag that its records stand in.
};

/// Where the names of columns come from.
enum TKvIColumnNames {
    cnHeaderRow,                                    ///< A row above the first, when there is one.
    cnSource                                        ///< The source itself.
};

/// What RowFirst and RowLast mean to a component without extensions.
enum TKvIClassicRows {
    crAsAsked,                                      ///< Which rows are imported, as with them.
    crNothing,                                      ///< All records are imported.
    crCount                                         ///< Only how many records are taken, from the first on.
};

/// What there is to know. Texts are static.
struct TKvISourceKind
{
    TTableTypeImport TableType;
    std::string_view Name;                          ///< For command lines: "xls".
    std::string_view Title;                         ///< "Excel workbooks, Excel 2 to 2003"
    /// Of such files, in lower case, with the dot; the usual one first.
    std::vector<std::string_view> Extensions;
    TKvISourcePartKind Part = spNone;
    TKvIColumnNames Names = cnSource;
    /// False: the reader wants a file with companions or a name.
    bool CanBePiped = true;
    bool HasCodePage = true;                        ///< False: its text says by itself what it is.
    TKvIClassicRows ClassicRows = crAsAsked;
    /// True when a file that begins with these bytes is of the kind, whatever its name; none for a kind that
    /// nothing tells.
    bool (*Recognizes)(std::string_view Beginning) = nullptr;
    /// A new component with its defaults.
    std::unique_ptr<TKvImportBaseComponent> (*Create)(TComponent* Owner) = nullptr;
    /// Turns on what today's files need: every extension of the component.
    void (*Extend)(TKvImportBaseComponent& Component) = nullptr;
    /// Entries of a file dialog, see FillFileFilters.
    std::string (*FileFilters)() = nullptr;
};

/// For TKvISourceKind::Create.
template <class TImport> std::unique_ptr<TKvImportBaseComponent> NewImport(TComponent* Owner)
{
    return std::make_unique<TImport>(Owner);
}

} // namespace kv
