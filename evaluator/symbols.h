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
  std::uint64_t replacements = 0;  // grows when a table or the delimiter is replaced

  /// The variable of a name, else the constant, or null.
  Campo* Find(TextView name) const;
  /// Raises kObjectError with a line for each rule that a new name breaks.
  void Validate(TextView name) const;
  bool IsValid(TextView name) const { return Complaints(name).empty(); }

 private:
  Text Complaints(TextView name) const;
};

/// What the elements of the language looked like at a moment.
struct VocabularyStamp {
  std::uint64_t replacements = 0;
  std::uint64_t functions = 0;
  std::uint64_t operators = 0;
  std::uint64_t priorities = 0;

  friend bool operator==(const VocabularyStamp&, const VocabularyStamp&) = default;
};

/// What every name of a formula stood for at a moment. `locals` is kept by
/// whoever keeps the stamp, so that its address is not used again.
struct NamesStamp {
  VocabularyStamp vocabulary;
  std::uint64_t variables = 0;
  std::uint64_t constants = 0;
  std::uint64_t locals_version = 0;
  const Campos* locals = nullptr;

  friend bool operator==(const NamesStamp&, const NamesStamp&) = default;
};

inline VocabularyStamp StampVocabulary(const Symbols& symbols) {
  return {symbols.replacements, symbols.functions->Version(), symbols.operators->Version(),
          symbols.operators->ValuesVersion()};
}

inline NamesStamp StampNames(const Symbols& symbols, const Campos* locals) {
  return {StampVocabulary(symbols), symbols.variables->Version(), symbols.constants->Version(),
          locals ? locals->Version() : 0, locals};
}

}  // namespace tovalin
