#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "tovalin/text.h"

namespace tovalin {

/// One word, number or mark of a text that may read as a date.
struct DateWord {
  enum class Kind : std::uint8_t {
    End,
    Number,     // at most four digits
    Month,      // value 1 to 12
    DayName,    //
    Of,         // "de", "del"
    Morning,    // "a. m.", "AM"
    Afternoon,  // "p. m.", "PM"
    Mark,       // value is the character: / - . ,
    Colon,      // between hour and minute
    TimeMark,   // the T of 2024-02-15T14:30
  };

  Kind kind = Kind::End;
  int value = 0;
  int digits = 0;  // of a number
  bool blank_before = false;
};

/// The words of one date text. A date has few words: a text with more than
/// kMost, or with a word that no date has, is rejected early.
struct DateWords {
  static constexpr std::size_t kMost = 20;

  DateWord words[kMost + 1];  // closed by an End
};

std::optional<DateWords> ReadDateWords(TextView text);

}  // namespace tovalin
