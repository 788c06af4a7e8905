#include "frame/pattern_cache.h"

#include <array>
#include <functional>
#include <optional>

#include "frame/named_formats.h"
#include "frame/pattern_scanner.h"

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

// A memo of a pure function: what it holds can be told from the pattern's text
// alone, so nobody can observe it but by the time saved. It is bounded (a new
// pattern takes the place of an older one) and each thread has its own, so
// objects on different threads share nothing through it.
class PatternMemo {
 public:
  ~PatternMemo();

  std::shared_ptr<const Pattern> Find(TextView text) {
    Entry& entry = entries_[std::hash<TextView>{}(text) % entries_.size()];
    if (!entry.pattern || entry.text != text) {
      // Parsed first: when memory runs out the entry stays as it was.
      auto pattern = std::make_shared<const Pattern>(Parse(text));
      entry.text = text;
      entry.pattern = std::move(pattern);
    }
    return entry.pattern;
  }

 private:
  struct Entry {
    Text text;
    std::shared_ptr<const Pattern> pattern;
  };

  std::array<Entry, 64> entries_;
};

// A thread's last destructors may still format when its memo is gone.
thread_local constinit bool memo_is_gone = false;

PatternMemo::~PatternMemo() { memo_is_gone = true; }

}  // namespace

std::shared_ptr<const Pattern> ParsedPattern(TextView text) {
  constexpr std::size_t kLongestRemembered = 200;
  if (text.size() > kLongestRemembered || memo_is_gone)
    return std::make_shared<const Pattern>(Parse(text));
  thread_local PatternMemo memo;
  return memo.Find(text);
}

}  // namespace tovalin
