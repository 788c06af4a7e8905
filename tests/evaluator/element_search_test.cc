#include "evaluator/element_search.h"

#include <gtest/gtest.h>

#include <random>

#include "evaluator/vocabulary.h"

namespace tovalin {
namespace {

struct Found {
  std::size_t start = Text::npos;
  std::size_t length = 0;
  friend bool operator==(const Found&, const Found&) = default;
};

// What the search promises, place by place: the earliest, and of those the longest.
Found FindSlowly(const std::vector<Text>& patterns, TextView text, std::size_t from) {
  for (std::size_t start = from; start < text.size(); ++start) {
    Found found;
    for (const Text& pattern : patterns)
      if (pattern.size() > found.length && EqualFolded(text.substr(start, pattern.size()), pattern))
        found = {start, pattern.size()};
    if (found.length > 0) return found;
  }
  return {};
}

std::vector<Text> PatternsOf(const Symbols& symbols) {
  std::vector<Text> patterns = {u"(", u")", u","};
  for (const Ref<Campo>& record : symbols.operators->List().Items())
    patterns.push_back(OperatorElement(*record).is_word ? u" " + record->Name() + u" "
                                                        : record->Name());
  for (const Ref<Campo>& record : symbols.functions->List().Items())
    patterns.push_back(record->Name());
  return patterns;
}

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}
  std::size_t Below(std::size_t limit) { return random_() % limit; }
  // Few characters, so that many texts are parts of one another; some beyond Latin-1.
  Text Word(std::size_t longest) {
    constexpr TextView kCharacters = u"aAbBxñÑ1-*( ΩωЖж";
    Text word;
    for (std::size_t size = 1 + Below(longest); size > 0; --size)
      word.push_back(kCharacters[Below(kCharacters.size())]);
    return word;
  }

 private:
  std::minstd_rand random_;
};

TEST(ElementSearch, FindsTheEarliestAndOfThoseTheLongest) {
  Generator generator(5);
  for (int turn = 0; turn < 60; ++turn) {
    Symbols symbols;
    // At the end so many that the rows of the search do not reach all nodes.
    for (int added = turn * turn; added >= 0; --added) {
      const Text name(Trim(generator.Word(7)));
      if (!name.empty() && !symbols.functions->Exists(name))
        symbols.functions->Add(Make<Campo>(name));
    }
    ElementSearch search;
    search.Build(symbols);
    const std::vector<Text> patterns = PatternsOf(symbols);
    for (int i = 0; i < 40; ++i) {
      Text text = generator.Word(30);
      if (i % 4 == 0) text += u" and MEDIO(" + generator.Word(9) + u" BeTween -1*";
      const std::size_t from = generator.Below(text.size());
      const ElementSearch::Match match = search.Find(text, from);
      const Found found = match.element ? Found{match.start, match.element->length} : Found{};
      ASSERT_EQ(found, FindSlowly(patterns, text, from)) << ToUtf8(text) << ' ' << from;
    }
  }
}

}  // namespace
}  // namespace tovalin
