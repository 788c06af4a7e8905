#include "frame/date_text.h"

#include <gtest/gtest.h>

#include "frame/calendar.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

struct Reading {
  TextView text;
  CivilDate date;
  TimeOfDay time = {};
};

void ExpectReads(const Reading& each) {
  const std::optional<Date> date = ReadDate(each.text);
  ASSERT_TRUE(date.has_value()) << ToUtf8(each.text);
  EXPECT_EQ(*date, MakeDate(each.date, each.time)) << ToUtf8(each.text);
}

TEST(DateTextTest, ReadsDates) {
  const Reading cases[] = {
      {u"15/02/2024", {2024, 2, 15}}, {u"1/2/2024", {2024, 2, 1}},
      {u"15-2-24", {2024, 2, 15}},    {u"15.02.2024", {2024, 2, 15}},
      {u"15 02 2024", {2024, 2, 15}}, {u"  15 / 02 / 2024  ", {2024, 2, 15}},
      {u"2024-02-15", {2024, 2, 15}}, {u"2024/2/5", {2024, 2, 5}},
      {u"99-02-15", {1999, 2, 15}},   {u"02/15/2024", {2024, 2, 15}},
      {u"2024-15-02", {2024, 2, 15}}, {u"29/02/2024", {2024, 2, 29}},
      {u"1/1/00", {2000, 1, 1}},      {u"1/1/29", {2029, 1, 1}},
      {u"1/1/30", {1930, 1, 1}},      {u"1/1/99", {1999, 1, 1}},
      {u"1/1/100", {100, 1, 1}},      {u"31/12/9999", {9999, 12, 31}},
      {u"1/3/0100", {100, 3, 1}},     {u"02/2024", {2024, 2, 1}},
      {u"2024-02", {2024, 2, 1}},
  };
  for (const Reading& each : cases) ExpectReads(each);
}

TEST(DateTextTest, ReadsNamesOfMonthsAndDays) {
  const Reading cases[] = {
      {u"15 feb 2024", {2024, 2, 15}},
      {u"15 FEBRERO 2024", {2024, 2, 15}},
      {u"15-feb-24", {2024, 2, 15}},
      {u"15feb2024", {2024, 2, 15}},
      {u"febrero 15, 2024", {2024, 2, 15}},
      {u"Feb. 15, 2024", {2024, 2, 15}},
      {u"15.feb.2024", {2024, 2, 15}},
      {u"15 de febrero de 2024", {2024, 2, 15}},
      {u"15 de febrero del 2024", {2024, 2, 15}},
      {u"jueves, 15 de febrero de 2024", {2024, 2, 15}},
      {u"Thursday, February 15, 2024", {2024, 2, 15}},
      {u"SÁBADO 17 feb 2024", {2024, 2, 17}},
      {u"miercoles 14 feb 2024", {2024, 2, 14}},
      {u"2024 feb 15", {2024, 2, 15}},
      {u"feb 2024", {2024, 2, 1}},
      {u"febrero de 2024", {2024, 2, 1}},
      {u"1 ene 2024", {2024, 1, 1}},
      {u"1 January 2024", {2024, 1, 1}},
      {u"1 mar 2024", {2024, 3, 1}},
      {u"1 abr 2024", {2024, 4, 1}},
      {u"1 Apr 2024", {2024, 4, 1}},
      {u"1 ago 2024", {2024, 8, 1}},
      {u"1 aug 2024", {2024, 8, 1}},
      {u"1 setiembre 2024", {2024, 9, 1}},
      {u"1 sept. 2024", {2024, 9, 1}},
      {u"1 dic 2024", {2024, 12, 1}},
      {u"1 dec 2024", {2024, 12, 1}},
  };
  for (const Reading& each : cases) ExpectReads(each);
}

TEST(DateTextTest, ReadsTimes) {
  constexpr CivilDate kDayZero{1899, 12, 30};
  const Reading cases[] = {
      {u"14:30:15", kDayZero, {14, 30, 15}},
      {u"0:05", kDayZero, {0, 5, 0}},
      {u"2:30 PM", kDayZero, {14, 30, 0}},
      {u"2:30 p. m.", kDayZero, {14, 30, 0}},
      {u"2:30 p.m.", kDayZero, {14, 30, 0}},
      {u"2:30 p.\u00A0m.", kDayZero, {14, 30, 0}},
      {u"2:30pm", kDayZero, {14, 30, 0}},
      {u"2 a. m.", kDayZero, {2, 0, 0}},
      {u"2:30 a", kDayZero, {2, 30, 0}},
      {u"12:00 AM", kDayZero, {0, 0, 0}},
      {u"12:00 p.m.", kDayZero, {12, 0, 0}},
      {u"14:30 PM", kDayZero, {14, 30, 0}},
      {u"15/02/2024 14:30", {2024, 2, 15}, {14, 30, 0}},
      {u"15/02/2024, 2:30:05 p. m.", {2024, 2, 15}, {14, 30, 5}},
      {u"14:30 15/02/2024", {2024, 2, 15}, {14, 30, 0}},
      {u"2024-02-15T14:30:05", {2024, 2, 15}, {14, 30, 5}},
      {u"feb 2024 14:30", {2024, 2, 1}, {14, 30, 0}},
      {u"15 feb 2024 2 PM", {2024, 2, 15}, {14, 0, 0}},
      {u"1/1/1800 06:00", {1800, 1, 1}, {6, 0, 0}},
  };
  for (const Reading& each : cases) ExpectReads(each);
}

TEST(DateTextTest, TheLastBitIsThePlatforms) {
  EXPECT_EQ(ReadDate(u"14:30:15")->days, 0.6043402777777779);
  EXPECT_EQ(ReadDate(u"31/12/2023 14:30")->days, 45291.60416666667);
}

TEST(DateTextTest, RefusesWhatIsNoDate) {
  const TextView cases[] = {
      u"",
      u" ",
      u"12",
      u"1.5",
      u"-5",
      u"1,234.5",
      u"1.234,5",
      u"20240215",
      u"1e5",
      u"abc",
      u"29/02/2023",
      u"31/04/2024",
      u"0/1/2024",
      u"13/13/2024",
      u"32/1/2024",
      u"1/1/99999",
      u"1/1/0099",
      u"1/1/0000",
      u"0001-01-01",
      u"15/02",
      u"15 feb",
      u"feb",
      u"5 2024",
      u"12.2024",
      u"15/02/",
      u"/15/02/2024",
      u"15//02/2024",
      u"15/02-2024",
      u"15/02/2024/1",
      u"192.168.1.1",
      u"1/2/3/4",
      u"15 feb mar 2024",
      u"15 febr 2024",
      u"15 2024 feb",
      u"1,2,2024",
      u"15 de 2 de 2024",
      u"24:00",
      u"14:60",
      u"14:30:60",
      u"14:",
      u":30",
      u"14:30:15:10",
      u"13:00 am",
      u"25 pm",
      u"14:30 14:30",
      u"2:30 xm",
      u"15/02/2024T",
      u"15/02/2024 x",
      u"15/02/2024 14",
      u"lunes",
      u"15/02/2024 15/02/2024",
      u"800.197.268",
      u"１５/02/2024",
      u"15/02/2024\n",
  };
  for (const TextView text : cases) EXPECT_FALSE(ReadDate(text).has_value()) << ToUtf8(text);
}

TEST(DateTextTest, LongTextsAreGivenUpEarly) {
  EXPECT_FALSE(ReadDate(Text(1 << 20, u'1')));
  EXPECT_FALSE(ReadDate(Text(1 << 20, u'/')));
  EXPECT_FALSE(ReadDate(Text(1 << 20, u'a')));
  Text pairs;
  for (int i = 0; i < 100000; ++i) pairs += u"a ";
  EXPECT_FALSE(ReadDate(pairs));
  EXPECT_TRUE(ReadDate(Text(1 << 20, u' ') + u"15/02/2024"));
}

TEST(DateTextTest, ShowsTheDayTheTimeOrBoth) {
  const struct {
    double days;
    TextView text;
  } cases[] = {
      {1, u"31/12/1899"},
      {-1, u"29/12/1899"},
      {0, u"00:00:00"},
      {0.5, u"12:00:00"},
      {-0.5, u"12:00:00"},
      {-1.25, u"29/12/1899 06:00:00"},
      {45292.75, u"01/01/2024 18:00:00"},
      {45351.9999999, u"01/03/2024"},
      {-657434, u"01/01/0100"},
      {2958465.9999999, u"31/12/9999 23:59:59"},
  };
  for (const auto& each : cases) EXPECT_EQ(ToUtf8(DateText({each.days})), ToUtf8(each.text));
  EXPECT_THROW(DateText({2958466}), Error);
}

TEST(DateTextTest, EveryTextReadsBack) {
  for (double day = -657434; day <= 2958465; day += 997) {
    const Date date = MakeDate(DateOf({day}), {static_cast<int>(day + 657434) % 24, 7, 59});
    ASSERT_EQ(ReadDate(DateText(date)), date) << day;
  }
}

TEST(DateTextTest, TheDateTest) {
  EXPECT_TRUE(IsDate(Date{1}));
  EXPECT_TRUE(IsDate(u"15/02/2024"));
  EXPECT_FALSE(IsDate(u"15"));
  EXPECT_FALSE(IsDate(45292.0));
  EXPECT_FALSE(IsDate(Variant::Null()));
  EXPECT_FALSE(IsDate(Variant()));
}

}  // namespace
}  // namespace tovalin
