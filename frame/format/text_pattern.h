#pragma once

#include <cstdint>
#include <vector>

#include "tovalin/text.h"

namespace tovalin {

/// One section of a text pattern, ready to be applied.
struct TextSection {
  enum class Show : std::uint8_t { Literal, CharacterOrBlank, CharacterOrNothing };  // @ and &
  enum class Case : std::uint8_t { Kept, Lower, Upper };
  struct Step {
    Show show;
    std::size_t length;  // of a literal, or how many placeholders in a row
  };

  std::vector<Step> steps;
  Text literals;  // all literal texts, one after the other
  std::size_t places = 0;
  Case letters = Case::Kept;
  bool from_left = false;  // !: the text fills the places from the left
};

/// A text pattern: text;empty, the second section for empty texts and Null.
struct TextPattern {
  std::vector<TextSection> sections;
};

TextPattern ParseTextPattern(TextView pattern);

/// `text` dealt out to the places of its section, from the right unless it says
/// otherwise. Characters without a place of their own are shown too: before the
/// first place, or after the last one.
Text FormatText(const TextPattern& pattern, TextView text);

/// What the pattern shows for Null: its second section, or the empty text.
Text FormatNull(const TextPattern& pattern);

}  // namespace tovalin
