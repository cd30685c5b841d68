#include "KvTextProbe.h"

#include <cstddef>
#include <optional>
#include <string_view>

#include "KvException.h"
#include "KvTextFields.h"
#include "KvTextFile.h"
#include "KvTextLayout.h"
#include "KvTextLines.h"
#include "Kvi2txt.h"

namespace kv {

namespace {

constexpr std::size_t ProbeBytes = std::size_t{1} << 20;

std::vector<std::string> ValuesOf(std::string_view Line, TKvTextFields* Fields)
{
    if (!Fields)
        return {std::string(Line)};
    Fields->Split(Line);
    std::vector<std::string> Values;
    for (std::size_t I = 0; I < Fields->Count(); ++I)
        Values.emplace_back(Fields->Value(I));
    return Values;
}

/// Nothing when `Size` bytes do not hold these lines but the file may.
std::optional<TProbedText> Probe(const TKvImportFromText& Component, int First, int Last, std::size_t Size)
{
    const auto Layout = LayoutOf(Component);
    const TKvTextFile Beginning(Component.SourceFileName, Layout.Mark(), Size);
    auto Cutter = Layout.LineCutter(Beginning.Text());
    std::optional<TKvTextFields> Fields;
    if (!Component.Fixed)
        Fields.emplace(Layout.FieldCutter());

    TProbedText Result;
    while (Cutter.Next()) {
        const auto Number = static_cast<int>(Cutter.Number());
        if (!Beginning.IsWhole() && Cutter.Offset() >= Beginning.Text().size())
            return std::nullopt;                    // the line goes on
        if (Cutter.Unclosed())
            throw Exception("line " + std::to_string(Number) + " begins a value that no text qualifier closes");
        Result.HasMore = Number > Last;
        if (Result.HasMore)
            return Result;
        if (Number >= First)
            Result.Lines.push_back({Number, ValuesOf(Cutter.Line(), Fields ? &*Fields : nullptr)});
    }
    if (!Beginning.IsWhole())
        return std::nullopt;
    return Result;
}

} // namespace

TProbedText ProbeText(const TKvImportFromText& Component, int First, int Last)
{
    if (auto Result = Probe(Component, First, Last, ProbeBytes))
        return *std::move(Result);
    return Probe(Component, First, Last, TKvTextFile::WholeFile).value();
}

} // namespace kv
