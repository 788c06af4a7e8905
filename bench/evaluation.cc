// One formula, beside muParser and Lua: its first evaluation (text to value), and
// its repetition. Tovalin's figures have the trace in them.

#include <benchmark/benchmark.h>

#include "bench/engines.h"

namespace tovalin::bench {
namespace {

void FirstTovalin(benchmark::State& state, const Sample& formula) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  FreshText<Text> fresh(FromUtf8(formula.tovalin));
  Variant expression;
  Variant result;
  for (auto _ : state) {
    // The formula lies in a Variant when it comes to the evaluator: a copy of a
    // text that the host has anyway.
    expression = Variant(fresh.Next());
    evaluador->EvaluatePosfijo(expression, result);
    benchmark::DoNotOptimize(result);
  }
  if (!evaluador->LastError().empty()) state.SkipWithError("faults");
}

void FirstMuParser(benchmark::State& state, const Sample& formula) {
  MuParser parser;
  FreshText<std::string> fresh(formula.muparser);
  for (auto _ : state) {
    parser.Prepare(fresh.Next());
    benchmark::DoNotOptimize(parser.Eval());
  }
}

void FirstLua(benchmark::State& state, const Sample& formula) {
  Lua lua;
  FreshText<std::string> fresh(std::string("return ") + formula.lua);
  bool good = true;
  for (auto _ : state) {
    good = lua.Load(fresh.Next()) && lua.CallOnce() && good;
    benchmark::DoNotOptimize(lua.Number());
  }
  if (!good) state.SkipWithError("does not compute");
}

void AgainTovalin(benchmark::State& state, const Sample& formula) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  const Variant expression(FromUtf8(formula.tovalin));
  Variant result;
  for (auto _ : state) {
    evaluador->EvaluatePosfijo(expression, result);
    benchmark::DoNotOptimize(result);
  }
  if (!evaluador->LastError().empty()) state.SkipWithError("faults");
}

// A variable is another number each time, as it is row after row.
void RowsTovalin(benchmark::State& state, const Sample& formula) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  const Variant expression(FromUtf8(formula.tovalin));
  const Text name = u"Salario";
  Variant result;
  double value = 1500000.25;
  for (auto _ : state) {
    evaluador->SetVariable(name, value);
    evaluador->EvaluatePosfijo(expression, result);
    benchmark::DoNotOptimize(result);
    value += 1;
  }
}

void AgainMuParser(benchmark::State& state, const Sample& formula) {
  MuParser parser;
  parser.Prepare(formula.muparser);
  for (auto _ : state) benchmark::DoNotOptimize(parser.Eval());
}

void AgainLua(benchmark::State& state, const Sample& formula) {
  Lua lua;
  bool good = lua.Load(std::string("return ") + formula.lua);
  for (auto _ : state) {
    good = lua.Call() && good;
    benchmark::DoNotOptimize(lua.Number());
  }
  if (!good) state.SkipWithError("does not compute");
}

BENCHMARK_CAPTURE(FirstTovalin, short, kShortFormula);
BENCHMARK_CAPTURE(FirstMuParser, short, kShortFormula);
BENCHMARK_CAPTURE(FirstLua, short, kShortFormula);
BENCHMARK_CAPTURE(FirstTovalin, long, kLongFormula);
BENCHMARK_CAPTURE(FirstMuParser, long, kLongFormula);
BENCHMARK_CAPTURE(FirstLua, long, kLongFormula);
BENCHMARK_CAPTURE(FirstTovalin, choice, kChoiceFormula);
BENCHMARK_CAPTURE(FirstMuParser, choice, kChoiceFormula);
BENCHMARK_CAPTURE(FirstLua, choice, kChoiceFormula);
BENCHMARK_CAPTURE(FirstTovalin, text, kTextFormula);
BENCHMARK_CAPTURE(FirstLua, text, kTextFormula);
BENCHMARK_CAPTURE(FirstTovalin, dates, kDatesFormula);

BENCHMARK_CAPTURE(AgainTovalin, short, kShortFormula);
BENCHMARK_CAPTURE(AgainMuParser, short, kShortFormula);
BENCHMARK_CAPTURE(AgainLua, short, kShortFormula);
BENCHMARK_CAPTURE(AgainTovalin, long, kLongFormula);
BENCHMARK_CAPTURE(AgainMuParser, long, kLongFormula);
BENCHMARK_CAPTURE(AgainLua, long, kLongFormula);
BENCHMARK_CAPTURE(AgainTovalin, choice, kChoiceFormula);
BENCHMARK_CAPTURE(AgainMuParser, choice, kChoiceFormula);
BENCHMARK_CAPTURE(AgainLua, choice, kChoiceFormula);
BENCHMARK_CAPTURE(AgainTovalin, text, kTextFormula);
BENCHMARK_CAPTURE(AgainLua, text, kTextFormula);
BENCHMARK_CAPTURE(AgainTovalin, dates, kDatesFormula);
BENCHMARK_CAPTURE(RowsTovalin, short, kShortFormula);
BENCHMARK_CAPTURE(RowsTovalin, long, kLongFormula);

}  // namespace
}  // namespace tovalin::bench
