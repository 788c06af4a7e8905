#include "flatfile/file_reader.h"

#include <algorithm>

#include "flatfile/encoding.h"
#include "flatfile/problem.h"
#include "tovalin/convert.h"

namespace tovalin::flat {

FileReader::FileReader(const Layout& layout, const Text& path, ErrorLog& log)
    : layout_(layout),
      log_(log),
      records_of_(layout, path),
      fields_of_(layout),
      totals_(layout),
      records_(layout.records.size()) {
  for (const RecordLayout& record : layout.records) {
    kinds_.push_back({&record, {}, {}});
    for (const FieldLayout& field : record.fields)
      kinds_.back().fields.push_back({&field, FieldReader(layout, field), ConstantOf(field)});
  }
}

// A constant as the writer writes it, without quotes.
std::string FileReader::ConstantOf(const FieldLayout& field) const {
  std::string bytes;
  if (!field.constant) return bytes;
  try {
    FieldWriter(layout_, field).Append(bytes, *field.constant);
    if (!layout_.fixed) bytes = std::string(FieldSplitter(layout_).Delimited(bytes)[0].bytes);
  } catch (const Problem& problem) {
    RaiseFault("Campo " + Quoted(field.name), problem.reason);
  }
  return bytes;
}

void FileReader::Log(const RecordLayout* record, const FieldLayout* field, std::string_view bytes,
                     std::string_view reason) {
  Text value;
  try {
    value = Decode(bytes, layout_.encoding);
  } catch (const Problem&) {
    value = FromUtf8(bytes);
  }
  log_.Add({number_, record ? record->name : Text(), field ? field->name : Text(), value,
            FromUtf8(reason)});
}

void FileReader::Read(const Visit& visit) {
  std::string_view record;
  if (layout_.header_row) {
    ++number_;
    first_ = 2;
    if (!records_of_.Next(record)) return Log(nullptr, nullptr, {}, "faltan los títulos");
    CheckTitles(record);
  }
  while (records_of_.Next(record)) {
    ++number_;
    if (!ReadRecord(record, visit)) return;
  }
  RequireFrame();
  CompareTotals();
}

void FileReader::CheckTitles(std::string_view record) {
  const RecordLayout& kind = layout_.records.front();
  try {
    const std::vector<Slice>& titles = fields_of_.Delimited(record);
    for (std::size_t i = 0; i < kind.fields.size(); ++i) {
      const Text title = i < titles.size() ? Decode(titles[i].bytes, layout_.encoding) : Text();
      if (title != kind.fields[i].name)
        Log(&kind, &kind.fields[i], i < titles.size() ? titles[i].bytes : std::string_view(),
            "el título debe ser " + Quoted(kind.fields[i].name));
    }
    if (titles.size() > kind.fields.size())
      Log(&kind, nullptr, titles[kind.fields.size()].bytes, "sobran títulos");
  } catch (const Problem& problem) {
    Log(&kind, nullptr, record, problem.reason);
  }
}

// Answers whether to go on.
bool FileReader::ReadRecord(std::string_view record, const Visit& visit) {
  std::size_t kind = 0;
  if (!FindKind(record, kind) || !ReadFields(kinds_[kind])) {
    ++refused_;
    return true;
  }
  ++records_[kind];
  Count(kind);
  return visit(kind, kinds_[kind].values);
}

// The fields stay in slices_ until the next split.
const std::vector<Slice>& FileReader::Split(std::string_view record, const RecordLayout& kind) {
  slices_ = layout_.fixed ? &fields_of_.Fixed(record, kind) : &fields_of_.Delimited(record);
  return *slices_;
}

// Headers stand before all others and trailers behind, in the order of the layout.
bool FileReader::CanStand(const RecordLayout& record) const {
  std::int64_t first_kinds = 0;
  std::int64_t place = 0;  // of the kind among those of its role
  std::int64_t last_kinds = 0;
  for (const RecordLayout& other : layout_.records) {
    if (&other == &record) place = record.role == Role::First ? first_kinds : last_kinds;
    first_kinds += other.role == Role::First;
    last_kinds += other.role == Role::Last;
  }
  const std::int64_t number = number_ - first_;
  if (record.role == Role::First) return number == place;
  if (number < first_kinds) return false;
  // Several trailers are told apart by their constants; one alone is the last record.
  if (last_kinds == 1) return records_of_.IsLast() == (record.role == Role::Last);
  return true;
}

bool FileReader::FindKind(std::string_view record, std::size_t& found) {
  std::size_t candidates = 0;
  for (std::size_t kind = 0; kind < kinds_.size(); ++kind) {
    if (!CanStand(*kinds_[kind].layout)) continue;
    found = kind;
    ++candidates;
    if (HasConstants(record, kinds_[kind], false)) return true;
  }
  if (candidates == 1)
    HasConstants(record, kinds_[found], true);
  else
    Log(nullptr, nullptr, record, "ningún registro del diseño corresponde");
  return false;
}

// Whether a record has the constants of a kind in their places; with `log`, what it has
// instead is a fault.
bool FileReader::HasConstants(std::string_view record, Kind& kind, bool log) {
  try {
    const std::vector<Slice>& slices = Split(record, *kind.layout);
    if (slices.size() != kind.fields.size())
      throw Problem{"el registro tiene " + std::to_string(slices.size()) +
                    " campos y el diseño dice " + std::to_string(kind.fields.size())};
    for (std::size_t i = 0; i < slices.size(); ++i) {
      const Field& field = kind.fields[i];
      if (!field.layout->constant || slices[i].bytes == field.constant) continue;
      if (log)
        Log(kind.layout, field.layout, slices[i].bytes,
            "debe decir " + Quoted(*field.layout->constant));
      return false;
    }
    return true;
  } catch (const Problem& problem) {
    if (log) Log(kind.layout, nullptr, record, problem.reason);
    return false;
  }
}

bool FileReader::ReadFields(Kind& kind) {
  const std::vector<Slice>& slices = *slices_;
  kind.values.resize(kind.fields.size());
  bool whole = true;
  for (std::size_t i = 0; i < slices.size(); ++i) {
    try {
      kind.values[i] = kind.fields[i].reader.Read(slices[i]);
    } catch (const Problem& problem) {
      Log(kind.layout, kind.fields[i].layout, slices[i].bytes, problem.reason);
      whole = false;
    } catch (const Error& error) {
      Log(kind.layout, kind.fields[i].layout, slices[i].bytes, ToUtf8(error.description));
      whole = false;
    }
  }
  return whole;
}

void FileReader::Count(std::size_t kind_number) {
  Kind& kind = kinds_[kind_number];
  totals_.Add(
      kind_number, [&](std::size_t field) { return kind.fields[field].reader.LastAmount(); },
      [&](std::size_t field) { return (*slices_)[field].bytes; });
  for (std::size_t field = 0; field < kind.fields.size(); ++field)
    if (kind.fields[field].layout->total.kind != TotalKind::None)
      told_.push_back(
          {kind_number, field, totals_.NumberOf(kind_number, field), kind.values[field], number_});
}

void FileReader::CompareTotals() {
  for (const Told& told : told_) {
    const Variant expected = totals_.Value(told.total, number_ - first_ + 1);
    const FieldLayout& field = *kinds_[told.kind].fields[told.field].layout;
    const int decimals = field.total.kind == TotalKind::Sum ? kCurrencyDecimals : 0;
    const ScaledNumber right = Scale(expected, decimals);
    const ScaledNumber said = Scale(told.value, decimals);
    if (right.state == ScaledNumber::State::Exact && said.state == ScaledNumber::State::Exact &&
        right.units == said.units)
      continue;
    log_.Add({told.record, kinds_[told.kind].layout->name, field.name,
              told.value.Is(Subtype::Null) ? Text() : ToText(told.value),
              FromUtf8("los registros dan " + ToUtf8(ToText(expected)))});
  }
}

// Each header and trailer must be there once.
void FileReader::RequireFrame() {
  for (std::size_t kind = 0; kind < kinds_.size(); ++kind) {
    const RecordLayout& record = *kinds_[kind].layout;
    if (record.role == Role::Detail || records_[kind] == 1) continue;
    Log(&record, nullptr, {},
        records_[kind] == 0 ? "falta el registro, o no se pudo leer" : "el registro está repetido");
  }
}

}  // namespace tovalin::flat
