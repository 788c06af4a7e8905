#include "frame/format/number_pattern.h"

#include <algorithm>
#include <optional>

#include "frame/format/pattern_scanner.h"

namespace tovalin {
namespace {

using Show = NumberSection::Show;

bool IsPlaceholder(char16_t c) { return c == u'0' || c == u'#'; }

class SectionParser {
 public:
  explicit SectionParser(TextView text) : scanner_(text) {}

  NumberSection Parse() {
    while (const auto piece = scanner_.Next()) Read(*piece);
    // Commas left over stand at the end of the whole part: they scale.
    section_.shift -= 3 * commas_;
    return std::move(section_);
  }

 private:
  void Read(const PatternPiece& piece) {
    const char16_t symbol = piece.Symbol();
    if (IsPlaceholder(symbol)) return ReadPlaceholder(symbol);
    if (symbol == u'.' && !after_point_) return ReadPoint();
    if (symbol == u',') return ReadComma();
    if ((symbol == u'E' || symbol == u'e') && ReadExponent(symbol)) return;
    if (symbol == u'%') section_.shift += 2;
    section_.literals += piece.text;
    Add(Show::Literal, piece.text.size());
  }

  void ReadPlaceholder(char16_t symbol) {
    if (after_point_) {
      ++section_.fraction_places;
      if (symbol == u'0') section_.least_fraction = section_.fraction_places;
      return Add(Show::Fraction, 1);
    }
    if (commas_ > 0) section_.grouped = true;
    commas_ = 0;
    ++section_.integer_places;
    // A # to the right of a 0 shows its zero too.
    if (symbol == u'0' || section_.least_integer > 0) ++section_.least_integer;
    Add(Show::Integer, 1);
  }

  void ReadPoint() {
    after_point_ = true;
    Add(Show::Point, 1);
  }

  // A comma before every digit of the whole part, or after the point, has
  // nothing to separate.
  void ReadComma() {
    if (!after_point_ && section_.integer_places > 0) ++commas_;
  }

  // Whether an E+00 stands here, which is then taken. A second one is text.
  bool ReadExponent(char16_t letter) {
    const TextView rest = scanner_.Rest();
    if (section_.scientific || rest.size() < 2) return false;
    if ((rest[0] != u'+' && rest[0] != u'-') || !IsPlaceholder(rest[1])) return false;
    const std::size_t end = std::min(rest.find_first_not_of(u"0#", 1), rest.size());
    const std::size_t zero = rest.substr(0, end).find(u'0');
    section_.scientific = true;
    section_.exponent_letter = letter;
    section_.exponent_plus = rest[0] == u'+';
    if (zero != TextView::npos) section_.least_exponent = static_cast<std::int64_t>(end - zero);
    scanner_.Skip(end);
    after_point_ = true;  // what follows is no longer the whole part
    Add(Show::Exponent, 1);
    return true;
  }

  void Add(Show show, std::size_t length) {
    if (!section_.steps.empty() && section_.steps.back().show == show)
      section_.steps.back().length += length;
    else
      section_.steps.push_back({show, length});
  }

  PatternScanner scanner_;
  NumberSection section_;
  bool after_point_ = false;
  std::int64_t commas_ = 0;  // since the last placeholder of the whole part
};

}  // namespace

NumberPattern ParseNumberPattern(TextView pattern) {
  NumberPattern result;
  for (const TextView section : PatternSections(pattern))
    result.sections.push_back(SectionParser(section).Parse());
  return result;
}

}  // namespace tovalin
