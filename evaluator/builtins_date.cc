#include <cstdint>

#include "evaluator/builtin_arguments.h"
#include "evaluator/builtin_families.h"
#include "evaluator/number_helpers.h"
#include "formatting/dias360.h"
#include "frame/calendar.h"
#include "tovalin/convert.h"

namespace tovalin::builtins {

namespace {

/// A number beyond the calendar is not one that is too large for a date (6), but
/// outside of what the function accepts (5).
Date DateArgument(const Variant& value) {
  return value.Is(Subtype::String) ? ToDate(value) : Date{ToDouble(value)};
}

}  // namespace

Variant DaysOf360(Arguments arguments, const BuiltinContext&) {
  return Dias360(ToDate(arguments[0]), ToDate(arguments[1]));
}

Variant MonthName(Arguments arguments, const BuiltinContext&) {
  return evaluator::NombreMes(ToDouble(arguments[0]));
}

Variant ShortMonthName(Arguments arguments, const BuiltinContext&) {
  return evaluator::MesAbr(ToDouble(arguments[0]));
}

Variant Today(Arguments, const BuiltinContext& context) {
  return MakeDate(DateOf(context.clock()));
}

Variant Now(Arguments, const BuiltinContext& context) { return context.clock(); }

Variant Year(Arguments arguments, const BuiltinContext&) {
  return static_cast<std::int16_t>(DateOf(DateArgument(arguments[0])).year);
}

Variant Month(Arguments arguments, const BuiltinContext&) {
  return static_cast<std::int16_t>(DateOf(DateArgument(arguments[0])).month);
}

Variant Day(Arguments arguments, const BuiltinContext&) {
  return static_cast<std::int16_t>(DateOf(DateArgument(arguments[0])).day);
}

Variant DateFromParts(Arguments arguments, const BuiltinContext&) {
  return DateSerial(ToInteger(arguments[0]), ToInteger(arguments[1]), ToInteger(arguments[2]));
}

Variant MoveDate(Arguments arguments, const BuiltinContext&) {
  return DateAdd(TextArgument(arguments[0]), ToDouble(arguments[1]), DateArgument(arguments[2]));
}

Variant IsDateValue(Arguments arguments, const BuiltinContext&) { return IsDate(arguments[0]); }

}  // namespace tovalin::builtins
