#include "evaluator/trie.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

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

TEST(Trie, FindsTheEarliestAndOfThoseTheLongest) {
  Generator generator(5);
  for (int turn = 0; turn < 60; ++turn) {
    Trie trie;
    std::vector<Text> patterns;
    const auto add = [&](const Text& pattern) {
      const auto same = [&](const Text& other) { return EqualFolded(pattern, other); };
      const bool is_new = std::ranges::none_of(patterns, same);
      ASSERT_EQ(trie.Add(pattern), is_new) << ToUtf8(pattern);
      if (is_new) patterns.push_back(pattern);
    };
    for (const TextView known :
         {u"(", u")", u",", u"-1*", u"<", u"<=", u" AND ", u" BETWEEN ", u"MEDIO("})
      add(Text(known));
    // At the end so many that the rows of the search do not reach all nodes.
    for (int added = turn * turn; added >= 0; --added) {
      const Text pattern(Trim(generator.Word(7)));
      if (!pattern.empty()) add(pattern);
    }
    trie.Finish();
    for (int i = 0; i < 40; ++i) {
      Text text = generator.Word(30);
      if (i % 4 == 0) text += u" and MEDIO(" + generator.Word(9) + u" BeTween -1*";
      const std::size_t from = generator.Below(text.size());
      const Trie::Match match = trie.Find(text, from);
      const Found found = match ? Found{match.start, match.length} : Found{};
      ASSERT_EQ(found, FindSlowly(patterns, text, from)) << ToUtf8(text) << ' ' << from;
      if (match) {
        ASSERT_EQ(patterns[match.pattern].size(), match.length);
      }
    }
  }
}

}  // namespace
}  // namespace tovalin
