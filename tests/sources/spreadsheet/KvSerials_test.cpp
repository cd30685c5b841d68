#include "KvSerials.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "KvIsoDate.h"

namespace kv {

namespace {

const TSpreadSheetExtensions All = {seDateMode, seCustomDates, seTellingErrors};

/// The date and time that a serial number stands for, the text of a time that no day holds, or why it is
/// none.
std::string Shown(double Serial, TSerialKind Kind, TSerialDays Days = sdExcel, bool Is1904 = false)
{
    TSerialCalendar Calendar(Days, All);
    Calendar.SetIs1904(Is1904);
    TCellFault Fault = cfNone;
    const auto Value = Calendar.ValueOf(Serial, Kind, Fault);
    if (Fault != cfNone) {
        EXPECT_EQ(Value.Kind(), vkDouble);
        return Fault == cfLeapDay ? "leap day" : "no day";
    }
    return Value.IsString() ? "text " + std::string(Value.Text()) : DateTimeToIso(Value.DateTime());
}

std::string Moment(double Serial) { return Shown(Serial, skMoment); }

} // namespace

TEST(KvSerials, TheFirstDaysAreThoseOfExcel)
{
    EXPECT_EQ(Moment(0), "1899-12-31 00:00:00");
    EXPECT_EQ(Moment(1), "1900-01-01 00:00:00");
    EXPECT_EQ(Moment(31.5), "1900-01-31 12:00:00");
    EXPECT_EQ(Moment(59), "1900-02-28 00:00:00");
    EXPECT_EQ(Moment(60), "leap day");
    EXPECT_EQ(Moment(60.75), "leap day");
    EXPECT_EQ(Moment(61), "1900-03-01 00:00:00");
    EXPECT_EQ(Moment(45351.5), "2024-02-29 12:00:00");
}

TEST(KvSerials, WhatNoCalendarHasIsNoDay)
{
    EXPECT_EQ(Moment(2958465), "9999-12-31 00:00:00");
    for (const double Serial : {2958466.0, 2958465.9999999999, 20240229.0, 1e300, -1.0, -0.5, -1e300,
                                std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity()})
        EXPECT_EQ(Moment(Serial), "no day") << Serial;
    for (const double Serial : {2958466.0, -2958466.0, 1e300})
        EXPECT_EQ(Shown(Serial, skDuration), "no day") << Serial;
    EXPECT_EQ(Shown(2957003, skMoment, sdExcel, true), "9999-12-31 00:00:00");
    EXPECT_EQ(Shown(2957004, skMoment, sdExcel, true), "no day");
}

TEST(KvSerials, DaysOf1904BeginWithZero)
{
    EXPECT_EQ(Shown(0, skMoment, sdExcel, true), "1904-01-01 00:00:00");
    EXPECT_EQ(Shown(60, skMoment, sdExcel, true), "1904-03-01 00:00:00");
    EXPECT_EQ(Shown(-1, skMoment, sdExcel, true), "no day");
}

TEST(KvSerials, TimesOfDayAndDurationsAreTheSameInEveryMode)
{
    for (const bool Is1904 : {false, true}) {
        EXPECT_EQ(Shown(0, skTime, sdExcel, Is1904), "1899-12-30 00:00:00");
        EXPECT_EQ(Shown(0.25, skTime, sdExcel, Is1904), "1899-12-30 06:00:00");
        EXPECT_EQ(Shown(0.75, skDuration, sdExcel, Is1904), "1899-12-30 18:00:00");
        EXPECT_EQ(Shown(1.5, skDuration, sdExcel, Is1904), "text 36:00:00");
    }
    EXPECT_EQ(Shown(1.5, skTime), "1900-01-01 12:00:00"); // a moment of which only the time is shown
    EXPECT_EQ(Shown(1.5, skTime, sdExcel, true), "1904-01-02 12:00:00");
}

TEST(KvSerials, QuattroProCountsBefore1900)
{
    EXPECT_EQ(Shown(0, skMoment, sdQuattro), "1899-12-30 00:00:00");
    EXPECT_EQ(Shown(1, skMoment, sdQuattro), "1899-12-31 00:00:00");
    EXPECT_EQ(Shown(60, skMoment, sdQuattro), "1900-02-28 00:00:00");
    EXPECT_EQ(Shown(-1, skMoment, sdQuattro), "1899-12-29 00:00:00");
    EXPECT_EQ(Shown(-0.25, skMoment, sdQuattro), "1899-12-29 18:00:00");
    EXPECT_EQ(Shown(-693594, skMoment, sdQuattro), "no day");
}

TEST(KvSerials, TextOfDurations)
{
    EXPECT_EQ(DurationText(0), "00:00:00");
    EXPECT_EQ(DurationText(1), "24:00:00");
    EXPECT_EQ(DurationText(100.0 / 24), "100:00:00");
    EXPECT_EQ(DurationText(-1.0 / 24), "-01:00:00");
    EXPECT_EQ(DurationText(1.5 + 1.007 / 86400), "36:00:01.007");
    EXPECT_EQ(DurationText(1.9999999999), "48:00:00");
    EXPECT_EQ(DurationText(-1e-12), "00:00:00");
}

TEST(KvSerials, WithoutExtensionsSerialNumbersStayAsTheyAre)
{
    const TSerialCalendar Classic(sdExcel, {});
    for (const double Serial : {-1.0, -0.25, 0.0, 1.5, 60.0, 2e7})
        for (const auto Kind : {skMoment, skTime, skDuration}) {
            TCellFault Fault = cfNoDay;
            const auto Value = Classic.ValueOf(Serial, Kind, Fault);
            EXPECT_EQ(Value.DateTime().Days, Serial);
            EXPECT_EQ(Fault, cfNone);
        }
}

} // namespace kv
