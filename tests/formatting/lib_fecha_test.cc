#include "tovalin/lib_fecha.h"

#include <gtest/gtest.h>

#include <array>

#include "chrono_dates.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

using namespace std::chrono;

/// The number of the error that `call` raises, 0 when it raises none.
template <class Call>
std::int32_t Raised(Call call) {
  try {
    call();
  } catch (const Error& error) {
    return error.number;
  }
  return 0;
}

TEST(LibFecha, EveryMonthOfFourHundredYears) {
  const LibFecha fecha;
  for (year y = 1800y; y < 2200y; ++y) {
    std::int16_t number = static_cast<std::int16_t>(static_cast<int>(y));
    ASSERT_EQ(fecha.IsLeapYear(number), y.is_leap()) << number;
    for (unsigned m = 1; m <= 12; ++m) {
      const Date first = DayCount(y / month(m) / 1);
      const Date last = DayCount(year_month_day(y / month(m) / std::chrono::last));
      const Date before = DayCount(y / January / 1);
      const int day_of_year = static_cast<int>(last.days - before.days) + 1;
      ASSERT_EQ(fecha.Date2Julian(last), number * 1000 + day_of_year) << last.days;
      for (double days : {first.days, first.days + 13, last.days}) {
        // Before day 0 the time is counted forward from midnight all the same.
        for (double time : {0.0, 0.75}) {
          Variant date(Date{days < 0 ? days - time : days + time});
          ASSERT_EQ(fecha.MonthBegin(date).AsDate(), first) << days;
          ASSERT_EQ(fecha.MonthEnd(date).AsDate(), last) << days;
        }
      }
    }
  }
}

TEST(LibFecha, MonthBoundsAtTheEndsOfTheCalendar) {
  const LibFecha fecha;
  Variant first(DayCount(100, 1, 1));
  Variant last(DayCount(9999, 12, 31));
  EXPECT_EQ(fecha.MonthBegin(first).AsDate(), DayCount(100, 1, 1));
  EXPECT_EQ(fecha.MonthEnd(last).AsDate(), DayCount(9999, 12, 31));
}

TEST(LibFecha, MonthBoundsOfOtherValues) {
  const LibFecha fecha;
  Variant text(u"15/12/2023");
  EXPECT_EQ(fecha.MonthBegin(text).AsDate(), DayCount(2023, 12, 1));
  EXPECT_EQ(fecha.MonthEnd(text).AsDate(), DayCount(2023, 12, 31));
  EXPECT_EQ(ToUtf8(text.AsText()), "15/12/2023");
  Variant phrase(u"fin de mes");
  EXPECT_EQ(ToUtf8(fecha.MonthBegin(phrase).AsText()), "fin de mes");
  EXPECT_EQ(ToUtf8(fecha.MonthEnd(phrase).AsText()), "fin de mes");
  Variant number(45000.5);
  EXPECT_EQ(fecha.MonthBegin(number).AsDouble(), 45000.5);
  Variant null = Variant::Null();
  EXPECT_TRUE(fecha.MonthBegin(null).Is(Subtype::Null));
  EXPECT_TRUE(fecha.MonthEnd(null).Is(Subtype::Null));
}

TEST(LibFecha, CdbDate) {
  const LibFecha fecha;
  const Date date = DayCount(2024, 2, 5);
  struct Case {
    Variant value;
    const char16_t* pattern;
    const char* text;
  };
  const Case kCases[] = {
      {date, u"dd/mm/yyyy", "'05/02/2024'"},
      {u"5/2/2024", u"yyyymmdd", "'20240205'"},
      {date.days, u"yyyy-mm-dd", "'2024-02-05'"},
      {std::int32_t{2}, u"dd/mm/yyyy", "'01/01/1900'"},
      {Date{date.days + 0.75}, u"dd/mm/yyyy hh:nn", "'05/02/2024 18:00'"},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(ToUtf8(fecha.cdbDate(c.value, c.pattern)), c.text) << c.text;
  EXPECT_EQ(Raised([&] { fecha.cdbDate(u"mañana", u"dd/mm/yyyy"); }), 13);
  EXPECT_EQ(Raised([&] { fecha.cdbDate(1e9, u"dd/mm/yyyy"); }), 6);
}

TEST(LibFecha, Date2JulianPadsTheDay) {
  const LibFecha fecha;
  EXPECT_EQ(fecha.Date2Julian(DayCount(2024, 2, 5)), 2024036);
  EXPECT_EQ(fecha.Date2Julian(Date{DayCount(2024, 12, 31).days + 0.999}), 2024366);
  EXPECT_EQ(fecha.Date2Julian(DayCount(100, 1, 1)), 100001);
  EXPECT_EQ(Raised([&] { fecha.Date2Julian(Date{1e9}); }), 5);
}

TEST(LibFecha, LeapYears) {
  const LibFecha fecha;
  struct Case {
    std::int16_t year;
    bool leap;
  };
  for (const auto& [year, leap] : {Case{1900, false},
                                   {2000, true},
                                   {2024, true},
                                   {0, true},
                                   {24, true},
                                   {30, false},
                                   {96, true},
                                   {9996, true}}) {
    std::int16_t number = year;
    EXPECT_EQ(fecha.IsLeapYear(number), leap) << year;
  }
  for (std::int16_t year : {std::int16_t{-4}, std::int16_t{10000}, std::int16_t{32767}})
    EXPECT_EQ(Raised([&] { fecha.IsLeapYear(year); }), 5) << year;
}

std::string Joined(const Collection& collection) {
  std::string joined;
  for (const Variant& item : collection) joined += ToUtf8(item.AsText()) + " ";
  return joined;
}

TEST(LibFecha, NameLists) {
  LibFecha fecha;
  const Ref<Collection> days = fecha.DiasSemana();
  EXPECT_EQ(Joined(*days), "lun lun lun lun lun lun lun ");
  EXPECT_EQ(fecha.DiasSemana(), days);
  EXPECT_EQ(days->Count(), 7);
  EXPECT_EQ(ToUtf8(days->Item(u"k7").AsText()), "lun");
  const Ref<Collection> months = fecha.MesesDelAno();
  EXPECT_EQ(Joined(*months),
            "enero febrero marzo abril mayo junio julio agosto septiembre octubre noviembre "
            "diciembre ");
  EXPECT_EQ(fecha.MesesDelAno(), months);
  EXPECT_EQ(months->Count(), 12);
  EXPECT_EQ(ToUtf8(months->Item(u"K12").AsText()), "diciembre");
}

TEST(LibFecha, ClockOutsideTheCalendarLeavesNoNames) {
  LibFecha fecha;
  fecha.UseClock([] { return Date{1e9}; });
  EXPECT_EQ(Raised([&] { fecha.MesesDelAno(); }), 5);
  fecha.UseClock([] { return DayCount(2024, 2, 29); });
  EXPECT_EQ(fecha.MesesDelAno()->Count(), 12);
}

TEST(LibFecha, SurvivesAClockThatDropsIt) {
  auto fecha = Make<LibFecha>();
  fecha->UseClock([&fecha, moment = DayCount(2024, 2, 29)] {
    const Date now = moment;
    fecha->UseClock(nullptr);
    EXPECT_EQ(fecha->MesesDelAno()->Count(), 12);
    fecha = nullptr;
    return now;
  });
  LibFecha& target = *fecha;
  EXPECT_EQ(target.MesesDelAno()->Count(), 12);
  EXPECT_FALSE(fecha);
}

TEST(LibFecha, DateTextsOfValues) {
  const LibFecha fecha;
  EXPECT_EQ(ToUtf8(fecha.DateDiffStr(u"15/01/2022", DayCount(2023, 3, 18))),
            "1 Año 2 Meses y 3 Días");
  EXPECT_EQ(Raised([&] { fecha.DateDiffStr(u"hoy", Date{0}); }), 13);
  std::int32_t seconds = 93784;
  for (std::int16_t form : {std::int16_t{0}, std::int16_t{1}, std::int16_t{-1}})
    EXPECT_EQ(ToUtf8(fecha.Duration(seconds, form)),
              form == 0 ? "1d 02h:03m:04s" : "1 day, 2 hrs 3 mins 4 secs");
}

TEST(LibFecha, AnswersLateBound) {
  const auto fecha = Make<LibFecha>();
  Variant date(u"29/02/2024");
  std::array<Variant, 1> month = {Variant::ByReference(date)};
  Variant result;
  ASSERT_FALSE(fecha->Invoke(u"MonthBegin", MemberKind::Method, month, result));
  EXPECT_EQ(result.AsDate(), DayCount(2024, 2, 1));
  EXPECT_EQ(ToUtf8(date.AsText()), "29/02/2024");
  std::array<Variant, 2> period = {Variant(u"28/02/2023"), Variant(u"01/03/2023")};
  ASSERT_FALSE(fecha->Invoke(u"DIAS360", MemberKind::Method, period, result));
  EXPECT_EQ(result.AsLong(), 1);
  std::array<Variant, 1> year = {Variant(70000.0)};
  const auto error = fecha->Invoke(u"IsLeapYear", MemberKind::Method, year, result);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 6);
}

}  // namespace
}  // namespace tovalin
