// Any bytes as a file of memos: the memo that begins with a block is a part of
// the file, or an error tells why not.
//
//   input := kind:u8 block:u32 file
#include "KvDbaseMemo.h"

#include <string>
#include <string_view>

#include "KvException.h"
#include "KvFileWindow.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    using namespace kv;
    constexpr TKvDbaseMemoKind Kinds[] = {dmDbase3, dmDbase4, dmFoxPro};
    TFuzzInput Input(Data, Size);
    const auto Kind = Input.TakeOneOf(Kinds);
    const auto Block = Input.Take<std::uint32_t>();
    const auto Bytes = Input.TakeRest();
    const TMemoryFile File(Bytes);
    TKvFileWindow Window(File.Name());
    std::string Memo;
    try {
        DbaseMemo(Window, Kind, Block, Memo);
        Require(Bytes.find(Memo) != Bytes.npos);
        JoinSoftLines(Memo);
        Require(!HasSoftLines(Memo) || Memo.find("\x8D\x8D") != Memo.npos);
    }
    catch (const EFormatError& Error) {
        Require(!Error.Message.empty());
    }
    return 0;
}
