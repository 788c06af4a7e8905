#include <sys/stat.h>

#include <string_view>

#include "files/attributes.h"
#include "frame/system/host_file.h"

namespace tovalin {
namespace {

constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

std::string_view LastName(std::string_view path) {
  while (path.ends_with('/')) path.remove_suffix(1);
  return path.substr(path.rfind('/') + 1);
}

bool IsHidden(std::string_view path) {
  const std::string_view name = LastName(path);
  return name.starts_with('.') && name != "." && name != "..";
}

}  // namespace

std::optional<std::uint32_t> FileAttributes(TextView path) {
  const NativePath native = ToNativePath(path);
  struct stat status;
  if (stat(native.c_str(), &status) != 0) return std::nullopt;
  std::uint32_t attributes = S_ISDIR(status.st_mode) ? kDirectory : kArchive;
  if ((status.st_mode & kAnyWrite) == 0) attributes |= kReadOnly;
  if (IsHidden(native)) attributes |= kHidden;
  return attributes;
}

}  // namespace tovalin
