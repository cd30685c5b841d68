// KvSpecificationReport - what an import specification says, for people and for scripts.
#pragma once

#include <ostream>

namespace kv {

struct TSpecification;

/// A line a setting, the mappings last.
void PrintSpecification(std::ostream& Out, const TSpecification& Specification);
/// All of it as one JSON object, on one line.
void PrintSpecificationJson(std::ostream& Out, const TSpecification& Specification);

} // namespace kv
