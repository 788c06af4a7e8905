#pragma once

#include "tovalin/text.h"
#include "tovalin/variant.h"

// The Gregorian calendar over day counts, carried back to the year 100. Dates
// run from 1 January 100 to 31 December 9999; a count outside of that, or one
// that is no number, raises 5.
//
// The time of day is read to the nearest second, as a person sees it: a count
// within half a second of midnight belongs to the day that begins there.

namespace tovalin {

struct CivilDate {
  int year = 0;
  int month = 0;
  int day = 0;
  friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

struct TimeOfDay {
  int hour = 0;
  int minute = 0;
  int second = 0;
  friend bool operator==(const TimeOfDay&, const TimeOfDay&) = default;
};

/// The day of a count. Day -1.25 is 29 December 1899, at 6 in the morning.
CivilDate DateOf(Date date);
TimeOfDay TimeOf(Date date);

/// The count of a day and a time that exist, counted as the platform counts them.
Date MakeDate(const CivilDate& date, const TimeOfDay& time = {});

/// The year that two digits stand for: 0 to 29 are 2000 to 2029, 30 to 99 are
/// 1930 to 1999. Other years are themselves.
int FullYear(int year);

/// The first midnight of a day given by parts. Two-digit years are taken as
/// FullYear; months and days outside their range roll over: (2024, 14, 0) is
/// 31 January 2025. Raises 5 outside of the calendar.
Date DateSerial(int year, int month, int day);

bool IsLeapYear(int year);

/// REQUIRES: month is 1 to 12.
int DaysInMonth(int year, int month);

/// 1 (Sunday) to 7 (Saturday).
int Weekday(Date date);

/// 1 to 366.
int DayOfYear(Date date);

/// `date` moved by `count` units of `interval`, a code in any case: yyyy year,
/// q quarter, m month, y d w day, ww week, h hour, n minute, s second. The
/// count is rounded to a whole number, halves to the even one. Moving by months
/// keeps the day, or the last day of a shorter month: one month after 31
/// January 2024 is 29 February 2024. Raises 5 for another code and for a result
/// outside of the calendar.
Date DateAdd(TextView interval, double count, Date date);

}  // namespace tovalin
