#include "frame/format/pattern_memo.h"

namespace tovalin {
namespace {

thread_local constinit bool memo_is_gone = false;

struct ThreadMemo {
  ~ThreadMemo() { memo_is_gone = true; }
  PatternMemo memo;
};

}  // namespace

PatternMemo* MemoOfThisThread() {
  if (memo_is_gone) return nullptr;
  thread_local ThreadMemo own;
  return &own.memo;
}

}  // namespace tovalin
