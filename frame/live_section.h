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
  /// Opens nothing yet. `keys` are the names of all entries that the section may ever
  /// have, in any of its parts.
  LiveSection(TextView application, TextView section, std::size_t parts,
              std::vector<std::string> keys);
  LiveSection(const LiveSection&) = delete;
  LiveSection& operator=(const LiveSection&) = delete;
  /// Tries once more to write what the last Put could not.
  ~LiveSection();

  /// Replaces the entries of a part: whole lines, as an ini file has them, none at
  /// first. The next Put writes them.
  void Set(std::size_t part, std::string_view lines);

  /// Empties the last part and hands out the text of all, for new lines of the last
  /// part to be added at its end before the next Put: what changes with every Put is
  /// written once this way.
  std::string& RewriteLast();

  /// Writes what was Set. False when the section cannot be written: the lines are
  /// kept then, and written with the next Put that succeeds. The way to the file is
  /// tried once a second at most. A file that others deleted comes back with the
  /// first Put after a second, or three later after a burst of them. A Put that
  /// changes nothing writes nothing.
  bool Put() noexcept;

 private:
  void EndRewriting();
  void Pad();
  std::string_view Body() const { return body_; }
  bool IsTimeToLook();
  bool Write(bool look);
  bool Open();
  void MakeFile();

  Text application_;
  Text section_;
  std::string written_section_;  // as a heading has it
  std::vector<std::string> keys_;
  std::string body_;                 // the parts, and blanks up to a multiple of 8
  std::vector<std::size_t> starts_;  // of the parts in it, and the end of the last
  std::size_t same_ = 0;             // how many bytes of the body are as last written
  std::filesystem::path path_;
  std::optional<LiveFile> file_;
  bool unwritten_ = false;
  bool is_rewriting_ = false;
  std::int64_t next_look_ = 0;  // when to look again whether the path leads to the file
  std::int64_t now_ = 0;        // when the clock was last asked
  int asked_ = 0;               // how often it told that time
  int unasked_ = 0;             // how many more Puts do not ask it
};

}  // namespace tovalin
