// Any bytes as a field of a record and the file of blobs that it refers to: the value has the size that the
// field tells and is a part of the file, or an error tells why not. Any value as a formatted memo.
//
//   input := leader size:u8 field:u8[leader size + 10] file
#include "KvParadoxBlobs.h"

#include <string>
#include <string_view>

#include "KvException.h"
#include "KvFileWindow.h"
#include "KvFuzz.h"
#include "KvMemoryFile.h"

namespace {

using namespace kv;

bool IsPartOf(std::string_view Part, std::string_view Whole)
{
    return Part.data() >= Whole.data() && Part.data() + Part.size() <= Whole.data() + Whole.size();
}

std::string_view BytesOf(const TKvParadoxBlob& Blob, std::string_view File, std::string& Buffer)
{
    if (Blob.IsInLeader())
        return Blob.Leader.substr(0, Blob.Size);
    const TMemoryFile Named(File);
    TKvFileWindow Window(Named.Name());
    const auto Bytes = ParadoxBlobBytes(Window, Blob, Buffer);
    Require(File.find(Bytes) != File.npos);
    return Bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    const std::size_t FieldSize = Input.Take<std::uint8_t>() + std::size_t{10};
    const auto Rest = Input.TakeRest();
    if (Rest.size() < FieldSize)
        return 0;
    std::string Buffer;
    try {
        const auto Blob = ParadoxBlob(Rest.substr(0, FieldSize));
        const auto Bytes = BytesOf(Blob, Rest.substr(FieldSize), Buffer);
        Require(Bytes.size() == Blob.Size);
        Require(IsPartOf(FormattedMemoText(Bytes), Bytes));
    }
    catch (const EFormatError&) {
    }
    return 0;
}
