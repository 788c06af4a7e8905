#include "frame/patterns.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <thread>

#include "frame/calendar.h"
#include "frame/date_text.h"

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

TEST(NumberPatternTest, Placeholders) {
  const Case cases[] = {
      {1234.5, u"0", u"1235"},
      {1234.5, u"0.00", u"1234.50"},
      {1234.5, u"#,##0.00", u"1,234.50"},
      {0.0, u"#,##0.00", u"0.00"},
      {0.0, u"#", u""},
      {0.0, u"#.##", u"."},
      {5.0, u"0.##", u"5."},
      {0.5, u"#.##", u".5"},
      {0.5, u".00", u".50"},
      {1234.5, u".00", u"1234.50"},
      {7.0, u"000", u"007"},
      {7.0, u"0##", u"007"},
      {12345.0, u"000", u"12345"},
      {1234567.0, u"#,#", u"1,234,567"},
      {7.0, u"0,000", u"0,007"},
      {1.5, u"0.0#0#", u"1.500"},
      {1234567.0, u"#,##0,", u"1,235"},
      {1234567.0, u"0,,.00", u"1.23"},
      {1234567890.0, u"#,##0,,", u"1,235"},
      {1499.0, u"0,", u"1"},
      {1234.0, u",0", u"1234"},
      {0.256, u"0.0%", u"25.6%"},
      {0.256, u"%0", u"%26"},
      {5551234567.0, u"(###) ###-####", u"(555) 123-4567"},
      {1234567.0, u"(###) ###-####", u"() 123-4567"},
      {15555551234567.0, u"(###) ###-####", u"(1555555) 123-4567"},
      {5.0, u"0.0.0", u"5.0.0"},
      {5.0, u"$ 0.00 kg", u"$ 5.00 kg"},
      {5.0, u"0 \\d\\e \"m #\"", u"5 de m #"},
      {5.0, u"0\"abierto", u"5abierto"},
      {5.0, u"0\\", u"5\\"},
      {5.0, u"\"solo texto\"", u"solo texto"},
  };
  ExpectFormats(cases);
}

TEST(NumberPatternTest, RoundsTheDecimalTextHalvesAwayFromZero) {
  const Case cases[] = {
      {2.675, u"0.00", u"2.68"},
      {1.005, u"0.00", u"1.01"},
      {-2.675, u"0.00", u"-2.68"},
      {0.5, u"0", u"1"},
      {2.5, u"0", u"3"},
      {-0.5, u"0", u"-1"},
      {0.4999, u"0", u"0"},
      {99.995, u"0.00", u"100.00"},
      {999.5, u"#,##0", u"1,000"},
      {0.05, u"0.0", u"0.1"},
      {0.049, u"0.0", u"0.0"},
      {0.0049, u"#.##", u"."},
      {0.1 + 0.2, u"0.00000000000000000000", u"0.30000000000000000000"},
      {2.675F, u"0.00", u"2.68"},
      {0.1F, u"0.0000000000", u"0.1000000000"},
      {Currency{26750}, u"0.00", u"2.68"},
      {Currency{-9223372036854775807 - 1}, u"#,##0.0000", u"-922,337,203,685,477.5808"},
      {Currency{9223372036854775807}, u"0.000", u"922337203685477.581"},
      {u"2.675", u"0.00", u"2.68"},
      {-0.001, u"0.00", u"-0.00"},
      {-0.0, u"0.00", u"0.00"},
  };
  ExpectFormats(cases);
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

TEST(NumberPatternTest, Scientific) {
  const Case cases[] = {
      {12345.678, u"0.00E+00", u"1.23E+04"},
      {12345.678, u"0.00E-00", u"1.23E04"},
      {0.00012, u"0.00e-0", u"1.20e-4"},
      {0.00012, u"0.00e+0", u"1.20e-4"},
      {0.0, u"0.00E+00", u"0.00E+00"},
      {12345.0, u"##0.0E+0", u"123.5E+2"},
      {9.999, u"0.00E+00", u"1.00E+01"},
      {-1e300, u"0.###E+0", u"-1.E+300"},
      {5e-324, u"0.0E+000", u"4.9E-324"},
      {5.0, u"0E", u"5E"},
      {5.0, u"0E+", u"5E+"},
      {1234.5, u"0.0##E+##", u"1.235E+3"},
  };
  ExpectFormats(cases);
}

TEST(NumberPatternTest, Sections) {
  const Case cases[] = {
      {-5.0, u"0.00", u"-5.00"},
      {-5.0, u"$#,##0", u"-$5"},
      {-5.0, u"0;(0)", u"(5)"},
      {5.0, u"0;(0)", u"5"},
      {0.0, u"0;(0)", u"0"},
      {0.0, u"0;(0);\\c\\e\\r\\o", u"cero"},
      {-5.0, u"$0;;\\Z", u"-$5"},
      {0.0, u"0.0;-0.0;", u"0.0"},
      {0.001, u"0.0;-0.0;\\Z", u"0.0"},
      {kNull, u"0;0;0;\"nulo\"", u"nulo"},
      {kNull, u"0;0;0;00", u"00"},
      {kNull, u"0.00", u""},
      {Variant(), u"0.00", u"0.00"},
      {Variant(), u"0;0;\"cero\"", u"cero"},
      {Variant(), u"0;0;\"cero\";\"nada\"", u"nada"},
      {5.0, u"0\";\";(0)", u"5;"},
      {5.0, u"0;1;2;3;4;5", u"5"},
      {5.0, u";0", u""},
  };
  ExpectFormats(cases);
}

TEST(NumberPatternTest, ValuesOfOtherKinds) {
  const Case cases[] = {
      {std::int16_t{-32768}, u"#,##0", u"-32,768"},
      {std::int32_t{-2147483647 - 1}, u"0", u"-2147483648"},
      {std::uint8_t{200}, u"0.0", u"200.0"},
      {true, u"0", u"-1"},
      {Date{45292.75}, u"0.00", u"45292.75"},
      {u"1,234.5", u"0.00", u"1234.50"},
      {u"abc", u"0.00", u"abc"},
      {u"", u"0.00", u""},
      {1234.5, u"", u"1234.5"},
      {kNull, u"", u""},
      {true, u"", u"Verdadero"},
      {Date{1}, u"", u"31/12/1899"},
  };
  ExpectFormats(cases);
  EXPECT_EQ(NumberRaised(Variant(Ref<Object>()), u"0"), 13);
  EXPECT_EQ(NumberRaised(Variant::ErrorValue(5), u"0"), 13);
  EXPECT_EQ(NumberRaised(std::numeric_limits<double>::infinity(), u"0"), 6);
}

TEST(DatePatternTest, Tokens) {
  const Case cases[] = {
      {kAfternoon, u"d dd ddd dddd", u"5 05 lun lunes"},
      {kAfternoon, u"m mm mmm mmmm", u"2 02 feb febrero"},
      {kAfternoon, u"y yy yyyy", u"36 24 2024"},
      {kAfternoon, u"q w ww", u"1 2 6"},
      {kAfternoon, u"h hh n nn s ss", u"14 14 3 03 9 09"},
      {kAfternoon, u"h:nn AM/PM", u"2:03 PM"},
      {kAfternoon, u"h am/pm", u"2 pm"},
      {kAfternoon, u"hA/P", u"2P"},
      {kAfternoon, u"ha/p", u"2p"},
      {kAfternoon, u"hh:nn AMPM", u"02:03 p. m."},
      {Date{0.01}, u"hh:nn ampm", u"12:14 a. m."},
      {kAfternoon, u"ddddd", u"05/02/2024"},
      {kAfternoon, u"dddddd", u"lunes, 5 de febrero de 2024"},
      {kAfternoon, u"ttttt", u"14:03:09"},
      {kAfternoon, u"c", u"05/02/2024 14:03:09"},
      {Date{45292}, u"\\[c\\]", u"[01/01/2024]"},
      {Date{0.5}, u"\"a\"c\"b\"", u"a12:00:00b"},
      {kAfternoon, u"DD/MM/YYYY", u"05/02/2024"},
      {kAfternoon, u"yyyymmdd", u"20240205"},
      {kAfternoon, u"dd-mmm-yy", u"05-feb-24"},
      {kAfternoon, u"hh:mm:ss", u"14:03:09"},
      {kAfternoon, u"hh 'h' mm", u"14 '14' 03"},
      {kAfternoon, u"hh \"h\" mm", u"14 h 03"},
      {kAfternoon, u"dd/mm/yyyy hh:mm mm", u"05/02/2024 14:03 02"},
      {kAfternoon, u"d \"de\" mmmm \"de\" yyyy", u"5 de febrero de 2024"},
      {kAfternoon, u"yyyy-mm-dd hh.nn.ss 00", u"2024-02-05 14.03.09 00"},
      {kAfternoon, u"tt", u"tt"},
      {Date{-1.25}, u"dd/mm/yyyy hh:nn", u"29/12/1899 06:00"},
      {Date{-657434}, u"yyyy yy", u"0100 00"},
      {Date{2}, u"ddd", u"lun"},
  };
  ExpectFormats(cases);
}

TEST(DatePatternTest, ValuesOfOtherKinds) {
  const Case cases[] = {
      {45292.0, u"dd/mm/yyyy", u"01/01/2024"},
      {std::int32_t{45292}, u"yyyy", u"2024"},
      {u"45292", u"dd/mm/yyyy", u"01/01/2024"},
      {u"2024-02-05", u"dd/mm/yyyy", u"05/02/2024"},
      {u"no es fecha", u"dd/mm/yyyy", u"no es fecha"},
      {kNull, u"dd/mm/yyyy", u""},
      {Variant(), u"dd/mm/yyyy", u"30/12/1899"},
  };
  ExpectFormats(cases);
  EXPECT_EQ(NumberRaised(1e10, u"dd/mm/yyyy"), 6);
  EXPECT_EQ(NumberRaised(Variant(Ref<Object>()), u"dd/mm/yyyy"), 13);
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

TEST(TextPatternTest, Tokens) {
  const Case cases[] = {
      {u"abc", u"@@@@@", u"  abc"},
      {u"abc", u"!@@@@@", u"abc  "},
      {u"abc", u"&&&&&", u"abc"},
      {u"abc", u"&&@@@", u"abc"},
      {u"abcdef", u"@@@", u"abcdef"},
      {u"abcdef", u"@-@", u"abcde-f"},
      {u"abcdef", u"!@-@", u"a-bcdef"},
      {u"8001972684", u"@@@.@@@.@@@-@", u"800.197.268-4"},
      {u"Ñandú", u">", u"ÑANDÚ"},
      {u"ÑANDÚ", u"<", u"ñandú"},
      {u"Ana", u"<@@@@", u" ana"},
      {std::int16_t{42}, u"@@@@", u"  42"},
      {kAfternoon, u"@", u"05/02/2024 14:03:09"},
      {u"", u"@@;\"vacío\"", u"vacío"},
      {kNull, u"@@;\"vacío\"", u"vacío"},
      {kNull, u"@@", u""},
      {u"", u"@@", u"  "},
      {u"abc", u"\\@@@@", u"@abc"},
  };
  ExpectFormats(cases);
}

TEST(NamedFormatTest, EnglishAndSpanishNames) {
  const Case cases[] = {
      {1234567.891, u"General Number", u"1234567.891"},
      {true, u"número general", u"-1"},
      {Date{45292.75}, u"General Number", u"45292.75"},
      {u"007", u"General Number", u"7"},
      {u"x7", u"General Number", u"x7"},
      {-1234.5, u"Currency", u"-$1,234.50"},
      {1234.5, u"Moneda", u"$1,234.50"},
      {0.5, u"Fixed", u"0.50"},
      {0.5, u"FIJO", u"0.50"},
      {1234.5, u"Standard", u"1,234.50"},
      {1234.5, u"estándar", u"1,234.50"},
      {1234.5, u"Estandar", u"1,234.50"},
      {0.1234, u"Percent", u"12.34%"},
      {0.1234, u"Porcentaje", u"12.34%"},
      {1234.5, u"Scientific", u"1.23E+03"},
      {1234.5, u"Científico", u"1.23E+03"},
      {5.0, u"Yes/No", u"Sí"},
      {0.0, u"sí/no", u"No"},
      {true, u"True/False", u"Verdadero"},
      {0.0, u"Verdadero/Falso", u"Falso"},
      {-1.0, u"On/Off", u"Activado"},
      {0.0, u"Activado/Desactivado", u"Desactivado"},
      {kAfternoon, u"General Date", u"05/02/2024 14:03:09"},
      {5.5, u"Fecha general", u"04/01/1900 12:00:00"},
      {kAfternoon, u"Long Date", u"lunes, 5 de febrero de 2024"},
      {kAfternoon, u"Fecha larga", u"lunes, 5 de febrero de 2024"},
      {kAfternoon, u"Medium Date", u"05-feb-24"},
      {kAfternoon, u"fecha mediana", u"05-feb-24"},
      {kAfternoon, u"Short Date", u"05/02/2024"},
      {kAfternoon, u"FECHA CORTA", u"05/02/2024"},
      {kAfternoon, u"Long Time", u"14:03:09"},
      {kAfternoon, u"Hora larga", u"14:03:09"},
      {kAfternoon, u"Medium Time", u"02:03 p. m."},
      {kAfternoon, u"Hora mediana", u"02:03 p. m."},
      {kAfternoon, u"Short Time", u"14:03"},
      {kAfternoon, u"Hora corta", u"14:03"},
      {kNull, u"Standard", u""},
      {kNull, u"General Number", u""},
  };
  ExpectFormats(cases);
}

TEST(PatternTest, TheFirstTellingCharacterDecidesTheKind) {
  const Case cases[] = {
      {5.0, u"0 d", u"5 d"},    {kAfternoon, u"dd.mm.yyyy", u"05.02.2024"},
      {5.0, u"> 0", u"> 5"},    {5.0, u": 0.0", u": 5.0"},
      {u"ab", u"@ 0", u"ab 0"}, {5.0, u"\"d\" 0", u"d 5"},
  };
  ExpectFormats(cases);
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

TEST(PatternTest, LongPatternsAreWalkedOnce) {
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
