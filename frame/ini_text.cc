#include "frame/ini_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace tovalin {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kNowhere = std::string_view::npos;

// What a letter after a backslash stands for.
constexpr std::array<std::pair<char16_t, char16_t>, 10> kEscapes = {{{u'\\', u'\\'},
                                                                     {u'n', u'\n'},
                                                                     {u'r', u'\r'},
                                                                     {u't', u'\t'},
                                                                     {u's', u' '},
                                                                     {u'=', u'='},
                                                                     {u']', u']'},
                                                                     {u'[', u'['},
                                                                     {u';', u';'},
                                                                     {u'#', u'#'}}};

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Position of `mark` in `text`, one behind a backslash left out.
std::size_t FindUnescaped(std::string_view text, char mark) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == mark) return i;
    if (text[i] == '\\') ++i;
  }
  return kNowhere;
}

struct Line {
  enum class Kind { kHeading, kEntry, kOther } kind = Kind::kOther;
  std::string_view name;  // of the section or the entry, as written
  std::string_view text;  // of the entry, as written
};

Line ReadLine(std::string_view line) {
  line = TrimBlanks(line);
  if (line.empty() || line.front() == ';' || line.front() == '#') return {};
  if (line.front() == '[') {
    const std::size_t end = FindUnescaped(line, ']');
    if (end == kNowhere) return {};
    return {Line::Kind::kHeading, TrimBlanks(line.substr(1, end - 1)), {}};
  }
  const std::size_t equals = FindUnescaped(line, '=');
  if (equals == kNowhere) return {};
  return {Line::Kind::kEntry, TrimBlanks(line.substr(0, equals)),
          TrimBlanks(line.substr(equals + 1))};
}

struct Search {
  std::size_t begin = kNowhere;  // the entry's line, with its line break
  std::size_t end = kNowhere;
  std::string_view text;
  std::size_t section_end = kNowhere;  // behind the last line of the section

  bool Found() const { return begin != kNowhere; }
};

Search FindLine(std::string_view file, TextView section, TextView key) {
  Search search;
  bool in_section = section.empty();
  std::size_t begin = file.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  for (std::size_t end = begin; begin < file.size(); begin = end) {
    end = std::min(file.find('\n', begin), file.size() - 1) + 1;
    const Line line = ReadLine(file.substr(begin, end - begin));
    if (line.kind == Line::Kind::kOther) continue;
    if (line.kind == Line::Kind::kHeading) {
      in_section = EqualFolded(UnescapeIni(line.name), section);
    } else if (in_section && EqualFolded(UnescapeIni(line.name), key)) {
      return {begin, end, line.text, end};
    }
    if (in_section) search.section_end = end;
  }
  return search;
}

bool EndsInsideLine(std::string_view file) { return !file.empty() && file.back() != '\n'; }

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c < 0xDC00; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c < 0xE000; }

// UTF-8 has no pairs.
bool IsHalfPair(std::string_view, std::size_t) { return false; }

bool IsHalfPair(TextView text, std::size_t i) {
  if (IsHighSurrogate(text[i])) return i + 1 == text.size() || !IsLowSurrogate(text[i + 1]);
  return IsLowSurrogate(text[i]) && (i == 0 || !IsHighSurrogate(text[i - 1]));
}

// Whether a character must be written as a backslash and a letter in `place`.
template <class Char>
bool NeedsLetter(std::basic_string_view<Char> text, std::size_t i, IniPlace place) {
  const bool first = i == 0;
  switch (text[i]) {
    case u'\\':
    case u'\n':
    case u'\r':
    case u'\t':
      return true;
    case u' ':
      return first || i + 1 == text.size();
    case u'=':
      return place == IniPlace::kKey;
    case u']':
      return place == IniPlace::kSection;
    case u'[':
    case u';':
    case u'#':
      return place == IniPlace::kKey && first;
    default:
      return false;
  }
}

template <class Char>
void AppendCode(std::basic_string<Char>& out, char16_t c) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  out += {'\\', 'u'};
  for (int shift = 12; shift >= 0; shift -= 4) {
    out += static_cast<Char>(kDigits[static_cast<std::size_t>(c >> shift & 15)]);
  }
}

template <class Char>
std::basic_string<Char> Escape(std::basic_string_view<Char> text, IniPlace place) {
  std::basic_string<Char> out;
  out.reserve(text.size() + 8);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<char16_t>(static_cast<std::make_unsigned_t<Char>>(text[i]));
    if (NeedsLetter(text, i, place)) {
      const auto escape =
          std::find_if(kEscapes.begin(), kEscapes.end(), [c](auto& e) { return e.second == c; });
      out += {'\\', static_cast<Char>(escape->first)};
    } else if (c < 0x20 || IsHalfPair(text, i)) {
      AppendCode(out, c);
    } else {
      out += text[i];
    }
  }
  return out;
}

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  const char16_t lower = c | 0x20;
  return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

// The character of the code \uHHHH whose digits `text` starts with, or -1.
std::int32_t ReadCode(TextView text) {
  if (text.size() < 4) return -1;
  std::int32_t code = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const int digit = HexDigit(text[i]);
    if (digit < 0) return -1;
    code = code * 16 + digit;
  }
  return code;
}

// Whether one of eight bytes is a control character or a backslash.
bool AnySpecial(const char* bytes) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  const std::uint64_t not_backslash = word ^ '\\' * kOnes;
  const std::uint64_t below_blank = (word - ' ' * kOnes) & ~word;
  const std::uint64_t backslash = (not_backslash - kOnes) & ~not_backslash;
  return ((below_blank | backslash) & 0x80 * kOnes) != 0;
}

bool IsSpecial(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\\'; }

// Whether no more than the blanks at its ends may need an escape. Eight bytes at a
// time, the last ones twice: this stands in the way of every evaluation's trace.
bool IsPlain(std::string_view utf8) {
  if (utf8.size() < 8) return std::none_of(utf8.begin(), utf8.end(), IsSpecial);
  for (; utf8.size() > 8; utf8.remove_prefix(8)) {
    if (AnySpecial(utf8.data())) return false;
    if (utf8.size() < 16) return !AnySpecial(utf8.data() + utf8.size() - 8);
  }
  return !AnySpecial(utf8.data());
}

}  // namespace

std::string EscapeIni(TextView text, IniPlace place) { return ToUtf8(Escape(text, place)); }

Text UnescapeIni(std::string_view written) {
  const Text text = FromUtf8(written);
  if (text.find(u'\\') == Text::npos) return text;
  Text out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    out += text[i];
    if (text[i] != u'\\' || i + 1 == text.size()) continue;
    const char16_t letter = text[i + 1];
    const auto escape = std::find_if(kEscapes.begin(), kEscapes.end(),
                                     [letter](auto& e) { return e.first == letter; });
    if (escape != kEscapes.end()) {
      out.back() = escape->second;
      i += 1;
    } else if (letter == u'u') {
      const std::int32_t code = ReadCode(TextView(text).substr(i + 2));
      if (code < 0) continue;
      out.back() = static_cast<char16_t>(code);
      i += 5;
    }
  }
  return out;
}

// Looks before it copies: this stands in the way of every evaluation's trace.
void EscapeIniTextFrom(std::size_t start, std::string& lines) {
  const std::string_view text = std::string_view(lines).substr(start);
  if (text.empty()) return;
  if (!IsPlain(text) || text.front() == ' ') {
    lines.replace(start, text.size(), Escape(text, IniPlace::kText));
  } else if (text.back() == ' ') {
    lines.back() = '\\';
    lines += 's';
  }
}

std::optional<Text> FindEntry(std::string_view file, TextView section, TextView key) {
  const Search search = FindLine(file, section, key);
  if (!search.Found()) return std::nullopt;
  return UnescapeIni(search.text);
}

std::string WithEntry(std::string_view file, TextView section, TextView key, TextView text) {
  const Search search = FindLine(file, section, key);
  std::string out(file);
  std::string line = EscapeIni(key, IniPlace::kKey);
  line += '=';
  line += EscapeIni(text, IniPlace::kText);
  line += '\n';
  if (search.Found()) {
    return out.replace(search.begin, search.end - search.begin, line);
  }
  const bool at_end = search.section_end == kNowhere || search.section_end == file.size();
  if (at_end && EndsInsideLine(file)) out += '\n';
  if (search.section_end != kNowhere) {
    return out.insert(at_end ? out.size() : search.section_end, line);
  }
  if (!file.empty()) out += '\n';
  out += '[';
  out += EscapeIni(section, IniPlace::kSection);
  out += "]\n";
  out += line;
  return out;
}

std::string WithoutEntry(std::string_view file, TextView section, TextView key) {
  std::string out(file);
  for (;;) {
    const Search search = FindLine(out, section, key);
    if (!search.Found()) return out;
    out.erase(search.begin, search.end - search.begin);
  }
}

}  // namespace tovalin
