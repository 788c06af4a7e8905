// The heap that an Evaluador and a cached plan take, with what malloc adds. The
// counters hold the result; the time is that of building what is measured.

#include "bench/memory.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "bench/engines.h"

namespace tovalin::bench {
namespace {

constexpr std::size_t kObjects = 200;

void MemoryOfEvaluador(benchmark::State& state, bool evaluates) {
  double bytes = 0;
  for (auto _ : state) {
    const double before = HeapInUse();
    std::vector<Ref<Evaluador>> made;
    made.reserve(kObjects);
    for (std::size_t i = 0; i < kObjects; ++i) {
      Variant result;
      made.push_back(Make<Evaluador>());
      if (evaluates) made.back()->EvaluatePosfijo(u"1 + 1", result);
    }
    bytes = (HeapInUse() - before) / kObjects;
  }
  state.counters["bytes"] = bytes;
}

// Fewer formulas than the cache keeps, so that each one stays.
void MemoryOfPlan(benchmark::State& state, const Sample& formula) {
  const std::size_t plans = 200;
  double bytes = 0;
  double tokens = 0;
  for (auto _ : state) {
    const Ref<Evaluador> evaluador = MakeEvaluador();
    Variant result;
    evaluador->EvaluatePosfijo(u"1 + 1", result);  // what every evaluation needs is there
    FreshText<Text> fresh(FromUtf8(formula.tovalin));
    const double before = HeapInUse();
    for (std::size_t i = 0; i < plans; ++i) evaluador->EvaluatePosfijo(fresh.Next(), result);
    bytes = (HeapInUse() - before) / static_cast<double>(plans);
    Text text = fresh.Next();
    tokens = evaluador->CheckInfijo(text)->Count();
  }
  state.counters["bytes_per_plan"] = bytes;
  state.counters["bytes_per_token"] = bytes / tokens;
}

BENCHMARK_CAPTURE(MemoryOfEvaluador, created, false)->Iterations(1);
BENCHMARK_CAPTURE(MemoryOfEvaluador, evaluated, true)->Iterations(1);
BENCHMARK_CAPTURE(MemoryOfPlan, short, kShortFormula)->Iterations(1);
BENCHMARK_CAPTURE(MemoryOfPlan, long, kLongFormula)->Iterations(1);
BENCHMARK_CAPTURE(MemoryOfPlan, choice, kChoiceFormula)->Iterations(1);

}  // namespace
}  // namespace tovalin::bench
