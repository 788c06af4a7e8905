#pragma once

#include <optional>
#include <string_view>

#include "flatfile/layout.h"
#include "frame/format/date_pattern.h"
#include "tovalin/variant.h"

namespace tovalin::flat {

/// Reads a date or a time that a pattern wrote. Nothing for a text that is not of the
/// pattern or no day of the calendar. Years of two digits are those of every date.
std::optional<Date> ReadMoment(const DatePattern& pattern, TextView text);

/// Why a pattern cannot be read back as a value of that type (a month as a name, a
/// part that is missing), null when it can.
const char* WhyUnreadable(const DatePattern& pattern, FieldType type);

/// A pattern in the notation of Table Schema ("%Y%m%d"), if it has one, and back.
std::optional<Text> ToPercentPattern(TextView pattern);
std::optional<Text> FromPercentPattern(TextView percent);

/// The pattern of a type that gives none: yyyy-mm-dd, hh:nn:ss or both with a T.
TextView DefaultPattern(FieldType type);

}  // namespace tovalin::flat
