#include "frame/live_section.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <utility>

#include "frame/ini_text.h"
#include "frame/settings_content.h"
#include "frame/settings_file.h"
#include "frame/settings_path.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

constexpr std::int64_t kLookEvery = 1000;  // milliseconds
constexpr std::chrono::milliseconds kPatience{50};
constexpr std::size_t kLongestBody = std::size_t{1} << 30;

}  // namespace

LiveSection::LiveSection(TextView application, TextView section,
                         const std::vector<std::string>& keys)
    : application_(application),
      section_(section),
      written_section_(EscapeIni(section, IniPlace::kSection)) {
  for (const std::string& key : keys) {
    entries_.push_back({.key = EscapeIni(FromUtf8(key), IniPlace::kKey) + "=", .value = {}});
  }
}

LiveSection::~LiveSection() {
  next_look_ = 0;
  if (unwritten_) Put(0, {});
}

bool LiveSection::Put(std::size_t first, std::span<const std::string_view> utf8_values) noexcept {
  try {
    Keep(first, utf8_values);
    const bool look = IsTimeToLook();
    if (!look && !unwritten_ && file_ && file_->HoldsLast()) return true;
    unwritten_ = true;
    Join();
    unwritten_ = !Write(look);
    return !unwritten_;
  } catch (const Error&) {
  } catch (const std::exception&) {
  }
  return false;
}

void LiveSection::Keep(std::size_t first, std::span<const std::string_view> utf8_values) {
  if (first >= entries_.size()) return;
  const std::size_t count = std::min(utf8_values.size(), entries_.size() - first);
  for (std::size_t i = 0; i < count; ++i) {
    Entry& entry = entries_[first + i];
    if (entry.was_put && entry.value == utf8_values[i]) continue;
    unwritten_ = true;
    entry.value = utf8_values[i];
    entry.was_put = true;
    joined_ = std::min(joined_, first + i);
  }
}

// Writes the lines into the body from the first that changed.
void LiveSection::Join() {
  if (joined_ == entries_.size()) return;
  std::size_t end = entries_[joined_].start;
  same_ = std::min(same_, end);
  for (std::size_t i = joined_; i < entries_.size(); ++i) {
    entries_[i].start = end;
    if (entries_[i].was_put) end = WriteLine(entries_[i], end);
  }
  std::memset(Room(end, 8), ' ', 8);
  body_size_ = (end + 7) / 8 * 8;
  joined_ = entries_.size();
}

// Answers the place behind the line.
std::size_t LiveSection::WriteLine(const Entry& entry, std::size_t place) {
  char* const line = Room(place, entry.key.size() + entry.value.size() + kPlainIniTextExtra + 1);
  char* const text = std::copy(entry.key.begin(), entry.key.end(), line);
  char* end = WritePlainIniText(entry.value, text);
  if (!end) {
    const std::string escaped = EscapeIni(std::string_view(entry.value), IniPlace::kText);
    const std::size_t text_place = place + entry.key.size();
    end = std::copy(escaped.begin(), escaped.end(), Room(text_place, escaped.size() + 1));
  }
  *end++ = '\n';
  return static_cast<std::size_t>(end - buffer_.data());
}

// Where `size` bytes may be written.
char* LiveSection::Room(std::size_t place, std::size_t size) {
  if (buffer_.size() < place + size) buffer_.resize(place + size + size / 2);
  return buffer_.data() + place;
}

// The clock takes longer than all else about a Put of known values. So when it told
// the same time over and over, only every fourth Put asks it.
bool LiveSection::IsTimeToLook() {
  constexpr int kBurst = 100;
  constexpr int kUnasked = 3;
  if (unasked_ > 0 && file_) {
    --unasked_;
    return false;
  }
  const std::int64_t now = CoarseMilliseconds();
  asked_ = now == now_ ? std::min(asked_ + 1, kBurst) : 0;
  unasked_ = file_ && asked_ == kBurst ? kUnasked : 0;
  now_ = now;
  return now >= next_look_;
}

bool LiveSection::Write(bool look) {
  if (look) {
    next_look_ = now_ + kLookEvery;
    if (file_) file_->Forget();
    if ((!file_ || !file_->IsAt(path_)) && !Open()) return false;
  }
  if (!file_) return false;
  if (file_->Write(Body(), std::exchange(same_, body_size_)) == LiveFile::Outcome::kWritten) {
    return true;
  }
  return Open() && file_->Write(Body(), 0) == LiveFile::Outcome::kWritten;
}

// Leaves no file open when it fails.
bool LiveSection::Open() {
  file_.reset();
  next_look_ = now_ + kLookEvery;
  if (body_size_ > kLongestBody) return false;
  path_ = SettingsPath(application_);
  const std::optional<FileLock> lock = FileLock::Try(path_, kPatience);
  if (!lock) return false;
  std::optional<LiveFile> file = LiveFile::Open(path_, Mapping::Access::kWrite);
  // Two live sections would take the file from one another at every turn.
  if (file && file->section() != written_section_) return false;
  if (!file || !file->HasRoom(Body())) {
    MakeFile();
    file = LiveFile::Open(path_, Mapping::Access::kWrite);
  }
  if (file) file->DropMark();
  file_ = std::move(file);
  return file_.has_value();
}

// Makes the file a live one, or one with more room. Its other entries stay.
void LiveSection::MakeFile() {
  SettingsContent content = TakeContent(path_);
  for (const Entry& entry : entries_) {
    const std::string_view key = std::string_view(entry.key).substr(0, entry.key.size() - 1);
    content.rest = WithoutEntry(content.rest, section_, UnescapeIni(key));
  }
  content.live = SettingsContent::Section{written_section_, std::string(Body())};
  ReplaceWhole(path_, content.Bytes());
}

}  // namespace tovalin
