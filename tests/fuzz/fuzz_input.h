#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "tovalin/convert.h"
#include "tovalin/text.h"
#include "tovalin/variant.h"

namespace tovalin::fuzz {

/// Ends the process with a message when something that must hold does not.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "Broken: %s\n", what);
  std::abort();
}

/// UTF-8 to Text. A byte that is none becomes half of a surrogate pair, so that an
/// input reaches every kind of text that a host may hand in.
inline Text ToInputText(std::string_view bytes) {
  Text text = FromUtf8(bytes);
  for (char16_t& c : text)
    if (c == u'\uFFFD') c = u'\xD83D';
  return text;
}

/// The bytes of one run: sections of text parted by lines "--", which a person can
/// write, and behind the last one that is asked for, choices of a byte each. Of what
/// is not there any more, the text is empty and every choice 0.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  /// The bytes up to the next line "--", or all.
  std::string_view TakeSection() {
    constexpr std::string_view kEnd = "\n--\n";
    const std::size_t end = rest_.find(kEnd);
    const std::string_view section = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + kEnd.size());
    return section;
  }

  /// The lines of the next section: at least one, at most 64.
  std::vector<Text> TakeLines() {
    std::vector<Text> lines;
    for (std::string_view section = TakeSection(); lines.size() < 64;) {
      const std::size_t end = section.find('\n');
      lines.push_back(ToInputText(section.substr(0, end)));
      if (end == std::string_view::npos) break;
      section.remove_prefix(end + 1);
    }
    return lines;
  }

  bool HasChoices() const { return !rest_.empty(); }
  std::uint8_t Byte() {
    if (rest_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }
  /// A number from 0 to `count` - 1; `count` is 1 to 256.
  std::size_t Below(std::size_t count) { return Byte() % count; }
  template <class List>
  auto& OneOf(List& list) {
    return list[Below(std::size(list))];
  }
  template <class Number>
  Number Bytes() {
    std::array<std::uint8_t, sizeof(Number)> bytes;
    for (std::uint8_t& byte : bytes) byte = Byte();
    Number number;
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
  }

  double Double() {
    constexpr double kOdd[] = {0.0,     -0.0,  0.1,
                               0.5,     2.5,   1e15,
                               1e16,    1e308, std::numeric_limits<double>::denorm_min(),
                               45337.5, -1.5,  std::numeric_limits<double>::infinity(),
                               2958465, 65536, std::numeric_limits<double>::quiet_NaN(),
                               1e-5};
    switch (Below(4)) {
      case 0:
        return static_cast<std::int8_t>(Byte());
      case 1:
        return OneOf(kOdd);
      case 2:
        return static_cast<double>(Bytes<std::int16_t>()) / 100;
      default:
        return Bytes<double>();
    }
  }

  /// A value of any subtype without an object; a text is one of `texts`.
  Variant Scalar(const std::vector<Text>& texts) {
    switch (Below(14)) {
      case 0:
        return {};
      case 1:
        return Variant::Null();
      case 2:
        return Bytes<std::int16_t>();
      case 3:
        return Bytes<std::int32_t>();
      case 4:
        return static_cast<float>(Double());
      case 5:
        return Currency{Bytes<std::int64_t>()};
      case 6:
        return Currency{Bytes<std::int16_t>()};
      case 7:
        return Date{Double()};
      case 8:
        return Variant::ErrorValue(Bytes<std::int16_t>());
      case 9:
        return Byte() % 2 == 0;
      case 10:
        return Byte();
      case 11:
        return Double();
      default:
        return OneOf(texts);
    }
  }

 private:
  std::string_view rest_;
};

}  // namespace tovalin::fuzz
