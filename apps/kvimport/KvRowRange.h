// KvRowRange - which rows of a source are imported, and which one names the columns.
#pragma once

#include <string_view>

namespace kv {

struct TSourceOptions;

/// Rows count from 1.
struct TRowRange
{
    int First = 1, Last = 0;
    int Header = 0;                                 ///< The row above the first; 0: none names the columns.
};

/// As the options have it, for a kind whose columns have no names but those in a header. `Word` is what
/// a row is called. Raises EUsageError when they leave no row or no header.
TRowRange RowRangeOf(const TSourceOptions& Options, std::string_view Word);

} // namespace kv
