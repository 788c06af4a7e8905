#include <algorithm>
#include <utility>

#include "frame/arithmetic.h"
#include "frame/conversion.h"

namespace tovalin {
namespace {

// Joins come in chains: room for what follows spares most of the growing.
constexpr std::size_t kRoom = 47;

std::size_t LengthOf(const Variant& value) {
  return value.Is(Subtype::String) ? value.AsText().size() : 0;
}

void AppendOperand(Text& text, const Variant& value) {
  if (!value.Is(Subtype::Null)) AppendText(text, value);
}

}  // namespace

Variant Concatenate(const Variant& left, const Variant& right) {
  if (left.Is(Subtype::Null) && right.Is(Subtype::Null)) return Variant::Null();
  Text text;
  text.reserve(std::max(kRoom, LengthOf(left) + LengthOf(right)));
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
