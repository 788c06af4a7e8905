#include "frame/deep_release.h"

#include "tovalin/campos.h"
#include "tovalin/collection.h"

namespace tovalin {

void DeepRelease::Take(Variant& value) {
  if (!value.IsByReference() && MayHold(value)) pending_.push_back(std::move(value));
}

void DeepRelease::TakeAll(std::vector<Variant>& values) {
  for (Variant& value : values) Take(value);
}

void DeepRelease::TakeRecords(Campos& table) {
  for (Ref<Campo>& record : table.list_.Items())
    if (record->references.Value() == 1 && MayHold(record->value_)) Take(record->value_);
}

DeepRelease::~DeepRelease() {
  while (!pending_.empty()) {
    const Variant holder = std::move(pending_.back());
    pending_.pop_back();
    Empty(holder);
  }
}

// Takes out what nobody else will see again: the holder is held here alone.
void DeepRelease::Empty(const Variant& holder) {
  if (holder.Is(Subtype::Array)) {
    const VariantArray& array = holder.AsArray();
    if (array.references.Value() == 1) TakeAll(const_cast<VariantArray&>(array).items_);
    return;
  }
  const Ref<Object>& object = holder.AsObject();
  if (!object || object->references.Value() != 1) return;
  if (auto* collection = dynamic_cast<Collection*>(object.get()))
    TakeAll(collection->list_.Items());
  else if (auto* record = dynamic_cast<Campo*>(object.get()))
    Take(record->value_);
  else if (auto* table = dynamic_cast<Campos*>(object.get()))
    TakeRecords(*table);
}

}  // namespace tovalin
