#include "export/record_writer.h"

#include "frame/code_page.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

// A Size may ask for gigabytes of blanks; no flat file has such records.
constexpr std::size_t kLongestRecord = std::size_t{1} << 28;

/// Raises 9 for a negative column, as for any that is not there.
const Variant& Cell(const Variant& data, std::int16_t column, std::size_t row) {
  if (!data.Is(Subtype::Array)) Raise(Failure::TypeMismatch);
  if (column < 0) Raise(Failure::SubscriptOutOfRange);
  return data.AsArray().At(static_cast<std::size_t>(column), row);
}

std::size_t PadCount(const FieldType& type, std::size_t length) {
  const auto width = static_cast<std::size_t>(type.width);
  if (type.width < 0 || length > width) Raise(Failure::InvalidArgument);
  return width - length;
}

}  // namespace

RecordWriter::RecordWriter(TextView date_pattern, char16_t text_qualifier, bool fixed_width)
    : value_text_(date_pattern),
      text_qualifier_(ToCodePage(text_qualifier)),
      fixed_width_(fixed_width) {}

std::size_t RecordWriter::Add(const Field& field, const Variant& data, std::size_t row) {
  const std::size_t start = record_.size();
  if (fixed_width_)
    AppendFixed(field, Cell(data, field.column, row));
  else
    AppendDelimited(field, data, row);
  const std::size_t length = record_.size() - start;
  record_ += kFieldDelimiter;
  return length;
}

void RecordWriter::AppendFixed(const Field& field, const Variant& value) {
  const FieldType& type = field.type;
  const TextView text = value_text_.Formed(value, type.form);
  const std::size_t pad = type.fill == FieldFill::None ? 0 : PadCount(type, text.size());
  RequireRoom(text.size() + pad);
  if (type.fill == FieldFill::NulLeft) record_.append(pad, '\0');
  if (type.fill == FieldFill::BlankLeft) record_.append(pad, ' ');
  AppendToCodePage(record_, text);
  if (type.fill == FieldFill::BlankRight) record_.append(pad, ' ');
}

// A field of any other type repeats the last text field, deliberately: readers of
// these files know the columns by it, and other values would shift their meaning.
void RecordWriter::AppendDelimited(const Field& field, const Variant& data, std::size_t row) {
  if (field.type.is_text) {
    quoted_.assign(1, text_qualifier_);
    AppendToCodePage(quoted_, value_text_.Plain(Cell(data, field.column, row)));
    quoted_ += text_qualifier_;
  }
  RequireRoom(quoted_.size());
  record_ += quoted_;
}

void RecordWriter::RequireRoom(std::size_t length) const {
  // The delimiter behind the field may have filled the record by one more.
  if (record_.size() > kLongestRecord || length > kLongestRecord - record_.size())
    Raise(Failure::OutOfMemory);
}

const std::string& RecordWriter::Finish() {
  if (!fixed_width_) {
    if (record_.empty()) Raise(Failure::InvalidArgument);
    record_.pop_back();
  }
  return record_ += "\r\n";
}

}  // namespace tovalin
