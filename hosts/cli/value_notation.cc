#include "hosts/cli/value_notation.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <optional>

#include "hosts/cli/case_file.h"
#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/convert.h"
#include "tovalin/dispatch.h"

namespace tovalin::tool {
namespace {

constexpr TextView kSeparator = u" | ";
constexpr double kSecondsOfDay = 86400;
constexpr double kCalendarDays = 3e6;  // what lies within is shown by the calendar

[[noreturn]] void RefuseValue(TextView notation) {
  throw TableFault{"no value: " + ToUtf8(notation)};
}

template <class T>
std::optional<T> WholeNumber(TextView notation) {
  const std::string digits = ToUtf8(notation);
  T value{};
  const char* end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, value);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return value;
}

template <class T>
T NumberOf(TextView notation) {
  if (const auto value = WholeNumber<T>(notation)) return *value;
  RefuseValue(notation);
}

template <class T>
Text DigitsOf(T value) {
  char buffer[400];
  if (value == 0) value = 0;  // the two zeros count as one
  return FromUtf8({buffer, std::to_chars(buffer, std::end(buffer), value).ptr});
}

// A Double shows its shortest digits, positional as long as a person reads them.
// Whatever is no number counts as one.
Text DoubleDigits(double value) {
  if (std::isnan(value)) return u"nan";
  if (value == 0) return u"0";
  const double magnitude = std::fabs(value);
  if (magnitude < 1e-7 || magnitude >= 1e21) return DigitsOf(value);
  char buffer[400];
  const auto end = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed).ptr;
  return FromUtf8({buffer, end});
}

// Currency: a whole number of ten-thousandths, written with up to four decimals.
Variant ReadCurrency(TextView notation) {
  const std::size_t point = std::min(notation.find(u'.'), notation.size());
  Text digits(notation.substr(0, point));
  Text decimals(notation.substr(std::min(point + 1, notation.size())));
  if (decimals.size() > 4) RefuseValue(notation);
  decimals.resize(4, u'0');
  return Currency{NumberOf<std::int64_t>(digits + decimals)};
}

Text CurrencyDigits(Currency value) {
  const bool negative = value.ten_thousandths < 0;
  const auto magnitude = static_cast<std::uint64_t>(value.ten_thousandths);
  Text digits = DigitsOf(negative ? 0 - magnitude : magnitude);
  if (digits.size() < 5) digits.insert(0, 5 - digits.size(), u'0');
  digits.insert(digits.size() - 4, 1, u'.');
  while (digits.back() == u'0') digits.pop_back();
  if (digits.back() == u'.') digits.pop_back();
  return negative ? u"-" + digits : digits;
}

constexpr std::chrono::sys_days kDayZero =
    std::chrono::year(1899) / std::chrono::December / std::chrono::day(30);

bool IsCalendar(TextView notation) { return notation.find(u'-', 1) != TextView::npos; }

// Before day 0 the time of day still counts forward from midnight.
double DayCount(int day, int second) {
  const double fraction = second / kSecondsOfDay;
  return day >= 0 ? day + fraction : day - fraction;
}

// The calendar form of a date, to the nearest second.
Text CalendarText(Date value) {
  double day = std::trunc(value.days);
  double seconds = std::round(std::fabs(value.days - day) * kSecondsOfDay);
  if (seconds == kSecondsOfDay) {
    day += 1;
    seconds = 0;
  }
  const std::chrono::year_month_day date{kDayZero + std::chrono::days(static_cast<int>(day))};
  const int second = static_cast<int>(seconds);
  char buffer[64];
  int length = std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02u", int(date.year()),
                             unsigned(date.month()), unsigned(date.day()));
  if (second != 0)
    length += std::snprintf(buffer + length, sizeof buffer - static_cast<std::size_t>(length),
                            " %02d:%02d:%02d", second / 3600, second / 60 % 60, second % 60);
  return FromUtf8({buffer, static_cast<std::size_t>(length)});
}

// "2024-02-29" or "2024-02-29 18:30:00".
Variant ReadCalendar(TextView notation) {
  int year = 0, hour = 0, minute = 0, second = 0;
  unsigned month = 0, day = 0;
  const std::string text = ToUtf8(notation);
  std::sscanf(text.c_str(), "%d-%u-%u %d:%d:%d", &year, &month, &day, &hour, &minute, &second);
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(month),
                                         std::chrono::day(day)};
  const auto days = (std::chrono::sys_days(date) - kDayZero).count();
  const Date value{DayCount(static_cast<int>(days), (hour * 60 + minute) * 60 + second)};
  if (!date.ok() || CalendarText(value) != notation) RefuseValue(notation);
  return value;
}

Variant ReadDate(TextView notation) {
  if (!IsCalendar(notation)) return Date{NumberOf<double>(notation)};
  return ReadCalendar(notation);
}

Text DateNotation(Date value) {
  if (std::fabs(value.days) < kCalendarDays) {
    const Text calendar = CalendarText(value);
    if (ReadCalendar(calendar).AsDate().days == value.days) return u"Date " + calendar;
  }
  return u"Date " + DoubleDigits(value.days);
}

struct Word {
  TextView text;
  Variant (*value)();
};

const Word kWords[] = {
    {u"True", [] { return Variant(true); }},
    {u"False", [] { return Variant(false); }},
    {u"Null", [] { return Variant::Null(); }},
    {u"Empty", [] { return Variant(); }},
    {u"Missing", [] { return Variant::Missing(); }},
    {u"Nothing", [] { return Variant(Ref<Object>()); }},
};

struct Form {
  TextView name;
  Variant (*read)(TextView digits);
};

template <class T>
Variant ReadAs(TextView digits) {
  return NumberOf<T>(digits);
}

Variant ReadArray(TextView notation);

constexpr Form kForms[] = {
    {u"Integer ", ReadAs<std::int16_t>},
    {u"Long ", ReadAs<std::int32_t>},
    {u"Byte ", ReadAs<std::uint8_t>},
    {u"Single ", ReadAs<float>},
    {u"Double ", ReadAs<double>},
    {u"Currency ", ReadCurrency},
    {u"Date ", ReadDate},
    {u"Array ", ReadArray},
};

bool IsWithin(TextView notation, char16_t first, char16_t last) {
  return notation.size() >= 2 && notation.front() == first && notation.back() == last;
}

TextView Within(TextView notation) { return notation.substr(1, notation.size() - 2); }

Variant ReadCollection(TextView notation) {
  auto items = Make<Collection>();
  for (const Text& item : SplitItems(notation)) items->Add(ReadNotation(item));
  return items;
}

Variant ReadCampos(TextView notation) {
  auto table = Make<Campos>();
  for (const Text& item : SplitItems(notation)) {
    const std::size_t equals = item.find(u'=');
    auto record = Make<Campo>(item.substr(0, equals));
    if (equals != Text::npos) record->LetValue(ReadNotation(TextView(item).substr(equals + 1)));
    table->Add(record);
  }
  return table;
}

// "2: 1 | 2 | 3 | 4" has two columns and the rows 1, 2 and 3, 4.
Variant ReadArray(TextView notation) {
  const std::size_t colon = notation.find(u": ");
  if (colon == TextView::npos) RefuseValue(notation);
  const auto columns = NumberOf<std::size_t>(notation.substr(0, colon));
  const std::vector<Text> items = SplitItems(notation.substr(colon + 2));
  if (columns == 0 || items.size() % columns != 0) RefuseValue(notation);
  auto array = Make<VariantArray>(columns, items.size() / columns);
  for (std::size_t i = 0; i < items.size(); ++i)
    array->At(i % columns, i / columns) = ReadNotation(items[i]);
  return array;
}

Text Joined(const std::vector<Text>& items) {
  Text joined;
  for (const Text& item : items) {
    if (!joined.empty()) joined.append(kSeparator);
    joined.append(item);
  }
  return joined;
}

Text ObjectNotation(const Ref<Object>& object) {
  if (!object) return u"Nothing";
  std::vector<Text> items;
  if (const Ref<Collection> collection = object.As<Collection>()) {
    for (const Variant& item : collection->List().Items()) items.push_back(Notation(item));
    return u"[" + Joined(items) + u"]";
  }
  if (const Ref<Campos> table = object.As<Campos>()) {
    for (const Ref<Campo>& record : table->List().Items()) {
      const bool valued = !record->Value().Is(Subtype::Empty);
      items.push_back(valued ? record->Name() + u"=" + Notation(record->Value()) : record->Name());
    }
    return u"{" + Joined(items) + u"}";
  }
  return Text(u"Object ").append(object->Class().name);
}

Text ArrayNotation(const VariantArray& array) {
  std::vector<Text> items;
  for (std::size_t row = 0; row < array.Rows(); ++row)
    for (std::size_t column = 0; column < array.Columns(); ++column)
      items.push_back(Notation(array.At(column, row)));
  return u"Array " + DigitsOf(array.Columns()) + u": " + Joined(items);
}

// "error 13" or "error 13 text".
bool MatchesError(TextView expected, const Error& error) {
  const Text number = u"error " + DigitsOf(error.number);
  return expected == number || expected == number + u" " + error.description;
}

bool MatchesValue(TextView expected, const Variant& value) {
  if (expected.starts_with(u'~'))
    return value.Is(Subtype::Double) &&
           ToText(value) == ToText(Variant(NumberOf<double>(expected.substr(1))));
  if (expected.starts_with(u"Object ")) return ObjectNotation(value.AsObject()) == expected;
  if (expected.starts_with(u"Date ") && IsCalendar(expected.substr(5)))
    return value.Is(Subtype::Date) && std::fabs(value.AsDate().days) < kCalendarDays &&
           CalendarText(value.AsDate()) == expected.substr(5);
  return Notation(value) == Notation(ReadNotation(expected));
}

}  // namespace

Outcome OutcomeOf(const std::function<Variant()>& compute) {
  try {
    return compute();
  } catch (const Error& error) {
    return error;
  }
}

Variant ReadNotation(TextView notation) {
  if (const auto number = WholeNumber<double>(notation)) return *number;
  if (IsWithin(notation, u'"', u'"')) return Within(notation);
  if (IsWithin(notation, u'[', u']')) return ReadCollection(Within(notation));
  if (IsWithin(notation, u'{', u'}')) return ReadCampos(Within(notation));
  for (const Word& word : kWords)
    if (word.text == notation) return word.value();
  for (const Form& form : kForms)
    if (notation.starts_with(form.name)) return form.read(notation.substr(form.name.size()));
  RefuseValue(notation);
}

Text Notation(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
      return u"Empty";
    case Subtype::Null:
      return u"Null";
    case Subtype::Integer:
      return u"Integer " + DigitsOf(value.AsInteger());
    case Subtype::Long:
      return u"Long " + DigitsOf(value.AsLong());
    case Subtype::Byte:
      return u"Byte " + DigitsOf(value.AsByte());
    case Subtype::Single:
      return u"Single " + DigitsOf(value.AsSingle());
    case Subtype::Double:
      return DoubleDigits(value.AsDouble());
    case Subtype::Currency:
      return u"Currency " + CurrencyDigits(value.AsCurrency());
    case Subtype::Date:
      return DateNotation(value.AsDate());
    case Subtype::String:
      return u"\"" + value.AsText() + u"\"";
    case Subtype::Boolean:
      return value.AsBoolean() ? u"True" : u"False";
    case Subtype::Object:
      return ObjectNotation(value.AsObject());
    case Subtype::Array:
      return ArrayNotation(value.AsArray());
    default:
      return value.IsMissing() ? u"Missing" : u"ErrorValue " + DigitsOf(value.AsErrorCode());
  }
}

Text Notation(const Outcome& outcome) {
  if (const Variant* value = std::get_if<Variant>(&outcome)) return Notation(*value);
  const Error& error = std::get<Error>(outcome);
  return u"error " + DigitsOf(error.number) + u" " + error.description;
}

bool Matches(TextView expected, const Outcome& outcome) {
  if (const Error* error = std::get_if<Error>(&outcome)) return MatchesError(expected, *error);
  const bool is_error = expected.starts_with(u"error ");
  return !is_error && MatchesValue(expected, std::get<Variant>(outcome));
}

std::vector<Text> SplitItems(TextView text) {
  std::vector<Text> items;
  while (!text.empty()) {
    const bool quoted = text.front() == u'"';
    const Text end = quoted ? Text(u"\"").append(kSeparator) : Text(kSeparator);
    const std::size_t found = text.find(end, quoted ? 1 : 0);
    if (found == TextView::npos) {
      items.emplace_back(text);
      break;
    }
    items.emplace_back(text.substr(0, found + (quoted ? 1 : 0)));
    text.remove_prefix(found + end.size());
  }
  return items;
}

}  // namespace tovalin::tool
