// Any bytes as the answer of the reader of Access databases, arriving in pieces of any size: messages,
// names, fields, records and their values are read within bounds, or refused.
//
//   input := piece:u8 stream
#include "KvAccessReader.h"

#include <algorithm>

#include "KvException.h"
#include "KvFuzz.h"

namespace {

using namespace kv;

/// Reads every value and looks at all of it.
void ReadRecords(std::string_view Body, std::size_t Fields, TAccessRecords& Records)
{
    Records.SetFieldCount(Fields);
    Records.Load(Body);
    while (Records.Next())
        for (std::size_t I = 0; I < Fields; ++I)
            try {
                const auto Value = Records.Value(I);
                const auto Text = Value.ToText();
                Require(!Value.IsString() || (Text.size() <= Body.size() && Text == Value.Text()));
            }
            catch (const EDatabaseError&) {         // a value that could not be read
            }
}

void ReadStream(TAccessReader& Reader)
{
    TAccessRecords Records;
    std::size_t Fields = 0;
    for (;;) {
        const auto Message = Reader.Next();
        switch (Message.Kind) {
        case amTable:   Require(!ReadAccessTable(Message.Body).Name.empty()); break;
        case amField:
            Require(!AccessTypeText(ReadAccessField(Message.Body)).empty());
            Fields = std::min(Fields + 1, TAccessBounds::MaxFields);
            break;
        case amCount:   ReadAccessCount(Message.Body); break;
        case amRecords: ReadRecords(Message.Body, Fields, Records); break;
        case amError:
        case amDamage:
        case amEnd:     return;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    const std::size_t Piece = 1 + Input.Take<std::uint8_t>();
    auto Rest = Input.TakeRest();
    TAccessReader Reader([&Rest, Piece](char* Bytes, std::size_t Room) {
        const auto Count = std::min({Room, Piece, Rest.size()});
        Rest.copy(Bytes, Count);
        Rest.remove_prefix(Count);
        return Count;
    });
    try {
        ReadStream(Reader);
    }
    catch (const Exception&) {
    }
    return 0;
}
