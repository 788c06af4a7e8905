#include "tovalin/collection.h"

#include "frame/object/deep_release.h"
#include "frame/object/error_translation.h"
#include "frame/object/list_members.h"
#include "tovalin/enumerador.h"

namespace tovalin {
Collection::~Collection() { DeepRelease().AddAll(list_.Items()); }

void Collection::Add(const Variant& Item, const Variant& Key, const Variant& Before,
                     const Variant& After) {
  RaisingErrors([&] {
    const std::size_t position = InsertionPosition(list_, Before, After);
    if (Key.IsMissing()) {
      list_.Insert(position, Item.Value(), nullptr);
      return;
    }
    if (!Key.Is(Subtype::String)) Raise(Failure::TypeMismatch);
    const TextView key = Key.Value().AsText();
    list_.Insert(position, Item.Value(), &key);
  });
}

Variant Collection::Item(const Variant& Index) const { return list_[PositionOf(list_, Index)]; }

Ref<Collection> Collection::Claves() const {
  return RaisingErrors([&] { return KeysOf(list_); });
}

Ref<Enumerador> Collection::NewEnum() {
  return RaisingErrors([&] { return Make<Enumerador>(list_, Hold<Object>(*this)); });
}

void Collection::Remove(const Variant& Index) { list_.Remove(PositionOf(list_, Index)); }

}  // namespace tovalin
