#pragma once

#include <optional>

#include "tovalin/text.h"

namespace tovalin::review {

/// A word of a date pattern in which some letters show parts of the date, as the "d" of
/// "de", and the pattern with the letters of all such words escaped.
struct DateLetters {
  Text word;
  Text escaped;
};

/// None for a pattern that is no date pattern or has no such word.
std::optional<DateLetters> FindDateLetters(TextView pattern);

}  // namespace tovalin::review
