#include "KvAllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t Count = 0;

} // namespace

#ifndef __SANITIZE_ADDRESS__                        // which keeps books on operator new itself

void* operator new(std::size_t Size)
{
    ++Count;
    if (void* const Memory = std::malloc(Size ? Size : 1))
        return Memory;
    throw std::bad_alloc();
}

void operator delete(void* Memory) noexcept { std::free(Memory); }
void operator delete(void* Memory, std::size_t) noexcept { std::free(Memory); }

#endif

std::size_t kv::AllocationCount() { return Count; }
