// KvXmlSource - the records of an XML data packet on the command line.
#pragma once

#include <memory>
#include <string_view>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

/// Raises EFileError when the file cannot be read, EUsageError when the options contradict each other,
/// Exception when its beginning is no XML.
std::unique_ptr<TSource> MakeXmlSource(const TSourceOptions& Options);

/// A packet begins with its tag, perhaps after an XML declaration.
bool BeginsLikeXml(std::string_view Beginning);

} // namespace kv
