#include <algorithm>

#include "frame/format/date_pattern.h"
#include "frame/value/calendar.h"
#include "frame/value/number_text.h"
#include "tovalin/locale.h"

namespace tovalin {
namespace {

using enum DateToken;

class DateWriter {
 public:
  DateWriter(Text& text, const DatePattern& pattern, Date date)
      : text_(text),
        pattern_(pattern),
        date_(date),
        civil_(DateOf(date)),
        time_(TimeOf(date)),
        has_day_(civil_ != CivilDate{.year = 1899, .month = 12, .day = 30}),
        has_time_(time_ != TimeOfDay{}) {}

  void Write() {
    constexpr std::size_t kUsualStep = 5;
    text_.reserve(text_.size() + pattern_.literals.size() + pattern_.steps.size() * kUsualStep);
    std::size_t literal = 0;
    std::size_t skip = 0;
    for (const DatePattern::Step& step : pattern_.steps) {
      const bool skipped = skip > 0;
      if (skipped) --skip;
      if (step.token == Literal) {
        if (!skipped) text_.append(pattern_.literals, literal, step.length);
        literal += step.length;
      } else if (!skipped) {
        skip = Skips(step.token) ? step.length : 0;
        WriteToken(step.token);
      }
    }
  }

 private:
  bool Skips(DateToken token) const {
    if (token == SkipUnlessDate) return !has_day_;
    if (token == SkipUnlessBoth) return !has_day_ || !has_time_;
    return token == SkipUnlessTime && has_day_ && !has_time_;
  }

  void WriteToken(DateToken token) {
    const Locale& locale = CurrentLocale();
    switch (token) {
      case DateSeparator:
        text_ += locale.date_separator;
        break;
      case TimeSeparator:
        text_ += locale.time_separator;
        break;
      case Day:
        Number(civil_.day, 1);
        break;
      case Day2:
        Number(civil_.day, 2);
        break;
      case DayShortName:
        text_ += locale.short_days[DayIndex()];
        break;
      case DayName:
        text_ += locale.days[DayIndex()];
        break;
      case Month:
        Number(civil_.month, 1);
        break;
      case Month2:
        Number(civil_.month, 2);
        break;
      case MonthShortName:
        text_ += locale.short_months[MonthIndex()];
        break;
      case MonthName:
        text_ += locale.months[MonthIndex()];
        break;
      case Quarter:
        Number((civil_.month + 2) / 3, 1);
        break;
      case YearDay:
        Number(DayOfYear(date_), 1);
        break;
      case Year2:
        Number(civil_.year % 100, 2);
        break;
      case Year4:
        Number(civil_.year, 4);
        break;
      case DateToken::Weekday:
        Number(tovalin::Weekday(date_), 1);
        break;
      case Week:
        Number(WeekOfYear(), 1);
        break;
      default:
        WriteTimeToken(token);
        break;
    }
  }

  void WriteTimeToken(DateToken token) {
    const bool morning = time_.hour < 12;
    const Locale& locale = CurrentLocale();
    switch (token) {
      case Hour:
        Number(ShownHour(), 1);
        break;
      case Hour2:
        Number(ShownHour(), 2);
        break;
      case Minute:
        Number(time_.minute, 1);
        break;
      case Minute2:
        Number(time_.minute, 2);
        break;
      case Second:
        Number(time_.second, 1);
        break;
      case Second2:
        Number(time_.second, 2);
        break;
      case UpperMeridiem:
        text_ += morning ? u"AM" : u"PM";
        break;
      case LowerMeridiem:
        text_ += morning ? u"am" : u"pm";
        break;
      case UpperInitial:
        text_ += morning ? u'A' : u'P';
        break;
      case LowerInitial:
        text_ += morning ? u'a' : u'p';
        break;
      case LocaleMeridiem:
        text_ += morning ? locale.morning : locale.afternoon;
        break;
      default:
        break;
    }
  }

  int ShownHour() const {
    if (!pattern_.twelve_hours) return time_.hour;
    return time_.hour % 12 == 0 ? 12 : time_.hour % 12;
  }

  int WeekOfYear() const {
    const int day = DayOfYear(date_);
    const int first_weekday =
        (tovalin::Weekday(date_) - day % 7 + 7) % 7;  // of 1 January, 0 Sunday
    return (day - 1 + first_weekday) / 7 + 1;
  }

  std::size_t DayIndex() const { return static_cast<std::size_t>(tovalin::Weekday(date_) - 1); }
  std::size_t MonthIndex() const { return static_cast<std::size_t>(civil_.month - 1); }

  // REQUIRES: 0 <= value <= 9999.
  void Number(int value, std::size_t least_digits) {
    char16_t digits[4];
    std::size_t count = 0;
    for (; value > 0 || count < least_digits; value /= 10)
      digits[count++] = static_cast<char16_t>(u'0' + value % 10);
    while (count > 0) text_ += digits[--count];
  }

  Text& text_;
  const DatePattern& pattern_;
  Date date_;
  CivilDate civil_;
  TimeOfDay time_;
  bool has_day_;
  bool has_time_;
};

}  // namespace

void AppendDate(Text& text, const DatePattern& pattern, Date date) {
  DateWriter(text, pattern, date).Write();
}

Text FormatDate(const DatePattern& pattern, Date date) {
  Text text;
  AppendDate(text, pattern, date);
  return text;
}

}  // namespace tovalin
