#pragma once

#include <optional>
#include <vector>

#include "review/source.h"

namespace tovalin::review {

/// A part of the formula's text that is written in another way.
struct Edit {
  /// Where several edits stand at one place: what closes there comes first, then what
  /// opens, then what takes the place of the text.
  enum class Kind : std::uint8_t { Close, Open, Replace };

  Kind kind = Kind::Replace;
  Span span;  // empty for a text that is put in
  Text text;
  std::uint32_t other = 0;  // of a pair that goes around a part: where the other one stands
};

/// How a finding is mended: edits that belong together.
class Repair {
 public:
  Repair& Replace(Span span, Text text) {
    edits_.push_back({Edit::Kind::Replace, span, std::move(text), 0});
    return *this;
  }
  /// Puts texts in front of a part and behind it.
  Repair& Wrap(Span span, Text before, Text after) {
    edits_.push_back({Edit::Kind::Open, {span.start, span.start}, std::move(before), span.end});
    edits_.push_back({Edit::Kind::Close, {span.end, span.end}, std::move(after), span.start});
    return *this;
  }
  /// Puts a text right in front of a part, inside of all that goes around it.
  Repair& Insert(std::uint32_t place, Text text) {
    edits_.push_back({Edit::Kind::Open, {place, place}, std::move(text), place});
    return *this;
  }
  const std::vector<Edit>& Edits() const { return edits_; }
  std::vector<Edit>& Edits() { return edits_; }

 private:
  std::vector<Edit> edits_;
};

/// The text with all edits made, or none where two of them want the same part.
std::optional<Text> Repaired(TextView text, std::vector<Edit> edits);

}  // namespace tovalin::review
