#pragma once

#include <memory>
#include <variant>

#include "frame/format/date_pattern.h"
#include "frame/format/number_pattern.h"
#include "frame/format/text_pattern.h"

namespace tovalin {

struct OrdinaryText {};
struct GeneralNumber {};

/// A pattern of any kind, ready to be applied.
using Pattern = std::variant<OrdinaryText, GeneralNumber, NumberPattern, DatePattern, TextPattern>;

/// The parsed form of a pattern or of a named format. Parsing is remembered, so
/// that a table of many rows parses each of its patterns once.
std::shared_ptr<const Pattern> ParsedPattern(TextView text);

}  // namespace tovalin
