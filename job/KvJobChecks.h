// KvJobChecks - looks at source, plan and destination before the first record is stored.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KvDatabase.h"
#include "KvJobFindings.h"
#include "KvJobPlan.h"
#include "KvJobSource.h"

namespace kv {

class TDataSet;

/// A row that is imported although it looks like a header: as a record it would be an error or, worse, none.
std::vector<TJobFinding> CheckHeader(const TJobSource& Source, const TDataSet& Destination);

/// Columns of dates with texts that are none in the order and with the separator that are in force, where
/// most are dates in others, and more than now. The formats of the job are in force.
std::vector<TJobFinding> CheckDates(const TJobSource& Source, const TJobPlan& Plan,
                                    const TDataSet& Destination);

/// Tables that refer to the records of the destination, where `Mode` deletes some.
std::vector<TJobFinding> CheckReferences(const std::vector<TKvTableReference>& References, TImportMode Mode);

/// Raises EJobRefused when one of the numbers that were looked at has a thousand separator where no thousands
/// end: "1,5" with a comma. Classic reading makes 15 of it, and else it is an error of each such record.
void CheckThousands(const TJobSource& Source, const TJobPlan& Plan, const TDataSet& Destination);
/// True when each `Separator` in `Number` follows one to three digits and is followed by three.
bool IsGroupedInThousands(std::string_view Number, char Separator, char DecimalSeparator);

} // namespace kv
