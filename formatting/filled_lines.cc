#include "formatting/filled_lines.h"

#include <algorithm>

#include "formatting/argument_error.h"
#include "formatting/numeral_words.h"
#include "frame/text/characters.h"

namespace tovalin {
namespace {

bool IsFillerCharacter(char16_t c) {
  const bool control = c < u' ' || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
  return !IsLetter(c) && !IsDigit(c) && !control && !IsSurrogate(c);
}

/// Fills what of `text` stands from `begin` on to the width.
void FillLine(Text& text, std::size_t begin, std::size_t width, TextView filler) {
  if (filler.empty()) return;
  if (text.size() - begin + 2 <= width) text += u' ';
  for (std::size_t i = 0; text.size() - begin < width; ++i) text += filler[i % filler.size()];
}

}  // namespace

bool IsFiller(TextView filler) {
  return std::all_of(filler.begin(), filler.end(), IsFillerCharacter);
}

Text FilledLines(TextView text, std::size_t width, TextView filler) {
  Text lines;
  std::size_t begin = 0;  // of the present line
  while (!text.empty()) {
    const TextView word = text.substr(0, text.find(u' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    if (word.size() > width)
      RaiseInvalidArgument(u"LibMonto.MontoCheque",
                           u"La palabra " + Quoted(word) + u" no cabe en el ancho");
    const bool first = lines.size() == begin;
    if (!first && lines.size() - begin + 1 + word.size() > width) {
      FillLine(lines, begin, width, filler);
      lines += u"\r\n";
      begin = lines.size();
    } else if (!first) {
      lines += u' ';
    }
    lines += word;
  }
  FillLine(lines, begin, width, filler);
  return lines;
}

}  // namespace tovalin
