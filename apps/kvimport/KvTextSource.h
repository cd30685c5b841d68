// KvTextSource - a text file on the command line.
#pragma once

#include <memory>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

/// Reads a pipe to its end first, so that its header can be looked at. Raises EFileError when the file
/// cannot be opened, EUsageError when the options contradict each other.
std::unique_ptr<TSource> MakeTextSource(const TSourceOptions& Options);

} // namespace kv
