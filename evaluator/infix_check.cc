#include "evaluator/infix_check.h"

#include <algorithm>

#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr TextView kDuplicate = u"Operador duplicado ";
constexpr TextView kBrackets =
    u"Número de parentesis abiertos diferente al número de parentesis cerrados";
constexpr TextView kUndefined = u"Variable no definida ";
constexpr TextView kMissing = u"Falta una expresión";

Fault MakeFault(FaultCode code, const Token& token, Text message) {
  return {code, token.start, token.length, std::move(message)};
}

// How a token counts in the balance of brackets: by its last character.
int BracketBalance(const TokenList& list, const Token& token) {
  switch (token.kind) {
    case TokenKind::Open:
      return 1;
    case TokenKind::Close:
      return -1;
    case TokenKind::Function:
      return token.is_opener ? 1 : 0;
    case TokenKind::Name: {
      const TextView span = list.Span(token);
      return span.ends_with(u'(') ? 1 : span.ends_with(u')') ? -1 : 0;
    }
    default:
      return 0;
  }
}

// Two operators in a row, and brackets that do not match.
std::vector<Fault> StructuralFaults(const TokenList& list) {
  std::vector<Fault> faults;
  std::ptrdiff_t open = 0;
  bool after_operator = false;
  for (const Token& token : list.tokens) {
    const bool is_operator = token.kind == TokenKind::Operator;
    if (is_operator && after_operator)
      faults.push_back(MakeFault(FaultCode::DuplicateOperator, token,
                                 Text(kDuplicate).append(list.Spelling(token))));
    after_operator = is_operator;
    open += BracketBalance(list, token);
  }
  if (open != 0)
    faults.push_back({FaultCode::BracketMismatch, 0, static_cast<std::uint32_t>(list.text.size()),
                      Text(kBrackets)});
  return faults;
}

// The name behind the "@" of a token, without the quotes around it, or nothing
// for a token that has no such form. The literal "@" alone is no name.
TextView NameBehindAt(const TokenList& list, const Token& token) {
  TextView span = list.Span(token);
  if (token.kind == TokenKind::Name && span.size() > 1 && (span[0] == u'"' || span[0] == u'\'')) {
    if (span.back() == span[0]) span.remove_suffix(1);
    span.remove_prefix(1);
  }
  return span.size() > 1 && span[0] == u'@' ? span.substr(1) : TextView();
}

bool IsKnown(TextView name, const Symbols& symbols, const Campos* locals) {
  return ReadNumber(name) || (locals && locals->Find(name)) || symbols.operators->Find(name) ||
         symbols.functions->Find(name) || symbols.Find(name) ||
         symbols.separators->List().Find(name) != KeyedList<Variant>::kNotFound;
}

void AddUndefined(TokenList& list, const Token& token, TextView name) {
  list.faults.push_back(
      MakeFault(FaultCode::UndefinedVariable, token, Text(kUndefined).append(name)));
}

void CheckName(TokenList& list, Token& token, const Symbols& symbols, const Campos* locals) {
  const TextView behind_at = NameBehindAt(list, token);
  const TextView name = behind_at.empty() ? list.Span(token) : behind_at;
  ResolveName(token, name, symbols, locals);
  if (token.scope == Scope::None && !IsKnown(name, symbols, locals))
    AddUndefined(list, token, name);
  if (behind_at.empty() || token.scope == Scope::None) return;
  token.start = static_cast<std::uint32_t>(name.data() - list.text.data());
  token.length = static_cast<std::uint32_t>(name.size());
}

// A literal that begins with "@" deliberately counts as a name here.
void CheckLiteral(TokenList& list, const Token& token, const Symbols& symbols,
                  const Campos* locals) {
  const TextView name = NameBehindAt(list, token);
  if (!name.empty() && !IsKnown(name, symbols, locals)) AddUndefined(list, token, name);
}

void CheckOperands(TokenList& list, const Symbols& symbols, const Campos* locals) {
  bool pending = false;  // an operand must follow
  for (Token& token : list.tokens) {
    switch (token.kind) {
      case TokenKind::Operator:
      case TokenKind::Function:
      case TokenKind::Open:
      case TokenKind::Comma:
        pending = true;
        continue;
      case TokenKind::Name:
        CheckName(list, token, symbols, locals);
        break;
      case TokenKind::Literal:
        CheckLiteral(list, token, symbols, locals);
        break;
      case TokenKind::Number:
      case TokenKind::Close:
        break;
    }
    pending = false;
  }
  if (!pending) return;
  const Token& last = list.tokens.back();
  list.faults.push_back(
      {FaultCode::MissingExpression, last.start + last.length, 0, Text(kMissing)});
}

}  // namespace

void CheckTokens(TokenList& list, const Symbols& symbols, const Campos* locals) {
  const std::vector<Fault> faults = StructuralFaults(list);
  // A formula of several tokens deliberately has these two mistakes told twice:
  // hosts count the lines of LastError.
  for (int times = list.tokens.size() > 1 ? 2 : 1; times > 0; --times)
    list.faults.insert(list.faults.end(), faults.begin(), faults.end());
  CheckOperands(list, symbols, locals);
}

void ResolveName(Token& token, TextView name, const Symbols& symbols, const Campos* locals) {
  if (locals && (token.record = locals->Find(name))) {
    token.scope = Scope::Local;
  } else if ((token.record = symbols.variables->Find(name))) {
    token.scope = Scope::Variable;
  } else if ((token.record = symbols.constants->Find(name))) {
    token.scope = Scope::Constant;
  } else {
    token.scope = Scope::None;
  }
}

Text NormalisedExpression(const TokenList& list) {
  if (list.tokens.size() == 1) return Text(Trim(list.Spelling(list.tokens[0])));
  Text expression;
  expression.reserve(list.text.size() + list.tokens.size());
  for (const Token& token : list.tokens) {
    list.AppendSpelling(expression, token);
    expression.push_back(u' ');
  }
  return expression;
}

void MoveSpansToHostText(std::vector<Fault>& faults, TextView text, TextView host_text) {
  if (faults.empty() || text.size() == host_text.size()) return;
  std::vector<std::uint32_t> place(text.size() + 1, static_cast<std::uint32_t>(host_text.size()));
  std::size_t host = 0;
  for (std::size_t i = 0; i < text.size(); ++i, ++host) {
    while (host < host_text.size() && host_text[host] != text[i]) ++host;
    place[i] = static_cast<std::uint32_t>(std::min(host, host_text.size()));
  }
  for (Fault& fault : faults) {
    const std::uint32_t end = place[fault.start + fault.length];
    fault.start = place[fault.start];
    fault.length = end - fault.start;
  }
}

}  // namespace tovalin
