// KvFieldConvert - turns any value into the kind that a field's type reads as, and says in words why
// that is not possible.
#pragma once

#include <string>

#include "KvErrorFacts.h"
#include "KvField.h"

namespace kv {

bool IsIntegerField(TFieldType Type);

/// Puts `Value` in the kind of `Type` into `Result`, whose storage is used again. Null and empty become
/// null. Nothing is rounded, cut or given a time that it does not have: false when the value has no
/// exact meaning in the type or leaves its range; `Result` is then undefined.
bool ConvertFieldValue(TFieldType Type, const TVariant& Value, TVariant& Result);

/// For text of more bytes than the size of the field: raises EConvertError when it also has more characters.
void CheckFieldSize(const TField& Field, const TVariant& Value);

/// For numbers in fields with a precision: raises EConvertError when they have more digits before or after
/// the separator than the field holds.
void CheckFieldPrecision(const TField& Field, const TVariant& Value);

/// Raises EConvertError that quotes the value before `Why`.
[[noreturn]] void RefuseValue(const TField& Field, const TVariant& Value, TKvErrorRule Rule,
                              const std::string& Why);

/// Raises EConvertError "'abc' is not a valid integer value for field 'QTY'" and the like.
[[noreturn]] void RaiseConversion(const TField& Field, const TVariant& Value);

/// Characters of UTF-8 text: bytes that do not continue a character. For other 8-bit text its length.
std::size_t CharacterCount(std::string_view Text);

} // namespace kv
