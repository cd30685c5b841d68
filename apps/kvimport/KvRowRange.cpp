#include "KvRowRange.h"

#include <string>

#include "KvExitStatus.h"
#include "KvSourceOptions.h"
#include "KviTypes.h"

namespace kv {

namespace {

TRowRange RangeFrom(const TSourceOptions& Options, int UsualFirst)
{
    const TRowRange Range{.First = Options.RowFirst.value_or(UsualFirst), .Last = Options.RowLast.value_or(RowLastMax)};
    if (Range.Last < Range.First)
        throw EUsageError("--last-row " + std::to_string(Range.Last) + " lies before --first-row " +
                          std::to_string(Range.First));
    return Range;
}

} // namespace

TRowRange RowRangeOf(const TSourceOptions& Options)
{
    return RangeFrom(Options, 1);
}

TRowRange RowRangeBelowHeader(const TSourceOptions& Options, std::string_view Word)
{
    auto Range = RangeFrom(Options, Options.FindNames ? 2 : 1);
    if (Options.FindNames && Range.First == 1)
        throw EUsageError("--first-row 1 leaves no header " + std::string(Word) +
                          " to find the columns by name; use --by-position or --map");
    Range.Header = Options.FindNames ? Range.First - 1 : 0;
    return Range;
}

} // namespace kv
