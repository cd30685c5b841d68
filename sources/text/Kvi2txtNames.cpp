// What the names in mappings mean to a text file.
#include "KvText.h"
#include "Kvi2txt.h"
#include "Kvi2txtState.h"

namespace kv {

/// Columns are counted by what stands behind any five characters of a name, or any four before a range; other
/// names that begin with "Field" are columns of no line, and the rest constants.
TKvISourceName TKvImportFromText::ResolveName(const std::string& Wanted,
                                              const std::vector<TKvISourceColumn>& Shown) const
{
    const auto Column = Fixed ? TColumn::OfFixed(Wanted) : TColumn::OfDelimited(Wanted);
    if (Fixed && Column.First > 0 && Column.Last > 0)
        return {.Kind = snColumn, .Name = "Text" + Wanted.substr(4)};
    if (Fixed || Column.First == 0) {
        const bool IsEmpty = Column.NamesField || Column.First > 0; // a range that ends before it begins
        const auto Kind = IsEmpty ? snMissing : snConstant;
        const auto Base = TKvImportFromFile::ResolveName(Wanted, Shown);
        return Base.Kind == snColumn ? Base : TKvISourceName{.Kind = Kind, .Name = Wanted};
    }
    return {.Kind = Column.First <= Shown.size() ? snColumn : snMissing,
            .Name = "Field" + std::to_string(Column.First)};
}

} // namespace kv
