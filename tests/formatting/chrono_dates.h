#pragma once

#include <chrono>

#include "tovalin/variant.h"

namespace tovalin {

/// The day count of a date, from the standard library's calendar.
inline Date DayCount(std::chrono::year_month_day date) {
  using namespace std::chrono;
  const sys_days day_zero = 1899y / December / 30;
  return Date{static_cast<double>((sys_days(date) - day_zero).count())};
}

inline Date DayCount(int year, unsigned month, unsigned day) {
  return DayCount(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day));
}

}  // namespace tovalin
