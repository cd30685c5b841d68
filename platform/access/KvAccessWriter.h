// KvAccessWriter - writes the stream that KvAccessProtocol describes. Part of the reader of databases,
// which is the only program that links their library, and of what stands in for it in tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "KvAccessProtocol.h"
#include "KvAccessTypes.h"

namespace kv {

/// Messages are handed over whole; those of records gather a good number of them first.
class TAccessWriter
{
public:
    static constexpr std::size_t BatchSize = 128 << 10; ///< Bytes of records that make a message.

    /// `Send` takes bytes, all of them.
    explicit TAccessWriter(std::function<void(std::string_view)> Send);

    void Table(std::string_view Name, std::uint8_t Flags);
    void Field(const TAccessField& Field);
    void Count(std::uint32_t Records);
    void Error(std::string_view Message);
    void Damage(std::string_view Message);
    void End();

    // The values of a record, one a field, then EndRecord.
    void Null() { PutTag(atNull); }
    void Boolean(bool Value) { PutTag(Value ? atTrue : atFalse); }
    void Integer(std::int64_t Value) { Put(atInteger, Value); }
    void Double(double Value) { Put(atDouble, Value); }
    void DateTime(double Days) { Put(atDateTime, Days); }
    void Currency(std::int64_t TenThousandths) { Put(atCurrency, TenThousandths); }
    void Decimal(std::string_view Digits) { PutBytes(atDecimal, Digits); }
    void Text(std::string_view Utf8) { PutBytes(atText, Utf8); }
    void Bytes(std::string_view Value) { PutBytes(atBytes, Value); }
    void Refused(std::string_view Reason) { PutBytes(atRefused, Reason); }
    void EndRecord();
    /// Hands over the records that were gathered: somebody waits for a sign of life.
    void Flush() { FlushRecords(); }
    /// Takes back the values since the last EndRecord: the record turned out to be none.
    void DropRecord() { Records.resize(Complete); }

private:
    void Message(TAccessMessageKind Kind, std::string_view Body);
    void FlushRecords();
    void PutTag(TAccessTag Tag) { Records += static_cast<char>(Tag); }
    template <class T> void Put(TAccessTag Tag, T Value);
    void PutBytes(TAccessTag Tag, std::string_view Value);

    std::function<void(std::string_view)> Send;
    std::string Records;                            // a message of records with its header
    std::size_t Complete;                           // bytes of it up to the last EndRecord
    std::uint32_t RecordCount = 0;
};

} // namespace kv
