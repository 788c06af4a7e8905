#include "review/nearest.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace tovalin::review {
namespace {

// Longer names are not compared, nor more of them than a person would wait for.
constexpr std::size_t kLongest = 64;
constexpr std::size_t kMostNames = 20000;

char16_t WithoutAccent(char16_t c) {
  constexpr TextView kAccented = u"áéíóúüÁÉÍÓÚÜ";
  constexpr TextView kPlain = u"aeiouuaeiouu";
  const std::size_t place = kAccented.find(c);
  return FoldCase(place == TextView::npos ? c : kPlain[place]);
}

Text Plain(TextView name) {
  Text plain(name);
  std::ranges::transform(plain, plain.begin(), WithoutAccent);
  return plain;
}

// How many letters may differ.
std::size_t Allowed(std::size_t length) {
  if (length < 3) return 0;
  if (length < 6) return 1;
  return length < 12 ? 2 : 3;
}

// How many letters were put in, left out, changed, or changed places.
std::size_t Distance(TextView left, TextView right) {
  std::array<std::array<std::size_t, kLongest + 2>, 3> rows{};
  std::iota(rows[1].begin(), rows[1].end(), std::size_t{0});
  for (std::size_t i = 1; i <= left.size(); ++i) {
    auto& row = rows[(i + 1) % 3];
    const auto& above = rows[i % 3];
    const auto& before = rows[(i + 2) % 3];
    row[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const bool is_same = left[i - 1] == right[j - 1];
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + !is_same});
      const bool is_swapped =
          i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (is_swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
  }
  return rows[(left.size() + 1) % 3][right.size()];
}

class Search {
 public:
  explicit Search(TextView name) : name_(Plain(name)), best_(Allowed(name.size()) + 1) {}

  void Offer(const Campos& table, bool are_functions) {
    if (name_.size() > kLongest || name_.size() < 2) return;
    for (const Ref<Campo>& record : table.List().Items()) {
      if (++compared_ > kMostNames) return;
      TextView name = Trim(record->Name());
      if (are_functions && name.ends_with(u'(')) name.remove_suffix(1);
      Compare(name, record->Name());
    }
  }
  Text Found() { return std::move(found_); }

 private:
  void Compare(TextView name, const Text& spelling) {
    const std::size_t shorter = std::min(name.size(), name_.size());
    const std::size_t longer = std::max(name.size(), name_.size());
    if (longer > kLongest || longer - shorter >= best_) return;
    const std::size_t distance = Distance(name_, Plain(name));
    if (distance >= best_) return;
    best_ = distance;
    found_ = spelling;
  }

  Text name_;
  std::size_t best_;
  std::size_t compared_ = 0;
  Text found_;
};

}  // namespace

Text NearestName(const Surroundings& surroundings, TextView name) {
  Search search(name);
  if (surroundings.locals) search.Offer(*surroundings.locals, false);
  search.Offer(*surroundings.symbols.variables, false);
  search.Offer(*surroundings.symbols.constants, false);
  return search.Found();
}

Text NearestFunction(const Surroundings& surroundings, TextView name) {
  Search search(name);
  search.Offer(*surroundings.symbols.functions, true);
  return Text(Trim(search.Found()));
}

}  // namespace tovalin::review
