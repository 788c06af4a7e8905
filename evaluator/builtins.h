#pragma once

#include <cstdint>
#include <span>

#include "tovalin/clock.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin {

/// What a built-in function may ask of its surroundings.
struct BuiltinContext {
  const HostClock& clock;
};

/// Computes a function of as many arguments as its row pops, in the order
/// written. A wrong argument raises the errors of its conversion (13, 6), or 5
/// where the value is of the right type but out of the function's range.
using BuiltinCall = Variant (*)(std::span<const Variant> arguments, const BuiltinContext& context);

struct Builtin {
  TextView name;      // in upper case, without its bracket
  std::uint8_t pops;  // the number of arguments, whatever the formula held
  BuiltinCall call;
};

/// Every built-in function in the order of comparison; an alias is a row of its
/// own after the first name.
std::span<const Builtin> Builtins();

/// The place of a built-in function in that order, and back.
inline std::uint8_t BuiltinRow(const Builtin& builtin) {
  return static_cast<std::uint8_t>(&builtin - Builtins().data());
}
inline const Builtin& BuiltinAt(std::uint8_t row) { return Builtins()[row]; }

/// The first function of that name, compared exactly against a word in upper
/// case without bracket, or none.
const Builtin* FindBuiltin(TextView upper_name);

}  // namespace tovalin
