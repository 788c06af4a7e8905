#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/system/replaced_file.h"
#include "hosts/cli/csv_parser.h"
#include "hosts/cli/input.h"
#include "tovalin/text.h"

namespace tovalin::tool {

/// A CSV file that is read row by row, in large blocks.
class CsvReader {
 public:
  /// "-" is standard input. Raises what OpenInput does.
  explicit CsvReader(const std::string& path, Encoding encoding = Encoding::Utf8)
      : path_(path), file_(OpenInput(path)), encoding_(encoding) {}

  /// Hands each row on, in UTF-8. A byte order mark is passed over, and says that the
  /// file is in UTF-8 whatever the encoding. Raises 75 for a file that cannot be read,
  /// kObjectError, with the place, at the first byte that is not of the encoding and
  /// what CsvParser does, and what `on_row` throws.
  void ForEachRow(const std::function<void(CsvRow&)>& on_row);

 private:
  std::string_view WithoutMark(std::string_view bytes);
  std::size_t ParseBlock(CsvParser& parser, std::string_view bytes, bool is_last);

  std::string path_;
  InputFile file_;
  Encoding encoding_;
  std::string utf8_;  // of a block in another encoding
};

/// What an error about `header` says more when it looks separated by another
/// character than the comma, empty otherwise.
std::string SeparatorHint(const CsvRow& header);

/// Writes CSV in large blocks, quoting where a field needs it. Writing raises what
/// ReplacedFile does, and kObjectError, with the line, for a character that the
/// encoding has not.
class CsvWriter {
 public:
  /// An empty path is standard output.
  explicit CsvWriter(const std::string& path, Encoding encoding = Encoding::Utf8);

  void Field(std::string_view utf8);
  void Field(TextView text);
  void Field(std::int64_t whole);
  void EndRow();
  /// Writes what is left. The file has its name from here on.
  void Finish();

 private:
  static constexpr std::size_t kFlushed = std::string::npos;

  char* BeginField(std::size_t most);
  void Quote(std::string_view utf8);
  void EndField(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.data()); }
  void Reserve(std::size_t most);
  void Flush();
  void WriteInCodePage(std::string_view utf8);

  ReplacedFile file_;
  Encoding encoding_;
  bool first_in_row_ = true;
  std::vector<char> buffer_;
  std::size_t used_ = 0;   // of it
  std::size_t row_ = 0;    // where the row begins in it, kFlushed when that is written
  std::string utf8_;       // of one text, kept for its memory
  std::string encoded_;    // of the buffer
  std::size_t lines_ = 1;  // up to the buffer
};

}  // namespace tovalin::tool
