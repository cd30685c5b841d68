// KvJetValues - the values of fields as the records of an Access database have them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

std::string JetLong(std::int64_t Value, int Size = 4); ///< Also amounts, of 8 bytes.
std::string JetDouble(double Value);                ///< Also days of a date.
std::string JetSingle(float Value);
std::string JetText(std::u16string_view Text);      ///< Of Jet 4, not compressed.
/// `Words` from the highest to the lowest.
std::string JetDecimal(bool Negative, std::uint32_t A, std::uint32_t B, std::uint32_t C, std::uint32_t D);
/// The value of a calculated field; `Bytes` are those of its type.
std::string JetCalculated(std::string_view Bytes);
/// What a record has of a long value; its kind is in the two highest bits.
std::string JetLongValue(std::uint32_t SizeAndKind, std::uint32_t Place);
/// A long value that stands in its record.
std::string JetInline(std::string_view Bytes);

} // namespace kv
