#include "frame/text/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "frame/text/characters.h"

namespace tovalin {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

// One row for each length of a UTF-8 sequence: how its first byte looks, and the
// smallest code point that may be written so (a longer form than needed is wrong).
struct SequenceForm {
  unsigned char mask;
  unsigned char lead;
  char32_t least;
};
constexpr SequenceForm kForms[] = {
    {0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};

struct Decoded {
  char32_t code_point;
  std::size_t length;
};

Decoded DecodeOne(std::string_view utf8) {
  const auto lead = static_cast<unsigned char>(utf8[0]);
  for (std::size_t extra = 0; extra < std::size(kForms); ++extra) {
    const SequenceForm& form = kForms[extra];
    if ((lead & form.mask) != form.lead) continue;
    if (utf8.size() <= extra) break;
    char32_t code_point = lead & static_cast<unsigned char>(~form.mask);
    for (std::size_t i = 1; i <= extra; ++i) {
      const auto next = static_cast<unsigned char>(utf8[i]);
      if ((next & 0xC0) != 0x80) return {kReplacement, 1};
      code_point = code_point << 6 | (next & 0x3F);
    }
    if (code_point < form.least || code_point > 0x10FFFF || IsSurrogate(code_point)) break;
    return {code_point, extra + 1};
  }
  return {kReplacement, 1};
}

// Writes a code point at `target` and answers the place behind it.
char* WriteCodePoint(char* target, char32_t code_point) {
  std::size_t extra = 0;
  while (extra + 1 < std::size(kForms) && code_point >= kForms[extra + 1].least) ++extra;
  *target++ = static_cast<char>(kForms[extra].lead | code_point >> (6 * extra));
  while (extra-- > 0) *target++ = static_cast<char>(0x80 | (code_point >> (6 * extra) & 0x3F));
  return target;
}

// Four characters at once.
bool AllAscii(const char16_t* characters) {
  std::uint64_t word;
  std::memcpy(&word, characters, sizeof word);
  return (word & 0xFF80'FF80'FF80'FF80) == 0;
}

}  // namespace

Text FromUtf8(std::string_view utf8) {
  int bits = 0;
  for (char c : utf8) bits |= c;
  if ((bits & 0x80) == 0) return Text(utf8.begin(), utf8.end());
  Text text(utf8.size(), u'\0');
  char16_t* target = text.data();
  while (!utf8.empty()) {
    const Decoded next = static_cast<unsigned char>(utf8[0]) < 0x80
                             ? Decoded{static_cast<char32_t>(utf8[0]), 1}
                             : DecodeOne(utf8);
    utf8.remove_prefix(next.length);
    if (next.code_point < 0x10000) {
      *target++ = static_cast<char16_t>(next.code_point);
    } else {
      *target++ = static_cast<char16_t>(0xD7C0 + (next.code_point >> 10));
      *target++ = static_cast<char16_t>(0xDC00 + (next.code_point & 0x3FF));
    }
  }
  text.resize(static_cast<std::size_t>(target - text.data()));
  return text;
}

std::size_t ValidUtf8Length(std::string_view bytes) {
  constexpr std::uint64_t kHighBits = 0x8080'8080'8080'8080;
  std::size_t valid = 0;
  while (valid < bytes.size()) {
    std::uint64_t word;
    if (bytes.size() - valid >= sizeof word) {
      std::memcpy(&word, bytes.data() + valid, sizeof word);
      if ((word & kHighBits) == 0) {
        valid += sizeof word;
        continue;
      }
    }
    if (static_cast<unsigned char>(bytes[valid]) < 0x80) {
      ++valid;
      continue;
    }
    const std::size_t length = DecodeOne(bytes.substr(valid)).length;
    if (length == 1) break;  // what stands for a byte that is not UTF-8
    valid += length;
  }
  return valid;
}

std::size_t CountUtf8Characters(std::string_view utf8) {
  return utf8.size() - static_cast<std::size_t>(std::ranges::count_if(utf8, IsUtf8Continuation));
}

std::string ToUtf8(TextView text) {
  std::string utf8;
  AppendUtf8(utf8, text);
  return utf8;
}

// A short text is written by its characters; a long one, if it is plain ASCII as
// nearly all are, is told and narrowed many characters at a time.
void AppendUtf8(std::string& utf8, TextView text) {
  constexpr std::size_t kShort = 16;
  const std::size_t before = utf8.size();
  char16_t bits = 0;
  if (text.size() > kShort)
    for (char16_t c : text) bits |= c;
  if (text.size() <= kShort || bits >= 0x80) {
    utf8.resize(before + kMostUtf8Bytes * text.size());
    utf8.resize(static_cast<std::size_t>(WriteUtf8(utf8.data() + before, text) - utf8.data()));
  } else {
    utf8.resize(before + text.size());
    std::copy(text.begin(), text.end(), utf8.begin() + static_cast<std::ptrdiff_t>(before));
  }
}

char* WriteUtf8(char* target, TextView text) {
  std::size_t i = 0;
  for (; text.size() - i >= 4 && AllAscii(text.data() + i); i += 4, target += 4)
    for (std::size_t k = 0; k < 4; ++k) target[k] = static_cast<char>(text[i + k]);
  for (; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c < 0x80) {
      *target++ = static_cast<char>(c);
    } else if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      const char32_t high = static_cast<char32_t>(c - 0xD800) << 10;
      target = WriteCodePoint(target, 0x10000 + high + static_cast<char32_t>(text[++i] - 0xDC00));
    } else {
      target = WriteCodePoint(target, IsSurrogate(c) ? kReplacement : c);
    }
  }
  return target;
}

}  // namespace tovalin
