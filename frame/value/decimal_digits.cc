#include "frame/value/decimal_digits.h"

#include <algorithm>

namespace tovalin {

std::uint64_t DecimalDigits::Leading(int length) const {
  std::uint64_t number = 0;
  for (int i = 0; i < length; ++i) number = number * 10 + static_cast<unsigned>(At(i) - '0');
  return number;
}

void DecimalDigits::Round(std::int64_t keep) {
  if (keep >= count) return;
  const bool up = keep >= 0 && digits[keep] >= '5';
  count = static_cast<int>(std::max<std::int64_t>(keep, 0));
  if (up) {
    while (count > 0 && digits[count - 1] == '9') --count;
    if (count > 0) {
      ++digits[count - 1];
    } else {
      digits[0] = '1';
      count = 1;
      ++exponent;
    }
  }
  DropZerosAtEnd();
}

void DecimalDigits::DropZerosAtEnd() {
  while (count > 0 && digits[count - 1] == '0') --count;
  if (count == 0) exponent = 0;
}

}  // namespace tovalin
