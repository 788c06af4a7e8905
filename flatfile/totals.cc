#include "flatfile/totals.h"

#include <algorithm>

#include "tovalin/error.h"

namespace tovalin::flat {

Totals::Totals(const Layout& layout) : parts_(layout.records.size()) {
  for (std::size_t record = 0; record < layout.records.size(); ++record) {
    const std::vector<FieldLayout>& fields = layout.records[record].fields;
    for (std::size_t field = 0; field < fields.size(); ++field) {
      const Total& total = fields[field].total;
      if (total.kind == TotalKind::None) continue;
      sums_.push_back({total.kind, total.modulus, 0, 0, record, field});
      for (std::size_t counted = 0; counted < layout.records.size(); ++counted)
        AddPart(sums_.size() - 1, total, counted, layout);
    }
  }
}

void Totals::AddPart(std::size_t total, const Total& wanted, std::size_t record,
                     const Layout& layout) {
  if (wanted.kind == TotalKind::Lines || !CountsIn(wanted, layout.records[record])) return;
  const std::vector<FieldLayout>& fields = layout.records[record].fields;
  const auto named = [&](const FieldLayout& field) {
    return EqualFolded(field.name, wanted.field);
  };
  const auto found = std::ranges::find_if(fields, named);
  if (wanted.kind != TotalKind::Count && found == fields.end()) return;
  parts_[record].push_back({total, static_cast<std::size_t>(found - fields.begin())});
}

std::size_t Totals::NumberOf(std::size_t record, std::size_t field) const {
  const auto shows = [&](const Sum& sum) { return sum.record == record && sum.field == field; };
  return static_cast<std::size_t>(std::ranges::find_if(sums_, shows) - sums_.begin());
}

void Totals::AddAmount(Sum& sum, std::int64_t amount) {
  if (__builtin_add_overflow(sum.amount, amount, &sum.amount)) Raise(Failure::Overflow);
}

void Totals::AddControl(Sum& sum, std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char c : bytes)
    if (c >= '0' && c <= '9')
      number = (number * 10 + static_cast<std::uint64_t>(c - '0')) % sum.modulus;
  sum.control = (sum.control + number) % sum.modulus;
}

Variant Totals::Value(std::size_t total, std::int64_t lines) const {
  const Sum& sum = sums_[total];
  if (sum.kind == TotalKind::Sum) return Currency{sum.amount};
  // Counts as texts of digits: a text keeps all of theirs whatever the field is.
  const std::string digits = sum.kind == TotalKind::Control ? std::to_string(sum.control)
                             : sum.kind == TotalKind::Lines ? std::to_string(lines)
                                                            : std::to_string(sum.amount);
  return FromUtf8(digits);
}

}  // namespace tovalin::flat
