#pragma once

#include <string>

#include "flatfile/layout.h"
#include "flatfile/record_splitter.h"
#include "flatfile/scaled_number.h"
#include "frame/format/date_pattern.h"
#include "tovalin/variant.h"

namespace tovalin::flat {

/// Reads the values of one field of a checked layout, which must outlive it.
class FieldReader {
 public:
  FieldReader(const Layout& layout, const FieldLayout& field);

  /// The value: Text, Long (Currency beyond its range), Currency, Double, Boolean or
  /// Date by the field's type, and Null. Throws Problem for what is none of it.
  Variant Read(const Slice& slice);
  /// The number last read in ten-thousandths, 0 for Null and without an amount.
  std::int64_t LastAmount() const { return last_amount_; }

 private:
  std::string_view WithoutFill(std::string_view bytes) const;
  Variant ReadWithoutCheck(const Slice& slice);
  Variant ReadNumber(std::string_view bytes);
  Variant ReadDouble(std::string_view bytes) const;
  Variant ReadByPattern(std::string_view bytes);
  ScaledNumber ReadScaled(std::string_view bytes) const;

  const Layout& layout_;
  const FieldLayout& field_;
  DatePattern pattern_;
  std::string null_;  // the text of Null in the encoding
  std::string true_;
  std::string false_;
  std::int64_t last_amount_ = 0;
};

}  // namespace tovalin::flat
