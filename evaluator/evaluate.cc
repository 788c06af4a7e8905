#include "evaluator/evaluate.h"

#include <algorithm>

#include "tovalin/convert.h"

namespace tovalin {
namespace {

bool EndsInQuotes(const Text& text) {
  return text.size() > 1 && text.front() == u'"' && text.back() == u'"';
}

// Whether an object may be among the values that a handler left. A handler may leave
// many: then for all that one knows.
bool MayHoldObjects(const ValueStack& stack) {
  constexpr std::size_t kFew = 16;
  return stack.size() > kFew || std::ranges::any_of(stack, &Variant::MayOwnObjects);
}

// The bottom value is deliberately the result: formulas that leave several rely
// on their first one.
PlanResult BottomOf(ValueStack& stack) {
  PlanResult result{std::int16_t{0}, stack.size()};
  if (stack.empty()) return result;
  result.value = std::move(stack.front());
  if (result.value.Is(Subtype::String) && EndsInQuotes(result.value.AsText())) {
    const TextView text = result.value.AsText();
    result.value = Variant(text.substr(1, text.size() - 2));
  }
  return result;
}

}  // namespace

// One evaluation under way: its stack, and its count in the plan. Left in any way, it
// clears the stack.
struct ItemEvaluator::Level {
  Level(ItemEvaluator& evaluator, Plan& plan, int levels)
      : evaluator(evaluator), plan(plan), levels(levels + 1) {
    if (evaluator.depth_ + levels > kDeepest) Raise(Failure::OutOfStack);
    CheckStack();
    if (evaluator.stacks_.size() == evaluator.evaluations_) evaluator.stacks_.emplace_back();
    stack = &evaluator.stacks_[evaluator.evaluations_++];
    evaluator.depth_ += this->levels;
    ++plan.evaluations;
  }
  ~Level() {
    stack->clear();
    --evaluator.evaluations_;
    evaluator.depth_ -= levels;
    --plan.evaluations;
  }
  ItemEvaluator& evaluator;
  Plan& plan;
  int levels;
  ValueStack* stack;
};

PlanResult ItemEvaluator::Evaluate(Plan& plan, const Ref<Campos>& locals, int levels) {
  Level level(*this, plan, levels);
  plans_.KeepCurrent(plan, locals.get());
  ValueStack& stack = *level.stack;
  const Postfix& postfix = plan.postfix;
  bool holds_objects = false;
  for (std::size_t i = 0; i < postfix.items.size(); ++i) {
    const Item& item = postfix.items[i];
    switch (item.kind) {
      case ItemKind::Number:
        stack.emplace_back(item.number);
        break;
      case ItemKind::Operator:
        if (holds_objects)
          EvaluateGuarded(plan, i, locals, stack);
        else
          ApplyOperator(item.operator_code, stack);
        break;
      case ItemKind::Variable:
        if (item.record->HasFormula())
          EvaluateGuarded(plan, i, locals, stack);
        else
          stack.push_back(item.record->Value());
        holds_objects |= stack.back().MayOwnObjects();
        break;
      case ItemKind::Constant:
      case ItemKind::Literal:
      case ItemKind::Value:
        stack.push_back(postfix.ValueOf(item));
        holds_objects |= stack.back().MayOwnObjects();
        break;
      case ItemKind::Builtin: {
        const BuiltinFunction& function = FunctionAt(item.builtin);
        if (holds_objects || (!function.is_pure && clock_.IsHosts()))
          EvaluateGuarded(plan, i, locals, stack);
        else
          CallBuiltin(function, stack);
        break;
      }
      case ItemKind::HostFunction:
        EvaluateGuarded(plan, i, locals, stack);
        holds_objects = MayHoldObjects(stack);
        break;
      case ItemKind::Text:
        stack.emplace_back(postfix.Span(item));
        break;
    }
  }
  return BottomOf(stack);
}

// An item that may run code of the host, which may change the tables: a handler, a
// clock, the destructor of an object. The plan's names are looked up again then.
void ItemEvaluator::EvaluateGuarded(Plan& plan, std::size_t index, const Ref<Campos>& locals,
                                    ValueStack& stack) {
  const NamesVersion before = plans_.Version(locals.get());
  EvaluateItem(plan.postfix.items[index], stack);
  if (plans_.Version(locals.get()) != before) plans_.LookUpAgain(plan, locals.get());
}

void ItemEvaluator::EvaluateItem(const Item& item, ValueStack& stack) {
  if (item.kind == ItemKind::Operator) return ApplyOperator(item.operator_code, stack);
  if (item.kind == ItemKind::Builtin) return CallBuiltin(FunctionAt(item.builtin), stack);
  const Ref<Campo> record = Ref<Campo>::Share(item.record);
  if (item.kind == ItemKind::HostFunction) return CallHost(record, stack);
  prepare_variable_(record);
  stack.push_back(record->Value());
}

void ItemEvaluator::CallBuiltin(const BuiltinFunction& function, ValueStack& stack) {
  const std::size_t count = function.Parameters().size();
  ReplaceTop(stack, count, function.Call(TopOperands(stack, count), {clock_}));
}

// The stack goes into a Collection for the handler and comes back as it left it,
// or as the Collection that it put in its place.
void ItemEvaluator::CallHost(const Ref<Campo>& function, ValueStack& stack) {
  auto pila = Make<Collection>();
  pila->List().Items().swap(stack);
  Variant result;
  const auto restore_stack = [&] {
    stack.clear();
    if (!pila) return;
    if (pila->references.Value() == 1 && !pila->List().HasKeys())
      pila->List().Items().swap(stack);
    else
      stack = pila->List().Items();
  };
  try {
    owner_.Evaluate.Raise(function->Name(), result, pila);
  } catch (...) {
    close_stack_ = false;
    restore_stack();
    throw;
  }
  close_stack_ = false;
  restore_stack();
  stack.push_back(result.IsByReference() ? Variant(result.Value()) : std::move(result));
}

}  // namespace tovalin
