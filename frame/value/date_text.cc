#include "frame/value/date_text.h"

#include <array>

#include "frame/format/pattern_cache.h"
#include "frame/value/calendar.h"
#include "frame/value/date_words.h"

namespace tovalin {
namespace {

using Kind = DateWord::Kind;

constexpr CivilDate kDayZero{.year = 1899, .month = 12, .day = 30};

// What joins two parts of a day: a mark, "de", or nothing but a blank.
constexpr int kBlank = 0;
constexpr int kOf = -1;

bool IsYearOnly(const DateWord& number) { return number.digits >= 3 || number.value > 31; }

std::optional<CivilDate> DayOf(const DateWord& year, int month, int day) {
  const int full_year = year.digits <= 2 ? FullYear(year.value) : year.value;
  if (full_year < 100 || month < 1 || month > 12) return std::nullopt;
  if (day < 1 || day > DaysInMonth(full_year, month)) return std::nullopt;
  return CivilDate{full_year, month, day};
}

/// The parts of a day as they stand: numbers and at most one month's name.
struct DayParts {
  std::array<DateWord, 3> parts;
  std::array<int, 2> joiners{};
  std::size_t count = 0;

  std::size_t NamedMonths() const {
    std::size_t named = 0;
    for (std::size_t i = 0; i < count; ++i)
      if (parts[i].kind == Kind::Month) ++named;
    return named;
  }

  std::optional<CivilDate> Day() const {
    const std::size_t named = NamedMonths();
    if (count < 2 || named > 1) return std::nullopt;
    if (named == 1) return count == 3 ? NamedDay() : NamedMonth();
    return count == 3 ? NumericDay() : NumericMonth();
  }

 private:
  std::optional<CivilDate> NumericDay() const {
    const int joiner = joiners[0];
    if (joiner != joiners[1] || joiner == kOf || joiner == u',') return std::nullopt;
    const bool year_first = IsYearOnly(parts[0]);
    const DateWord& year = year_first ? parts[0] : parts[2];
    const int month = parts[1].value;
    const int day = year_first ? parts[2].value : parts[0].value;
    const std::optional<CivilDate> result = DayOf(year, month, day);
    return result ? result : DayOf(year, day, month);
  }

  // 02/2024 or 2024-02. With a blank or a point it would be two numbers, or one.
  std::optional<CivilDate> NumericMonth() const {
    if (joiners[0] != u'/' && joiners[0] != u'-') return std::nullopt;
    if (parts[1].digits >= 3) return DayOf(parts[1], parts[0].value, 1);
    if (parts[0].digits >= 3) return DayOf(parts[0], parts[1].value, 1);
    return std::nullopt;
  }

  std::optional<CivilDate> NamedDay() const {
    if (parts[2].kind == Kind::Month) return std::nullopt;
    const bool month_first = parts[0].kind == Kind::Month;
    const DateWord& month = parts[month_first ? 0 : 1];
    const DateWord& number = parts[month_first ? 1 : 0];
    if (IsYearOnly(number)) return DayOf(number, month.value, parts[2].value);
    return DayOf(parts[2], month.value, number.value);
  }

  std::optional<CivilDate> NamedMonth() const {
    const bool month_first = parts[0].kind == Kind::Month;
    const DateWord& year = parts[month_first ? 1 : 0];
    if (!IsYearOnly(year)) return std::nullopt;
    return DayOf(year, parts[month_first ? 0 : 1].value, 1);
  }
};

class DateReader {
 public:
  explicit DateReader(const DateWords& words) : next_(words.words) {}

  // day, time, day time, or time day.
  std::optional<Date> Read() {
    std::optional<TimeOfDay> time;
    if (AtTime(next_)) {
      time = ReadTime();
      if (!time) return std::nullopt;
      if (Is(Kind::End)) return MakeDate(kDayZero, *time);
      SkipMark(u',');
    }
    const std::optional<CivilDate> day = ReadDay();
    if (!day) return std::nullopt;
    if (Is(Kind::End)) return MakeDate(*day, time.value_or(TimeOfDay{}));
    if (time) return std::nullopt;
    return ReadTimeAfter(*day);
  }

 private:
  std::optional<Date> ReadTimeAfter(const CivilDate& day) {
    if (Is(Kind::TimeMark))
      ++next_;
    else
      SkipMark(u',');
    const std::optional<TimeOfDay> time = ReadTime();
    if (!time || !Is(Kind::End)) return std::nullopt;
    return MakeDate(day, *time);
  }

  std::optional<CivilDate> ReadDay() {
    if (Is(Kind::DayName)) {
      ++next_;
      SkipMark(u'.');
      SkipMark(u',');
    }
    DayParts day;
    while (true) {
      if (!AtPart()) return std::nullopt;
      day.parts[day.count++] = *next_++;
      if (day.parts[day.count - 1].kind == Kind::Month) SkipMark(u'.');
      if (day.count == day.parts.size() || AtEndOfDay()) return day.Day();
      day.joiners[day.count - 1] = ReadJoiner();
    }
  }

  bool AtPart() const { return Is(Kind::Month) || (Is(Kind::Number) && !AtTime(next_)); }

  bool AtEndOfDay() const {
    const bool comma = Is(Kind::Mark) && next_->value == u',';
    return Is(Kind::End) || Is(Kind::TimeMark) || AtTime(comma ? next_ + 1 : next_);
  }

  int ReadJoiner() {
    if (!Is(Kind::Mark) && !Is(Kind::Of)) return kBlank;
    const DateWord& joiner = *next_++;
    return joiner.kind == Kind::Of ? kOf : joiner.value;
  }

  // 14:30, 14:30:15, 2:30 p. m. or 2 p. m.
  std::optional<TimeOfDay> ReadTime() {
    if (!AtTime(next_)) return std::nullopt;
    TimeOfDay time{.hour = next_++->value};
    if (Is(Kind::Colon) && !ReadSixtieth(time.minute)) return std::nullopt;
    if (Is(Kind::Colon) && !ReadSixtieth(time.second)) return std::nullopt;
    if (Is(Kind::Morning) && time.hour > 12) return std::nullopt;
    if (Is(Kind::Morning) && time.hour == 12) time.hour = 0;
    if (Is(Kind::Afternoon) && time.hour < 12) time.hour += 12;
    if (Is(Kind::Morning) || Is(Kind::Afternoon)) ++next_;
    if (time.hour > 23) return std::nullopt;
    return time;
  }

  // The colon, and the minutes or seconds after it.
  bool ReadSixtieth(int& value) {
    ++next_;
    if (!Is(Kind::Number) || next_->digits > 2 || next_->value > 59) return false;
    value = next_++->value;
    return true;
  }

  static bool AtTime(const DateWord* word) {
    if (word->kind != Kind::Number || word->digits > 2) return false;
    const Kind after = word[1].kind;
    return after == Kind::Colon || after == Kind::Morning || after == Kind::Afternoon;
  }

  bool Is(Kind kind) const { return next_->kind == kind; }

  void SkipMark(char16_t mark) {
    if (Is(Kind::Mark) && next_->value == mark) ++next_;
  }

  const DateWord* next_;
};

}  // namespace

std::optional<Date> ReadDate(TextView text) {
  const std::optional<DateWords> words = ReadDateWords(text);
  if (!words) return std::nullopt;
  return DateReader(*words).Read();
}

Text DateText(Date date) {
  // "c" is the general date in every locale.
  return FormatDate(std::get<DatePattern>(*ParsedPattern(u"c")), date);
}

}  // namespace tovalin
