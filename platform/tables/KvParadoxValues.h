// KvParadoxValues - the values that a record of a Paradox table holds. Numbers high byte first; a field
// of zeros is blank.
//
//   integers, dates, times    two's complement, the sign bit flipped
//   number, currency          double; its sign bit flipped when positive, all bits when negative
//   timestamp                 the same, in milliseconds: a day number times 86,400,000
//   logical                   80 false, 81 true
//   BCD                       head:u8 digits:u4[32]        head: 80 set when not negative, 40 always,
//                             the other bits count decimals; digits of negative numbers are complemented
//   alpha, bytes              as they are, zeros behind
//
// Day 1 is 1 January of the year 1 in the Gregorian calendar.
#pragma once

#include <string_view>

#include "KvParadoxHeader.h"
#include "KvVariant.h"

namespace kv {

/// The value of a field that is no blob; `Bytes` are those of the field. Null when blank, texts as loans in
/// the code page of the table. A BCD value is the simplest that is exact: integer, currency or its digits as
/// text. Raises EFormatError with the reason when the bytes are no value of the type.
TVariant ParadoxValue(TKvParadoxType Type, std::string_view Bytes);

} // namespace kv
