#include "frame/value/calendar.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "frame/system/clock.h"

namespace tovalin {
namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = year{1899} / 12 / 30;

template <class Action>
std::int32_t NumberRaised(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.number;
  }
  return 0;
}

void ExpectDayMatches(sys_days expected) {
  const Date date{static_cast<double>((expected - kDayZero).count())};
  const year_month_day civil{expected};
  const CivilDate parts{static_cast<int>(civil.year()), static_cast<int>(unsigned{civil.month()}),
                        static_cast<int>(unsigned{civil.day()})};
  ASSERT_EQ(DateOf(date), parts) << date.days;
  ASSERT_EQ(MakeDate(parts), date);
  ASSERT_EQ(Weekday(date), static_cast<int>(std::chrono::weekday{expected}.c_encoding()) + 1);
  ASSERT_EQ(DayOfYear(date), (expected - sys_days{civil.year() / 1 / 1}).count() + 1);
  ASSERT_EQ(IsLeapYear(parts.year), civil.year().is_leap());
  const year_month_day last{civil.year() / civil.month() / std::chrono::last};
  ASSERT_EQ(DaysInMonth(parts.year, parts.month), static_cast<int>(unsigned{last.day()}));
}

TEST(CalendarTest, EveryDayOf400YearsMatchesAnIndependentReckoning) {
  for (sys_days each = year{1700} / 1 / 1; each < sys_days{year{2100} / 1 / 1};
       each += std::chrono::days{1}) {
    ExpectDayMatches(each);
    if (HasFatalFailure()) return;
  }
}

TEST(CalendarTest, TheEndsOfTheCalendarMatch) {
  for (int i = 0; i < 800; ++i) {
    ExpectDayMatches(sys_days{year{100} / 1 / 1} + std::chrono::days{i});
    ExpectDayMatches(sys_days{year{9999} / 12 / 31} - std::chrono::days{i});
    if (HasFatalFailure()) return;
  }
}

TEST(CalendarTest, EverySecondOfADayKeepsItsTimeOnBothSidesOfDayZero) {
  for (const CivilDate& civil : {CivilDate{2024, 2, 29}, CivilDate{1899, 12, 30},
                                 CivilDate{1899, 12, 29}, CivilDate{100, 1, 1}}) {
    for (int second = 0; second < 86400; ++second) {
      const TimeOfDay time{second / 3600, second / 60 % 60, second % 60};
      const Date date = MakeDate(civil, time);
      ASSERT_EQ(DateOf(date), civil) << second;
      ASSERT_EQ(TimeOf(date), time) << second;
    }
  }
}

TEST(CalendarTest, TimesAreReadToTheNearestSecond) {
  struct Case {
    double days;
    CivilDate date;
    TimeOfDay time;
  };
  const Case cases[] = {
      {-1.25, {1899, 12, 29}, {6, 0, 0}},
      {-0.5, {1899, 12, 30}, {12, 0, 0}},
      {-1.9999999, {1899, 12, 30}, {0, 0, 0}},
      {45351.9999999, {2024, 3, 1}, {0, 0, 0}},
      {45351.99998842592, {2024, 2, 29}, {23, 59, 59}},
      {2958465.9999999, {9999, 12, 31}, {23, 59, 59}},
      {-657434.99, {100, 1, 1}, {23, 45, 36}},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(DateOf({each.days}), each.date) << each.days;
    EXPECT_EQ(TimeOf({each.days}), each.time) << each.days;
  }
}

TEST(CalendarTest, CountsOutsideOfTheCalendarRaise5) {
  for (const double days : {2958466.0, -657435.0, 1e300, -1e300,
                            std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_EQ(NumberRaised([&] { DateOf({days}); }), 5) << days;
    EXPECT_EQ(NumberRaised([&] { TimeOf({days}); }), 5) << days;
    EXPECT_EQ(NumberRaised([&] { DateAdd(u"d", 1, {days}); }), 5) << days;
  }
}

TEST(CalendarTest, DateSerialRollsOver) {
  struct Case {
    int year, month, day;
    CivilDate expected;
  };
  const Case cases[] = {
      {2024, 2, 5, {2024, 2, 5}},   {2024, 14, 0, {2025, 1, 31}},   {2024, 3, 0, {2024, 2, 29}},
      {2023, 3, 0, {2023, 2, 28}},  {2024, 0, 1, {2023, 12, 1}},    {2024, -11, 1, {2023, 1, 1}},
      {2024, 1, 367, {2025, 1, 1}}, {2024, 1, -1, {2023, 12, 30}},  {0, 1, 1, {2000, 1, 1}},
      {29, 12, 31, {2029, 12, 31}}, {30, 1, 1, {1930, 1, 1}},       {99, 1, 1, {1999, 1, 1}},
      {100, 1, 1, {100, 1, 1}},     {9999, 12, 31, {9999, 12, 31}},
  };
  for (const Case& each : cases)
    EXPECT_EQ(DateOf(DateSerial(each.year, each.month, each.day)), each.expected)
        << each.year << " " << each.month << " " << each.day;
}

TEST(CalendarTest, DateSerialRaises5OutsideOfTheCalendar) {
  constexpr int kMost = std::numeric_limits<int>::max();
  constexpr int kLeast = std::numeric_limits<int>::min();
  const int cases[][3] = {{10000, 1, 1},   {9999, 12, 32},        {100, 1, 0},
                          {-1, 1, 1},      {kMost, kMost, kMost}, {kLeast, kLeast, kLeast},
                          {2024, 1, kMost}};
  for (const auto& each : cases)
    EXPECT_EQ(NumberRaised([&] { DateSerial(each[0], each[1], each[2]); }), 5) << each[0];
}

TEST(CalendarTest, ADayReachedByHoursIsThatDayWhenMonthsAreAdded) {
  // 31 March less a few nanoseconds, as sums of fractions leave it.
  const Date almost{MakeDate({2024, 3, 31}).days - 1e-10};
  EXPECT_EQ(DateOf(DateAdd(u"m", 1, almost)), (CivilDate{2024, 4, 30}));
}

TEST(CalendarTest, MinutesAddedOneByOneShowNoDrift) {
  Date date = MakeDate({1899, 12, 1});
  for (int minute = 0; minute < 60 * 24 * 60; ++minute) {
    ASSERT_EQ(TimeOf(date), (TimeOfDay{minute / 60 % 24, minute % 60, 0}));
    date = DateAdd(u"n", 1, date);
  }
  EXPECT_EQ(DateOf(date), (CivilDate{1900, 1, 30}));
}

TEST(CalendarTest, DateAddRaises5) {
  const Date date = MakeDate({2024, 2, 29});
  for (const TextView unknown : {u"", u"x", u"yy", u"mm", u" d", u"año"})
    EXPECT_EQ(NumberRaised([&] { DateAdd(unknown, 1, date); }), 5) << ToUtf8(unknown);
  for (const TextView interval : {u"yyyy", u"q", u"m", u"d", u"ww", u"h", u"n", u"s"})
    for (const double count : {1e12, -1e12, 1e300, 9e11, -9e11, std::nan("")})
      EXPECT_EQ(NumberRaised([&] { DateAdd(interval, count, date); }), 5) << ToUtf8(interval);
  EXPECT_EQ(NumberRaised([&] { DateAdd(u"d", 1, MakeDate({9999, 12, 31})); }), 5);
  EXPECT_EQ(NumberRaised([&] { DateAdd(u"m", -1, MakeDate({100, 1, 31})); }), 5);
}

TEST(ClockTest, TheSystemClockAgreesWithTheStandardOne) {
  using std::chrono::floor;
  const auto now = std::chrono::system_clock::now();
  const double utc = std::chrono::duration<double>(now - sys_days{kDayZero}).count() / 86400;
  EXPECT_NEAR(SystemNow().days, utc, 15.0 / 24);  // whatever the time zone
  const Date seen = SystemNow();
  EXPECT_EQ(MakeDate(DateOf(seen), TimeOf(seen)), seen);
}

}  // namespace
}  // namespace tovalin
