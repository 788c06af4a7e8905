#include "review/rules_names.h"

#include <algorithm>

#include "review/nearest.h"
#include "review/other_functions.h"
#include "review/suggestions.h"

namespace tovalin::review {
namespace {

// The nearest of many names is looked for as often at most.
constexpr int kMostSearches = 50;

class NameRules {
 public:
  NameRules(const Source& source, const Surroundings& surroundings, Findings& findings)
      : source_(source), surroundings_(surroundings), findings_(findings) {}

  void Run() {
    for (const MeantNumber& number : source_.MeantNumbers()) CheckNumber(number);
    for (std::uint32_t i = 0; i < source_.Count() && !findings_.IsFull(); ++i) {
      const Token& token = source_.At(i);
      if (token.kind == TokenKind::Function && !token.record)
        CheckCall(i);
      else if (token.kind == TokenKind::Name && token.scope == Scope::None && !IsMeantNumber(token))
        CheckName(i);
    }
  }

 private:
  void CheckNumber(const MeantNumber& number) {
    const Text word = Shown(source_.TextOf(number.span));
    if (number.number.empty()) {
      findings_.Add(Rule::NotANumber, number.span,
                    {word, u"Un número lleva un solo punto decimal y ningún separador de miles."});
      return;
    }
    findings_.Add(Rule::NotANumber, number.span,
                  {word, Text(u"Escriba ").append(number.number).append(u".")},
                  Repair().Replace(number.span, number.number));
  }

  bool IsMeantNumber(const Token& token) const {
    return std::ranges::binary_search(source_.MeantNumbers(), token.start, {},
                                      [](const MeantNumber& number) { return number.span.start; });
  }

  // The name of a call that is none, without its bracket.
  void CheckCall(std::uint32_t token) {
    const Span span = source_.SpanOf(token);
    const Text word(Trim(source_.TextOf({span.start, span.end - 1})));
    const Span name{span.start, span.start + static_cast<std::uint32_t>(word.size())};
    const Text opener = Text(word).append(u"(");
    if (surroundings_.symbols.functions->Find(opener)) {
      findings_.Add(Rule::SpacedCall, name, {word, opener}, Repair().Replace(span, opener));
    } else if (const OtherName* row = FindOtherName(word)) {
      findings_.Add(Rule::OtherFunction, name, {word, Text(row->shown)},
                    OtherFunctionRepair(source_, *row, span.start, token));
    } else if (--searches_ >= 0) {
      const Text nearest = NearestFunction(surroundings_, word);
      if (nearest.empty()) return;
      findings_.Add(Rule::NearName, name, {word, nearest}, Repair().Replace(span, nearest));
    }
  }

  void CheckName(std::uint32_t token) {
    const Span span = source_.SpanOf(token);
    const Text word(source_.Word(token));
    const Campo* function = surroundings_.symbols.functions->Find(Text(word).append(u"("));
    if (function) {
      const Text call = Text(word).append(u"( )");
      const bool takes_none = EqualFolded(word, u"DATE") || EqualFolded(word, u"NOW");
      findings_.Add(Rule::BareFunction, span, {word, call},
                    takes_none ? std::optional(Repair().Replace(span, call)) : std::nullopt);
    } else if (--searches_ >= 0) {
      const Text nearest = NearestName(surroundings_, word);
      if (nearest.empty()) return;
      findings_.Add(Rule::NearName, span, {Shown(word), nearest}, Repair().Replace(span, nearest));
    }
  }

  const Source& source_;
  const Surroundings& surroundings_;
  Findings& findings_;
  int searches_ = kMostSearches;
};

Rule RuleOf(FaultCode code) {
  return static_cast<Rule>(static_cast<int>(code) - static_cast<int>(FaultCode::UnclosedLiteral));
}

}  // namespace

void CheckNames(const Source& source, const Surroundings& surroundings, Findings& findings) {
  for (const Fault& fault : source.Faults())
    findings.Add(RuleOf(fault.code), {fault.start, fault.start + fault.length}, {fault.message});
  NameRules(source, surroundings, findings).Run();
}

void CheckLiterals(const Source& source, Findings& findings) {
  const TextView text = source.FormulaText();
  for (std::uint32_t i = 0; i < source.Count() && !findings.IsFull(); ++i) {
    if (!source.Is(i, TokenKind::Literal)) continue;
    const Span span = source.SpanOf(i);
    const Token& token = source.At(i);
    if (text[span.start] == u'"') continue;
    const std::uint32_t delimiter = source.DelimiterLength();
    const Span inside{span.start + delimiter, span.end - delimiter};
    if (inside.end - inside.start <= token.length) continue;
    const TextView whole = source.TextOf(inside);
    std::optional<Repair> repair;
    if (whole.find(u'"') == TextView::npos)
      repair = Repair().Replace(span, Text(u"\"").append(whole).append(u"\""));
    findings.Add(Rule::BlanksDropped, span, {Shown(source.TextOf(span)), Shown(source.Word(i))},
                 std::move(repair));
  }
}

}  // namespace tovalin::review
