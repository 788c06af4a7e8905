#include "review/source.h"

#include <algorithm>

#include "evaluator/check.h"
#include "evaluator/postfix.h"
#include "review/meant_number.h"

namespace tovalin::review {
namespace {

// "ROUND" "(" and "TO" "DAY(": a function may be found within another word.
bool OpensUnknownCall(const Token& name, const Token& next) {
  if (next.kind == TokenKind::Open) return true;
  return next.kind == TokenKind::Function && next.is_opener &&
         name.start + name.length == next.start;
}

}  // namespace

Source::Source(const Surroundings& surroundings, const Text& formula)
    : surroundings_(surroundings), list_(surroundings.split(formula)) {
  CheckTokens(list_, surroundings.symbols, surroundings.locals);
  const bool can_be_evaluated = OnlyNamesAreWrong();
  JoinTokens();
  MatchBrackets();
  if (can_be_evaluated) FindOrder();
}

bool Source::OnlyNamesAreWrong() const {
  return std::ranges::all_of(
      list_.faults, [](const Fault& fault) { return fault.code == FaultCode::UndefinedVariable; });
}

// Numbers in another spelling become numbers, and unknown names with a bracket calls.
void Source::JoinTokens() {
  std::vector<Token>& tokens = list_.tokens;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < tokens.size(); ++kept) {
    Token token = tokens[i];
    std::size_t taken = 1;
    const bool is_unknown = token.kind == TokenKind::Name && token.scope == Scope::None;
    if (is_unknown) {
      if (auto meant = ReadMeantNumber(list_, i)) {
        taken = meant->tokens;
        if (!meant->number.empty()) {
          token.kind = TokenKind::Number;
          token.number = meant->value;
        }
        token.length = tokens[i + taken - 1].start + tokens[i + taken - 1].length - token.start;
        meant_numbers_.push_back(
            {{token.start, token.start + token.length}, std::move(meant->number)});
      } else if (i + 1 < tokens.size() && OpensUnknownCall(token, tokens[i + 1])) {
        taken = 2;
        token.kind = TokenKind::Function;
        token.is_opener = true;
        token.record = nullptr;
        token.length = tokens[i + 1].start + tokens[i + 1].length - token.start;
      }
    }
    tokens[kept] = token;
    i += taken;
  }
  tokens.resize(kept);
}

void Source::MatchBrackets() {
  struct Level {
    std::uint32_t opener;
    std::uint32_t segment;
    bool is_call;
  };
  match_.assign(Count(), kNone);
  segment_.resize(Count());
  std::vector<Level> levels{{kNone, 0, false}};
  segments_.push_back({});
  const auto begin = [this](std::uint32_t first) {
    segments_.push_back({first, first, {}, kNone});
    return static_cast<std::uint32_t>(segments_.size() - 1);
  };
  for (std::uint32_t i = 0; i < Count(); ++i) {
    const Token& token = list_.tokens[i];
    const bool opens = token.kind == TokenKind::Open || IsCall(i);
    if (token.kind == TokenKind::Close && levels.size() > 1) {
      match_[i] = levels.back().opener;
      match_[levels.back().opener] = i;
      levels.pop_back();
    } else if (token.kind == TokenKind::Comma && levels.back().is_call) {
      levels.back().segment = begin(i + 1);
    }
    segment_[i] = levels.back().segment;
    Segment& segment = segments_[segment_[i]];
    if (token.kind != TokenKind::Comma || !levels.back().is_call) segment.last = i;
    if (token.kind == TokenKind::Operator && IsComparison(token.operator_code) && token.priority)
      segment.comparison = std::min(segment.comparison.value_or(*token.priority), *token.priority);
    const bool is_logical =
        token.kind == TokenKind::Operator &&
        (token.operator_code == OperatorCode::And || token.operator_code == OperatorCode::Or);
    if (is_logical && segment.logical == kNone) segment.logical = i;
    if (opens) levels.push_back({i, begin(i + 1), IsCall(i)});
  }
}

void Source::FindOrder() {
  Postfix postfix;
  ConvertToPostfix(list_, postfix);
  order_.reserve(postfix.items.size());
  for (const Item& item : postfix.items) {
    const auto token = std::ranges::lower_bound(list_.tokens, item.start, {}, &Token::start);
    order_.push_back(static_cast<std::uint32_t>(token - list_.tokens.begin()));
  }
}

Span Source::SpanOf(std::uint32_t place) const {
  const Token& token = list_.tokens[place];
  Span span{token.start, token.start + token.length};
  if (token.kind != TokenKind::Literal) return span;
  const TextView text = list_.text;
  if (text[span.start - 1] == u'"' && span.end < text.size() && text[span.end] == u'"')
    return {span.start - 1, span.end + 1};
  // Between delimiters the blanks at the ends were dropped.
  const std::uint32_t width = DelimiterLength();
  while (span.start > 0 && text[span.start - 1] == u' ') --span.start;
  while (span.end < text.size() && text[span.end] == u' ') ++span.end;
  return {span.start - std::min(span.start, width),
          std::min(span.end + width, static_cast<std::uint32_t>(text.size()))};
}

Text Source::Quoted(TextView text) const {
  const Text& delimiter = surroundings_.symbols.string_delimiter;
  const bool keeps_text = Trim(text).size() == text.size();
  const bool is_usual = delimiter == u"'" && text.find(u'\'') == TextView::npos;
  const TextView quote = is_usual && keeps_text ? TextView(delimiter) : TextView(u"\"");
  return Text(quote).append(text).append(quote);
}

const BuiltinFunction* FunctionRow(const Token& token) {
  if (token.builtin || !token.record) return token.builtin;
  const auto rows = BuiltinFunctions();
  const auto found = std::ranges::find_if(rows, [&](const BuiltinFunction* row) {
    return !row->call && EqualFolded(row->word, Trim(token.record->Name()));
  });
  return found == rows.end() ? nullptr : *found;
}

std::vector<const Campo*> FormulaVariablesIn(const Surroundings& surroundings,
                                             const Text& formula) {
  TokenList list = surroundings.split(formula);
  CheckTokens(list, surroundings.symbols, surroundings.locals);
  std::vector<const Campo*> variables;
  for (const Token& token : list.tokens) {
    const bool is_variable = token.scope == Scope::Local || token.scope == Scope::Variable;
    if (token.kind == TokenKind::Name && is_variable && token.record->HasFormula())
      variables.push_back(token.record);
  }
  std::ranges::sort(variables, std::less<>());
  variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
  return variables;
}

bool IsComparison(OperatorCode code) {
  return code >= OperatorCode::Greater && code <= OperatorCode::Equal;
}

}  // namespace tovalin::review
