#include <algorithm>
#include <utility>

#include "frame/value/arithmetic.h"
#include "frame/value/conversion.h"

namespace tovalin {
namespace {

// Joins come in chains: a text that has capacity for what follows seldom grows.
constexpr std::size_t kLeastCapacity = 47;

std::size_t LengthOf(const Variant& value) {
  return value.Is(Subtype::String) ? value.AsText().size() : 0;
}

// Raises 7 before a text that would be too long is made.
void RequireLength(std::size_t length) {
  if (length > kLongestText) Raise(Failure::OutOfMemory);
}

void AppendOperand(Text& text, const Variant& value) {
  RequireLength(text.size() + LengthOf(value));
  if (!value.Is(Subtype::Null)) AppendText(text, value);
  RequireLength(text.size());  // of a number it is known now
}

}  // namespace

Variant Concatenate(const Variant& left, const Variant& right) {
  if (left.Is(Subtype::Null) && right.Is(Subtype::Null)) return Variant::Null();
  const std::size_t length = LengthOf(left) + LengthOf(right);
  RequireLength(length);
  Text text;
  text.reserve(std::max(kLeastCapacity, length));
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
