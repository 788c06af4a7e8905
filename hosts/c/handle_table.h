#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "hosts/c/group.h"
#include "tovalin/tovalin_c.h"
#include "tovalin/variant.h"

namespace tovalin::c_abi {

// A handle is the number of a slot (its low 32 bits) and the generation of that slot
// (the high 32), which changes each time that the slot is emptied: a handle that was
// given back fits no slot any more. The state of a slot is one word,
//
//   generation (32 bits) | pins (10) | references of the host (22)
//
// so that threads agree on it without a lock. A slot with references lets itself be
// pinned; what it holds stays in place until the last pin and reference are gone.

/// A place for an object or an array that a host holds.
struct Slot {
  std::atomic<std::uint64_t> state{std::uint64_t{1} << 32};
  Variant value;  // an object or an array; of arrays, the host's own
  Ref<Group> group;
  Slot* next = nullptr;     // in a list of free slots, or of those to destroy
  std::uint32_t index = 0;  // its own
};

/// A slot that cannot be emptied while this lives.
class Pin {
 public:
  explicit Pin(Slot& slot) : slot_(&slot) {}
  Pin(Pin&& other) noexcept : slot_(std::exchange(other.slot_, nullptr)) {}
  Pin& operator=(Pin&&) = delete;
  ~Pin();

  Slot* operator->() const { return slot_; }

 private:
  Slot* slot_;
};

/// All handles of the process.
class HandleTable {
 public:
  static HandleTable& Instance();

  /// The handle of an object or an array, with one more reference for the host. An
  /// object has one handle; an array gets another one each time. Raises 7.
  tov_handle Give(const Variant& value, const Ref<Group>& group);

  /// The slot of a handle. Raises 91 for none and 424 for one that is not given out.
  Pin Find(tov_handle handle);
  /// The same for an object, or an array only: 13 for the other one.
  Pin FindObject(tov_handle handle);
  Pin FindArray(tov_handle handle);

  /// One reference of the host more, or less. They raise as Find does.
  void Retain(tov_handle handle);
  void Release(tov_handle handle);

  /// How many handles are given out.
  std::size_t Count() const { return count_.load(std::memory_order_relaxed); }

  /// Empties a slot without references, in its group. May run code of the host.
  void Destroy(Slot& slot) noexcept;

 private:
  friend class Pin;

  // Blocks of slots, each twice as long as the one before.
  static constexpr std::uint32_t kFirstBlock = 64;
  static constexpr std::size_t kBlocks = 26;

  Slot* SlotOf(tov_handle handle) const;
  Slot& AcquireSlot();
  void AddBlock();
  tov_handle GiveAgain(const Object* object);
  void Change(tov_handle handle, bool (*change)(std::uint64_t& state));
  void Unpin(Slot& slot) noexcept;
  void Retire(Slot& slot) noexcept;

  std::array<std::atomic<Slot*>, kBlocks> blocks_{};
  std::atomic<std::size_t> count_{0};

  std::mutex mutex_;  // of all below
  std::array<std::unique_ptr<Slot[]>, kBlocks> owned_blocks_;
  std::size_t block_count_ = 0;
  Slot* free_ = nullptr;
  std::unordered_map<const Object*, tov_handle> handles_;
};

}  // namespace tovalin::c_abi
