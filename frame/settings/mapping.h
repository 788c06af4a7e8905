#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

namespace tovalin {

/// The first bytes of a file in memory, read and changed while other threads and
/// processes do the same. Every change is seen by the others at once and outlives
/// the process. Each 8 bytes are read and written as one word, several words in no
/// certain order. Places are multiples of 8.
///
/// A process ends when it touches the memory of a file that has been made shorter, so
/// only files are mapped that Make has made, which nobody has leave to write to.
class Mapping {
 public:
  /// Maps a file for reading. Nothing when it cannot be opened or is shorter than `size`.
  static std::optional<Mapping> Open(const std::filesystem::path& path, std::size_t size);

  /// Maps a file for writing; made, or made longer with zeros, when need be. Its space on
  /// the disk is reserved, and it is left readable for the user alone and writable for
  /// nobody. Nothing when that cannot be done.
  static std::optional<Mapping> Make(const std::filesystem::path& path, std::size_t size);

  Mapping(Mapping&& other) noexcept
      : start_(std::exchange(other.start_, nullptr)),
        size_(other.size_),
        handle_(std::exchange(other.handle_, kNone)),
        volume_(other.volume_),
        file_(other.file_) {}
  Mapping& operator=(Mapping&&) = delete;
  ~Mapping();

  /// Whether nobody else has the file's lock, which is this object's then as long as it lives,
  /// and that of processes forked meanwhile. Only where the file was opened by Make.
  bool Lock();

  /// Whether `path` still names this file.
  bool IsAt(const std::filesystem::path& path) const;

  /// The word at `place`. What the writer of the word wrote before it is seen.
  std::uint64_t Load(std::size_t place) const {
    return WordAt(place).load(std::memory_order_acquire);
  }
  /// Whoever sees this word sees what was written before it.
  void Store(std::size_t place, std::uint64_t word) {
    WordAt(place).store(word, std::memory_order_release);
  }
  /// Writes `desired` where `expected` stands, in one step; false when something else
  /// stands there.
  bool CompareExchange(std::size_t place, std::uint64_t expected, std::uint64_t desired) {
    return WordAt(place).compare_exchange_strong(expected, desired);
  }

  /// Any number of bytes; the rest of the last word is written as zeros.
  void Read(std::size_t place, void* bytes, std::size_t count) const;
  void Write(std::size_t place, const void* bytes, std::size_t count);
  /// Whole words, as many as `count` bytes need.
  void Copy(std::size_t from, std::size_t to, std::size_t count);

 private:
  static constexpr std::intptr_t kNone = -1;

  Mapping(void* start, std::size_t size, std::intptr_t handle, std::uint64_t volume,
          std::uint64_t file)
      : start_(start), size_(size), handle_(handle), volume_(volume), file_(file) {}

  std::atomic_ref<std::uint64_t> WordAt(std::size_t place) const {
    return std::atomic_ref(*reinterpret_cast<std::uint64_t*>(static_cast<char*>(start_) + place));
  }

  void* start_;
  std::size_t size_;
  std::intptr_t handle_;  // the system's handle of the file, which holds the lock
  std::uint64_t volume_;  // these two tell the file from all others
  std::uint64_t file_;
};

/// Milliseconds since some moment, cheap to ask, right to a few hundredths of a second.
std::int64_t CoarseMilliseconds();

}  // namespace tovalin
