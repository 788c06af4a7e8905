#include "evaluator/dependencies.h"

#include <algorithm>
#include <unordered_set>

#include "evaluator/references.h"

namespace tovalin {

void DependencyIndex::Refresh() {
  const NamesStamp stamp = StampNames(symbols_, nullptr);
  if (stamp == stamp_) return;
  const std::uint64_t vocabulary = VocabularyStamp(symbols_);
  const auto records = static_cast<std::size_t>(symbols_.variables->Count());
  const bool stray = mentions_.size() > 2 * records + 64;  // of records that are gone
  if (stray || vocabulary != vocabulary_) mentions_.clear();
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
  stamp_ = stamp;
  vocabulary_ = vocabulary;
}

const std::vector<Text>& DependencyIndex::NamesOf(const Campo& record) {
  Mentions& mentions = mentions_[&record];
  if (mentions.formula == record.Formula()) return mentions.names;
  mentions.formula.clear();
  mentions.names.clear();
  const TokenList list = plans_.Tokens(record.Formula());
  for (const Token& token : list.tokens) {
    if (token.kind != TokenKind::Name) continue;
    mentions.names.emplace_back(NameOf(list, token));
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
  std::unordered_map<const Campo*, std::size_t> waits_for;
  for (const Campo* record : reached) waits_for[record] += 0;
  const auto each_reader = [&](const Campo* record, auto visit) {
    const auto found = dependants_.find(record);
    if (found == dependants_.end()) return;
    for (Campo* reader : found->second)
      if (const auto waiting = waits_for.find(reader); waiting != waits_for.end())
        visit(reader, waiting->second);
  };
  for (const Campo* record : reached)
    each_reader(record, [](Campo*, std::size_t& count) { ++count; });

  std::vector<Ref<Campo>> order;
  const auto place = [&](Campo* record) { order.push_back(Ref<Campo>::Share(record)); };
  for (Campo* record : reached)
    if (waits_for[record] == 0) place(record);
  for (std::size_t next = 0; next < order.size(); ++next)
    each_reader(order[next].get(), [&](Campo* reader, std::size_t& count) {
      if (count > 0 && --count == 0) place(reader);
    });
  for (Campo* record : reached)
    if (waits_for[record] > 0) place(record);
  return order;
}

}  // namespace tovalin
