// Any bytes as a worksheet of 1-2-3, see KvWorksheetFuzz.
#include "Kvwks.h"

#include "KvWorksheetFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    kv::FuzzWorksheet<kv::TLotus123>(kv::TFuzzInput(Data, Size));
    return 0;
}
