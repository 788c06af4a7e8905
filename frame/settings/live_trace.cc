#include "frame/settings/live_trace.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "frame/settings/ini_text.h"
#include "frame/settings/settings_edit.h"
#include "frame/settings/settings_path.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

using std::filesystem::path;

constexpr int kLockAttempts = 50;  // an evaluation waits no longer for the settings

constexpr std::uint64_t Bit(std::size_t key) { return std::uint64_t{1} << key; }

template <class Characters>
std::uint64_t Hash(const Characters& characters) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (auto character : characters) hash = (hash ^ character) * 0x100000001B3;
  return hash;
}

// Four characters that tell a text from others.
Text FingerprintOf(TextView text) {
  const std::uint64_t hash = Hash(text);
  Text characters;
  for (int shift = 0; shift < 64; shift += 16) characters += static_cast<char16_t>(hash >> shift);
  return characters;
}

// Where the live files of a settings file may be, the best place first.
std::vector<path> StemsOf(const path& settings, std::vector<path> directories) {
  std::error_code unknown;
  const path plain = std::filesystem::weakly_canonical(settings, unknown);
  std::uint64_t hash = Hash((unknown ? settings : plain).u8string());
  std::string name = ToUtf8(kTraceApplication) + "-";
  for (int digit = 0; digit < 16; ++digit, hash <<= 4) name += "0123456789abcdef"[hash >> 60];
  for (path& directory : directories) directory = directory / "tovalin" / name;
  return directories;
}

// The latest trace. Of several places that have one, the one that was last said to be in use.
LiveTexts ReadLatestOf(const path& settings) {
  LiveReading latest;
  for (LiveEntry<Text>& entry : latest.texts) entry.in_settings = true;
  for (const path& stem : StemsOf(settings, RuntimeDirectories())) {
    LiveReading reading = ReadLatest(stem);
    if (reading.time > latest.time) latest = std::move(reading);
  }
  return std::move(latest.texts);
}

// Puts the texts that are in the settings into `texts`. False when they are others than said,
// because one of the two has changed since.
bool ReadFromSettings(const path& settings, const LiveTexts& live, TraceTexts& texts) {
  std::optional<std::string> content;
  bool as_said = true;
  for (std::size_t key = 0; key < kLiveTexts; ++key) {
    if (!live[key].in_settings) continue;
    if (!content) content = ReadSettings(settings);
    texts[key] = FindEntry(*content, kTraceSection, kTraceKeys[key]);
    const Text& said = live[key].text;
    as_said = as_said && (said.empty() || (texts[key] && FingerprintOf(*texts[key]) == said));
  }
  return as_said;
}

}  // namespace

std::optional<std::size_t> FindTraceKey(TextView application, TextView section, TextView key) {
  if (application != kTraceApplication || !EqualFolded(section, kTraceSection)) return std::nullopt;
  for (std::size_t i = 0; i < kLiveTexts; ++i)
    if (EqualFolded(key, kTraceKeys[i])) return i;
  return std::nullopt;
}

TraceTexts ReadTrace() {
  constexpr int kAttempts = 50;  // after which a person has edited the settings
  const path settings = SettingsPath(kTraceApplication);
  for (int attempt = 0;; ++attempt) {
    LiveTexts live = ReadLatestOf(settings);
    TraceTexts texts;
    for (std::size_t key = 0; key < kLiveTexts; ++key)
      if (!live[key].in_settings) texts[key] = std::move(live[key].text);
    if (ReadFromSettings(settings, live, texts) || attempt == kAttempts) return texts;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

/// The one live file that all evaluators of the process share, on any thread.
class ProcessFile {
 public:
  static std::shared_ptr<ProcessFile> Share() {
    static const auto process_file = std::make_shared<ProcessFile>();
    return process_file;
  }

  /// The file, another one when it is not in its place any more, or is the one not wanted. Null
  /// when none can be had.
  std::shared_ptr<LiveFile> Get(const LiveFile* unwanted) noexcept {
    try {
      // In a process that was forked, a thread that is no more may hold the mutex.
      const std::unique_lock lock(mutex_, std::chrono::milliseconds(kLockAttempts));
      if (!lock) return nullptr;
      const bool is_placed = SettingsPath(kTraceApplication) == settings_ &&
                             RuntimeDirectories() == directories_ && file_ && file_->IsInPlace();
      if (!is_placed || file_.get() == unwanted) ChooseFile();
      return file_;
    } catch (...) {
      return nullptr;
    }
  }

 private:
  // The former file stays locked meanwhile, so that it is not taken again.
  void ChooseFile() {
    settings_ = SettingsPath(kTraceApplication);
    directories_ = RuntimeDirectories();
    std::shared_ptr<LiveFile> file;
    for (const path& stem : StemsOf(settings_, directories_)) {
      try {
        if (!file) file = LiveFile::Claim(stem);
      } catch (const Error&) {
        // No directory can be made there.
      }
    }
    file_ = std::move(file);
    TidySettings(settings_);
  }

  std::timed_mutex mutex_;
  path settings_;
  std::vector<path> directories_;
  std::shared_ptr<LiveFile> file_;
};

LiveTrace::LiveTrace(std::int64_t look_every)
    : process_(ProcessFile::Share()),
      look_every_(look_every),
      next_look_(std::numeric_limits<std::int64_t>::min()) {}

bool LiveTrace::Put(const LiveChanges& changes, std::size_t same) noexcept {
  const std::int64_t now = CoarseMilliseconds();
  if (now >= next_look_) Look(now);
  if (!file_) return false;
  const bool is_mine = file_->State() == state_ && file_->IsLatest();
  if (is_mine && (same == kLiveTexts || !changes[same])) return true;
  try {
    return Write(changes, is_mine ? same : 0);
  } catch (...) {
    state_ = kNoState;
    return false;
  }
}

void LiveTrace::Look(std::int64_t now) noexcept {
  next_look_ = now + look_every_;
  ++looks_;
  std::shared_ptr<LiveFile> file = process_->Get(nullptr);
  if (file != file_ || !may_save_) state_ = kNoState;
  file_ = std::move(file);
  may_save_ = true;
  if (file_ && file_->IsLatest()) file_->SetTime();
}

// `same` is 0 unless this object wrote last.
bool LiveTrace::Write(const LiveChanges& changes, std::size_t same) {
  const std::uint64_t saved = same > 0 ? long_ & (Bit(same) - 1) : 0;
  bool is_whole = true;
  std::uint64_t too_long = 0;
  for (std::size_t key = 0; key < kLiveTexts; ++key) {
    if (!changes[key])
      is_whole = false;
    else if (changes[key]->text.size() > LiveFile::kLongest[key])
      too_long |= Bit(key);
    else
      long_ &= ~Bit(key);
  }
  const bool is_latest = file_->IsLatest();
  bool is_written = false;
  if (too_long == 0 && (is_whole || is_latest)) {
    is_written = WriteFile(changes, same);
  } else {
    LiveChanges adapted = changes;
    LiveTexts latest;
    if (!is_latest) latest = ReadLatestOf(SettingsPath(kTraceApplication));
    for (std::size_t key = 0; key < kLiveTexts && !is_latest; ++key)
      if (!adapted[key]) adapted[key] = {latest[key].text, latest[key].in_settings};
    is_written = WriteLong(adapted, same, too_long, saved);
  }
  if (is_whole && may_save_ && file_ && file_->LongTexts() != long_) RemoveLong();
  return is_written;
}

// The texts that are too long go into the settings, but for those that are there since the
// last Put. Until the file says so, too, nobody else may change the settings.
bool LiveTrace::WriteLong(LiveChanges& changes, std::size_t same, std::uint64_t too_long,
                          std::uint64_t saved) {
  std::optional<SettingsEdit> edit;
  try {
    if ((too_long & ~saved) != 0 && may_save_) {
      edit.emplace(SettingsPath(kTraceApplication), kLockAttempts);
      for (std::size_t key = 0; key < kLiveTexts; ++key) {
        if ((too_long & ~saved & Bit(key)) == 0) continue;
        edit->Set(kTraceSection, kTraceKeys[key], changes[key]->text);
        fingerprints_[key] = FingerprintOf(changes[key]->text);
      }
      file_->SetLongTexts(file_->LongTexts() | too_long);
      edit->Write();
    }
  } catch (const Error&) {
    may_save_ = false;
  }
  long_ = may_save_ ? long_ | too_long : long_ & ~too_long;
  for (std::size_t key = 0; key < kLiveTexts; ++key)
    if ((long_ & too_long & Bit(key)) != 0) changes[key] = {fingerprints_[key], true};
  return WriteFile(changes, same) && may_save_;
}

bool LiveTrace::WriteFile(const LiveChanges& changes, std::size_t same) {
  std::optional<std::uint64_t> state = file_->Write(changes, std::min(same, same_in_both_), state_);
  if (!state) {
    file_ = process_->Get(file_.get());
    state_ = kNoState;
    if (file_) state = file_->Write(changes, 0, state_);
    if (!state) return false;
  }
  same_in_both_ = *state == state_ + 2 ? same : 0;
  state_ = *state;
  return true;
}

// Takes out of the settings what is not the latest trace any more.
void LiveTrace::RemoveLong() noexcept {
  try {
    SettingsEdit edit(SettingsPath(kTraceApplication), kLockAttempts);
    if (file_->State() != state_ || !file_->IsLatest()) return;
    for (std::size_t key = 0; key < kLiveTexts; ++key)
      if ((long_ & Bit(key)) == 0) edit.Remove(kTraceSection, kTraceKeys[key]);
    edit.Write();
    file_->SetLongTexts(long_);
  } catch (...) {
    may_save_ = false;
  }
}

}  // namespace tovalin
