#pragma once

#include <memory>
#include <span>
#include <variant>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/collection.h"
#include "tovalin/error.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

class Evaluador;

/// A formula that an Evaluador prepared, to be evaluated many times. It stays
/// right when symbols are added, removed or retyped: it notices and looks them up
/// again. Constants are those of the moment when it was prepared or looked up.
///
/// Once its Evaluador is gone, everything but Texto raises kObjectError with
/// "El Evaluador de la fórmula ya no existe".
class TOVALIN_API Formula : public Object {
 public:
  static constexpr TextView kClassName = u"Formula";

  /// What Evaluador::Preparar makes.
  class Core;
  explicit Formula(std::unique_ptr<Core> core);
  ~Formula() override;
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// The formula as it was given.
  Text Texto() const;
  /// Its postfix text.
  Text Posfijo() const;
  /// The names of the variables that it reads, keyed by name.
  Ref<Collection> Variables() const;
  /// Its faults, as Evaluador::Errores has them.
  Ref<Collection> Errores() const;

  /// Computes the value into `Result` as Evaluador::EvaluatePosfijo does, but
  /// leaves no trace. True when the evaluation completes.
  bool Evaluar(Variant& Result);

  // --- For C++ hosts, columns in their own memory.

  /// Values of a variable, one for each row.
  struct Column {
    Text name;
    std::variant<std::span<const double>, std::span<const Variant>> values;
  };
  /// A row that raised an error.
  struct RowError {
    std::size_t row;
    Error error;
  };

  /// Computes `rows` rows, with each column's variable (not a formula variable)
  /// having the row's value, into `results`: the same values, to the last bit, as
  /// row after row through Evaluar. Answers the rows that failed; their results are
  /// no number (NaN), or Empty. The variables have their own values again afterwards.
  /// Raises 5 for a column of no variable and 9 for a column or `results` shorter
  /// than `rows`; results that are no numbers fail their rows with 13.
  std::vector<RowError> EvaluarTabla(std::span<const Column> columns, std::size_t rows,
                                     std::span<double> results);
  std::vector<RowError> EvaluarTabla(std::span<const Column> columns, std::size_t rows,
                                     std::span<Variant> results);

  /// The same for every host: `columns` is a Collection of arrays of one column, keyed
  /// by the variables' names; `Result` becomes such an array, in which a row that
  /// failed holds its error's number as an Error value. Answers how many failed.
  std::int32_t EvaluarTabla(const Variant& columns, std::int32_t rows, Variant& Result);

 private:
  bool EvaluarAgain(Variant& Result);

  std::unique_ptr<Core> core_;
};

}  // namespace tovalin
