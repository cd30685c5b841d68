// Any bytes as shared strings and the records that continue them: text that is valid, and no more strings
// than the bytes can hold.
//
//   input := allstrings:u8 stream
#include "KvxlsStrings.h"

#include "KvException.h"
#include "KvFuzz.h"
#include "KvUtf8.h"

namespace {

using namespace kv;

void Check(std::string_view Stream, bool AllStrings)
{
    TKvRecords Records(Stream);
    if (!Records.Next())
        return;
    TKvxlsSharedStrings Strings;
    Strings.Read(Records, AllStrings);
    Require(3 * Strings.Count() <= Stream.size());
    std::size_t Size = 0;
    for (std::size_t I = 0; I < Strings.Count(); ++I) {
        Require(IsValidUtf8(Strings[I]));
        Size += Strings[I].size();
    }
    Require(Size <= 2 * Stream.size());             // 3 bytes for 2, 4 for 2 of a half pair, 2 for 1
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    const bool AllStrings = Input.TakeOneOf({false, true});
    try {
        Check(Input.TakeRest(), AllStrings);
    } catch (const Exception& Error) {
        Require(!Error.Message.empty());
    }
    return 0;
}
