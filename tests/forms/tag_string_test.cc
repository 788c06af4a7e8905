#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "tests/forms/fakes.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

TEST(Separador, KeepsOneCharacter) {
  LibGeneral general;
  EXPECT_EQ(ToUtf8(ToText(general.Separador())), "»");
  general.LetSeparador(u"|");
  EXPECT_EQ(ToUtf8(general.GetTag(u"a|b»c|", 2)), "b»c");
  EXPECT_EQ(ToUtf8(general.LetTag(u"a|b|", 1, u"z")), "z|b|");
  general.LetSeparador(u"::");
  EXPECT_EQ(general.Separador().AsText(), u":");
  general.LetSeparador(Variant(std::int16_t{7}));
  EXPECT_EQ(general.Separador().AsText(), u"7");
  general.LetSeparador(u"");
  EXPECT_EQ(general.Separador().AsText(), u" ");
  EXPECT_EQ(RaisedBy([&] { general.LetSeparador(Variant::Null()); }).number, 13);
  EXPECT_EQ(general.Separador().AsText(), u" ");
}

// The same rules over a list of pieces: every piece but the last is a field.
class Pieces {
 public:
  explicit Pieces(TextView tag) {
    pieces_.emplace_back();
    for (const char16_t c : tag) {
      if (c == u'»')
        pieces_.emplace_back();
      else
        pieces_.back() += c;
    }
  }

  // No answer stands for error 5.
  std::optional<Text> Get(std::size_t index) const {
    if (index == 0 && Fields() == 0 && !pieces_[0].empty()) return std::nullopt;
    return Exists(index) ? pieces_[index - 1] : Text();
  }
  std::optional<Text> Let(std::size_t index, TextView value) {
    if (index == 0 && Fields() == 0) return std::nullopt;
    if (Exists(index)) pieces_[index - 1] = value;
    Text joined = pieces_[0];
    for (std::size_t i = 1; i < pieces_.size(); ++i) joined += u"»" + pieces_[i];
    return joined;
  }

 private:
  std::size_t Fields() const { return pieces_.size() - 1; }
  bool Exists(std::size_t index) const { return index >= 1 && index <= Fields(); }
  std::vector<Text> pieces_;
};

template <class Work>
std::optional<Text> Answer(Work work) {
  try {
    return work();
  } catch (const Error& error) {
    EXPECT_EQ(error.number, 5);
    return std::nullopt;
  }
}

TEST(TagString, AgreesWithAListOfPiecesOverRandomTags) {
  constexpr TextView kLetters = u"ab»»» ñ>";
  std::mt19937 random(20040307);
  const LibGeneral general;
  for (int round = 0; round < 20000; ++round) {
    Text tag;
    for (auto length = random() % 12; length > 0; --length) tag += kLetters[random() % 8];
    const auto index = static_cast<std::uint8_t>(random() % 8);
    const Text value(random() % 4, u'v');
    const auto got = Answer([&] { return general.GetTag(tag, index); });
    const auto let = Answer([&] { return general.LetTag(tag, index, value); });
    ASSERT_EQ(got, Pieces(tag).Get(index)) << ToUtf8(tag) << " " << int{index};
    ASSERT_EQ(let, Pieces(tag).Let(index, value)) << ToUtf8(tag) << " " << int{index};
  }
}

TEST(TagString, ReachesTheLastIndexOfALongTag) {
  Text tag;
  for (int i = 0; i < 255; ++i) tag += u"f»";
  const LibGeneral general;
  EXPECT_EQ(general.GetTag(tag, 255), u"f");
  EXPECT_EQ(general.LetTag(tag, 255, u"último").substr(254 * 2), u"último»");
}

}  // namespace
}  // namespace tovalin
