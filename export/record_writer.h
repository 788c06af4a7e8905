#pragma once

#include <string>

#include "export/field.h"
#include "export/value_text.h"

namespace tovalin {

/// The character after each field.
inline constexpr char kFieldDelimiter = ';';

/// A cell of an array. Raises 13 for what is no array and 9 for a cell that is not there.
const Variant& CellOf(const Variant& data, std::int16_t column, std::size_t row);

/// Builds the records of a data file, one after the other, as the bytes of the
/// file. A character of a text is a byte, so that lengths agree.
class RecordWriter {
 public:
  RecordWriter(TextView date_pattern, char16_t text_qualifier, bool fixed_width);

  /// Starts the next record.
  void Start() { record_.clear(); }
  /// Adds a field with its delimiter, and answers the field's length. Raises 5 for
  /// a text wider than the field, 9 for a cell that `data` has not, 13 when `data`
  /// is no array or the value has no text, 7 for a record of an unreasonable length.
  std::size_t Add(const Field& field, const Variant& data, std::size_t row);
  /// Ends the record and answers it. Raises 5 for a delimited one without fields.
  const std::string& Finish();

 private:
  void AppendFixed(const Field& field, const Variant& value);
  void AppendDelimited(const Field& field, const Variant& data, std::size_t row);
  void RequireRoom(std::size_t length) const;

  ValueText value_text_;
  char text_qualifier_;
  bool fixed_width_;
  std::string record_;
  std::string quoted_;  // the last text field of delimited mode
};

}  // namespace tovalin
