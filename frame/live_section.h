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
  LiveSection(TextView application, TextView section, const std::vector<std::string>& keys);
  LiveSection(const LiveSection&) = delete;
  LiveSection& operator=(const LiveSection&) = delete;
  /// Tries once more to write what the last Put could not.
  ~LiveSection();

  /// Replaces the values of the keys `first`, `first` + 1 and so on; values beyond
  /// the last key are disregarded. Keys that were never Put have no entry. False
  /// when the section cannot be written: the values are kept then, and written with
  /// the next Put that succeeds. The way to the file is tried once a second at most.
  /// A file that others deleted comes back with the first Put after a second, or
  /// three later after a burst of them. A Put that changes nothing writes nothing.
  bool Put(std::size_t first, std::span<const std::string_view> utf8_values) noexcept;

 private:
  struct Entry {
    std::string key;  // as written, with its "="
    std::string value;
    bool was_put = false;
    std::size_t start = 0;  // of its line in the body
  };

  void Keep(std::size_t first, std::span<const std::string_view> utf8_values);
  void Join();
  std::size_t WriteLine(const Entry& entry, std::size_t place);
  char* Room(std::size_t place, std::size_t size);
  std::string_view Body() const { return std::string_view(buffer_).substr(0, body_size_); }
  bool IsTimeToLook();
  bool Write(bool look);
  bool Open();
  void MakeFile();

  Text application_;
  Text section_;
  std::string written_section_;  // as a heading has it
  std::vector<Entry> entries_;
  std::string buffer_;         // the body, their lines with blanks behind, and room
  std::size_t body_size_ = 0;  // a multiple of 8
  std::size_t joined_ = 0;     // the first of the entries that the body may not hold
  std::size_t same_ = 0;       // how many bytes of the body are as last written
  std::filesystem::path path_;
  std::optional<LiveFile> file_;
  bool unwritten_ = false;
  std::int64_t next_look_ = 0;  // when to look again whether the path leads to the file
  std::int64_t now_ = 0;        // when the clock was last asked
  int asked_ = 0;               // how often it told that time
  int unasked_ = 0;             // how many more Puts do not ask it
};

}  // namespace tovalin
