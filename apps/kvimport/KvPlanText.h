// KvPlanText - what becomes of columns and fields, in words.
#pragma once

#include <string>

#include "KvJobPlan.h"

namespace kv {

class TJobSource;

/// Why a column of `Source` goes into no field, or what is odd about it; empty for one that is just imported.
std::string RemarkOn(const TJobColumnFate& Fate, const TJobSource& Source);
/// What a field gets that has no column; empty for nothing.
std::string RemarkOn(const TJobFieldWithout& Field);

} // namespace kv
