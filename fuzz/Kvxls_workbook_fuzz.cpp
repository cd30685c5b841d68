// Any bytes as the workbook stream of Excel 5 or 8, see KvxlsFuzz; the first says which.
#include "KvxlsFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    kv::TFuzzInput Input(Data, Size);
    const auto Version = Input.TakeOneOf({kv::evExcel8, kv::evExcel7});
    kv::FuzzExcel(Input, [Version](kv::TMSExcel& Excel, std::string_view Stream) {
        Excel.ReadWorkbookStream(Stream, Version);
        kv::Require(Excel.Version == Version);
    });
    return 0;
}
