#include "frame/date_text.h"
#include "tovalin/convert.h"

namespace tovalin {

bool IsNumeric(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::Empty:
    case Subtype::Integer:
    case Subtype::Long:
    case Subtype::Single:
    case Subtype::Double:
    case Subtype::Currency:
    case Subtype::Boolean:
    case Subtype::Byte:
      return true;
    case Subtype::String:
      return ReadNumber(value.AsText()).has_value();
    default:
      return false;
  }
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
