#include "evaluator/references.h"

namespace tovalin {
namespace {

void LookUp(Token& token, TextView name, const Symbols& symbols, const Campos* locals) {
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

}  // namespace

TextView NameBehindAt(const TokenList& list, const Token& token) {
  TextView span = list.Span(token);
  if (token.kind == TokenKind::Name && span.size() > 1 && (span[0] == u'"' || span[0] == u'\'')) {
    if (span.back() == span[0]) span.remove_suffix(1);
    span.remove_prefix(1);
  }
  return span.size() > 1 && span[0] == u'@' ? span.substr(1) : TextView();
}

TextView NameOf(const TokenList& list, const Token& operand) {
  const TextView behind_at = NameBehindAt(list, operand);
  return behind_at.empty() ? list.Span(operand) : behind_at;
}

TextView ResolveOperand(TokenList& list, Token& operand, const Symbols& symbols,
                        const Campos* locals) {
  const TextView name = NameOf(list, operand);
  LookUp(operand, name, symbols, locals);
  if (operand.scope == Scope::None || name.size() == operand.length) return name;
  if (list.text[operand.start] == u'@') list.at_signs.push_back(operand.start);
  operand.start = static_cast<std::uint32_t>(name.data() - list.text.data());
  operand.length = static_cast<std::uint32_t>(name.size());
  return name;
}

Text WithoutAtSigns(TextView formula, const std::vector<std::uint32_t>& at_signs) {
  Text replaced;
  replaced.reserve(formula.size());
  auto at_sign = at_signs.begin();
  std::uint32_t place = 0;  // without carriage returns
  for (std::size_t i = 0; i < formula.size(); ++i) {
    if (formula[i] == u'\r') {
      replaced.push_back(u'\r');
      if (formula.substr(i + 1).starts_with(u'\n')) replaced.push_back(formula[++i]);
    } else if (at_sign != at_signs.end() && *at_sign == place++) {
      ++at_sign;
    } else {
      replaced.push_back(formula[i]);
    }
  }
  return replaced;
}

}  // namespace tovalin
