#include "evaluator/element_search.h"

#include <bit>
#include <limits>

#include "evaluator/functions.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

bool IsLetter(char16_t c) { return FoldCase(c) >= u'a' && FoldCase(c) <= u'z'; }

// Word operators are searched with a blank on each side, so that a name that
// contains their letters is not split.
bool IsWord(TextView literal) { return IsLetter(literal.front()); }

std::optional<std::int32_t> PriorityOf(const Campo& record) {
  try {
    return ToLong(record.Value());
  } catch (const Error&) {
    return std::nullopt;
  }
}

TokenKind SeparatorKind(char16_t c) {
  return c == u'(' ? TokenKind::Open : c == u')' ? TokenKind::Close : TokenKind::Comma;
}

}  // namespace

const BuiltinFunction* FunctionOf(TextView function_name) {
  if (!function_name.empty() && function_name.back() == u'(') function_name.remove_suffix(1);
  return FindFunction(ToUpper(function_name));
}

Element OperatorElement(Campo& record) {
  Element element{.kind = TokenKind::Operator};
  const TextView literal = Trim(record.Name());
  element.operator_code = CodeOf(literal);
  element.is_word = !literal.empty() && IsWord(literal);
  element.priority = PriorityOf(record);
  element.record = &record;
  return element;
}

void ElementSearch::Build(const Symbols& symbols) {
  elements_.clear();
  words_.clear();
  word_lengths_ = 0;
  nodes_.assign(1, Node());
  for (const Ref<Campo>& record : symbols.operators->List().Items())
    AddOperator(OperatorElement(*record));
  for (TextView separators = u"(),"; !separators.empty(); separators.remove_prefix(1))
    Add(separators.substr(0, 1), {.kind = SeparatorKind(separators[0])});
  for (const Ref<Campo>& record : symbols.functions->List().Items())
    if (const TextView name = Trim(record->Name()); !name.empty())
      Add(name, {.kind = TokenKind::Function,
                 .is_opener = name.ends_with(u'('),
                 .record = record.get(),
                 .builtin = FunctionOf(name)});
  Renumber(LinkSuffixes());
  FillRows();
}

void ElementSearch::AddOperator(const Element& element) {
  const TextView literal = Trim(element.record->Name());
  if (literal.empty()) return;
  if (!element.is_word) return Add(literal, element);
  words_.push_back(element);
  word_lengths_ |= LengthBit(element.record->Name());
  Add(Text(u" ").append(literal).append(u" "), element);
}

// The first element of a spelling keeps it: operators win over functions.
void ElementSearch::Add(TextView pattern, Element element) {
  if (elements_.size() >= std::numeric_limits<std::uint16_t>::max()) Raise(Failure::OutOfMemory);
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
  if (nodes_[node].element != 0) return;
  element.length = static_cast<std::uint32_t>(pattern.size());
  elements_.push_back(element);
  nodes_[node].element = static_cast<std::uint16_t>(elements_.size());
}

// Breadth first, so that a node's suffix is finished before the node is. Answers the
// nodes in that order.
std::vector<std::uint32_t> ElementSearch::LinkSuffixes() {
  std::vector<std::uint32_t> queue(1);
  for (std::uint32_t child = nodes_[0].first_child; child; child = nodes_[child].next_sibling)
    queue.push_back(child);
  for (std::size_t next = 1; next < queue.size(); ++next) {
    const std::uint32_t parent = queue[next];
    for (std::uint32_t child = nodes_[parent].first_child; child;
         child = nodes_[child].next_sibling) {
      Node& node = nodes_[child];
      node.suffix = Step(nodes_[parent].suffix, node.character);
      if (node.element == 0) node.element = nodes_[node.suffix].element;
      queue.push_back(child);
    }
  }
  return queue;
}

std::uint32_t ElementSearch::Child(std::uint32_t node, char16_t c) const {
  std::uint32_t child = nodes_[node].first_child;
  while (child && nodes_[child].character != c) child = nodes_[child].next_sibling;
  return child;
}

std::uint32_t ElementSearch::Step(std::uint32_t node, char16_t c) const {
  for (;;) {
    const std::uint32_t child = Child(node, c);
    if (child != 0 || node == 0) return child;
    node = nodes_[node].suffix;
  }
}

// The characters that elements are made of get a class each. Answers the number of
// classes.
std::size_t ElementSearch::MakeClasses() {
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
void ElementSearch::Renumber(const std::vector<std::uint32_t>& order) {
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
void ElementSearch::FillRows() {
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

ElementSearch::Match ElementSearch::Find(TextView text, std::size_t from) const {
  Match best{nullptr, 0};
  std::uint32_t node = 0;
  for (std::size_t i = from; i < text.size(); ++i) {
    const char16_t c = text[i];
    node = node < rowed_ && c < kDirect ? rows_[(std::size_t{node} << row_shift_) + class_[c]]
                                        : Step(node, FoldCase(c));
    const Node& here = nodes_[node];
    if (here.element == 0 && !best.element) continue;
    // What is being matched now starts too late to beat what was found.
    if (best.element && i + 1 - here.depth > best.start) break;
    if (here.element == 0) continue;
    const Element& element = elements_[here.element - 1u];
    const std::size_t start = i + 1 - element.length;
    if (!best.element || start <= best.start) best = {&element, start};
    // No longer element has the same beginning.
    if (here.first_child == 0 && element.length == here.depth) break;
  }
  return best;
}

const Element* ElementSearch::FindWord(TextView name) const {
  if ((word_lengths_ & LengthBit(name)) == 0) return nullptr;
  for (const Element& word : words_)
    if (EqualFolded(word.record->Name(), name)) return &word;
  return nullptr;
}

}  // namespace tovalin
