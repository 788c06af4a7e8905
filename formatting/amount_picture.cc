#include "formatting/amount_picture.h"

#include <algorithm>

#include "frame/value/number_text.h"

namespace tovalin {
namespace {

constexpr int kSignificantDigits = 15;
constexpr int kDecimals = 5;
constexpr int kFewestWholeDigits = 18;

/// Adds one to the last of the digits that are kept.
void Increment(DecimalDigits& number) {
  int last = number.count - 1;
  while (last >= 0 && number.digits[last] == '9') --last;
  if (last >= 0) {
    ++number.digits[last];
    number.count = last + 1;
  } else {
    number.digits[0] = '1';
    number.count = 1;
    ++number.exponent;
  }
}

void RoundToDecimals(DecimalDigits& number, int decimals) {
  const int kept = number.exponent + decimals;
  if (kept >= number.count) return;
  const bool up = kept >= 0 && number.digits[kept] >= '5';
  number.count = std::max(kept, 0);
  if (up) Increment(number);
}

}  // namespace

AmountPicture PictureOf(double value) {
  DecimalDigits number = ToDecimalDigits(value, kSignificantDigits);
  RoundToDecimals(number, kDecimals);
  AmountPicture picture;
  std::size_t length = 0;
  // `place` is the power of ten of the digit. With more than 18 whole digits the
  // picture is full before the last of them.
  for (int place = std::max(number.exponent, kFewestWholeDigits) - 1;
       place >= 0 && length < picture.size(); --place) {
    const int index = number.exponent - 1 - place;
    picture[length++] = index >= 0 && index < number.count ? number.digits[index] : '0';
    if (place > 0 && place % 3 == 0 && length < picture.size()) picture[length++] = ',';
  }
  return picture;
}

}  // namespace tovalin
