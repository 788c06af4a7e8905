// Formulas that are right: random ones, fully bracketed and well typed, and those of the
// pages and examples. Nothing is told of them.

#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "review/source.h"
#include "tests/review/review_host.h"

namespace tovalin {
namespace {

using Type = OperandType;

/// Writes formulas with a fixed seed. Conditions and divisors hold a variable, and no sign
/// stands behind a value.
class Writer {
 public:
  std::string Formula() { return Value(AnyType(), 4); }

 private:
  std::size_t Below(std::size_t count) { return random_() % count; }

  std::string One(std::initializer_list<const char*> list) {
    return *(list.begin() + Below(list.size()));
  }

  Type AnyType() {
    constexpr Type kTypes[] = {Type::Number, Type::Number, Type::Text, Type::Date, Type::Logical};
    return kTypes[Below(std::size(kTypes))];
  }

  std::string Leaf(Type type) {
    switch (type) {
      case Type::Number:
        return One({"12", "3.5", "0.25", "A", "B", "C", "Salario", "Salario Base", "1E5", "@Dias"});
      case Type::Text:
        return One({"'abc'", "\" x y \"", "Cargo", "Nombre", "'Sí'", "''"});
      case Type::Date:
        return One({"Ingreso", "Fecha", "DATE( )", "SERIEFECHA( 2025 , 1 , 31 )"});
      default:
        return "(" + One({"A", "B", "Salario"}) + One({" > ", " < ", " = ", " <> ", ">=", "<="}) +
               One({"10", "B", "2.5"}) + ")";
    }
  }

  std::string Variable(Type type) {
    switch (type) {
      case Type::Number:
        return One({"A", "B", "Salario"});
      case Type::Text:
        return One({"Cargo", "Nombre"});
      default:
        return One({"Ingreso", "Fecha"});
    }
  }

  std::string Value(Type type, int depth) {
    if (type == Type::Any) type = AnyType();
    if (depth == 0 || Below(4) == 0) return Leaf(type);
    return Below(2) == 0 ? Operation(type, depth - 1) : Call(type, depth - 1);
  }

  std::string Operation(Type type, int depth) {
    switch (type) {
      case Type::Number:
        if (Below(5) == 0)
          return "(" + Value(Type::Number, depth) + " / " + Variable(Type::Number) + ")";
        return "(" + Value(Type::Number, depth) + One({" + ", "*", " - ", " *", "^"}) +
               Value(Type::Number, depth) + ")";
      case Type::Text:
        return "(" + Value(Type::Any, depth) + " & " + Value(Type::Any, depth) + ")";
      case Type::Date:
        return "(" + Value(Type::Date, depth) + One({" + ", " - "}) + Value(Type::Number, depth) +
               ")";
      default:
        return Condition(depth);
    }
  }

  std::string Condition(int depth) {
    const Type compared = std::array{Type::Number, Type::Text, Type::Date}[Below(3)];
    switch (Below(4)) {
      case 0:
        return "(" + Value(Type::Logical, depth) + One({" AND ", " OR "}) +
               Value(Type::Logical, depth) + ")";
      case 1:
        return "(" + Variable(Type::Text) + " IN " + Value(Type::Text, depth) + ")";
      case 2:
        return "(" + Variable(Type::Number) + " , " + Value(Type::Number, depth) + " BETWEEN " +
               Value(Type::Number, depth) + ")";
      default:
        return "(" + Variable(compared) + One({" = ", " > ", " <> "}) + Value(compared, depth) +
               ")";
    }
  }

  std::string Call(Type type, int depth) {
    std::vector<const BuiltinFunction*> fitting;
    for (const BuiltinFunction* row : BuiltinFunctions())
      if (row->place > 0 && (row->result == type || row->result == Type::Any))
        fitting.push_back(row);
    const BuiltinFunction& row = *fitting[Below(fitting.size())];
    std::string call = ToUtf8(row.word);
    const char* separator = " ";
    for (const FunctionParameter& parameter : row.Parameters()) {
      // What is given back has the wanted type, and what tests a value needs a variable.
      const bool is_given = parameter.type == Type::Any && row.result == Type::Any;
      const bool is_tested = parameter.type == Type::Any && row.result == Type::Logical;
      call += separator +
              (is_tested ? Variable(Type::Text) : Value(is_given ? type : parameter.type, depth));
      separator = One({" , ", ","})[0] == ',' ? "," : " , ";
    }
    return call + " )";
  }

  std::mt19937 random_{20251231};
};

TEST(RightFormulasTest, NothingIsToldOfRandomOnes) {
  constexpr int kFormulas = 10000;
  ReviewHost host;
  Writer writer;
  int told = 0;
  for (int i = 0; i < kFormulas && told < 5; ++i) {
    const std::string formula = writer.Formula();
    const std::string found = host.Told(FromUtf8(formula));
    told += !found.empty();
    EXPECT_EQ(found, "") << formula;
  }
}

/// The examples of docs/functions.md that show what a formula should not hold.
bool IsCounterexample(const std::string& formula) { return formula.starts_with("IIF( 1 = 1"); }

TEST(RightFormulasTest, NothingIsToldOfTheExamplesOfThePage) {
  ReviewHost host;
  for (const char16_t* name : {u"SIN", u"COS", u"TAN", u"CTN", u"SEC", u"CSC"})
    host.evaluator->AddFunction(Text(name) + u"(", name, u"", u"");
  std::ifstream page(TOVALIN_SOURCE_DIR "/docs/functions.md");
  int count = 0;
  for (std::string line; std::getline(page, line);) {
    const std::size_t cell = line.rfind("| `");
    const std::size_t end = cell == std::string::npos ? cell : line.find('`', cell + 3);
    if (end == std::string::npos || line.find('`', end + 1) == std::string::npos) continue;
    const std::string formula = line.substr(cell + 3, end - cell - 3);
    if (IsCounterexample(formula)) continue;
    ++count;
    EXPECT_EQ(host.Told(FromUtf8(formula)), "") << formula;
  }
  EXPECT_GT(count, 60);
}

}  // namespace
}  // namespace tovalin
