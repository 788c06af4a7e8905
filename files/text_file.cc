#include "files/text_file.h"

#include <cerrno>
#include <cstdint>
#include <limits>
#include <string>

#include "files/attributes.h"
#include "frame/system/host_file.h"
#include "frame/text/code_page.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
constexpr std::size_t kLongestFile = std::numeric_limits<std::int32_t>::max();

bool IsDirectory(TextView path) { return (FileAttributes(path).value_or(0) & kDirectory) != 0; }

bool DirectoryOfExists(TextView path) {
  const std::size_t separator = path.find_last_of(u"\\/");
  if (separator == TextView::npos || separator == 0) return true;
  return IsDirectory(path.substr(0, separator));
}

/// The failure that errno stands for.
Failure FileFailure(TextView path) {
  const int cause = errno;
  // Not every system says that a directory is what cannot be read.
  if (IsDirectory(path)) return Failure::PathAccess;
  switch (cause) {
    case ENOENT:
      return DirectoryOfExists(path) ? Failure::FileNotFound : Failure::PathNotFound;
    case ENOTDIR:
      return Failure::PathNotFound;
    case EACCES:
    case EPERM:
      return Failure::PermissionDenied;
    default:
      return Failure::PathAccess;
  }
}

std::size_t ReadBlock(std::FILE* file, char* bytes, TextView path) {
  for (;;) {
    std::clearerr(file);
    errno = 0;
    const std::size_t count = std::fread(bytes, 1, kBlock, file);
    if (count > 0 || !std::ferror(file)) return count;
    if (errno != EINTR) Raise(FileFailure(path));
  }
}

/// The bytes that the file seems to have: 0 for a pipe, anything for a directory.
std::size_t LikelySize(std::FILE* file) {
  const long size = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : 0;
  std::fseek(file, 0, SEEK_SET);
  // A directory claims the largest number there is, which 32 bits do not tell from a size.
  const bool likely = size > 0 && size != std::numeric_limits<long>::max() &&
                      static_cast<std::size_t>(size) <= kLongestFile;
  return likely ? static_cast<std::size_t>(size) : 0;
}

std::string ReadBytes(TextView path) {
  const File file = OpenFile(path, FileUse::Read);
  if (!file) Raise(FileFailure(path));
  std::string bytes;
  bytes.reserve(LikelySize(file.get()) + kBlock);
  std::size_t size = 0;
  for (std::size_t count = 1; count > 0; size += count) {
    if (size > kLongestFile) Raise(Failure::OutOfMemory);
    bytes.resize(size + kBlock);
    count = ReadBlock(file.get(), bytes.data() + size, path);
  }
  bytes.resize(size);
  return bytes;
}

/// Calls visit(first, last) for each line, without its end.
template <class Visit>
void ForEachLine(const std::string& bytes, Visit visit) {
  const char* next = bytes.data();
  const char* const end = next + bytes.size();
  while (next != end) {
    const char* last = next;
    while (last != end && *last != '\r' && *last != '\n') ++last;
    visit(next, last);
    next = last;
    if (next != end && *next == '\r') ++next;
    if (next != end && *next == '\n' && (next == last || next[-1] == '\r')) ++next;
  }
}

}  // namespace

// The file's bytes and the text, made at its exact size, are all that is held: half
// as much again as the text alone.
Text ReadTextFile(TextView path) {
  const std::string bytes = ReadBytes(path);
  if (bytes.empty()) Raise(Failure::ReadPastEnd);
  std::size_t size = 0;
  ForEachLine(bytes, [&](const char* first, const char* last) {
    size += static_cast<std::size_t>(last - first) + 2;
  });
  if (size > kLongestFile) Raise(Failure::OutOfMemory);
  Text text;
  text.reserve(size);
  ForEachLine(bytes, [&](const char* first, const char* last) {
    for (; first != last; ++first) text += FromCodePage(static_cast<unsigned char>(*first));
    text += u"\r\n";
  });
  return text;
}

}  // namespace tovalin
