#include "evaluator/functions.h"

#include <algorithm>
#include <vector>

namespace tovalin {
namespace {

char16_t UpperAscii(char16_t c) {
  return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

std::vector<const BuiltinFunction*> AllFunctions() {
  using namespace functions;
  std::vector<const BuiltinFunction*> all;
  for (const auto family : {OfText(), OfNumbers(), OfDates(), OfLogic()})
    for (const BuiltinFunction& function : family) all.push_back(&function);
  // Those without a place come last.
  std::ranges::stable_sort(all, {}, [](const BuiltinFunction* function) {
    return static_cast<std::uint8_t>(function->place - 1);
  });
  return all;
}

}  // namespace

bool BuiltinFunction::Matches(TextView upper_name) const {
  return std::ranges::equal(word.substr(0, word.size() - 1), upper_name, {}, UpperAscii);
}

Variant BuiltinFunction::Call(std::span<const Variant> arguments,
                              const FunctionContext& context) const {
  if (null_argument == NullArgument::First && arguments.front().Is(Subtype::Null))
    return Variant::Null();
  if (null_argument == NullArgument::Last && arguments.back().Is(Subtype::Null))
    return Variant::Null();
  return call(arguments, context);
}

std::span<const BuiltinFunction* const> BuiltinFunctions() {
  static const std::vector<const BuiltinFunction*> all = AllFunctions();
  return all;
}

std::uint8_t FunctionIndex(const BuiltinFunction& function) {
  const auto all = BuiltinFunctions();
  return static_cast<std::uint8_t>(std::ranges::find(all, &function) - all.begin());
}

const BuiltinFunction& FunctionAt(std::uint8_t index) { return *BuiltinFunctions()[index]; }

const BuiltinFunction* FindFunction(TextView upper_name) {
  for (const BuiltinFunction* function : BuiltinFunctions())
    if (function->call && function->Matches(upper_name)) return function;
  return nullptr;
}

}  // namespace tovalin
