#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "flatfile/error_log.h"
#include "flatfile/field_writer.h"
#include "flatfile/formulas.h"
#include "flatfile/totals.h"
#include "frame/system/replaced_file.h"

namespace tovalin::flat {

/// What rows bring to a file besides their values.
struct WriteContext {
  std::vector<Text> columns;
  Ref<Campos> parameters;
  Ref<Evaluador> evaluator;  // none: a new one
};

/// Writes one file by a checked layout, row by row and in constant memory.
class FileWriter {
 public:
  /// Opens the file and writes what stands before the first row. Faults of rows go to
  /// `log`; raises kObjectError when the layout asks for a column that is not there, and
  /// what ReplacedFile raises. All that is given must outlive the writer.
  FileWriter(const Layout& layout, const WriteContext& context, const Text& path, ErrorLog& log);

  /// Writes the records of the next row, or logs what is wrong with it. `kind` chooses
  /// the kind of record; empty, the layout does.
  void Write(std::span<const Variant> values, TextView kind);
  /// Writes what stands behind the last row and publishes the file, if no row was
  /// refused or `partial` says that it may be published all the same. Answers whether
  /// it was.
  bool Finish(bool partial);

  std::int64_t Refused() const { return refused_; }
  /// The records written, by kind of record of the layout.
  const std::vector<std::int64_t>& Records() const { return records_; }

 private:
  static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

  /// Where the values of a field come from.
  struct Source {
    enum class Kind { Column, Constant, Formula, Total } kind;
    std::size_t number = 0;  // of the column, the formula or the total
    Variant constant;        // or a parameter
  };
  struct Field {
    const FieldLayout* layout;
    Source source;
    FieldWriter writer;
    std::size_t begin = 0;  // of what was last written, in the record
    std::size_t end = 0;
  };
  struct Kind {
    const RecordLayout* layout;
    std::deque<Field> fields;
  };

  Source SourceOf(std::size_t record, std::size_t field);
  Source NamedSource(const RecordLayout& record, const FieldLayout& field) const;
  std::size_t FindColumn(TextView name) const;
  void WriteTitles();
  void WriteAll(Role role);
  bool AppendRecord(std::size_t kind);
  bool AppendField(Kind& kind, Field& field);
  void AppendLineEnd();
  void Count(std::size_t kind);
  bool IsWanted(const RecordLayout& record, TextView chosen) const;
  void Log(const RecordLayout* record, const FieldLayout* field, const Variant* value,
           std::string_view reason);
  void RewriteHeader();
  void Flush();

  const Layout& layout_;
  const WriteContext& context_;
  ErrorLog& log_;
  Formulas formulas_;
  Totals totals_;
  std::deque<Kind> kinds_;
  std::size_t kind_column_ = kNotFound;
  Text kind_text_;  // of the row
  ReplacedFile file_;
  std::string buffer_;
  std::size_t record_begin_ = 0;  // in the buffer
  std::int64_t header_begin_ = 0;
  std::size_t header_size_ = 0;
  std::span<const Variant> values_;
  std::int64_t row_ = 0;
  std::int64_t lines_ = 0;  // what a count of all records tells
  std::int64_t refused_ = 0;
  bool frame_is_whole_ = true;  // no fault in headers and trailers
  std::vector<std::int64_t> records_;
};

}  // namespace tovalin::flat
