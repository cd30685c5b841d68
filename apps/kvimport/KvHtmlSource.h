// KvHtmlSource - the tables of an HTML page on the command line.
#pragma once

#include <memory>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

/// Raises EFileError when the file cannot be read, EUsageError when the options contradict each other,
/// Exception when it lacks the table or the header row.
std::unique_ptr<TSource> MakeHtmlSource(const TSourceOptions& Options);

} // namespace kv
