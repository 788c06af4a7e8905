#pragma once

#include "tovalin/text.h"

namespace tovalin {

inline constexpr char16_t kNoBreakSpace = 0x00A0;

constexpr bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

constexpr bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
constexpr bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

/// Whether `text[i]` is a surrogate without its partner.
constexpr bool IsUnpairedSurrogate(TextView text, std::size_t i) {
  if (IsHighSurrogate(text[i])) return i + 1 == text.size() || !IsLowSurrogate(text[i + 1]);
  return IsLowSurrogate(text[i]) && (i == 0 || !IsHighSurrogate(text[i - 1]));
}

}  // namespace tovalin
