#include "frame/value/date_words.h"

#include <array>

#include "frame/format/pattern_scanner.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

using Kind = DateWord::Kind;

struct MonthRow {
  TextView name;
  int month;
};

constexpr std::array kMonths = {
    MonthRow{u"enero", 1},     MonthRow{u"ene", 1},       MonthRow{u"january", 1},
    MonthRow{u"jan", 1},       MonthRow{u"febrero", 2},   MonthRow{u"feb", 2},
    MonthRow{u"february", 2},  MonthRow{u"marzo", 3},     MonthRow{u"mar", 3},
    MonthRow{u"march", 3},     MonthRow{u"abril", 4},     MonthRow{u"abr", 4},
    MonthRow{u"april", 4},     MonthRow{u"apr", 4},       MonthRow{u"mayo", 5},
    MonthRow{u"may", 5},       MonthRow{u"junio", 6},     MonthRow{u"jun", 6},
    MonthRow{u"june", 6},      MonthRow{u"julio", 7},     MonthRow{u"jul", 7},
    MonthRow{u"july", 7},      MonthRow{u"agosto", 8},    MonthRow{u"ago", 8},
    MonthRow{u"august", 8},    MonthRow{u"aug", 8},       MonthRow{u"septiembre", 9},
    MonthRow{u"setiembre", 9}, MonthRow{u"september", 9}, MonthRow{u"sept", 9},
    MonthRow{u"sep", 9},       MonthRow{u"set", 9},       MonthRow{u"octubre", 10},
    MonthRow{u"october", 10},  MonthRow{u"oct", 10},      MonthRow{u"noviembre", 11},
    MonthRow{u"november", 11}, MonthRow{u"nov", 11},      MonthRow{u"diciembre", 12},
    MonthRow{u"dic", 12},      MonthRow{u"december", 12}, MonthRow{u"dec", 12},
};

// Without "mar" for martes, which reads as the month.
constexpr std::array<TextView, 31> kDays = {
    u"domingo", u"dom",      u"lunes",     u"lun",    u"martes",   u"miércoles", u"miercoles",
    u"mié",     u"mie",      u"jueves",    u"jue",    u"viernes",  u"vie",       u"sábado",
    u"sabado",  u"sáb",      u"sab",       u"sunday", u"sun",      u"monday",    u"mon",
    u"tuesday", u"tue",      u"wednesday", u"wed",    u"thursday", u"thu",       u"friday",
    u"fri",     u"saturday", u"sat"};

constexpr std::array<TextView, 2> kOf = {u"de", u"del"};

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\u00A0' || c == u'\u202F'; }
bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

template <class Names>
bool IsAmong(const Names& names, TextView word) {
  for (const auto& name : names)
    if (EqualFolded(name, word)) return true;
  return false;
}

// The locale's names come first: they may say something else in its language.
int MonthNamed(TextView word) {
  const Locale& locale = CurrentLocale();
  for (std::size_t i = 0; i < locale.months.size(); ++i)
    if (EqualFolded(locale.months[i], word) || EqualFolded(locale.short_months[i], word))
      return static_cast<int>(i) + 1;
  for (const MonthRow& row : kMonths)
    if (EqualFolded(row.name, word)) return row.month;
  return 0;
}

bool IsDayName(TextView word) {
  const Locale& locale = CurrentLocale();
  return IsAmong(locale.days, word) || IsAmong(locale.short_days, word) || IsAmong(kDays, word);
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
    if (first == u':' || first == locale.time_separator) return Take({.kind = Kind::Colon}, 1);
    if (first == locale.date_separator) return Take({.kind = Kind::Mark, .value = u'/'}, 1);
    if (IsMark(first)) return Take({.kind = Kind::Mark, .value = first}, 1);
    if (const std::size_t length = MeridiemLength(locale.morning, u'a'))
      return Take({.kind = Kind::Morning}, length);
    if (const std::size_t length = MeridiemLength(locale.afternoon, u'p'))
      return Take({.kind = Kind::Afternoon}, length);
    const std::size_t length = LetterCount(rest_);
    return Take(WordNamed(rest_.substr(0, length)), length);
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

  DateWord Take(const DateWord& word, std::size_t length) {
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
