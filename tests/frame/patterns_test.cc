#include "frame/format/patterns.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <thread>

#include "frame/value/calendar.h"
#include "frame/value/date_text.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

struct Case {
  Variant value;
  TextView pattern;
  TextView text;
};

template <std::size_t Count>
void ExpectFormats(const Case (&cases)[Count]) {
  for (const Case& each : cases)
    EXPECT_EQ(ToUtf8(Format(each.value, each.pattern)), ToUtf8(each.text))
        << "under " << ToUtf8(each.pattern);
}

std::int32_t NumberRaised(const Variant& value, TextView pattern) {
  try {
    Format(value, pattern);
  } catch (const Error& error) {
    return error.number;
  }
  return 0;
}

const Variant kAfternoon(MakeDate({2024, 2, 5}, {14, 3, 9}));
const Variant kNull = Variant::Null();

TEST(PatternTest, QuotedLiterals) {
  const Case cases[] = {
      {5.0, u"0 \\d\\e \"m #\"", u"5 de m #"},
      {5.0, u"0\"abierto", u"5abierto"},
      {5.0, u"\"solo texto\"", u"solo texto"},
      {-5.0, u"\"solo texto\"", u"solo texto"},
      {5.0, u"0\";\";(0)", u"5;"},
      {5.0, u"\"d\" 0", u"d 5"},
      {Variant(), u"0;0;\"cero\"", u"cero"},
      {Variant(), u"0;0;\"cero\";\"nada\"", u"nada"},
      {kNull, u"0;0;0;\"nulo\"", u"nulo"},
      {Date{0.5}, u"\"a\"c\"b\"", u"a12:00:00b"},
      {kAfternoon, u"hh \"h\" mm", u"14 h 03"},
      {u"", u"@@;\"vacío\"", u"vacío"},
      {kNull, u"@@;\"vacío\"", u"vacío"},
  };
  ExpectFormats(cases);
}

TEST(PatternTest, ValuesThatNoFormulaHandsOn) {
  const Case cases[] = {
      {-0.0, u"0.00", u"0.00"},
      {u"1,234.5", u"0.00", u"1234.50"},
      {u"3,000,000", u"dd/mm/yyyy", u"3,000,000"},
      {std::numeric_limits<double>::infinity(), u"Short Date", u"INF"},
  };
  ExpectFormats(cases);
  for (const TextView pattern : {u"0", u"dd/mm/yyyy", u"@"}) {
    EXPECT_EQ(NumberRaised(Variant(Ref<Object>()), pattern), 13);
    EXPECT_EQ(NumberRaised(Variant::ErrorValue(5), pattern), 13);
  }
  EXPECT_EQ(NumberRaised(std::numeric_limits<double>::infinity(), u"0"), 6);
}

TEST(NumberPatternTest, TheMaskOfAmounts) {
  constexpr TextView kMask = u"000,000,000,000,000,000.00000";
  const Case cases[] = {
      {0.4, kMask, u"000,000,000,000,000,000.40000"},
      {1.999999, kMask, u"000,000,000,000,000,002.00000"},
      {2500000.0, kMask, u"000,000,000,002,500,000.00000"},
      {123456789012345.0, kMask, u"000,123,456,789,012,345.00000"},
      {999999999999999999.0, kMask, u"1,000,000,000,000,000,000.00000"},
      {1e18, kMask, u"1,000,000,000,000,000,000.00000"},
      {1.5e21, kMask, u"1,500,000,000,000,000,000,000.00000"},
  };
  ExpectFormats(cases);
  const Text largest = Format(std::numeric_limits<double>::max(), kMask);
  EXPECT_EQ(largest.size(), 309u + 102u + 6u);
  EXPECT_TRUE(largest.starts_with(u"179,769,313,486,232,000"));
}

TEST(NumberPatternTest, WholeAmountsMatchTheirDigits) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const auto cents = static_cast<std::int64_t>(random() % 1'000'000'000'000);
    std::string expected = std::to_string(cents / 100);
    for (std::size_t at = expected.size(); at > 3; at -= 3) expected.insert(at - 3, ",");
    expected += "." + std::to_string(100 + cents % 100).substr(1);
    ASSERT_EQ(ToUtf8(Format(static_cast<double>(cents) / 100, u"#,##0.00")), expected);
    ASSERT_EQ(ToUtf8(Format(Currency{cents * 100}, u"#,##0.00")), expected);
  }
}

TEST(DatePatternTest, TheWeekOfEveryDayBeginsOnSundayAndIn1January) {
  int week = 0;
  for (double day = 36526; day < 36526 + 366 * 28; ++day) {  // every kind of year
    const Date date{day};
    if (DayOfYear(date) == 1)
      week = 1;
    else if (Weekday(date) == 1)
      ++week;
    ASSERT_EQ(ToUtf8(Format(date, u"ww")), std::to_string(week)) << day;
  }
}

TEST(PatternTest, FarMorePatternsThanAreRemembered) {
  for (int round = 0; round < 2; ++round)
    for (int i = 0; i < 2000; ++i) {
      const std::string name = std::to_string(i);
      Text pattern = u"\"";
      pattern.append(name.begin(), name.end());
      ASSERT_EQ(ToUtf8(Format(1.5, pattern + u":\"0.0")), name + ":1.5");
    }
}

TEST(PatternTest, ThreadsShareNothing) {
  const auto work = [] {
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(Format(i + 0.5, u"0.0"), Format(i + 0.5, u"#0.0"));
  };
  std::thread other(work);
  work();
  other.join();
}

// In a thread of its own, which remembers no pattern.
TEST(PatternTest, UnderAnotherLocale) {
  const Locale before = CurrentLocale();
  Locale locale;
  locale.decimal_separator = u',';
  locale.thousands_separator = u'.';
  locale.date_separator = u'-';
  locale.time_separator = u'.';
  locale.currency_symbol = u"Bs.";
  locale.true_text = u"Sí";
  locale.false_text = u"No";
  locale.morning = u"mañana";
  locale.afternoon = u"tarde";
  locale.short_date = u"yyyy/mm/dd";
  locale.long_date = u"mmmm d";
  locale.long_time = u"h:nn";
  locale.short_time = u"hh:n";
  locale.months[1] = u"FEBRERO";
  locale.short_months[1] = u"FB";
  locale.days[1] = u"LUNES";
  locale.short_days[1] = u"LU";
  SetLocale(locale);
  const Case cases[] = {
      {1234.5, u"#,##0.00", u"1.234,50"},
      {-1234567.0, u"0.00E+00", u"-1,23E+06"},
      {0.5, u"#.0#", u",5"},
      {1234.5, u"Currency", u"Bs.1.234,50"},
      {1.0, u"True/False", u"Sí"},
      {0.0, u"True/False", u"No"},
      {kAfternoon, u"dd/mm/yy", u"05-02-24"},
      {kAfternoon, u"hh:nn:ss", u"14.03.09"},
      {kAfternoon, u"h:m", u"14.3"},
      {kAfternoon, u"mmmm mmm dddd ddd", u"FEBRERO FB LUNES LU"},
      {kAfternoon, u"h AMPM", u"2 tarde"},
      {Variant(MakeDate({2024, 2, 5}, {2, 3, 9})), u"h AMPM", u"2 mañana"},
      {kAfternoon, u"h AM/PM", u"2 PM"},
      {kAfternoon, u"c", u"2024-02-05 14.03"},
      {kAfternoon, u"dddddd", u"FEBRERO 5"},
      {kAfternoon, u"Short Time", u"14.3"},
      {kAfternoon, u"ttttt", u"14.03"},
  };
  std::thread([&cases] { ExpectFormats(cases); }).join();
  SetLocale(before);
}

// Each thread leaves what it remembers behind it, and formats on while another ends.
TEST(PatternTest, ThreadsEndOneAfterAnother) {
  const auto work = [](int number) {
    const Text digits(static_cast<std::size_t>(number % 7 + 1), u'0');
    for (int i = 0; i < 100; ++i)
      ASSERT_EQ(Format(0.0, digits + u'.' + Text(static_cast<std::size_t>(i), u'0')).size(),
                digits.size() + 1 + static_cast<std::size_t>(i));
  };
  std::thread before(work, 0);
  for (int number = 1; number < 50; ++number) {
    std::thread next(work, number);
    before.join();
    before.swap(next);
  }
  before.join();
  work(0);
}

TEST(PatternTest, LongPatternsAreReadOnce) {
  constexpr std::size_t kLength = 1 << 18;  // anything quadratic would take minutes
  const Variant values[] = {-1234.5, kAfternoon, u"texto", kNull};
  for (const char16_t c : TextView(u"0#.,%E\\\"dmyqwhnsctaA/:@&<>!;x-$+ "))
    for (const Variant& value : values) EXPECT_EQ(NumberRaised(value, Text(kLength, c)), 0);
  EXPECT_EQ(Format(5.0, Text(kLength, u'0')), Text(kLength - 1, u'0') + u'5');
}

TEST(PatternTest, RandomPatternsNeverFailOtherwiseThanByAnError) {
  std::mt19937 random(11);
  constexpr TextView kAlphabet = u"00##..,,%Ee+-\\\"dmyqwhnsctaAPpM/:@&<>!;x $";
  const Variant values[] = {-1234.5678, 1e300, 0.0, kAfternoon, u"12/5/2024", u"5", u"", kNull};
  for (int i = 0; i < 50000; ++i) {
    Text pattern;
    for (std::size_t length = random() % 12; length > 0; --length)
      pattern += kAlphabet[random() % kAlphabet.size()];
    for (const Variant& value : values) {
      const std::int32_t raised = NumberRaised(value, pattern);
      ASSERT_TRUE(raised == 0 || raised == 6) << ToUtf8(pattern);
    }
  }
}

}  // namespace
}  // namespace tovalin
