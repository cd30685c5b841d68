#include "KvMarkupPreview.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "KvException.h"
#include "KvMarkupImport.h"

namespace kv {

std::vector<std::string> TKvMarkupPreview::Names() const
{
    std::vector<std::string> Result(Columns.begin(), Columns.end());
    for (std::size_t From = 0; From <= FieldNames.size();) {
        const auto To = std::min(FieldNames.find(';', From), FieldNames.size());
        Result.emplace_back(FieldNames.substr(From, To - From));
        From = To + 1;
    }
    return Result;
}

void ShowPreview(TKvImportFromMarkup& Import, const TKvMarkupPreview& Preview,
                 std::vector<std::string> Sources)
{
    if (Preview.FieldNames.empty())
        return;
    Import.AnimatedStatus = false;
    Import.SourceFileName = Preview.FileName;
    Import.RowFirst = Preview.RowFirst;
    Import.RowLast = std::min(Preview.RowLast, TKvMarkupPreview::MaxRow);
    auto View = Import.Look({.Rows = TKvMarkupPreview::MaxRow, .Columns = std::move(Sources)});

    const auto Names = Preview.Names();
    for (auto I = static_cast<std::size_t>(Preview.Columns.Count()); I < Names.size(); ++I)
        Preview.Columns.Add(Names[I]);
    const auto Count = static_cast<int>(Names.size());
    int Offered = 0;
    for (auto& Row : View.Rows) {
        auto Values = TVariant::Array(0, Count - 1);
        for (int I = 0; I < Count; ++I) {
            auto& [Value, Error] = Row.Values[static_cast<std::size_t>(I)];
            if (!Error.empty())
                throw Exception(Error);
            Values[I] = std::move(Value);
        }
        Preview.Callback(Preview.Sender, Count, ++Offered, Preview.Flag, Values);
    }
}

} // namespace kv
