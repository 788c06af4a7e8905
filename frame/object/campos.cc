#include "tovalin/campos.h"

#include <algorithm>

#include "frame/object/deep_release.h"
#include "frame/object/error_translation.h"
#include "frame/object/list_members.h"
#include "tovalin/enumerador.h"

namespace tovalin {
Ref<Campo> Campo::Copy() const {
  return RaisingErrors([&] {
    auto copy = Make<Campo>(name_);
    copy->data_type_ = data_type_;
    copy->size_ = size_;
    copy->position_ = position_;
    copy->value_ = value_;
    copy->description_ = description_;
    copy->formula_ = formula_;
    copy->has_formula_ = has_formula_;
    copy->source_name_ = source_name_;
    copy->sintax_ = sintax_;
    copy->direction_ = direction_;
    copy->status_ = status_;
    return copy;
  });
}

void Campo::LetName(const Text& Name) {
  RaisingErrors([&] {
    name_ = Name;
    for (Campos* table : tables_) ++table->version_;
  });
}

// The former value is destroyed last: its destructor may run code of the host that calls
// this record again, or releases it.
void Campo::LetValue(const Variant& Value) {
  const Variant former = std::exchange(value_, Value.Value());
  for (Campos* table : tables_) ++table->values_version_;
}

void Campo::LetFormula(const Text& Formula) {
  RaisingErrors([&] {
    formula_ = Formula;
    has_formula_ = !Trim(Formula).empty();
    for (Campos* table : tables_) ++table->version_;
  });
}

void Campo::LetDescription(const Text& Description) {
  RaisingErrors([&] { description_ = Description; });
}
void Campo::LetSourceName(const Text& SourceName) {
  RaisingErrors([&] { source_name_ = SourceName; });
}
void Campo::LetSintax(const Text& Sintax) {
  RaisingErrors([&] { sintax_ = Sintax; });
}

void Campo::LetDirection(const Variant& Direction) { direction_ = Direction.Value(); }

Campo::~Campo() { DeepRelease().AddValues(*this); }

Campos::~Campos() {
  for (const Ref<Campo>& record : list_.Items()) std::erase(record->tables_, this);
  DeepRelease().AddRecords(*this);
}

void Campos::Add(const Ref<Campo>& Campo, const Variant& Before, const Variant& After) {
  RaisingErrors([&] {
    if (!Campo) Raise(Failure::ObjectNotSet);
    const TextView name = Campo->Name();
    const std::size_t position = InsertionPosition(list_, Before, After);
    Campo->tables_.push_back(this);
    try {
      list_.Insert(position, Campo, &name);
    } catch (...) {
      Campo->tables_.pop_back();
      throw;
    }
    ++version_;
  });
}

void Campos::LetSystemList(const Text& SystemList) {
  RaisingErrors([&] { system_list_ = SystemList; });
}

Ref<Campo> Campos::Item(const Variant& Index) const { return list_[PositionOf(list_, Index)]; }

Ref<Collection> Campos::Claves() const {
  return RaisingErrors([&] { return KeysOf(list_); });
}

Ref<Enumerador> Campos::NewEnum() {
  return RaisingErrors([&] { return Make<Enumerador>(list_, Hold<Object>(*this)); });
}

void Campos::Remove(const Variant& Index) {
  const std::size_t position = PositionOf(list_, Index);
  const Ref<Campo> record =
      list_[position];  // released last: it may hold the last Ref on the table
  // A record may stand in the table twice, under an old and a new name.
  auto& tables = record->tables_;
  tables.erase(std::find(tables.begin(), tables.end(), this));
  list_.Remove(position);
  ++version_;
}

bool Campos::IsSystem(TextView name) const {
  for (TextView rest = system_list_; !rest.empty();) {
    const std::size_t comma = std::min(rest.find(u','), rest.size());
    if (EqualFolded(Trim(rest.substr(0, comma)), Trim(name))) return true;
    rest.remove_prefix(std::min(comma + 1, rest.size()));
  }
  return false;
}

}  // namespace tovalin
