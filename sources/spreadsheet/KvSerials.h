// KvSerials - the numbers by which spreadsheets count days, and which a cell's format shows as a date or a
// time.
//
// Excel and 1-2-3 call 1 January 1900 day 1 and have a 29 February in that year, day 60: up to there their
// days are one behind those of other programs. Quattro Pro counts as these do, before 1900 too. In the 1904
// mode of Excel 1 January 1904 is day 0.
#pragma once

#include <cstdint>
#include <string>

#include "KvCellRows.h"
#include "KvSpreadSheetExtensions.h"
#include "KvVariant.h"

namespace kv {

/// What a number format shows of a serial number.
enum TSerialKind : std::uint8_t {
    skNumber,                                       ///< The number.
    skMoment,                                       ///< A day, with or without a time.
    skTime,                                         ///< A time of day.
    skDuration                                      ///< Hours, minutes or seconds, any number of them.
};

/// Whose days are counted.
enum TSerialDays : std::uint8_t { sdExcel, sdQuattro };

/// "36:00:00", "-01:00:00", "00:00:01.500": `Days` as hours, minutes and seconds.
std::string DurationText(double Days);

/// The calendar of one workbook.
class TSerialCalendar
{
public:
    TSerialCalendar(TSerialDays TheDays, TSpreadSheetExtensions Extensions);

    void SetIs1904(bool Value) { Is1904 = Value; }

    /// The value of `Serial`, which a format of another kind than skNumber shows: a date-time, or with
    /// seCustomDates the text of a time that no day holds. With seTellingErrors what no calendar has stays
    /// the number that it is; `Fault` says why, and is cfNone otherwise.
    TVariant ValueOf(double Serial, TSerialKind Kind, TCellFault& Fault) const;

private:
    TVariant MomentOf(double Serial, TCellFault& Fault) const;
    TVariant TimeOf(double Serial, TCellFault& Fault) const;

    const TSerialDays Days;
    const bool AppliesMode, ShowsDurations, TellsFaults;
    bool Is1904 = false;
};

} // namespace kv
