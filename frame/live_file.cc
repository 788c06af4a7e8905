#include "frame/live_file.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <chrono>
#include <thread>
#include <utility>

namespace tovalin {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr std::size_t kHeadSize = 128;
constexpr std::size_t kSlotSizePlace = 24;
constexpr std::array<std::size_t, 2> kUsedPlace = {40, 56};
constexpr std::size_t kNameSizePlace = 72;
constexpr std::array<std::string_view, 5> kLabels = {"; vivo: ", ", cupo: ", ", usos: ", " y      ",
                                                     ", tema: "};
constexpr std::string_view kExplanation = "\n; Tovalin escribe en vivo lo que sigue.";
constexpr std::string_view kFormerSuffix = " anterior";
constexpr std::string_view kSlotEnd = "       \n";
constexpr std::size_t kSmallestSlot = 1984;  // head and slots then fill one page
constexpr std::size_t kSlotStep = 2048;
constexpr std::uint32_t kBeingWritten = 1;
constexpr int kMostTurns = 100'000;  // only a file that refuses every change needs so many

using Digits = std::array<char, 8>;

// `word` with its bytes, or those of its number, the other way round.
constexpr std::uint64_t Reversed(std::uint64_t word) {
  if constexpr (std::endian::native == std::endian::big) return word;
  word = word << 32 | word >> 32;
  word = (word & 0x0000FFFF0000FFFF) << 16 | (word >> 16 & 0x0000FFFF0000FFFF);
  return (word & 0x00FF00FF00FF00FF) << 8 | (word >> 8 & 0x00FF00FF00FF00FF);
}

// Eight digits at once, since they are most of the work of a short Write.
constexpr std::uint64_t ToWord(std::uint32_t number) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  std::uint64_t digits = number;
  digits = (digits << 16 | digits) & 0x0000FFFF0000FFFF;
  digits = (digits << 8 | digits) & 0x00FF00FF00FF00FF;
  digits = (digits << 4 | digits) & 0x0F0F0F0F0F0F0F0F;
  const std::uint64_t letters = (digits + 6 * kOnes) >> 4 & kOnes;
  return Reversed(digits + '0' * kOnes + letters * ('A' - '9' - 1));
}

constexpr std::optional<std::uint32_t> FromWord(std::uint64_t word) {
  std::uint64_t digits = Reversed(word);
  digits = (digits & 0x0F0F0F0F0F0F0F0F) + 9 * (digits >> 6 & 0x0101010101010101);
  digits = (digits | digits >> 4) & 0x00FF00FF00FF00FF;
  digits = (digits | digits >> 8) & 0x0000FFFF0000FFFF;
  const auto number = static_cast<std::uint32_t>(digits | digits >> 16);
  if (ToWord(number) != word) return std::nullopt;
  return number;
}

constexpr char kMovedMark = '-';

std::uint64_t WithFirstDigit(std::uint64_t word, char digit) {
  auto digits = std::bit_cast<Digits>(word);
  digits[0] = digit;
  return std::bit_cast<std::uint64_t>(digits);
}

bool IsMarked(std::uint64_t word) { return std::bit_cast<Digits>(word)[0] == kMovedMark; }

// The number of an edition, marked as moved or not.
std::optional<std::uint32_t> EditionOf(std::uint64_t word) {
  return FromWord(IsMarked(word) ? WithFirstDigit(word, '0') : word);
}

std::size_t CurrentSlot(std::uint32_t edition) { return edition >> 1 & 1; }

std::size_t RoundUp(std::size_t size, std::size_t step) { return (size + step - 1) / step * step; }

std::size_t HeadingSize(std::size_t name_size) {
  return RoundUp(name_size + kFormerSuffix.size() + 3, 8);
}

std::string Heading(std::string_view section, std::string_view suffix) {
  std::string line(1, '[');
  line.append(section).append(suffix) += ']';
  line.resize(HeadingSize(section.size()), ' ');
  line.back() = '\n';
  return line;
}

std::string Head(const std::array<std::size_t, kLabels.size()>& numbers) {
  std::string head;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const auto digits = std::bit_cast<Digits>(ToWord(static_cast<std::uint32_t>(numbers[i])));
    head += kLabels[i];
    head.append(digits.data(), digits.size());
  }
  head += kExplanation;
  head.resize(kHeadSize, ' ');
  head.back() = '\n';
  return head;
}

// Tells a writer at work from a dead one by the time an edition stays the same.
class Patience {
 public:
  // A slow disk or a busy machine writes 50 MB in a second at least.
  explicit Patience(std::size_t slot_size)
      : limit_(microseconds(100'000) + microseconds(slot_size / 50)) {}

  // Waits a moment; false when `edition` has been the same for too long.
  bool Wait(std::uint32_t edition) {
    if (edition != edition_ || turns_ == 0) {
      edition_ = edition;
      turns_ = 0;
      start_ = steady_clock::now();
    }
    if (++turns_ < kBriskTurns) return true;
    if (steady_clock::now() - start_ > limit_) return false;
    std::this_thread::sleep_for(microseconds(20));
    return true;
  }

 private:
  static constexpr int kBriskTurns = 200;

  steady_clock::duration limit_;
  steady_clock::time_point start_;
  std::uint32_t edition_ = 0;
  int turns_ = 0;
};

}  // namespace

bool LiveFile::HasHead(std::string_view bytes) {
  return bytes.size() >= kHeadSize && bytes.starts_with(kLabels[0]);
}

std::optional<LiveFile> LiveFile::Open(const std::filesystem::path& path, Mapping::Access access) {
  std::optional<Mapping> mapping = Mapping::Open(path, access);
  if (!mapping || mapping->size() < kHeadSize) return std::nullopt;
  for (std::size_t i = 0; i < kLabels.size(); ++i) {
    Digits label;
    mapping->Read(16 * i, label.data(), label.size());
    if (std::string_view(label.data(), label.size()) != kLabels[i]) return std::nullopt;
  }
  const std::size_t slot_size = FromWord(mapping->Load(kSlotSizePlace)).value_or(0);
  const std::size_t room = mapping->size() - kHeadSize;
  if (slot_size == 0 || slot_size % 8 != 0 || room < 2 * slot_size) return std::nullopt;
  LiveFile file(std::move(*mapping), slot_size);
  if (!file.ReadSection()) return std::nullopt;
  return file;
}

// Only what no writer ever changes is looked at, since one may be at work.
bool LiveFile::ReadSection() {
  const std::size_t size = FromWord(mapping_.Load(kNameSizePlace)).value_or(0xFFFFFFFF);
  if (size > slot_size_ || HeadingSize(size) + 8 > slot_size_) return false;
  section_ = ReadName(0, size);
  if (!section_.starts_with('[') || ReadName(1, size) != section_) return false;
  section_.erase(0, 1);
  headings_ = {Heading(section_, ""), Heading(section_, kFormerSuffix)};
  for (std::size_t slot = 0; slot < 2; ++slot) {
    Digits end;
    mapping_.Read(SlotStart(slot) + slot_size_ - 8, end.data(), end.size());
    if (std::string_view(end.data(), end.size()) != kSlotEnd) return false;
  }
  return EditionOf(mapping_.Load(kEditionPlace)).has_value();
}

// The opening bracket of a slot's heading and the name of `size` bytes after it.
std::string LiveFile::ReadName(std::size_t slot, std::size_t size) const {
  std::string bytes(RoundUp(size + 1, 8), '\0');
  mapping_.Read(SlotStart(slot), bytes.data(), bytes.size());
  bytes.resize(size + 1);
  return bytes;
}

std::string LiveFile::Compose(std::string_view section, std::string_view body,
                              std::string_view rest) {
  const std::size_t used = HeadingSize(section.size()) + RoundUp(body.size(), 8);
  const std::size_t wanted = std::max(used + used / 2 + 8, kSmallestSlot) - kSmallestSlot;
  const std::size_t slot_size = kSmallestSlot + RoundUp(wanted, kSlotStep);
  std::string bytes = Head({0, slot_size, used, HeadingSize(section.size()), section.size()});
  bytes.reserve(kHeadSize + 2 * slot_size + rest.size());
  bytes += Heading(section, "");
  bytes += body;
  bytes.resize(kHeadSize + slot_size - kSlotEnd.size(), ' ');
  bytes += kSlotEnd;
  bytes += Heading(section, kFormerSuffix);
  bytes.resize(kHeadSize + 2 * slot_size - kSlotEnd.size(), ' ');
  bytes += kSlotEnd;
  bytes += rest;
  return bytes;
}

std::string_view LiveFile::RestOf(std::string_view bytes) const {
  return bytes.substr(std::min(bytes.size(), kHeadSize + 2 * slot_size_));
}

std::size_t LiveFile::SlotStart(std::size_t slot) const { return kHeadSize + slot * slot_size_; }

std::size_t LiveFile::Used(std::size_t slot) const {
  const std::size_t most = slot_size_ - kSlotEnd.size();
  const std::size_t used = FromWord(mapping_.Load(kUsedPlace[slot])).value_or(0xFFFFFFFF);
  return std::clamp(used / 8 * 8, headings_[0].size(), std::max(most, headings_[0].size()));
}

bool LiveFile::HasRoom(std::string_view body) const {
  return headings_[0].size() + body.size() + kSlotEnd.size() <= slot_size_;
}

LiveFile::Outcome LiveFile::Write(std::string_view body, std::size_t same) {
  for (std::size_t& agreed : agreed_) agreed = std::min(agreed, same);
  if (!HasRoom(body)) return Outcome::kTooLong;
  std::uint64_t word = mapping_.Load(kEditionPlace);
  // Most often nobody else wrote since: then the digits need no reading.
  if (word == last_word_ && TryWrite(word, last_edition_ + 1, body)) return Outcome::kWritten;
  Patience patience(slot_size_);
  for (int turn = 0; turn < kMostTurns; ++turn) {
    word = mapping_.Load(kEditionPlace);
    const std::optional<std::uint32_t> edition = FromWord(word);
    if (!edition) return Outcome::kMoved;
    const bool being_written = *edition & kBeingWritten;
    if (being_written && patience.Wait(*edition)) continue;
    if (word != last_word_) Forget();
    if (TryWrite(word, being_written ? *edition + 4 : *edition + 1, body)) return Outcome::kWritten;
    // Another was faster, thought this writer dead, or marked the file: once more.
  }
  return Outcome::kMoved;
}

// Makes the edition `word` the odd one `mine`, writes, and makes it even.
bool LiveFile::TryWrite(std::uint64_t word, std::uint32_t mine, std::string_view body) {
  const std::uint64_t mine_word = ToWord(mine);
  if (!mapping_.CompareExchange(kEditionPlace, word, mine_word)) return false;
  const std::size_t slot = 1 - CurrentSlot(mine);
  Fill(slot, body, std::exchange(agreed_[slot], 0));
  const std::uint64_t done_word = ToWord(mine + 1);
  if (!mapping_.CompareExchange(kEditionPlace, mine_word, done_word)) return false;
  agreed_[slot] = body.size();
  last_edition_ = mine + 1;
  last_word_ = done_word;
  return true;
}

// The number in use is never below what the slot holds, whenever the writer dies.
void LiveFile::Fill(std::size_t slot, std::string_view body, std::size_t agreed) {
  constexpr std::string_view kBlanks =
      "                                                                ";
  const std::size_t start = SlotStart(slot);
  const std::size_t size = headings_[0].size() + body.size();
  const std::size_t before =
      mapping_.Load(kUsedPlace[slot]) == used_words_[slot] ? used_[slot] : Used(slot);
  std::atomic_thread_fence(std::memory_order_release);
  if (used_[slot] != size) {
    used_[slot] = size;
    used_words_[slot] = ToWord(static_cast<std::uint32_t>(size));
  }
  if (size > before) mapping_.Store(kUsedPlace[slot], used_words_[slot]);
  agreed = agreed / 8 * 8;
  mapping_.Write(start + headings_[0].size() + agreed, body.substr(agreed));
  for (std::size_t i = size; i < before; i += kBlanks.size()) {
    mapping_.Write(start + i, kBlanks.substr(0, before - i));
  }
  if (size < before) mapping_.Store(kUsedPlace[slot], used_words_[slot]);
  const std::size_t named = (1 + section_.size()) / 8 * 8;  // the same in both headings
  mapping_.Write(start + named, std::string_view(headings_[0]).substr(named));
  mapping_.Write(SlotStart(1 - slot) + named, std::string_view(headings_[1]).substr(named));
}

std::optional<std::string> LiveFile::Read() const {
  const auto end =
      steady_clock::now() + std::chrono::milliseconds(500) + microseconds(slot_size_ / 10);
  std::string body;
  do {
    for (int turn = 0; turn < 100; ++turn) {
      const std::uint64_t word = mapping_.Load(kEditionPlace);
      const std::optional<std::uint32_t> edition = EditionOf(word);
      if (!edition) return std::nullopt;
      const std::size_t slot = CurrentSlot(*edition);
      body.resize(Used(slot) - headings_[0].size());
      mapping_.Read(SlotStart(slot) + headings_[0].size(), body.data(), body.size());
      std::atomic_thread_fence(std::memory_order_acquire);
      const std::uint64_t after = mapping_.Load(kEditionPlace);
      const std::uint32_t later = FromWord(after).value_or(0) - (*edition & ~kBeingWritten);
      if (after != word && (IsMarked(word) || IsMarked(after) || later > 2)) continue;
      body.erase(body.find_last_not_of(' ') + 1);
      return body;
    }
    std::this_thread::yield();
  } while (steady_clock::now() < end);
  return std::nullopt;
}

void LiveFile::MarkMoved() {
  for (int turn = 0; turn < kMostTurns; ++turn) {
    const std::uint64_t word = mapping_.Load(kEditionPlace);
    if (!FromWord(word)) return;
    const std::uint64_t marked = WithFirstDigit(word, kMovedMark);
    if (mapping_.CompareExchange(kEditionPlace, word, marked)) return;
  }
}

void LiveFile::DropMark() {
  const std::uint64_t word = mapping_.Load(kEditionPlace);
  const std::optional<std::uint32_t> edition = EditionOf(word);
  if (!IsMarked(word) || !edition) return;
  mapping_.CompareExchange(kEditionPlace, word, ToWord((*edition & ~kBeingWritten) + 4));
}

}  // namespace tovalin
