#pragma once

#include <vector>

#include "tovalin/text.h"

namespace tovalin {

/// The words of a command line, the program's name first.
///
/// Blanks and tabs separate words but inside double quotes. In the program's name
/// a backslash is always itself, as paths need. In the other words it is so but
/// before a quote: each pair of backslashes then gives one, and a single one left
/// over makes the quote a character of the word. Inside quotes "" is a quote.
///
///   copia.exe "a b" c\"d e\\"f g"   gives   copia.exe | a b | c"d | e\f g
std::vector<Text> SplitCommandLine(TextView command_line);

}  // namespace tovalin
