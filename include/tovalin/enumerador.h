#pragma once

#include <variant>

#include "tovalin/api.h"
#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/object.h"

namespace tovalin {

/// A walk over the items of a Collection or the records of a Campos, for hosts that
/// call late-bound. It stays right while items come and go: see KeyedList::Cursor.
///
///     Variant item;
///     const Ref<Enumerador> items = collection->NewEnum();
///     while (items->Siguiente(item)) Use(items->Clave(), item);
class TOVALIN_API Enumerador : public Object {
 public:
  static constexpr TextView kClassName = u"Enumerador";

  /// A walk over a list, whose owner it keeps alive if Refs hold that.
  Enumerador(const KeyedList<Variant>& list, Ref<Object> owner);
  Enumerador(const KeyedList<Ref<Campo>>& list, Ref<Object> owner);
  ~Enumerador() override;
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// Puts the next item into `rElemento`. False, with nothing changed, once there are
  /// no more.
  bool Siguiente(Variant& rElemento);
  /// The key of the item that came last, empty without one or when it was removed.
  Text Clave() const;
  /// Starts again in front of the first item.
  void Reiniciar();

 private:
  enum class Place : std::uint8_t { BeforeFirst, AtItem, BehindLast };

  Ref<Object> owner_;
  std::variant<KeyedList<Variant>::Cursor, KeyedList<Ref<Campo>>::Cursor> cursor_;
  Place place_ = Place::BeforeFirst;
};

}  // namespace tovalin
