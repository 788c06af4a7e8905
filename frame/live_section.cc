#include "frame/live_section.h"

#include <algorithm>
#include <chrono>
#include <exception>

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

LiveSection::LiveSection(TextView application, TextView section, std::vector<std::string> keys)
    : application_(application),
      section_(section),
      written_section_(EscapeIni(section, IniPlace::kSection)),
      keys_(std::move(keys)),
      lines_(keys_.size()) {
  for (const std::string& key : keys_) {
    written_keys_.push_back(EscapeIni(FromUtf8(key), IniPlace::kKey) + "=");
  }
}

LiveSection::~LiveSection() {
  next_look_ = 0;
  if (unwritten_) Put(0, {});
}

bool LiveSection::Put(std::size_t first, std::span<const std::string_view> utf8_values) noexcept {
  try {
    unwritten_ = true;
    Keep(first, utf8_values);
    unwritten_ = !Write(CoarseMilliseconds());
    return !unwritten_;
  } catch (const Error&) {
  } catch (const std::exception&) {
  }
  return false;
}

void LiveSection::Keep(std::size_t first, std::span<const std::string_view> utf8_values) {
  if (first >= lines_.size()) return;
  const std::size_t count = std::min(utf8_values.size(), lines_.size() - first);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view value = utf8_values[i];
    const bool plain = IsPlainIniText(value);
    const std::string escaped = plain ? "" : EscapeIni(FromUtf8(value), IniPlace::kText);
    const std::string_view text = plain ? value : std::string_view(escaped);
    const std::string& key = written_keys_[first + i];
    std::string& line = lines_[first + i];
    line.reserve(key.size() + text.size() + 1);  // the line changes whole or not at all
    line = key;
    line += text;
    line += '\n';
  }
  JoinLines(first);
}

void LiveSection::JoinLines(std::size_t first) {
  if (!joined_) first = 0;
  joined_ = false;
  std::size_t start = 0;
  for (std::size_t i = 0; i < first; ++i) start += lines_[i].size();
  std::size_t end = start;
  for (std::size_t i = first; i < lines_.size(); ++i) end += lines_[i].size();
  body_.resize((end + 7) / 8 * 8, ' ');
  for (std::size_t i = first; i < lines_.size(); ++i) {
    lines_[i].copy(body_.data() + start, lines_[i].size());
    start += lines_[i].size();
  }
  std::fill(body_.begin() + static_cast<std::ptrdiff_t>(start), body_.end(), ' ');
  joined_ = true;
}

bool LiveSection::Write(std::int64_t now) {
  if (now >= next_look_) {
    const bool in_place = file_ && file_->IsAt(path_);
    next_look_ = now + kLookEvery;
    if (!in_place && !Open(now)) return false;
  }
  if (!file_) return false;
  LiveFile::Outcome outcome = file_->Write(body_);
  if (outcome == LiveFile::Outcome::kWritten) return true;
  if (!Open(now)) return false;
  return file_->Write(body_) == LiveFile::Outcome::kWritten;
}

// Leaves no file open when it fails.
bool LiveSection::Open(std::int64_t now) {
  file_.reset();
  next_look_ = now + kLookEvery;
  if (body_.size() > kLongestBody) return false;
  path_ = SettingsPath(application_);
  const std::optional<FileLock> lock = FileLock::Try(path_, kPatience);
  if (!lock) return false;
  std::optional<LiveFile> file = LiveFile::Open(path_, Mapping::Access::kWrite);
  // Two live sections would take the file from one another at every turn.
  if (file && file->section() != written_section_) return false;
  if (!file || !file->HasRoom(body_)) {
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
  for (const std::string& key : keys_) {
    content.rest = WithoutEntry(content.rest, section_, FromUtf8(key));
  }
  content.live = SettingsContent::Section{written_section_, body_};
  ReplaceWhole(path_, content.Bytes());
}

}  // namespace tovalin
