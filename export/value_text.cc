#include "export/value_text.h"

#include "frame/format/patterns.h"
#include "frame/value/number_text.h"
#include "tovalin/convert.h"

namespace tovalin {

template <class Number>
TextView ValueText::NumberText(Number number) {
  text_.clear();
  AppendNumber(text_, number);
  return text_;
}

// The common subtypes are read where they lie or written into the same text again;
// the rest take the general path.
TextView ValueText::Plain(const Variant& value) {
  switch (value.Kind()) {
    case Subtype::String:
      return value.AsText();
    case Subtype::Empty:
    case Subtype::Null:
      return {};
    case Subtype::Integer:
      return NumberText(std::int64_t{value.AsInteger()});
    case Subtype::Long:
      return NumberText(std::int64_t{value.AsLong()});
    case Subtype::Single:
      return NumberText(value.AsSingle());
    case Subtype::Double:
      return NumberText(value.AsDouble());
    case Subtype::Currency:
      return NumberText(value.AsCurrency());
    default:
      return text_ = ToText(value);
  }
}

TextView ValueText::Formed(const Variant& value, FieldForm form) {
  const Pattern& pattern = form == FieldForm::Time ? time_ : date_;
  if (form == FieldForm::Plain || pattern.name.empty()) return Plain(value);
  if (value.Is(Subtype::Null)) return {};
  if (!value.Is(Subtype::Date)) return text_ = Format(value, pattern.name);
  text_.clear();
  AppendDate(text_, pattern.parsed, value.AsDate());
  return text_;
}

}  // namespace tovalin
