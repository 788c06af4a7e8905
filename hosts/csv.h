#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/input.h"
#include "tovalin/text.h"

namespace tovalin::tool {

/// The fields of one row of a CSV file, in UTF-8. The row's memory is used again
/// for the next row.
using CsvRow = std::vector<std::string>;

/// A CSV file that is read row by row, in large blocks.
class CsvReader {
 public:
  /// "-" is standard input. Raises what OpenInput does.
  explicit CsvReader(const std::string& path) : path_(path), file_(OpenInput(path)) {}

  /// Hands each row on: fields quoted or not, "," between them, a byte order mark
  /// skipped, empty lines too. Raises 75 for a file that cannot be read, and what
  /// `take` throws.
  void ForEachRow(const std::function<void(CsvRow&)>& take);

 private:
  std::string path_;
  InputFile file_;
};

/// Writes CSV in large blocks, quoting where a field needs it. Writing raises 61
/// when it fails.
class CsvWriter {
 public:
  /// An empty path is standard output. Raises 75 for a file that cannot be made.
  explicit CsvWriter(const std::string& path);
  ~CsvWriter();
  CsvWriter(const CsvWriter&) = delete;
  CsvWriter& operator=(const CsvWriter&) = delete;

  void Field(std::string_view utf8);
  void Field(TextView text);
  void Field(std::int64_t whole);
  void EndRow();
  /// Writes what is left.
  void Finish();

 private:
  char* BeginField(std::size_t most);
  void Quote(std::string_view utf8);
  void EndField(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }
  void MakeRoom(std::size_t most);
  void Flush();

  std::FILE* file_;
  bool owns_file_;
  bool first_in_row_ = true;
  std::vector<char> buffer_;
  std::size_t used_ = 0;  // of it
  std::string utf8_;      // of one text, kept for its memory
};

}  // namespace tovalin::tool
