#pragma once

#include <cstdint>
#include <vector>

#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

/// What one step of a date pattern shows.
enum class DateToken : std::uint8_t {
  None,
  Literal,
  DateSeparator,
  TimeSeparator,
  Day,           // d
  Day2,          // dd
  DayShortName,  // ddd
  DayName,       // dddd
  ShortDate,     // ddddd
  LongDate,      // dddddd
  Month,
  Month2,
  MonthShortName,
  MonthName,
  Quarter,
  YearDay,  // y
  Year2,
  Year4,
  Weekday,  // w, Sunday is 1
  Week,     // ww, from 1 January, weeks begin on Sunday
  Hour,
  Hour2,
  Minute,
  Minute2,
  Second,
  Second2,
  LongTime,        // ttttt
  General,         // c
  UpperMeridiem,   // AM/PM
  LowerMeridiem,   // am/pm
  UpperInitial,    // A/P
  LowerInitial,    // a/p
  LocaleMeridiem,  // AMPM
  SkipUnlessDate,  // the next `length` steps are for values with a day
  SkipUnlessBoth,  // ... with a day and a time
  SkipUnlessTime,  // ... with a time, or with neither
};

/// A date pattern, ready to be applied. The compound tokens (ShortDate, LongDate,
/// LongTime, General) have been replaced by the steps of the locale's patterns.
struct DatePattern {
  struct Step {
    DateToken token;
    std::size_t length = 0;  // of a literal, or how many steps to skip
  };

  std::vector<Step> steps;
  Text literals;  // all literal texts, one after the other
  bool twelve_hours = false;
};

/// The token that `text` starts with; its `length` is the characters that it takes.
DatePattern::Step DateTokenAt(TextView text);

DatePattern ParseDatePattern(TextView pattern);

/// Both raise 5 for a date outside of the calendar; AppendDate lets a text that is
/// written again and again keep its memory.
void AppendDate(Text& text, const DatePattern& pattern, Date date);
Text FormatDate(const DatePattern& pattern, Date date);

}  // namespace tovalin
