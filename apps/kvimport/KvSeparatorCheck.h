// KvSeparatorCheck - whether thousand separators stand where thousands end. They are removed from numbers
// wherever they stand, so that with a comma "1,5" would be imported as 15.
#pragma once

#include <string_view>

namespace kv {

class TDataSet;
class TSource;
struct TColumnMap;

/// True when each `Separator` in `Number` follows one to three digits and is followed by three.
bool IsGroupedInThousands(std::string_view Number, char Separator, char DecimalSeparator);

/// Looks at the numbers of the first rows. Raises Exception that names the first one that is not grouped
/// so, and the options that say how it is meant.
void CheckThousandSeparators(TSource& Source, const TColumnMap& Map, const TDataSet& Destination, char Separator,
                             char DecimalSeparator);

} // namespace kv
