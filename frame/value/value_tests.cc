#include "frame/value/conversion.h"
#include "frame/value/date_text.h"
#include "tovalin/convert.h"

namespace tovalin {

bool IsNumber(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Integer:
    case Subtype::Long:
    case Subtype::Single:
    case Subtype::Double:
    case Subtype::Currency:
    case Subtype::Byte:
      return true;
    default:
      return false;
  }
}

Variant NumberAsDouble(Variant value) {
  return !value.IfDouble() && IsNumber(value) ? Variant(ToDouble(value)) : value;
}

bool IsNumeric(const Variant& value) {
  if (value.Is(Subtype::String)) return ReadNumber(value.AsText()).has_value();
  return IsNumber(value) || value.Is(Subtype::Boolean) || value.Is(Subtype::Empty);
}

bool IsDate(const Variant& value) {
  if (value.Is(Subtype::String)) return ReadDate(value.AsText()).has_value();
  return value.Is(Subtype::Date);
}

TextView SubtypeName(Subtype subtype) {
  switch (subtype) {
    case Subtype::Empty:
      return u"Empty";
    case Subtype::Null:
      return u"Null";
    case Subtype::Integer:
      return u"Integer";
    case Subtype::Long:
      return u"Long";
    case Subtype::Single:
      return u"Single";
    case Subtype::Double:
      return u"Double";
    case Subtype::Currency:
      return u"Currency";
    case Subtype::Date:
      return u"Date";
    case Subtype::String:
      return u"String";
    case Subtype::Object:
      return u"Object";
    case Subtype::Error:
      return u"Error";
    case Subtype::Boolean:
      return u"Boolean";
    case Subtype::Variant:
      return u"Variant";
    case Subtype::Byte:
      return u"Byte";
    case Subtype::Array:
      return u"Variant()";
  }
  return {};
}

}  // namespace tovalin
