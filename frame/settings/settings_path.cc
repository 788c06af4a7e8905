#include "frame/settings/settings_path.h"

#include <algorithm>
#include <array>

#include "frame/settings/settings_file.h"
#include "frame/text/characters.h"

namespace tovalin {
namespace {

constexpr TextView kRefused = u"%/\\:*?\"<>|";
constexpr TextView kHexDigits = u"0123456789ABCDEF";
constexpr std::array<TextView, 4> kDevices = {u"CON", u"PRN", u"AUX", u"NUL"};
constexpr std::array<TextView, 2> kNumberedDevices = {u"COM", u"LPT"};

bool IsDevice(TextView name) {
  const TextView stem = name.substr(0, name.find(u'.'));
  const auto is_stem = [stem](TextView device) { return EqualFolded(device, stem); };
  if (std::any_of(kDevices.begin(), kDevices.end(), is_stem)) return true;
  if (stem.size() != 4 || !IsDigit(stem[3])) return false;
  const auto is_start = [stem](TextView device) { return EqualFolded(device, stem.substr(0, 3)); };
  return std::any_of(kNumberedDevices.begin(), kNumberedDevices.end(), is_start);
}

bool IsRefused(TextView name, std::size_t i) {
  const char16_t c = name[i];
  if (c < 0x20 || c == 0x7F || kRefused.find(c) != TextView::npos) return true;
  const bool at_end = i == 0 || i + 1 == name.size();
  return at_end && (c == u'.' || c == u' ');
}

void AppendHex(Text& out, char16_t c, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += kHexDigits[(c >> shift) & 15];
}

}  // namespace

std::u8string FileNameOf(TextView application) {
  Text name;
  if (application.empty()) name = u"%";
  const bool device = IsDevice(application);
  for (std::size_t i = 0; i < application.size(); ++i) {
    if (IsUnpairedSurrogate(application, i)) {
      name += u"%u";
      AppendHex(name, application[i], 4);
    } else if (IsRefused(application, i) || (device && i == 0)) {
      name += u'%';
      AppendHex(name, application[i], 2);
    } else {
      name += application[i];
    }
  }
  const std::string bytes = ToUtf8(name);
  return std::u8string(bytes.begin(), bytes.end());
}

std::filesystem::path SettingsPath(TextView application) {
  return ConfigurationDirectory() / u8"tovalin" / (FileNameOf(application) + u8".ini");
}

}  // namespace tovalin
