#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "frame/settings/mapping.h"
#include "tovalin/text.h"

namespace tovalin {

// The four texts of a trace lie in a file of fixed size for each process that evaluates,
// `<stem>.1`, `<stem>.2` and so on, which its process keeps mapped and locked. It stays when
// the process ends; the next process takes the first file that nobody has locked. In words
// of 8 bytes, all 0 at first:
//
//     state, time, 6 x 0, and two buffers of 4 heads, 3 slots of 16,336 bytes, one of 64
//
// - A head is 65,536 + the number of characters in the slot. Without the 65,536 the text is
//   the one in the settings, and the slot has its fingerprint, or nothing if it may be any.
// - The state counts by 2 with each write and is odd during one. Bit 1 (of value 2) tells the
//   current buffer. A writer makes the state odd in one step, fills the other buffer, and adds
//   1: a process that is killed leaves the current buffer whole. A reader's copy of the buffer
//   holds when the state, taken as even, has gone up by 2 at most since.
// - Threads, and processes that were forked, share a file: the odd state keeps them apart.
//
// `<stem>.latest`, which all processes map, has two words: the number of the file that was
// written last, and a bit for each text that the settings may hold, set and cleared under
// their FileLock.

constexpr std::size_t kLiveTexts = 4;

template <class T>
struct LiveEntry {
  T text;
  bool in_settings = false;  // the text is a fingerprint then
};
using LiveTexts = std::array<LiveEntry<Text>, kLiveTexts>;
/// To be written; those without a view stay as they are.
using LiveChanges = std::array<std::optional<LiveEntry<TextView>>, kLiveTexts>;

/// The file of this process, open for writing.
class LiveFile {
 public:
  /// The most characters that each slot can hold.
  static constexpr std::array<std::size_t, kLiveTexts> kLongest = {8168, 8168, 8168, 32};

  /// Takes a file that no process has. Null when none can be had.
  static std::shared_ptr<LiveFile> Claim(const std::filesystem::path& stem);
  /// As Claim makes it.
  LiveFile(std::filesystem::path stem, std::uint64_t number, Mapping latest, Mapping file);

  /// Whether other processes find the file.
  bool IsInPlace() const;

  /// Another number after each write, whoever writes.
  std::uint64_t State() const { return file_.Load(0); }

  /// Whether no other process has written since.
  bool IsLatest() const { return latest_.Load(0) == number_; }

  /// Writes texts, which are then the latest of all processes; in place of one that is too
  /// long, the empty one. The first `same` of them were
  /// the same in the last two writes, provided that the state is still `state`. Answers the
  /// new state, or nothing when another's write does not end.
  std::optional<std::uint64_t> Write(const LiveChanges& changes, std::size_t same,
                                     std::uint64_t state);

  /// Says in the file that it is in use at this moment.
  void SetTime();

  /// The texts that the settings may hold, of whatever process, a bit each.
  std::uint64_t LongTexts() const;
  void SetLongTexts(std::uint64_t bits);

 private:
  std::filesystem::path stem_;
  std::uint64_t number_;
  Mapping latest_;
  Mapping file_;
};

struct LiveReading {
  std::uint64_t time = 0;  // when the file was last said to be in use; 0 is never
  LiveTexts texts;
};

/// What was written last to the files of a stem. Raises 75 when that happens so often that no
/// look at it succeeds.
LiveReading ReadLatest(const std::filesystem::path& stem);

}  // namespace tovalin
