#include "tovalin/lib_file.h"

#include "files/attributes.h"
#include "files/process.h"
#include "files/text_file.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"

namespace tovalin {

bool LibFile::DirExist(const Variant& vstrFile) const {
  return RaisingErrors([&] {
    try {
      // Deliberately strict: hosts take a read-only or hidden directory as absent.
      const auto attributes = FileAttributes(ToText(vstrFile));
      return attributes == kDirectory || attributes == (kDirectory | kArchive);
    } catch (const Error&) {
      return false;
    }
  });
}

bool LibFile::FileExist(const Variant& vstrFileName) const {
  return RaisingErrors([&] {
    const Text path = ToText(vstrFileName);
    return path.find(u'\0') == Text::npos && FileAttributes(path).has_value();
  });
}

void LibFile::Ejecutar(const Text& cmdLine, bool Sincronico) const {
  RaisingErrors([&] {
    if (Sincronico)
      RunAndWait(cmdLine);
    else
      Launch(cmdLine);
  });
}

std::int16_t LibFile::IsUNCName(const Text& strPathName) const {
  // The empty path is found too, deliberately: hosts test for a name that is not
  // on a drive.
  constexpr TextView kBeginnings = u"\\\\//\\";
  const bool found = kBeginnings.find(TextView(strPathName).substr(0, 2)) != TextView::npos;
  return found ? -1 : 0;
}

Text LibFile::StripFileName(Text& rsFileName) const {
  return RaisingErrors([&] { return rsFileName.substr(rsFileName.rfind(u'\\') + 1); });
}

Text LibFile::StripPath(const Text& vstrFile) const {
  return RaisingErrors([&] {
    const std::size_t separator = vstrFile.rfind(u'\\');
    // Without a directory the answer is "\" alone, deliberately: hosts append the
    // file name to it.
    Text directory = separator == Text::npos ? Text() : vstrFile.substr(0, separator);
    if (!directory.ends_with(u'\\')) directory += u'\\';
    return directory;
  });
}

Text LibFile::FileToText(const Text& FileName) const {
  return RaisingErrors([&] { return FileExist(FileName) ? ReadTextFile(FileName) : Text(); });
}

}  // namespace tovalin
