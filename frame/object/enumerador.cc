#include "tovalin/enumerador.h"

#include <optional>
#include <variant>

#include "frame/object/error_translation.h"

namespace tovalin {

struct Enumerador::Core {
  enum class Place : std::uint8_t { BeforeFirst, AtItem, BehindLast };

  template <class T>
  Core(const KeyedList<T>& list, Ref<Object> list_owner)
      : owner(std::move(list_owner)),
        cursor(std::in_place_type<typename KeyedList<T>::Cursor>, list) {}

  Ref<Object> owner;
  std::variant<KeyedList<Variant>::Cursor, KeyedList<Ref<Campo>>::Cursor> cursor;
  Place place = Place::BeforeFirst;
};

Enumerador::Enumerador(const KeyedList<Variant>& list, Ref<Object> owner)
    : core_(std::make_unique<Core>(list, std::move(owner))) {}
Enumerador::Enumerador(const KeyedList<Ref<Campo>>& list, Ref<Object> owner)
    : core_(std::make_unique<Core>(list, std::move(owner))) {}
Enumerador::~Enumerador() = default;

// The item is assigned last: what it replaces may be an object of the host.
bool Enumerador::Siguiente(Variant& rElemento) {
  if (core_->place == Core::Place::BehindLast) return false;
  const auto next = [this](auto& cursor) -> std::optional<Variant> {
    if (core_->place == Core::Place::AtItem)
      ++cursor;
    else
      cursor.Restart();
    if (cursor == std::default_sentinel) return std::nullopt;
    return *cursor;
  };
  std::optional<Variant> item = std::visit(next, core_->cursor);
  core_->place = item ? Core::Place::AtItem : Core::Place::BehindLast;
  if (!item) return false;
  rElemento.Assign(std::move(*item));
  return true;
}

Text Enumerador::Clave() const {
  return RaisingErrors([&] {
    if (core_->place != Core::Place::AtItem) return Text();
    return std::visit([](const auto& cursor) { return Text(cursor.Key()); }, core_->cursor);
  });
}

void Enumerador::Reiniciar() { core_->place = Core::Place::BeforeFirst; }

}  // namespace tovalin
