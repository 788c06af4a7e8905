#pragma once

#include "tovalin/api.h"
#include "tovalin/event.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

/// Helpers for paths, text files and processes.
///
/// A path separates its directories by "\" alone. On a system that separates them
/// by "/", a "\" is read as "/" where the path reaches the disk, and a drive
/// prefix ("C:") is part of the name. Every member is of one moment: another
/// process may change the disk right after.
class TOVALIN_API LibFile : public Object {
 public:
  static constexpr TextView kClassName = u"LibFile";

  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// Whether the path is a directory with no attribute but, at most, the archive
  /// mark: a read-only or hidden one answers False. Never raises.
  bool DirExist(const Variant& vstrFile) const;

  /// Whether something has that name on the disk, readable or not. Raises 13 for
  /// a value that has no text.
  bool FileExist(const Variant& vstrFileName) const;

  /// Runs a command line, with no shell in between: the first word names the
  /// program, blanks separate words, double quotes hold blanks in a word, and \"
  /// is a quote. The program inherits the environment, the current directory and
  /// the open handles.
  ///
  /// With `Sincronico` it returns when that program has ended, however long it
  /// takes; without, at once, and the program outlives the host. A program that
  /// cannot be started ends the call quietly.
  ///
  ///   files.Ejecutar(u"\"C:\\Mis programas\\copia.exe\" datos.txt", true);
  void Ejecutar(const Text& cmdLine, bool Sincronico = false) const;

  /// -1 when the path begins as a network name does ("\\", "//", "\/" or "/\"),
  /// is one separator alone, or is empty; else 0.
  std::int16_t IsUNCName(const Text& strPathName) const;

  /// The file name: what follows the last "\" ("C:\datos\a.txt" gives "a.txt").
  /// The argument is not changed.
  Text StripFileName(Text& rsFileName) const;

  /// The directory with its final "\" ("C:\datos\a.txt" gives "C:\datos\"); "\"
  /// when there is none.
  Text StripPath(const Text& vstrFile) const;

  /// The text of a file in code page 1252, each line followed by carriage return
  /// and line feed; a line ends with both, with either or with the file. Empty
  /// when nothing has that name. Raises 62 for an empty file, 70 without
  /// permission, 75 for a directory or a failure of reading, 53 or 76 when the
  /// file or its directory vanishes during the call, and 7 for a text of more than
  /// 2147483647 characters.
  Text FileToText(const Text& FileName) const;

  // For hosts that follow long operations: none of the members above raises them.
  Event<bool&> OnProcess;     // (Cancel)
  Event<bool&> BeforeDelete;  // (Cancel)
};

}  // namespace tovalin
