// Any bytes as a plain stream of Excel 2 to 5, see KvxlsFuzz.
#include "KvxlsFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    kv::FuzzExcel(kv::TFuzzInput(Data, Size),
                  [](kv::TMSExcel& Excel, std::string_view Stream) { Excel.ReadPlainStream(Stream); });
    return 0;
}
