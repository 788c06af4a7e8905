#include "hosts/cli/encoding.h"

#include <algorithm>

#include "frame/text/code_page.h"
#include "frame/text/utf8.h"
#include "tovalin/error.h"

namespace tovalin::tool {
namespace {

[[noreturn]] void RaiseFor(std::string_view what, std::string_view problem) {
  RaiseOwn(u"tovalin", FromUtf8(what).append(u": ").append(FromUtf8(problem)));
}

std::string Numbered(std::string_view word, std::size_t number) {
  return std::string(word) + ' ' + std::to_string(number);
}

}  // namespace

void RaiseAt(std::string_view file, Place place, std::string_view problem) {
  RaiseFor(std::string(file) + ": " + Numbered("línea", place.line) + ", " +
               Numbered("columna", place.column),
           problem);
}

Text TextOf(std::string_view utf8, std::string_view what) {
  const std::size_t valid = ValidUtf8Length(utf8);
  if (valid == utf8.size()) return FromUtf8(utf8);
  RaiseFor(std::string(what) + ", " +
               Numbered("columna", CountUtf8Characters(utf8.substr(0, valid)) + 1),
           "el texto no es UTF-8");
}

Text TextOfLine(std::string_view utf8, std::string_view file, std::size_t line) {
  return TextOf(utf8, std::string(file) + ": " + Numbered("línea", line));
}

Text TextOfArgument(std::string_view utf8) {
  return TextOf(utf8, "Argumento \"" + ToUtf8(FromUtf8(utf8)) + '"');
}

void AppendFromCodePage(std::string& utf8, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto stop = std::find_if_not(bytes.begin(), bytes.end(), IsAscii);
    utf8.append(bytes.begin(), stop);
    bytes.remove_prefix(static_cast<std::size_t>(stop - bytes.begin()));
    if (bytes.empty()) break;
    const char16_t character = FromCodePage(static_cast<unsigned char>(bytes.front()));
    AppendUtf8(utf8, TextView(&character, 1));
    bytes.remove_prefix(1);
  }
}

std::size_t AppendInCodePage(std::string& bytes, std::string_view utf8) {
  std::size_t taken = 0;
  while (taken < utf8.size()) {
    const std::string_view rest = utf8.substr(taken);
    const auto stop = std::find_if_not(rest.begin(), rest.end(), IsAscii);
    bytes.append(rest.begin(), stop);
    taken += static_cast<std::size_t>(stop - rest.begin());
    if (stop == rest.end()) break;
    const auto next = std::find_if_not(stop + 1, rest.end(), IsUtf8Continuation);
    const Text character = FromUtf8(std::string_view(stop, next));
    if (character.size() != 1 || !InCodePage(character[0])) break;
    bytes.push_back(ToCodePage(character[0]));
    taken += static_cast<std::size_t>(next - stop);
  }
  return taken;
}

}  // namespace tovalin::tool
