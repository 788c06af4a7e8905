#include "frame/settings/live_file.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "frame/settings/settings_file.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

using Word = std::uint64_t;

constexpr std::size_t kStatePlace = 0;
constexpr std::size_t kTimePlace = 8;
constexpr std::size_t kBuffersPlace = 64;

// In a buffer.
constexpr std::size_t SlotPlace(std::size_t slot) {
  std::size_t place = 8 * kLiveTexts;  // the heads
  for (std::size_t i = 0; i < slot; ++i) place += 2 * LiveFile::kLongest[i];
  return place;
}
constexpr std::size_t kBufferSize = SlotPlace(kLiveTexts);
constexpr std::size_t kFileSize = kBuffersPlace + 2 * kBufferSize;

constexpr Word kInSlot = 1 << 16;

constexpr std::size_t kLatestPlace = 0;
constexpr std::size_t kLongTextsPlace = 8;
constexpr std::size_t kLatestSize = 16;

std::size_t CurrentBuffer(Word state) {
  const bool second = (state >> 1 & 1) != 0;
  return second ? kBuffersPlace + kBufferSize : kBuffersPlace;
}

std::filesystem::path LatestPath(std::filesystem::path stem) { return stem += ".latest"; }
std::filesystem::path FilePath(std::filesystem::path stem, Word number) {
  return stem += "." + std::to_string(number);
}

// Makes the state odd and answers the one before. Nothing when another's write does not
// end: its process was forked and killed.
std::optional<Word> BeginWrite(Mapping& file) {
  constexpr int kAttempts = 2000;
  constexpr int kAttemptsWithoutPause = 200;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const Word state = file.Load(kStatePlace);
    if ((state & 1) == 0 && file.CompareExchange(kStatePlace, state, state + 1)) return state;
    if (attempt > kAttemptsWithoutPause) std::this_thread::sleep_for(std::chrono::microseconds(20));
  }
  return std::nullopt;
}

std::size_t SizeOf(Word head, std::size_t slot) {
  return std::min<std::size_t>(head % kInSlot, LiveFile::kLongest[slot]);
}

void Fill(Mapping& file, std::size_t buffer, std::size_t slot, const LiveEntry<TextView>& entry) {
  const std::size_t size = entry.text.size() <= LiveFile::kLongest[slot] ? entry.text.size() : 0;
  file.Write(buffer + SlotPlace(slot), entry.text.data(), 2 * size);
  file.Store(buffer + 8 * slot, entry.in_settings ? size : kInSlot + size);
}

void Copy(Mapping& file, std::size_t from, std::size_t to, std::size_t slot) {
  const Word head = file.Load(from + 8 * slot);
  file.Copy(from + SlotPlace(slot), to + SlotPlace(slot), 2 * SizeOf(head, slot));
  file.Store(to + 8 * slot, head);
}

LiveEntry<Text> ReadSlot(const Mapping& file, std::size_t buffer, std::size_t slot) {
  const Word head = file.Load(buffer + 8 * slot);
  LiveEntry<Text> entry{Text(SizeOf(head, slot), u'\0'), head < kInSlot};
  file.Read(buffer + SlotPlace(slot), entry.text.data(), 2 * entry.text.size());
  return entry;
}

LiveTexts ReadTexts(const Mapping& file) {
  constexpr int kAttempts = 100'000;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (attempt % 100 == 99) std::this_thread::yield();
    const Word state = file.Load(kStatePlace);
    LiveTexts texts;
    for (std::size_t slot = 0; slot < kLiveTexts; ++slot)
      texts[slot] = ReadSlot(file, CurrentBuffer(state), slot);
    std::atomic_thread_fence(std::memory_order_acquire);
    if (file.Load(kStatePlace) - (state & ~Word{1}) <= 2) return texts;
  }
  Raise(Failure::PathAccess);
}

}  // namespace

LiveFile::LiveFile(std::filesystem::path stem, Word number, Mapping latest, Mapping file)
    : stem_(std::move(stem)), number_(number), latest_(std::move(latest)), file_(std::move(file)) {}

std::shared_ptr<LiveFile> LiveFile::Claim(const std::filesystem::path& stem) {
  MakeDirectories(stem.parent_path());
  std::optional<Mapping> latest = Mapping::Make(LatestPath(stem), kLatestSize);
  if (!latest) return nullptr;
  constexpr Word kMost = 10'000;
  for (Word number = 1; number < kMost; ++number) {
    std::optional<Mapping> file = Mapping::Make(FilePath(stem, number), kFileSize);
    if (!file) return nullptr;
    if (!file->Lock()) continue;
    // Its former process may have been killed in the middle of a write.
    file->Store(kStatePlace, file->Load(kStatePlace) & ~Word{1});
    return std::make_shared<LiveFile>(stem, number, *std::move(latest), *std::move(file));
  }
  return nullptr;
}

bool LiveFile::IsInPlace() const {
  return latest_.IsAt(LatestPath(stem_)) && file_.IsAt(FilePath(stem_, number_));
}

std::optional<Word> LiveFile::Write(const LiveChanges& changes, std::size_t same, Word state) {
  const std::optional<Word> before = BeginWrite(file_);
  if (!before) return std::nullopt;
  std::atomic_thread_fence(std::memory_order_release);
  const std::size_t other = CurrentBuffer(*before + 2);
  for (std::size_t slot = *before == state ? same : 0; slot < kLiveTexts; ++slot) {
    if (changes[slot])
      Fill(file_, other, slot, *changes[slot]);
    else
      Copy(file_, CurrentBuffer(*before), other, slot);
  }
  file_.Store(kStatePlace, *before + 2);
  if (!IsLatest()) {
    SetTime();
    latest_.Store(kLatestPlace, number_);
  }
  return *before + 2;
}

void LiveFile::SetTime() {
  const std::chrono::nanoseconds now = std::chrono::system_clock::now().time_since_epoch();
  file_.Store(kTimePlace, static_cast<Word>(now.count()));
}

Word LiveFile::LongTexts() const { return latest_.Load(kLongTextsPlace); }

void LiveFile::SetLongTexts(Word bits) { latest_.Store(kLongTextsPlace, bits); }

LiveReading ReadLatest(const std::filesystem::path& stem) {
  const std::optional<Mapping> latest = Mapping::Open(LatestPath(stem), kLatestSize);
  const Word number = latest ? latest->Load(kLatestPlace) : 0;
  if (number == 0) return {};
  const std::optional<Mapping> file = Mapping::Open(FilePath(stem, number), kFileSize);
  if (!file) return {};
  return {file->Load(kTimePlace), ReadTexts(*file)};
}

}  // namespace tovalin
