#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "tovalin/campos.h"

namespace tovalin {

/// What code of the library may do with a record beyond what hosts may.
struct CampoAccess {
  /// Eight bytes for whoever computes with records, 0 at first. They mean nothing to the
  /// record itself, and a Copy does not have them.
  using Annotation = std::array<std::uint32_t, 2>;
  static const Annotation& AnnotationOf(const Campo& record) { return record.annotation_; }
  static Annotation& AnnotationOf(Campo& record) { return record.annotation_; }

  /// Replaces the value and answers the former one. No table counts it as a change of a value
  /// (see Campos::ValuesVersion).
  static Variant ExchangeValue(Campo& record, Variant value) {
    return std::exchange(record.value_, std::move(value));
  }
};

}  // namespace tovalin
