#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tovalin/api.h"
#include "tovalin/error.h"
#include "tovalin/text.h"

namespace tovalin {

/// The position of a cursor; the list adjusts it as items are inserted and removed.
struct CursorState {
  CursorState* next = nullptr;
  std::size_t position = 0;
  bool removed = false;  // the present item is gone; the next one stands in its place
  bool list_gone = false;
};

/// Add a cursor to those that a list adjusts, and remove it.
TOVALIN_API void AttachCursor(CursorState*& first, CursorState& cursor);
TOVALIN_API void DetachCursor(CursorState*& first, CursorState& cursor);

/// The list under Collection and Campos: items in order, some of them with a key
/// that is compared without regard to case. Positions count from 0 here.
///
/// Look-up by position and by key and work at the end take constant time;
/// insertion and removal elsewhere move the items behind. Without keys it is one
/// vector. With keys, a hash table leads from a key to its node, each item points
/// to its node, and the node holds the item's present position, so that a shift
/// only renumbers nodes and never hashes again.
template <class T>
class KeyedList {
 public:
  /// An iterator that stays valid while the list changes: an item inserted behind the
  /// present one is visited, one inserted before it is not, a removed one is not any
  /// more, none is visited twice. It is at its end when the list is gone.
  class Cursor {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;

    explicit Cursor(const KeyedList& list) : list_(&list) { AttachCursor(list.cursors_, state_); }
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;
    ~Cursor() {
      if (!state_.list_gone) DetachCursor(list_->cursors_, state_);
    }
    /// A copy of the item: it stays valid whatever happens to the list. Empty
    /// when the present item was removed.
    T operator*() const { return AtEnd() || state_.removed ? T() : list_->items_[state_.position]; }
    /// The key of the item, empty without one.
    TextView Key() const {
      return AtEnd() || state_.removed ? TextView() : list_->Key(state_.position);
    }
    /// Back to the first item.
    void Restart() {
      state_.position = 0;
      state_.removed = false;
    }
    Cursor& operator++() {
      if (!state_.removed) ++state_.position;
      state_.removed = false;
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const { return AtEnd(); }

   private:
    bool AtEnd() const {
      return state_.list_gone || (state_.position >= list_->items_.size() && !state_.removed);
    }

    const KeyedList* list_;
    CursorState state_;
  };

  static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

  KeyedList() = default;
  KeyedList(const KeyedList&) = delete;
  KeyedList& operator=(const KeyedList&) = delete;
  ~KeyedList() {
    for (CursorState* cursor = cursors_; cursor; cursor = cursor->next) cursor->list_gone = true;
  }

  std::size_t Size() const { return items_.size(); }
  T& operator[](std::size_t position) { return items_[position]; }
  const T& operator[](std::size_t position) const { return items_[position]; }
  std::vector<T>& Items() { return items_; }
  const std::vector<T>& Items() const { return items_; }
  bool HasKeys() const { return index_ != nullptr; }

  std::size_t Find(TextView key) const {
    if (!index_) return kNotFound;
    auto found = index_->positions.find(key);
    return found == index_->positions.end() ? kNotFound : found->second;
  }

  /// The key of the item at `position`, empty when it has none.
  TextView Key(std::size_t position) const {
    const Node* node = index_ ? index_->nodes[position] : nullptr;
    return node ? TextView(node->first) : TextView();
  }

  void Append(T item) {
    ReserveOne();
    items_.push_back(std::move(item));
    if (index_) index_->nodes.push_back(nullptr);
  }

  /// Appends all of `items`, or none when it throws.
  void AppendAll(const std::vector<T>& items) {
    std::vector<T> copies = items;
    items_.reserve(items_.size() + copies.size());
    if (index_) index_->nodes.resize(items_.size() + copies.size());
    items_.insert(items_.end(), std::make_move_iterator(copies.begin()),
                  std::make_move_iterator(copies.end()));
  }

  /// Raises 457 when the key is there already. Changes nothing when it throws.
  void Insert(std::size_t position, T item, const TextView* key) {
    if (key && Find(*key) != kNotFound) Raise(Failure::DuplicateKey);
    if (key && !index_) {
      auto index = std::make_unique<Index>();
      index->nodes.resize(items_.size());
      index_ = std::move(index);
    }
    ReserveOne();
    Node* node = key ? &*index_->positions.emplace(Text(*key), position).first : nullptr;
    const auto offset = static_cast<std::ptrdiff_t>(position);
    items_.insert(items_.begin() + offset, std::move(item));
    if (index_) {
      index_->nodes.insert(index_->nodes.begin() + offset, node);
      Renumber(position + 1);
    }
    for (CursorState* cursor = cursors_; cursor; cursor = cursor->next)
      if (position < cursor->position || (position == cursor->position && !cursor->removed))
        ++cursor->position;
  }

  void Remove(std::size_t position) {
    const auto offset = static_cast<std::ptrdiff_t>(position);
    // The item dies last: its destructor may lead back into this list.
    T item = std::move(items_[position]);
    items_.erase(items_.begin() + offset);
    if (index_) {
      Node* node = index_->nodes[position];
      index_->nodes.erase(index_->nodes.begin() + offset);
      if (node) index_->positions.erase(index_->positions.find(TextView(node->first)));
      Renumber(position);
    }
    for (CursorState* cursor = cursors_; cursor; cursor = cursor->next) {
      if (position < cursor->position)
        --cursor->position;
      else if (position == cursor->position)
        cursor->removed = true;
    }
  }

  Cursor begin() const { return Cursor(*this); }
  std::default_sentinel_t end() const { return {}; }

 private:
  using Positions = std::unordered_map<Text, std::size_t, FoldedHash, FoldedEqual>;
  using Node = typename Positions::value_type;
  struct Index {
    Positions positions;
    std::vector<Node*> nodes;  // one for each item, null without a key
  };

  // Memory for one more item, so that nothing throws once the list begins to change.
  void ReserveOne() {
    GrowFor(items_);
    if (index_) GrowFor(index_->nodes);
  }
  template <class U>
  static void GrowFor(std::vector<U>& list) {
    if (list.size() == list.capacity()) list.reserve(2 * list.size() + 1);
  }

  void Renumber(std::size_t from) {
    for (std::size_t i = from; i < index_->nodes.size(); ++i)
      if (index_->nodes[i]) index_->nodes[i]->second = i;
  }

  std::vector<T> items_;
  std::unique_ptr<Index> index_;
  mutable CursorState* cursors_ = nullptr;
};

}  // namespace tovalin
