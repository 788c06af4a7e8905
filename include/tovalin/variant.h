#pragma once

#include <cassert>
#include <compare>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/error.h"
#include "tovalin/object.h"
#include "tovalin/ref.h"
#include "tovalin/text.h"

namespace tovalin {

/// The subtypes of a Variant with their automation codes.
enum class Subtype : std::uint16_t {
  Empty = 0,
  Null = 1,
  Integer = 2,   // 16-bit signed
  Long = 3,      // 32-bit signed
  Single = 4,    // 32-bit float
  Double = 5,    // 64-bit float
  Currency = 6,  // 64-bit fixed point, four decimals
  Date = 7,      // day count
  String = 8,    // counted 16-bit text
  Object = 9,    // a reference to an Object, or to none
  Error = 10,    // an error code; kMissing stands for an omitted argument
  Boolean = 11,  // True is -1, False is 0
  Variant = 12,  // only in descriptions: a parameter that takes any subtype
  Byte = 17,     // 8-bit unsigned
  Array = 8204,  // Variants in two dimensions: kArrayFlag + Variant
};

/// The most characters that a text may come to; beyond it error 7 is raised.
inline constexpr std::size_t kLongestText = std::size_t{1} << 30;

inline constexpr std::uint16_t kArrayFlag = 8192;
inline constexpr std::uint16_t kByReferenceFlag = 16384;
inline constexpr std::int32_t kMissing = -2147352572;  // hexadecimal 80020004

/// An amount of money: a whole number of ten-thousandths.
struct Currency {
  std::int64_t ten_thousandths = 0;
  friend auto operator<=>(const Currency&, const Currency&) = default;
};

/// A day count in double precision: day 0 is 30 December 1899 and the fraction
/// is the time of day, counted forward from midnight also before day 0.
struct Date {
  double days = 0;
  friend auto operator<=>(const Date&, const Date&) = default;
};

/// Text shared by the Variants that hold it; only a sole holder changes it.
struct SharedText {
  explicit SharedText(Text text) : value(std::move(text)) {}
  Text value;
  bool is_plain = false;  // known to hold no double quote and no thousands separator
  ReferenceCount references;
};

class VariantArray;

/// The value that crosses every call: sixteen bytes, cheap to copy. A copy of a
/// text or an object shares it; an array is shared until one side writes to it.
/// Moving never allocates and leaves Empty behind.
class TOVALIN_API Variant {
 public:
  Variant() : bits_(0) {}
  Variant(std::int16_t value) : subtype_(Subtype::Integer), integer_(value) {}
  Variant(std::int32_t value) : subtype_(Subtype::Long), long_(value) {}
  Variant(float value) : subtype_(Subtype::Single), single_(value) {}
  Variant(double value) : subtype_(Subtype::Double), double_(value) {}
  Variant(Currency value) : subtype_(Subtype::Currency), currency_(value) {}
  Variant(Date value) : subtype_(Subtype::Date), date_(value) {}
  Variant(std::uint8_t value) : subtype_(Subtype::Byte), byte_(value) {}
  template <std::same_as<bool> Boolean>
  Variant(Boolean value) : subtype_(Subtype::Boolean), boolean_(value) {}
  Variant(Text value) : Variant(Make<SharedText>(std::move(value))) {}
  Variant(TextView value) : Variant(Text(value)) {}
  Variant(const char16_t* value) : Variant(Text(value)) {}
  Variant(Ref<SharedText> text) : subtype_(Subtype::String), text_(std::move(text)) {}
  Variant(Ref<VariantArray> array) : subtype_(Subtype::Array), array_(std::move(array)) {}
  template <std::derived_from<Object> T>
  Variant(Ref<T> object) : subtype_(Subtype::Object), object_(std::move(object)) {}

  static Variant Null() { return Variant(Subtype::Null); }
  static Variant ErrorValue(std::int32_t code);
  /// The value that stands for an argument not supplied.
  static Variant Missing() { return ErrorValue(kMissing); }
  /// A by-reference Variant: reading and Assign reach `target`, which must
  /// outlive it.
  static Variant ByReference(Variant& target);

  Variant(const Variant& other) : bits_(0) { CopyFrom(other); }
  Variant(Variant&& other) noexcept : bits_(0) { StealFrom(other); }
  Variant& operator=(const Variant& other) {
    if (this != &other) *this = Variant(other);
    return *this;
  }
  Variant& operator=(Variant&& other) noexcept {
    // A value that refers to itself is the value that it is.
    if (this == &other || (other.by_reference_ && other.target_ == this)) return *this;
    if (HoldsReference())
      Replace(other);
    else
      StealFrom(other);
    return *this;
  }
  ~Variant() {
    if (HoldsReference()) DropReference();
  }

  /// The subtype of the value; of a by-reference Variant, that of its target.
  Subtype Kind() const { return Value().subtype_; }
  /// The automation code: the subtype's, plus 16384 when by reference.
  std::uint16_t Code() const;
  bool Is(Subtype subtype) const { return Kind() == subtype; }
  bool IsByReference() const { return by_reference_; }
  bool IsMissing() const { return Is(Subtype::Error) && Value().error_ == kMissing; }

  /// The value itself, or the target of a by-reference Variant.
  const Variant& Value() const {
    const Variant* value = this;
    while (value->by_reference_) value = value->target_;
    return *value;
  }
  Variant& Value() { return const_cast<Variant&>(std::as_const(*this).Value()); }
  /// Stores into the value itself, or into the target of a by-reference Variant.
  void Assign(Variant value) {
    if (value.by_reference_) value = Variant(value.Value());
    Value() = std::move(value);
  }

  /// Whether objects may go with the value itself, and so code of the host run.
  bool MayOwnObjects() const { return subtype_ == Subtype::Object || subtype_ == Subtype::Array; }

  // The payload of the value. Each requires its own subtype; conversions are in
  // tovalin/convert.h.
  std::int16_t AsInteger() const { return Checked(Subtype::Integer).integer_; }
  std::int32_t AsLong() const { return Checked(Subtype::Long).long_; }
  float AsSingle() const { return Checked(Subtype::Single).single_; }
  double AsDouble() const { return Checked(Subtype::Double).double_; }
  /// The number of a Double that is no by-reference value, else null.
  const double* IfDouble() const { return subtype_ == Subtype::Double ? &double_ : nullptr; }
  Currency AsCurrency() const { return Checked(Subtype::Currency).currency_; }
  Date AsDate() const { return Checked(Subtype::Date).date_; }
  const Text& AsText() const { return Checked(Subtype::String).text_->value; }
  /// The text with its marks, for who knows what they mean.
  SharedText& AsSharedText() const { return *Checked(Subtype::String).text_; }
  const Ref<Object>& AsObject() const { return Checked(Subtype::Object).object_; }
  std::int32_t AsErrorCode() const { return Checked(Subtype::Error).error_; }
  bool AsBoolean() const { return Checked(Subtype::Boolean).boolean_; }
  std::uint8_t AsByte() const { return Checked(Subtype::Byte).byte_; }
  const VariantArray& AsArray() const { return *Checked(Subtype::Array).array_; }
  /// The array for writing; unshared first when another Variant holds it too.
  VariantArray& MutableArray();

 private:
  explicit Variant(Subtype subtype) : subtype_(subtype), bits_(0) {}

  const Variant& Checked(Subtype subtype) const {
    const Variant& value = Value();
    assert(value.subtype_ == subtype);
    (void)subtype;
    return value;
  }
  bool HoldsReference() const {
    return subtype_ == Subtype::String || subtype_ == Subtype::Object || subtype_ == Subtype::Array;
  }
  void CopyFrom(const Variant& other);
  void StealFrom(Variant& other) noexcept;
  void DropReference();
  void Replace(Variant& other) noexcept;

  // The subtype says which member of the union lives. A by-reference Variant
  // keeps Empty as its own subtype and its target in target_.
  Subtype subtype_ = Subtype::Empty;
  bool by_reference_ = false;
  union {
    std::uint64_t bits_;
    std::int16_t integer_;
    std::int32_t long_;
    float single_;
    double double_;
    Currency currency_;
    Date date_;
    Ref<SharedText> text_;
    Ref<Object> object_;
    std::int32_t error_;
    bool boolean_;
    std::uint8_t byte_;
    Ref<VariantArray> array_;
    Variant* target_;
  };
};

/// Variants in two dimensions, both counted from 0: the layout of a table that
/// was fetched column by column, indexed (column, row).
class TOVALIN_API VariantArray {
 public:
  VariantArray(std::size_t columns, std::size_t rows)
      : columns_(columns), rows_(rows), items_(columns * rows) {}
  VariantArray(const VariantArray&) = default;
  ~VariantArray();

  std::size_t Columns() const { return columns_; }
  std::size_t Rows() const { return rows_; }
  /// Raises 9 when the element does not exist.
  const Variant& At(std::size_t column, std::size_t row) const;
  Variant& At(std::size_t column, std::size_t row);

  ReferenceCount references;

 private:
  friend class DeepRelease;

  std::size_t columns_;
  std::size_t rows_;
  std::vector<Variant> items_;  // column by column within a row: rows are written together
};

inline void Variant::StealFrom(Variant& other) noexcept {
  subtype_ = other.subtype_;
  by_reference_ = other.by_reference_;
  // A Ref is one pointer that knows nothing of its own place, so its bytes move
  // like a number's: the payload is taken as eight bytes whatever it is.
  std::memcpy(static_cast<void*>(&bits_), &other.bits_, sizeof bits_);
  other.subtype_ = Subtype::Empty;
  other.by_reference_ = false;
}

inline void Variant::CopyFrom(const Variant& other) {
  if (other.subtype_ == Subtype::String)
    std::construct_at(&text_, other.text_);
  else if (other.subtype_ == Subtype::Object)
    std::construct_at(&object_, other.object_);
  else if (other.subtype_ == Subtype::Array)
    std::construct_at(&array_, other.array_);
  else
    std::memcpy(static_cast<void*>(&bits_), &other.bits_, sizeof bits_);
  subtype_ = other.subtype_;
  by_reference_ = other.by_reference_;
}

}  // namespace tovalin
