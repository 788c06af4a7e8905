#include "frame/text/search.h"

namespace tovalin {

TextSearch::TextSearch(TextView part) : part_(part) {
  if (part.size() <= kLongestPlain) return;
  borders_.resize(part.size());
  for (std::size_t i = 1; i < part.size(); ++i) borders_[i] = Extend(borders_[i - 1], part[i]);
}

std::size_t TextSearch::Find(TextView text, std::size_t from) const {
  if (borders_.empty()) return text.find(part_, from);
  std::size_t matched = 0;
  for (std::size_t i = from; i < text.size(); ++i) {
    matched = Extend(matched, text[i]);
    if (matched == part_.size()) return i + 1 - matched;
  }
  return TextView::npos;
}

// How much of the part is matched after one more character.
std::size_t TextSearch::Extend(std::size_t matched, char16_t c) const {
  while (matched > 0 && part_[matched] != c) matched = borders_[matched - 1];
  return part_[matched] == c ? matched + 1 : 0;
}

}  // namespace tovalin
