#include "evaluator/check.h"

#include <algorithm>

#include "tovalin/convert.h"

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

// What a name counts as among the operands of a formula.
enum class Reading { Unknown, Operand, Opening };  // an operand must follow an Opening

Reading ReadingOf(TextView name, const Symbols& symbols, const Campos* locals) {
  if (ReadNumber(name) || (locals && locals->Find(name))) return Reading::Operand;
  if (symbols.operators->Find(name) || symbols.functions->Find(name)) return Reading::Opening;
  if (symbols.Find(name)) return Reading::Operand;
  if (symbols.separators->List().Find(name) == KeyedList<Variant>::kNotFound)
    return Reading::Unknown;
  return name == u")" ? Reading::Operand : Reading::Opening;
}

// Whether an operand must follow the name.
bool CheckReading(TokenList& list, const Token& token, TextView name, const Symbols& symbols,
                  const Campos* locals) {
  const Reading reading = ReadingOf(name, symbols, locals);
  if (reading == Reading::Unknown)
    list.faults.push_back(
        MakeFault(FaultCode::UndefinedVariable, token, Text(kUndefined).append(name)));
  return reading == Reading::Opening;
}

bool CheckName(TokenList& list, Token& token, const Symbols& symbols, const Campos* locals) {
  const std::uint32_t start = token.start;
  const std::uint32_t length = token.length;
  const TextView name = ResolveOperand(list, token, symbols, locals);
  if (token.scope != Scope::None && name.size() == length) return false;
  Token as_written = token;
  as_written.start = start;
  as_written.length = length;
  return CheckReading(list, as_written, name, symbols, locals);
}

// A literal that begins with "@" deliberately counts as a name here.
bool CheckLiteral(TokenList& list, const Token& token, const Symbols& symbols,
                  const Campos* locals) {
  const TextView name = list.NameBehindAt(token);
  return !name.empty() && CheckReading(list, token, name, symbols, locals);
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
        break;
      case TokenKind::Name:
        pending = CheckName(list, token, symbols, locals);
        break;
      case TokenKind::Literal:
        pending = CheckLiteral(list, token, symbols, locals);
        break;
      case TokenKind::Number:
      case TokenKind::Close:
      case TokenKind::Value:
        pending = false;
        break;
    }
  }
  if (!pending) return;
  const Token& last = list.tokens.back();
  list.faults.push_back(
      {FaultCode::MissingExpression, last.start + last.length, 0, Text(kMissing)});
}

// Moves the spans of `faults` from `text` to the text that the host gave, of which
// `text` is a copy with some characters left out.
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

Ref<Collection> FaultRecord(const Variant& expression, const Fault& fault) {
  auto record = Make<Collection>();
  const auto add = [&](TextView key, Variant value) { record->Add(value, Variant(key)); };
  add(u"Codigo", static_cast<std::int32_t>(fault.code));
  add(u"Inicio", static_cast<std::int32_t>(fault.start + 1));
  add(u"Largo", static_cast<std::int32_t>(fault.length));
  add(u"Mensaje", fault.message);
  add(u"Expresion", expression);
  return record;
}

}  // namespace

TextView ResolveOperand(TokenList& list, Token& operand, const Symbols& symbols,
                        const Campos* locals) {
  const TextView name = list.NameOf(operand);
  LookUp(operand, name, symbols, locals);
  if (operand.scope == Scope::None || name.size() == operand.length) return name;
  if (list.text[operand.start] == u'@') list.at_signs.push_back(operand.start);
  operand.start = static_cast<std::uint32_t>(name.data() - list.text.data());
  operand.length = static_cast<std::uint32_t>(name.size());
  return name;
}

void CheckTokens(TokenList& list, const Symbols& symbols, const Campos* locals) {
  const std::vector<Fault> faults = StructuralFaults(list);
  // A formula of several tokens deliberately has these two mistakes told twice:
  // hosts count the lines of LastError.
  for (int times = list.tokens.size() > 1 ? 2 : 1; times > 0; --times)
    list.faults.insert(list.faults.end(), faults.begin(), faults.end());
  CheckOperands(list, symbols, locals);
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

void AppendFaultRecords(Collection& records, const FaultReport& report) {
  std::vector<Fault> faults = report.faults;
  MoveSpansToHostText(faults, report.text, report.host_text);
  const Variant expression(report.host_text);  // shared by all records
  for (const Fault& fault : faults) records.Add(FaultRecord(expression, fault));
}

void AppendFaultLines(Text& lines, std::size_t& number, const FaultReport& report) {
  for (const Fault& fault : report.faults)
    lines.append(FromUtf8(std::to_string(++number)))
        .append(u" - ")
        .append(fault.message)
        .append(u"\r\n");
}

}  // namespace tovalin
