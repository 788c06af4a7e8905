#include "tovalin/enumerador.h"

#include <optional>

#include "frame/object/guarded.h"

namespace tovalin {
Enumerador::Enumerador(const KeyedList<Variant>& list, Ref<Object> owner)
    : owner_(std::move(owner)), cursor_(std::in_place_type<KeyedList<Variant>::Cursor>, list) {}
Enumerador::Enumerador(const KeyedList<Ref<Campo>>& list, Ref<Object> owner)
    : owner_(std::move(owner)), cursor_(std::in_place_type<KeyedList<Ref<Campo>>::Cursor>, list) {}
Enumerador::~Enumerador() = default;
// The item is assigned last: what it replaces may be an object of the host.
bool Enumerador::Siguiente(Variant& rElemento) {
  if (place_ == Place::BehindLast) return false;
  const auto next = [this](auto& cursor) -> std::optional<Variant> {
    if (place_ == Place::AtItem)
      ++cursor;
    else
      cursor.Restart();
    if (cursor == std::default_sentinel) return std::nullopt;
    return *cursor;
  };
  std::optional<Variant> item = std::visit(next, cursor_);
  place_ = item ? Place::AtItem : Place::BehindLast;
  if (!item) return false;
  rElemento.Assign(std::move(*item));
  return true;
}

Text Enumerador::Clave() const {
  return RaisingErrors([&] {
    if (place_ != Place::AtItem) return Text();
    return std::visit([](const auto& cursor) { return Text(cursor.Key()); }, cursor_);
  });
}

void Enumerador::Reiniciar() { place_ = Place::BeforeFirst; }

}  // namespace tovalin
