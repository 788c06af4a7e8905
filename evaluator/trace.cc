#include "evaluator/trace.h"

#include <array>
#include <bit>

#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr TextView kApplication = u"Evaluador";
constexpr TextView kSection = u"Posfijo";
constexpr std::string_view kKeys[] = {"Expresion", "Posfijo", "Resultado", "ElementosPila"};
constexpr std::size_t kResultKey = 2;

std::string_view ExpressionOf(const Engine::Prepared& prepared) {
  return prepared.expression ? *prepared.expression : prepared.plan->trace_expression;
}

std::string ResultText(const Variant& result) {
  try {
    return result.Is(Subtype::Null) ? std::string() : ToUtf8(ToText(result));
  } catch (const Error&) {
    return {};  // an object has no text
  }
}

}  // namespace

Trace::Trace()
    : section_(kApplication, kSection,
               std::vector<std::string>(std::begin(kKeys), std::end(kKeys))) {}

void Trace::UseStore(Ref<SettingsStore> store) {
  store_ = std::move(store);
  shown_ = nullptr;
}

bool Trace::Shows(const Engine::Prepared& prepared) const {
  return shown_ == prepared.plan && !prepared.expression &&
         shown_edition_ == prepared.plan->trace_edition;
}

void Trace::Remember(const Engine::Prepared& prepared) {
  shown_ = prepared.expression ? nullptr : prepared.plan;
  shown_edition_ = prepared.plan->trace_edition;
}

void Trace::MakeTexts(Plan& plan) {
  if (plan.trace_edition != 0) return;
  plan.trace_expression = ToUtf8(plan.text);
  plan.trace_postfix = ToUtf8(PostfixText(plan));
  plan.trace_edition = ++last_edition_;
}

// The text of a result that comes again and again is made once.
void Trace::KeepResult(const Variant& result, std::size_t left) {
  const double* number = result.IfDouble();
  const std::optional<std::uint64_t> bits =
      number ? std::optional(std::bit_cast<std::uint64_t>(*number)) : std::nullopt;
  if (!bits || bits != number_bits_) result_ = ResultText(result);
  number_bits_ = bits;
  left_ = std::to_string(left);
}

void Trace::Begin(const Engine::Prepared& prepared) {
  MakeTexts(*prepared.plan);
  if (Shows(prepared)) return;
  Write(0, std::array<std::string_view, 2>{ExpressionOf(prepared), prepared.plan->trace_postfix});
  Remember(prepared);
}

void Trace::End(const Engine::Prepared& prepared, const Variant& result, std::size_t left) {
  KeepResult(result, left);
  if (Shows(prepared))
    Write(kResultKey, std::array<std::string_view, 2>{result_, left_});
  else  // the text has no plan to itself, or a handler evaluated another formula
    Write(0, std::array<std::string_view, 4>{ExpressionOf(prepared), prepared.plan->trace_postfix,
                                             result_, left_});
  Remember(prepared);
}

void Trace::Write(std::size_t first, std::span<const std::string_view> values) {
  if (!store_) {
    section_.Put(first, values);
    return;
  }
  try {
    for (std::size_t i = 0; i < values.size(); ++i)
      store_->Save(kApplication, kSection, FromUtf8(kKeys[first + i]), FromUtf8(values[i]));
  } catch (const Error&) {
    // The evaluation does not suffer from a trace that cannot be written.
  }
}

}  // namespace tovalin
