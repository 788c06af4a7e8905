// A prepared formula: evaluated again beside muParser's Eval, and over a table
// beside muParser's bulk mode and a loop written by hand.

#include <benchmark/benchmark.h>

#include <vector>

#include "bench/engines.h"
#include "tovalin/formula.h"

namespace tovalin::bench {
namespace {

constexpr std::size_t kTableRows = 100'000;

// Two columns that vary from row to row.
struct Columns {
  Columns() {
    for (std::size_t row = 0; row < kTableRows; ++row) {
      salaries.push_back(1'423'500.0 + static_cast<double>(row));
      days.push_back(static_cast<double>(row % 30 + 1));
    }
  }
  std::vector<double> salaries;
  std::vector<double> days;
  std::vector<double> results = std::vector<double>(kTableRows);
};

// The same double arithmetic as kShortFormula and kLongFormula.
double ShortByHand(double salary, double days) { return salary * days / 30 + 1000000; }
double LongByHand(double salary, double days) {
  const double extra = kNumbers[2].value;
  const double commission = kNumbers[3].value;
  const double least = kNumbers[4].value;
  const double advance = kNumbers[5].value;
  const double rate = kNumbers[6].value;
  const double parts = kNumbers[7].value;
  return (salary * days / 30 + extra * salary * 1.25 / 220 + commission) * (1 - rate) - advance +
         (salary - least) * 0.04 / parts + 1000000 * 2 - 5;
}

void Prepared(benchmark::State& state, const Sample& sample) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  const Ref<Formula> formula = evaluador->Preparar(FromUtf8(sample.tovalin));
  Variant result;
  for (auto _ : state) {
    formula->Evaluar(result);
    benchmark::DoNotOptimize(result);
  }
}

void TableTovalin(benchmark::State& state, const Sample& sample,
                  double (*by_hand)(double, double)) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  const Ref<Formula> formula = evaluador->Preparar(FromUtf8(sample.tovalin));
  Columns columns;
  const std::vector<Formula::Column> bound = {
      {u"Salario", std::span<const double>(columns.salaries)},
      {u"DiasTrabajados", std::span<const double>(columns.days)}};
  bool good = true;
  for (auto _ : state) {
    good = formula->EvaluarTabla(bound, kTableRows, std::span(columns.results)).empty() && good;
    benchmark::ClobberMemory();
  }
  for (std::size_t row = 0; row < kTableRows; ++row)
    good = columns.results[row] == by_hand(columns.salaries[row], columns.days[row]) && good;
  if (!good) state.SkipWithError("wrong values");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTableRows));
}

// The same columns as Variants that hold Doubles, as hosts have them.
void TableOfVariants(benchmark::State& state, const Sample& sample) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  const Ref<Formula> formula = evaluador->Preparar(FromUtf8(sample.tovalin));
  const Columns columns;
  const std::vector<Variant> salaries(columns.salaries.begin(), columns.salaries.end());
  const std::vector<Variant> days(columns.days.begin(), columns.days.end());
  const std::vector<Formula::Column> bound = {{u"Salario", std::span<const Variant>(salaries)},
                                              {u"DiasTrabajados", std::span<const Variant>(days)}};
  std::vector<Variant> results(kTableRows);
  for (auto _ : state) {
    if (!formula->EvaluarTabla(bound, kTableRows, std::span(results)).empty())
      state.SkipWithError("rows failed");
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTableRows));
}

// The same through the member that automation hosts call.
void TableLateBound(benchmark::State& state, const Sample& sample) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  const Ref<Formula> formula = evaluador->Preparar(FromUtf8(sample.tovalin));
  const Columns columns;
  auto given = Make<Collection>();
  const auto add = [&given](const Text& name, const std::vector<double>& values) {
    auto array = Make<VariantArray>(1, values.size());
    for (std::size_t row = 0; row < values.size(); ++row) array->At(0, row) = values[row];
    given->Add(Variant(array), Variant(name));
  };
  add(u"Salario", columns.salaries);
  add(u"DiasTrabajados", columns.days);
  const Variant argument{Ref<Object>(given)};
  Variant result;
  for (auto _ : state)
    if (formula->EvaluarTabla(argument, kTableRows, result) != 0)
      state.SkipWithError("rows failed");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTableRows));
}

void TableMuParser(benchmark::State& state, const Sample& sample) {
  // In bulk mode every variable is an array: those of one value are spread out.
  Columns columns;
  std::vector<std::vector<double>> spread;
  mu::Parser parser;
  for (const NumberVariable& variable : kNumbers)
    parser.DefineVar(variable.name, spread.emplace_back(kTableRows, variable.value).data());
  parser.DefineVar("Salario", columns.salaries.data());
  parser.DefineVar("DiasTrabajados", columns.days.data());
  parser.SetExpr(sample.muparser);
  for (auto _ : state) {
    parser.Eval(columns.results.data(), static_cast<int>(kTableRows));
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTableRows));
}

template <double (*kByHand)(double, double)>
void TableByHand(benchmark::State& state) {
  Columns columns;
  for (auto _ : state) {
    for (std::size_t row = 0; row < kTableRows; ++row)
      columns.results[row] = kByHand(columns.salaries[row], columns.days[row]);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTableRows));
}

BENCHMARK_CAPTURE(Prepared, short, kShortFormula);
BENCHMARK_CAPTURE(Prepared, long, kLongFormula);
BENCHMARK_CAPTURE(Prepared, choice, kChoiceFormula);
BENCHMARK_CAPTURE(TableTovalin, short, kShortFormula, ShortByHand)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TableMuParser, short, kShortFormula)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(TableByHand, ShortByHand)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TableOfVariants, short, kShortFormula)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TableOfVariants, choice, kChoiceFormula)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TableOfVariants, long, kLongFormula)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TableLateBound, short, kShortFormula)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TableTovalin, long, kLongFormula, LongByHand)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TableMuParser, long, kLongFormula)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(TableByHand, LongByHand)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tovalin::bench
