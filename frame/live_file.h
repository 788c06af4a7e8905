#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "frame/mapping.h"

namespace tovalin {

// A settings file of which one section is rewritten in place. It starts with a
// head of 128 bytes, two comment lines for the reader of an ordinary ini file:
//
//     ; vivo: 0000002E, cupo: 000007C0, usos: 00000058 y      00000060, tema: 00000007<LF>
//     ; Tovalin escribe en vivo lo que sigue.       <LF>
//
// 0000002E at byte 8 is the edition, 000007C0 at 24 the size of a slot, a multiple
// of 8, the numbers at 40 and 56 say how many bytes of each slot are in use, the one
// at 72 how many the name of the section has: all in hexadecimal, each read and
// written as one word of 8 bytes.
// Two slots follow: each a heading line, blanks before its end making it a
// multiple of 8 long, the entries, and blanks up to the last byte, a LF.
//
// - One slot is the current one: the first when bit 1 (of value 2) of the edition
//   is 0, else the second. Its heading is [section], the other's
//   [section anterior]. That heading is for people: the edition decides.
// - A writer makes an even edition odd in one step, writes the slot that is not
//   the current one, swaps the headings, and adds 1: the slots change roles. So a
//   writer that dies leaves the values complete that were there before it.
// - A writer that finds an odd edition waits. When it stays the same for long its
//   writer is dead, and the next one adds 4 and goes on in its place.
// - The edition with "-" for its first digit marks a file that is about to be
//   replaced by a new one at the same path: it keeps its values, writers open the
//   path again. Marks are made, and dropped when the new file was never put in
//   place, under the FileLock alone. Who drops one adds 4 to an even edition: then
//   no edition comes back soon, and while it stays the same nobody has written.
// - A reader reads the current slot, then the edition again: what it read holds
//   while the edition, taken as even, has gone up by 2 at most.
//
// What follows the slots is ordinary ini text that never changes in place.

/// One such file, open.
class LiveFile {
 public:
  /// Nothing when the file cannot be opened or has another form.
  static std::optional<LiveFile> Open(const std::filesystem::path& path, Mapping::Access access);

  /// A new file with those entries of the live section and room for them to grow.
  /// `section` is a heading's name and `body` its lines, both as an ini file has them.
  static std::string Compose(std::string_view section, std::string_view body,
                             std::string_view rest);

  /// Whether a file of these bytes may be a live file.
  static bool HasHead(std::string_view bytes);

  /// The ordinary ini text in the bytes of a live file.
  std::string_view RestOf(std::string_view bytes) const;

  /// The name of the live section, as written in its heading.
  const std::string& section() const { return section_; }

  bool IsAt(const std::filesystem::path& path) const { return mapping_.IsAt(path); }

  bool HasRoom(std::string_view body) const;

  enum class Outcome { kWritten, kTooLong, kMoved };

  /// Writes the lines of the section, a multiple of 8 bytes long. The first `same`
  /// bytes are those of the last Write of this object.
  Outcome Write(std::string_view body, std::size_t same);

  /// Whether the last Write of this object succeeded and nobody has written since.
  bool HoldsLast() const { return mapping_.Load(kEditionPlace) == last_word_; }

  /// Takes nothing for granted that was written before: the next two Writes write
  /// every line, whatever became of the file.
  void Forget() { agreed_ = {}; }

  /// The lines of the section, all from one Write. Nothing when the file is
  /// being rewritten so often that no look at it succeeds.
  std::optional<std::string> Read() const;

  void MarkMoved();
  void DropMark();

 private:
  LiveFile(Mapping mapping, std::size_t slot_size)
      : mapping_(std::move(mapping)), slot_size_(slot_size) {}

  bool ReadSection();
  std::string ReadName(std::size_t slot, std::size_t size) const;
  std::size_t SlotStart(std::size_t slot) const;
  std::size_t Used(std::size_t slot) const;
  bool TryWrite(std::uint64_t word, std::uint32_t mine, std::string_view body);
  void Fill(std::size_t slot, std::string_view body, std::size_t agreed);

  static constexpr std::size_t kEditionPlace = 8;

  Mapping mapping_;
  std::size_t slot_size_;
  std::string section_;
  std::array<std::string, 2> headings_;  // of the current slot and of the other

  // The numbers last written and their digits, 0 before that, which are none.
  std::uint64_t last_word_ = 0;
  std::uint32_t last_edition_ = 0;
  std::array<std::uint64_t, 2> used_words_{};
  std::array<std::size_t, 2> used_{};

  // How many bytes of the last body each slot begins with for certain, as long as
  // the edition is the last one that was written here.
  std::array<std::size_t, 2> agreed_{};
};

}  // namespace tovalin
