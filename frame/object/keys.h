#pragma once

#include "tovalin/collection.h"

namespace tovalin {

/// The keys of a list in the order of its items, an empty text for an item without one.
template <class T>
Ref<Collection> KeysOf(const KeyedList<T>& list) {
  auto keys = Make<Collection>();
  keys->List().Items().reserve(list.Size());
  for (std::size_t i = 0; i < list.Size(); ++i) keys->List().Append(list.Key(i));
  return keys;
}

}  // namespace tovalin
