// KvJobChecks - looks at source, plan and destination before the first record is stored.
#pragma once

#include <string_view>
#include <vector>

#include "KvJobFindings.h"
#include "KvJobPlan.h"
#include "KvJobSource.h"

namespace kv {

class TDataSet;

/// A row that is imported although it looks like a header: as a record it would be an error or, worse, none.
std::vector<TJobFinding> CheckHeader(const TJobSource& Source, const TDataSet& Destination);

/// Columns of dates whose texts are none in the order and with the separator that are in force, but all of
/// them are in others. The formats of the job are in force.
std::vector<TJobFinding> CheckDates(const TJobSource& Source, const TJobPlan& Plan,
                                    const TDataSet& Destination);

/// Thousand separators are removed from numbers wherever they stand, so that with a comma "1,5" would be
/// imported as 15. Raises EJobRefused for the first number in the rows looked at where no thousands end.
void CheckThousandSeparators(const TJobSource& Source, const TJobPlan& Plan, const TDataSet& Destination,
                             char Separator, char DecimalSeparator);
/// True when each `Separator` in `Number` follows one to three digits and is followed by three.
bool IsGroupedInThousands(std::string_view Number, char Separator, char DecimalSeparator);

} // namespace kv
