#include "KvSource.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "KvExitStatus.h"
#include "KvOptionText.h"
#include "KvText.h"
#include "KvTextSource.h"

namespace kv {

namespace {

/// In lower case.
std::string ExtensionOf(const std::string& FileName)
{
    auto Extension = std::filesystem::path(FileName).extension().string();
    std::ranges::transform(Extension, Extension.begin(),
                           [](unsigned char Char) { return static_cast<char>(std::tolower(Char)); });
    return Extension;
}

const TSourceKind& KindOf(const TSourceOptions& Options)
{
    const auto Kinds = SourceKinds();
    if (Options.Kind.empty()) {
        const auto Extension = ExtensionOf(Options.FileName);
        const auto Found = std::ranges::find_if(
            Kinds, [&Extension](const TSourceKind& Kind) { return std::ranges::count(Kind.Extensions, Extension) > 0; });
        return Found != Kinds.end() ? *Found : Kinds.front();
    }
    for (const auto& Kind : Kinds)
        if (SameText(Kind.Name, Options.Kind))
            return Kind;
    std::vector<std::string> Names;
    for (const auto& Kind : Kinds)
        Names.emplace_back(Kind.Name);
    throw EUsageError("--from: '" + Options.Kind + "' is none of " + JoinNames(Names));
}

} // namespace

std::span<const TSourceKind> SourceKinds()
{
    static const TSourceKind Kinds[] = {
        {"text", "Text, delimited or of fixed width", {".csv", ".txt", ".tab", ".tsv", ".dat", ".prn", ".asc"}, &MakeTextSource},
    };
    return Kinds;
}

std::unique_ptr<TSource> MakeSource(const TSourceOptions& Options)
{
    return KindOf(Options).Make(Options);
}

} // namespace kv
