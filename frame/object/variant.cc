#include "tovalin/variant.h"

#include "frame/object/deep_release.h"

namespace tovalin {

Variant Variant::ErrorValue(std::int32_t code) {
  Variant value(Subtype::Error);
  value.error_ = code;
  return value;
}

Variant Variant::ByReference(Variant& target) {
  Variant value;
  value.by_reference_ = true;
  value.target_ = &target.Value();
  return value;
}

std::uint16_t Variant::Code() const {
  const auto code = static_cast<std::uint16_t>(Kind());
  return by_reference_ ? static_cast<std::uint16_t>(code | kByReferenceFlag) : code;
}

VariantArray& Variant::MutableArray() {
  Variant& value = Value();
  Checked(Subtype::Array);
  if (value.array_->references.Value() > 1) value.array_ = Make<VariantArray>(*value.array_);
  return *value.array_;
}

// The former value is destroyed last: its destructor may use this very Variant, or
// `other`.
void Variant::Replace(Variant& other) noexcept {
  const Variant former(std::move(*this));
  StealFrom(other);
}

void Variant::DropReference() {
  switch (subtype_) {
    case Subtype::String:
      std::destroy_at(&text_);
      break;
    case Subtype::Object:
      std::destroy_at(&object_);
      break;
    default:
      std::destroy_at(&array_);
  }
}

VariantArray::~VariantArray() { DeepRelease().AddAll(items_); }

const Variant& VariantArray::At(std::size_t column, std::size_t row) const {
  if (column >= columns_ || row >= rows_) Raise(Failure::SubscriptOutOfRange);
  return items_[row * columns_ + column];
}

Variant& VariantArray::At(std::size_t column, std::size_t row) {
  return const_cast<Variant&>(std::as_const(*this).At(column, row));
}

}  // namespace tovalin
