#pragma once

#include <cstdint>
#include <utility>

#include "tovalin/api.h"
#include "tovalin/clock.h"
#include "tovalin/collection.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

/// Month bounds, dates for query texts, day numbers, leap years, names of days
/// and months, the 360-day count, and spelled-out differences and durations.
///
/// Every member raises 13 for a value that does not read as a date where one is
/// needed, 6 for a number that is too large for one, and 5 for a Date outside the
/// years 100 to 9999. No member changes the arguments that it takes by reference.
class TOVALIN_API LibFecha : public Object {
 public:
  static constexpr TextView kClassName = u"LibFecha";

  /// Tells the date and time at each call.
  using Clock = HostClock::Function;

  LibFecha();
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// For C++ hosts: puts another clock in the place of the system's local time; an empty one
  /// brings the system's back. Only the current year matters, to MesesDelAno.
  void UseClock(Clock clock) { clock_.Use(std::move(clock)); }

  /// The first day of the month of `vbdate`, without time. A value that is no
  /// date and does not read as one comes back as it is.
  Variant MonthBegin(Variant& vbdate) const;

  /// The difference between two dates in calendar years, months and days,
  /// whichever is the earlier; the time of day does not count. A month is
  /// complete on the same day of the next month, or on its last day when it is
  /// shorter. Example: from 15/01/2022 to 18/03/2023 "1 Año 2 Meses y 3 Días".
  Text DateDiffStr(const Variant& vvarFechaIni, const Variant& vvarFechaFin) const;

  /// The last day of the month of `vbdate`, without time. A value that is no date
  /// and does not read as one comes back as it is.
  Variant MonthEnd(const Variant& vbdate) const;

  /// The date under the pattern `vstrFormat` between single quotes, as a query
  /// text takes it. A number is a day count.
  /// Example: 5 February 2024 under "dd/mm/yyyy" gives "'05/02/2024'".
  Text cdbDate(const Variant& vFecha, const Text& vstrFormat) const;

  /// Days from `vInicial` to `vFin` in years of 12 months of 30 days; negative
  /// when `vFin` is the earlier. Day 31 and the last day of February count as
  /// day 30. Example: from 28/02/2023 to 01/03/2023 there is 1 day.
  std::int32_t Dias360(Date vInicial, Date vFin) const;

  /// Seven texts under the keys "K1" to "K7", the same Collection at every call.
  /// All seven are the short name of Monday in the locale.
  Ref<Collection> DiasSemana();

  /// The names of the twelve months in the locale under the keys "K1" to "K12",
  /// the same Collection at every call.
  Ref<Collection> MesesDelAno();

  /// The year and the day of the year in three digits, as one number.
  /// Example: 5 February 2024 gives 2024036.
  std::int32_t Date2Julian(Date vDate) const;

  /// Whether February of `TestYear` has 29 days. Years 0 to 29 stand for 2000 to
  /// 2029, 30 to 99 for 1930 to 1999; any other below 100 or beyond 9999 raises 5.
  bool IsLeapYear(std::int16_t& TestYear) const;

  /// A number of seconds as text: "1d 02h:03m:04s" when `UpFormat` is 0, else
  /// "1 day, 2 hrs 3 mins 4 secs". The short form leaves out the units of zero
  /// before the first that counts, the long form all of them; no seconds at all
  /// are "00s" and "0 secs". Negative seconds get a "-" in front.
  Text Duration(std::int32_t& TotalSeconds, std::int16_t& UpFormat) const;

 private:
  HostClock clock_;
  Ref<Collection> days_;
  Ref<Collection> months_;
};

}  // namespace tovalin
