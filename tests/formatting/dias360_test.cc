#include "formatting/dias360.h"

#include <gtest/gtest.h>

#include "chrono_dates.h"

namespace tovalin {
namespace {

using namespace std::chrono;

TEST(Dias360, Table) {
  struct Case {
    year_month_day first;
    year_month_day last;
    std::int32_t days;
  };
  const Case kCases[] = {
      {2024y / 1 / 1, 2024y / 1 / 1, 0},
      {2024y / 1 / 1, 2024y / 12 / 31, 359},
      {2024y / 1 / 1, 2025y / 1 / 1, 360},
      {2023y / 1 / 15, 2024y / 3 / 20, 425},
      // Day 31 is day 30.
      {2024y / 1 / 30, 2024y / 1 / 31, 0},
      {2024y / 1 / 31, 2024y / 3 / 31, 60},
      {2024y / 1 / 31, 2024y / 2 / 1, 1},
      // So is the last day of February, and only that.
      {2023y / 2 / 28, 2023y / 3 / 1, 1},
      {2024y / 2 / 28, 2024y / 3 / 1, 3},
      {2024y / 2 / 29, 2024y / 3 / 1, 1},
      {2023y / 2 / 1, 2023y / 3 / 1, 30},
      {2024y / 2 / 1, 2024y / 2 / 29, 29},
      {2023y / 2 / 1, 2023y / 2 / 28, 29},
      {2023y / 1 / 31, 2023y / 2 / 28, 30},
      {2024y / 1 / 31, 2024y / 2 / 28, 28},
      {2024y / 2 / 29, 2025y / 2 / 28, 360},
      {1900y / 2 / 28, 1900y / 3 / 31, 30},
      {100y / 1 / 1, 9999y / 12 / 31, 9899 * 360 + 359},
  };
  for (const Case& c : kCases) {
    const Date first = DayCount(c.first);
    const Date last = DayCount(c.last);
    EXPECT_EQ(Dias360(first, last), c.days) << first.days << " to " << last.days;
    EXPECT_EQ(Dias360(last, first), -c.days) << last.days << " to " << first.days;
  }
}

TEST(Dias360, TimeOfDayDoesNotCount) {
  const Date morning{DayCount(2024, 1, 31).days + 0.01};
  const Date night{DayCount(2024, 2, 1).days + 0.99};
  EXPECT_EQ(Dias360(morning, night), 1);
  EXPECT_EQ(Dias360(night, morning), -1);
}

}  // namespace
}  // namespace tovalin
