#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

/// The characters that a number of a type takes in a fixed-width record.
struct NumericWidth {
  TextView type;
  std::uint8_t width;
};

inline constexpr NumericWidth kNumericWidths[] = {
    {u"Numeric", 16}, {u"Decimal", 16}, {u"Integer", 10}, {u"SmallInt", 5},
    {u"Float", 15},   {u"Real", 7},     {u"Double", 15},  {u"Currency", 15},
};

consteval std::uint8_t WidthOf(TextView type) {
  for (const NumericWidth& row : kNumericWidths)
    if (row.type == type) return row.width;
  throw "no such type";  // reached only by the compiler
}

}  // namespace tovalin
