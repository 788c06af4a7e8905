#include "review/cycles.h"

#include <unordered_set>

namespace tovalin::review {

Cycles::Node& Cycles::Open(const Campo& variable) {
  Node& node = nodes_[&variable];
  node.reads = FormulaVariablesIn(surroundings_, variable.Formula());
  return node;
}

// Depth first, on a stack of its own: chains of formulas may be long.
void Cycles::Follow(const Campo& variable) {
  std::vector<const Campo*> path{&variable};
  Open(variable);
  while (!path.empty()) {
    Node& node = nodes_[path.back()];
    if (node.leads || node.taken == node.reads.size()) {
      node.is_open = false;
      const bool leads = node.leads != nullptr;
      const Campo* ended = path.back();
      path.pop_back();
      if (leads && !path.empty()) nodes_[path.back()].leads = ended;
      continue;
    }
    const Campo* next = node.reads[node.taken++];
    const auto known = nodes_.find(next);
    if (known == nodes_.end()) {
      path.push_back(next);
      Open(*next);
    } else if (known->second.is_open || known->second.leads) {
      node.leads = next;
    }
  }
}

Text Cycles::PathFrom(const Campo& variable) {
  constexpr std::size_t kMostShown = 20;
  if (!nodes_.contains(&variable)) Follow(variable);
  Text path;
  std::unordered_set<const Campo*> seen;
  for (const Campo* next = &variable; next; next = nodes_[next].leads) {
    if (!path.empty()) path.append(u" → ");
    path.append(next->Name());
    if (!seen.insert(next).second) return path;
    if (seen.size() == kMostShown) return path.append(u" → …");
  }
  return {};
}

void CheckCycles(const Source& source, const Surroundings& surroundings, Findings& findings) {
  Cycles cycles(surroundings);
  std::unordered_set<const Campo*> told;
  for (std::uint32_t i = 0; i < source.Count() && !findings.IsFull(); ++i) {
    const Token& token = source.At(i);
    if (token.kind != TokenKind::Name || token.scope == Scope::None) continue;
    if (!token.record->HasFormula() || !told.insert(token.record).second) continue;
    const Text path = cycles.PathFrom(*token.record);
    if (!path.empty()) findings.Add(Rule::Cycle, source.SpanOf(i), {Text(source.Word(i)), path});
  }
}

}  // namespace tovalin::review
