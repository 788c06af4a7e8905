#pragma once

#include <optional>
#include <vector>

#include "export/field.h"
#include "export/output_file.h"
#include "tovalin/clock.h"
#include "tovalin/cls_file_export.h"

namespace tovalin {

/// Everything that an export needs, so that nothing of the host's is read after its
/// clock ran.
struct ExportInput {
  Variant data;
  Ref<Campos> fields;
  std::int32_t last_row;
  Text path;
  Text date_pattern;
  char16_t text_qualifier;
  bool fixed_width;
  HostClock clock;
};

/// One export: its files, and how far it came.
class ExportRun {
 public:
  explicit ExportRun(ExportInput input) : input_(std::move(input)) {}

  /// Writes both files. Raises what is wrong.
  void Write();
  /// After a failure, closes the files and adds where it was and what they hold.
  void Describe(clsFileExport::FailureReport& report);

 private:
  ExportInput input_;
  std::optional<OutputFile> data_file_;
  std::optional<OutputFile> layout_file_;
  std::vector<Field> fields_;
  std::int64_t row_ = -1;         // that is being written
  const Field* field_ = nullptr;  // of it, or of the layout
};

}  // namespace tovalin
