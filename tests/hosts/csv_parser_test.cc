#include "hosts/cli/csv_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tovalin/error.h"

namespace tovalin::tool {
namespace {

struct Outcome {
  std::vector<CsvRow> rows;
  std::string fault;  // empty: none
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

std::string PlaceOf(const std::string& text, std::size_t position) {
  std::size_t line = 1, start = 0;
  for (std::size_t i = 0; i < position; ++i) {
    if (text[i] != '\n' && text[i] != '\r') continue;
    line += text[i] == '\n' || text[i + 1] != '\n';
    start = i + 1;
  }
  const std::size_t column = CountUtf8Characters(text.substr(start, position - start)) + 1;
  return "f: línea " + std::to_string(line) + ", columna " + std::to_string(column);
}

/// The rules once more, over a whole text that can be looked at from everywhere.
class Model {
 public:
  explicit Model(const std::string& text) : text_(text) {}

  Outcome Read() {
    while (fault_.empty() && at_ < text_.size())
      if (AtLineEnd())
        ++at_;
      else
        ReadRow();
    return {std::move(rows_), std::move(fault_)};
  }

 private:
  bool At(char c) const { return at_ < text_.size() && text_[at_] == c; }
  bool AtLineEnd() const { return At('\r') || At('\n'); }

  void ReadRow() {
    CsvRow row;
    do {
      row.push_back(At('"') ? Quoted() : Plain());
    } while (fault_.empty() && At(';') && ++at_);
    if (fault_.empty()) rows_.push_back(row);
  }
  std::string Plain() {
    const std::size_t start = at_;
    at_ = std::min(text_.find_first_of(";\"\r\n", at_), text_.size());
    if (At('"')) fault_ = PlaceOf(text_, at_);
    return text_.substr(start, at_ - start);
  }
  std::string Quoted() {
    const std::size_t opened = at_++;
    std::string field;
    for (;;) {
      const std::size_t close = text_.find('"', at_);
      if (close == std::string::npos) return fault_ = PlaceOf(text_, opened);
      field += text_.substr(at_, close - at_);
      at_ = close + 1;
      if (!At('"')) break;
      field += text_[at_++];
    }
    if (at_ < text_.size() && !At(';') && !AtLineEnd()) fault_ = PlaceOf(text_, at_);
    return field;
  }

  const std::string& text_;
  std::size_t at_ = 0;
  std::vector<CsvRow> rows_;
  std::string fault_;
};

/// What the parser makes of these blocks.
Outcome Parse(const std::vector<std::string>& blocks) {
  Outcome outcome;
  CsvParser parser("f", ';', [&](CsvRow& row) {
    CsvRow taken;
    taken.swap(row);  // as who keeps rows does
    outcome.rows.push_back(taken);
  });
  try {
    for (const std::string& block : blocks) parser.Parse(block);
    parser.Finish();
  } catch (const Error& error) {
    const std::string text = ToUtf8(error.description);
    outcome.fault = text.substr(0, text.rfind(": "));
  }
  return outcome;
}

std::string Joined(const std::vector<std::string>& blocks) {
  std::string text;
  for (const std::string& block : blocks) text += block;
  return text;
}

TEST(CsvParser, AgreesWithTheModelHoweverTheTextIsCut) {
  const std::vector<std::string> pieces = {"a",  "ñ",  ";",    "\"",  "\"",
                                           "\n", "\r", "\r\n", "; ;", ""};
  std::mt19937 random(7);
  std::size_t faults = 0;
  for (int turn = 0; turn < 20'000; ++turn) {
    std::vector<std::string> blocks(1);
    for (std::size_t length = random() % 16; length > 0; --length) {
      if (random() % 3 == 0) blocks.emplace_back();
      blocks.back() += pieces[random() % pieces.size()];
    }
    const std::string text = Joined(blocks);
    const Outcome expected = Model(text).Read();
    ASSERT_EQ(Parse(blocks), expected) << testing::PrintToString(blocks);
    ASSERT_EQ(Parse({text}), expected) << testing::PrintToString(text);
    faults += !expected.fault.empty();
  }
  EXPECT_GT(faults, 2'000u);  // both kinds are met
  EXPECT_LT(faults, 18'000u);
}

TEST(CsvParser, PassesOnWhatARowIsTakenWith) {
  CsvParser parser("f", ',', [](CsvRow&) { Raise(Failure::Overflow); });
  EXPECT_THROW(parser.Parse("a\n"), Error);
}

}  // namespace
}  // namespace tovalin::tool
