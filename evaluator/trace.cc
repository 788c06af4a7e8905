#include "evaluator/trace.h"

#include <array>

#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr TextView kApplication = u"Evaluador";
constexpr TextView kSection = u"Posfijo";
constexpr std::string_view kKeys[] = {"Expresion", "Posfijo", "Resultado", "ElementosPila"};
constexpr std::size_t kResultKey = 2;

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

void Trace::Begin(const Ref<Plan>& plan) {
  if (shown_ == plan && !plan->trace_varies) return;
  Write(0, std::array<std::string_view, 2>{plan->trace_expression, plan->trace_postfix});
  shown_ = plan;
}

void Trace::End(const Ref<Plan>& plan, const Variant& result, std::size_t left) {
  result_ = ResultText(result);
  left_ = std::to_string(left);
  if (shown_ == plan)
    Write(kResultKey, std::array<std::string_view, 2>{result_, left_});
  else  // a handler has evaluated another formula since Begin
    Write(0, std::array<std::string_view, 4>{plan->trace_expression, plan->trace_postfix, result_,
                                             left_});
  shown_ = plan;
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
