#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <utility>

namespace tovalin {

/// The bytes of an open file, read and changed in place while other threads and
/// processes do the same. Every change is seen by the others at once and outlives
/// the process. Places and sizes are multiples of 8: each 8 bytes are read and
/// written as one word, several words in no certain order.
class Mapping {
 public:
  enum class Access { kRead, kWrite };

  /// Nothing when the file cannot be opened so, or is empty.
  static std::optional<Mapping> Open(const std::filesystem::path& path, Access access);

  Mapping(Mapping&& other) noexcept
      : handle_(std::exchange(other.handle_, nullptr)),
        size_(other.size_),
        volume_(other.volume_),
        file_(other.file_) {}
  Mapping& operator=(Mapping&& other) noexcept {
    std::swap(handle_, other.handle_);
    std::swap(size_, other.size_);
    std::swap(volume_, other.volume_);
    std::swap(file_, other.file_);
    return *this;
  }
  ~Mapping();

  /// The size of the file when it was opened. Nobody may make it smaller since.
  std::size_t size() const { return size_; }

  /// Whether `path` still names this file.
  bool IsAt(const std::filesystem::path& path) const;

  /// The word at `place`. What the writer of the word wrote before it is seen.
  std::uint64_t Load(std::size_t place) const;
  void Store(std::size_t place, std::uint64_t word);

  /// Writes `desired` where `expected` stands, in one step; false when something
  /// else stands there.
  bool CompareExchange(std::size_t place, std::uint64_t expected, std::uint64_t desired);

  void Read(std::size_t place, char* bytes, std::size_t count) const;
  void Write(std::size_t place, std::string_view bytes);

 private:
  Mapping(void* handle, std::size_t size, std::uint64_t volume, std::uint64_t file)
      : handle_(handle), size_(size), volume_(volume), file_(file) {}

  void* handle_;  // the first byte in memory, or the system's handle of the file
  std::size_t size_;
  std::uint64_t volume_;  // these two tell the file from all others
  std::uint64_t file_;
};

/// Milliseconds since some moment, cheap to ask, right to a few hundredths of a second.
std::int64_t CoarseMilliseconds();

}  // namespace tovalin
