#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

#include "hosts/c/handle_table.h"
#include "hosts/c/values.h"
#include "tovalin/formula.h"

// Arrays, and tables that a formula computes.

namespace tovalin::c_abi {
namespace {

/// Values of a host that lie in its memory at a distance from each other.
template <class T>
class Strided {
 public:
  Strided(const tov_column& column, std::size_t rows)
      : first_(static_cast<char*>(column.values)), stride_(column.stride), rows_(rows) {
    if (stride_ == 0) stride_ = sizeof(T);
    if (rows > 0) Given(first_);
  }

  /// Whether they lie as an array of C++ does.
  bool IsArray() const {
    return stride_ == static_cast<std::ptrdiff_t>(sizeof(T)) &&
           reinterpret_cast<std::uintptr_t>(first_) % alignof(T) == 0;
  }
  std::span<T> AsArray() const { return {reinterpret_cast<T*>(first_), rows_}; }

  T Get(std::size_t row) const {
    T value;
    std::memcpy(&value, Place(row), sizeof value);
    return value;
  }
  void Put(std::size_t row, const T& value) const { std::memcpy(Place(row), &value, sizeof value); }

 private:
  char* Place(std::size_t row) const { return first_ + static_cast<std::ptrdiff_t>(row) * stride_; }

  char* first_;
  std::ptrdiff_t stride_;
  std::size_t rows_;
};

/// The columns of a table, copied where they do not lie as the library takes them.
class Columns {
 public:
  Columns(const tov_column* columns, std::size_t count, std::size_t rows, GroupLock& group) {
    if (count > 0) Given(columns);
    for (const tov_column& column : std::span(columns, count)) Add(column, rows, group);
  }

  std::span<const Formula::Column> View() const { return columns_; }

 private:
  void Add(const tov_column& column, std::size_t rows, GroupLock& group) {
    Formula::Column& added = columns_.emplace_back();
    added.name = ReadName(column.name);
    if (column.type == TOV_DOUBLE)
      added.values = Doubles(Strided<double>(column, rows), rows);
    else if (column.type == TOV_EMPTY)
      added.values = Values(Strided<tov_value>(column, rows), rows, group);
    else
      Raise(Failure::TypeMismatch);
  }

  std::span<const double> Doubles(const Strided<double>& given, std::size_t rows) {
    if (given.IsArray()) return given.AsArray();
    std::vector<double>& copy = doubles_.emplace_back(rows);
    for (std::size_t row = 0; row < rows; ++row) copy[row] = given.Get(row);
    return copy;
  }
  std::span<const Variant> Values(const Strided<tov_value>& given, std::size_t rows,
                                  GroupLock& group) {
    std::vector<Variant>& copy = values_.emplace_back(rows);
    for (std::size_t row = 0; row < rows; ++row) copy[row] = Read(given.Get(row), group);
    return copy;
  }

  std::vector<Formula::Column> columns_;
  std::vector<std::vector<double>> doubles_;
  std::vector<std::vector<Variant>> values_;
};

std::vector<Formula::RowError> ComputeDoubles(Formula& formula, const Columns& columns,
                                              const Strided<double>& results, std::size_t rows) {
  if (results.IsArray()) return formula.EvaluarTabla(columns.View(), rows, results.AsArray());
  std::vector<double> computed(rows);
  auto failed = formula.EvaluarTabla(columns.View(), rows, std::span(computed));
  for (std::size_t row = 0; row < rows; ++row) results.Put(row, computed[row]);
  return failed;
}

// The results come into the host's memory all together.
std::vector<Formula::RowError> ComputeValues(Formula& formula, const Columns& columns,
                                             const Strided<tov_value>& results, std::size_t rows,
                                             const Ref<Group>& group) {
  std::vector<Variant> computed(rows);
  auto failed = formula.EvaluarTabla(columns.View(), rows, std::span(computed));
  std::vector<OwnedValue> written(rows);
  for (std::size_t row = 0; row < rows; ++row)
    written[row].Set(Write(computed[row], results.Get(row).encoding, group));
  for (std::size_t row = 0; row < rows; ++row) results.Put(row, written[row].Take());
  return failed;
}

std::vector<Formula::RowError> Compute(Formula& formula, const Columns& columns,
                                       const tov_column& results, std::size_t rows,
                                       const Ref<Group>& group) {
  if (results.type == TOV_DOUBLE)
    return ComputeDoubles(formula, columns, Strided<double>(results, rows), rows);
  if (results.type != TOV_EMPTY) Raise(Failure::TypeMismatch);
  return ComputeValues(formula, columns, Strided<tov_value>(results, rows), rows, group);
}

}  // namespace
}  // namespace tovalin::c_abi

using namespace tovalin;
using namespace tovalin::c_abi;

int32_t tov_array_create(size_t columns, size_t rows, tov_value* array, tov_error* error) {
  return Answer(error, [&] {
    Given(array);
    if (columns > 0 && rows > std::numeric_limits<std::ptrdiff_t>::max() / columns)
      Raise(Failure::OutOfMemory);
    const Variant made = Make<VariantArray>(columns, rows);
    *array = Write(made, array->encoding, Make<Group>());
  });
}

int32_t tov_array_size(tov_handle array, size_t* columns, size_t* rows, tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindArray(array);
    const GroupLock lock(pin->group);
    if (columns) *columns = pin->value.AsArray().Columns();
    if (rows) *rows = pin->value.AsArray().Rows();
  });
}

int32_t tov_array_get(tov_handle array, size_t column, size_t row, tov_value* value,
                      tov_error* error) {
  return Answer(error, [&] {
    Given(value);
    const Pin pin = HandleTable::Instance().FindArray(array);
    const GroupLock lock(pin->group);
    *value = Write(pin->value.AsArray().At(column, row), value->encoding, lock.group());
  });
}

int32_t tov_array_set(tov_handle array, size_t column, size_t row, const tov_value* value,
                      tov_error* error) {
  return Answer(error, [&] {
    const Pin pin = HandleTable::Instance().FindArray(array);
    GroupLock lock(pin->group);
    Variant element = Read(Given(value), lock);
    pin->value.MutableArray().At(column, row) = std::move(element);
  });
}

int32_t tov_evaluate_table(tov_handle formula, const tov_column* columns, size_t column_count,
                           size_t rows, const tov_column* results, tov_row_error* errors,
                           size_t most_errors, size_t* failed, tov_error* error) {
  return Answer(error, [&] {
    Given(results);
    if (most_errors > 0) Given(errors);
    const Pin pin = HandleTable::Instance().FindObject(formula);
    GroupLock lock(pin->group);
    const Ref<Formula> target = pin->value.AsObject().As<Formula>();
    if (!target) Raise(Failure::TypeMismatch);
    const Columns given(columns, column_count, rows, lock);
    const auto raised = Compute(*target, given, *results, rows, lock.group());
    if (failed) *failed = raised.size();
    for (std::size_t i = 0; i < std::min(most_errors, raised.size()); ++i) {
      errors[i].row = raised[i].row;
      Tell(raised[i].error, &errors[i].error);
    }
  });
}
