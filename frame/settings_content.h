#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tovalin/text.h"

namespace tovalin {

/// What a settings file holds: its ini text and, in a live file, the live section.
struct SettingsContent {
  /// A heading's name and the lines under it, as an ini file has them.
  struct Section {
    std::string name;
    std::string body;
  };

  std::optional<Section> live;
  std::string rest;

  std::optional<Text> Find(TextView section, TextView key) const;
  void Set(TextView section, TextView key, TextView text);

  /// The bytes of a file with this content.
  std::string Bytes() const;
};

/// The content of the file at `path`, empty when there is none. Raises 70, 75 or 76.
SettingsContent ReadContent(const std::filesystem::path& path);

/// The same, for somebody who holds the FileLock and is about to replace the file:
/// a live section takes no more values then, its writers wait for the new file.
SettingsContent TakeContent(const std::filesystem::path& path);

}  // namespace tovalin
