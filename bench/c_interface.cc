// The C interface beside the C++ calls that it makes: a prepared formula by id, and a
// table of 100,000 rows.

#include <benchmark/benchmark.h>

#include <vector>

#include "tovalin/dispatch.h"
#include "tovalin/evaluador.h"
#include "tovalin/formula.h"
#include "tovalin/tovalin_c.h"

namespace tovalin::bench {
namespace {

constexpr char kFormula[] = "Salario * Dias / 30 + 1000000";

/// An evaluator with the formula, through the C interface.
class CFormula {
 public:
  CFormula() {
    tov_create("Evaluador", &evaluator_, nullptr);
    for (const char* name : {"Salario", "Dias"}) {
      tov_value variable[] = {tov_text(name), tov_double(25), tov_text(""), tov_long(kNumeric)};
      tov_call(evaluator_, "AddVble", TOV_METHOD, variable, 4, nullptr, nullptr);
    }
    tov_value text = tov_text(kFormula);
    tov_call(evaluator_, "Preparar", TOV_METHOD, &text, 1, &formula_, nullptr);
  }
  CFormula(const CFormula&) = delete;
  CFormula& operator=(const CFormula&) = delete;
  ~CFormula() {
    tov_clear(&formula_);
    tov_release(evaluator_, nullptr);
  }
  tov_handle Get() const { return formula_.as.handle; }

 private:
  tov_handle evaluator_ = 0;
  tov_value formula_ = tov_empty();
};

Ref<Evaluador> MakeCppEvaluator() {
  auto evaluator = Make<Evaluador>();
  for (const char16_t* name : {u"Salario", u"Dias"}) evaluator->AddVble(name, 25.0, u"", kNumeric);
  return evaluator;
}

void EvaluarCpp(benchmark::State& state) {
  const Ref<Evaluador> evaluator = MakeCppEvaluator();
  const Ref<Formula> formula = evaluator->Preparar(FromUtf8(kFormula));
  Variant result;
  for (auto _ : state) {
    formula->Evaluar(result);
    benchmark::DoNotOptimize(result);
  }
}

void EvaluarLateBound(benchmark::State& state) {
  const Ref<Evaluador> evaluator = MakeCppEvaluator();
  const Ref<Formula> formula = evaluator->Preparar(FromUtf8(kFormula));
  const MemberInfo& member = *formula->Class().Find(u"Evaluar", MemberKind::Method);
  Variant argument, result;
  for (auto _ : state) {
    Invoke(*formula, member, std::span(&argument, 1), result);
    benchmark::DoNotOptimize(argument);
  }
}

void EvaluarC(benchmark::State& state) {
  const CFormula formula;
  tov_member evaluar = 0;
  tov_find_member("Formula", "Evaluar", TOV_METHOD, &evaluar, nullptr);
  tov_value result = tov_empty();
  for (auto _ : state) {
    if (tov_call_id(formula.Get(), evaluar, &result, 1, nullptr, nullptr) != 0)
      state.SkipWithError("wrong call");
    benchmark::DoNotOptimize(result);
  }
}

constexpr std::size_t kRows = 100'000;

struct Columns {
  std::vector<double> salaries = std::vector<double>(kRows, 1'423'500.0);
  std::vector<double> days = std::vector<double>(kRows, 15.0);
  std::vector<double> results = std::vector<double>(kRows);
};

void TableCpp(benchmark::State& state) {
  const Ref<Evaluador> evaluator = MakeCppEvaluator();
  const Ref<Formula> formula = evaluator->Preparar(FromUtf8(kFormula));
  Columns table;
  const std::vector<Formula::Column> columns = {
      {u"Salario", std::span<const double>(table.salaries)},
      {u"Dias", std::span<const double>(table.days)}};
  for (auto _ : state) {
    benchmark::DoNotOptimize(formula->EvaluarTabla(columns, kRows, std::span(table.results)));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kRows));
}

void TableC(benchmark::State& state) {
  const CFormula formula;
  Columns table;
  const tov_column columns[] = {{"Salario", table.salaries.data(), 0, TOV_DOUBLE},
                                {"Dias", table.days.data(), 0, TOV_DOUBLE}};
  const tov_column results = {nullptr, table.results.data(), 0, TOV_DOUBLE};
  for (auto _ : state) {
    if (tov_evaluate_table(formula.Get(), columns, 2, kRows, &results, nullptr, 0, nullptr,
                           nullptr) != 0)
      state.SkipWithError("wrong call");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kRows));
}

BENCHMARK(EvaluarCpp);
BENCHMARK(EvaluarLateBound);
BENCHMARK(EvaluarC);
BENCHMARK(TableCpp)->Unit(benchmark::kMicrosecond);
BENCHMARK(TableC)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tovalin::bench
