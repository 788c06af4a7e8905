#include "hosts/cli/input.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "hosts/cli/system.h"
#include "tovalin/error.h"

namespace tovalin::tool {
namespace {

[[noreturn]] void RaiseUnreadable(int cause, const std::string& path) {
  std::error_code ignored;
  // Not every system says that a directory is what cannot be read.
  if (std::filesystem::is_directory(PathOf(path), ignored)) RaiseAbout(Failure::PathAccess, path);
  RaiseAbout(cause == ENOENT   ? Failure::FileNotFound
             : cause == EACCES ? Failure::PermissionDenied
                               : Failure::PathAccess,
             path);
}

}  // namespace

void RaiseAbout(Failure failure, std::string_view what) {
  Error error = PlatformError(failure);
  error.description.append(u": ").append(FromUtf8(what));
  throw error;
}

InputFile OpenInput(const std::string& path) {
  if (path == "-") return InputFile(stdin);
  InputFile file(OpenStream(PathOf(path), "rb"));
  if (!file) RaiseUnreadable(errno, path);
  return file;
}

void ReadLines(const std::string& path, const std::function<void(std::string_view)>& on_line) {
  // A stream, because reading from standard input then writes what waits for
  // standard output: a program may talk with the tool line by line.
  std::ifstream file;
  if (path != "-") {
    OpenInput(path);
    file.open(PathOf(path), std::ios::binary);
  }
  std::istream& input = path == "-" ? std::cin : file;
  bool first = true;
  for (std::string line; std::getline(input, line); first = false) {
    std::string_view text = line;
    if (first && text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    if (text.ends_with('\r')) text.remove_suffix(1);
    on_line(text);
  }
  if (!input.eof()) RaiseAbout(Failure::PathAccess, path);
}

void RequireOtherFile(const std::string& input, const std::string& output) {
  std::error_code ignored;  // a file that is not there yet is another one
  if (std::filesystem::equivalent(PathOf(input), PathOf(output), ignored))
    RaiseOwn(u"tovalin", Text(u"El archivo de salida es también de entrada: ") + FromUtf8(output));
}

}  // namespace tovalin::tool
