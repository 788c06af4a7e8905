#include <cmath>
#include <cstdint>

#include "evaluator/language.h"
#include "formatting/dias360.h"
#include "frame/value/calendar.h"
#include "tovalin/convert.h"

namespace tovalin::functions {
namespace {

constexpr TextView kMonths[] = {u"Enero",      u"Febrero", u"Marzo",     u"Abril",
                                u"Mayo",       u"Junio",   u"Julio",     u"Agosto",
                                u"Septiembre", u"Octubre", u"Noviembre", u"Diciembre"};
constexpr TextView kShortMonths[] = {u"Ene", u"Feb", u"Mar", u"Abr", u"May", u"Jun",
                                     u"Jul", u"Ago", u"Sep", u"Oct", u"Nov", u"Dic"};

Variant MonthText(std::span<const TextView> names, double month) {
  const double number = std::nearbyint(month);
  if (!(number >= 1 && number <= 12)) return Variant::Null();
  return names[static_cast<std::size_t>(number) - 1];
}

/// A number beyond the calendar is not one that is too large for a date (6), but
/// outside of what the function accepts (5).
Date DateArgument(const Variant& value) {
  return value.Is(Subtype::String) ? ToDate(value) : Date{ToDouble(value)};
}

Variant DaysOf360(Arguments arguments, const FunctionContext&) {
  return Dias360(ToDate(arguments[0]), ToDate(arguments[1]));
}

Variant MonthName(Arguments arguments, const FunctionContext&) {
  return MonthText(kMonths, ToDouble(arguments[0]));
}

Variant ShortMonthName(Arguments arguments, const FunctionContext&) {
  return MonthText(kShortMonths, ToDouble(arguments[0]));
}

Variant Today(Arguments, const FunctionContext& context) {
  return MakeDate(DateOf(context.clock.Now()));
}

Variant Now(Arguments, const FunctionContext& context) { return context.clock.Now(); }

Variant Year(Arguments arguments, const FunctionContext&) {
  return static_cast<std::int16_t>(DateOf(DateArgument(arguments[0])).year);
}

Variant Month(Arguments arguments, const FunctionContext&) {
  return static_cast<std::int16_t>(DateOf(DateArgument(arguments[0])).month);
}

Variant Day(Arguments arguments, const FunctionContext&) {
  return static_cast<std::int16_t>(DateOf(DateArgument(arguments[0])).day);
}

Variant DateFromParts(Arguments arguments, const FunctionContext&) {
  return DateSerial(ToInteger(arguments[0]), ToInteger(arguments[1]), ToInteger(arguments[2]));
}

Variant MoveDate(Arguments arguments, const FunctionContext&) {
  return DateAdd(TextArgument(arguments[0]), ToDouble(arguments[1]), DateArgument(arguments[2]));
}

Variant IsDateValue(Arguments arguments, const FunctionContext&) { return IsDate(arguments[0]); }

}  // namespace

std::span<const BuiltinFunction> OfDates() {
  using Row = BuiltinFunction;
  using Type = OperandType;
  static constexpr BuiltinFunction kRows[] = {
      Row(14, u"SERIEFECHA(", u"SERIEFECHA", u"Genera ", u"SERIEFECHA( Ano , Mes , Dia ) ",
          {{u"Ano", Type::Number}, {u"Mes", Type::Number}, {u"Dia", Type::Number}}, Type::Date,
          DateFromParts),
      Row(15, u"DATESERIAL(", u"DATESERIAL", u"Genera ", u"DATESERIAL( Ano , Mes , Dia ) ",
          {{u"Ano", Type::Number}, {u"Mes", Type::Number}, {u"Dia", Type::Number}}, Type::Date,
          DateFromParts),
      Row(16, u"DATEADD(", u"DATEADD", u"Genera ", u"DATEADD( Intervalo , Numero , Fecha ) ",
          {{u"Intervalo", Type::Text}, {u"Numero", Type::Number}, {u"Fecha", Type::Date}},
          Type::Date, MoveDate, NullArgument::Last),
      Row(18, u"ESFECHA(", u"ESFECHA", u"Devuelve verdadero si el argumento es una Fecha",
          u"ESFECHA( Expr ) ", {{u"Expr"}}, Type::Logical, IsDateValue),
      Row(19, u"YEAR(", u"YEAR", u"Devuelve el año de una fecha", u"YEAR( Expr ) ",
          {{u"Expr", Type::Date}}, Type::Number, Year, NullArgument::First),
      Row(20, u"MONTH(", u"MONTH", u"Devuelve el mes de una fecha", u"MONTH( Expr ) ",
          {{u"Expr", Type::Date}}, Type::Number, Month, NullArgument::First),
      Row(21, u"DAY(", u"DAY", u"Devuelve el dia de una fecha", u"DAY( Expr ) ",
          {{u"Expr", Type::Date}}, Type::Number, Day, NullArgument::First),
      Row(22, u"DATE(", u"DATE", u"Devuelve la Fecha actual", u"DATE( ) ", {}, Type::Date, Today,
          NullArgument::None, NumericCode::None, false),
      Row(23, u"NOW(", u"NOW", u"Devuelve la Fecha actual, con hora", u"NOW( ) ", {}, Type::Date,
          Now, NullArgument::None, NumericCode::None, false),
      Row(41, u"NombreMes(", u"NombreMes", u"Nombre del mes", u"NombreMes( Mes ) ",
          {{u"Mes", Type::Number}}, Type::Text, MonthName),
      Row(42, u"MesAbr(", u"MesAbr", u"Mes abreviado", u"MesAbr( Mes ) ", {{u"Mes", Type::Number}},
          Type::Text, ShortMonthName),
      Row(47, u"Dias360(", u"Dias360", u"El numero de dias entre dos fechas",
          u"Dias360( Inicial, Fin )", {{u"Inicial", Type::Date}, {u"Fin", Type::Date}},
          Type::Number, DaysOf360),
  };
  return kRows;
}

}  // namespace tovalin::functions
