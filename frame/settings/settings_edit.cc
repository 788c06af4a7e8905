#include "frame/settings/settings_edit.h"

#include <array>
#include <charconv>
#include <fstream>
#include <string_view>
#include <utility>

#include "frame/settings/ini_text.h"

namespace tovalin {
namespace {

// Version 1.0 kept the trace in two slots at the start of the file, behind a head of 128 bytes
// with the size of a slot in hexadecimal.
constexpr std::string_view kFormerStart = "; vivo: ";
constexpr std::string_view kFormerSlotEnd = "       \n";
constexpr std::size_t kFormerHeadSize = 128;
constexpr std::size_t kFormerSizePlace = 24;

// Where the ordinary text of such a file starts; 0 when it has not that form any more.
std::size_t FormerSize(std::string_view bytes) {
  if (bytes.size() < kFormerHeadSize || !bytes.starts_with(kFormerStart)) return 0;
  const std::string_view digits = bytes.substr(kFormerSizePlace, 8);
  std::size_t slot = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), slot, 16);
  const std::size_t size = kFormerHeadSize + 2 * slot;
  if (slot < kFormerSlotEnd.size() || bytes.size() < size) return 0;
  const bool has_slots = bytes.substr(0, size - slot).ends_with(kFormerSlotEnd) &&
                         bytes.substr(0, size).ends_with(kFormerSlotEnd);
  return has_slots ? size : 0;
}

bool StartsLikeFormer(const std::filesystem::path& path) {
  std::array<char, kFormerStart.size()> start{};
  std::ifstream(path, std::ios::binary).read(start.data(), start.size());
  return std::string_view(start.data(), start.size()) == kFormerStart;
}

}  // namespace

SettingsEdit::SettingsEdit(const std::filesystem::path& path, int attempts)
    : path_(LinkedFile(path)),
      lock_(path_, attempts),
      bytes_(ReadWhole(path_).value_or(std::string())) {
  const std::size_t former = FormerSize(bytes_);
  bytes_.erase(0, former);
  is_changed_ = former > 0;
}

void SettingsEdit::Set(TextView section, TextView key, TextView text) {
  bytes_ = WithEntry(std::move(bytes_), section, key, text);
  is_changed_ = true;
}

void SettingsEdit::Remove(TextView section, TextView key) {
  const std::size_t size = bytes_.size();
  bytes_ = WithoutEntry(std::move(bytes_), section, key);
  is_changed_ = is_changed_ || bytes_.size() != size;
}

void SettingsEdit::Write() {
  if (std::exchange(is_changed_, false)) ReplaceWhole(path_, bytes_);
}

std::string ReadSettings(const std::filesystem::path& path) {
  const std::filesystem::path linked = LinkedFile(path);
  RemoveLeftover(linked);
  return ReadWhole(linked).value_or(std::string());
}

void TidySettings(const std::filesystem::path& path) noexcept {
  try {
    RemoveLeftover(LinkedFile(path));
    if (StartsLikeFormer(path)) SettingsEdit(path, 1).Write();
  } catch (...) {
    // Left for another time.
  }
}

}  // namespace tovalin
