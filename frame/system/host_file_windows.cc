#include <io.h>

#include <cstring>
#include <string>

#include "frame/system/host_file.h"
#include "tovalin/error.h"

namespace tovalin {

NativePath ToNativePath(TextView path) {
  if (path.find(u'\0') != TextView::npos) Raise(Failure::BadFileName);
  return NativePath(path.begin(), path.end());
}

File OpenFile(TextView path, FileUse use) {
  File file(_wfopen(ToNativePath(path).c_str(), use == FileUse::Read ? L"rbN" : L"wbN"));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

std::FILE* OpenStream(const std::filesystem::path& path, const char* mode) {
  const std::wstring wide(mode, mode + std::strlen(mode));
  return _wfopen(path.c_str(), (wide + L'N').c_str());
}

bool SyncToDisk(std::FILE* file) { return _commit(_fileno(file)) == 0; }

}  // namespace tovalin
