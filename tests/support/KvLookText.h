// KvLookText - what a look has shown, as texts that a test can compare.
#pragma once

#include <string>
#include <vector>

#include "KviSource.h"

namespace kv {

/// "Field1=Name": a column and its title.
inline std::vector<std::string> ColumnsOf(const TKvISourceView& View)
{
    std::vector<std::string> Result;
    for (const auto& Column : View.Columns)
        Result.push_back(Column.Name + "=" + Column.Title);
    return Result;
}

/// "2: a|b": the number of a row and its values, "<" and ">" around the reason where one cannot be read.
inline std::vector<std::string> RowsOf(const TKvISourceView& View)
{
    std::vector<std::string> Result;
    for (const auto& Row : View.Rows) {
        auto Text = std::to_string(Row.Position.Number) + ":";
        char Separator = ' ';
        for (const auto& [Value, Error] : Row.Values) {
            Text += Separator + (Error.empty() ? Value.ToText() : "<" + Error + ">");
            Separator = '|';
        }
        Result.push_back(Text);
    }
    return Result;
}

} // namespace kv
