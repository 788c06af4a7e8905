#include "frame/format/date_pattern.h"

#include <algorithm>
#include <array>

#include "frame/format/pattern_scanner.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

using Step = DatePattern::Step;
using enum DateToken;

/// The tokens of one letter, by how often it is repeated.
struct LetterRow {
  char16_t letter;
  std::array<DateToken, 6> tokens;
};

constexpr std::array kLetters = {
    LetterRow{u'd', {Day, Day2, DayShortName, DayName, ShortDate, LongDate}},
    LetterRow{u'm', {Month, Month2, MonthShortName, MonthName}},
    LetterRow{u'y', {YearDay, Year2, None, Year4}},
    LetterRow{u'q', {Quarter}},
    LetterRow{u'w', {Weekday, Week}},
    LetterRow{u'h', {Hour, Hour2}},
    LetterRow{u'n', {Minute, Minute2}},
    LetterRow{u's', {Second, Second2}},
    LetterRow{u't', {None, None, None, None, LongTime}},
    LetterRow{u'c', {General}},
};

/// The forms of morning and afternoon; the first letter's case chooses.
struct MeridiemRow {
  TextView spelling;
  DateToken upper;
  DateToken lower;
};

constexpr std::array kMeridiems = {
    MeridiemRow{u"am/pm", UpperMeridiem, LowerMeridiem},
    MeridiemRow{u"ampm", LocaleMeridiem, LocaleMeridiem},
    MeridiemRow{u"a/p", UpperInitial, LowerInitial},
};

bool IsMeridiem(DateToken token) { return token >= UpperMeridiem && token <= LocaleMeridiem; }

Step MeridiemAt(TextView text) {
  for (const MeridiemRow& row : kMeridiems)
    if (StartsFolded(text, row.spelling))
      return {text.front() == u'A' ? row.upper : row.lower, row.spelling.size()};
  return {None};
}

class DateParser {
 public:
  DatePattern Parse(TextView pattern) {
    Read(PatternSections(pattern).front(), true);
    return std::move(result_);
  }

 private:
  // `compounds`: whether compound tokens are replaced. Within the locale's own
  // patterns they are plain text, so that none can contain itself.
  void Read(TextView pattern, bool compounds) {
    PatternScanner scanner(pattern);
    while (true) {
      const TextView rest = scanner.Rest();
      const auto piece = scanner.Next();
      if (!piece) return;
      const Step step = piece->quoted ? Step{None} : DateTokenAt(rest);
      if (step.token != None) scanner.Skip(step.length - 1);
      if (step.token == None)
        AddLiteral(piece->text);
      else if (IsCompound(step.token))
        compounds ? AddCompound(step.token) : AddLiteral(rest.substr(0, step.length));
      else
        AddToken(step.token);
    }
  }

  static bool IsCompound(DateToken token) {
    return token == ShortDate || token == LongDate || token == LongTime || token == General;
  }

  void AddCompound(DateToken token) {
    const Locale& locale = CurrentLocale();
    if (token == ShortDate) Read(locale.short_date, false);
    if (token == LongDate) Read(locale.long_date, false);
    if (token == LongTime) Read(locale.long_time, false);
    if (token != General) return;
    AddConditional(SkipUnlessDate, [&] { Read(locale.short_date, false); });
    AddConditional(SkipUnlessBoth, [&] { AddLiteral(u" "); });
    AddConditional(SkipUnlessTime, [&] { Read(locale.long_time, false); });
  }

  template <class Body>
  void AddConditional(DateToken condition, Body add_body) {
    const std::size_t start = result_.steps.size();
    result_.steps.push_back({condition});
    add_body();
    result_.steps[start].length = result_.steps.size() - start - 1;
    joins_literals_ = false;
  }

  void AddLiteral(TextView text) {
    result_.literals += text;
    if (joins_literals_ && !result_.steps.empty() && result_.steps.back().token == Literal)
      result_.steps.back().length += text.size();
    else
      result_.steps.push_back({Literal, text.size()});
    joins_literals_ = true;
  }

  // An m after an hour means minutes, whatever stands between them.
  void AddToken(DateToken token) {
    if (after_hour_ && token == Month) token = Minute;
    if (after_hour_ && token == Month2) token = Minute2;
    if (token != DateSeparator && token != TimeSeparator)
      after_hour_ = token == Hour || token == Hour2;
    if (IsMeridiem(token)) result_.twelve_hours = true;
    result_.steps.push_back({token});
  }

  DatePattern result_;
  bool after_hour_ = false;
  bool joins_literals_ = false;  // a literal may grow only within its own condition
};

}  // namespace

Step DateTokenAt(TextView text) {
  if (text.empty()) return {None};
  if (text.front() == u'/') return {DateSeparator, 1};
  if (text.front() == u':') return {TimeSeparator, 1};
  const char16_t letter = FoldCase(text.front());
  if (letter == FoldCase(u'a')) return MeridiemAt(text);
  const auto row = std::ranges::find_if(
      kLetters, [&](const LetterRow& each) { return FoldCase(each.letter) == letter; });
  if (row == kLetters.end()) return {None};
  std::size_t length = std::min(RunLength(text.substr(0, row->tokens.size())), row->tokens.size());
  while (length > 0 && row->tokens[length - 1] == None) --length;
  return length == 0 ? Step{None} : Step{row->tokens[length - 1], length};
}

DatePattern ParseDatePattern(TextView pattern) { return DateParser().Parse(pattern); }

}  // namespace tovalin
