#include "flatfile/export_layout.h"

#include <charconv>

#include "export/field.h"
#include "export/record_writer.h"
#include "flatfile/encoding.h"
#include "flatfile/problem.h"
#include "tovalin/locale.h"

namespace tovalin::flat {
namespace {

constexpr TextView kHeading = u"Descripción de posiciones de campos para archivo ";
constexpr TextView kNames = u"Nombre Campo";
constexpr TextView kOffset = u"OffSet";
constexpr std::size_t kHeadingLines = 4;

FieldType TypeOf(const tovalin::FieldType& type) {
  if (type.form == FieldForm::Date) return FieldType::Date;
  if (type.form == FieldForm::Time) return FieldType::Time;
  if (type.code == kInteger) return FieldType::Whole;
  return type.fill == FieldFill::NulLeft ? FieldType::Number : FieldType::Text;
}

FieldLayout FieldOf(const Field& field, TextView date_pattern) {
  FieldLayout layout;
  layout.name = field.name;
  layout.type = TypeOf(field.type);
  layout.alignment =
      field.type.fill == FieldFill::BlankRight ? Alignment::Left : Alignment::Default;
  layout.fill = field.type.fill == FieldFill::NulLeft ? u'\0' : u' ';
  layout.decimal_point = CurrentLocale().decimal_separator;
  if (layout.type == FieldType::Time) layout.pattern = CurrentLocale().short_time;
  if (layout.type == FieldType::Date)
    layout.pattern = date_pattern.empty() ? TextView(CurrentLocale().short_date) : date_pattern;
  return layout;
}

void SetFixedForm(const Field& field, FieldLayout& layout) {
  if (field.type.fill == FieldFill::None)
    RaiseFault("Campo " + Quoted(field.name), "es de un tipo sin ancho fijo");
  if (field.type.width <= 0) RaiseFault("Campo " + Quoted(field.name), "no tiene ancho");
  layout.width = static_cast<std::size_t>(field.type.width);
}

std::vector<Text> LinesOf(const Text& text) {
  std::vector<Text> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(u'\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    if (lines.back().ends_with(u'\r')) lines.back().pop_back();
    at = end + 1;
  }
  return lines;
}

[[noreturn]] void RejectLine(std::size_t line, const char* reason) {
  RaiseFault("línea " + std::to_string(line + 1), reason);
}

// "Nombre<blanks><TAB>7": the offset counts from 1 and leaves the delimiters out.
std::size_t ExtractOffset(Text& line, std::size_t number) {
  const std::size_t tab = line.rfind(u'\t');
  if (tab == Text::npos) RejectLine(number, "no tiene la posición del campo");
  const std::string digits = ToUtf8(TextView(line).substr(tab + 1));
  std::size_t offset = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), offset);
  if (read.ec != std::errc() || read.ptr != digits.data() + digits.size() || offset == 0)
    RejectLine(number, "la posición no es un número");
  line.resize(tab);
  return offset;
}

}  // namespace

Layout LayoutOfExport(const clsFileExport& exporter, const Campos& fields) {
  Layout layout;
  layout.fixed = exporter.Fomato() != clsFileExport::TEXTO_DELIMITADO;
  layout.delimiter = static_cast<char16_t>(kFieldDelimiter);
  layout.quote = exporter.SeparadorCadena()[0];
  layout.doubled = false;
  layout.quotes = QuoteUse::Texts;
  if (layout.fixed) layout.separator = Text(1, layout.delimiter);
  RecordLayout record{u"detalle", Role::Detail, {}, {}};
  for (const Field& field : ResolveFields(&fields)) {
    record.fields.push_back(FieldOf(field, exporter.DatePattern()));
    if (layout.fixed) SetFixedForm(field, record.fields.back());
  }
  layout.records.push_back(std::move(record));
  CheckLayout(layout);
  return layout;
}

Layout ReadDescription(std::string_view bytes) {
  std::vector<Text> lines = LinesOf(Decode(bytes, Encoding::CodePage1252));
  if (lines.size() < kHeadingLines || !lines[0].starts_with(kHeading) ||
      !lines[2].starts_with(kNames))
    RejectLine(0, "no es la descripción de una exportación");
  Layout layout;
  layout.fixed = lines[2].find(kOffset) != Text::npos;
  layout.delimiter = static_cast<char16_t>(kFieldDelimiter);
  layout.doubled = false;
  layout.quotes = QuoteUse::Texts;
  if (layout.fixed) layout.separator = Text(1, layout.delimiter);
  std::vector<FieldLayout> fields;
  std::size_t before = 1;
  for (std::size_t i = kHeadingLines; i < lines.size() && !lines[i].empty(); ++i) {
    FieldLayout field;
    if (layout.fixed) {
      const std::size_t offset = ExtractOffset(lines[i], i);
      if (fields.empty() ? offset != 1 : offset <= before)
        RejectLine(i, "la posición no sigue a la anterior");
      if (!fields.empty()) fields.back().width = offset - before;
      before = offset;
      // One delimiter stands behind each field before.
      field.start = offset + fields.size();
    }
    field.name = lines[i];
    while (field.name.ends_with(u' ')) field.name.pop_back();
    fields.push_back(std::move(field));
  }
  layout.records.push_back({u"detalle", Role::Detail, {}, std::move(fields)});
  CheckLayout(layout);
  return layout;
}

}  // namespace tovalin::flat
