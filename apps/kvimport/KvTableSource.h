// KvTableSource - a table file of Paradox, dBase or FoxPro on the command line.
#pragma once

#include <memory>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

// Each raises EFileError when the file cannot be opened, EFormatError when it is no such table, EUsageError for
// standard input: memos stand in a file beside the table.
std::unique_ptr<TSource> MakeDbaseSource(const TSourceOptions& Options);
std::unique_ptr<TSource> MakeParadoxSource(const TSourceOptions& Options);

} // namespace kv
