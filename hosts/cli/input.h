#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "tovalin/error.h"

namespace tovalin::tool {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct InputCloser {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};
using InputFile = std::unique_ptr<std::FILE, InputCloser>;

/// Opens a file to be read, "-" for standard input. Raises 53 when it is not there,
/// 70 without the right to read it and 75 otherwise, all with the path.
InputFile OpenInput(const std::string& path);

/// Hands on the lines of a file, "-" for standard input, without their line ends
/// and a byte order mark. Raises what OpenInput does, and 75 for a directory.
void ReadLines(const std::string& path, const std::function<void(std::string_view)>& on_line);

/// Raises kObjectError when a file to be written is the one that is read.
void RequireOtherFile(const std::string& input, const std::string& output);

/// Throws the error of a platform failure with what it is about after its text.
[[noreturn]] void RaiseAbout(Failure failure, std::string_view what);

}  // namespace tovalin::tool
