// How the cost of an evaluation depends on what surrounds the formula: the size
// of the variable table, and formula variables that build on one another.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/engines.h"

namespace tovalin::bench {
namespace {

Text Numbered(std::int64_t number) { return FromUtf8("Vble" + std::to_string(number)); }

// The table of MakeEvaluador, filled up with variables that no formula names.
Ref<Evaluador> MakeWithVariables(std::int64_t count) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  for (std::int64_t i = evaluador->Variables()->Count(); i < count; ++i)
    evaluador->AddVble(Numbered(i), static_cast<double>(i), u"", kNumeric);
  return evaluador;
}

void FirstAmongVariables(benchmark::State& state) {
  const Ref<Evaluador> evaluador = MakeWithVariables(state.range(0));
  FreshText<Text> fresh(FromUtf8(kLongFormula.tovalin));
  Variant result;
  for (auto _ : state) evaluador->EvaluatePosfijo(Variant(fresh.Next()), result);
}

void AgainAmongVariables(benchmark::State& state) {
  const Ref<Evaluador> evaluador = MakeWithVariables(state.range(0));
  const Variant expression(FromUtf8(kLongFormula.tovalin));
  Variant result;
  for (auto _ : state) evaluador->EvaluatePosfijo(expression, result);
}

// F1 = Salario + 1, F2 = F1 + 1 and so on; the last one is evaluated, and with it
// every other.
void Chain(benchmark::State& state) {
  const std::int64_t length = state.range(0);
  const Ref<Evaluador> evaluador = MakeEvaluador();
  const auto name = [](std::int64_t i) { return FromUtf8("F" + std::to_string(i)); };
  for (std::int64_t i = 1; i <= length; ++i) {
    const Text before = i == 1 ? Text(u"Salario") : name(i - 1);
    evaluador->AddVble(name(i), 0.0, u"", kNumeric, before + u" + 1");
  }
  const Variant expression(name(length));
  Variant result;
  for (auto _ : state) evaluador->EvaluatePosfijo(expression, result);
  const double expected = kNumbers[0].value + static_cast<double>(length);
  if (!result.Is(Subtype::Double) || result.AsDouble() != expected)
    state.SkipWithError("wrong value");
}

BENCHMARK(FirstAmongVariables)->Arg(12)->Arg(1'000)->Arg(100'000);
BENCHMARK(AgainAmongVariables)->Arg(12)->Arg(1'000)->Arg(100'000);
BENCHMARK(Chain)->Arg(100)->Arg(1'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tovalin::bench
