#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "flatfile/error_log.h"
#include "flatfile/field_reader.h"
#include "flatfile/field_writer.h"
#include "flatfile/record_splitter.h"
#include "flatfile/totals.h"

namespace tovalin::flat {

/// Reads one file by a checked layout, record by record and in constant memory.
class FileReader {
 public:
  /// Opens the file. Faults of records go to `log`; raises what RecordSplitter raises.
  /// All that is given must outlive the reader.
  FileReader(const Layout& layout, const Text& path, ErrorLog& log);

  /// A record that was read whole: its kind as a number of the layout, its fields' values.
  using Visit = std::function<bool(std::size_t kind, std::span<const Variant> values)>;
  /// Hands on each record until `visit` answers False or the file ends; totals are
  /// compared at its end.
  void Read(const Visit& visit);

  std::int64_t Number() const { return number_; }
  std::int64_t Refused() const { return refused_; }
  /// The records read, by kind of record of the layout.
  const std::vector<std::int64_t>& Records() const { return records_; }

 private:
  struct Field {
    const FieldLayout* layout;
    FieldReader reader;
    std::string constant;  // as it stands in the file
  };
  struct Kind {
    const RecordLayout* layout;
    std::deque<Field> fields;
    std::vector<Variant> values;  // of the present record
  };
  /// A total that a header or trailer tells.
  struct Told {
    std::size_t kind;
    std::size_t field;
    std::size_t total;
    Variant value;
    std::int64_t record;
  };

  std::string ConstantOf(const FieldLayout& field) const;
  void CheckTitles(std::string_view record);
  bool ReadRecord(std::string_view record, const Visit& visit);
  const std::vector<Slice>& Split(std::string_view record, const RecordLayout& kind);
  bool FindKind(std::string_view record, std::size_t& found);
  bool HasConstants(std::string_view record, Kind& kind, bool log);
  bool CanStand(const RecordLayout& record) const;
  bool ReadFields(Kind& kind);
  void Count(std::size_t kind);
  void CompareTotals();
  void RequireFrame();
  void Log(const RecordLayout* record, const FieldLayout* field, std::string_view bytes,
           std::string_view reason);

  const Layout& layout_;
  ErrorLog& log_;
  RecordSplitter records_of_;
  FieldSplitter fields_of_;
  Totals totals_;
  const std::vector<Slice>* slices_ = nullptr;  // of the record that was split last
  std::deque<Kind> kinds_;
  std::vector<Told> told_;
  std::int64_t number_ = 0;  // of the present record
  std::int64_t first_ = 1;   // the number of the first record behind the titles
  std::int64_t refused_ = 0;
  std::vector<std::int64_t> records_;
};

}  // namespace tovalin::flat
