#include "tovalin/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "frame/text/letter_case.h"
#include "frame/text/search.h"

namespace tovalin {
namespace {

// Folding of the first 256 characters, where nearly all names live.
constexpr auto kLatin1Fold = [] {
  std::array<char16_t, 256> fold{};
  for (std::size_t c = 0; c < fold.size(); ++c) {
    const bool ascii = c >= u'A' && c <= u'Z';
    const bool accented = c >= 0xC0 && c <= 0xDE && c != 0xD7;  // 0xD7 is the multiplication sign
    fold[c] = static_cast<char16_t>(ascii || accented ? c + 32 : c);
  }
  return fold;
}();

// The longest text in which folding each character costs less than folded copies.
constexpr std::size_t kShortText = 1024;

}  // namespace

char16_t FoldCase(char16_t c) {
  return c < kLatin1Fold.size() ? kLatin1Fold[c] : LowerOutsideLatin1(c);
}

Text ToUpper(TextView text) {
  Text upper(text);
  for (char16_t& c : upper) {
    if (c >= u'a' && c <= u'z')
      c = static_cast<char16_t>(c - 32);
    else if (c > 0x7F)
      c = UpperOutsideAscii(c);
  }
  return upper;
}

Text ToLower(TextView text) {
  Text lower(text);
  for (char16_t& c : lower) c = FoldCase(c);
  return lower;
}

bool EqualFolded(TextView left, TextView right) {
  if (left.size() != right.size()) return false;
  return left == right ||
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char16_t a, char16_t b) { return a == b || FoldCase(a) == FoldCase(b); });
}

namespace {

// Without a copy of either text: most parts are words.
std::size_t FindShortFolded(TextView text, TextView part, std::size_t from) {
  if (part.empty()) return from;
  const char16_t first = FoldCase(part.front());
  for (std::size_t i = from; i + part.size() <= text.size(); ++i)
    if (FoldCase(text[i]) == first && EqualFolded(text.substr(i, part.size()), part)) return i;
  return TextView::npos;
}

}  // namespace

std::size_t FindFolded(TextView text, TextView part, std::size_t from) {
  if (from > text.size()) return TextView::npos;
  if (part.size() <= TextSearch::kLongestPlain && text.size() - from <= kShortText)
    return FindShortFolded(text, part, from);
  // Both are folded once, then compared exactly.
  const Text folded = ToLower(text.substr(from));
  const Text folded_part = ToLower(part);
  const std::size_t found = TextSearch(folded_part).Find(folded);
  return found == TextView::npos ? TextView::npos : found + from;
}

TextView Trim(TextView text) {
  if (!text.empty() && text.front() != u' ' && text.back() != u' ') return text;
  const std::size_t first = text.find_first_not_of(u' ');
  if (first == TextView::npos) return {};
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

// Four characters for each multiplication, which takes longest.
std::size_t FoldedHash::operator()(TextView name) const {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
  std::uint64_t hash = name.size();
  std::uint64_t group = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    group = group << 16 | FoldCase(name[i]);
    if (i % 4 != 3 && i + 1 != name.size()) continue;
    hash = (hash ^ group) * kFactor;
    hash ^= hash >> 32;
    group = 0;
  }
  return static_cast<std::size_t>(hash);
}

}  // namespace tovalin
