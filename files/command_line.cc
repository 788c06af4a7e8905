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
      words.push_back(words.empty() ? ReadProgram() : ReadWord());
      SkipBlanks();
    }
    return words;
  }

 private:
  void SkipBlanks() {
    while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
  }

  bool AtWordEnd() const { return rest_.empty() || (!quoted_ && IsBlank(rest_.front())); }

  char16_t Next() {
    const char16_t c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  Text ReadProgram() {
    Text word;
    for (quoted_ = false; !AtWordEnd();) {
      const char16_t c = Next();
      if (c == u'"')
        quoted_ = !quoted_;
      else
        word += c;
    }
    return word;
  }

  Text ReadWord() {
    Text word;
    for (quoted_ = false; !AtWordEnd();) {
      if (rest_.front() == u'\\')
        ReadBackslashes(word);
      else if (rest_.front() == u'"')
        ReadQuote(word);
      else
        word += Next();
    }
    return word;
  }

  void ReadBackslashes(Text& word) {
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
    if (count % 2 == 1) word += Next();
  }

  void ReadQuote(Text& word) {
    rest_.remove_prefix(1);
    if (quoted_ && rest_.starts_with(u'"'))
      word += Next();
    else
      quoted_ = !quoted_;
  }

  TextView rest_;
  bool quoted_ = false;
};

}  // namespace

std::vector<Text> SplitCommandLine(TextView command_line) { return Splitter(command_line).Split(); }

}  // namespace tovalin
