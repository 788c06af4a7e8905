#pragma once

#include "tovalin/api.h"
#include "tovalin/keyed_list.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

class Enumerador;

/// The general ordered container: Variants numbered from 1 in their order, each
/// with a key or without. A key is text, compared without regard to case.
///
/// An `Index` is a position (a number) or a key (a text). One that names no item
/// raises 9 (position) or 5 (key).
///
/// `for (Variant item : *collection)` may add and remove items as it goes: see
/// KeyedList::Cursor for what it meets then.
class TOVALIN_API Collection : public Object {
 public:
  static constexpr TextView kClassName = u"Collection";

  ~Collection() override;
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// Adds an item: at the end, or before or after an item that `Before` or
  /// `After` (not both, else 5) names. Raises 457 for a key that is there
  /// already and 13 for a key that is no text; nothing is added then.
  void Add(const Variant& Item, const Variant& Key = Variant::Missing(),
           const Variant& Before = Variant::Missing(), const Variant& After = Variant::Missing());
  Variant Item(const Variant& Index) const;
  void Remove(const Variant& Index);
  std::int32_t Count() const { return static_cast<std::int32_t>(list_.Size()); }

  /// The keys in the order of the items, an empty text for an item without one.
  Ref<Collection> Claves() const;
  /// An iterator over the items for late-bound hosts, which call it _NewEnum.
  Ref<Enumerador> NewEnum();

  /// For C++ hosts, the list itself: positions count from 0 there.
  KeyedList<Variant>& List() { return list_; }
  const KeyedList<Variant>& List() const { return list_; }

  KeyedList<Variant>::Cursor begin() const { return list_.begin(); }
  std::default_sentinel_t end() const { return {}; }

 private:
  friend class DeepRelease;

  KeyedList<Variant> list_;
};

}  // namespace tovalin
