#include "frame/format/text_pattern.h"

#include <algorithm>

#include "frame/format/pattern_scanner.h"

namespace tovalin {
namespace {

using Show = TextSection::Show;
using Case = TextSection::Case;

void Add(TextSection& section, Show show, std::size_t length) {
  if (!section.steps.empty() && section.steps.back().show == show)
    section.steps.back().length += length;
  else
    section.steps.push_back({show, length});
}

void Read(TextSection& section, const PatternPiece& piece) {
  switch (piece.Symbol()) {
    case u'@':
    case u'&':
      ++section.places;
      Add(section, piece.Symbol() == u'@' ? Show::CharacterOrBlank : Show::CharacterOrNothing, 1);
      break;
    case u'<':
      section.letters = Case::Lower;
      break;
    case u'>':
      section.letters = Case::Upper;
      break;
    case u'!':
      section.from_left = true;
      break;
    default:
      section.literals += piece.text;
      Add(section, Show::Literal, piece.text.size());
      break;
  }
}

TextSection ParseSection(TextView text) {
  TextSection section;
  PatternScanner scanner(text);
  while (const auto piece = scanner.Next()) Read(section, *piece);
  return section;
}

class SectionWriter {
 public:
  SectionWriter(const TextSection& section, TextView text)
      : section_(section),
        text_(text),
        missing_(section.places - std::min(section.places, text.size())),
        excess_(text.size() - std::min(section.places, text.size())) {}

  Text Write() {
    result_.reserve(section_.literals.size() + std::max(section_.places, text_.size()));
    std::size_t literal = 0;
    for (const TextSection::Step& step : section_.steps) {
      if (step.show == Show::Literal) {
        result_.append(section_.literals, literal, step.length);
        literal += step.length;
        continue;
      }
      if (place_ == 0 && !section_.from_left) CopyText(excess_);
      WritePlaces(step);
    }
    // Without places, or filling from the left, the rest stands at the end.
    CopyText(text_.size());
    return std::move(result_);
  }

 private:
  void WritePlaces(const TextSection::Step& step) {
    for (std::size_t end = place_ + step.length; place_ < end; ++place_) {
      const bool empty = section_.from_left ? text_.empty() : place_ < missing_;
      if (!empty)
        CopyText(1);
      else if (step.show == Show::CharacterOrBlank)
        result_ += u' ';
    }
  }

  void CopyText(std::size_t length) {
    result_ += text_.substr(0, length);
    text_.remove_prefix(length);
  }

  const TextSection& section_;
  TextView text_;        // what is not shown yet
  std::size_t missing_;  // places that get no character
  std::size_t excess_;   // characters that get no place
  std::size_t place_ = 0;
  Text result_;
};

Text FormatSection(const TextSection& section, TextView text) {
  if (section.letters == Case::Lower) return SectionWriter(section, ToLower(text)).Write();
  if (section.letters == Case::Upper) return SectionWriter(section, ToUpper(text)).Write();
  return SectionWriter(section, text).Write();
}

}  // namespace

TextPattern ParseTextPattern(TextView pattern) {
  TextPattern result;
  for (const TextView section : PatternSections(pattern))
    result.sections.push_back(ParseSection(section));
  return result;
}

Text FormatText(const TextPattern& pattern, TextView text) {
  const bool second = text.empty() && pattern.sections.size() > 1;
  return FormatSection(pattern.sections[second ? 1 : 0], text);
}

Text FormatNull(const TextPattern& pattern) {
  if (pattern.sections.size() < 2) return {};
  return FormatSection(pattern.sections[1], {});
}

}  // namespace tovalin
