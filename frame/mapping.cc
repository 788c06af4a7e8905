#include "frame/mapping.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace tovalin {
namespace {

using Word = std::uint64_t;

std::atomic_ref<Word> WordAt(void* start, std::size_t place) {
  return std::atomic_ref<Word>(*reinterpret_cast<Word*>(static_cast<char*>(start) + place));
}

}  // namespace

std::uint64_t Mapping::Load(std::size_t place) const {
  return WordAt(start_, place).load(std::memory_order_acquire);
}

void Mapping::Store(std::size_t place, std::uint64_t word) {
  WordAt(start_, place).store(word, std::memory_order_release);
}

bool Mapping::CompareExchange(std::size_t place, std::uint64_t expected, std::uint64_t desired) {
  return WordAt(start_, place).compare_exchange_strong(expected, desired);
}

void Mapping::Read(std::size_t place, void* bytes, std::size_t count) const {
  for (std::size_t i = 0; i < count; i += sizeof(Word)) {
    const Word word = WordAt(start_, place + i).load(std::memory_order_relaxed);
    std::memcpy(static_cast<char*>(bytes) + i, &word, std::min(count - i, sizeof word));
  }
}

void Mapping::Write(std::size_t place, const void* bytes, std::size_t count) {
  const auto* from = static_cast<const char*>(bytes);
  std::size_t i = 0;
  for (; i + sizeof(Word) <= count; i += sizeof(Word)) {
    Word word;
    std::memcpy(&word, from + i, sizeof word);
    WordAt(start_, place + i).store(word, std::memory_order_relaxed);
  }
  if (i == count) return;
  Word word = 0;
  std::memcpy(&word, from + i, count - i);
  WordAt(start_, place + i).store(word, std::memory_order_relaxed);
}

void Mapping::Copy(std::size_t from, std::size_t to, std::size_t count) {
  for (std::size_t i = 0; i < count; i += sizeof(Word))
    WordAt(start_, to + i)
        .store(WordAt(start_, from + i).load(std::memory_order_relaxed), std::memory_order_relaxed);
}

}  // namespace tovalin
