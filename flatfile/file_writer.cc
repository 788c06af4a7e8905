#include "flatfile/file_writer.h"

#include <algorithm>

#include "flatfile/problem.h"
#include "flatfile/text_file.h"
#include "frame/object/error_translation.h"
#include "tovalin/convert.h"

namespace tovalin::flat {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 16;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string PlaceOf(const RecordLayout& record, const FieldLayout& field) {
  return "Registro " + Quoted(record.name) + ", campo " + Quoted(field.name);
}

Text TextOfValue(const Variant& value) {
  Text text;
  CatchError([&] { text = value.Is(Subtype::Null) ? Text() : ToText(value); });
  return text;
}

}  // namespace

FileWriter::FileWriter(const Layout& layout, const WriteContext& context, const Text& path,
                       ErrorLog& log)
    : layout_(layout),
      context_(context),
      log_(log),
      formulas_(context.evaluator, context.columns, *context.parameters),
      totals_(layout),
      file_(PathToWrite(path)),
      records_(layout.records.size()) {
  for (std::size_t record = 0; record < layout.records.size(); ++record) {
    kinds_.push_back({&layout.records[record], {}});
    const std::vector<FieldLayout>& fields = layout.records[record].fields;
    for (std::size_t field = 0; field < fields.size(); ++field)
      kinds_.back().fields.push_back(
          {&fields[field], SourceOf(record, field), FieldWriter(layout, fields[field])});
  }
  if (!layout.kind_column.empty()) kind_column_ = FindColumn(layout.kind_column);
  if (!layout.kind_column.empty() && kind_column_ == kNotFound)
    RaiseFault("Diseño", "no hay una columna " + Quoted(layout.kind_column));
  if (layout.encoding == Encoding::Utf8Mark) buffer_ += kByteOrderMark;
  if (layout.header_row) WriteTitles();
  header_begin_ = static_cast<std::int64_t>(buffer_.size());
  WriteAll(Role::First);
  header_size_ = buffer_.size() - static_cast<std::size_t>(header_begin_);
}

std::size_t FileWriter::FindColumn(TextView name) const {
  const auto named = [&](const Text& column) { return EqualFolded(column, name); };
  const auto found = std::ranges::find_if(context_.columns, named);
  return found == context_.columns.end()
             ? kNotFound
             : static_cast<std::size_t>(found - context_.columns.begin());
}

FileWriter::Source FileWriter::SourceOf(std::size_t record_number, std::size_t field_number) {
  const RecordLayout& record = layout_.records[record_number];
  const FieldLayout& field = record.fields[field_number];
  if (field.constant) {
    // A constant of a number or a date is checked as any value is.
    return {Source::Kind::Constant, 0, *field.constant};
  }
  if (!field.formula.empty())
    return {Source::Kind::Formula, formulas_.Add(field.formula, PlaceOf(record, field)), {}};
  if (field.total.kind != TotalKind::None)
    return {Source::Kind::Total, totals_.NumberOf(record_number, field_number), {}};
  return NamedSource(record, field);
}

// A column of the rows, or a parameter: headers and trailers have no row.
FileWriter::Source FileWriter::NamedSource(const RecordLayout& record,
                                           const FieldLayout& field) const {
  if (record.role == Role::Detail) {
    const std::size_t column = FindColumn(field.Column());
    if (column != kNotFound) return {Source::Kind::Column, column, {}};
  }
  if (const Campo* parameter = context_.parameters->Find(field.Column()))
    return {Source::Kind::Constant, 0, parameter->Value()};
  RaiseFault(PlaceOf(record, field),
             (record.role == Role::Detail ? "no hay columna ni parámetro " : "no hay parámetro ") +
                 Quoted(field.Column()));
}

void FileWriter::WriteTitles() {
  FieldLayout title;
  title.type = FieldType::Text;
  FieldWriter writer(layout_, title);
  const std::vector<FieldLayout>& fields = layout_.records.front().fields;
  for (const FieldLayout& field : fields) {
    if (&field != &fields.front()) buffer_ += static_cast<char>(layout_.delimiter);
    try {
      writer.Append(buffer_, field.name);
    } catch (const Problem& problem) {
      RaiseFault(PlaceOf(layout_.records.front(), field), problem.reason);
    }
  }
  AppendLineEnd();
}

void FileWriter::AppendLineEnd() {
  if (layout_.line_end == LineEnd::CrLf) buffer_ += '\r';
  if (layout_.line_end != LineEnd::None) buffer_ += '\n';
}

bool FileWriter::IsWanted(const RecordLayout& record, TextView chosen) const {
  if (record.role != Role::Detail) return false;
  if (!chosen.empty()) return EqualFolded(record.name, chosen);
  if (record.when.empty()) return true;
  return std::ranges::find(record.when, kind_text_) != record.when.end();
}

void FileWriter::Write(std::span<const Variant> values, TextView chosen) {
  ++row_;
  values_ = values;
  formulas_.SetRow(values);
  if (kind_column_ != kNotFound)
    kind_text_ = kind_column_ < values.size() ? TextOfValue(values[kind_column_]) : Text();
  const std::size_t row_begin = buffer_.size();
  bool whole = true;
  bool any = false;
  for (std::size_t kind = 0; kind < kinds_.size(); ++kind) {
    if (!IsWanted(*kinds_[kind].layout, chosen)) continue;
    any = true;
    record_begin_ = buffer_.size();
    whole = AppendRecord(kind) && whole;
  }
  if (!any) {
    const Variant value = Variant(chosen.empty() ? TextView(kind_text_) : chosen);
    Log(nullptr, nullptr, &value, "ningún registro del diseño corresponde a la fila");
  }
  if (!whole || !any) {
    ++refused_;
    buffer_.resize(row_begin);
    return;
  }
  for (std::size_t kind = 0; kind < kinds_.size(); ++kind)
    if (IsWanted(*kinds_[kind].layout, chosen)) Count(kind);
  if (buffer_.size() >= kBufferSize) Flush();
}

void FileWriter::Count(std::size_t kind) {
  ++records_[kind];
  const std::deque<Field>& fields = kinds_[kind].fields;
  totals_.Add(
      kind, [&](std::size_t field) { return fields[field].writer.LastAmount(); },
      [&](std::size_t field) {
        return std::string_view(buffer_).substr(fields[field].begin,
                                                fields[field].end - fields[field].begin);
      });
}

bool FileWriter::AppendRecord(std::size_t kind_number) {
  Kind& kind = kinds_[kind_number];
  bool whole = true;
  std::size_t position = 0;  // in characters, of a fixed record
  for (Field& field : kind.fields) {
    if (layout_.fixed) {
      buffer_.append(field.layout->start - 1 - position, ' ');
      position = field.layout->start - 1 + StepOf(layout_, *field.layout);
    } else if (&field != &kind.fields.front()) {
      buffer_ += static_cast<char>(layout_.delimiter);
    }
    field.begin = buffer_.size();
    whole = AppendField(kind, field) && whole;
    field.end = buffer_.size();
    if (layout_.fixed) buffer_.append(layout_.separator.begin(), layout_.separator.end());
  }
  if (layout_.fixed && layout_.length > position) buffer_.append(layout_.length - position, ' ');
  if (whole && buffer_.size() - record_begin_ > kLongestRecord) {
    Log(kind.layout, nullptr, nullptr, "el registro es demasiado largo");
    whole = false;
  }
  AppendLineEnd();
  return whole;
}

bool FileWriter::AppendField(Kind& kind, Field& field) {
  static const Variant kNothing;
  const Variant* value = &field.source.constant;
  Variant computed;
  try {
    if (field.source.kind == Source::Kind::Column) {
      value = field.source.number < values_.size() ? &values_[field.source.number] : &kNothing;
    } else if (field.source.kind == Source::Kind::Formula) {
      computed = formulas_.Evaluate(field.source.number);
      value = &computed;
    } else if (field.source.kind == Source::Kind::Total) {
      computed = totals_.Value(field.source.number, lines_);
      value = &computed;
    }
    field.writer.Append(buffer_, *value);
    return true;
  } catch (const Problem& problem) {
    Log(kind.layout, field.layout, value, problem.reason);
  } catch (const Error& error) {
    Log(kind.layout, field.layout, value, ToUtf8(error.description));
  }
  return false;
}

void FileWriter::Log(const RecordLayout* record, const FieldLayout* field, const Variant* value,
                     std::string_view reason) {
  log_.Add({record && record->role != Role::Detail ? 0 : row_, record ? record->name : Text(),
            field ? field->name : Text(), value ? TextOfValue(*value) : Text(), FromUtf8(reason)});
}

// Headers and trailers; each kind stands once.
void FileWriter::WriteAll(Role role) {
  for (std::size_t kind = 0; kind < kinds_.size(); ++kind) {
    if (kinds_[kind].layout->role != role) continue;
    record_begin_ = buffer_.size();
    const bool whole = AppendRecord(kind);
    if (whole)
      Count(kind);
    else
      buffer_.resize(record_begin_);
    frame_is_whole_ = frame_is_whole_ && whole;
  }
}

void FileWriter::Flush() {
  file_.Write(buffer_);
  buffer_.clear();
}

// The totals of a header are known only now; it takes the same place as before.
void FileWriter::RewriteHeader() {
  const auto shows_total = [](const Field& field) {
    return field.source.kind == Source::Kind::Total;
  };
  const auto is_open = [&](const Kind& kind) {
    return kind.layout->role == Role::First && std::ranges::any_of(kind.fields, shows_total);
  };
  if (!frame_is_whole_ || std::ranges::none_of(kinds_, is_open)) return;
  for (std::size_t kind = 0; kind < kinds_.size(); ++kind) {
    if (kinds_[kind].layout->role != Role::First) continue;
    record_begin_ = buffer_.size();
    frame_is_whole_ = AppendRecord(kind) && frame_is_whole_;
  }
  if (frame_is_whole_ && buffer_.size() == header_size_) file_.WriteOver(header_begin_, buffer_);
  buffer_.clear();
}

bool FileWriter::Finish(bool partial) {
  values_ = {};
  formulas_.SetRow({});
  const auto is_last = [](const Kind& kind) { return kind.layout->role == Role::Last; };
  lines_ = totals_.Lines() + std::ranges::count_if(kinds_, is_last);
  WriteAll(Role::Last);
  Flush();
  RewriteHeader();
  if (!frame_is_whole_ || (refused_ > 0 && !partial)) return false;
  file_.Commit();
  return true;
}

}  // namespace tovalin::flat
