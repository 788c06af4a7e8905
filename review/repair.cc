#include "review/repair.h"

#include <algorithm>
#include <tuple>

namespace tovalin::review {
namespace {

// Pairs nest: at one place the narrower one closes first and opens last.
bool StandsBefore(const Edit& left, const Edit& right) {
  const auto key = [](const Edit& edit) {
    return std::tuple(edit.span.start, edit.kind, ~edit.other);
  };
  return key(left) < key(right);
}

}  // namespace

std::optional<Text> Repaired(TextView text, std::vector<Edit> edits) {
  std::ranges::stable_sort(edits, StandsBefore);
  Text repaired;
  repaired.reserve(text.size() + 4 * edits.size());
  std::size_t place = 0;
  for (const Edit& edit : edits) {
    if (edit.span.start < place || edit.span.end > text.size()) return std::nullopt;
    repaired.append(text.substr(place, edit.span.start - place)).append(edit.text);
    place = edit.span.end;
  }
  return repaired.append(text.substr(place));
}

}  // namespace tovalin::review
