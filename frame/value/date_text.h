#pragma once

#include <optional>

#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

/// The date that a whole text reads as: "15/02/2024 14:30", "2024-02-15",
/// "15 feb 2024", "jueves, 15 de febrero de 2024", "febrero 15, 2024",
/// "feb 2024" (its first day), "2:30 p. m." (a time of day 0).
///
/// Numbers are day, month, year, or year first when the first one can only be a
/// year; a day and a month that fit only exchanged are exchanged. Years of two
/// digits are FullYear's; others run from 100 to 9999. Names of months and days
/// are the locale's, Spanish or English ones, in any case. A date always tells
/// its year: "15/02" is none, nor is a number alone.
std::optional<Date> ReadDate(TextView text);

/// The ordinary text of a date: the locale's short date, its long time, or both
/// with a blank between. Day 0 shows its time alone, a midnight its day alone.
/// Raises 5 for a date outside of the calendar.
Text DateText(Date date);

}  // namespace tovalin
