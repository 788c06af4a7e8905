#include "frame/format/pattern_cache.h"

#include <functional>
#include <optional>

#include "frame/format/named_formats.h"
#include "frame/format/pattern_memo.h"
#include "frame/format/pattern_scanner.h"

namespace tovalin {
namespace {

enum class Kind { None, Number, Date, Text };

struct KindClue {
  Kind kind = Kind::None;
  bool decides = false;  // alone, whatever follows
};

// `text` starts at the character. A point in "S.A." or the > of "> 0" means
// something only where nothing clearer does; / and : never decide.
KindClue ClueAt(TextView text) {
  switch (text.front()) {
    case u'0':
    case u'#':
    case u'%':
      return {Kind::Number, true};
    case u'@':
    case u'&':
      return {Kind::Text, true};
    case u'.':
    case u',':
      return {Kind::Number, false};
    case u'<':
    case u'>':
    case u'!':
      return {Kind::Text, false};
    case u'/':
    case u':':
      return {};
    default:
      break;
  }
  if (DateTokenAt(text).token != DateToken::None) return {Kind::Date, true};
  return {};
}

// A pattern of literals alone is a number pattern that shows no digits.
Kind KindOf(TextView pattern) {
  Kind likely = Kind::None;
  PatternScanner scanner(pattern);
  while (true) {
    const TextView rest = scanner.Rest();
    const auto piece = scanner.Next();
    if (!piece) return likely == Kind::None ? Kind::Number : likely;
    if (piece->quoted) continue;
    const KindClue clue = ClueAt(rest);
    if (clue.decides) return clue.kind;
    if (likely == Kind::None) likely = clue.kind;
  }
}

Pattern ParseCustom(TextView text) {
  if (text.empty()) return OrdinaryText{};
  switch (KindOf(text)) {
    case Kind::Date:
      return ParseDatePattern(text);
    case Kind::Text:
      return ParseTextPattern(text);
    default:
      return ParseNumberPattern(text);
  }
}

Pattern Parse(TextView text) {
  const std::optional<Text> named = NamedFormat(text);
  if (named == kGeneralNumber) return GeneralNumber{};
  return ParseCustom(named ? TextView(*named) : text);
}

}  // namespace

std::shared_ptr<const Pattern> PatternMemo::Find(TextView text) {
  Entry& entry = entries_[std::hash<TextView>{}(text) % entries_.size()];
  if (!entry.pattern || entry.text != text) {
    // Parsed first: when memory runs out the entry stays as it was.
    auto pattern = std::make_shared<const Pattern>(Parse(text));
    entry.text = text;
    entry.pattern = std::move(pattern);
  }
  return entry.pattern;
}

std::shared_ptr<const Pattern> ParsedPattern(TextView text) {
  constexpr std::size_t kLongestRemembered = 200;
  PatternMemo* const memo = text.size() > kLongestRemembered ? nullptr : MemoOfThisThread();
  return memo ? memo->Find(text) : std::make_shared<const Pattern>(Parse(text));
}

}  // namespace tovalin
