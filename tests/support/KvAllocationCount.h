// KvAllocationCount - counts calls of operator new in programs that ask for the count.
#pragma once

#include <cstddef>

namespace kv {

/// Allocations of this process so far; always 0 under AddressSanitizer.
std::size_t AllocationCount();

} // namespace kv
