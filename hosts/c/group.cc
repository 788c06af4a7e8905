#include "hosts/c/group.h"

#include "hosts/c/handle_table.h"
#include "tovalin/error.h"

namespace tovalin::c_abi {
namespace {

// The address is the name of the thread.
const void* ThisThread() {
  static thread_local const char name = 0;
  return &name;
}

constexpr char kMerged = 0;  // the owner of a group that is no root any more

[[noreturn]] void RaiseInUse() { RaiseOwn(u"Tovalin", u"El objeto está en uso en otro hilo"); }

}  // namespace

Group& Group::Root() {
  Group* root = this;
  while (Group* next = root->merged_into_.load(std::memory_order_acquire)) root = next;
  return *root;
}

bool Group::Enter() {
  const void* const self = ThisThread();
  for (;;) {
    Group& root = Root();
    const void* owner = root.owner_.load(std::memory_order_relaxed);
    if (owner == self) {
      ++root.depth_;
      return true;
    }
    owner = nullptr;
    if (root.owner_.compare_exchange_strong(owner, self)) {
      root.depth_ = 1;
      return true;
    }
    // Either it is in use, or it has stopped being the root.
    if (owner != &kMerged) return false;
  }
}

void Group::Leave() {
  for (;;) {
    Group& root = Root();
    if (root.depth_ > 1) {
      --root.depth_;
      return;
    }
    if (root.DropPending()) continue;  // which may have run code of the host
    root.depth_ = 0;
    root.owner_.store(nullptr);
    // What was given back in between: this thread sees it here, or the other one finds
    // the group free.
    if (!root.has_pending_.load() || !root.Enter()) return;
  }
}

bool Group::DropPending() {
  if (!has_pending_.load(std::memory_order_relaxed)) return false;
  Slot* slot = nullptr;
  {
    const std::lock_guard lock(pending_mutex_);
    slot = std::exchange(pending_, nullptr);
    has_pending_.store(false);
  }
  const bool any = slot != nullptr;
  while (slot) {
    Slot& gone = *slot;
    slot = gone.next;
    HandleTable::Instance().Destroy(gone);
  }
  return any;
}

void Group::Merge(Group& left, Group& right) {
  Group& into = left.size_ >= right.size_ ? left : right;
  Group& from = &into == &left ? right : left;
  into.depth_ += from.depth_;
  into.size_ += from.size_;
  from.into_ = Ref<Group>::Share(&into);
  const std::scoped_lock lock(into.pending_mutex_, from.pending_mutex_);
  from.merged_into_.store(&into);
  from.owner_.store(&kMerged);
  while (Slot* const slot = from.pending_) {
    from.pending_ = slot->next;
    slot->next = std::exchange(into.pending_, slot);
    into.has_pending_.store(true);
  }
}

GroupLock::GroupLock(Ref<Group> group) : group_(std::move(group)) {
  if (!group_->Enter()) RaiseInUse();
}

void GroupLock::Include(const Ref<Group>& other) {
  Group& root = group_->Root();
  if (&other->Root() == &root) return;
  if (!other->Enter()) RaiseInUse();
  Group::Merge(root, other->Root());
  group_->Leave();  // once for `other`, which is in the same tree now
}

void GroupLock::DropInGroup(Slot& slot) noexcept {
  const Ref<Group> group = slot.group;
  if (group->Enter()) {
    HandleTable::Instance().Destroy(slot);
    group->Leave();
    return;
  }
  for (bool listed = false; !listed;) {
    Group& root = group->Root();
    const std::lock_guard lock(root.pending_mutex_);
    if (root.merged_into_.load()) continue;
    slot.next = std::exchange(root.pending_, &slot);
    root.has_pending_.store(true);
    listed = true;
  }
  if (group->Enter()) group->Leave();
}

}  // namespace tovalin::c_abi
