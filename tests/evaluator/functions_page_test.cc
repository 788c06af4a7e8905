// Runs the examples of docs/functions.md, so that the page cannot go stale.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "tovalin/convert.h"
#include "tovalin/evaluador.h"

namespace tovalin {
namespace {

constexpr Date kClock{45327.6043402778};  // 5 February 2024, 14:30:15

/// Keeps the traces of the examples out of the user's settings.
class NoSettings : public SettingsStore {
 public:
  void Save(TextView, TextView, TextView, TextView) override {}
  Text Get(TextView, TextView, TextView, TextView otherwise) const override {
    return Text(otherwise);
  }
};

/// A row of one of the page's tables: its cells, of which the last one reads
/// "`FORMULA` gives `RESULT`".
struct Row {
  int line = 0;
  std::string function;  // the word with its bracket, "MEDIO(", or another cell
  std::string formula;
  std::string result;
};

/// The texts between back quotes, in order.
std::vector<std::string> CodeOf(const std::string& cell) {
  std::vector<std::string> codes;
  for (std::size_t at = cell.find('`'); at != std::string::npos;) {
    const std::size_t end = cell.find('`', at + 1);
    if (end == std::string::npos) break;
    codes.push_back(cell.substr(at + 1, end - at - 1));
    at = cell.find('`', end + 1);
  }
  return codes;
}

/// A result without the quotes that show the blanks at its ends.
std::string Unquoted(const std::string& result) {
  const bool quoted = result.size() >= 2 && result.front() == '"' && result.back() == '"';
  return quoted ? result.substr(1, result.size() - 2) : result;
}

std::vector<Row> ReadPage() {
  std::ifstream page(TOVALIN_SOURCE_DIR "/docs/functions.md");
  std::vector<Row> rows;
  std::string line;
  for (int number = 1; std::getline(page, line); ++number) {
    if (line.find("` gives `") == std::string::npos) continue;
    const std::size_t last_cell = line.rfind("| `");
    const auto first = CodeOf(line.substr(0, last_cell));
    const auto example = CodeOf(line.substr(std::min(last_cell, line.size())));
    if (example.size() != 2) {
      ADD_FAILURE() << "line " << number << " is no row with an example: " << line;
      continue;
    }
    const bool names = !first.empty() && line.starts_with("| `");
    rows.push_back({number, names ? first[0].substr(0, first[0].find('(') + 1) : std::string(),
                    example[0], Unquoted(example[1])});
  }
  return rows;
}

/// An evaluator as the page describes it: a fixed clock, the variable `Vacio`,
/// the trigonometric names, and a host that answers ISNULL(.
Ref<Evaluador> PageEvaluator() {
  auto evaluador = Make<Evaluador>();
  evaluador->UseClock([] { return kClock; });
  evaluador->UseSettings(Make<NoSettings>());
  evaluador->AddVble(u"Vacio", Variant::Null(), u"", kNumeric);
  for (const char16_t* name : {u"SIN", u"COS", u"TAN", u"CTN", u"SEC", u"CSC"})
    evaluador->AddFunction(Text(name) + u"(", name, u"", u"");
  Evaluador* host = evaluador.get();
  host->Evaluate.Attach([host](const Text& Macro, Variant& Result, Ref<Collection>& rPila) {
    if (EqualFolded(Macro, u"ISNULL(")) Result = host->LoadTopePila(rPila).Is(Subtype::Null);
  });
  return evaluador;
}

TEST(FunctionsPageTest, EveryExampleGivesItsResult) {
  const auto rows = ReadPage();
  ASSERT_FALSE(rows.empty()) << "no examples in " TOVALIN_SOURCE_DIR "/docs/functions.md";
  const auto evaluador = PageEvaluator();
  for (const Row& row : rows) {
    SCOPED_TRACE("line " + std::to_string(row.line) + ": " + row.formula);
    try {
      Variant result;
      EXPECT_TRUE(evaluador->EvaluatePosfijo(FromUtf8(row.formula), result));
      EXPECT_EQ(evaluador->LastError(), Text());
      EXPECT_EQ(ToUtf8(ToText(result)), row.result);
    } catch (const Error& error) {
      ADD_FAILURE() << "Error " << error.number << ": " << ToUtf8(error.description);
    }
  }
}

TEST(FunctionsPageTest, EveryFunctionOfTheVocabularyHasAnExampleThatCallsIt) {
  std::set<std::string> shown;
  for (const Row& row : ReadPage())
    if (row.formula.find(row.function) != std::string::npos) shown.insert(row.function);
  const auto functions = PageEvaluator()->Functions();
  for (const Ref<Campo>& function : *functions)
    EXPECT_TRUE(shown.contains(ToUtf8(function->Name()))) << ToUtf8(function->Name());
}

}  // namespace
}  // namespace tovalin
