#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tovalin/text.h"

namespace tovalin {

// The text of a settings file: UTF-8, one line each, ended by LF or CR LF.
//
//     ; a comment, kept as it stands; so is any line that is none of these
//     [section]
//     key=text
//
// - Blanks, tabs and CR at both ends of a line, a name or a text do not count.
// - A line whose first character is ";" or "#" is a comment. One that starts with
//   "[" and has a "]" is a heading; what follows the "]" is disregarded. Any
//   other line with a "=" is an entry of the heading above it, parted at the
//   first "="; without a heading above, of the section with the empty name.
// - Sections and keys are found without regard to case. A section may have
//   several headings; of several entries with one name the first holds.
// - A backslash escapes: \\ \= \] \[ \; \# stand for the second character, \n \r
//   \t for LF, CR and tab, \s for a blank, \uHHHH for the 16-bit character with
//   that hexadecimal code. Before anything else a backslash stands for itself.
// - What is written escapes no more than needed: backslashes and characters
//   below the blank, a blank at either end, half a surrogate pair, "=" in a key, "]"
//   in a section, and "[", ";" or "#" at the start of a key.
// - A byte order mark at the start of the file is passed over.

/// The text of the entry, or nothing when `file` has none.
std::optional<Text> FindEntry(std::string_view file, TextView section, TextView key);

/// `file` with the entry set to `text`: in its place when it stands there, else
/// as the last of its section, which is added at the end when need be.
std::string WithEntry(std::string file, TextView section, TextView key, TextView text);

/// `file` without any entry of that name.
std::string WithoutEntry(std::string file, TextView section, TextView key);

}  // namespace tovalin
