// KvXmlSource - the records of an XML data packet on the command line.
#pragma once

#include <memory>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

/// Raises EFileError when the file cannot be read, EUsageError when the options contradict each other,
/// Exception when its beginning is no XML.
std::unique_ptr<TSource> MakeXmlSource(const TSourceOptions& Options);

} // namespace kv
