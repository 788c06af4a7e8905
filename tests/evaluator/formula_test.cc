#include "tovalin/formula.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "tests/evaluator/formula_host.h"

namespace tovalin {
namespace {

TEST(Formula, StaysRightWhileTheTablesChange) {
  FormulaHost host;
  host.evaluator->AddConstant(u"Tarifa", 0.5, u"", kNumeric);
  const Ref<Formula> formula = host.evaluator->Preparar(u"@A * Tarifa + ABS(B)");
  Variant value;
  EXPECT_TRUE(formula->Evaluar(value));
  EXPECT_EQ(FormulaHost::Show(value), "Double 6");
  EXPECT_EQ(formula->Texto(), u"@A * Tarifa + ABS(B)");
  EXPECT_EQ(formula->Posfijo(), u"A Tarifa * B ABS( + ");
  EXPECT_EQ(FormulaHost::Joined(formula->Variables(), ","), "A,B");
  host.evaluator->SetVariable(u"A", 10.0);
  host.evaluator->SetVariable(u"B", std::int16_t{-1});
  formula->Evaluar(value);
  EXPECT_EQ(FormulaHost::Show(value), "Double 6");
  host.evaluator->SetConstante(u"Tarifa", 1.0);  // bound when it was prepared
  formula->Evaluar(value);
  EXPECT_EQ(FormulaHost::Show(value), "Double 6");
  host.evaluator->RemoveVble(u"B");
  formula->Evaluar(value);
  EXPECT_EQ(FormulaHost::Show(value), "Integer 0");
  EXPECT_EQ(formula->Errores()->Count(), 1);
  EXPECT_EQ(ToUtf8(host.evaluator->LastError()), "1 - Variable no definida B\r\n");
  host.evaluator->AddVble(u"B", 0.0, u"", kNumeric, u"A * 2");
  formula->Evaluar(value);
  EXPECT_EQ(FormulaHost::Show(value), "Double 30");
  EXPECT_EQ(formula->Errores()->Count(), 0);
}

TEST(Formula, OutlivesItsEvaluator) {
  auto host = std::make_unique<FormulaHost>();
  const Ref<Formula> formula = host->evaluator->Preparar(u"A + 1");
  host.reset();
  Variant value = 1.5;
  const std::optional<Error> error =
      formula->Invoke(u"Evaluar", MemberKind::Method, std::span(&value, 1), value);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, kObjectError);
  EXPECT_EQ(ToUtf8(error->description), "El Evaluador de la fórmula ya no existe");
  EXPECT_EQ(formula->Texto(), u"A + 1");
}

// Formulas over A, B, C and D, in random shapes.
class RandomFormula {
 public:
  explicit RandomFormula(std::mt19937& random) : random_(random) {}

  Text Number(int depth) {
    switch (depth == 0 ? random_() % 3 : random_() % 13) {
      case 0:
      case 1:
        return Text(1, u"ABCD"[random_() % 4]);
      case 2:
        return FromUtf8(std::to_string(random_() % 7)) + (random_() % 2 ? u".5" : u"");
      case 3:
        return u"ABS(" + Number(depth - 1) + u")";
      case 4:
        return u"MAX(" + Number(depth - 1) + u"," + Number(depth - 1) + u")";
      case 5:
        return u"MIN(" + Number(depth - 1) + u"," + Number(depth - 1) + u")";
      case 6:
        return u"IIF(" + Condition(depth - 1) + u"," + Number(depth - 1) + u"," +
               Number(depth - 1) + u")";
      case 7:
        return Number(depth - 1) + u"*-" + Number(0);
      case 8:
        return u"Redondear(" + Number(depth - 1) + u"," + Places() + u")";
      case 9:
        return u"AjusteMedio(" + Number(depth - 1) + u"," + Number(0) + u"," + Places() + u")";
      default: {
        const char16_t* operators[] = {u"+", u"-", u"*", u"/", u"^"};
        return u"(" + Number(depth - 1) + u" " + operators[random_() % 5] + u" " +
               Number(depth - 1) + u")";
      }
    }
  }

  // Most others raise.
  Text Places() { return random_() % 8 == 0 ? Number(0) : Text(1, u"01234"[random_() % 5]); }

  Text Condition(int depth) {
    const char16_t* comparisons[] = {u"<", u"<=", u">", u">=", u"=", u"<>"};
    const Text plain = u"(" + Number(depth > 0 ? depth - 1 : 0) + u" " +
                       comparisons[random_() % 6] + u" " + Number(0) + u")";
    if (depth < 2 || random_() % 2) return plain;
    return u"(" + plain + (random_() % 2 ? u" AND " : u" OR ") + Condition(depth - 1) + u")";
  }

 private:
  std::mt19937& random_;
};

// A half that rounding has to tell, or one of the nearest numbers to it.
double NextToHalf(std::mt19937& random) {
  constexpr double kHalves[] = {0.125, 2.675, 1.005, 0.5, 2.5, 250, 49999.5, -2.345, -1.5, -750};
  double value = kHalves[random() % std::size(kHalves)];
  const double towards = random() % 2 ? INFINITY : -INFINITY;
  for (auto steps = random() % 4; steps > 0; --steps) value = std::nextafter(value, towards);
  return value;
}

double RandomValue(std::mt19937& random, bool tame) {
  constexpr double kSpecial[] = {0.0,    -0.0,   1.0,    -1.0,      1e308,
                                 -1e308, 1e-308, 5e-324, 0.1,       0.30000000000000004,
                                 1e15,   2.0,    3.0,    1.0 / 3.0, INFINITY};
  if (!tame && random() % 40 == 0) return kSpecial[random() % std::size(kSpecial)];
  if (random() % 10 == 0) return NextToHalf(random);
  return (static_cast<double>(random() % 2'000'000) - 1e6) / (random() % 2 ? 100.0 : 7.0);
}

struct RowOutcome {
  std::uint64_t bits = 0;
  std::int32_t error = 0;
  friend bool operator==(const RowOutcome&, const RowOutcome&) = default;
  friend void PrintTo(const RowOutcome& outcome, std::ostream* stream) {
    *stream << std::bit_cast<double>(outcome.bits) << " error " << outcome.error;
  }
};

// Every path gives the same value to the last bit: the columns, the rows, and the
// evaluation of a postfix Collection, which has no fast path.
TEST(EvaluarTabla, GivesWhatEachRowGives) {
  // One row that fails leaves its block to the evaluation by rows: only tame values are sure to
  // test blocks.
  constexpr std::size_t kRows = 1200;  // more than two blocks
  const char16_t* names[] = {u"A", u"B", u"C", u"D"};
  std::mt19937 random(11);
  for (int round = 0; round < 300; ++round) {
    FormulaHost host;
    host.evaluator->ClearVbles();
    for (const char16_t* name : names) host.evaluator->AddVble(name, 0.0, u"", kNumeric);
    const Text text = RandomFormula(random).Number(1 + static_cast<int>(random() % 4));
    std::vector<std::vector<double>> values(4, std::vector<double>(kRows));
    for (auto& column : values)
      for (double& value : column) value = RandomValue(random, round % 2 == 0);
    std::vector<Formula::Column> columns;
    for (std::size_t i = 0; i < 4; ++i)
      columns.push_back({names[i], std::span<const double>(values[i])});

    std::vector<double> results(kRows, 777);
    const Ref<Formula> formula = host.evaluator->Preparar(text);
    ASSERT_EQ(formula->Errores()->Count(), 0) << ToUtf8(text);
    const auto errors = formula->EvaluarTabla(columns, kRows, std::span<double>(results));
    std::vector<RowOutcome> by_table(kRows);
    for (std::size_t row = 0; row < kRows; ++row)
      by_table[row].bits = std::bit_cast<std::uint64_t>(results[row]);
    for (const auto& error : errors) {
      EXPECT_TRUE(std::isnan(results[error.row]));
      by_table[error.row] = {0, error.error.number};
    }

    Ref<Collection> items;
    Text expression = text;
    host.evaluator->Posfijo(host.evaluator->CheckInfijo(expression), items);
    const Variant inputs[] = {Variant(text), Variant(items)};
    for (std::size_t row = 0; row < kRows; row += 1 + random() % 5) {
      for (std::size_t i = 0; i < 4; ++i) host.evaluator->ChangeVble(values[i][row], names[i]);
      for (const Variant& input : inputs) {
        RowOutcome by_row;
        try {
          Variant value;
          host.evaluator->EvaluatePosfijo(input, value);
          by_row.bits = std::bit_cast<std::uint64_t>(ToDouble(value));
        } catch (const Error& error) {
          by_row = {0, error.number};
        }
        ASSERT_EQ(by_table[row], by_row) << ToUtf8(text) << " row " << row;
      }
    }
  }
}

// What a formula gives for the variables as they are, with its error.
std::string ShowRow(Formula& formula) {
  try {
    Variant value;
    formula.Evaluar(value);
    return FormulaHost::Show(value);
  } catch (const Error& error) {
    return "Error " + std::to_string(error.number);
  }
}

// Texts that look like numbers, quotes, errors in some rows: a column goes by the
// same rules as its rows.
TEST(EvaluarTabla, TakesColumnsOfAnyValues) {
  constexpr std::size_t kRows = 1100;  // more than two blocks
  const char16_t* texts[] = {u"A & 'b' & X",
                             u"'a' & 'b' & X & 'c' & X",
                             u"CHR(34) & X & CHR(34)",
                             u"X & CHR(34)",
                             u"(X & ',000') * 2",
                             u"FORMAT(A, '#,##0.00') & X",
                             u"X + A",
                             u"A / B",
                             u"IIF(A > B, X, 'no') & LEN(X)",
                             u"X IN 'a,b\"c'",
                             u"(A BETWEEN B AND X)",
                             u"Redondear(X, 2) - A",
                             u"-X",
                             u"A*-B",
                             u"IIF((A > 0) AND (X = 'D'), X, A)",
                             u"YEAR(Fecha)",
                             u"Dias360(X, Fecha)",
                             u"MID('abc', B, 2) & DateAdd('m', A, X)",
                             u"X",
                             u"'1,234'",
                             u"IIF(A = 1, '1,234', X) + 1",
                             u"1 / (A - A)",
                             u"NombreMes(1 + 1) & LEN(X)",
                             u"Redondear(1, 0 - 1) & X",
                             u"NVL(X, A) & Y",
                             u"MIN(X, Y) & MAX(X, Y)",
                             u"X ^ A",
                             u"Par",
                             u"Par & X"};
  const Variant values[] = {5.0,  -2.5,  0.0,           Variant(),   Variant::Null(), u"",
                            u"D", u"x",  u"1,234.50",   u"a,b",      u"1,2,3",        u"\"q\"",
                            true, 1e308, u"15/03/2012", Date{45000}, std::int16_t{3}, u"\"1,234\""};
  FormulaHost host;
  host.evaluator->AddVble(u"Y", 0.0, u"", kNumeric);
  host.evaluator->AddVble(u"Par", Variant(), u"", kNumeric, u"Y & A");  // reads columns too
  std::mt19937 random(5);
  std::vector<Variant> x(kRows), y(kRows), results(kRows);
  std::vector<double> a(kRows);
  for (std::size_t row = 0; row < kRows; ++row) {
    x[row] = values[random() % std::size(values)];
    y[row] = values[random() % std::size(values)];
    a[row] = static_cast<double>(random() % 7) - 2;
  }
  const Formula::Column columns[] = {{u"X", std::span<const Variant>(x)},
                                     {u"Y", std::span<const Variant>(y)},
                                     {u"A", std::span<const double>(a)}};
  for (const char16_t* text : texts) {
    const Ref<Formula> formula = host.evaluator->Preparar(text);
    ASSERT_EQ(formula->Errores()->Count(), 0) << ToUtf8(text);
    const auto errors = formula->EvaluarTabla(columns, kRows, std::span<Variant>(results));
    std::vector<std::string> by_table(kRows);
    for (std::size_t row = 0; row < kRows; ++row) by_table[row] = FormulaHost::Show(results[row]);
    for (const auto& error : errors)
      by_table[error.row] = "Error " + std::to_string(error.error.number);
    for (std::size_t row = 0; row < kRows; ++row) {
      host.evaluator->SetVariable(u"X", x[row]);
      host.evaluator->SetVariable(u"Y", y[row]);
      host.evaluator->SetVariable(u"A", a[row]);
      ASSERT_EQ(by_table[row], ShowRow(*formula))
          << ToUtf8(text) << ", X is " << FormulaHost::Show(x[row]);
    }
  }
}

TEST(EvaluarTabla, TakesVariantsAndHostFunctions) {
  FormulaHost host;
  host.evaluator->AddFunction(u"DOBLE(", u"DOBLE", u"", u"");
  host.evaluator->Evaluate.Attach([&](const Text&, Variant& result, Ref<Collection>& pila) {
    result = 2 * ToDouble(host.evaluator->LoadTopePila(pila));
  });
  const Variant codes[] = {u"x", 5.0, Variant::Null(), u"abc"};
  const double numbers[] = {1, 2, 3, 4};
  const Formula::Column columns[] = {{u"X", std::span<const Variant>(codes)},
                                     {u"A", std::span<const double>(numbers)}};
  std::vector<Variant> results(4);
  const Ref<Formula> joined = host.evaluator->Preparar(u"X & DOBLE(A)");
  EXPECT_TRUE(joined->EvaluarTabla(columns, 4, std::span<Variant>(results)).empty());
  EXPECT_EQ(FormulaHost::Show(results[1]), "String 54");
  EXPECT_EQ(FormulaHost::Show(results[2]), "String 6");
  const Ref<Formula> added = host.evaluator->Preparar(u"X + DOBLE(A)");
  const auto errors = added->EvaluarTabla(columns, 4, std::span<Variant>(results));
  ASSERT_EQ(errors.size(), 2u);
  EXPECT_EQ(errors[1].row, 3u);
  EXPECT_EQ(errors[1].error.number, 13);
  EXPECT_EQ(FormulaHost::Show(results[1]), "Double 9");
  EXPECT_EQ(FormulaHost::Show(host.evaluator->GetVariable(u"X", 0.0)), "String Contabilidad");
  const Formula::Column unknown[] = {{u"Quien", std::span<const double>(numbers)}};
  EXPECT_THROW(added->EvaluarTabla(unknown, 4, std::span<Variant>(results)), Error);
  EXPECT_THROW(added->EvaluarTabla(columns, 5, std::span<Variant>(results)), Error);
}

TEST(EvaluarTabla, SurvivesAHandlerThatDropsEverything) {
  auto host = std::make_unique<FormulaHost>();
  host->evaluator->AddFunction(u"SOLTAR(", u"SOLTAR", u"", u"");
  Ref<Formula> formula = host->evaluator->Preparar(u"A + SOLTAR( )");
  host->evaluator->Evaluate.Attach([&](const Text&, Variant& result, Ref<Collection>&) {
    result = 1.0;
    formula = nullptr;
    host.reset();
  });
  const double numbers[] = {1, 2};
  const Formula::Column columns[] = {{u"A", std::span<const double>(numbers)}};
  std::vector<double> results(2);
  const auto errors = formula->EvaluarTabla(columns, 2, std::span<double>(results));
  EXPECT_EQ(results[0], 2);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0].error.number, kObjectError);
}

TEST(EvaluarTabla, IsCalledLateBound) {
  FormulaHost host;
  const Ref<Formula> formula = host.evaluator->Preparar(u"A / B + X");
  auto columns = Make<Collection>();
  for (const char16_t* name : {u"A", u"X"}) {
    auto array = Make<VariantArray>(1, 2);
    array->At(0, 0) = 10.0;
    array->At(0, 1) = Text(name) == u"X" ? Variant(u"abc") : Variant(1.0);
    columns->Add(Variant(array), Variant(name));
  }
  Variant results;
  Variant arguments[] = {Variant(columns), std::int32_t{2}, Variant::ByReference(results)};
  Variant failed;
  ASSERT_FALSE(formula->Invoke(u"evaluartabla", MemberKind::Method, arguments, failed));
  EXPECT_EQ(failed.AsLong(), 1);
  EXPECT_EQ(FormulaHost::Show(results.AsArray().At(0, 0)), "Double 12");
  EXPECT_EQ(results.AsArray().At(0, 1).AsErrorCode(), 13);
}

}  // namespace
}  // namespace tovalin
