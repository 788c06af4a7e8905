#include "frame/format/pattern_scanner.h"

namespace tovalin {

TextView PatternScanner::Consume(std::size_t length) {
  const TextView taken = rest_.substr(0, length);
  rest_.remove_prefix(taken.size());
  return taken;
}

std::optional<PatternPiece> PatternScanner::Next() {
  if (rest_.empty()) return std::nullopt;
  if (rest_.front() == u'\\') {
    Skip(1);
    return PatternPiece{Consume(1), true};
  }
  if (rest_.front() != u'"') return PatternPiece{Consume(1), false};
  Skip(1);
  const PatternPiece piece{Consume(rest_.find(u'"')), true};
  Consume(1);
  return piece;
}

std::vector<TextView> PatternSections(TextView pattern) {
  constexpr std::size_t kMostSections = 4;
  std::vector<TextView> sections;
  PatternScanner scanner(pattern);
  std::size_t start = 0;
  while (const auto piece = scanner.Next()) {
    if (piece->Symbol() != u';') continue;
    const std::size_t after = pattern.size() - scanner.Rest().size();
    sections.push_back(pattern.substr(start, after - 1 - start));
    if (sections.size() == kMostSections) return sections;
    start = after;
  }
  sections.push_back(pattern.substr(start));
  return sections;
}

std::size_t RunLength(TextView text) {
  std::size_t length = 1;
  while (length < text.size() && FoldCase(text[length]) == FoldCase(text.front())) ++length;
  return length;
}

bool StartsFolded(TextView text, TextView start) {
  return EqualFolded(text.substr(0, start.size()), start);
}

}  // namespace tovalin
