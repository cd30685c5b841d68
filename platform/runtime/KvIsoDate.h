// KvIsoDate - dates and times as ISO 8601 text, whatever the process's settings: "2024-02-29", "23:59:59",
// "2024-02-29 23:59:59". Milliseconds follow as ".123" only when there are any.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "KvVariant.h"

namespace kv {

std::string DateToIso(TDateTime Value);
std::string TimeToIso(TDateTime Value);
std::string DateTimeToIso(TDateTime Value);
/// Any of the three forms, the blank also as "T".
std::optional<TDateTime> TryIsoToDateTime(std::string_view Text);

/// Writes like DateToIso, TimeToIso, DateTimeToIso into `Buffer`, for use once per value.
/// The result views `Buffer`.
inline constexpr std::size_t IsoTextMax = 32;
std::string_view WriteIsoDate(TDateTime Value, char (&Buffer)[IsoTextMax]);
std::string_view WriteIsoTime(TDateTime Value, char (&Buffer)[IsoTextMax]);
std::string_view WriteIsoDateTime(TDateTime Value, char (&Buffer)[IsoTextMax]);

} // namespace kv
