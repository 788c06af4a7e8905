#include "frame/settings/mapping.h"

#include <algorithm>
#include <cstring>

namespace tovalin {

using Word = std::uint64_t;

void Mapping::Read(std::size_t place, void* bytes, std::size_t count) const {
  for (std::size_t i = 0; i < count; i += sizeof(Word)) {
    const Word word = WordAt(place + i).load(std::memory_order_relaxed);
    std::memcpy(static_cast<char*>(bytes) + i, &word, std::min(count - i, sizeof word));
  }
}

void Mapping::Write(std::size_t place, const void* bytes, std::size_t count) {
  const auto* from = static_cast<const char*>(bytes);
  Word word = 0;
  for (; count >= sizeof word; count -= sizeof word) {
    std::memcpy(&word, from, sizeof word);
    WordAt(place).store(word, std::memory_order_relaxed);
    from += sizeof word;
    place += sizeof word;
  }
  if (count == 0) return;
  word = 0;
  std::memcpy(&word, from, count);
  WordAt(place).store(word, std::memory_order_relaxed);
}

void Mapping::Copy(std::size_t from, std::size_t to, std::size_t count) {
  for (std::size_t i = 0; i < count; i += sizeof(Word)) {
    const Word word = WordAt(from + i).load(std::memory_order_relaxed);
    WordAt(to + i).store(word, std::memory_order_relaxed);
  }
}

}  // namespace tovalin
