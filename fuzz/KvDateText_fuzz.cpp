// Dates and times from any text: what is read must be written and read again as the same instant.
#include "KvDateText.h"

#include <cmath>

#include "KvCalendar.h"
#include "KvException.h"
#include "KvFormatSettings.h"
#include "KvFuzz.h"
#include "KvIsoDate.h"

namespace {

using namespace kv;

void TakeSettings(TFuzzInput& Input)
{
    auto& Settings = FormatSettings();
    Settings.ShortDateFormat = Input.TakeOneOf({"M/d/yyyy", "dd/MM/yyyy", "yyyy/MM/dd"});
    Settings.DateSeparator = Input.TakeOneOf({'/', '.', '-', ' '});
    Settings.TimeSeparator = Input.TakeOneOf({':', '.'});
}

void CheckPoint(TDateTime Value)
{
    Require(EncodeDateTime(DecodeDateTime(Value)) == Value);
    Require(TryIsoToDateTime(DateTimeToIso(Value)) == Value);
    Require(TryTextToDateTime(DateTimeToText(Value)) == Value);
}

/// Any double: outside the calendar, or no further than half a millisecond from an instant. In the year
/// 9999 neighbouring doubles lie 0.04 milliseconds apart.
void CheckAnyDays(double Days)
{
    constexpr double Half = 0.55 / 86400000;
    try {
        const auto Point = EncodeDateTime(DecodeDateTime({Days}));
        Require(Point.has_value());
        // Times count forward on either side of day 0, which itself has both signs.
        const bool IsNear = std::fabs(std::fabs(Point->Days) - std::fabs(Days)) <= Half;
        // In negative days the number of the next midnight is not the nearest one.
        Require(IsNear || (Days < 0 && Point->Days == std::trunc(Days) + 1));
    } catch (const EConvertError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    TFuzzInput Input(Data, Size);
    TakeSettings(Input);
    const auto Text = Input.TakeRest();
    for (const auto Value : {TryTextToDateTime(Text), TryTextToDate(Text), TryTextToTime(Text),
                             TryIsoToDateTime(Text)})
        if (Value)
            CheckPoint(*Value);
    CheckAnyDays(Input.Take<double>());
    return 0;
}
