#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <utility>

#include "tovalin/ref.h"

namespace tovalin::c_abi {

struct Slot;

/// Objects that may reach one another, and so are used by one thread at a time. A host
/// gets each object that it creates in a group of its own; two groups become one when
/// an object of one is handed to an object of the other. Groups that became one form a
/// tree, whose root stands for all of them.
class Group {
 public:
  ReferenceCount references;

 private:
  friend class GroupLock;

  Group& Root();
  /// Answers false when another thread is in the group.
  bool Enter();
  void Leave();
  bool DropPending();
  /// Of two roots that this thread is in.
  static void Merge(Group& left, Group& right);

  std::atomic<const void*> owner_{nullptr};  // the thread that is in the group
  std::size_t depth_ = 0;                    // how often it has entered
  std::size_t size_ = 1;                     // of the tree, which stays flat by it

  std::atomic<Group*> merged_into_{nullptr};  // set once; null for a root
  Ref<Group> into_;                           // the same, as its owner

  // What other threads gave back meanwhile, a list by Slot::next.
  std::mutex pending_mutex_;
  Slot* pending_ = nullptr;
  std::atomic<bool> has_pending_{false};
};

/// Holds a group for this thread, which may hold it already.
class GroupLock {
 public:
  /// Raises kObjectError when another thread holds it.
  explicit GroupLock(Ref<Group> group);
  ~GroupLock() { group_->Leave(); }
  GroupLock(const GroupLock&) = delete;
  GroupLock& operator=(const GroupLock&) = delete;

  const Ref<Group>& group() const { return group_; }
  /// Makes one group of two, since an object of `other` goes to one of this group.
  /// Raises kObjectError when another thread holds it.
  void Include(const Ref<Group>& other);

  /// Destroys what a slot holds as soon as its group allows it: now, or when the thread
  /// that is in it leaves.
  static void DropInGroup(Slot& slot) noexcept;

 private:
  Ref<Group> group_;
};

}  // namespace tovalin::c_abi
