#pragma once

#include <array>
#include <memory>

#include "frame/format/pattern_cache.h"

namespace tovalin {

/// Patterns that were parsed lately. What it holds can be told from a pattern's text
/// alone, so nobody can observe it but by the time saved. It is bounded: a new pattern
/// takes the place of an older one.
class PatternMemo {
 public:
  /// The parsed form of a pattern, from here or remembered now.
  std::shared_ptr<const Pattern> Find(TextView text);

 private:
  struct Entry {
    Text text;
    std::shared_ptr<const Pattern> pattern;
  };

  std::array<Entry, 64> entries_;
};

/// The memo of the calling thread, gone with it, so that objects on different threads
/// share nothing through it. Null when there is none: a thread that ends may still
/// format when its memo is gone.
PatternMemo* MemoOfThisThread();

}  // namespace tovalin
