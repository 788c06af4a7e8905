#pragma once

#include <string>
#include <string_view>

#include "frame/host_file.h"

namespace tovalin {

/// A file written through a buffer of its own. What was written before a failure
/// or the end of the object reaches the disk.
class OutputFile {
 public:
  /// Creates or empties the file. Raises 75 when that fails, 52 for a bad name.
  explicit OutputFile(TextView path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  /// Raises 61 when the disk does not take it.
  void Write(std::string_view bytes);
  /// Writes what is buffered and closes the file. Raises 61.
  void Close();

 private:
  bool Flush();

  File file_;
  std::string buffer_;
};

}  // namespace tovalin
