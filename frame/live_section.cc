#include "frame/live_section.h"

#include <algorithm>
#include <chrono>
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

LiveSection::LiveSection(TextView application, TextView section, std::size_t parts,
                         std::vector<std::string> keys)
    : application_(application),
      section_(section),
      written_section_(EscapeIni(section, IniPlace::kSection)),
      keys_(std::move(keys)),
      starts_(parts + 1) {}

LiveSection::~LiveSection() {
  next_look_ = 0;
  if (unwritten_) Put();
}

void LiveSection::Set(std::size_t part, std::string_view lines) {
  EndRewriting();
  const std::size_t start = starts_[part];
  const std::size_t size = starts_[part + 1] - start;
  if (Body().substr(start, size) == lines) return;
  unwritten_ = true;
  same_ = std::min(same_, start);
  body_.resize(starts_.back());  // without the blanks behind the last part
  body_.replace(start, size, lines);
  for (std::size_t next = part + 1; next < starts_.size(); ++next)
    starts_[next] += lines.size() - size;
}

std::string& LiveSection::RewriteLast() {
  const std::size_t start = starts_[starts_.size() - 2];
  unwritten_ = true;
  same_ = std::min(same_, start);
  is_rewriting_ = true;
  body_.resize(start);
  return body_;
}

bool LiveSection::Put() noexcept {
  try {
    const bool look = IsTimeToLook();
    if (!look && !unwritten_ && file_ && file_->HoldsLast()) return true;
    unwritten_ = true;
    EndRewriting();
    Pad();
    unwritten_ = !Write(look);
    return !unwritten_;
  } catch (const Error&) {
  } catch (const std::exception&) {
  }
  return false;
}

// What was added to the body since RewriteLast is the last part.
void LiveSection::EndRewriting() {
  if (std::exchange(is_rewriting_, false)) starts_.back() = body_.size();
}

// A body that has its blanks already gets no more.
void LiveSection::Pad() {
  constexpr std::string_view kBlanks = "       ";
  body_.append(kBlanks.substr(0, (8 - body_.size() % 8) % 8));
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
  if (file_->Write(Body(), std::exchange(same_, body_.size())) == LiveFile::Outcome::kWritten) {
    return true;
  }
  return Open() && file_->Write(Body(), 0) == LiveFile::Outcome::kWritten;
}

// Leaves no file open when it fails.
bool LiveSection::Open() {
  file_.reset();
  next_look_ = now_ + kLookEvery;
  if (body_.size() > kLongestBody) return false;
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
  for (const std::string& key : keys_)
    content.rest = WithoutEntry(content.rest, section_, FromUtf8(key));
  content.live = SettingsContent::Section{written_section_, std::string(Body())};
  ReplaceWhole(path_, content.Bytes());
}

}  // namespace tovalin
