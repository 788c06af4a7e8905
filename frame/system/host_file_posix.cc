#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "frame/system/host_file.h"
#include "tovalin/error.h"

namespace tovalin {

NativePath ToNativePath(TextView path) {
  NativePath native = ToUtf8(path);
  if (native.find('\0') != NativePath::npos) Raise(Failure::BadFileName);
  std::ranges::replace(native, '\\', '/');
  return native;
}

File OpenFile(TextView path, FileUse use) {
  File file(std::fopen(ToNativePath(path).c_str(), use == FileUse::Read ? "rbe" : "wbe"));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

std::FILE* OpenStream(const std::filesystem::path& path, const char* mode) {
  return std::fopen(path.c_str(), (std::string(mode) + 'e').c_str());
}

bool SyncToDisk(std::FILE* file) {
  return fsync(fileno(file)) == 0 || errno == EINVAL || errno == ENOTSUP;
}

}  // namespace tovalin
