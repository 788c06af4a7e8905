// Runs the examples of docs/functions.md, so that the page cannot go stale.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "tests/evaluator/page_evaluator.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

/// A row of one of the page's tables: its cells, of which the last one reads
/// "`FORMULA` da `RESULT`".
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
    if (line.find("` da `") == std::string::npos) continue;
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

// The rows of docs/formulas.md that show what a formula is read as or gives, such as
// "| `5*(-3)` | **2**: 5 menos 3. |": the second cell is a formula, too.
TEST(FormulasPageTest, EveryRowOfTheTrapsIsSo) {
  std::ifstream page(TOVALIN_SOURCE_DIR "/docs/formulas.md");
  const auto evaluador = PageEvaluator();
  for (const char16_t* name : {u"A", u"B"}) evaluador->AddVble(name, 7.0, u"", kNumeric);
  const auto shown = [&](std::string formula) {
    std::erase(formula, '`');
    Variant result;
    evaluador->EvaluatePosfijo(FromUtf8(formula), result);
    return evaluador->LastError().empty() ? ToUtf8(ToText(result)) : "una falta";
  };
  bool in_table = false;
  int rows = 0;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| `")) {
      in_table = line.starts_with("| fórmula |") || (in_table && line.starts_with("| ---"));
      continue;
    }
    const std::size_t bar = line.find(" | ");
    std::string given = line.substr(bar + 3, line.find_first_of(",:|", bar + 3) - bar - 3);
    std::erase(given, '*');
    given.erase(given.find_last_not_of(' ') + 1);
    if (!in_table || given == "lo que dice") continue;
    SCOPED_TRACE(line);
    const std::string wanted = given == "vacío" ? "" : given == "una falta" ? given : shown(given);
    EXPECT_EQ(shown(line.substr(2, bar - 2)), wanted);
    ++rows;
  }
  EXPECT_EQ(rows, 11);
}

}  // namespace
}  // namespace tovalin
