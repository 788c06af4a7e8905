#include "formatting/amount_picture.h"

#include <algorithm>

#include "frame/value/number_text.h"

namespace tovalin {
namespace {

constexpr int kDecimals = 5;
constexpr int kFewestWholeDigits = 18;

}  // namespace

AmountPicture PictureOf(double value) {
  DecimalDigits number = ToDecimalDigits(value, kDoubleDigits);
  number.Round(number.exponent + kDecimals);
  AmountPicture picture;
  std::size_t length = 0;
  // `place` is the power of ten of the digit. With more than 18 whole digits the
  // picture is full before the last of them.
  for (int place = std::max(number.exponent, kFewestWholeDigits) - 1;
       place >= 0 && length < picture.size(); --place) {
    picture[length++] = number.At(number.exponent - 1 - place);
    if (place > 0 && place % 3 == 0 && length < picture.size()) picture[length++] = ',';
  }
  return picture;
}

}  // namespace tovalin
