#include "KvAccessWriter.h"

#include <cstring>
#include <utility>

namespace kv {

namespace {

constexpr std::size_t HeaderSize = 5;               // size and kind of a message
constexpr std::size_t RecordsHeaderSize = HeaderSize + 4; // and the count of records

template <class T> void Append(std::string& Target, T Value)
{
    char Bytes[sizeof Value];
    std::memcpy(Bytes, &Value, sizeof Value);       // low byte first on every machine that we build for
    Target.append(Bytes, sizeof Value);
}

template <class T> void StoreAt(std::string& Target, std::size_t Position, T Value)
{
    std::memcpy(Target.data() + Position, &Value, sizeof Value);
}

} // namespace

TAccessWriter::TAccessWriter(std::function<void(std::string_view)> Sink)
    : Send(std::move(Sink)), Records(RecordsHeaderSize, '\0'), Complete(RecordsHeaderSize)
{
    std::string Start(AccessMagic);
    Start += static_cast<char>(AccessVersion);
    Send(Start);
}

void TAccessWriter::Message(TAccessMessageKind Kind, std::string_view Body)
{
    FlushRecords();
    std::string Whole;
    Append(Whole, static_cast<std::uint32_t>(Body.size()));
    Append(Whole, Kind);
    Whole += Body;
    Send(Whole);
}

void TAccessWriter::Table(std::string_view Name, std::uint8_t Flags)
{
    std::string Body;
    Append(Body, Flags);
    Message(amTable, Body.append(Name));
}

void TAccessWriter::Field(const TAccessField& Field)
{
    std::string Body;
    Append(Body, Field.Type);
    Append(Body, Field.Size);
    Append(Body, Field.Precision);
    Append(Body, Field.Scale);
    Message(amField, Body.append(Field.Name));
}

void TAccessWriter::Count(std::uint32_t Number)
{
    std::string Body;
    Append(Body, Number);
    Message(amCount, Body);
}

void TAccessWriter::Error(std::string_view Text)
{
    DropRecord();
    Message(amError, Text);
}

void TAccessWriter::Damage(std::string_view Text)
{
    DropRecord();
    Message(amDamage, Text);
}

void TAccessWriter::End()
{
    Message(amEnd, {});
}

template <class T> void TAccessWriter::Put(TAccessTag Tag, T Value)
{
    char Bytes[1 + sizeof Value];
    Bytes[0] = static_cast<char>(Tag);
    std::memcpy(Bytes + 1, &Value, sizeof Value);
    Records.append(Bytes, sizeof Bytes);
}

template void TAccessWriter::Put(TAccessTag, std::int64_t);
template void TAccessWriter::Put(TAccessTag, double);

void TAccessWriter::PutBytes(TAccessTag Tag, std::string_view Value)
{
    Put(Tag, static_cast<std::uint32_t>(Value.size()));
    Records += Value;
}

void TAccessWriter::EndRecord()
{
    ++RecordCount;
    Complete = Records.size();
    if (Complete >= BatchSize)
        FlushRecords();
}

void TAccessWriter::FlushRecords()
{
    if (RecordCount == 0)
        return;
    StoreAt(Records, 0, static_cast<std::uint32_t>(Complete - HeaderSize));
    StoreAt(Records, 4, amRecords);
    StoreAt(Records, HeaderSize, RecordCount);
    Send(std::string_view(Records).substr(0, Complete));
    Records.resize(RecordsHeaderSize);
    Complete = RecordsHeaderSize;
    RecordCount = 0;
}

} // namespace kv
