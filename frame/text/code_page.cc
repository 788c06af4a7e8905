#include "frame/text/code_page.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

namespace tovalin {
namespace {

// Bytes 80 to 9F hexadecimal; all others have the number of their character.
constexpr unsigned kFirst = 0x80;
constexpr char16_t kCharacters[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  //
};
constexpr unsigned kLast = kFirst + std::size(kCharacters) - 1;

struct Pair {
  char16_t character;
  unsigned char byte;
};

// The same rows by character.
constexpr auto kByCharacter = [] {
  std::array<Pair, std::size(kCharacters)> pairs{};
  for (unsigned i = 0; i < pairs.size(); ++i)
    pairs[i] = {kCharacters[i], static_cast<unsigned char>(kFirst + i)};
  std::ranges::sort(pairs, {}, &Pair::character);
  return pairs;
}();

constexpr bool HasOwnNumber(char16_t c) {
  return (c <= 0xFF) & (static_cast<char16_t>(c - kFirst) > kLast - kFirst);
}

std::optional<char> Find(char16_t c) {
  const auto found = std::ranges::lower_bound(kByCharacter, c, {}, &Pair::character);
  if (found == kByCharacter.end() || found->character != c) return std::nullopt;
  return static_cast<char>(found->byte);
}

}  // namespace

char16_t FromCodePage(unsigned char c) {
  return c >= kFirst && c <= kLast ? kCharacters[c - kFirst] : c;
}

char ToCodePage(char16_t c) {
  return HasOwnNumber(c) ? static_cast<char>(c) : Find(c).value_or('?');
}

bool InCodePage(char16_t c) { return HasOwnNumber(c) || Find(c).has_value(); }

void AppendToCodePage(std::string& bytes, TextView text) {
  const std::size_t start = bytes.size();
  bytes.resize(start + text.size());
  // Most texts hold only characters with a number of their own: the first pass
  // takes many of them at a time.
  bool plain = true;
  for (std::size_t i = 0; i < text.size(); ++i) {
    plain &= HasOwnNumber(text[i]);
    bytes[start + i] = static_cast<char>(text[i]);
  }
  if (!plain) std::ranges::transform(text, bytes.data() + start, ToCodePage);
}

}  // namespace tovalin
