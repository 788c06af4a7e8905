#pragma once

#include <utility>
#include <vector>

#include "tovalin/campos.h"

namespace tovalin {

/// The formula variables that one evaluation has computed already. A record keeps
/// its place in the list, so that asking takes constant time; the place proves
/// itself by what stands there, so that nothing needs to be reset.
class FormulaMarks {
 public:
  bool Contains(const Campo& record) const {
    return record.mark_ < computed_.size() && computed_[record.mark_].get() == &record;
  }
  std::size_t Count() const { return computed_.size(); }
  /// Gives a formula variable its value and marks it as computed. It is no change
  /// of a value as hosts make them.
  void Store(Campo& record, Variant value) {
    record.value_ = std::move(value);
    record.mark_ = static_cast<std::uint32_t>(computed_.size());
    computed_.push_back(Ref<Campo>::Share(&record));
  }

 private:
  std::vector<Ref<Campo>> computed_;
};

}  // namespace tovalin
