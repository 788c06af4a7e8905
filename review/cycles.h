#pragma once

#include <unordered_map>

#include "review/findings.h"

namespace tovalin::review {

/// Finds formula variables that lead to one that reaches itself.
class Cycles {
 public:
  explicit Cycles(const Surroundings& surroundings) : surroundings_(surroundings) {}

  /// The names from a formula variable on, to the first that stands there twice:
  /// "A → B → A". Empty when it leads to none.
  Text PathFrom(const Campo& variable);

 private:
  struct Node {
    std::vector<const Campo*> reads;
    std::size_t taken = 0;         // how many of them were followed
    const Campo* leads = nullptr;  // the one that leads to a cycle
    bool is_open = true;           // not all were followed yet
  };

  void Follow(const Campo& variable);
  Node& Open(const Campo& variable);

  const Surroundings& surroundings_;
  std::unordered_map<const Campo*, Node> nodes_;
};

/// Tells of the formula variables in a formula that lead to a cycle, each once.
void CheckCycles(const Source& source, const Surroundings& surroundings, Findings& findings);

}  // namespace tovalin::review
