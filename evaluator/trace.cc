#include "evaluator/trace.h"

#include <bit>
#include <utility>

#include "frame/ini_text.h"
#include "frame/number_text.h"
#include "frame/temporarily.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

constexpr TextView kApplication = u"Evaluador";
constexpr TextView kSection = u"Posfijo";
// As lines begin with them.
constexpr std::string_view kExpressionKey = "Expresion=";
constexpr std::string_view kPostfixKey = "Posfijo=";
constexpr std::string_view kResultKey = "Resultado=";
constexpr std::string_view kLeftKey = "ElementosPila=";

// The parts of the section: what is known before an evaluation, and its result.
enum Part : std::size_t { kFormula, kResult, kParts };

std::vector<std::string> Keys() {
  std::vector<std::string> keys;
  for (std::string_view key : {kExpressionKey, kPostfixKey, kResultKey, kLeftKey})
    keys.emplace_back(key.substr(0, key.size() - 1));
  return keys;
}

// Adds the line of an entry whose text, in UTF-8, `append_text` adds.
template <class AppendText>
void AddEntry(std::string& lines, std::string_view key, AppendText append_text) {
  lines.append(key);
  const std::size_t start = lines.size();
  append_text(lines);
  EscapeIniTextFrom(start, lines);
  lines.push_back('\n');
}

void AddExpression(std::string& lines, TextView expression) {
  AddEntry(lines, kExpressionKey, [=](std::string& utf8) { AppendUtf8(utf8, expression); });
}

void AppendResult(std::string& utf8, const Variant& result) {
  try {
    if (!result.Is(Subtype::Null)) AppendUtf8(utf8, ToText(result));
  } catch (const Error&) {
    // An object has no text.
  }
}

}  // namespace

Trace::Trace() : section_(kApplication, kSection, kParts, Keys()) {}

// What is replaced goes last: it may be the host's last hold on the evaluator.
void Trace::UseStore(Ref<SettingsStore> store) {
  const Ref<Plan> former = std::exchange(shown_, nullptr);
  shown_bits_.reset();
  std::swap(store_, store);
}

void Trace::Begin(const Ref<Plan>& plan, const Text* expression) {
  const Ref<Plan> former = ShowFormula(plan, expression);
  if (!store_) section_.Put();
}

void Trace::End(const Ref<Plan>& plan, const Text* expression, const Variant& result,
                std::size_t left) {
  const Ref<Plan> former = ShowFormula(plan, expression);
  ShowResult(result, left);
  if (!store_) section_.Put();
}

// Nothing to do when the formula stands there: unless the text has no plan to itself,
// or a handler evaluated another one. Answers the plan that stood there, which goes last:
// an object that it holds may let go of the evaluator.
Ref<Plan> Trace::ShowFormula(const Ref<Plan>& plan, const Text* expression) {
  const bool is_shown = shown_ == plan && shown_edition_ == plan->trace_edition;
  if (is_shown && !expression) return nullptr;
  MakeLines(*plan);
  if (expression) {
    lines_.clear();
    AddExpression(lines_, *expression);
    lines_.append(plan->trace_lines, plan->trace_lines.find('\n') + 1);
    Show(kFormula, lines_);
    return std::exchange(shown_, nullptr);
  }
  Show(kFormula, plan->trace_lines);
  shown_edition_ = plan->trace_edition;
  return std::exchange(shown_, plan);
}

// The plan keeps its lines without room to spare.
void Trace::MakeLines(Plan& plan) {
  if (plan.trace_edition != 0) return;
  lines_.clear();
  AddExpression(lines_, plan.text);
  AddEntry(lines_, kPostfixKey, [&plan](std::string& utf8) { AppendPostfixText(utf8, plan); });
  plan.trace_lines = lines_;
  plan.trace_edition = ++last_edition_;
}

// The lines of a result that comes again and again are made once.
void Trace::ShowResult(const Variant& result, std::size_t left) {
  const double* number = result.IfDouble();
  const std::optional<std::uint64_t> bits =
      number ? std::optional(std::bit_cast<std::uint64_t>(*number)) : std::nullopt;
  if (!store_ && bits && bits == shown_bits_ && left == shown_left_) return;
  if (left != shown_left_) left_line_ = std::string(kLeftKey) + std::to_string(left) + '\n';
  shown_bits_ = bits;
  shown_left_ = left;
  if (!store_ && number) return AddResult(section_.RewriteLast(), result);
  lines_.clear();
  AddResult(lines_, result);
  Show(kResult, lines_);
}

void Trace::AddResult(std::string& lines, const Variant& result) const {
  if (const double* number = result.IfDouble()) {  // which needs no escape
    lines.append(kResultKey);
    AppendNumber(lines, *number);
    lines.push_back('\n');
  } else {
    AddEntry(lines, kResultKey, [&result](std::string& utf8) { AppendResult(utf8, result); });
  }
  lines.append(left_line_);
}

// By value, since the store may lead to another evaluation.
void Trace::Save(std::string lines) {
  if (is_saving_) return;
  const Temporarily saving(is_saving_, true);
  const Ref<SettingsStore> store = store_;
  try {
    std::size_t end = 0;
    for (std::string_view rest = lines; !rest.empty(); rest.remove_prefix(end + 1)) {
      end = rest.find('\n');
      const std::size_t equals = rest.find('=');
      store->Save(kApplication, kSection, FromUtf8(rest.substr(0, equals)),
                  UnescapeIni(rest.substr(equals + 1, end - equals - 1)));
    }
  } catch (const Error&) {
    // The evaluation does not suffer from a trace that cannot be written.
  }
}

void Trace::Show(std::size_t part, std::string_view lines) {
  if (store_)
    Save(std::string(lines));
  else
    section_.Set(part, lines);
}

}  // namespace tovalin
