#include <unistd.h>

#include <chrono>
#include <iostream>
#include <optional>

#include "hosts/command_line.h"
#include "hosts/csv.h"
#include "tovalin/convert.h"

// tovalin table: formulas over the rows of a CSV file, which is never in memory
// as a whole.

namespace tovalin::tool {
namespace {

struct NamedFormula {
  Text name;
  Text formula;
};

// "Name = formula".
NamedFormula ReadFormula(TextView line) {
  const std::size_t equals = line.find(u'=');
  if (equals == TextView::npos)
    RaiseOwn(u"tovalin", Text(u"Línea sin \"=\" en las fórmulas: ").append(line));
  return {Text(Trim(line.substr(0, equals))), Text(Trim(line.substr(equals + 1)))};
}

// "#" begins a comment line, blank lines are skipped.
std::vector<NamedFormula> ReadFormulas(const std::string& path) {
  std::vector<NamedFormula> formulas;
  ReadLines(path, [&](std::string_view line) {
    const Text text = FromUtf8(line);
    const TextView trimmed = Trim(text);
    if (!trimmed.empty() && trimmed.front() != u'#') formulas.push_back(ReadFormula(trimmed));
  });
  return formulas;
}

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

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

// A cell as a value: empty, a number, a date, or text. A number with a leading
// zero is a code, and stays text.
Variant CellValue(const std::string& cell) {
  if (cell.empty()) return Variant();
  const Text text = FromUtf8(cell);
  const bool code = text.size() > 1 && text[0] == u'0' && IsDigit(text[1]);
  if (LooksLikeDate(text) && IsDate(Variant(text))) return ToDate(Variant(text));
  if (const auto number = code ? std::nullopt : ReadNumber(text)) return *number;
  return text;
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
      : evaluator_(MakeEvaluator({})), formulas_(std::move(formulas)), writer_(options.output) {
    evaluator_->ClearConstants();
  }

  void Take(CsvRow& row) {
    if (columns_.empty())
      TakeHeader(row);
    else
      TakeRow(row);
  }

  int Finish() {
    writer_.Finish();
    if (failed_cells_ == 0) return kDone;
    std::cerr << failed_cells_ << " celdas con error en " << failed_rows_ << " filas\n";
    return kFaults;
  }

 private:
  void TakeHeader(const CsvRow& row) {
    for (const std::string& header : row) {
      const Text name(Trim(FromUtf8(header)));
      AddVariable(name, {});
      columns_.push_back(evaluator_->Variables()->Item(name));
      writer_.Field(header);
    }
    for (const NamedFormula& formula : formulas_) {
      AddVariable(formula.name, formula.formula);
      names_.push_back(formula.name);
      writer_.Field(ToUtf8(formula.name));
    }
    outcomes_.resize(names_.size());
    writer_.EndRow();
  }

  void AddVariable(const Text& name, const Text& formula) {
    if (evaluator_->ExistVariable(name)) RaiseAbout(Failure::DuplicateKey, ToUtf8(name));
    evaluator_->AddVble(name, Variant(), u"", kNumeric, formula);
  }

  void TakeRow(const CsvRow& row) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const std::string_view cell = i < row.size() ? std::string_view(row[i]) : std::string_view();
      columns_[i]->LetValue(CellValue(std::string(cell)));
      writer_.Field(cell);
    }
    const std::size_t failed_before = failed_cells_;
    if (row.size() > columns_.size())
      WriteMisfit(row.size());
    else
      WriteResults();
    failed_rows_ += failed_cells_ > failed_before;
    writer_.EndRow();
    progress_.Row();
  }

  // A row with more fields than the header has does not say what they are.
  void WriteMisfit(std::size_t fields) {
    for (std::size_t i = 0; i < names_.size(); ++i)
      WriteFailure("la fila tiene " + std::to_string(fields) + " campos y el encabezado " +
                   std::to_string(columns_.size()));
  }

  void WriteResults() {
    evaluator_->EvaluateBatch(names_, outcomes_);
    for (const Evaluador::Outcome& outcome : outcomes_) {
      if (outcome.error)
        WriteFailure(ShowError(*outcome.error));
      else if (!outcome.faults.empty())
        WriteFailure(ToUtf8(outcome.faults));
      else
        writer_.Field(ShowValue(outcome.value));
    }
  }

  void WriteFailure(std::string message) {
    while (message.ends_with('\n') || message.ends_with('\r')) message.pop_back();
    ++failed_cells_;
    writer_.Field("#" + message);
  }

  Ref<Evaluador> evaluator_;
  std::vector<NamedFormula> formulas_;
  std::vector<Ref<Campo>> columns_;
  std::vector<Text> names_;
  std::vector<Evaluador::Outcome> outcomes_;
  CsvWriter writer_;
  Progress progress_;
  std::size_t failed_cells_ = 0;
  std::size_t failed_rows_ = 0;
};

}  // namespace

int RunTable(const TableOptions& options) {
  const std::vector<NamedFormula> formulas = ReadFormulas(options.formulas);
  CsvReader reader(options.input);
  // Opening the output empties it.
  for (const std::string& input : {options.input, options.formulas})
    RequireOtherFile(input, options.output);
  TableRun run(options, formulas);
  reader.ForEachRow([&run](CsvRow& row) { run.Take(row); });
  return run.Finish();
}

}  // namespace tovalin::tool
