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

// As the options have it. Both raise EUsageError when that leaves no row.

TRowRange RowRangeOf(const TSourceOptions& Options);
/// For a kind whose columns have no names but those in a header, which must be left too when names are to be
/// found. `Word` is what a row is called.
TRowRange RowRangeBelowHeader(const TSourceOptions& Options, std::string_view Word);

} // namespace kv
