#include "hosts/c/handle_table.h"

#include <bit>
#include <new>

#include "tovalin/error.h"

namespace tovalin::c_abi {
namespace {

constexpr std::uint64_t kReference = 1;
constexpr std::uint64_t kPin = std::uint64_t{1} << 22;
constexpr std::uint64_t kReferences = kPin - 1;
constexpr std::uint64_t kPins = ((std::uint64_t{1} << 32) - 1) & ~kReferences;

constexpr std::uint32_t Generation(std::uint64_t state) {
  return static_cast<std::uint32_t>(state >> 32);
}
constexpr bool IsUnused(std::uint64_t state) { return (state & (kReferences | kPins)) == 0; }

// The state of the slot when it is empty: all handles up to now are stale.
constexpr std::uint64_t NextGeneration(std::uint64_t state) {
  std::uint32_t generation = Generation(state) + 1;
  if (generation == 0) generation = 1;
  return std::uint64_t{generation} << 32;
}

constexpr bool IsGiven(tov_handle handle, std::uint64_t state) {
  return Generation(state) == Generation(handle) && (state & kReferences) != 0;
}

bool AddPin(std::uint64_t& state) {
  if ((state & kPins) == kPins) return false;
  state += kPin;
  return true;
}
bool AddReference(std::uint64_t& state) {
  if ((state & kReferences) == kReferences) return false;
  state += kReference;
  return true;
}
bool DropReference(std::uint64_t& state) {
  state -= kReference;
  return true;
}

}  // namespace

HandleTable& HandleTable::Instance() {
  // Never destroyed: other threads, and objects of the host that end later, may still
  // give handles back.
  union Storage {
    Storage() : table() {}
    ~Storage() {}
    HandleTable table;
  };
  static Storage storage;
  return storage.table;
}

Slot* HandleTable::SlotOf(tov_handle handle) const {
  const auto index = static_cast<std::uint32_t>(handle);
  const auto block = static_cast<std::size_t>(std::bit_width(index / kFirstBlock + 1)) - 1;
  if (block >= kBlocks) return nullptr;
  Slot* const slots = blocks_[block].load(std::memory_order_acquire);
  return slots ? slots + (index - kFirstBlock * ((std::uint32_t{1} << block) - 1)) : nullptr;
}

// Changes the state of a slot that the host has references on.
void HandleTable::Change(tov_handle handle, bool (*change)(std::uint64_t& state)) {
  if (handle == 0) Raise(Failure::ObjectNotSet);
  Slot* const slot = SlotOf(handle);
  if (!slot) Raise(Failure::ObjectRequired);
  std::uint64_t state = slot->state.load(std::memory_order_acquire);
  std::uint64_t next = 0;
  do {
    if (!IsGiven(handle, state)) Raise(Failure::ObjectRequired);
    next = state;
    if (!change(next)) Raise(Failure::Overflow);
    if (IsUnused(next)) next = NextGeneration(next);
  } while (!slot->state.compare_exchange_weak(state, next, std::memory_order_acq_rel));
  if (Generation(next) != Generation(state)) Retire(*slot);
}

Pin HandleTable::Find(tov_handle handle) {
  Change(handle, AddPin);
  return Pin(*SlotOf(handle));
}

Pin HandleTable::FindObject(tov_handle handle) {
  Pin pin = Find(handle);
  if (!pin->value.Is(Subtype::Object)) Raise(Failure::TypeMismatch);
  return pin;
}

Pin HandleTable::FindArray(tov_handle handle) {
  Pin pin = Find(handle);
  if (!pin->value.Is(Subtype::Array)) Raise(Failure::TypeMismatch);
  return pin;
}

void HandleTable::Retain(tov_handle handle) { Change(handle, AddReference); }
void HandleTable::Release(tov_handle handle) { Change(handle, DropReference); }

void HandleTable::Unpin(Slot& slot) noexcept {
  std::uint64_t state = slot.state.load(std::memory_order_acquire);
  std::uint64_t next = 0;
  do {
    next = state - kPin;
    if (IsUnused(next)) next = NextGeneration(next);
  } while (!slot.state.compare_exchange_weak(state, next, std::memory_order_acq_rel));
  if (Generation(next) != Generation(state)) Retire(slot);
}

Pin::~Pin() {
  if (slot_) HandleTable::Instance().Unpin(*slot_);
}

tov_handle HandleTable::Give(const Variant& value, const Ref<Group>& group) {
  const Object* const object = value.Is(Subtype::Object) ? value.AsObject().get() : nullptr;
  const std::lock_guard lock(mutex_);
  if (object)
    if (const tov_handle handle = GiveAgain(object)) return handle;
  Slot& slot = AcquireSlot();
  const std::uint64_t state = slot.state.load(std::memory_order_relaxed);
  const tov_handle handle = (state & ~(kReferences | kPins)) | slot.index;
  try {
    if (object) handles_.insert_or_assign(object, handle);
  } catch (...) {
    slot.next = std::exchange(free_, &slot);
    throw;
  }
  slot.value = value.Value();
  slot.group = group;
  slot.state.store(state + kReference, std::memory_order_release);
  count_.fetch_add(1, std::memory_order_relaxed);
  return handle;
}

// The handle that an object has, with one more reference, or 0. One of which the last
// reference has gone, but not the last pin, is good again.
tov_handle HandleTable::GiveAgain(const Object* object) {
  const auto found = handles_.find(object);
  if (found == handles_.end()) return 0;
  const tov_handle handle = found->second;
  Slot& slot = *SlotOf(handle);
  std::uint64_t state = slot.state.load(std::memory_order_acquire);
  do {
    if (Generation(state) != Generation(handle)) return 0;
    if ((state & kReferences) == kReferences) Raise(Failure::Overflow);
  } while (!slot.state.compare_exchange_weak(state, state + kReference, std::memory_order_acq_rel));
  return handle;
}

Slot& HandleTable::AcquireSlot() {
  if (!free_) AddBlock();
  return *std::exchange(free_, free_->next);
}

void HandleTable::AddBlock() {
  if (block_count_ == kBlocks) throw std::bad_alloc();
  const std::uint32_t size = kFirstBlock << block_count_;
  std::unique_ptr<Slot[]> slots = std::make_unique<Slot[]>(size);
  const std::uint32_t first = size - kFirstBlock;
  for (std::uint32_t i = size; i-- > 0;) {
    slots[i].index = first + i;
    slots[i].next = std::exchange(free_, &slots[i]);
  }
  blocks_[block_count_].store(slots.get(), std::memory_order_release);
  owned_blocks_[block_count_++] = std::move(slots);
}

// Nobody finds the slot any more, but through the object that it still holds.
void HandleTable::Retire(Slot& slot) noexcept {
  count_.fetch_sub(1, std::memory_order_relaxed);
  if (slot.value.Is(Subtype::Object)) {
    const std::lock_guard lock(mutex_);
    const auto found = handles_.find(slot.value.AsObject().get());
    // Meanwhile the object may have got another slot.
    if (found != handles_.end() && SlotOf(found->second) == &slot) handles_.erase(found);
  }
  GroupLock::DropInGroup(slot);
}

void HandleTable::Destroy(Slot& slot) noexcept {
  Variant value = std::move(slot.value);
  const Ref<Group> group = std::move(slot.group);
  {
    const std::lock_guard lock(mutex_);
    slot.next = std::exchange(free_, &slot);
  }
  value = Variant();
}

}  // namespace tovalin::c_abi
