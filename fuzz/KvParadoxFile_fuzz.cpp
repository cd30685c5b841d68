// Any bytes as a Paradox table, see KvTableFuzz.
#include "KvParadoxFile.h"

#include "KvTableFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    kv::FuzzTable<kv::TKvParadoxFile>({reinterpret_cast<const char*>(Data), Size});
    return 0;
}
