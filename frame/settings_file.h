#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tovalin {

/// The directory for the user's configuration, as the environment gives it at
/// this moment. Raises 76 when it gives none.
std::filesystem::path ConfigurationDirectory();

/// The right to replace the file at a path, held by one thread of one process at
/// a time, until the end of the scope. It is an operating system's lock on the file
/// `<path>.lock`, so that the end of a process, however it ends, gives it back.
class FileLock {
 public:
  /// Waits as long as another holds the lock. Makes the directories of `path`.
  /// Raises 70, 75, 76 or 61.
  explicit FileLock(const std::filesystem::path& path);

  /// The same, but gives up after `patience` and answers nothing.
  static std::optional<FileLock> Try(const std::filesystem::path& path,
                                     std::chrono::milliseconds patience);

  FileLock(FileLock&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}
  FileLock& operator=(FileLock&&) = delete;
  ~FileLock();

 private:
  static constexpr std::intptr_t kNone = -1;
  explicit FileLock(std::intptr_t handle) : handle_(handle) {}

  std::intptr_t handle_;
};

/// The bytes of the file, or nothing when there is none. Raises 70, 75 or 76.
std::optional<std::string> ReadWhole(const std::filesystem::path& path);

/// Puts `bytes` in place of what the file held, for every reader at one moment,
/// and sees to it that they are on the disk. On failure (70, 75, 76 or 61) the
/// file stays as it was. The caller holds the FileLock of `path`.
void ReplaceWhole(const std::filesystem::path& path, std::string_view bytes);

}  // namespace tovalin
