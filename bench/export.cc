// A million rows of ten fields to a file, beside a loop that writes the same bytes
// with std::ofstream from plain C++ values.

#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>

#include "bench/memory.h"
#include "tovalin/cls_file_export.h"

namespace tovalin::bench {
namespace {

constexpr std::size_t kColumns = 10;
constexpr std::size_t kRows = 1'000'000;
constexpr std::size_t kTexts = 1000;  // different ones; the rows repeat them
constexpr int kTextWidth = 20;

std::filesystem::path FilePath(const char* name) {
  return std::filesystem::temp_directory_path() / name;
}

std::string TextOf(std::size_t row, std::size_t column) {
  return "Texto " + std::to_string(column) + "-" + std::to_string(row % kTexts);
}
std::int32_t WholeOf(std::size_t row, std::size_t column) {
  return static_cast<std::int32_t>(row * 7 + column);
}
double AmountOf(std::size_t row, std::size_t column) {
  return static_cast<double>((row * 31 + column) % 100'000'000) / 4;
}

// Fixed width takes four texts, three whole numbers and three amounts.
bool IsText(std::size_t column) { return column < 4; }
bool IsWhole(std::size_t column) { return column >= 4 && column < 7; }

Ref<Campos> Fields(bool all_text) {
  auto fields = Make<Campos>();
  for (std::size_t column = 0; column < kColumns; ++column) {
    auto field = Make<Campo>(FromUtf8("Campo" + std::to_string(column)));
    field->LetDataType(all_text || IsText(column) ? kText : IsWhole(column) ? kInteger : kDouble);
    field->LetSize(kTextWidth);
    field->LetPosition(static_cast<std::int16_t>(column));
    fields->Add(field);
  }
  return fields;
}

Variant Table(bool all_text, std::size_t rows) {
  auto array = Make<VariantArray>(kColumns, rows);
  for (std::size_t column = 0; column < kColumns; ++column) {
    for (std::size_t row = 0; row < rows; ++row) {
      Variant& cell = array->At(column, row);
      if (!all_text && !IsText(column))
        cell = IsWhole(column) ? Variant(WholeOf(row, column)) : Variant(AmountOf(row, column));
      else if (row >= kTexts)
        cell = array->At(column, row - kTexts);
      else
        cell = FromUtf8(TextOf(row, column));
    }
  }
  return array;
}

// The same table as a C++ program would hold it.
struct PlainTable {
  explicit PlainTable(std::size_t rows) : rows(rows) {
    for (std::size_t row = 0; row < kTexts; ++row)
      for (std::size_t column = 0; column < kColumns; ++column)
        texts.push_back(TextOf(row, column));
  }
  const std::string& Text(std::size_t row, std::size_t column) const {
    return texts[row % kTexts * kColumns + column];
  }
  std::vector<std::string> texts;
  std::size_t rows;
};

void WriteDelimited(const PlainTable& table, const std::filesystem::path& path) {
  std::ofstream out(path, std::ios::binary);
  for (std::size_t row = 0; row < table.rows; ++row) {
    for (std::size_t column = 0; column < kColumns; ++column) {
      if (column > 0) out << ';';
      out << '"' << table.Text(row, column) << '"';
    }
    out << "\r\n";
  }
}

void WriteFixed(const PlainTable& table, const std::filesystem::path& path) {
  std::ofstream out(path, std::ios::binary);
  out << std::setprecision(15);
  for (std::size_t row = 0; row < table.rows; ++row) {
    for (std::size_t column = 0; column < kColumns; ++column) {
      if (IsText(column))
        out << std::left << std::setfill(' ') << std::setw(kTextWidth) << table.Text(row, column);
      else if (IsWhole(column))
        out << std::right << std::setfill('\0') << std::setw(10) << WholeOf(row, column);
      else
        out << std::right << std::setfill('\0') << std::setw(15) << AmountOf(row, column);
      out << ';';
    }
    out << "\r\n";
  }
}

using WritePlain = void (*)(const PlainTable&, const std::filesystem::path&);

bool Export(Variant& data, const Ref<Campos>& fields, bool all_text, std::size_t rows,
            const std::filesystem::path& path) {
  auto exporter = Make<clsFileExport>();
  exporter->LetFomato(all_text ? clsFileExport::TEXTO_DELIMITADO : clsFileExport::LONGITUDFIJA);
  return exporter->GenerarArchivoPlanoDesdeBD(data, fields, static_cast<std::int32_t>(rows) - 1,
                                              FromUtf8(path.string()));
}

std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Both ways on the first rows: the comparison means nothing when the bytes differ.
bool WriteTheSame(bool all_text, WritePlain write) {
  const std::size_t rows = 5000;
  Variant data = Table(all_text, rows);
  const auto path = FilePath("tovalin_bench_check");
  if (!Export(data, Fields(all_text), all_text, rows, path)) return false;
  const std::string bytes = BytesOf(path.string() + ".txt");
  write(PlainTable(rows), path);
  const bool same = bytes == BytesOf(path);
  for (const char* extension : {"", ".txt", ".ref"})
    std::filesystem::remove(path.string() + extension);
  return same;
}

void ExportTovalin(benchmark::State& state, bool all_text) {
  Variant data = Table(all_text, kRows);
  const Ref<Campos> fields = Fields(all_text);
  const auto path = FilePath("tovalin_bench");
  bool done = true;
  ResetPeak();
  const double before = Resident();
  for (auto _ : state) done = Export(data, fields, all_text, kRows, path) && done;
  state.counters["peak_bytes_beyond_array"] = PeakResident() - before;
  if (!done) state.SkipWithError("the export failed");
  for (const char* extension : {".txt", ".ref"}) std::filesystem::remove(path.string() + extension);
}

void ExportStream(benchmark::State& state, bool all_text, WritePlain write) {
  if (!WriteTheSame(all_text, write)) return state.SkipWithError("other bytes");
  const PlainTable table(kRows);
  const auto path = FilePath("tovalin_bench_stream");
  for (auto _ : state) write(table, path);
  std::filesystem::remove(path);
}

BENCHMARK_CAPTURE(ExportTovalin, delimited, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ExportStream, delimited, true, WriteDelimited)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ExportTovalin, fixed, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ExportStream, fixed, false, WriteFixed)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tovalin::bench
