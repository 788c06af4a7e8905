#pragma once

#include <vector>

#include "tovalin/archivo_plano.h"

namespace tovalin::flat {

/// What is wrong with the rows of one file, up to a limit.
class ErrorLog {
 public:
  explicit ErrorLog(std::size_t limit) : limit_(limit) {}

  void Add(ArchivoPlano::Fallo fault) {
    ++count_;
    if (faults_.size() >= limit_) return;
    if (fault.valor.size() > kLongestValue) fault.valor.resize(kLongestValue);
    faults_.push_back(std::move(fault));
  }
  /// How many there were, those beyond the limit included.
  std::int64_t Count() const { return count_; }
  const std::vector<ArchivoPlano::Fallo>& Faults() const { return faults_; }

 private:
  static constexpr std::size_t kLongestValue = 200;  // characters

  std::size_t limit_;
  std::int64_t count_ = 0;
  std::vector<ArchivoPlano::Fallo> faults_;
};

}  // namespace tovalin::flat
