#pragma once

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
  void Add(Campo& record) {
    record.mark_ = static_cast<std::uint32_t>(computed_.size());
    computed_.push_back(Ref<Campo>::Share(&record));
  }
  const std::vector<Ref<Campo>>& Computed() const { return computed_; }

 private:
  std::vector<Ref<Campo>> computed_;
};

}  // namespace tovalin
