// KvSpecificationReport - what an import specification says, for people and for scripts.
#pragma once

#include <ostream>

namespace kv {

class TJobFile;

/// A line a setting, the mappings last.
void PrintSpecification(std::ostream& Out, const TJobFile& Saved);
/// All of it as one JSON object, on one line.
void PrintSpecificationJson(std::ostream& Out, const TJobFile& Saved);

} // namespace kv
