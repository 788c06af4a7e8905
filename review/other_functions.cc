#include "review/other_functions.h"

#include <string>

#include "review/suggestions.h"

namespace tovalin::review {
namespace {

// What stands between the commas of a call: from one token to another, the last included.
struct Argument {
  std::uint32_t first;
  std::uint32_t last;
  bool has_operator = false;
};

struct CallParts {
  std::vector<Argument> arguments;
  std::vector<std::uint32_t> commas;
  bool is_complete = true;  // no argument is empty
};

CallParts PartsOf(const Source& source, std::uint32_t opener, std::uint32_t close) {
  CallParts parts;
  std::uint32_t first = opener + 1;
  bool has_operator = false;
  const auto end = [&](std::uint32_t next) {
    if (first == next)
      parts.is_complete = false;
    else
      parts.arguments.push_back({first, next - 1, has_operator});
    first = next + 1;
    has_operator = false;
  };
  for (std::uint32_t i = first; i < close; ++i) {
    const std::uint32_t other = source.Match(i);
    if (other != kNone && other > i) {
      i = other;
    } else if (source.Is(i, TokenKind::Comma)) {
      parts.commas.push_back(i);
      end(i);
    } else {
      has_operator |= source.Is(i, TokenKind::Operator);
    }
  }
  if (first < close || !parts.commas.empty()) end(close);
  return parts;
}

// The decimals of ROUND have to stand there: the pattern is made of them. Negative ones
// round to tens and hundreds, as Redondear does.
std::optional<Repair> Rounded(const Source& source, std::uint32_t opener, const CallParts& parts) {
  constexpr double kMostDecimals = 15;
  std::vector<AbstractValue> arguments(1);
  arguments[0].first = parts.arguments[0].first;
  arguments[0].last = parts.arguments[0].last;
  if (parts.arguments.size() == 1) return RoundedToDecimals(source, opener, arguments);
  const Argument& decimals = parts.arguments[1];
  const bool is_negative = source.IsOperator(decimals.first, OperatorCode::Subtract);
  const Token& number = source.At(decimals.last);
  if (decimals.last != decimals.first + is_negative || number.kind != TokenKind::Number ||
      number.number < 0 || number.number > kMostDecimals ||
      number.number != static_cast<int>(number.number))
    return std::nullopt;
  if (is_negative)
    return Repair()
        .Replace(source.SpanOf(opener), u"Redondear(")
        .Replace(source.SpanOf(decimals.first), u"");
  arguments.push_back(ConstantValue(number.number));
  return RoundedToDecimals(source, opener, arguments);
}

// An operator in place of a comma, with one blank on each side.
Text InPlaceOf(const Source& source, Span comma, TextView between) {
  const TextView text = source.FormulaText();
  if (between.front() == u' ' && comma.start > 0 && text[comma.start - 1] == u' ')
    between.remove_prefix(1);
  if (between.back() == u' ' && comma.end < text.size() && text[comma.end] == u' ')
    between.remove_suffix(1);
  return Text(between);
}

Text WithCount(TextView text, std::size_t count) {
  Text result(text);
  const std::size_t place = result.find(u"{n}");
  if (place != Text::npos) result.replace(place, 3, FromUtf8(std::to_string(count)));
  return result;
}

}  // namespace

std::optional<Repair> OtherFunctionRepair(const Source& source, const OtherName& row,
                                          std::uint32_t start, std::uint32_t opener) {
  const std::uint32_t close = source.Match(opener);
  if (close == kNone) return std::nullopt;
  const CallParts parts = PartsOf(source, opener, close);
  const std::size_t count = parts.arguments.size();
  if (!parts.is_complete || count < row.least || count > row.most) return std::nullopt;
  if (row.before.empty()) return Rounded(source, opener, parts);
  Repair repair;
  repair.Replace({start, source.SpanOf(opener).end}, Text(row.before));
  for (std::uint32_t comma : parts.commas)
    repair.Replace(source.SpanOf(comma), InPlaceOf(source, source.SpanOf(comma), row.between));
  const bool is_joined = row.between.front() == u' ';
  for (const Argument& argument : parts.arguments)
    if (is_joined && argument.has_operator)
      repair.Wrap(source.SpanOf(argument.first, argument.last), u"(", u")");
  const Span end = source.SpanOf(close);
  TextView after = row.after;
  if (after.starts_with(u' ') && source.FormulaText()[end.start - 1] == u' ')
    after.remove_prefix(1);
  return repair.Replace(end, WithCount(after, count));
}

std::optional<Repair> LogicalCall(const Source& source, std::uint32_t token) {
  const OtherName* row = FindOtherName(source.Word(token));
  if (!row || !source.Is(token + 1, TokenKind::Open)) return std::nullopt;
  return OtherFunctionRepair(source, *row, source.SpanOf(token).start, token + 1);
}

}  // namespace tovalin::review
