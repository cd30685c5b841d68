// KvHtmlTables - the tables of a page, for who has to choose one.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "KvHTMLExtensions.h"

namespace kv {

struct TKvHtmlTable
{
    static constexpr int NotCounted = -1;

    int Rows = NotCounted;
    int Columns = NotCounted;                       ///< Cells of the longest row, or columns that they cover.
    std::string Error;                              ///< Why its rows cannot be read; then neither is counted.
};

/// The tables of `Page` in the order in which they begin, those inside others too, as TKvHtmlRows numbers
/// them. Tables inside others are passed over once more for each of those: where that came to many times the
/// page, the rest is not counted. `Continue` is asked now and then; false ends the list early.
std::vector<TKvHtmlTable> FindHtmlTables(std::string_view Page, TKvIHTMLExtensions Extensions,
                                         const std::function<bool()>& Continue);

} // namespace kv
