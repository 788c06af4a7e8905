#include <windows.h>

#include "files/attributes.h"
#include "frame/system/host_file.h"

namespace tovalin {

std::optional<std::uint32_t> FileAttributes(TextView path) {
  const DWORD attributes = GetFileAttributesW(ToNativePath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  return attributes;
}

}  // namespace tovalin
