// KvDbaseValues - the values that a record of a dBase or FoxPro table holds, memos apart.
#pragma once

#include <string_view>

#include "KvDbaseHeader.h"
#include "KvVariant.h"

namespace kv {

/// The text without the blanks and zeros that fill it up.
std::string_view DbaseText(std::string_view Bytes);

/// True for a number that had no room in its field: nothing but asterisks is left of it.
bool IsLostNumber(std::string_view Bytes);

/// The value of a field that is no memo and no text of variable size; `Bytes` are those of the field. Null
/// when blank or lost, texts as loans in the code page of the table. A decimal number is the simplest of
/// integer, currency, double and digits as text that keeps all its digits. Raises EFormatError with the
/// reason when the bytes are no value of the kind.
TVariant DbaseValue(TKvDbaseStorage Storage, std::string_view Bytes);

} // namespace kv
