#include "KvAccessReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "KvByteCursor.h"
#include "KvCodePage.h"
#include "KvException.h"
#include "KvUtf8.h"

namespace kv {

namespace {

constexpr std::size_t PieceSize = 16 << 10;         // bytes asked for at once, at first

[[noreturn]] void RaiseStopped()
{
    throw EFormatError("the reader of Access databases stopped before its end");
}

[[noreturn]] void RaiseNotUnderstood(const std::string& What)
{
    throw EFormatError("the reader of Access databases gave an answer that has no meaning (" + What + ")");
}

std::string ReadName(std::string_view Utf8)
{
    if (Utf8.empty() || Utf8.size() > TAccessBounds::MaxNameSize || !IsValidUtf8(Utf8))
        RaiseNotUnderstood("a name");
    return Utf8ToAnsi(Utf8);
}

/// The bytes that follow a tag.
std::size_t PayloadSize(TAccessTag Tag, const char* Payload, std::size_t Room)
{
    switch (Tag) {
    case atNull:
    case atFalse:
    case atTrue:    return 0;
    case atInteger:
    case atDouble:
    case atDateTime:
    case atCurrency: return sizeof(std::int64_t);
    case atDecimal:
    case atText:
    case atBytes:
    case atRefused:
        if (Room < sizeof(std::uint32_t))
            RaiseNotUnderstood("a size");
        return sizeof(std::uint32_t) + LoadLittleEndian<std::uint32_t>(Payload);
    }
    RaiseNotUnderstood("a value of kind " + std::to_string(Tag));
}

} // namespace

TAccessReader::TAccessReader(std::function<std::size_t(char*, std::size_t)> Source)
    : Receive(std::move(Source))
{
}

TAccessMessage TAccessReader::Next()
{
    if (!Started) {
        const auto Start = Take(AccessMagic.size() + 1);
        if (!Start.starts_with(AccessMagic))
            RaiseNotUnderstood("not its own");
        if (const auto Version = static_cast<std::uint8_t>(Start.back()); Version != AccessVersion)
            throw EFormatError("the reader of Access databases is of another version (" +
                               std::to_string(Version) + " instead of " + std::to_string(AccessVersion) +
                               ")");
        Started = true;
    }
    TKvByteCursor Header(Take(sizeof(std::uint32_t) + 1));
    const std::size_t Size = Header.Take<std::uint32_t>();
    const auto Kind = static_cast<TAccessMessageKind>(Header.Take<std::uint8_t>());
    if (Size > TAccessBounds::MaxMessageSize)
        RaiseNotUnderstood("a message of " + std::to_string(Size) + " bytes");
    if (Kind < amTable || Kind > amDamage)
        RaiseNotUnderstood("a message of kind " + std::to_string(Kind));
    return {Kind, Take(Size)};
}

std::string_view TAccessReader::Take(std::size_t Size)
{
    while (End - Begin < Size) {
        MakeRoom(Size);
        const auto Received = Receive(Buffer.data() + End, Buffer.size() - End);
        if (Received == 0)
            RaiseStopped();
        End += Received;
    }
    Begin += Size;
    return {Buffer.data() + (Begin - Size), Size};
}

/// For some of `Size` bytes from Begin on. A size is only believed as far as bytes have come.
void TAccessReader::MakeRoom(std::size_t Size)
{
    if (Begin > 0) {
        std::memmove(Buffer.data(), Buffer.data() + Begin, End - Begin);
        End -= Begin;
        Begin = 0;
    }
    if (End == Buffer.size())
        Buffer.resize(std::max(PieceSize, std::min(Size, 2 * Buffer.size())));
}

TAccessTable ReadAccessTable(std::string_view Body)
{
    TKvByteCursor In(Body);
    const auto Flags = In.Take<std::uint8_t>();
    return {.Name = ReadName(In.TakeBytes(In.Remaining())),
            .IsSystem = (Flags & ttSystem) != 0,
            .IsLinked = (Flags & ttLinked) != 0};
}

TAccessField ReadAccessField(std::string_view Body)
{
    TKvByteCursor In(Body);
    TAccessField Field;
    Field.Type = static_cast<TAccessFieldType>(In.Take<std::uint8_t>());
    Field.Size = In.Take<std::uint32_t>();
    Field.Precision = In.Take<std::uint8_t>();
    Field.Scale = In.Take<std::uint8_t>();
    Field.Name = ReadName(In.TakeBytes(In.Remaining()));
    return Field;
}

std::uint32_t ReadAccessCount(std::string_view Body)
{
    return TKvByteCursor(Body).Take<std::uint32_t>();
}

void TAccessRecords::Load(std::string_view Message)
{
    Body = Message;
    Left = ReadAccessCount(Body);
    Position = sizeof Left;
    // Every value has its tag: a count cannot promise more records than there are bytes.
    if (Left == 0 || Starts.empty() || (Body.size() - Position) / Starts.size() < Left)
        RaiseNotUnderstood(std::to_string(Left) + " records");
}

bool TAccessRecords::Next()
{
    if (Left == 0) {
        if (Position != Body.size())
            RaiseNotUnderstood("bytes after the last record");
        return false;
    }
    for (auto& Start : Starts) {
        Start = Position;
        if (Position == Body.size())
            RaiseNotUnderstood("a record without its last values");
        const auto Tag = static_cast<TAccessTag>(Body[Position++]);
        const auto Size = PayloadSize(Tag, Body.data() + Position, Body.size() - Position);
        if (Size > Body.size() - Position)
            RaiseNotUnderstood("a value longer than its message");
        Position += Size;
    }
    --Left;
    return true;
}

TVariant TAccessRecords::Value(std::size_t Field) const
{
    // Next() has made sure that all of it is there.
    const char* const Payload = Body.data() + Starts[Field] + 1;
    const auto Bytes = [Payload] {
        return std::string_view(Payload + sizeof(std::uint32_t), LoadLittleEndian<std::uint32_t>(Payload));
    };
    switch (static_cast<TAccessTag>(Body[Starts[Field]])) {
    case atNull:     return Null;
    case atFalse:    return false;
    case atTrue:     return true;
    case atInteger:  return LoadLittleEndian<std::int64_t>(Payload);
    case atDouble:   return LoadLittleEndian<double>(Payload);
    case atDateTime: return TDateTime{LoadLittleEndian<double>(Payload)};
    case atCurrency: return TCurrency{LoadLittleEndian<std::int64_t>(Payload)};
    case atText:     return AnsiIsUtf8() ? TVariant::Borrow(Bytes()) : TVariant(Utf8ToAnsi(Bytes()));
    case atDecimal:
    case atBytes:    return TVariant::Borrow(Bytes());
    case atRefused:  break;
    }
    throw EDatabaseError(std::string(Bytes()), {.Rule = erFormat});
}

} // namespace kv
