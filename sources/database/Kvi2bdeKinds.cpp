#include "Kvi2bdeKinds.h"

#include "KvDbaseHeader.h"
#include "KvParadoxHeader.h"
#include "KvTextFile.h"
#include "Kvi2bde.h"
#include "KviExtensions.h"

namespace kv {

namespace {

template <TTableTypeImport Kind> std::unique_ptr<TKvImportBaseComponent> NewTableImport(TComponent* Owner)
{
    return std::make_unique<TKvImportFromBDE>(Owner, Kind);
}

/// No record is as long as the bytes of a byte order mark would have it: such a file is text.
bool IsParadoxTable(std::string_view Beginning)
{
    return IsParadox(Beginning) && WithoutByteOrderMark(Beginning).size() == Beginning.size();
}

/// Whatever the file is called, and with all that names of fields hold: FoxPro does not cut them.
template <TTableType Type> void ExtendTable(TKvImportBaseComponent& Component)
{
    TurnOnExtensions(Component);
    SetPropValue(Component, "TableType", static_cast<int>(Type));
}

} // namespace

const TKvISourceKind& DbaseSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teDBase,
                                     .Name = "dbase",
                                     .Title = "Tables of dBase and FoxPro",
                                     .Extensions = {".dbf"},
                                     .CanBePiped = false,
                                     .ClassicRows = crNothing,
                                     .Recognizes = &IsDbase,
                                     .Create = &NewTableImport<teDBase>,
                                     .Extend = &ExtendTable<ttFoxPro>,
                                     .FileFilters = &TKvImportFromBDE::FillFileFilters};
    return Kind;
}

const TKvISourceKind& ParadoxSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teParadox,
                                     .Name = "paradox",
                                     .Title = "Tables of Paradox",
                                     .Extensions = {".db"},
                                     .CanBePiped = false,
                                     .ClassicRows = crNothing,
                                     .Recognizes = &IsParadoxTable,
                                     .Create = &NewTableImport<teParadox>,
                                     .Extend = &ExtendTable<ttParadox>,
                                     .FileFilters = &TKvImportFromBDE::FillFileFilters};
    return Kind;
}

} // namespace kv
