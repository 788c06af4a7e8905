#include <windows.h>

#include <atomic>

#include "frame/format/pattern_memo.h"

namespace tovalin {
namespace {

// No thread_local: MinGW frees the variables of a thread before it runs their
// destructors. Of a slot of the system's own, the system calls back for each thread that
// ends. The number outlives the slot, so that what goes later finds no memo.
constinit std::atomic<DWORD> slot = FLS_OUT_OF_INDEXES;

void WINAPI Release(void* memo) { delete static_cast<PatternMemo*>(memo); }

bool IsInLibrary() {
  constexpr DWORD kHowToFind =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  HMODULE own = nullptr;
  GetModuleHandleExW(kHowToFind, reinterpret_cast<const wchar_t*>(&Release), &own);
  return own != GetModuleHandleW(nullptr);
}

struct SlotOwner {
  SlotOwner() { slot = FlsAlloc(&Release); }
  SlotOwner(const SlotOwner&) = delete;
  SlotOwner& operator=(const SlotOwner&) = delete;
  // A library that is unloaded must not be called back. Where a program ends, other
  // threads may still be using their memos.
  ~SlotOwner() {
    if (!IsInLibrary()) return;
    const DWORD own = slot.exchange(FLS_OUT_OF_INDEXES);
    if (own != FLS_OUT_OF_INDEXES) FlsFree(own);
  }
};

const SlotOwner slot_owner;

}  // namespace

PatternMemo* MemoOfThisThread() {
  const DWORD own = slot;
  if (own == FLS_OUT_OF_INDEXES) return nullptr;
  if (void* memo = FlsGetValue(own)) return static_cast<PatternMemo*>(memo);
  auto memo = std::make_unique<PatternMemo>();
  return FlsSetValue(own, memo.get()) ? memo.release() : nullptr;
}

}  // namespace tovalin
