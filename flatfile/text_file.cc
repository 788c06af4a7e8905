#include "flatfile/text_file.h"

#include <cerrno>

#include "frame/object/guarded.h"

namespace tovalin::flat {

NativePath PathToWrite(const Text& path) {
  if (path.empty()) Raise(Failure::BadFileName);
  return ToNativePath(path);
}

std::string ReadWholeFile(const Text& path) {
  constexpr std::size_t kMost = std::size_t{1} << 24;
  const auto raise = [&](Failure failure) { throw ErrorAbout(failure, path); };
  const File file = OpenFile(path, FileUse::Read);
  if (!file)
    raise(errno == ENOENT   ? Failure::FileNotFound
          : errno == EACCES ? Failure::PermissionDenied
                            : Failure::PathAccess);
  std::string bytes;
  char block[4096];
  while (const std::size_t read = std::fread(block, 1, sizeof block, file.get())) {
    bytes.append(block, read);
    if (bytes.size() > kMost) RaiseOwn(u"ArchivoPlano", u"El archivo es demasiado largo");
  }
  if (std::ferror(file.get())) raise(Failure::PathAccess);
  return bytes;
}

}  // namespace tovalin::flat
