#include "flatfile/text_file.h"

#include <cerrno>

#include "frame/object/error_translation.h"

namespace tovalin::flat {

NativePath PathToWrite(const Text& path) {
  if (path.empty()) Raise(Failure::BadFileName);
  return ToNativePath(path);
}

File OpenToRead(const Text& path) {
  File file = OpenFile(path, FileUse::Read);
  if (!file)
    throw ErrorAbout(errno == ENOENT   ? Failure::FileNotFound
                     : errno == EACCES ? Failure::PermissionDenied
                                       : Failure::PathAccess,
                     path);
  return file;
}

std::string ReadWholeFile(const Text& path) {
  constexpr std::size_t kMost = std::size_t{1} << 24;
  const File file = OpenToRead(path);
  std::string bytes;
  char block[4096];
  while (const std::size_t read = std::fread(block, 1, sizeof block, file.get())) {
    bytes.append(block, read);
    if (bytes.size() > kMost) RaiseOwn(u"ArchivoPlano", u"El archivo es demasiado largo");
  }
  if (std::ferror(file.get())) throw ErrorAbout(Failure::PathAccess, path);
  return bytes;
}

}  // namespace tovalin::flat
