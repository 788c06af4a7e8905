#include "forms/report_parameters.h"

#include <exception>

#include "frame/value/calendar.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

Text DateLiteral(Date date) {
  const CivilDate day = DateOf(date);
  const auto number = [](int value) { return ToText(Variant(std::int32_t{value})); };
  return u"Date (" + number(day.year) + u"," + number(day.month) + u"," + number(day.day) + u")";
}

// Quotes inside the text are not doubled: reports read the value as it stands.
Text Quoted(const Variant& value) { return u"\"" + ToText(value) + u"\""; }

Text ReportText(const Variant& value, std::int16_t type) {
  switch (static_cast<Subtype>(type)) {
    case Subtype::Boolean:
      return ToBoolean(value) ? u"1" : u"0";
    case Subtype::Date:
      return DateLiteral(ToDate(value));
    case Subtype::String:
      return Quoted(value);
    case Subtype::Byte:
    case Subtype::Integer:
    case Subtype::Long:
    case Subtype::Single:
    case Subtype::Double:
    case Subtype::Currency:
      return ToText(Convert(value, static_cast<Subtype>(type)));
    default:
      return ToText(value);
  }
}

}  // namespace

void AppendCondition(Text& formula, const ReportCondition& condition) {
  // Taken before the formula changes: the texts may be parts of it.
  const Text left = Text(condition.parameter).append(condition.comparison);
  const Text joiner = u" " + Text(condition.joiner) + u" ";
  const std::size_t former = formula.size();
  try {
    if (!formula.empty()) formula += joiner;
    // A value that does not convert deliberately leaves the joiner there.
    const Text value = ReportText(condition.value, condition.type);
    formula.append(left).append(value);
  } catch (const std::exception&) {  // memory
    formula.resize(former);
    throw;
  }
}

}  // namespace tovalin
