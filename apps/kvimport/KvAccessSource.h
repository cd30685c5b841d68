// KvAccessSource - a table of an Access database on the command line.
#pragma once

#include <memory>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

/// Raises EDatabaseError when the database cannot be opened, Exception when it does not have the table or
/// several could be meant, EUsageError for standard input.
std::unique_ptr<TSource> MakeAccessSource(const TSourceOptions& Options);

} // namespace kv
