#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

#include "chrono_dates.h"
#include "formatting/date_difference.h"
#include "formatting/duration.h"
#include "frame/calendar.h"

namespace tovalin {
namespace {

using namespace std::chrono;

TEST(DateDifference, Table) {
  struct Case {
    year_month_day first;
    year_month_day last;
    const char* text;
  };
  const Case kCases[] = {
      {2024y / 2 / 5, 2024y / 2 / 5, "0 Días"},
      {2024y / 2 / 5, 2024y / 2 / 6, "1 Día"},
      {2024y / 2 / 28, 2024y / 3 / 1, "2 Días"},
      {2023y / 2 / 28, 2023y / 3 / 1, "1 Día"},
      {2024y / 2 / 5, 2024y / 3 / 5, "1 Mes"},
      {2024y / 2 / 5, 2024y / 4 / 4, "1 Mes y 30 Días"},
      {2023y / 12 / 31, 2024y / 1 / 1, "1 Día"},
      {2023y / 2 / 5, 2024y / 2 / 5, "1 Año"},
      {2020y / 2 / 5, 2024y / 3 / 5, "4 Años y 1 Mes"},
      {2020y / 2 / 5, 2022y / 2 / 6, "2 Años y 1 Día"},
      {2022y / 1 / 15, 2023y / 3 / 18, "1 Año 2 Meses y 3 Días"},
      {2021y / 12 / 20, 2024y / 1 / 19, "2 Años y 30 Días"},
      // A month without that day ends on its last one.
      {2024y / 1 / 31, 2024y / 2 / 29, "1 Mes"},
      {2024y / 1 / 31, 2024y / 2 / 28, "28 Días"},
      {2023y / 1 / 31, 2023y / 3 / 1, "1 Mes y 1 Día"},
      {2020y / 2 / 29, 2021y / 2 / 28, "1 Año"},
  };
  for (const Case& c : kCases) {
    const Date first = DayCount(c.first);
    const Date last = DayCount(c.last);
    EXPECT_EQ(ToUtf8(DateDifferenceText(first, last)), c.text) << first.days;
    EXPECT_EQ(ToUtf8(DateDifferenceText(last, first)), c.text) << first.days;
  }
}

TEST(DateDifference, AddedToTheFirstDateGivesTheLast) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> day(-650'000, 2'900'000);
  std::uniform_int_distribution<int> near(0, 1200);
  for (int round = 0; round < 20'000; ++round) {
    const double first = day(random);
    const double last = first + near(random);
    const std::string text = ToUtf8(DateDifferenceText(Date{first}, Date{last}));
    int months = 0;
    int days = 0;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
      if (word == "y") continue;
      const int count = std::stoi(word);
      words >> word;
      if (word.starts_with("Año"))
        months += 12 * count;
      else if (word.starts_with("Mes"))
        months += count;
      else
        days += count;
    }
    const Date reached = DateAdd(u"m", months, Date{first});
    ASSERT_EQ(reached.days + days, last) << text << " from " << first;
    ASSERT_GT(DateAdd(u"m", months + 1, Date{first}).days, last) << text << " from " << first;
  }
}

TEST(DateDifference, TimeOfDayDoesNotCount) {
  EXPECT_EQ(ToUtf8(DateDifferenceText(Date{45000.9}, Date{45001.1})), "1 Día");
  EXPECT_EQ(ToUtf8(DateDifferenceText(Date{-1.25}, Date{-1.75})), "0 Días");
}

TEST(DateDifference, DatesBeyondTheCalendarRaise) {
  constexpr double kBeyond[] = {1e7, -1e7, 1e300, std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()};
  for (double days : kBeyond) {
    try {
      ADD_FAILURE() << ToUtf8(DateDifferenceText(Date{0}, Date{days}));
    } catch (const Error& error) {
      EXPECT_EQ(error.number, 5) << days;
    }
  }
}

TEST(Duration, Table) {
  struct Case {
    std::int32_t seconds;
    const char* short_form;
    const char* long_form;
  };
  const Case kCases[] = {
      {0, "00s", "0 secs"},
      {1, "01s", "1 sec"},
      {59, "59s", "59 secs"},
      {60, "01m:00s", "1 min"},
      {125, "02m:05s", "2 mins 5 secs"},
      {3600, "01h:00m:00s", "1 hr"},
      {7261, "02h:01m:01s", "2 hrs 1 min 1 sec"},
      {86399, "23h:59m:59s", "23 hrs 59 mins 59 secs"},
      {86400, "1d 00h:00m:00s", "1 day"},
      {86401, "1d 00h:00m:01s", "1 day, 1 sec"},
      {93784, "1d 02h:03m:04s", "1 day, 2 hrs 3 mins 4 secs"},
      {10 * 86400, "10d 00h:00m:00s", "10 days"},
      {-65, "-01m:05s", "-1 min 5 secs"},
      {2147483647, "24855d 03h:14m:07s", "24855 days, 3 hrs 14 mins 7 secs"},
      {-2147483647 - 1, "-24855d 03h:14m:08s", "-24855 days, 3 hrs 14 mins 8 secs"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(ToUtf8(ShortDuration(c.seconds)), c.short_form) << c.seconds;
    EXPECT_EQ(ToUtf8(LongDuration(c.seconds)), c.long_form) << c.seconds;
  }
}

}  // namespace
}  // namespace tovalin
