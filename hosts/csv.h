#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tovalin::tool {

/// The fields of one row of a CSV file, in UTF-8. The row's memory is used again
/// for the next row.
using CsvRow = std::vector<std::string>;

/// Reads a CSV file row by row, in large blocks, and hands each row on: fields
/// quoted or not, "," between them, a byte order mark skipped, empty lines too.
/// Raises 53 for a file that is not there, 70 or 75 for one that cannot be read,
/// and what `take` throws.
void ReadCsv(const std::string& path, const std::function<void(CsvRow&)>& take);

/// Writes CSV in large blocks, quoting where a field needs it.
class CsvWriter {
 public:
  /// An empty path is standard output. Raises 75 for a file that cannot be made.
  explicit CsvWriter(const std::string& path);
  ~CsvWriter();
  CsvWriter(const CsvWriter&) = delete;
  CsvWriter& operator=(const CsvWriter&) = delete;

  void Field(std::string_view text);
  void EndRow();
  /// Writes what is left. Raises 61 when something could not be written.
  void Finish();

 private:
  void Flush();

  std::FILE* file_;
  bool owns_file_;
  bool first_in_row_ = true;
  bool failed_ = false;
  std::string buffer_;
};

}  // namespace tovalin::tool
