#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "tovalin/error.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"

// Values as conformance tables write them: 1.5, Integer 7, "texto", Null ... See
// tests/conformance/README.md.

namespace tovalin::tool {

/// What a case gives: a value, or the error that was raised.
using Outcome = std::variant<Variant, Error>;

/// What `compute` gives or raises.
Outcome OutcomeOf(const std::function<Variant()>& compute);

/// The value that `notation` writes, equal in every locale. Throws TableFault for
/// one that writes none.
Variant ReadNotation(TextView notation);

/// The notation of a value or an error, numbers in the shortest form that reads
/// back to the last bit.
Text Notation(const Variant& value);
Text Notation(const Outcome& outcome);

/// Whether an outcome is the expected one. Throws TableFault as ReadNotation does.
bool Matches(TextView expected, const Outcome& outcome);

/// `text` split at each " | " outside of quotes.
std::vector<Text> SplitItems(TextView text);

}  // namespace tovalin::tool
