#include "frame/settings/ini_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "frame/text/characters.h"

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

// Where an escaped text stands, which decides what must be escaped in it.
enum class IniPlace { kSection, kKey, kText };

// Whether a character must be written as a backslash and a letter in `place`.
bool NeedsLetter(TextView text, std::size_t i, IniPlace place) {
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

void AppendCode(Text& out, char16_t c) {
  constexpr TextView kDigits = u"0123456789ABCDEF";
  out += u"\\u";
  for (int shift = 12; shift >= 0; shift -= 4) {
    out += kDigits[static_cast<std::size_t>(c >> shift & 15)];
  }
}

std::string Escape(TextView text, IniPlace place) {
  Text out;
  out.reserve(text.size() + 8);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (NeedsLetter(text, i, place)) {
      const auto escape =
          std::find_if(kEscapes.begin(), kEscapes.end(), [c](auto& e) { return e.second == c; });
      out += {u'\\', escape->first};
    } else if (c < 0x20 || IsUnpairedSurrogate(text, i)) {
      AppendCode(out, c);
    } else {
      out += c;
    }
  }
  return ToUtf8(out);
}

int HexDigit(char16_t c) {
  if (IsDigit(c)) return c - u'0';
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

Text Unescape(std::string_view written) {
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
      in_section = EqualFolded(Unescape(line.name), section);
    } else if (in_section && EqualFolded(Unescape(line.name), key)) {
      return {begin, end, line.text, end};
    }
    if (in_section) search.section_end = end;
  }
  return search;
}

bool EndsInsideLine(std::string_view file) { return !file.empty() && file.back() != '\n'; }

}  // namespace

std::optional<Text> FindEntry(std::string_view file, TextView section, TextView key) {
  const Search search = FindLine(file, section, key);
  if (!search.Found()) return std::nullopt;
  return Unescape(search.text);
}

std::string WithEntry(std::string file, TextView section, TextView key, TextView text) {
  const Search search = FindLine(file, section, key);
  std::string line = Escape(key, IniPlace::kKey);
  line += '=';
  line += Escape(text, IniPlace::kText);
  line += '\n';
  if (search.Found()) {
    return std::move(file.replace(search.begin, search.end - search.begin, line));
  }
  const bool at_end = search.section_end == kNowhere || search.section_end == file.size();
  if (at_end && EndsInsideLine(file)) file += '\n';
  if (search.section_end != kNowhere) {
    return std::move(file.insert(at_end ? file.size() : search.section_end, line));
  }
  if (!file.empty()) file += '\n';
  file += '[';
  file += Escape(section, IniPlace::kSection);
  file += "]\n";
  file += line;
  return file;
}

std::string WithoutEntry(std::string file, TextView section, TextView key) {
  for (;;) {
    const Search search = FindLine(file, section, key);
    if (!search.Found()) return file;
    file.erase(search.begin, search.end - search.begin);
  }
}

}  // namespace tovalin
