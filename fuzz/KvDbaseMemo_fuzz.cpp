// Any bytes as a file of memos: the memo that begins with a block stands in the
// file, or an error tells why not.
//
//   input := kind:u8 block:u32 file
#include "KvDbaseMemo.h"

#include <string_view>

#include "KvException.h"
#include "KvFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    using namespace kv;
    constexpr TKvDbaseMemoKind Kinds[] = {dmDbase3, dmDbase4, dmFoxPro};
    TFuzzInput Input(Data, Size);
    const auto Kind = Input.TakeOneOf(Kinds);
    const auto Block = Input.Take<std::uint32_t>();
    const auto File = Input.TakeRest();
    try {
        const auto Memo = DbaseMemo(File, Kind, Block);
        Require(Memo.data() >= File.data() + 512 && Memo.data() + Memo.size() <= File.data() + File.size());
    }
    catch (const EFormatError& Error) {
        Require(!Error.Message.empty());
    }
    return 0;
}
