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
