#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>

#include "formatting/monto_escrito.h"

namespace {
std::size_t allocations = 0;
}  // namespace

// Not inlined: the compiler would take malloc and delete for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace tovalin {
namespace {

TEST(MontoEscrito, AllocatesItsResultOnly) {
  for (double value : {0.0, 21.0, 999'999'999'999.0, -454'454'454'454'454.25, 1e300}) {
    const std::size_t before = allocations;
    const Text words = MontoEscrito(value);
    const std::size_t used = allocations - before;
    EXPECT_LE(used, 1u) << value;
    EXPECT_LE(words.capacity(), std::max(words.size(), Text().capacity())) << value;
  }
}

}  // namespace
}  // namespace tovalin
