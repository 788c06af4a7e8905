#include "formatting/dias360.h"

#include <algorithm>

#include "frame/value/calendar.h"

namespace tovalin {
namespace {

/// The day count on a calendar whose months all have 30 days. It grows with the
/// date, so that a difference in the wrong order is the negative of the right one.
std::int32_t CommercialDay(Date date) {
  const auto [year, month, day] = DateOf(date);
  const bool ends_february = month == 2 && day == DaysInMonth(year, month);
  return 360 * year + 30 * month + (ends_february ? 30 : std::min(day, 30));
}

}  // namespace

std::int32_t Dias360(Date vInicial, Date vFin) {
  return CommercialDay(vFin) - CommercialDay(vInicial);
}

}  // namespace tovalin
