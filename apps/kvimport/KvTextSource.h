// KvTextSource - a text file on the command line.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KvSource.h"

namespace kv {

class TKvImportFromText;
struct TSourceOptions;

/// Reads a pipe to its end first, so that its header can be looked at. Raises EFileError when the file
/// cannot be opened, EUsageError when the options contradict each other.
std::unique_ptr<TSource> MakeTextSource(const TSourceOptions& Options);

/// What its last run met: lines with more or fewer values than the header or, without one, the first line.
std::vector<std::string> FieldCountWarnings(const TKvImportFromText& Import);

} // namespace kv
