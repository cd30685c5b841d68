#include "Kvi2oleKind.h"

#include "Kvi2ole.h"
#include "KviExtensions.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

bool BeginsAccess(std::string_view Beginning)
{
    return Beginning.starts_with("\0\1\0\0Standard Jet DB\0"sv) ||
           Beginning.starts_with("\0\1\0\0Standard ACE DB\0"sv);
}

} // namespace

const TKvISourceKind& AccessSourceKind()
{
    static const TKvISourceKind Kind{.TableType = teAccess,
                                     .Name = "access",
                                     .Title = "Tables of Access databases",
                                     .Extensions = {".mdb", ".mde", ".accdb"},
                                     .Part = spTable,
                                     .CanBePiped = false,
                                     .HasCodePage = false,
                                     .ClassicRows = crCount,
                                     .Recognizes = &BeginsAccess,
                                     .Create = &NewImport<TKvImportFromAccess>,
                                     .Extend = &TurnOnExtensions,
                                     .FileFilters = &TKvImportFromAccess::FillFileFilters};
    return Kind;
}

} // namespace kv
