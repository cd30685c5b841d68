#include "KviSourceKinds.h"

#include <algorithm>
#include <filesystem>

#include "KvMarkupKinds.h"
#include "KvSpreadSheetKinds.h"
#include "KvText.h"
#include "KvTextFile.h"
#include "Kvi2bdeKinds.h"
#include "Kvi2oleKind.h"
#include "Kvi2txtKind.h"

namespace kv {

namespace {

using namespace std::string_view_literals;

template <class TMatches> const TKvISourceKind* FindKind(TMatches Matches)
{
    for (const auto* const Kind : ImportKinds())
        if (Matches(*Kind))
            return Kind;
    return nullptr;
}

/// Only text of UTF-16 has bytes of zero, and begins with a mark.
bool MayBeText(std::string_view Beginning)
{
    return Beginning.find('\0') == Beginning.npos ||
           WithoutByteOrderMark(Beginning).size() < Beginning.size();
}

} // namespace

std::span<const TKvISourceKind* const> ImportKinds()
{
    static const TKvISourceKind* const Kinds[] = {
        &TextSourceKind(),   &HtmlSourceKind(),    &XmlSourceKind(),
        &ExcelSourceKind(),  &LotusSourceKind(),   &QuattroSourceKind(),
        &AccessSourceKind(), &DbaseSourceKind(),   &ParadoxSourceKind()};
    return Kinds;
}

const TKvISourceKind* FindImportKind(std::string_view Name)
{
    return FindKind([Name](const TKvISourceKind& Kind) { return SameText(Kind.Name, Name); });
}

const TKvISourceKind* FindImportKind(TTableTypeImport TableType)
{
    return FindKind([TableType](const TKvISourceKind& Kind) { return Kind.TableType == TableType; });
}

const TKvISourceKind* KindOfSource(const std::string& FileName, std::string_view Beginning)
{
    if (IsSqliteDatabase(Beginning))
        return nullptr;
    const auto BeginsSo = [Beginning](const TKvISourceKind& Kind) {
        return Kind.Recognizes && Kind.Recognizes(Beginning);
    };
    if (const auto* const Kind = FindKind(BeginsSo))
        return Kind;
    const auto Extension = std::filesystem::path(FileName).extension().string();
    const auto EndsSo = [&Extension](const TKvISourceKind& Kind) {
        return std::ranges::any_of(Kind.Extensions, [&](auto Each) { return SameText(Each, Extension); });
    };
    if (const auto* const Kind = FindKind(EndsSo))
        return Kind;
    return MayBeText(Beginning) ? &TextSourceKind() : nullptr;
}

bool IsSqliteDatabase(std::string_view Beginning)
{
    return Beginning.starts_with("SQLite format 3\0"sv);
}

} // namespace kv
