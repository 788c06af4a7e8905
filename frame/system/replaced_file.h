#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace tovalin {

/// A file to be written that appears under its name as a whole or not at all: it is
/// written beside that place and takes it when it is complete and on the disk. What
/// is there already stays until then, and keeps its permissions. A device, a pipe or
/// standard output is written at once.
class ReplacedFile {
 public:
  /// An empty path is standard output. Raises 61 on a full disk, 70 without the
  /// right to write and 75 otherwise, all with the path.
  explicit ReplacedFile(std::filesystem::path path);
  /// Without Commit the file is gone, and what was there before stays.
  ~ReplacedFile();
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  /// Raises 61 on a full disk and 75 for another failure.
  void Write(std::string_view bytes);
  /// Writes over bytes that were written before; Write goes on at the end. Raises the
  /// same, and 75 for a file that is no regular one.
  void WriteOver(std::int64_t offset, std::string_view bytes);
  /// Gives the file its name. Raises the same.
  void Commit();

 private:
  void Open();
  [[noreturn]] void RaiseUnwritable(int cause) const;

  std::filesystem::path path_;       // as the user wrote it
  std::filesystem::path target_;     // behind symbolic links
  std::filesystem::path temporary_;  // empty: written at once
  std::FILE* file_ = nullptr;
};

}  // namespace tovalin
