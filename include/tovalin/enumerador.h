#pragma once

#include <memory>

#include "tovalin/api.h"
#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/object.h"

namespace tovalin {

/// Iterates over the items of a Collection or the records of a Campos, for hosts that
/// call late-bound. It stays right while items come and go: see KeyedList::Cursor.
///
///     Variant item;
///     const Ref<Enumerador> items = collection->NewEnum();
///     while (items->Siguiente(item)) Use(items->Clave(), item);
class TOVALIN_API Enumerador : public Object {
 public:
  static constexpr TextView kClassName = u"Enumerador";

  /// Iterates over a list, whose owner it keeps alive if Refs hold that.
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
  struct Core;
  std::unique_ptr<Core> core_;
};

}  // namespace tovalin
