#include "flatfile/moment.h"

#include <algorithm>
#include <iterator>

#include "frame/value/calendar.h"
#include "tovalin/error.h"
#include "tovalin/locale.h"

namespace tovalin::flat {
namespace {

enum Part { kYear, kMonth, kDay, kHour, kMinute, kSecond, kParts };

/// The tokens that can be read back: what they tell, in how many digits.
struct Readable {
  DateToken token;
  Part part;
  std::size_t least;
  std::size_t most;
};
constexpr Readable kReadable[] = {
    {DateToken::Year4, kYear, 4, 4},     {DateToken::Year2, kYear, 2, 2},
    {DateToken::Month2, kMonth, 2, 2},   {DateToken::Month, kMonth, 1, 2},
    {DateToken::Day2, kDay, 2, 2},       {DateToken::Day, kDay, 1, 2},
    {DateToken::Hour2, kHour, 2, 2},     {DateToken::Hour, kHour, 1, 2},
    {DateToken::Minute2, kMinute, 2, 2}, {DateToken::Minute, kMinute, 1, 2},
    {DateToken::Second2, kSecond, 2, 2}, {DateToken::Second, kSecond, 1, 2},
};

const Readable* FindReadable(DateToken token) {
  const auto found = std::ranges::find(kReadable, token, &Readable::token);
  return found == std::end(kReadable) ? nullptr : found;
}

/// The literal text that a step shows, if it is one.
std::optional<TextView> LiteralOf(const DatePattern& pattern, const DatePattern::Step& step,
                                  std::size_t& literal) {
  const Locale& locale = CurrentLocale();
  if (step.token == DateToken::DateSeparator) return TextView(&locale.date_separator, 1);
  if (step.token == DateToken::TimeSeparator) return TextView(&locale.time_separator, 1);
  if (step.token != DateToken::Literal) return std::nullopt;
  const TextView text = TextView(pattern.literals).substr(literal, step.length);
  literal += step.length;
  return text;
}

bool ExtractNumber(TextView& text, const Readable& row, int& number) {
  std::size_t digits = 0;
  number = 0;
  for (; digits < row.most && digits < text.size(); ++digits) {
    const char16_t c = text[digits];
    if (c < u'0' || c > u'9') break;
    number = number * 10 + (c - u'0');
  }
  text.remove_prefix(digits);
  return digits >= row.least;
}

std::optional<Date> Moment(const int (&parts)[kParts], bool has_day) {
  if (parts[kHour] > 23 || parts[kMinute] > 59 || parts[kSecond] > 59) return std::nullopt;
  const TimeOfDay time{parts[kHour], parts[kMinute], parts[kSecond]};
  if (!has_day) return MakeDate({1899, 12, 30}, time);
  const CivilDate day{parts[kYear], parts[kMonth], parts[kDay]};
  if (day.year < 100 || day.month < 1 || day.month > 12 || day.day < 1 ||
      day.day > DaysInMonth(day.year, day.month))
    return std::nullopt;
  return MakeDate(day, time);
}

struct Percent {
  char16_t letter;
  TextView token;
};
constexpr Percent kPercents[] = {
    {u'Y', u"yyyy"}, {u'y', u"yy"}, {u'm', u"mm"}, {u'd', u"dd"},
    {u'H', u"hh"},   {u'M', u"nn"}, {u'S', u"ss"},
};

}  // namespace

std::optional<Date> ReadMoment(const DatePattern& pattern, TextView text) {
  int parts[kParts] = {};
  bool has_day = false;
  std::size_t literal = 0;
  for (const DatePattern::Step& step : pattern.steps) {
    if (const auto expected = LiteralOf(pattern, step, literal)) {
      if (!text.starts_with(*expected)) return std::nullopt;
      text.remove_prefix(expected->size());
      continue;
    }
    const Readable* row = FindReadable(step.token);
    if (!row || !ExtractNumber(text, *row, parts[row->part])) return std::nullopt;
    if (row->token == DateToken::Year2) parts[kYear] = FullYear(parts[kYear]);
    has_day = has_day || row->part == kDay;
  }
  if (!text.empty()) return std::nullopt;
  return Moment(parts, has_day);
}

const char* WhyUnreadable(const DatePattern& pattern, FieldType type) {
  bool has[kParts] = {};
  const Readable* before = nullptr;
  std::size_t literal = 0;
  for (const DatePattern::Step& step : pattern.steps) {
    if (LiteralOf(pattern, step, literal)) {
      before = nullptr;
      continue;
    }
    const Readable* row = FindReadable(step.token);
    if (!row) return "el patrón tiene partes que no se pueden volver a leer";
    if (before && before->least != before->most) return "el patrón junta números de largo variable";
    has[row->part] = true;
    before = row;
  }
  if (type != FieldType::Time && !(has[kYear] && has[kMonth] && has[kDay]))
    return "el patrón no dice año, mes y día";
  if (type != FieldType::Date && !(has[kHour] && has[kMinute]))
    return "el patrón no dice hora y minuto";
  return nullptr;
}

std::optional<Text> ToPercentPattern(TextView pattern) {
  const DatePattern parsed = ParseDatePattern(pattern);
  Text percent;
  std::size_t literal = 0;
  for (const DatePattern::Step& step : parsed.steps) {
    if (const auto text = LiteralOf(parsed, step, literal)) {
      if (text->find(u'%') != TextView::npos) return std::nullopt;
      percent += *text;
      continue;
    }
    const Readable* row = FindReadable(step.token);
    if (!row || row->least != row->most) return std::nullopt;
    constexpr char16_t kLetters[kParts] = {u'Y', u'm', u'd', u'H', u'M', u'S'};
    percent += u'%';
    percent += row->token == DateToken::Year2 ? u'y' : kLetters[row->part];
  }
  return percent;
}

std::optional<Text> FromPercentPattern(TextView percent) {
  Text pattern;
  for (std::size_t i = 0; i < percent.size(); ++i) {
    if (percent[i] != u'%') {
      // Each literal is marked: letters would be read as parts of a date.
      pattern += u'\\';
      pattern += percent[i];
      continue;
    }
    if (++i == percent.size()) return std::nullopt;
    const auto row = std::ranges::find(kPercents, percent[i], &Percent::letter);
    if (row == std::end(kPercents)) return std::nullopt;
    pattern += row->token;
  }
  return pattern;
}

TextView DefaultPattern(FieldType type) {
  if (type == FieldType::Date) return u"yyyy-mm-dd";
  return type == FieldType::Time ? u"hh\\:nn\\:ss" : u"yyyy-mm-dd\\Thh\\:nn\\:ss";
}

}  // namespace tovalin::flat
