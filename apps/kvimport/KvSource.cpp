#include "KvSource.h"

#include <algorithm>
#include <utility>

#include "KvDisplayText.h"
#include "KvText.h"

namespace kv {

TSourceColumn ColumnCalled(const std::string& Name)
{
    return {.Source = Name, .Name = ToDisplay(Name)};
}

std::vector<TSourceColumn> WithoutNames(std::vector<TSourceColumn> Columns)
{
    for (auto& Column : Columns)
        Column.Source = std::exchange(Column.Name, {});
    return Columns;
}

/// Names that differ in case only are told apart where a source has such.
TMappedColumn TSource::ColumnNamed(const std::string& Name)
{
    const auto All = Columns();
    const auto Named = FromDisplay(Name);
    auto Found = std::ranges::find(All, Named, &TSourceColumn::Source);
    if (Found == All.end())
        Found = std::ranges::find_if(All, [&Named](const TSourceColumn& Each) { return SameText(Each.Source, Named); });
    if (Found != All.end())
        return {.Column = *Found, .Remark = {}};
    return {.Column = {.Source = Named, .Name = {}}, .Remark = RemarkOnStranger(Name)};
}

std::string TSource::RemarkOnStranger(const std::string&)
{
    return "no column but a constant: every record gets this text";
}

} // namespace kv
