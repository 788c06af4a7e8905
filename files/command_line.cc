#include "files/command_line.h"

namespace tovalin {
namespace {

constexpr bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

class Splitter {
 public:
  explicit Splitter(TextView rest) : rest_(rest) {}

  std::vector<Text> Split() {
    std::vector<Text> words;
    SkipBlanks();
    while (!rest_.empty()) {
      words.push_back(words.empty() ? TakeProgram() : TakeWord());
      SkipBlanks();
    }
    return words;
  }

 private:
  void SkipBlanks() {
    while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
  }

  bool AtWordEnd() const { return rest_.empty() || (!quoted_ && IsBlank(rest_.front())); }

  char16_t Take() {
    const char16_t c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  Text TakeProgram() {
    Text word;
    for (quoted_ = false; !AtWordEnd();) {
      const char16_t c = Take();
      if (c == u'"')
        quoted_ = !quoted_;
      else
        word += c;
    }
    return word;
  }

  Text TakeWord() {
    Text word;
    for (quoted_ = false; !AtWordEnd();) {
      if (rest_.front() == u'\\')
        TakeBackslashes(word);
      else if (rest_.front() == u'"')
        TakeQuote(word);
      else
        word += Take();
    }
    return word;
  }

  void TakeBackslashes(Text& word) {
    std::size_t count = 0;
    while (!rest_.empty() && rest_.front() == u'\\') {
      rest_.remove_prefix(1);
      ++count;
    }
    if (!rest_.starts_with(u'"')) {
      word.append(count, u'\\');
      return;
    }
    word.append(count / 2, u'\\');
    if (count % 2 == 1) word += Take();
  }

  void TakeQuote(Text& word) {
    rest_.remove_prefix(1);
    if (quoted_ && rest_.starts_with(u'"'))
      word += Take();
    else
      quoted_ = !quoted_;
  }

  TextView rest_;
  bool quoted_ = false;
};

}  // namespace

std::vector<Text> SplitCommandLine(TextView command_line) { return Splitter(command_line).Split(); }

}  // namespace tovalin
