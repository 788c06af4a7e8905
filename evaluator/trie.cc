#include "evaluator/trie.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "tovalin/error.h"

namespace tovalin {

void Trie::Clear() {
  nodes_.assign(1, Node());
  lengths_.clear();
}

bool Trie::Add(TextView pattern) {
  if (lengths_.size() >= std::numeric_limits<std::uint16_t>::max()) Raise(Failure::OutOfMemory);
  std::uint32_t node = 0;
  for (char16_t raw : pattern) {
    const char16_t c = FoldCase(raw);
    std::uint32_t child = Child(node, c);
    if (child == 0) {
      child = static_cast<std::uint32_t>(nodes_.size());
      nodes_.push_back({.character = c,
                        .next_sibling = nodes_[node].first_child,
                        .depth = nodes_[node].depth + 1});
      nodes_[node].first_child = child;
    }
    node = child;
  }
  if (nodes_[node].pattern != 0) return false;
  lengths_.push_back(static_cast<std::uint32_t>(pattern.size()));
  nodes_[node].pattern = static_cast<std::uint16_t>(lengths_.size());
  return true;
}

void Trie::Finish() {
  Renumber(LinkSuffixes());
  FillRows();
}
// Breadth first, so that a node's suffix is finished before the node is. Answers the
// nodes in that order.
std::vector<std::uint32_t> Trie::LinkSuffixes() {
  std::vector<std::uint32_t> queue(1);
  for (std::uint32_t child = nodes_[0].first_child; child; child = nodes_[child].next_sibling)
    queue.push_back(child);
  for (std::size_t next = 1; next < queue.size(); ++next) {
    const std::uint32_t parent = queue[next];
    for (std::uint32_t child = nodes_[parent].first_child; child;
         child = nodes_[child].next_sibling) {
      Node& node = nodes_[child];
      node.suffix = Next(nodes_[parent].suffix, node.character);
      if (node.pattern == 0) node.pattern = nodes_[node.suffix].pattern;
      queue.push_back(child);
    }
  }
  return queue;
}

std::uint32_t Trie::Child(std::uint32_t node, char16_t c) const {
  std::uint32_t child = nodes_[node].first_child;
  while (child && nodes_[child].character != c) child = nodes_[child].next_sibling;
  return child;
}

std::uint32_t Trie::Next(std::uint32_t node, char16_t c) const {
  for (;;) {
    const std::uint32_t child = Child(node, c);
    if (child != 0 || node == 0) return child;
    node = nodes_[node].suffix;
  }
}

// The characters that patterns are made of get a class each. Answers the number of
// classes.
std::size_t Trie::MakeClasses() {
  std::size_t classes = 1;
  class_.fill(0);
  for (const Node& node : nodes_)
    if (node.depth > 0 && node.character < kDirect && class_[node.character] == 0)
      class_[node.character] = static_cast<std::uint8_t>(classes++);
  for (std::size_t c = 0; c < kDirect; ++c)
    if (const char16_t folded = FoldCase(static_cast<char16_t>(c)); folded < kDirect)
      class_[c] = class_[folded];
  return classes;
}

// Numbers the nodes in the order given.
void Trie::Renumber(const std::vector<std::uint32_t>& order) {
  std::vector<std::uint32_t> number(order.size());
  for (std::uint32_t i = 0; i < order.size(); ++i) number[order[i]] = i;
  std::vector<Node> nodes;
  nodes.reserve(order.size());
  for (std::uint32_t old : order) {
    Node& node = nodes.emplace_back(nodes_[old]);
    for (std::uint32_t* link : {&node.first_child, &node.next_sibling, &node.suffix})
      *link = number[*link];
  }
  nodes_ = std::move(nodes);
}

// The first nodes, those nearest to the root, get a row with the next node for each
// class: that of its suffix, which is nearer, but where it has a child. A search is
// mostly there, and then takes half the steps.
void Trie::FillRows() {
  row_shift_ = static_cast<unsigned>(std::bit_width(MakeClasses() - 1));
  const std::size_t most =
      nodes_.size() > std::numeric_limits<std::uint16_t>::max() ? 0 : kMostInRows;
  rowed_ = std::min(nodes_.size(), most >> row_shift_);
  rows_.assign(rowed_ << row_shift_, 0);
  for (std::size_t node = 0; node < rowed_; ++node) {
    const auto row_of = [this](std::size_t number) {
      return rows_.data() + (number << row_shift_);
    };
    if (node > 0) std::copy_n(row_of(nodes_[node].suffix), row_of(1) - row_of(0), row_of(node));
    for (auto child = nodes_[node].first_child; child; child = nodes_[child].next_sibling)
      if (const char16_t c = nodes_[child].character; c < kDirect)
        row_of(node)[class_[c]] = static_cast<std::uint16_t>(child);
  }
}

Trie::Match Trie::Find(TextView text, std::size_t from) const {
  Match best;
  std::uint32_t node = 0;
  for (std::size_t i = from; i < text.size(); ++i) {
    const char16_t c = text[i];
    node = node < rowed_ && c < kDirect ? rows_[(std::size_t{node} << row_shift_) + class_[c]]
                                        : Next(node, FoldCase(c));
    const Node& here = nodes_[node];
    if (here.pattern == 0 && !best) continue;
    // What is being matched now starts too late to beat what was found.
    if (best && i + 1 - here.depth > best.start) break;
    if (here.pattern == 0) continue;
    const std::size_t pattern = here.pattern - 1u;
    const std::size_t length = lengths_[pattern];
    const std::size_t start = i + 1 - length;
    if (!best || start <= best.start) best = {pattern, start, length};
    // No longer pattern has the same beginning.
    if (here.first_child == 0 && length == here.depth) break;
  }
  return best;
}

}  // namespace tovalin
