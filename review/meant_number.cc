#include "review/meant_number.h"

#include <algorithm>

#include "tovalin/convert.h"

namespace tovalin::review {
namespace {

constexpr std::size_t kGroup = 3;

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

bool IsDigits(TextView text) { return !text.empty() && std::ranges::all_of(text, IsDigit); }

std::vector<TextView> Split(TextView text, char16_t separator) {
  std::vector<TextView> parts;
  for (std::size_t end; (end = text.find(separator)) != TextView::npos;) {
    parts.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  parts.push_back(text);
  return parts;
}

Text Joined(const std::vector<TextView>& parts) {
  Text joined;
  for (TextView part : parts) joined.append(part);
  return joined;
}

// Whether digits are grouped by thousands, and the last group may have decimals.
bool AreGroups(const std::vector<TextView>& parts, bool with_decimals) {
  if (parts.size() < 2 || !IsDigits(parts[0]) || parts[0].size() > kGroup) return false;
  for (std::size_t i = 1; i < parts.size(); ++i) {
    const bool is_last = i + 1 == parts.size();
    TextView part = parts[i];
    if (is_last && with_decimals) {
      const std::size_t point = part.find(u'.');
      if (point != TextView::npos && !IsDigits(part.substr(point + 1))) return false;
      part = part.substr(0, point);
    }
    if (part.size() != kGroup || !IsDigits(part)) return false;
  }
  return true;
}

// Digits with a decimal point moved by an exponent.
Text Shifted(TextView mantissa, int exponent) {
  const std::size_t point = std::min(mantissa.find(u'.'), mantissa.size());
  Text digits(mantissa.substr(0, point));
  if (point < mantissa.size()) digits.append(mantissa.substr(point + 1));
  std::ptrdiff_t place = static_cast<std::ptrdiff_t>(point) + exponent;
  if (place <= 0) {
    digits.insert(0, static_cast<std::size_t>(1 - place), u'0');
    place = 1;
  }
  const auto whole = static_cast<std::size_t>(place);
  if (digits.size() <= whole) return digits.append(whole - digits.size(), u'0');
  return digits.insert(whole, 1, u'.');
}

bool IsMantissa(TextView text) {
  return std::ranges::any_of(text, IsDigit) && std::ranges::count(text, u'.') <= 1 &&
         std::ranges::all_of(text, [](char16_t c) { return IsDigit(c) || c == u'.'; });
}

bool IsExponentMark(char16_t c) { return c == u'e' || c == u'E' || c == u'd' || c == u'D'; }

std::optional<NumberReading> Read(std::size_t tokens, Text number) {
  NumberReading reading{tokens, 0, std::move(number)};
  reading.value = ReadNumber(reading.number).value_or(0);
  return reading;
}

// "1E" "-" "5", or another exponent that the operators tore off.
std::optional<NumberReading> ReadExponent(const TokenList& list, std::size_t name, TextView text) {
  if (text.size() < 2 || !IsExponentMark(text.back())) return std::nullopt;
  const TextView mantissa = text.substr(0, text.size() - 1);
  if (!IsMantissa(mantissa)) return std::nullopt;
  if (name + 2 >= list.tokens.size()) return NumberReading{};
  const Token& sign = list.tokens[name + 1];
  const Token& digits = list.tokens[name + 2];
  const Token& first = list.tokens[name];
  const bool is_sign =
      sign.kind == TokenKind::Operator &&
      (sign.operator_code == OperatorCode::Add || sign.operator_code == OperatorCode::Subtract);
  const bool is_tight = first.start + first.length == sign.start && sign.start + 1 == digits.start;
  const TextView exponent = list.Span(digits);
  if (!is_sign || !is_tight || !IsDigits(exponent) || exponent.size() > 2) return NumberReading{};
  int places = 0;
  for (char16_t c : exponent) places = places * 10 + (c - u'0');
  return Read(3, Shifted(mantissa, sign.operator_code == OperatorCode::Add ? places : -places));
}

// "1.234.567" and the decimals behind a comma.
std::optional<NumberReading> ReadGroups(const TokenList& list, std::size_t name, TextView text) {
  if (std::ranges::none_of(text, IsDigit) ||
      !std::ranges::all_of(text, [](char16_t c) { return IsDigit(c) || c == u'.'; }))
    return std::nullopt;
  const std::vector<TextView> groups = Split(text, u'.');
  if (!AreGroups(groups, false)) return NumberReading{};
  if (name + 2 < list.tokens.size()) {
    const Token& comma = list.tokens[name + 1];
    const Token& decimals = list.tokens[name + 2];
    const bool is_tight =
        list.tokens[name].start + text.size() == comma.start && comma.start + 1 == decimals.start;
    if (comma.kind == TokenKind::Comma && is_tight && IsDigits(list.Span(decimals)))
      return Read(3, Joined(groups).append(u".").append(list.Span(decimals)));
  }
  return Read(1, Joined(groups));
}

}  // namespace

std::optional<NumberReading> ReadMeantNumber(const TokenList& list, std::size_t name) {
  const TextView text = list.Span(list.tokens[name]);
  if (text.empty() || (!IsDigit(text.front()) && text.front() != u'.')) return std::nullopt;
  if (auto exponent = ReadExponent(list, name, text)) return exponent;
  if (auto groups = ReadGroups(list, name, text)) return groups;
  for (char16_t separator : {u' ', u'_'})
    if (const auto groups = Split(text, separator); AreGroups(groups, true))
      return Read(1, Joined(groups));
  const TextView rest = Trim(text.substr(0, text.size() - 1));
  if (!IsMantissa(rest)) return std::nullopt;
  if (text.back() == u'€') return Read(1, Text(rest));
  if (text.back() != u'%') return std::nullopt;
  NumberReading percentage{1, ReadNumber(rest).value_or(0) / 100, Text(u"(")};
  percentage.number.append(rest).append(u"/100)");
  return percentage;
}

Text NumberWithCommas(const std::vector<TextView>& parts) {
  if (AreGroups(parts, true)) return Joined(parts);
  if (parts.size() != 2 || !IsDigits(parts[1])) return {};
  const std::vector<TextView> groups = Split(parts[0], u'.');
  if (groups.size() > 1 && !AreGroups(groups, false)) return {};
  if (!IsDigits(groups[0])) return {};
  return Joined(groups).append(u".").append(parts[1]);
}

}  // namespace tovalin::review
