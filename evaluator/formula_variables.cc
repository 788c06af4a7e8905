#include "evaluator/formula_variables.h"

#include <algorithm>
#include <unordered_set>

namespace tovalin {

void DependencyIndex::Refresh() {
  const NamesVersion version = VersionOfNames(symbols_, nullptr);
  if (version == version_) return;
  const std::uint64_t vocabulary = VocabularyVersion(symbols_);
  const auto records = static_cast<std::size_t>(symbols_.variables->Count());
  const bool stray = mentions_.size() > 2 * records + 64;  // of records that are gone
  if (stray || vocabulary != vocabulary_version_) mentions_.clear();
  dependants_.clear();
  formula_count_ = 0;
  for (const Ref<Campo>& record : symbols_.variables->List().Items()) {
    if (!record->HasFormula()) continue;
    ++formula_count_;
    for (const Text& name : NamesOf(*record)) {
      const Campo* mentioned = symbols_.Find(name);
      if (!mentioned) continue;
      std::vector<Campo*>& readers = dependants_[mentioned];
      if (readers.empty() || readers.back() != record.get()) readers.push_back(record.get());
    }
  }
  version_ = version;
  vocabulary_version_ = vocabulary;
}

const std::vector<Text>& DependencyIndex::NamesOf(const Campo& record) {
  Mentions& mentions = mentions_[&record];
  if (mentions.formula == record.Formula()) return mentions.names;
  mentions.formula.clear();
  mentions.names.clear();
  const TokenList list = lexer_.Tokens(record.Formula());
  for (const Token& token : list.tokens) {
    if (token.kind != TokenKind::Name) continue;
    mentions.names.emplace_back(list.NameOf(token));
  }
  mentions.formula = record.Formula();  // once the names are complete
  return mentions.names;
}

std::vector<Campo*> DependencyIndex::Reached(const std::vector<Ref<Campo>>& roots) const {
  std::vector<Campo*> reached;
  std::unordered_set<const Campo*> seen;
  const auto visit = [&](const Campo* record) {
    const auto found = dependants_.find(record);
    if (found == dependants_.end()) return;
    for (Campo* reader : found->second)
      if (seen.insert(reader).second) reached.push_back(reader);
  };
  for (const Ref<Campo>& root : roots) visit(root.get());
  for (std::size_t next = 0; next < reached.size(); ++next) visit(reached[next]);
  return reached;
}

std::vector<Ref<Campo>> DependencyIndex::Dependants(const std::vector<Ref<Campo>>& roots) {
  Refresh();
  if (dependants_.empty()) return {};
  const std::vector<Campo*> reached = Reached(roots);
  std::unordered_map<const Campo*, std::size_t> indexes;
  for (std::size_t i = 0; i < reached.size(); ++i) indexes.emplace(reached[i], i);
  const auto for_each_reader = [&](std::size_t node, auto visit) {
    const auto found = dependants_.find(reached[node]);
    if (found == dependants_.end()) return;
    for (const Campo* reader : found->second)
      if (const auto index = indexes.find(reader); index != indexes.end()) visit(index->second);
  };
  std::vector<Ref<Campo>> order;
  std::vector<bool> is_placed(reached.size());
  for (std::size_t node : DependencyOrder(reached.size(), for_each_reader)) {
    order.push_back(Ref<Campo>::Share(reached[node]));
    is_placed[node] = true;
  }
  for (std::size_t node = 0; node < reached.size(); ++node)
    if (!is_placed[node]) order.push_back(Ref<Campo>::Share(reached[node]));
  return order;
}

}  // namespace tovalin
