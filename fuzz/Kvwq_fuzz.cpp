// Any bytes as a worksheet of Quattro Pro, see KvWorksheetFuzz.
#include "Kvwq.h"

#include "KvWorksheetFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    kv::FuzzWorksheet<kv::TQuattroPro>(kv::TFuzzInput(Data, Size));
    return 0;
}
