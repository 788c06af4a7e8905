#pragma once

#include <filesystem>
#include <string>

#include "frame/settings/settings_file.h"
#include "tovalin/text.h"

namespace tovalin {

/// Changes of a settings file, which nobody else changes meanwhile.
class SettingsEdit {
 public:
  /// Takes the FileLock of the file that `path` leads to, and reads the file. Raises 70, 75,
  /// 76 or 61.
  explicit SettingsEdit(const std::filesystem::path& path, int attempts = FileLock::kAttempts);

  void Set(TextView section, TextView key, TextView text);
  void Remove(TextView section, TextView key);

  /// Puts what changed in place, at one moment; nothing when nothing did. Raises 70, 75, 76
  /// or 61, and the file is as it was then.
  void Write();

 private:
  std::filesystem::path path_;
  FileLock lock_;
  std::string bytes_;
  bool is_changed_;
};

/// The text of a settings file, none when there is no file. Removes what a killed process
/// left of it. Raises 70, 75 or 76.
std::string ReadSettings(const std::filesystem::path& path);

/// Takes out of a settings file what version 1.0 wrote there at every evaluation, and what
/// a killed process left beside it. Raises nothing, and reads no more than a few bytes
/// where there is nothing to do.
void TidySettings(const std::filesystem::path& path) noexcept;

}  // namespace tovalin
