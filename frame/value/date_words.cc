#include "frame/value/date_words.h"

#include <array>

#include "frame/format/pattern_scanner.h"
#include "frame/text/characters.h"
#include "frame/value/spanish_locale.h"

namespace tovalin {
namespace {

using Kind = DateWord::Kind;

struct MonthRow {
  TextView name;
  int month;
};

// Other names than those of the Spanish locale.
constexpr std::array kOtherMonths = {
    MonthRow{u"january", 1},   MonthRow{u"jan", 1},       MonthRow{u"february", 2},
    MonthRow{u"march", 3},     MonthRow{u"april", 4},     MonthRow{u"apr", 4},
    MonthRow{u"june", 6},      MonthRow{u"july", 7},      MonthRow{u"august", 8},
    MonthRow{u"aug", 8},       MonthRow{u"setiembre", 9}, MonthRow{u"september", 9},
    MonthRow{u"sept", 9},      MonthRow{u"set", 9},       MonthRow{u"october", 10},
    MonthRow{u"november", 11}, MonthRow{u"december", 12}, MonthRow{u"dec", 12},
};
constexpr std::array<TextView, 18> kOtherDays = {
    u"miercoles", u"mie", u"sabado",  u"sab", u"sunday",    u"sun",
    u"monday",    u"mon", u"tuesday", u"tue", u"wednesday", u"wed",
    u"thursday",  u"thu", u"friday",  u"fri", u"saturday",  u"sat"};

constexpr std::array<TextView, 2> kOf = {u"de", u"del"};

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == kNoBreakSpace || c == u'\u202F'; }

template <class Names>
bool IsAmong(const Names& names, TextView word) {
  for (const auto& name : names)
    if (EqualFolded(name, word)) return true;
  return false;
}

int MonthNamed(TextView word, const Locale& locale) {
  for (std::size_t i = 0; i < locale.months.size(); ++i)
    if (EqualFolded(locale.months[i], word) || EqualFolded(locale.short_months[i], word))
      return static_cast<int>(i) + 1;
  return 0;
}

// The names of the locale in force come first: they may say something else in its language.
int MonthNamed(TextView word) {
  if (const int month = MonthNamed(word, CurrentLocale()); month > 0) return month;
  if (const int month = MonthNamed(word, SpanishLocale()); month > 0) return month;
  for (const MonthRow& row : kOtherMonths)
    if (EqualFolded(row.name, word)) return row.month;
  return 0;
}

// "mar" of the Spanish days reads as the month before anybody asks for a day.
bool IsDayName(TextView word) {
  const auto has = [word](const Locale& locale) {
    return IsAmong(locale.days, word) || IsAmong(locale.short_days, word);
  };
  return has(CurrentLocale()) || has(SpanishLocale()) || IsAmong(kOtherDays, word);
}

DateWord WordNamed(TextView word) {
  if (const int month = MonthNamed(word); month > 0) return {.kind = Kind::Month, .value = month};
  if (IsDayName(word)) return {.kind = Kind::DayName};
  if (IsAmong(kOf, word)) return {.kind = Kind::Of};
  if (EqualFolded(word, u"t")) return {.kind = Kind::TimeMark};
  return {};
}

class WordReader {
 public:
  explicit WordReader(TextView text) : rest_(text) {}

  // The next word; an End that is not AtEnd() stands for what no date has.
  DateWord Next() {
    const std::size_t before = rest_.size();
    SkipBlanks();
    const bool blank_before = rest_.size() != before;
    DateWord word = rest_.empty() ? DateWord{} : Read();
    word.blank_before = blank_before;
    return word;
  }

  bool AtEnd() const { return rest_.empty(); }

 private:
  DateWord Read() {
    const Locale& locale = CurrentLocale();
    const char16_t first = rest_.front();
    if (IsDigit(first)) return ReadNumber();
    if (first == u':' || first == locale.time_separator) return Consume({.kind = Kind::Colon}, 1);
    if (first == locale.date_separator) return Consume({.kind = Kind::Mark, .value = u'/'}, 1);
    if (IsMark(first)) return Consume({.kind = Kind::Mark, .value = first}, 1);
    if (const std::size_t length = MeridiemLength(locale.morning, u'a'))
      return Consume({.kind = Kind::Morning}, length);
    if (const std::size_t length = MeridiemLength(locale.afternoon, u'p'))
      return Consume({.kind = Kind::Afternoon}, length);
    const std::size_t length = LetterCount(rest_);
    return Consume(WordNamed(rest_.substr(0, length)), length);
  }

  DateWord ReadNumber() {
    DateWord number{.kind = Kind::Number};
    while (!rest_.empty() && IsDigit(rest_.front())) {
      if (++number.digits > 4) return {};
      number.value = number.value * 10 + (rest_.front() - u'0');
      rest_.remove_prefix(1);
    }
    return number;
  }

  // Of the locale's text, or of "am", "a.m.", "a. m." and "a" for the initial a.
  std::size_t MeridiemLength(TextView locale_text, char16_t initial) const {
    if (!locale_text.empty() && StartsFolded(rest_, locale_text) &&
        LetterCount(rest_.substr(locale_text.size())) == 0)
      return locale_text.size();
    if (FoldCase(rest_.front()) != FoldCase(initial)) return 0;
    std::size_t end = 1;
    if (CharacterAt(end) == u'.') ++end;
    while (IsBlank(CharacterAt(end))) ++end;
    if (FoldCase(CharacterAt(end)) != FoldCase(u'm')) return LetterCount(rest_) == 1 ? 1 : 0;
    if (LetterCount(rest_.substr(++end)) > 0) return 0;
    return CharacterAt(end) == u'.' ? end + 1 : end;
  }

  static bool IsMark(char16_t c) { return c == u'/' || c == u'-' || c == u'.' || c == u','; }

  static std::size_t LetterCount(TextView text) {
    std::size_t count = 0;
    while (count < text.size() && !IsBlank(text[count]) && !IsDigit(text[count]) &&
           !IsMark(text[count]) && text[count] != u':')
      ++count;
    return count;
  }

  char16_t CharacterAt(std::size_t i) const { return i < rest_.size() ? rest_[i] : u'\0'; }

  DateWord Consume(const DateWord& word, std::size_t length) {
    if (word.kind != Kind::End) rest_.remove_prefix(length);
    return word;
  }

  void SkipBlanks() {
    while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
  }

  TextView rest_;
};

}  // namespace

std::optional<DateWords> ReadDateWords(TextView text) {
  DateWords result;
  WordReader reader(text);
  for (std::size_t i = 0; i < DateWords::kMost; ++i) {
    result.words[i] = reader.Next();
    if (result.words[i].kind != Kind::End) continue;
    if (!reader.AtEnd()) return std::nullopt;
    return result;
  }
  return std::nullopt;
}

}  // namespace tovalin
