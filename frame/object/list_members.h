#pragma once

#include <cstddef>
#include <optional>

#include "tovalin/collection.h"
#include "tovalin/convert.h"
#include "tovalin/keyed_list.h"
#include "tovalin/variant.h"

// What Collection and Campos share: the arguments `Index`, `Before` and `After`, and the
// list of keys.

namespace tovalin {

/// The 0-based position that `index`, a position from 1 or a key, names.
/// Raises 5 for an unknown key, 9 for a position out of range.
template <class T>
std::size_t PositionOf(const KeyedList<T>& list, const Variant& index) {
  if (index.Is(Subtype::String)) {
    const std::size_t position = list.Find(index.Value().AsText());
    if (position == list.kNotFound) Raise(Failure::InvalidArgument);
    return position;
  }
  const std::int32_t number = ToLong(index);
  if (number < 1 || static_cast<std::size_t>(number) > list.Size())
    Raise(Failure::SubscriptOutOfRange);
  return static_cast<std::size_t>(number) - 1;
}

/// Where a new item goes: before or after the item named, or at the end.
template <class T>
std::size_t InsertionPosition(const KeyedList<T>& list, const Variant& before,
                              const Variant& after) {
  if (!before.IsMissing() && !after.IsMissing()) Raise(Failure::InvalidArgument);
  if (!before.IsMissing()) return PositionOf(list, before);
  if (!after.IsMissing()) return PositionOf(list, after) + 1;
  return list.Size();
}

/// The keys of a list in the order of its items, an empty text for an item without one.
template <class T>
Ref<Collection> KeysOf(const KeyedList<T>& list) {
  auto keys = Make<Collection>();
  keys->List().Items().reserve(list.Size());
  for (std::size_t i = 0; i < list.Size(); ++i) keys->List().Append(list.Key(i));
  return keys;
}

}  // namespace tovalin
