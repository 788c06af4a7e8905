#include <utility>

#include "frame/arithmetic.h"
#include "frame/conversion.h"

namespace tovalin {
namespace {

void AppendOperand(Text& text, const Variant& value) {
  if (!value.Is(Subtype::Null)) AppendText(text, value);
}

}  // namespace

Variant Concatenate(const Variant& left, const Variant& right) {
  if (left.Is(Subtype::Null) && right.Is(Subtype::Null)) return Variant::Null();
  Text text;
  if (left.Is(Subtype::String) && right.Is(Subtype::String))
    text.reserve(left.AsText().size() + right.AsText().size());
  AppendOperand(text, left);
  AppendOperand(text, right);
  return text;
}

Variant Concatenate(Variant&& left, const Variant& right) {
  const bool alone = !left.IsByReference() && left.Is(Subtype::String) &&
                     left.AsSharedText().references.Value() == 1;
  if (!alone) return Concatenate(std::as_const(left), right);
  SharedText& text = left.AsSharedText();
  text.is_plain = false;
  AppendOperand(text.value, right);
  return std::move(left);
}

}  // namespace tovalin
