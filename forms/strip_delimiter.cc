#include "forms/strip_delimiter.h"

#include <bitset>

namespace tovalin {
namespace {

// Removes one delimiter. The search goes on two places after a removed
// character. Deliberate: of two adjacent delimiters one stays, which keeps an
// empty field apart from its neighbour.
Text WithoutDelimiter(TextView text, char16_t delimiter) {
  Text kept;
  kept.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    if (text[i] != delimiter) {
      kept += text[i++];
      continue;
    }
    if (i + 1 < text.size()) kept += text[i + 1];
    i += 2;
  }
  return kept;
}

}  // namespace

Text StripDelimiter(TextView text, TextView delimiters) {
  // A pass for each delimiter that the text has, not for each that is named: a
  // long list of others costs nothing.
  std::bitset<0x10000> present;
  for (const char16_t c : text) present.set(c);
  Text stripped(text);
  for (const char16_t delimiter : delimiters) {
    if (!present[delimiter]) continue;
    stripped = WithoutDelimiter(stripped, delimiter);
    present[delimiter] = stripped.find(delimiter) != Text::npos;
  }
  return stripped;
}

}  // namespace tovalin
