// KvSpecificationSource - the source that an import specification describes, whatever its kind.
#pragma once

#include <memory>

#include "KvSource.h"

namespace kv {

struct TSourceOptions;

/// The component of the specification that the options name, for their file and rows where they have
/// some; its mappings go, they are the caller's. Shows no rows and no columns but those that the mappings
/// name. Raises what TSpecification raises, and EFileError when the source cannot be opened.
std::unique_ptr<TSource> MakeSpecificationSource(const TSourceOptions& Options);

} // namespace kv
