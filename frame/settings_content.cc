#include "frame/settings_content.h"

#include <algorithm>

#include "frame/ini_text.h"
#include "frame/live_file.h"
#include "frame/settings_file.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

std::string HeadingOf(const SettingsContent::Section& section) {
  std::string line(1, '[');
  return line.append(section.name).append("]\n");
}

// An editor that changed the measures of a live file leaves an ordinary one, whose
// comment line of numbers and lines of padding mean nothing any more.
std::string WithoutLiveForm(std::string_view bytes) {
  bytes.remove_prefix(std::min(bytes.find('\n'), bytes.size() - 1) + 1);
  std::string kept;
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, bytes.find('\n'));
    bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
    if (!line.empty() && line.find_first_not_of(' ') == line.npos) continue;
    kept += line;
    kept += '\n';
  }
  return kept;
}

SettingsContent Read(const std::filesystem::path& path, bool take) {
  std::string bytes = ReadWhole(path).value_or(std::string());
  if (!LiveFile::HasHead(bytes)) return {std::nullopt, std::move(bytes)};
  std::optional<LiveFile> file;
  if (take) file = LiveFile::Open(path, Mapping::Access::kWrite);
  if (file) file->MarkMoved();
  if (!file) file = LiveFile::Open(path, Mapping::Access::kRead);
  if (!file) return {std::nullopt, WithoutLiveForm(bytes)};
  std::optional<std::string> body = file->Read();
  if (!body) Raise(Failure::PathAccess);
  return {SettingsContent::Section{file->section(), std::move(*body)},
          std::string(file->RestOf(bytes))};
}

}  // namespace

std::optional<Text> SettingsContent::Find(TextView section, TextView key) const {
  if (live) {
    if (auto found = FindEntry(HeadingOf(*live) + live->body, section, key)) return found;
  }
  return FindEntry(rest, section, key);
}

void SettingsContent::Set(TextView section, TextView key, TextView text) {
  if (live) {
    const std::string heading = HeadingOf(*live);
    const std::string part = heading + live->body;
    if (FindEntry(part, section, key)) {
      live->body = WithEntry(part, section, key, text).substr(heading.size());
      return;
    }
  }
  rest = WithEntry(rest, section, key, text);
}

std::string SettingsContent::Bytes() const {
  return live ? LiveFile::Compose(live->name, live->body, rest) : rest;
}

SettingsContent ReadContent(const std::filesystem::path& path) { return Read(path, false); }

SettingsContent TakeContent(const std::filesystem::path& path) { return Read(path, true); }

}  // namespace tovalin
