#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tovalin/text.h"

namespace tovalin::tool {

/// The encodings of CSV files.
enum class Encoding { Utf8, CodePage1252 };

/// The names that options know them by.
inline constexpr std::string_view kUtf8Name = "utf-8";
inline constexpr std::string_view kCodePageName = "1252";
inline Encoding ReadEncoding(std::string_view name) {
  return name == kCodePageName ? Encoding::CodePage1252 : Encoding::Utf8;
}

/// Where something stands in a text file; both count from 1, columns by characters.
struct Place {
  std::size_t line = 1;
  std::size_t column = 1;
};

/// Throws kObjectError: "FILE: línea N, columna M: PROBLEM".
[[noreturn]] void RaiseAt(std::string_view file, Place place, std::string_view problem);

/// The text of UTF-8 bytes. Raises kObjectError, with `what` they are and where, for
/// bytes that are not UTF-8.
Text TextOf(std::string_view utf8, std::string_view what);
/// The same for a line of a file.
Text TextOfLine(std::string_view utf8, std::string_view file, std::size_t line);
/// The same for an argument of the command line.
Text TextOfArgument(std::string_view utf8);

/// Appends bytes of code page 1252 as UTF-8.
void AppendFromCodePage(std::string& utf8, std::string_view bytes);
/// Appends UTF-8 in code page 1252, up to the first character that is not in it.
/// Answers how many bytes of `utf8` were taken.
std::size_t AppendInCodePage(std::string& bytes, std::string_view utf8);

}  // namespace tovalin::tool
