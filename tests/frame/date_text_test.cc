#include "frame/value/date_text.h"

#include <gtest/gtest.h>

#include "frame/value/calendar.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

TEST(DateTextTest, LongTextsAreGivenUpEarly) {
  EXPECT_FALSE(ReadDate(Text(1 << 20, u'1')));
  EXPECT_FALSE(ReadDate(Text(1 << 20, u'/')));
  EXPECT_FALSE(ReadDate(Text(1 << 20, u'a')));
  Text pairs;
  for (int i = 0; i < 100000; ++i) pairs += u"a ";
  EXPECT_FALSE(ReadDate(pairs));
  EXPECT_TRUE(ReadDate(Text(1 << 20, u' ') + u"15/02/2024"));
}

TEST(DateTextTest, ADateOutsideOfTheCalendarHasNoText) { EXPECT_THROW(DateText({2958466}), Error); }

TEST(DateTextTest, EveryTextReadsBack) {
  for (double day = -657434; day <= 2958465; day += 997) {
    const Date date = MakeDate(DateOf({day}), {static_cast<int>(day + 657434) % 24, 7, 59});
    ASSERT_EQ(ReadDate(DateText(date)), date) << day;
  }
}

}  // namespace
}  // namespace tovalin
