#include "review/suggestions.h"

#include <algorithm>

#include "review/meant_number.h"
#include "tovalin/clock.h"
#include "tovalin/convert.h"
#include "tovalin/locale.h"

namespace tovalin::review {
namespace {

// Numbers with commas between them that nothing else stands between, from `first` on.
struct NumberRun {
  std::uint32_t last;
  Text number;  // empty when they are none
};

NumberRun RunAt(const Source& source, std::uint32_t first) {
  std::vector<TextView> parts{source.Word(first)};
  std::uint32_t last = first;
  const auto goes_on = [&] {
    return source.Is(last + 1, TokenKind::Comma) && source.Is(last + 2, TokenKind::Number) &&
           source.AreTight(last, last + 1) && source.AreTight(last + 1, last + 2);
  };
  while (goes_on()) parts.push_back(source.Word(last += 2));
  return {last, parts.size() > 1 ? NumberWithCommas(parts) : Text()};
}

// Joins the runs of numbers from `first` to `last`, without what stands in brackets
// within; how many values fewer that makes goes to `joined`.
Repair JoinedNumbers(const Source& source, std::uint32_t first, std::uint32_t last,
                     std::size_t& joined) {
  Repair repair;
  for (std::uint32_t i = first; i <= last; ++i) {
    const std::uint32_t close = source.Match(i);
    if (close != kNone && close > i) {
      i = close;
    } else if (source.Is(i, TokenKind::Number)) {
      NumberRun run = RunAt(source, i);
      if (!run.number.empty()) {
        repair.Replace(source.SpanOf(i, run.last), std::move(run.number));
        joined += (run.last - i) / 2;
      }
      i = run.last;
    }
  }
  return repair;
}

// "2 (3 + 4)" and "(A)(B)" were meant as products, two texts as joined.
std::optional<Repair> JoinedNeighbours(const Source& source,
                                       std::span<const AbstractValue> values) {
  Repair repair;
  for (std::size_t i = 1; i < values.size(); ++i) {
    if (values[i].first != values[i - 1].last + 1) return std::nullopt;
    const bool is_text = values[i].IsText() || values[i - 1].IsText();
    const Span gap{source.SpanOf(values[i - 1].last).end, source.SpanOf(values[i].first).start};
    repair.Replace(gap, is_text ? u" & " : u" * ");
  }
  return repair;
}

// The largest of several as calls of two values each.
std::optional<Repair> Nested(const Source& source, const BuiltinFunction& row,
                             std::span<const AbstractValue> arguments) {
  constexpr std::size_t kMost = 32;
  if (arguments.size() > kMost) return std::nullopt;
  Repair repair;
  const std::uint32_t start = source.SpanOf(arguments[0].first).start;
  for (std::size_t i = arguments.size() - 2; i > 0; --i)
    repair.Wrap({start, source.SpanOf(arguments[i].last).end}, Text(row.word).append(u" "), u" )");
  return repair;
}

// What a spreadsheet takes for an argument that is left out.
struct LeftOut {
  TextView word;
  std::size_t given;
  TextView rest;
};

constexpr LeftOut kLeftOut[] = {
    {u"Redondear(", 1, u" , 0"}, {u"LEFT(", 1, u" , 1"},    {u"IZQUIERDA(", 1, u" , 1"},
    {u"RIGHT(", 1, u" , 1"},     {u"DERECHA(", 1, u" , 1"}, {u"AJUSTAR(", 2, u" , 0"},
};

Text PartOfDate(const char16_t* function, const Variant& date) {
  const HostClock clock;
  return ToText(FindFunction(function)->Call(std::span(&date, 1), {clock}));
}

}  // namespace

std::optional<Repair> JoinedValues(const Source& source, std::span<const AbstractValue> values) {
  Repair repair;
  std::size_t joined = 0;
  for (std::uint32_t i = 0; i < source.Count(); ++i) {
    if (!source.Is(i, TokenKind::Number) || source.IsArgumentComma(i + 1)) continue;
    NumberRun run = RunAt(source, i);
    if (!run.number.empty()) {
      repair.Replace(source.SpanOf(i, run.last), std::move(run.number));
      joined += (run.last - i) / 2;
    }
    i = run.last;
  }
  if (joined > 0) return repair;
  return JoinedNeighbours(source, values);
}

std::optional<Repair> SeparatedOperator(const Source& source, std::uint32_t token) {
  const Span span = source.SpanOf(token);
  Repair repair;
  if (source.At(token).operator_code == OperatorCode::Negating)
    return repair.Replace(span, u" - 1 * ");
  if (source.Is(token + 1, TokenKind::Number) && source.AreTight(token, token + 1))
    return repair.Replace(source.SpanOf(token, token + 1),
                          Text(u"*-(1").append(source.Word(token + 1)).append(u")"));
  if (source.Is(token + 1, TokenKind::Close)) return repair.Replace(span, u"*-(1)");
  return std::nullopt;
}

std::optional<Repair> BetweenWithComma(const Source& source, std::uint32_t token,
                                       const AbstractValue& low, const AbstractValue& high) {
  const std::uint32_t next = high.last + 1;
  const bool is_between = low.last + 1 == token && high.first == token + 1;
  if (!is_between || !source.IsOperator(next, OperatorCode::And)) return std::nullopt;
  return Repair().Replace(source.SpanOf(token), u",").Replace(source.SpanOf(next), u"BETWEEN");
}

std::optional<Repair> BracketedTested(const Source& source, std::uint32_t between) {
  const std::uint32_t first = source.SegmentOf(between).first;
  for (std::uint32_t i = first; i < between; ++i) {
    const std::uint32_t close = source.Match(i);
    if (close != kNone && close > i) {
      i = close;
    } else if (source.Is(i, TokenKind::Comma)) {
      if (i == first) return std::nullopt;
      return Repair().Wrap(source.SpanOf(first, i - 1), u"(", u")");
    }
  }
  return std::nullopt;
}

Repair BracketedComparisons(const Source& source, std::uint32_t token) {
  Repair repair;
  const Segment& segment = source.SegmentOf(token);
  if (segment.logical != token) return repair;
  std::uint32_t begin = segment.first;
  bool is_comparison = false;
  const auto end = [&](std::uint32_t next) {
    if (is_comparison) repair.Wrap(source.SpanOf(begin, next - 1), u"(", u")");
    begin = next + 1;
    is_comparison = false;
  };
  for (std::uint32_t i = segment.first; i <= segment.last; ++i) {
    const std::uint32_t close = source.Match(i);
    if (close != kNone && close > i) {
      i = close;
    } else if (source.Is(i, TokenKind::Operator)) {
      const OperatorCode code = source.At(i).operator_code;
      is_comparison |= IsComparison(code) || code == OperatorCode::Between;
      if (code == OperatorCode::And || code == OperatorCode::Or) end(i);
    }
  }
  end(segment.last + 1);
  return repair;
}

Repair AsNumber(const Source& source, const AbstractValue& value) {
  return Repair().Wrap(source.SpanOf(value.first, value.last), u"VAL( ", u" )");
}

std::optional<Repair> AsDate(const Source& source, const AbstractValue& text) {
  if (!text.is_constant || !text.ReadsAsDate()) return std::nullopt;
  Text call(u"SERIEFECHA( ");
  call.append(PartOfDate(u"YEAR", text.value)).append(u" , ");
  call.append(PartOfDate(u"MONTH", text.value)).append(u" , ");
  call.append(PartOfDate(u"DAY", text.value)).append(u" )");
  return Repair().Replace(source.SpanOf(text.first, text.last), std::move(call));
}

Repair WithLiteral(const Source& source, std::uint32_t literal, TextView text) {
  return Repair().Replace(source.SpanOf(literal), source.Quoted(text));
}

std::optional<Repair> RightCall(const Source& source, std::uint32_t token,
                                const BuiltinFunction& row,
                                std::span<const AbstractValue> arguments) {
  const std::size_t takes = row.Parameters().size();
  const std::uint32_t close = source.Match(token);
  if (close == kNone || arguments.empty()) return std::nullopt;
  if (arguments.size() > takes) {
    std::size_t joined = 0;
    Repair repair = JoinedNumbers(source, token + 1, close - 1, joined);
    if (arguments.size() - joined == takes) return repair;
    if (row.word == u"MAX(" || row.word == u"MIN(") return Nested(source, row, arguments);
    if (row.word == u"DATE(" && arguments.size() == 3)
      return Repair().Replace(source.SpanOf(token), u"SERIEFECHA(");
    return std::nullopt;
  }
  const auto* left_out = std::ranges::find(kLeftOut, row.word, &LeftOut::word);
  if (left_out == std::end(kLeftOut) || left_out->given != arguments.size()) return std::nullopt;
  const std::uint32_t end = source.SpanOf(arguments.back().last).end;
  return Repair().Replace({end, end}, Text(left_out->rest));
}

std::optional<Repair> RoundedToDecimals(const Source& source, std::uint32_t token,
                                        std::span<const AbstractValue> arguments) {
  const std::uint32_t close = source.Match(token);
  const double* places = arguments.size() > 1 ? arguments[1].value.IfDouble() : nullptr;
  if (close == kNone || arguments.empty() || (arguments.size() > 1 && !places)) return std::nullopt;
  const std::size_t count = places ? static_cast<std::size_t>(*places) : 0;
  const Text pattern = count > 0 ? Text(u"0.").append(count, u'0') : Text(u"0");
  const char16_t decimal = CurrentLocale().decimal_separator;
  const bool is_point = decimal == u'.';
  Text rest = Text(u" , ").append(source.Quoted(pattern)).append(u" ) )");
  if (!is_point)
    rest.insert(rest.size() - 1, Text(u", ")
                                     .append(source.Quoted(Text(1, decimal)))
                                     .append(u" , ")
                                     .append(source.Quoted(u"."))
                                     .append(u" ) "));
  return Repair()
      .Replace(source.SpanOf(token), is_point ? u"VAL( FORMAT(" : u"VAL( ReemplazarCadena( FORMAT(")
      .Replace({source.SpanOf(arguments[0].last).end, source.SpanOf(close).end}, std::move(rest));
}

std::optional<Repair> OnlyFirstArgument(const Source& source, std::uint32_t token,
                                        std::span<const AbstractValue> arguments, TextView opener) {
  const std::uint32_t close = source.Match(token);
  if (close == kNone || arguments.empty()) return std::nullopt;
  const Span first = source.SpanOf(arguments[0].first, arguments[0].last);
  return Repair()
      .Replace({source.SpanOf(token).start, first.start}, Text(opener))
      .Replace({first.end, source.SpanOf(close).end}, u" )");
}

}  // namespace tovalin::review
