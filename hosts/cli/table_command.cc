#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <optional>

#include "frame/text/characters.h"
#include "frame/value/conversion.h"
#include "frame/value/date_text.h"
#include "frame/value/decimal_digits.h"
#include "hosts/cli/command_line.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/formula_table.h"
#include "hosts/cli/review.h"
#include "tovalin/convert.h"

// tovalin table: formulas over the rows of a CSV file, which is never in memory
// as a whole.

namespace tovalin::tool {
namespace {

// Rows are computed in batches of this many.
constexpr std::size_t kBatch = 512;

// Dates are told by their form alone, day/month/year or ISO, so that amounts and
// codes are never taken for one.
bool LooksLikeDate(TextView text) {
  const auto digits_and = [&](char16_t separator, std::size_t first, std::size_t second) {
    return text.size() >= 8 && text.size() <= 19 && text.size() > second &&
           text[first] == separator && text[second] == separator && IsDigit(text[0]);
  };
  return digits_and(u'/', 2, 5) || digits_and(u'/', 1, 3) || digits_and(u'/', 1, 4) ||
         digits_and(u'/', 2, 4) || digits_and(u'-', 4, 7);
}

// Whole numbers of so few digits are exact and look the same whatever the locale. Most
// cells that formulas read or give hold one.
std::optional<double> WholeNumber(std::string_view cell) {
  if (cell.size() > static_cast<std::size_t>(kDoubleDigits)) return std::nullopt;
  std::int64_t number = 0;
  for (char c : cell) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return static_cast<double>(number);
}

// A cell as a value: empty, a number, a date, or text. A number with a leading
// zero is a code, and stays text.
Variant CellValue(std::string_view cell) {
  if (cell.empty()) return Variant();
  if (cell[0] != '0' || cell.size() == 1)
    if (const auto number = WholeNumber(cell)) return *number;
  Text text = FromUtf8(cell);
  if (LooksLikeDate(text))
    if (const auto date = ReadDate(text)) return *date;
  const bool code = text.size() > 1 && text[0] == u'0' && IsDigit(text[1]);
  if (const auto number = code ? std::nullopt : ReadNumber(text)) return *number;
  return text;
}

// The evaluator takes such a name, but no formula can mean it.
void RequireNoTabs(const std::vector<Text>& columns) {
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].find(u'\t') != Text::npos)
      RaiseOwn(u"tovalin", FromUtf8("Nombre con tabulador: columna " + std::to_string(i + 1) +
                                    " \"" + ToUtf8(columns[i]) + '"'));
}

// What a review finds in the formulas, on standard error; notes aside.
void TellFindings(const std::vector<NamedFormula>& formulas, const std::vector<Text>& columns) {
  for (const ReviewedFormula& reviewed : ReviewTable({}, formulas, columns))
    for (const Finding& finding : reviewed.findings) {
      if (finding.IsNote()) continue;
      std::cerr << reviewed.name << ": " << finding.severity << ' ' << finding.code << ": "
                << finding.message << '\n';
      if (!finding.suggestion.empty()) std::cerr << "  Sugerencia: " << finding.suggestion << '\n';
    }
}

// A line on standard error while rows go by, when somebody watches.
class Progress {
 public:
  void Row() {
    ++rows_;
    if (!watched_ || rows_ % 4096 != 0) return;
    const auto now = Clock::now();
    if (now - last_ < std::chrono::milliseconds(200)) return;
    last_ = now;
    shown_ = true;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    std::cerr << '\r' << rows_ << " filas, "
              << static_cast<long>(static_cast<double>(rows_) / seconds) << " por segundo";
  }
  ~Progress() {
    if (shown_) std::cerr << '\n';
  }

 private:
  using Clock = std::chrono::steady_clock;
  bool watched_ = isatty(STDERR_FILENO) != 0;
  bool shown_ = false;
  std::size_t rows_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point last_ = start_;
};

class TableRun {
 public:
  TableRun(const TableOptions& options, std::vector<NamedFormula> formulas)
      : formulas_(std::move(formulas)),
        is_quiet_(options.quiet),
        writer_(options.output, ReadEncoding(options.encoding)) {}

  void HandleRow(CsvRow& row) {
    if (!table_)
      HandleHeader(row);
    else
      HandleData(row);
  }

  int Finish() {
    if (table_) WriteBatch();
    writer_.Finish();
    if (failed_cells_ == 0) return kDone;
    std::cerr << failed_cells_ << " celdas con error en " << failed_rows_ << " filas\n";
    return kFaults;
  }

 private:
  void HandleHeader(const CsvRow& row) {
    std::vector<Text> columns;
    for (const std::string& header : row) {
      columns.emplace_back(Trim(FromUtf8(header)));
      writer_.Field(header);
    }
    for (const NamedFormula& formula : formulas_) writer_.Field(ToUtf8(formula.name));
    writer_.EndRow();
    const Ref<Evaluador> evaluator = MakeEvaluator({});
    evaluator->ClearConstants();
    try {
      RequireNoTabs(columns);
      table_.emplace(evaluator, columns, formulas_);
    } catch (Error& error) {
      error.description.append(FromUtf8(SeparatorHint(row)));
      throw;
    }
    if (!is_quiet_) TellFindings(formulas_, columns);
  }

  void HandleData(CsvRow& row) {
    if (rows_.size() == count_) rows_.emplace_back();
    rows_[count_++].swap(row);
    if (count_ == kBatch) WriteBatch();
    progress_.Row();
  }

  void WriteBatch() {
    for (std::size_t i = 0; i < table_->Columns(); ++i)
      if (table_->IsRead(i)) ReadColumn(i);
    table_->Compute(count_);
    ShowConstants();
    for (std::size_t row = 0; row < count_; ++row) {
      const CsvRow& cells = rows_[row];
      for (std::size_t i = 0; i < table_->Columns(); ++i) writer_.Field(CellOf(cells, i));
      const std::size_t failed_before = failed_cells_;
      for (std::size_t i = 0; i < formulas_.size(); ++i) WriteResult(cells, i, row);
      failed_rows_ += failed_cells_ > failed_before;
      writer_.EndRow();
    }
    count_ = 0;
  }

  void ShowConstants() {
    constants_.resize(formulas_.size());
    for (std::size_t i = 0; i < formulas_.size() && count_ > 0; ++i)
      if (table_->IsConstant(i) && table_->Failure(i, 0).empty())
        constants_[i] = ShowValue(table_->Result(i, 0));
  }

  void ReadColumn(std::size_t column) {
    std::vector<Variant>& values = table_->Values(column);
    values.resize(count_);
    for (std::size_t row = 0; row < count_; ++row)
      values[row] = CellValue(CellOf(rows_[row], column));
  }

  // A row may have fewer fields than the header.
  static std::string_view CellOf(const CsvRow& cells, std::size_t column) {
    return column < cells.size() ? std::string_view(cells[column]) : std::string_view();
  }

  void WriteResult(const CsvRow& cells, std::size_t formula, std::size_t row) {
    const std::string_view failure = table_->Failure(formula, row);
    if (cells.size() > table_->Columns())
      // A row with more fields than the header has does not say what they are.
      WriteFailure("la fila tiene " + std::to_string(cells.size()) + " campos y el encabezado " +
                   std::to_string(table_->Columns()));
    else if (!failure.empty())
      WriteFailure(std::string(failure));
    else if (table_->IsConstant(formula))
      writer_.Field(constants_[formula]);
    else
      WriteValue(table_->Result(formula, row));
  }

  void WriteValue(const Variant& value) {
    if (value.Is(Subtype::String)) return writer_.Field(TextView(value.AsText()));
    const double* number = value.IfDouble();
    if (!number) return writer_.Field(ShowValue(value));
    if (std::abs(*number) < kWholeLimit)
      if (const auto whole = static_cast<std::int64_t>(*number);
          static_cast<double>(whole) == *number)
        return writer_.Field(whole);
    number_.clear();
    AppendText(number_, value);
    writer_.Field(TextView(number_));
  }

  void WriteFailure(const std::string& message) {
    ++failed_cells_;
    writer_.Field("#" + message);
  }

  std::vector<NamedFormula> formulas_;
  bool is_quiet_;
  CsvWriter writer_;
  std::optional<FormulaTable> table_;   // from the header on
  std::vector<CsvRow> rows_;            // of a batch, as they were read
  std::size_t count_ = 0;               // how many of them there are
  std::vector<std::string> constants_;  // what constant formulas show in a batch, by formula
  Text number_;                         // of one cell, kept for its memory
  Progress progress_;
  std::size_t failed_cells_ = 0;
  std::size_t failed_rows_ = 0;
};

}  // namespace

int RunTable(const TableOptions& options) {
  const std::vector<NamedFormula> formulas = ReadFormulas(options.formulas);
  CsvReader reader(options.input, ReadEncoding(options.encoding));
  for (const std::string& input : {options.input, options.formulas})
    RequireOtherFile(input, options.output);
  TableRun run(options, formulas);
  reader.ForEachRow([&run](CsvRow& row) { run.HandleRow(row); });
  return run.Finish();
}

}  // namespace tovalin::tool
