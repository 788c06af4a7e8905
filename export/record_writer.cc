#include "export/record_writer.h"

#include "export/failure_reason.h"
#include "frame/text/code_page.h"

namespace tovalin {
namespace {

// A Size may ask for gigabytes of blanks; no flat file has such records.
constexpr std::size_t kLongestRecord = std::size_t{1} << 28;

[[noreturn]] void RaiseNoSuch(std::string_view what, std::int64_t number, std::size_t count) {
  RaiseBecause(Failure::SubscriptOutOfRange, "el arreglo no tiene la " + std::string(what) + ' ' +
                                                 std::to_string(number) + ": tiene " +
                                                 std::to_string(count) + ", contadas desde 0");
}

std::size_t PadCount(const FieldType& type, std::size_t length) {
  const auto width = static_cast<std::size_t>(type.width);
  if (type.width < 0 || length > width)
    RaiseBecause(Failure::InvalidArgument, "ocupa " + std::to_string(length) +
                                               " caracteres y el campo es de " +
                                               std::to_string(type.width));
  return width - length;
}

}  // namespace

const Variant& CellOf(const Variant& data, std::int16_t column, std::size_t row) {
  if (!data.Is(Subtype::Array))
    RaiseBecause(Failure::TypeMismatch, "los datos no son un arreglo de dos dimensiones");
  const VariantArray& array = data.AsArray();
  const auto place = static_cast<std::size_t>(column);
  if (column < 0 || place >= array.Columns()) RaiseNoSuch("columna", column, array.Columns());
  if (row >= array.Rows()) RaiseNoSuch("fila", static_cast<std::int64_t>(row), array.Rows());
  return array.At(place, row);
}

RecordWriter::RecordWriter(TextView date_pattern, char16_t text_qualifier, bool fixed_width)
    : value_text_(date_pattern),
      text_qualifier_(ToCodePage(text_qualifier)),
      fixed_width_(fixed_width) {}

std::size_t RecordWriter::Add(const Field& field, const Variant& data, std::size_t row) {
  const std::size_t start = record_.size();
  if (fixed_width_)
    AppendFixed(field, CellOf(data, field.column, row));
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
    AppendToCodePage(quoted_, value_text_.Plain(CellOf(data, field.column, row)));
    quoted_ += text_qualifier_;
  }
  RequireRoom(quoted_.size());
  record_ += quoted_;
}

void RecordWriter::RequireRoom(std::size_t length) const {
  // The delimiter behind the field may have filled the record by one more.
  if (record_.size() > kLongestRecord || length > kLongestRecord - record_.size())
    RaiseBecause(Failure::OutOfMemory,
                 "el registro pasa de " + std::to_string(kLongestRecord) + " caracteres");
}

const std::string& RecordWriter::Finish() {
  if (!fixed_width_) {
    if (record_.empty()) RaiseBecause(Failure::InvalidArgument, "no hay campos");
    record_.pop_back();
  }
  return record_ += "\r\n";
}

}  // namespace tovalin
