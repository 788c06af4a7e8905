#include "formatting/word_extraction.h"

namespace tovalin {

TextView ExtraerFrase(TextView text, std::uint8_t part) {
  if (part == 0) return {};
  TextView rest = Trim(text);
  for (int skipped = 1; skipped < part; ++skipped) {
    const std::size_t blank = rest.find(u' ');
    if (blank == TextView::npos) return {};
    rest.remove_prefix(blank + 1);
  }
  return rest;
}

TextView NthWord(TextView text, std::uint8_t part) {
  const TextView rest = ExtraerFrase(text, part);
  return rest.substr(0, rest.find(u' '));
}

}  // namespace tovalin
