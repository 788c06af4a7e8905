#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

#include "chrono_dates.h"
#include "formatting/date_difference.h"
#include "formatting/duration.h"
#include "frame/value/calendar.h"

namespace tovalin {
namespace {

using namespace std::chrono;

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

}  // namespace
}  // namespace tovalin
