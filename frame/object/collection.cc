#include "tovalin/collection.h"

#include "frame/object/deep_release.h"
#include "frame/object/guarded.h"
#include "frame/object/keys.h"
#include "frame/object/positions.h"
#include "tovalin/dispatch.h"
#include "tovalin/enumerador.h"

namespace tovalin {
namespace {

constexpr MemberInfo kMembers[] = {
    Method<&Collection::Add>(1, u"Add",
                             {{u"Item"}, Optional(u"Key"), Optional(u"Before"), Optional(u"After")},
                             u"Adds an item at the end, or before or after another one"),
    Method<&Collection::Item>(2, u"Item", {{u"Index"}}, u"The item of a position or a key"),
    Method<&Collection::Remove>(3, u"Remove", {{u"Index"}}, u"Takes an item out"),
    Get<&Collection::Count>(4, u"Count", u"The number of items"),
    Get<&Collection::Claves>(5, u"Claves", u"Las claves de los elementos, en su orden"),
    Hidden(Method<&Collection::NewEnum>(kNewEnumId, u"_NewEnum", {})),
};

constexpr ClassInfo kClass{Collection::kClassName, kMembers};

}  // namespace

const ClassInfo& Collection::Class() const { return kClass; }

Collection::~Collection() { DeepRelease().TakeAll(list_.Items()); }

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
