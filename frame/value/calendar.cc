#include "frame/value/calendar.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace tovalin {
namespace {

constexpr std::int64_t kFirstDay = -657434;  // 1 January 100
constexpr std::int64_t kLastDay = 2958465;   // 31 December 9999
constexpr double kSecondsInDay = 86400;

// Years are counted from March, so that the leap day ends its year; an era is
// the 400 years after which the calendar repeats.
constexpr int kDaysInEra = 146097;
constexpr int kDaysFromEraToDayZero = 693899;  // 1 March 0 to 30 December 1899

constexpr std::int64_t FloorDivide(std::int64_t dividend, std::int64_t divisor) {
  const std::int64_t quotient = dividend / divisor;
  return dividend % divisor < 0 ? quotient - 1 : quotient;
}

// REQUIRES: month is 1 to 12; day is free.
constexpr std::int64_t DayNumber(std::int64_t year, int month, std::int64_t day) {
  if (month <= 2) --year;
  const std::int64_t era = FloorDivide(year, 400);
  const std::int64_t year_of_era = year - era * 400;
  const int months_after_march = (month + 9) % 12;
  const std::int64_t day_of_year = (153 * months_after_march + 2) / 5 + day - 1;
  return era * kDaysInEra + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year -
         kDaysFromEraToDayZero;
}
static_assert(DayNumber(1899, 12, 30) == 0);
static_assert(DayNumber(100, 1, 1) == kFirstDay && DayNumber(9999, 12, 31) == kLastDay);

CivilDate CivilOf(std::int64_t day_number) {
  const std::int64_t days = day_number + kDaysFromEraToDayZero;
  const std::int64_t era = FloorDivide(days, kDaysInEra);
  const std::int64_t day_of_era = days - era * kDaysInEra;
  const std::int64_t year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const std::int64_t day_of_year =
      day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const std::int64_t months_after_march = (5 * day_of_year + 2) / 153;
  const std::int64_t month =
      months_after_march < 10 ? months_after_march + 3 : months_after_march - 9;
  return {.year = static_cast<int>(era * 400 + year_of_era + (month <= 2 ? 1 : 0)),
          .month = static_cast<int>(month),
          .day = static_cast<int>(day_of_year - (153 * months_after_march + 2) / 5 + 1)};
}

// A count taken apart: a whole day and the seconds after its midnight, less
// than a day.
struct Moment {
  std::int64_t day;
  double seconds;
};

Moment MomentOf(Date date) {
  if (!(date.days > kFirstDay - 1.0 && date.days < kLastDay + 1.0)) Raise(Failure::InvalidArgument);
  const double day = std::trunc(date.days);
  Moment moment{.day = static_cast<std::int64_t>(day),
                .seconds = std::fabs(date.days - day) * kSecondsInDay};
  // The last half second of the calendar has no day to belong to but its own.
  if (moment.seconds >= kSecondsInDay - 0.5 && moment.day < kLastDay) {
    ++moment.day;
    moment.seconds = 0;
  }
  return moment;
}

// Before day 0 the fraction counts away from zero, so that the day and its
// fraction stay apart.
Date Joined(std::int64_t day, double fraction) {
  if (day < kFirstDay || day > kLastDay) Raise(Failure::InvalidArgument);
  const auto whole = static_cast<double>(day);
  return {day < 0 ? whole - fraction : whole + fraction};
}

Date MovedByMonths(Date date, std::int64_t count) {
  const Moment moment = MomentOf(date);
  const CivilDate from = CivilOf(moment.day);
  const std::int64_t months = from.year * 12 + (from.month - 1) + count;
  const std::int64_t year = FloorDivide(months, 12);
  if (year < 100 || year > 9999) Raise(Failure::InvalidArgument);
  const int month = static_cast<int>(months - year * 12) + 1;
  const int day = std::min(from.day, DaysInMonth(static_cast<int>(year), month));
  return Joined(DayNumber(year, month, day), moment.seconds / kSecondsInDay);
}

// Days, and the parts of a day, are added to the day count as the platform does,
// which decides the last bit; before day 0 on a scale where the fraction counts
// forward too.
template <int kUnitsInDay>
Date MovedBy(Date date, std::int64_t count) {
  MomentOf(date);  // raises outside of the calendar
  const double day = std::trunc(date.days);
  const double moved =
      day + std::fabs(date.days - day) + static_cast<double>(count) / double{kUnitsInDay};
  const double moved_day = std::floor(moved);
  return Joined(static_cast<std::int64_t>(moved_day), moved - moved_day);
}

struct Interval {
  TextView code;
  Date (*move)(Date, std::int64_t);
  int units = 1;
};

constexpr std::array kIntervals = {
    Interval{u"yyyy", MovedByMonths, 12}, Interval{u"q", MovedByMonths, 3},
    Interval{u"m", MovedByMonths},        Interval{u"y", MovedBy<1>},
    Interval{u"d", MovedBy<1>},           Interval{u"w", MovedBy<1>},
    Interval{u"ww", MovedBy<1>, 7},       Interval{u"h", MovedBy<24>},
    Interval{u"n", MovedBy<1440>},        Interval{u"s", MovedBy<86400>},
};

// More of any unit than the calendar holds, and far from overflow.
constexpr double kMostUnits = 1e12;

}  // namespace

CivilDate DateOf(Date date) { return CivilOf(MomentOf(date).day); }

TimeOfDay TimeOf(Date date) {
  const int seconds = std::min(static_cast<int>(MomentOf(date).seconds + 0.5), 86399);
  return {.hour = seconds / 3600, .minute = seconds / 60 % 60, .second = seconds % 60};
}

Date MakeDate(const CivilDate& date, const TimeOfDay& time) {
  // The platform adds part after part to the day, which decides the last bit.
  const Date day = Joined(DayNumber(date.year, date.month, date.day), 0);
  const double sign = day.days < 0 ? -1 : 1;
  return {day.days + sign * (time.hour / 24.0) + sign * (time.minute / 1440.0) +
          sign * (time.second / kSecondsInDay)};
}

int FullYear(int year) {
  if (year < 0 || year > 99) return year;
  return year < 30 ? 2000 + year : 1900 + year;
}

Date DateSerial(int year, int month, int day) {
  const std::int64_t months = std::int64_t{FullYear(year)} * 12 + month - 1;
  const std::int64_t rolled_year = FloorDivide(months, 12);
  return Joined(DayNumber(rolled_year, static_cast<int>(months - rolled_year * 12) + 1, day), 0);
}

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

int Weekday(Date date) {
  const std::int64_t since_sunday = MomentOf(date).day - 1;  // day 1 was a Sunday
  return static_cast<int>(since_sunday - FloorDivide(since_sunday, 7) * 7) + 1;
}

int DayOfYear(Date date) {
  const std::int64_t day = MomentOf(date).day;
  return static_cast<int>(day - DayNumber(CivilOf(day).year, 1, 1)) + 1;
}

Date DateAdd(TextView interval, double count, Date date) {
  const auto found = std::ranges::find_if(
      kIntervals, [&](const Interval& each) { return EqualFolded(each.code, interval); });
  if (found == kIntervals.end() || !(std::fabs(count) < kMostUnits))
    Raise(Failure::InvalidArgument);
  return found->move(date, static_cast<std::int64_t>(std::nearbyint(count)) * found->units);
}

}  // namespace tovalin
