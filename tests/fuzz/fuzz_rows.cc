#include <bit>
#include <optional>

#include "tests/fuzz/fuzz_input.h"
#include "tovalin/evaluador.h"

// A table computed at once beside the same rows computed one after the other: the same
// values to the last bit, the same errors, and the variables as they were.
//
// An input has the formula, then lines Name=formula of formula variables, then choices
// for the columns A, B (numbers), X, Y (any values) and Z (any values, a local).

namespace tovalin::fuzz {
namespace {

class Silence : public SettingsStore {
 public:
  void Save(TextView, TextView, TextView, TextView) override {}
  Text Get(TextView, TextView, TextView, TextView otherwise) const override {
    return Text(otherwise);
  }
};

struct Cell {
  Variant value;
  std::optional<Error> error;
};

bool Same(double left, double right) {
  return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

bool Same(const Variant& left, const Variant& right) {
  if (left.Kind() != right.Kind()) return false;
  switch (left.Kind()) {
    case Subtype::Double:
      return Same(left.AsDouble(), right.AsDouble());
    case Subtype::Date:
      return Same(left.AsDate().days, right.AsDate().days);
    case Subtype::Single:
      return Same(left.AsSingle(), right.AsSingle());
    case Subtype::Error:
      return left.AsErrorCode() == right.AsErrorCode();
    case Subtype::Empty:
    case Subtype::Null:
      return true;
    default:
      return ToText(left) == ToText(right);
  }
}

struct Case {
  Text formula;
  std::vector<Text> lines;
  std::size_t rows = 0;
  std::vector<double> a, b;
  std::vector<Variant> x, y, z;

  Case(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    lines = input.TakeLines();
    formula = lines[0];
    // Now and then more than a block of those that are computed at once.
    constexpr std::size_t kRows[] = {5, 5, 5, 12, 12, 12, 70, 600};
    rows = kRows[input.Below(8)];
    // One odd number sends its whole block another way: half of the tables have none.
    const bool tame = input.Below(2) == 0;
    const auto number = [&] { return tame ? input.Byte() / 4.0 + 1 : input.Double(); };
    constexpr std::size_t kDifferent = 12;
    for (std::size_t row = 0; row < rows; ++row) {
      const bool again = row >= kDifferent;
      const std::size_t from = row % kDifferent;
      a.push_back(again ? a[from] : number());
      b.push_back(again ? b[from] : number());
      x.push_back(again ? x[from] : input.Scalar(lines));
      y.push_back(again ? y[from] : input.Scalar(lines));
      z.push_back(again ? z[from] : input.Scalar(lines));
    }
  }
};

// One evaluator for each way to compute, so that none sees what another left.
struct Setting {
  explicit Setting(const Case& test) : test(test) {
    evaluator->UseSettings(Make<Silence>());
    evaluator->UseClock([] { return Date{45337.5}; });
    evaluator->ClearConstants();
    for (const char16_t* name : {u"A", u"B", u"X", u"Y"})
      evaluator->AddVble(name, 7.5, u"", kNumeric);
    const auto record = Make<Campo>(u"Z");
    record->LetValue(u"suyo");
    locals->Add(record);
    for (std::size_t i = 1; i < test.lines.size(); ++i) AddFormula(test.lines[i]);
    for (const char16_t* name : {u"DOBLE(", u"OTRA("}) evaluator->AddFunction(name, u"", u"", u"");
    evaluator->Evaluate.Attach([this](const Text& macro, Variant& result, Ref<Collection>& stack) {
      if (macro == u"DOBLE(")
        result = 2 * ToDouble(evaluator->LoadTopePila(stack));
      else
        evaluator->EvaluatePosfijo(u"A & X", result);
    });
    formula = evaluator->Preparar(test.formula, &locals);
  }

  void AddFormula(TextView line) {
    const std::size_t equals = line.find(u'=');
    if (equals == TextView::npos || equals == 0) return;
    try {
      evaluator->AddVble(Text(line.substr(0, equals)), 1.0, u"", kNumeric,
                         Text(line.substr(equals + 1)));
    } catch (const Error&) {
      // No name.
    }
  }

  std::vector<Cell> ByRow() {
    std::vector<Cell> cells(test.rows);
    for (std::size_t row = 0; row < test.rows; ++row) {
      evaluator->SetVariable(u"A", test.a[row]);
      evaluator->SetVariable(u"B", test.b[row]);
      evaluator->SetVariable(u"X", test.x[row]);
      evaluator->SetVariable(u"Y", test.y[row]);
      locals->Item(u"Z")->LetValue(test.z[row]);
      try {
        formula->Evaluar(cells[row].value);
      } catch (const Error& error) {
        cells[row] = {Variant(), error};
      }
    }
    return cells;
  }

  // Empty when the table is refused as a whole.
  template <class Result>
  std::optional<std::vector<Formula::RowError>> ByTable(std::vector<Result>& results) {
    const Formula::Column columns[] = {{u"A", std::span<const double>(test.a)},
                                       {u"B", std::span<const double>(test.b)},
                                       {u"X", std::span<const Variant>(test.x)},
                                       {u"Y", std::span<const Variant>(test.y)},
                                       {u"Z", std::span<const Variant>(test.z)}};
    results.resize(test.rows);
    auto errors = formula->EvaluarTabla(columns, test.rows, std::span<Result>(results));
    for (const char16_t* name : {u"A", u"B", u"X", u"Y"})
      Require(Same(evaluator->GetVariable(name, u""), 7.5), "a variable has its own value again");
    Require(Same(locals->Item(u"Z")->Value(), u"suyo"), "a local has its own value again");
    return errors;
  }

  const Case& test;
  Ref<Evaluador> evaluator = Make<Evaluador>();
  Ref<Campos> locals = Make<Campos>();
  Ref<Formula> formula;
};

template <class Result>
void Compare(const std::vector<Cell>& cells, const std::vector<Result>& results,
             const std::vector<Formula::RowError>& errors) {
  auto next = errors.begin();
  for (std::size_t row = 0; row < cells.size(); ++row) {
    const bool failed = next != errors.end() && next->row == row;
    Require(failed == cells[row].error.has_value(), "the same rows fail");
    if (failed)
      Require((next++)->error == *cells[row].error, "a row fails with the same error");
    else
      Require(Same(results[row], cells[row].value), "a row has the same value");
  }
  Require(next == errors.end(), "errors come in the order of rows");
}

// The numbers of cells that have them; the others fail.
std::vector<Cell> AsNumbers(std::vector<Cell> cells) {
  for (Cell& cell : cells) {
    try {
      if (!cell.error) cell.value = ToDouble(cell.value);
    } catch (const Error& error) {
      cell = {Variant(), error};
    }
  }
  return cells;
}

void Run(const Case& test) {
  const std::vector<Cell> cells = Setting(test).ByRow();
  std::vector<Variant> values;
  const auto value_errors = Setting(test).ByTable(values);
  Compare(cells, values, *value_errors);
  std::vector<double> numbers;
  const auto number_errors = Setting(test).ByTable(numbers);
  std::vector<Variant> as_values(numbers.begin(), numbers.end());
  Compare(AsNumbers(cells), as_values, *number_errors);
}

}  // namespace
}  // namespace tovalin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tovalin::fuzz::Run(tovalin::fuzz::Case(data, size));
  return 0;
}
