#pragma once

#include <array>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/keyed_list.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

class Campos;
class Collection;
class Enumerador;

/// The data type codes of a Campo.
enum DataType : std::int32_t {
  kLogical = 1001,
  kInteger = 1003,
  kWholeNumber = 1004,
  kCurrency = 1005,
  kDouble = 1007,
  kFloat = 1008,
  kNumeric = 1009,  // also the answer for an unknown name
  kTime = 1010,
  kDate = 1011,
  kText = 1012,
  kTimeOfDay = 1013,
  kLongText = 1014,
};

/// One record of a table: a variable, constant, function or operator of an
/// evaluator, or a field of an export.
class TOVALIN_API Campo : public Object {
 public:
  static constexpr TextView kClassName = u"Campo";

  /// The status codes of a formula variable.
  static constexpr std::int32_t kIdle = 2000;
  static constexpr std::int32_t kBeingComputed = 2002;

  Campo() = default;
  explicit Campo(Text name) : name_(std::move(name)) {}
  ~Campo() override;
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;
  /// For C++ hosts: a record with the same attributes that belongs to no table.
  Ref<Campo> Copy() const;

  const Text& Name() const { return name_; }
  /// A record that is in a table stays there under the name that it was added with.
  void LetName(const Text& Name);
  /// One of the DataType codes.
  std::int32_t DataType() const { return data_type_; }
  void LetDataType(std::int32_t DataType) { data_type_ = DataType; }
  /// The width of a text.
  std::int32_t Size() const { return size_; }
  void LetSize(std::int32_t Size) { size_ = Size; }
  /// The column of an export's array that holds the field, from 0.
  std::int16_t Position() const { return position_; }
  void LetPosition(std::int16_t Position) { position_ = Position; }
  const Variant& Value() const { return value_; }
  void LetValue(const Variant& Value);
  const Text& Description() const { return description_; }
  void LetDescription(const Text& Description);
  /// The formula that gives a formula variable its value, empty for any other.
  const Text& Formula() const { return formula_; }
  void LetFormula(const Text& Formula);
  /// For C++ hosts: whether there is one.
  bool HasFormula() const { return has_formula_; }
  /// The bare word of a function.
  const Text& SourceName() const { return source_name_; }
  void LetSourceName(const Text& SourceName);
  /// The help syntax of a function.
  const Text& Sintax() const { return sintax_; }
  void LetSintax(const Text& Sintax);
  const Variant& Direction() const { return direction_; }
  void LetDirection(const Variant& Direction);
  std::int32_t Status() const { return status_; }
  void LetStatus(std::int32_t Status) { status_ = Status; }

 private:
  friend class Campos;
  friend class DeepRelease;
  friend struct CampoAccess;

  // The layout is part of the ABI. What an evaluation reads stands in front, in one line
  // of the processor's cache.
  bool has_formula_ = false;  // more than blanks
  std::int32_t status_ = kIdle;
  std::array<std::uint32_t, 2> annotation_{};  // see CampoAccess
  Variant value_;
  Text name_;
  std::int32_t data_type_ = 0;
  std::int32_t size_ = 0;
  std::int16_t position_ = 0;
  Text description_;
  Text formula_;
  Text source_name_;
  Text sintax_;
  Variant direction_;
  std::vector<Campos*> tables_;  // where the record is now, to tell them of a new formula
};

/// A table of Campo records under their names, compared without regard to case.
///
/// An `Index` is a position from 1 or a name; one that names no record raises
/// 9 (position) or 5 (name).
class TOVALIN_API Campos : public Object {
 public:
  static constexpr TextView kClassName = u"Campos";

  Campos() = default;
  ~Campos() override;
  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// Adds a record under its present name: at the end, or before or after the
  /// record that `Before` or `After` (not both, else 5) names. Raises 457 when the
  /// name is there already and 91 for no record; nothing is added then.
  void Add(const Ref<Campo>& Campo, const Variant& Before = Variant::Missing(),
           const Variant& After = Variant::Missing());
  bool Exists(const Text& Name) const { return Find(Name) != nullptr; }
  Ref<Campo> Item(const Variant& Index) const;
  void Remove(const Variant& Index);
  std::int32_t Count() const { return static_cast<std::int32_t>(list_.Size()); }

  /// The names under which the records stand, in their order.
  Ref<Collection> Claves() const;
  /// An iterator over the records for late-bound hosts, which call it _NewEnum.
  Ref<Enumerador> NewEnum();

  /// The comma-joined names that belong to the system.
  const Text& SystemList() const { return system_list_; }
  void LetSystemList(const Text& SystemList);

  // --- For C++ hosts.

  bool IsSystem(TextView name) const;
  /// The record of a name, or null.
  Campo* Find(TextView name) const {
    const std::size_t position = list_.Find(name);
    return position == list_.kNotFound ? nullptr : list_[position].get();
  }
  const KeyedList<Ref<Campo>>& List() const { return list_; }
  /// Grows with every change of the set of names and of a record's name or formula.
  std::uint64_t Version() const { return version_; }
  /// Grows with every value that is written into a record by LetValue.
  std::uint64_t ValuesVersion() const { return values_version_; }

  KeyedList<Ref<Campo>>::Cursor begin() const { return list_.begin(); }
  std::default_sentinel_t end() const { return {}; }

 private:
  friend class Campo;
  friend class DeepRelease;

  KeyedList<Ref<Campo>> list_;
  Text system_list_;
  std::uint64_t version_ = 0;
  std::uint64_t values_version_ = 0;
};

}  // namespace tovalin
