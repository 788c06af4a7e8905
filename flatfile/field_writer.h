#pragma once

#include <array>
#include <optional>
#include <string>

#include "export/value_text.h"
#include "flatfile/encoding.h"
#include "flatfile/layout.h"
#include "frame/format/date_pattern.h"

namespace tovalin::flat {

/// Writes the values of one field of a checked layout, which must outlive it.
class FieldWriter {
 public:
  FieldWriter(const Layout& layout, const FieldLayout& field);

  /// Adds the field to a record: filled to its width in a fixed file, quoted where
  /// need be in a delimited one. Throws Problem, and Error for what has no text; the
  /// record has a part of the field then.
  void Append(std::string& record, const Variant& value);

  /// The value last written as an amount in ten-thousandths, 0 for Null.
  std::int64_t LastAmount() const { return last_amount_; }

 private:
  void FormText(const Variant& value);
  void FormNumber(const Variant& value);
  void FormDouble(const Variant& value);
  void FormScaled(std::int64_t units);
  void FormByPattern(const Variant& value);
  void FormMoment(const Variant& value);
  void FormLogical(const Variant& value);
  void RequireAllowed() const;
  void AppendFixed(std::string& record);
  void AppendMisfit(std::string& record) const;
  void AppendDelimited(std::string& record);

  const Layout& layout_;
  const FieldLayout& field_;
  Encoder encoder_;
  ValueText value_text_;
  DatePattern pattern_;
  std::string fill_;  // the fill and the mark in the encoding
  std::string mark_;
  std::array<bool, 256> breaks_{};  // the bytes that need quotes
  std::string bytes_;               // of the present value, not yet filled or quoted
  std::size_t length_ = 0;          // of it, in characters
  bool is_null_ = false;
  Text text_;
  Text cased_;
  std::optional<Date> last_moment_;  // that text_ shows: rows often repeat it
  std::int64_t last_amount_ = 0;
};

/// The letters that show the last digit and the sign of a number at once.
inline constexpr std::string_view kPositiveZone = "{ABCDEFGHI";
inline constexpr std::string_view kNegativeZone = "}JKLMNOPQR";

}  // namespace tovalin::flat
