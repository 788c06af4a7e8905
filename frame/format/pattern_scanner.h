#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tovalin/text.h"

namespace tovalin {

/// One piece of a pattern: a text shown as it stands, or a single character
/// that may mean something.
struct PatternPiece {
  TextView text;
  bool quoted = false;

  /// The character, or 0 for a quoted piece, which never means anything.
  char16_t Symbol() const { return quoted ? u'\0' : text.front(); }
};

/// Takes a pattern apart at `\x` and "literal". A quote that is never closed
/// reaches to the end; a backslash at the end shows nothing.
class PatternScanner {
 public:
  explicit PatternScanner(TextView pattern) : rest_(pattern) {}

  std::optional<PatternPiece> Next();

  /// What has not been read yet.
  TextView Rest() const { return rest_; }
  void Skip(std::size_t length) { rest_.remove_prefix(length); }

 private:
  TextView Consume(std::size_t length);

  TextView rest_;
};

/// The parts of a pattern between the semicolons that are not quoted: at least
/// one, at most four; more are ignored.
std::vector<TextView> PatternSections(TextView pattern);

/// How often the first character of `text` (in either case) is repeated there.
std::size_t RunLength(TextView text);

/// Whether `text` starts with `start`, without regard to case.
bool StartsFolded(TextView text, TextView start);

}  // namespace tovalin
