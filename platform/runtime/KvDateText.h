// KvDateText - dates and times from text in the process's short date format.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KvVariant.h"

namespace kv {

/// Year, month and day in the order of the process's short date format, separated by the process's
/// date separator; all three must be there. Two digits of a year fall into the century window.
std::optional<TDateTime> TryTextToDate(std::string_view Text);
/// h:mm, h:mm:ss or h:mm:ss.zzz with the process's time separator, AM or PM allowed after it.
std::optional<TDateTime> TryTextToTime(std::string_view Text);
/// A date, a time, or a date, blanks or "T", and a time.
std::optional<TDateTime> TryTextToDateTime(std::string_view Text);
/// Raises EConvertError "'%s' is not a valid date and time".
TDateTime TextToDateTime(std::string_view Text);

/// In the process's short date format; with the time ("hh:mm:ss", milliseconds when there are any)
/// when it is not midnight.
std::string DateTimeToText(TDateTime Value);
/// A time that belongs to no day: "36:00:00" for one and a half, "-01:00:00" for an hour less than none, with
/// the process's time separator, and milliseconds when there are any. For values of less than some thousand
/// years.
std::string DurationToText(TDateTime Value);

} // namespace kv
