// KvAccessProtocol - what the reader of Access databases writes into its pipe.
//
// The reader is a program of its own, so that a damaged database can neither crash nor exhaust the one
// that imports. It gets its task as arguments and answers with one stream:
//
//   stream    := "KVAC"  version:u8  message*        the last message is amEnd, amError or amDamage
//   message   := size:u32le  kind:u8  body:u8[size]
//   amTable   := flags:u8  name:u8[]                 one a table; see TAccessTableFlag
//   amField   := type:u8  size:u32le  precision:u8  scale:u8  name:u8[]   one a field, in order
//   amCount   := records:u32le                       what the definition of the table counts
//   amRecords := count:u32le  value[fields * count]  after amCount, as often as there are records left
//   amError   := message:u8[]
//   amDamage  := message:u8[]                        an error in the bytes of the database
//   amEnd     :=
//   value     := tag:u8  what TAccessTag says
//
// "tables FILE" gives amTable*, "records FILE TABLE" amField*, amCount, amRecords*. Text is UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kv {

inline constexpr std::string_view AccessMagic = "KVAC";
inline constexpr std::uint8_t AccessVersion = 1;

enum TAccessMessageKind : std::uint8_t { amTable = 1, amField, amCount, amRecords, amError, amEnd, amDamage };

/// How a value follows its tag; numbers low byte first.
enum TAccessTag : std::uint8_t {
    atNull,
    atFalse,
    atTrue,
    atInteger,                                      ///< i64
    atDouble,                                       ///< f64
    atDateTime,                                     ///< f64, days since 30 December 1899
    atCurrency,                                     ///< i64, ten-thousandths
    atDecimal,                                      ///< size:u32le, digits with "." and "-"
    atText,                                         ///< size:u32le, UTF-8
    atBytes,                                        ///< size:u32le, as they stand
    atRefused                                       ///< size:u32le, why the value cannot be read
};

enum TAccessTableFlag : std::uint8_t { ttLocal = 0, ttSystem = 1, ttLinked = 2 };

/// What a stream may hold. Access itself allows 255 fields; its longest value takes a gigabyte.
struct TAccessBounds
{
    static constexpr std::size_t MaxTables = 100'000; ///< An Access database holds 32,768 objects.
    static constexpr std::size_t MaxFields = 255;
    static constexpr std::size_t MaxNameSize = 1024;
    static constexpr std::size_t MaxValueSize = 512 << 20;
    static constexpr std::size_t MaxMessageSize = MaxValueSize + (16 << 20);
};

} // namespace kv
