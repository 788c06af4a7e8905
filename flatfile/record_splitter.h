#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "flatfile/layout.h"
#include "frame/system/host_file.h"

namespace tovalin::flat {

/// Reads a file record by record, in constant memory.
class RecordSplitter {
 public:
  /// Raises 53 for no file, 70 without the right to read it, 75 otherwise.
  RecordSplitter(const Layout& layout, const Text& path);

  /// Gives the next record, without its line end, until the next call. False at the end of
  /// the file. Raises kObjectError for a record of more than kLongestRecord characters
  /// and 75 when the file cannot be read.
  bool Next(std::string_view& record);
  /// Whether the record that was given is the last one.
  bool IsLast() const { return is_last_; }

 private:
  std::size_t FindEnd();
  bool ReadMore();
  bool HasMore();

  const Layout& layout_;
  Text path_;
  File file_;
  std::string buffer_;
  std::size_t begin_ = 0;    // of what was not given yet
  std::size_t scanned_ = 0;  // behind begin_, without an end of the record
  bool in_quotes_ = false;   // at scanned_
  bool at_end_ = false;      // of the file
  bool is_last_ = false;
  std::int64_t records_ = 0;
};

/// A field of a record as it stands in the file, without its quotes.
struct Slice {
  std::string_view bytes;
  bool quoted = false;
};

/// Splits records into their fields.
class FieldSplitter {
 public:
  explicit FieldSplitter(const Layout& layout) : layout_(layout) {}

  /// The fields of a delimited record, until the next call. Throws Problem for a quote
  /// out of place.
  const std::vector<Slice>& Delimited(std::string_view record);
  /// The fields of a fixed record of that kind, those in front of a missing end. Throws
  /// Problem for a record of another length.
  const std::vector<Slice>& Fixed(std::string_view record, const RecordLayout& kind);

 private:
  std::size_t ReadQuoted(std::string_view record, std::size_t at);

  const Layout& layout_;
  std::vector<Slice> slices_;
  std::deque<std::string> unquoted_;  // texts that had doubled quotes
  std::size_t used_ = 0;              // of them
};

}  // namespace tovalin::flat
