// Any bytes as a dBase or FoxPro table, see KvTableFuzz.
#include "KvDbaseFile.h"

#include "KvTableFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    kv::FuzzTable<kv::TKvDbaseFile>({reinterpret_cast<const char*>(Data), Size});
    return 0;
}
