#include "formatting/date_difference.h"

#include <algorithm>
#include <array>

#include "frame/value/calendar.h"
#include "frame/value/number_text.h"

namespace tovalin {
namespace {

struct UnitWords {
  TextView one;
  TextView many;
};

constexpr std::array<UnitWords, 3> kUnits = {
    {{u" Año", u" Años"}, {u" Mes", u" Meses"}, {u" Día", u" Días"}}};

struct Difference {
  int months;
  int days;
};

int DaysBetween(const CivilDate& first, const CivilDate& last) {
  return static_cast<int>(DateSerial(last.year, last.month, last.day).days -
                          DateSerial(first.year, first.month, first.day).days);
}

/// Complete months from the earlier date, then the days that are left. A month
/// that has no such day ends on its last day, as when months are added to a date.
Difference Between(const CivilDate& first, const CivilDate& last) {
  CivilDate reached = last;
  reached.day = std::min(first.day, DaysInMonth(last.year, last.month));
  if (reached.day > last.day) {
    reached.month = last.month > 1 ? last.month - 1 : 12;
    reached.year = last.month > 1 ? last.year : last.year - 1;
    reached.day = std::min(first.day, DaysInMonth(reached.year, reached.month));
  }
  return {(reached.year - first.year) * 12 + reached.month - first.month,
          DaysBetween(reached, last)};
}

}  // namespace

Text DateDifferenceText(Date one, Date other) {
  CivilDate first = DateOf(one);
  CivilDate last = DateOf(other);
  if (DaysBetween(first, last) < 0) std::swap(first, last);
  const Difference difference = Between(first, last);
  const std::array<int, 3> counts = {difference.months / 12, difference.months % 12,
                                     difference.days};
  auto pieces_left = std::ranges::count_if(counts, [](int count) { return count != 0; });
  if (pieces_left == 0) return u"0 Días";
  Text text;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] == 0) continue;
    if (!text.empty()) text += pieces_left == 1 ? u" y " : u" ";
    AppendNumber(text, std::int64_t{counts[i]});
    text += counts[i] == 1 ? kUnits[i].one : kUnits[i].many;
    --pieces_left;
  }
  return text;
}

}  // namespace tovalin
