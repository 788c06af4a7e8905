#include <algorithm>
#include <charconv>

#include "frame/format/number_pattern.h"
#include "tovalin/locale.h"

// The road of one number: its decimal digits are moved by the section's shift,
// rounded to the places that the section has, and dealt out to its steps from
// left to right. A place is counted by the digits of the whole part to its
// right: units are place 0.

namespace tovalin {
namespace {

using Show = NumberSection::Show;

/// A DecimalDigits whose exponent has room for any shift.
struct Decimal {
  explicit Decimal(const DecimalDigits& number)
      : count(number.count), exponent(number.count > 0 ? number.exponent : 0) {
    std::copy_n(number.digits, number.count, digits);
  }

  /// Rounds to `keep` digits, halves up; fewer than none leave zero.
  void Round(std::int64_t keep) {
    if (keep >= count) return;
    const bool up = keep >= 0 && digits[keep] >= '5';
    count = static_cast<int>(std::max<std::int64_t>(keep, 0));
    if (up) {
      while (count > 0 && digits[count - 1] == '9') --count;
      if (count > 0)
        ++digits[count - 1];
      else
        CarryIntoNewDigit();
    }
    while (count > 0 && digits[count - 1] == '0') --count;
    if (count == 0) exponent = 0;
  }

  char16_t DigitAt(std::int64_t index) const {
    return index >= 0 && index < count ? static_cast<char16_t>(digits[index]) : u'0';
  }

  int count;
  std::int64_t exponent;
  char digits[20];

 private:
  void CarryIntoNewDigit() {
    digits[0] = '1';
    count = 1;
    ++exponent;
  }
};

class SectionWriter {
 public:
  SectionWriter(const NumberSection& section, const DecimalDigits& number)
      : section_(section), decimal_(number) {
    if (section_.scientific)
      Normalize();
    else if (decimal_.count > 0)
      Scale();
    whole_digits_ = std::max<std::int64_t>(decimal_.exponent, 0);
    shown_ = std::max(whole_digits_, section_.least_integer);
    const std::int64_t fraction_digits =
        std::max<std::int64_t>(decimal_.count - decimal_.exponent, 0);
    shown_fraction_ = std::max(decimal_.count > 0 ? fraction_digits : 0, section_.least_fraction);
    places_left_ = section_.integer_places;
  }

  Text Write(bool minus) {
    text_.reserve(Size());
    if (minus) text_ += u'-';
    std::size_t literal = 0;
    for (const NumberSection::Step& step : section_.steps) {
      if (step.show == Show::Literal) {
        text_.append(section_.literals, literal, step.length);
        literal += step.length;
      } else {
        WriteDigits(step);
      }
    }
    return std::move(text_);
  }

 private:
  void Scale() {
    decimal_.exponent += section_.shift;
    decimal_.Round(decimal_.exponent + section_.fraction_places);
  }

  // Leaves in decimal_ the part before the E, with as many digits before the
  // point as there are places, and its power of ten in power_.
  void Normalize() {
    if (decimal_.count == 0) return;
    decimal_.exponent += section_.shift;
    decimal_.Round(std::max<std::int64_t>(section_.integer_places + section_.fraction_places, 1));
    power_ = decimal_.exponent - section_.integer_places;
    decimal_.exponent = section_.integer_places;
  }

  std::size_t Size() const {
    constexpr std::int64_t kSignAndExponent = 24;
    const std::int64_t grouped = section_.grouped ? shown_ / 3 : 0;
    return section_.literals.size() + section_.steps.size() +
           static_cast<std::size_t>(shown_ + grouped + section_.fraction_places + kSignAndExponent);
  }

  void WriteDigits(const NumberSection::Step& step) {
    const auto length = static_cast<std::int64_t>(step.length);
    if (step.show == Show::Integer) WriteWhole(length);
    if (step.show == Show::Point) WritePoint();
    if (step.show == Show::Fraction) WriteFraction(length);
    if (step.show == Show::Exponent) WriteExponent();
  }

  // The first placeholder also shows the digits that have no place of their own.
  void WriteWhole(std::int64_t places) {
    const bool first = places_left_ == section_.integer_places;
    const std::int64_t from = first ? shown_ : std::min(places_left_, shown_);
    places_left_ -= places;
    WritePlaces(from, places_left_);
  }

  void WritePlaces(std::int64_t from, std::int64_t to) {
    for (std::int64_t place = from - 1; place >= to; --place) {
      text_ += decimal_.DigitAt(decimal_.exponent - 1 - place);
      if (section_.grouped && place > 0 && place % 3 == 0)
        text_ += CurrentLocale().thousands_separator;
    }
  }

  // The point is shown even when no fraction follows: 5 under "0.##" is "5.".
  void WritePoint() {
    if (section_.integer_places == 0) WritePlaces(shown_, 0);
    text_ += CurrentLocale().decimal_separator;
  }

  void WriteFraction(std::int64_t places) {
    const std::int64_t end = std::min(fraction_written_ + places, shown_fraction_);
    for (std::int64_t place = fraction_written_; place < end; ++place)
      text_ += decimal_.DigitAt(decimal_.exponent + place);
    fraction_written_ += places;
  }

  void WriteExponent() {
    text_ += section_.exponent_letter;
    if (power_ < 0)
      text_ += u'-';
    else if (section_.exponent_plus)
      text_ += u'+';
    char buffer[20];
    char* const end =
        std::to_chars(buffer, buffer + sizeof buffer, power_ < 0 ? -power_ : power_).ptr;
    const std::int64_t zeros = section_.least_exponent - (end - buffer);
    if (zeros > 0) text_.append(static_cast<std::size_t>(zeros), u'0');
    text_.append(buffer, end);
  }

  const NumberSection& section_;
  Decimal decimal_;
  Text text_;
  std::int64_t power_ = 0;
  std::int64_t whole_digits_ = 0;
  std::int64_t shown_ = 0;           // digits of the whole part
  std::int64_t shown_fraction_ = 0;  // digits of the fraction
  std::int64_t places_left_ = 0;
  std::int64_t fraction_written_ = 0;
};

enum SectionOrder : std::size_t { kPositive, kNegative, kZero, kNull };

// A section with nothing in it counts as not given.
bool Has(const NumberPattern& pattern, SectionOrder order) {
  return pattern.sections.size() > order && !pattern.sections[order].steps.empty();
}

bool ShowsDigits(const NumberSection& section) {
  return std::ranges::any_of(section.steps,
                             [](const auto& step) { return step.show != Show::Literal; });
}

}  // namespace

Text FormatNumber(const NumberPattern& pattern, const DecimalDigits& number) {
  const bool negative = number.negative && number.count > 0;
  const SectionOrder wanted = number.count == 0 ? kZero : negative ? kNegative : kPositive;
  const SectionOrder order = Has(pattern, wanted) ? wanted : kPositive;
  const NumberSection& section = pattern.sections[order];
  const bool minus = negative && order == kPositive && ShowsDigits(section);
  return SectionWriter(section, number).Write(minus);
}

Text FormatNull(const NumberPattern& pattern) {
  if (!Has(pattern, kNull)) return {};
  return SectionWriter(pattern.sections[kNull], DecimalDigits{}).Write(false);
}

}  // namespace tovalin
