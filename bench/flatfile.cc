// A million rows of ten fields to a flat file by a layout, beside a loop that writes the
// same bytes with std::ofstream from plain C++ values; and the file read back.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>

#include "bench/memory.h"
#include "tovalin/archivo_plano.h"

namespace tovalin::bench {
namespace {

constexpr std::size_t kColumns = 10;
constexpr std::size_t kTextColumns = 4;
constexpr std::size_t kWholeColumns = 3;  // the last three are amounts
constexpr std::size_t kRows = 1'000'000;
constexpr std::size_t kTexts = 1000;  // different ones; the rows repeat them
constexpr int kTextWidth = 20;
constexpr int kWholeWidth = 10;
constexpr int kAmountWidth = 15;

bool IsText(std::size_t column) { return column < kTextColumns; }
bool IsWhole(std::size_t column) {
  return !IsText(column) && column < kTextColumns + kWholeColumns;
}

std::string LayoutText(bool fixed) {
  std::string json = fixed ? R"({"tovalin:formato": "fijo", "fields": [)"
                           : R"({"tovalin:dialecto": {"delimiter": ";"}, "fields": [)";
  for (std::size_t column = 0; column < kColumns; ++column) {
    json += (column > 0 ? R"(, {"name": "Campo)" : R"({"name": "Campo)") + std::to_string(column);
    if (IsText(column))
      json += R"(", "tovalin:ancho": )" + std::to_string(kTextWidth);
    else if (IsWhole(column))
      json += R"(", "type": "integer", "tovalin:relleno": "0", "tovalin:ancho": )" +
              std::to_string(kWholeWidth);
    else
      json += R"(", "type": "number", "tovalin:decimales": 2, "tovalin:ancho": )" +
              std::to_string(kAmountWidth);
    json += "}";
  }
  return json + "]}";
}

std::string TextAt(std::size_t row, std::size_t column) {
  return "Texto " + std::to_string(column) + "-" + std::to_string(row % kTexts);
}
std::int32_t WholeAt(std::size_t row, std::size_t column) {
  return static_cast<std::int32_t>(row * 7 + column);
}
double AmountAt(std::size_t row, std::size_t column) {
  return static_cast<double>((row * 31 + column) % 100'000'000) / 4;
}

Variant Table(std::size_t rows) {
  auto array = Make<VariantArray>(kColumns, rows);
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t column = 0; column < kColumns; ++column) {
      Variant& cell = array->At(column, row);
      if (IsWhole(column))
        cell = WholeAt(row, column);
      else if (!IsText(column))
        cell = AmountAt(row, column);
      else if (row >= kTexts)
        cell = array->At(column, row - kTexts);
      else
        cell = FromUtf8(TextAt(row, column));
    }
  }
  return array;
}

std::vector<std::string> Texts() {
  std::vector<std::string> texts;
  for (std::size_t row = 0; row < kTexts; ++row)
    for (std::size_t column = 0; column < kTextColumns; ++column)
      texts.push_back(TextAt(row, column));
  return texts;
}

void WriteStream(bool is_fixed, const std::vector<std::string>& texts, std::size_t rows,
                 const std::filesystem::path& path) {
  std::ofstream out(path, std::ios::binary);
  out << std::fixed << std::setprecision(2);
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t column = 0; column < kColumns; ++column) {
      if (!is_fixed && column > 0) out << ';';
      if (is_fixed)
        out << (IsText(column) ? std::left : std::right)
            << std::setfill(IsWhole(column) ? '0' : ' ')
            << std::setw(IsText(column)    ? kTextWidth
                         : IsWhole(column) ? kWholeWidth
                                           : kAmountWidth);
      if (IsText(column))
        out << texts[row % kTexts * kTextColumns + column];
      else if (IsWhole(column))
        out << WholeAt(row, column);
      else
        out << AmountAt(row, column);
    }
    out << "\r\n";
  }
}

std::filesystem::path FilePath(const char* name) {
  return std::filesystem::temp_directory_path() / name;
}
Text HostPath(const std::filesystem::path& path) { return FromUtf8(path.string()); }

Ref<ArchivoPlano> FileOf(bool fixed) {
  auto file = Make<ArchivoPlano>();
  file->LetDiseno(FromUtf8(LayoutText(fixed)));
  return file;
}

std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Both ways on the first rows: the comparison means nothing when the bytes differ.
bool WriteTheSame(bool fixed) {
  constexpr std::size_t kChecked = 5000;
  const auto path = FilePath("tovalin_bench_flat_check");
  if (!FileOf(fixed)->Escribir(Table(kChecked), HostPath(path))) return false;
  const std::string bytes = BytesOf(path);
  WriteStream(fixed, Texts(), kChecked, path);
  const bool same = bytes == BytesOf(path);
  std::filesystem::remove(path);
  return same;
}

void FlatWrite(benchmark::State& state, bool fixed) {
  const Variant data = Table(kRows);
  const auto path = FilePath("tovalin_bench_flat");
  const Ref<ArchivoPlano> file = FileOf(fixed);
  bool done = true;
  ResetPeak();
  const double before = Resident();
  for (auto _ : state) done = file->Escribir(data, HostPath(path)) && done;
  state.counters["peak_bytes_beyond_array"] = PeakResident() - before;
  if (!done) state.SkipWithError("rows were refused");
  std::filesystem::remove(path);
}

void FlatStream(benchmark::State& state, bool fixed) {
  if (!WriteTheSame(fixed)) return state.SkipWithError("other bytes");
  const std::vector<std::string> texts = Texts();
  const auto path = FilePath("tovalin_bench_flat_stream");
  for (auto _ : state) WriteStream(fixed, texts, kRows, path);
  std::filesystem::remove(path);
}

void FlatRead(benchmark::State& state, bool fixed) {
  const auto path = FilePath("tovalin_bench_flat_read");
  WriteStream(fixed, Texts(), kRows, path);
  const Ref<ArchivoPlano> file = FileOf(fixed);
  std::size_t rows = 0;
  ResetPeak();
  const double before = Resident();
  for (auto _ : state) {
    rows = 0;
    file->LeerFilas([&](const ArchivoPlano::Leida&) { return ++rows > 0; }, HostPath(path));
  }
  state.counters["peak_bytes"] = PeakResident() - before;
  if (rows != kRows) state.SkipWithError("rows are missing");
  std::filesystem::remove(path);
}

BENCHMARK_CAPTURE(FlatWrite, fixed, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FlatStream, fixed, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FlatRead, fixed, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FlatWrite, delimited, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FlatStream, delimited, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FlatRead, delimited, false)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tovalin::bench
