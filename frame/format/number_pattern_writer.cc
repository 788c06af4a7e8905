#include <algorithm>
#include <charconv>

#include "frame/format/number_pattern.h"
#include "frame/value/decimal_digits.h"
#include "tovalin/locale.h"

// How a number is written: its decimal digits are moved by the section's shift,
// rounded to the places that the section has, and distributed to its steps from
// left to right. A place is counted by the digits of the whole part to its
// right: units are place 0.

namespace tovalin {
namespace {

using Show = NumberSection::Show;

class SectionWriter {
 public:
  SectionWriter(const NumberSection& section, const DecimalDigits& number)
      : section_(section), digits_(number) {
    if (section_.scientific)
      Normalize();
    else if (digits_.count > 0)
      Scale();
    whole_digits_ = std::max<std::int64_t>(exponent_, 0);
    shown_ = std::max(whole_digits_, section_.least_integer);
    const std::int64_t fraction_digits = std::max<std::int64_t>(digits_.count - exponent_, 0);
    shown_fraction_ = std::max(digits_.count > 0 ? fraction_digits : 0, section_.least_fraction);
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
    digits_.Round(digits_.exponent + section_.shift + section_.fraction_places);
    if (digits_.count > 0) exponent_ = digits_.exponent + section_.shift;
  }

  // The part before the E has as many digits before the point as there are places.
  void Normalize() {
    if (digits_.count == 0) return;
    digits_.Round(std::max<std::int64_t>(section_.integer_places + section_.fraction_places, 1));
    power_ = digits_.exponent + section_.shift - section_.integer_places;
    exponent_ = section_.integer_places;
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
      text_ += static_cast<char16_t>(digits_.At(exponent_ - 1 - place));
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
      text_ += static_cast<char16_t>(digits_.At(exponent_ + place));
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
  DecimalDigits digits_;
  std::int64_t exponent_ = 0;  // of the digits as they are shown: a shift may be of any size
  Text text_;
  std::int64_t power_ = 0;  // what stands behind the E
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
