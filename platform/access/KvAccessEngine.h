// KvAccessEngine - the engine whose databases another program reads, a run of it for each list of tables
// and each pass through the records of one.
#pragma once

#include <memory>

#include "KvAccess.h"
#include "KvAccessHelper.h"

namespace kv {

std::unique_ptr<TAccessEngine> MakeAccessEngine(TAccessHelperOptions Options);

} // namespace kv
