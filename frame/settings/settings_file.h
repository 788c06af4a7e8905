#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovalin {

/// The directory for the user's configuration, as the environment gives it at
/// this moment. Raises 76 when it gives none.
std::filesystem::path ConfigurationDirectory();

/// Where files may lie that matter while processes run, the best place first: the user's
/// runtime directory, the state directory, the one for the configuration. Raises 76 when
/// there is not even that.
std::vector<std::filesystem::path> RuntimeDirectories();

/// Makes a directory for the user alone, and those above it. Raises 70, 75, 76 or 61.
void MakeDirectories(const std::filesystem::path& directory);

/// The file that `path` leads to, through links.
std::filesystem::path LinkedFile(const std::filesystem::path& path);

/// The right to replace the file at a path, held by one thread of one process at
/// a time, until the end of the scope. It is an operating system's lock on the file
/// `<path>.lock`, so that the end of a process, however it ends, gives it back.
class FileLock {
 public:
  /// How often it is tried, a millisecond apart. While others replace the file, and so take
  /// turns with the lock, the attempts do not count.
  static constexpr int kAttempts = 2000;

  /// Makes the directories of `path`. Raises 70 when another holds the lock at every
  /// attempt, else 70, 75, 76 or 61 as the system has it.
  explicit FileLock(const std::filesystem::path& path, int attempts = kAttempts);

  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

 private:
  static constexpr std::intptr_t kNone = -1;

  bool TryOnce(const std::filesystem::path& path);

  std::intptr_t handle_ = kNone;
};

/// The bytes of the file, or nothing when there is none. Raises 70, 75 or 76.
std::optional<std::string> ReadWhole(const std::filesystem::path& path);

/// Puts `bytes` in place of what the file held, for every reader at one moment,
/// and sees to it that they are on the disk, readable for the user alone. On failure
/// (70, 75, 76 or 61) the file stays as it was. The caller holds the FileLock of `path`,
/// which is no link.
void ReplaceWhole(const std::filesystem::path& path, std::string_view bytes);

/// Removes what a process left that ended in the middle of ReplaceWhole, unless somebody
/// holds the FileLock of `path` at this moment. Raises nothing.
void RemoveLeftover(const std::filesystem::path& path) noexcept;

}  // namespace tovalin
