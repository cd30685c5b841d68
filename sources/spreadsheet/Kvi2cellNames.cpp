// What the names in mappings mean to a sheet.
#include "KvColumnLetters.h"
#include "KvText.h"
#include "Kvi2cell.h"

namespace kv {

namespace {

constexpr int MaxColumns = 256;                     // A to IV

} // namespace

/// There are no constants: any name is read as letters, and most of them lead nowhere.
TKvISourceName TKvImportFromCell::ResolveName(const std::string& Wanted,
                                              const std::vector<TKvISourceColumn>& Shown) const
{
    const auto Found = TKvImportFromFile::ResolveName(Wanted, Shown);
    if (Found.Kind == snColumn)
        return Found;
    const int Number = ColumnOfLetters(Wanted) + 1;
    const auto Letters = SpreadSheetLetters(Number);
    if (SameText(Wanted, Letters) && Number <= MaxColumns)
        return {.Kind = snBlank, .Name = Letters};
    return {.Kind = snNothing, .Name = Wanted};
}

} // namespace kv
