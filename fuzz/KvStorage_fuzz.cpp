// Any bytes as a compound document: what it lists can be opened, streams hold no more than the file, and
// reading piece by piece gives what reading at once gives.
#include "KvStorage.h"

#include <algorithm>
#include <string>
#include <vector>

#include "KvException.h"
#include "KvFuzz.h"

namespace {

using namespace kv;

bool HasAll(const TKvStorageStream& Stream)
{
    try {
        Stream.RequireAll();
        return true;
    }
    catch (const EFormatError&) {
        return false;
    }
}

/// Reads the bytes that are there and those at their end once more.
void CheckPieces(TKvStorageStream Stream)
{
    const auto All = Stream.ReadAll();
    std::string Piece(std::max<std::size_t>(All.size() / 3, 1), '\0');
    std::size_t Done = 0;
    while (Done < All.size()) {
        const auto Count = Stream.Read(Piece.data(), std::min(Piece.size(), All.size() - Done));
        Require(Count > 0 && std::string_view(Piece).substr(0, Count) == All.substr(Done, Count));
        Done += Count;
        Require(Stream.Position() == Done);
    }
    Stream.SeekFromCurrent(-static_cast<std::int64_t>(Done));
    Stream.SeekFromStart(Stream.Size());
    Require(Stream.Read(Piece.data(), Piece.size()) == 0);
}

void CheckStream(const TKvStorage& Storage, const TKvStorageElement& Element, std::size_t FileSize)
{
    const auto Stream = Storage.OpenStream(Element.Name); // of two with a name the first
    const auto All = Stream.ReadAll();
    Require(All.size() <= FileSize && All.size() <= Stream.Size());
    Require(HasAll(Stream) == (All.size() == Stream.Size()));
    CheckPieces(Storage.OpenStream(Element.Name));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    const std::string_view Bytes(reinterpret_cast<const char*>(Data), Size);
    try {
        const TKvStorage Storage(Bytes, "file");
        Require(IsStorage(Bytes) && Storage.Elements().size() <= Size / 128);
        for (const auto& Element : Storage.Elements())
            if (Element.Kind == skStream)
                CheckStream(Storage, Element, Size);
    }
    catch (const EFormatError& Error) {
        Require(!Error.Message.empty());
    }
    return 0;
}
