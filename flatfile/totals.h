#pragma once

#include <string_view>
#include <vector>

#include "flatfile/layout.h"
#include "tovalin/variant.h"

namespace tovalin::flat {

/// The totals of a file, added up as its records come. A total is known by its number,
/// in the order of the fields that show them.
class Totals {
 public:
  explicit Totals(const Layout& layout);

  /// The number of the total that a field shows; REQUIRES that it shows one.
  std::size_t NumberOf(std::size_t record, std::size_t field) const;

  /// Counts a record of the kind `record`: `amount_of(field)` answers the amount of a
  /// field in ten-thousandths, `bytes_of(field)` what stands in the file. Raises 6
  /// when a sum leaves the range of Currency.
  template <class AmountOf, class BytesOf>
  void Add(std::size_t record, AmountOf amount_of, BytesOf bytes_of) {
    ++lines_;
    for (const Part& part : parts_[record]) {
      Sum& sum = sums_[part.total];
      if (sum.kind == TotalKind::Count) ++sum.amount;
      if (sum.kind == TotalKind::Sum) AddAmount(sum, amount_of(part.field));
      if (sum.kind == TotalKind::Control) AddControl(sum, bytes_of(part.field));
    }
  }
  std::int64_t Lines() const { return lines_; }

  /// A total as a field takes it; `lines` is what a count of all records tells.
  Variant Value(std::size_t total, std::int64_t lines) const;

 private:
  struct Sum {
    TotalKind kind;
    std::uint64_t modulus;
    std::int64_t amount = 0;    // a count, or ten-thousandths
    std::uint64_t control = 0;  // below the modulus
    std::size_t record;         // of the field that shows it
    std::size_t field;
  };
  /// A field of a kind of record that counts in a total.
  struct Part {
    std::size_t total;
    std::size_t field;
  };

  void AddPart(std::size_t total, const Total& wanted, std::size_t record, const Layout& layout);
  static void AddAmount(Sum& sum, std::int64_t amount);
  static void AddControl(Sum& sum, std::string_view bytes);

  std::vector<Sum> sums_;
  std::vector<std::vector<Part>> parts_;  // by kind of record
  std::int64_t lines_ = 0;
};

}  // namespace tovalin::flat
