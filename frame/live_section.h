#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/live_file.h"
#include "tovalin/text.h"

namespace tovalin {

/// One section of an application's settings file whose values are written often,
/// each time in place: other processes see them at once, and the end of the
/// process leaves them behind. DefaultSettings()->Get finds them. An application
/// has one live section; several objects, in any processes, may write it at once:
/// the values in the file are always all those of one object.
class LiveSection {
 public:
  /// Opens nothing yet.
  LiveSection(TextView application, TextView section, std::vector<std::string> keys);
  LiveSection(const LiveSection&) = delete;
  LiveSection& operator=(const LiveSection&) = delete;
  /// Tries once more to write what the last Put could not.
  ~LiveSection();

  /// Replaces the values of the keys `first`, `first` + 1 and so on; values beyond
  /// the last key are disregarded. Keys that were never Put have no entry. False
  /// when the section cannot be written: the values are kept then, and written with
  /// the next Put that succeeds. The way to the file is tried once a second at most.
  bool Put(std::size_t first, std::span<const std::string_view> utf8_values) noexcept;

 private:
  void Keep(std::size_t first, std::span<const std::string_view> utf8_values);
  void JoinLines(std::size_t first);
  bool Write(std::int64_t now);
  bool Open(std::int64_t now);
  void MakeFile();

  Text application_;
  Text section_;
  std::string written_section_;            // as a heading has it
  std::vector<std::string> keys_;          // UTF-8
  std::vector<std::string> written_keys_;  // each with its "="
  std::vector<std::string> lines_;         // one for each key, empty before its first Put
  std::string body_;                       // the lines, padded
  bool joined_ = true;                     // whether the body holds the lines as they were
  std::filesystem::path path_;
  std::optional<LiveFile> file_;
  std::int64_t next_look_ = 0;  // when to look again whether the path leads to the file
  bool unwritten_ = false;
};

}  // namespace tovalin
