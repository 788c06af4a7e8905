// Runs the cases of findings.tsv: what is found in each formula, where, and whether the
// suggested formula computes what was meant.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/review/review_host.h"

namespace tovalin {
namespace {

constexpr const char* kCases = TOVALIN_SOURCE_DIR "/tests/review/findings.tsv";

struct Case {
  int line = 0;
  std::string formula;
  std::vector<std::string> places;  // "advertencia signo 3 1"
  std::string suggestion;
  std::string value;
};

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream stream(line);
  for (std::string field; std::getline(stream, field, '\t');) fields.push_back(field);
  return fields;
}

// A line that begins with a tab tells more of the formula above it.
std::vector<Case> ReadCases() {
  std::ifstream file(kCases);
  std::vector<Case> cases;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> fields = Fields(line);
    fields.resize(6);
    if (!fields[0].empty()) cases.push_back({number, fields[0], {}, fields[4], fields[5]});
    if (cases.empty()) continue;
    if (fields[1] != "-")
      cases.back().places.push_back(fields[1] + " " + fields[2] + " " + fields[3]);
  }
  return cases;
}

TEST(FindingsTest, EachFormulaOfTheTableIsFoundWhatIsThere) {
  const std::vector<Case> cases = ReadCases();
  ASSERT_GT(cases.size(), 100u) << kCases;
  ReviewHost host;
  for (const Case& row : cases) {
    SCOPED_TRACE("line " + std::to_string(row.line) + ": " + row.formula);
    std::vector<std::string> places;
    std::string suggestion;
    for (const FoundPlace& found : host.Review(FromUtf8(row.formula))) {
      places.push_back(found.code + " " + std::to_string(found.start) + " " +
                       std::to_string(found.length));
      const std::string place = "En la posición " + std::to_string(found.start) + ", ";
      EXPECT_TRUE(found.message.starts_with(place)) << found.message;
      EXPECT_EQ(found.message.find("{"), std::string::npos) << found.message;
      if (!found.suggestion.empty()) suggestion = found.suggestion;
    }
    EXPECT_EQ(places, row.places);
    EXPECT_EQ(suggestion, row.suggestion);
    if (suggestion.empty()) continue;
    EXPECT_EQ(host.Evaluate(FromUtf8(suggestion)), row.value);
    EXPECT_EQ(host.Told(FromUtf8(suggestion)), "");
  }
}

}  // namespace
}  // namespace tovalin
