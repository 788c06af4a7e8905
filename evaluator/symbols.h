#pragma once

#include <cstdint>

#include "tovalin/campos.h"
#include "tovalin/collection.h"

namespace tovalin {

/// The tables of one evaluator and what else the reading of a formula depends on.
struct Symbols {
  Symbols();

  Ref<Campos> functions;
  Ref<Campos> variables;
  Ref<Campos> constants;
  Ref<Campos> operators;
  Ref<Collection> separators;
  Ref<Collection> special_characters;
  Text string_delimiter = u"'";
  /// Grows when a table or the delimiter is replaced: by more than all versions of
  /// the table, so that no sum of versions comes back.
  std::uint64_t replacements = 0;

  /// The variable of a name, else the constant, or null.
  Campo* Find(TextView name) const;
  /// Raises kObjectError with a line for each rule that a new name breaks.
  void Validate(TextView name) const;
  bool IsValid(TextView name) const { return Complaints(name).empty(); }

 private:
  Text Complaints(TextView name) const;
};

/// A number that grows with every change of the elements of the language. It is a
/// sum of counters that never shrink, so it stands still only when they all do.
inline std::uint64_t VocabularyStamp(const Symbols& symbols) {
  return symbols.replacements + symbols.functions->Version() + symbols.operators->Version() +
         symbols.operators->ValuesVersion();
}

/// What every name of a formula stood for at a moment. `locals` is kept by
/// whoever keeps the stamp, so that its address is not used again.
struct NamesStamp {
  static constexpr std::uint64_t kNever = static_cast<std::uint64_t>(-1);

  std::uint64_t names = kNever;  // of the vocabulary and all tables, a sum like the above
  const Campos* locals = nullptr;

  friend bool operator==(const NamesStamp&, const NamesStamp&) = default;
};

inline NamesStamp StampNames(const Symbols& symbols, const Campos* locals) {
  const std::uint64_t names =
      VocabularyStamp(symbols) + symbols.variables->Version() + symbols.constants->Version();
  return {locals ? names + locals->Version() : names, locals};
}

}  // namespace tovalin
