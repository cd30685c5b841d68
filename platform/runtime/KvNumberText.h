// KvNumberText - numbers from text and text from numbers. Blanks around a number are allowed,
// anything else that is no part of it is not: "0x10", "inf" and "nan" are no numbers here.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KvVariant.h"

namespace kv {

/// A decimal integer with an optional sign, in the 64-bit range; otherwise nothing.
std::optional<std::int64_t> TryTextToInt(std::string_view Text);
/// Raises EConvertError "'%s' is not a valid integer value".
std::int64_t TextToInt(std::string_view Text);

/// A decimal number with optional sign, fraction and exponent; the fraction follows the process's
/// decimal separator. Nothing when it is malformed or its magnitude leaves the range of a double.
std::optional<double> TryTextToFloat(std::string_view Text);
/// Raises EConvertError "'%s' is not a valid floating point value".
double TextToFloat(std::string_view Text);

/// An exact amount: at most four digits after the process's decimal separator, no exponent.
std::optional<TCurrency> TryTextToCurrency(std::string_view Text);

/// What decimal fields take, without binary rounding: an integer or currency where these hold the number, a
/// double where it gives the same digits back, else the digits themselves as text. False when `Text` is no
/// number as TryTextToFloat reads it.
bool TryTextToDecimal(std::string_view Text, TVariant& Result);

/// `Value` as programs that calculate show it, with fifteen digits: 435 for what 4.35 * 100 gives. Integers
/// that a double holds keep all of theirs.
double ShownNumber(double Value);
/// The digits of ShownNumber, without an exponent below 1E21.
std::string ShownText(double Value);

/// The shortest text that reads back as the same double, with the process's decimal separator.
std::string FloatToText(double Value);
/// All digits that are not trailing zeros of the fraction.
std::string CurrencyToText(TCurrency Value);

} // namespace kv
