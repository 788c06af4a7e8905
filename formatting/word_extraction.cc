#include "formatting/word_extraction.h"

namespace tovalin {

TextView ExtraerFrase(TextView vData, std::uint8_t vPart) {
  if (vPart == 0) return {};
  TextView rest = Trim(vData);
  for (int skipped = 1; skipped < vPart; ++skipped) {
    const std::size_t blank = rest.find(u' ');
    if (blank == TextView::npos) return {};
    rest.remove_prefix(blank + 1);
  }
  return rest;
}

TextView ExtraerPalabra(TextView vData, std::uint8_t vPart) {
  const TextView rest = ExtraerFrase(vData, vPart);
  return rest.substr(0, rest.find(u' '));
}

}  // namespace tovalin
