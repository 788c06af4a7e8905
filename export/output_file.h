#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/system/host_file.h"

namespace tovalin {

/// A file written through a buffer of its own. What was written before a failure
/// or the end of the object reaches the disk.
class OutputFile {
 public:
  /// Creates or empties the file. Raises 52 for a bad name, 61 on a full disk, 70
  /// without the right to write and 75 otherwise.
  explicit OutputFile(TextView path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() { Abandon(); }

  /// Raises 61 on a full disk and 75 when the file is not to be written otherwise.
  void Write(std::string_view bytes);
  /// Writes what is buffered and closes the file. Raises the same.
  void Close();
  /// The same after a failure elsewhere, as far as it goes.
  void Abandon();

  bool IsComplete() const { return is_complete_; }
  /// How many calls of Write stand whole in the file, and whether a part of one more
  /// stands behind them.
  std::int64_t WholeWrites() const { return whole_writes_; }
  bool HasBrokenWrite() const { return has_broken_write_; }

 private:
  int Flush();
  void CountWritten(std::size_t bytes);
  [[noreturn]] void RaiseUnwritable(int cause) const;

  Text path_;
  File file_;
  std::string buffer_;
  std::vector<std::size_t> ends_;  // of the calls of Write, in the buffer
  std::int64_t whole_writes_ = 0;
  bool has_broken_write_ = false;
  bool is_complete_ = false;
};

}  // namespace tovalin
