#include "KviTableType.h"

#include <array>
#include <cstddef>

#include "KvText.h"

namespace kv {

namespace {

struct TTableTypeRow
{
    std::string_view Name, Extension;
};

constexpr std::array<TTableTypeRow, teAccess + 1> Rows{{    // by ordinal
    {"Paradox", ".DB"},
    {"DBase", ".DBF"},
    {"Text", ".TXT"},
    {"HTML", ".HTM"},
    {"XLS", ".XLS"},
    {"WKS", ".WK1"},
    {"Quattro", ".WQ1"},
    {"XML", ".XML"},
    {"Access", ".MDB"},
}};

TTableTypeRow RowOf(TTableTypeImport TableType)
{
    const auto Ordinal = static_cast<std::size_t>(TableType);
    return Ordinal < Rows.size() ? Rows[Ordinal] : TTableTypeRow();
}

} // namespace

std::string GetDefExt(TTableTypeImport TableType)
{
    return std::string(RowOf(TableType).Extension);
}

std::string_view TableTypeName(TTableTypeImport TableType)
{
    return RowOf(TableType).Name;
}

std::optional<TTableTypeImport> TableTypeOfName(std::string_view Name)
{
    for (std::size_t I = 0; I < Rows.size(); ++I)
        if (SameText(Rows[I].Name, Name))
            return static_cast<TTableTypeImport>(I);
    return {};
}

} // namespace kv
