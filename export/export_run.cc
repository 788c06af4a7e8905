#include "export/export_run.h"

#include "export/layout_description.h"
#include "export/record_writer.h"
#include "frame/object/error_translation.h"
#include "frame/text/code_page.h"
#include "tovalin/convert.h"

namespace tovalin {
namespace {

using FileState = clsFileExport::FileState;

FileState StateOf(const std::optional<OutputFile>& file) {
  if (!file) return FileState::Untouched;
  return file->IsComplete() ? FileState::Complete : FileState::Incomplete;
}

}  // namespace

void ExportRun::Write() {
  data_file_.emplace(input_.path + u".txt");
  LayoutDescription layout(input_.path, input_.clock.Now(), input_.fixed_width);
  RecordWriter records(input_.date_pattern, input_.text_qualifier, input_.fixed_width);
  for (std::int64_t row = 0; row <= input_.last_row; ++row) {
    if (row == 0) fields_ = ResolveFields(input_.fields.get());
    records.Start();
    for (const Field& field : fields_) {
      field_ = &field;
      row_ = row;
      const std::size_t length = records.Add(field, input_.data, static_cast<std::size_t>(row));
      if (row > 0) continue;
      row_ = -1;  // the layout is of no row
      layout.AddField(field.name, length);
    }
    row_ = row;
    field_ = nullptr;
    const std::string& record = records.Finish();
    row_ = -1;  // what the disk does not take is of many rows
    data_file_->Write(record);
  }
  std::string description;
  AppendToCodePage(description, layout.Finish(input_.last_row));
  data_file_->Close();
  layout_file_.emplace(input_.path + u".ref");
  layout_file_->Write(description += "\r\n");
  layout_file_->Close();
}

void ExportRun::Describe(clsFileExport::FailureReport& report) {
  for (std::optional<OutputFile>* file : {&data_file_, &layout_file_})
    if (*file) (*file)->Abandon();
  report.data = StateOf(data_file_);
  report.layout = StateOf(layout_file_);
  if (data_file_) {
    report.records = data_file_->WholeWrites();
    report.broken_record = data_file_->HasBrokenWrite();
  }
  report.row = row_;
  if (!field_) return;
  report.field = field_->name;
  if (row_ < 0) return;
  // There may be no such cell, or no text of it: that is what failed then.
  CatchError([&] {
    report.value = ToText(CellOf(input_.data, field_->column, static_cast<std::size_t>(row_)));
  });
}

}  // namespace tovalin
