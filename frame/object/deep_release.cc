#include "frame/object/deep_release.h"

#include <new>

#include "tovalin/campos.h"
#include "tovalin/collection.h"

namespace tovalin {
namespace {

// The release of this thread that is under way.
thread_local DeepRelease* innermost = nullptr;

}  // namespace

DeepRelease::DeepRelease() : outer_(innermost), depth_(outer_ ? outer_->depth_ + 1 : 0) {}

// Without memory it goes with its holder, as it would anyway.
void DeepRelease::Add(Variant& value) noexcept {
  if (value.IsByReference() || !MayHold(value)) return;
  try {
    pending_.push_back(std::move(value));
  } catch (const std::bad_alloc&) {
  }
}

void DeepRelease::AddAll(std::vector<Variant>& values) {
  for (Variant& value : values) Add(value);
}

void DeepRelease::AddValues(Campo& record) {
  Add(record.value_);
  Add(record.direction_);
}

void DeepRelease::AddRecords(Campos& table) {
  for (Ref<Campo>& record : table.list_.Items())
    if (record->references.Value() == 1) AddValues(*record);
}

DeepRelease::~DeepRelease() {
  if (depth_ >= kDeepest) {
    outer_->AddAll(pending_);
    return;
  }
  innermost = this;
  while (!pending_.empty()) {
    const Variant holder = std::move(pending_.back());
    pending_.pop_back();
    Empty(holder);
  }
  innermost = outer_;
}

// Takes out what nobody else will see again: the holder is held here alone.
void DeepRelease::Empty(const Variant& holder) {
  if (holder.Is(Subtype::Array)) {
    const VariantArray& array = holder.AsArray();
    if (array.references.Value() == 1) AddAll(const_cast<VariantArray&>(array).items_);
    return;
  }
  const Ref<Object>& object = holder.AsObject();
  if (!object || object->references.Value() != 1) return;
  if (auto* collection = dynamic_cast<Collection*>(object.get()))
    AddAll(collection->list_.Items());
  else if (auto* record = dynamic_cast<Campo*>(object.get()))
    AddValues(*record);
  else if (auto* table = dynamic_cast<Campos*>(object.get()))
    AddRecords(*table);
}

}  // namespace tovalin
