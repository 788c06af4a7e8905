#pragma once

#include "tovalin/variant.h"

namespace tovalin {

/// The text of the layout file: a heading, a line for each field, a total.
class LayoutDescription {
 public:
  /// `path` is that of the files, without extension, and `now` the moment told.
  LayoutDescription(TextView path, Date now, bool fixed_width);

  /// Adds the next field, which takes `length` characters. Raises 5 for a name of
  /// more than 30 characters in fixed width.
  void AddField(TextView name, std::size_t length);
  /// Adds the total, which is the number of the last row, and answers the whole.
  const Text& Finish(std::int32_t last_row);

 private:
  void AddLine(TextView line);

  Text text_;
  bool fixed_width_;
  std::size_t offset_ = 1;
};

}  // namespace tovalin
