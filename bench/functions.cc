// Functions of the payroll's daily use: per call from C++, and inside a formula,
// where reading the formula again is not counted but the trace is.

#include <benchmark/benchmark.h>

#include "bench/engines.h"
#include "frame/format/patterns.h"
#include "tovalin/lib_fecha.h"
#include "tovalin/lib_monto.h"

namespace tovalin::bench {
namespace {

constexpr double kTwelveDigits = 987654321987.0;
constexpr Date kFrom{41000};
constexpr Date kTo{45657};

void CallMontoEscrito(benchmark::State& state) {
  const auto monto = Make<LibMonto>();
  for (auto _ : state) benchmark::DoNotOptimize(monto->MontoEscrito(kTwelveDigits));
}

void CallDias360(benchmark::State& state) {
  const auto fecha = Make<LibFecha>();
  for (auto _ : state) benchmark::DoNotOptimize(fecha->Dias360(kFrom, kTo));
}

void CallFormat(benchmark::State& state) {
  const Variant value(1234567.891);
  const Text pattern = u"#,##0.00";
  for (auto _ : state) benchmark::DoNotOptimize(Format(value, pattern));
}

void CallDigitoV(benchmark::State& state) {
  const auto evaluador = Make<Evaluador>();
  const Text tax_number = u"800197268";
  for (auto _ : state) benchmark::DoNotOptimize(evaluador->DigitoV(tax_number));
}

void InFormula(benchmark::State& state, const char16_t* formula) {
  const Ref<Evaluador> evaluador = MakeEvaluador();
  evaluador->AddVble(u"Valor", kTwelveDigits, u"", kNumeric);
  evaluador->AddVble(u"FechaCorte", kTo, u"", kDate);
  const Variant expression(formula);
  Variant result;
  for (auto _ : state) evaluador->EvaluatePosfijo(expression, result);
  if (!evaluador->LastError().empty()) state.SkipWithError("faults");
}

BENCHMARK(CallMontoEscrito);
BENCHMARK_CAPTURE(InFormula, MontoEscrito, u"MontoEscrito(Valor)");
BENCHMARK(CallDias360);
BENCHMARK_CAPTURE(InFormula, Dias360, u"Dias360(FechaIngreso, FechaCorte)");
BENCHMARK(CallFormat);
BENCHMARK_CAPTURE(InFormula, Format, u"FORMAT(Valor, '#,##0.00')");
BENCHMARK(CallDigitoV);
BENCHMARK_CAPTURE(InFormula, DigitoV, u"DigitoV(Nit)");

}  // namespace
}  // namespace tovalin::bench
