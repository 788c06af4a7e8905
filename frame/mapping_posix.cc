#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>

#include <atomic>
#include <cstring>

#include "frame/descriptor_posix.h"
#include "frame/mapping.h"

namespace tovalin {
namespace {

std::atomic_ref<std::uint64_t> WordAt(void* start, std::size_t place) {
  return std::atomic_ref<std::uint64_t>(
      *reinterpret_cast<std::uint64_t*>(static_cast<char*>(start) + place));
}

}  // namespace

std::optional<Mapping> Mapping::Open(const std::filesystem::path& path, Access access) {
  const bool write = access == Access::kWrite;
  const Descriptor file(open(path.c_str(), (write ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.number(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode) || status.st_size == 0) return std::nullopt;
  const auto size = static_cast<std::size_t>(status.st_size);
  void* start =
      mmap(nullptr, size, write ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, file.number(), 0);
  if (start == MAP_FAILED) return std::nullopt;
  return Mapping(start, size, status.st_dev, status.st_ino);
}

Mapping::~Mapping() {
  if (handle_) munmap(handle_, size_);
}

bool Mapping::IsAt(const std::filesystem::path& path) const {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && status.st_dev == volume_ && status.st_ino == file_;
}

std::uint64_t Mapping::Load(std::size_t place) const {
  return WordAt(handle_, place).load(std::memory_order_acquire);
}

void Mapping::Store(std::size_t place, std::uint64_t word) {
  WordAt(handle_, place).store(word, std::memory_order_relaxed);
}

bool Mapping::CompareExchange(std::size_t place, std::uint64_t expected, std::uint64_t desired) {
  return WordAt(handle_, place).compare_exchange_strong(expected, desired);
}

void Mapping::Read(std::size_t place, char* bytes, std::size_t count) const {
  for (std::size_t i = 0; i < count; i += 8) {
    const std::uint64_t word = WordAt(handle_, place + i).load(std::memory_order_relaxed);
    std::memcpy(bytes + i, &word, 8);
  }
}

void Mapping::Write(std::size_t place, std::string_view bytes) {
  char* const start = static_cast<char*>(handle_) + place;
  for (std::size_t i = 0; i < bytes.size(); i += 8) {
    std::uint64_t word;
    std::memcpy(&word, bytes.data() + i, 8);
    WordAt(start, i).store(word, std::memory_order_relaxed);
  }
}

std::int64_t CoarseMilliseconds() {
#if defined(CLOCK_MONOTONIC_COARSE)
  constexpr clockid_t kClock = CLOCK_MONOTONIC_COARSE;
#else
  constexpr clockid_t kClock = CLOCK_MONOTONIC;
#endif
  struct timespec now {};
  clock_gettime(kClock, &now);
  return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace tovalin
