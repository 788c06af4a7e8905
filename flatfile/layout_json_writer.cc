#include "flatfile/keywords.h"
#include "flatfile/layout_json.h"
#include "flatfile/moment.h"
#include "frame/text/json.h"

namespace tovalin::flat {
namespace {

constexpr const char* kSchema = "https://datapackage.org/profiles/2.0/tableschema.json";

std::string Utf8Of(char16_t c) { return ToUtf8(TextView(&c, 1)); }

template <class Value, std::size_t kCount>
void Put(Json& json, const char* key, const Word<Value> (&words)[kCount], Value value,
         Value omitted) {
  if (value != omitted) json.Add(key, std::string(WordOf<Value>(words, value)));
}
void Put(Json& json, const char* key, const Text& text) {
  if (!text.empty()) json.Add(key, ToUtf8(text));
}
void Put(Json& json, const char* key, bool value, bool omitted) {
  if (value != omitted) json.Add(key, value);
}
void Put(Json& json, const char* key, char16_t value, char16_t omitted) {
  if (value != omitted) json.Add(key, Utf8Of(value));
}
void Put(Json& json, const char* key, const std::vector<Text>& texts) {
  if (texts.empty()) return;
  Json list = Json::Array();
  for (const Text& text : texts) list.Add(ToUtf8(text));
  json.Add(key, std::move(list));
}

Json WriteTotal(const Total& total) {
  Json json;
  json.Add("tipo", std::string(WordOf<TotalKind>(kTotalWords, total.kind)));
  Put(json, "campo", total.field);
  Put(json, "registros", total.kinds);
  if (total.modulus != 0) json.Add("modulo", total.modulus);
  return json;
}

void WriteForm(const FieldLayout& field, Json& json) {
  const FieldLayout usual;
  if (field.IsMoment() && field.pattern != DefaultPattern(field.type)) {
    const std::optional<Text> percent = ToPercentPattern(field.pattern);
    json.Add(percent ? "format" : "tovalin:patron", ToUtf8(percent ? *percent : field.pattern));
  }
  if (field.IsNumber()) {
    Put(json, "tovalin:patron", field.pattern);
    if (field.decimals) json.Add("tovalin:decimales", *field.decimals);
    Put(json, "tovalin:implicito", field.implied, false);
    Put(json, "tovalin:redondear", field.rounds, false);
    Put(json, "tovalin:signo", kSignWords, field.sign, Sign::Front);
    Put(json, "tovalin:signoMas", field.plus, false);
    Put(json, "decimalChar", field.decimal_point, usual.decimal_point);
    Put(json, "groupChar", field.group, usual.group);
  }
  if (field.type == FieldType::Logical) {
    Put(json, "trueValues", std::vector<Text>{field.true_text});
    Put(json, "falseValues", std::vector<Text>{field.false_text});
  }
}

Json WriteField(const Layout& layout, const FieldLayout& field) {
  Json json;
  json.Add("name", ToUtf8(field.name));
  json.Add("type", std::string(WordOf<FieldType>(kTypeWords, field.type)));
  if (layout.fixed) {
    json.Add("tovalin:inicio", field.start);
    if (field.width != 0) json.Add("tovalin:ancho", field.width);
  }
  WriteForm(field, json);
  Put(json, "tovalin:alineacion", kAlignmentWords, field.alignment, Alignment::Default);
  Put(json, "tovalin:relleno", field.fill, u' ');
  Put(json, "tovalin:columna", field.column);
  if (field.constant) json.Add("tovalin:constante", ToUtf8(*field.constant));
  Put(json, "tovalin:formula", field.formula);
  if (field.total.kind != TotalKind::None) json.Add("tovalin:total", WriteTotal(field.total));
  if (!field.null_text.empty()) Put(json, "missingValues", std::vector<Text>{field.null_text});
  Put(json, "tovalin:letras", kCaseWords, field.letter_case, LetterCase::AsIs);
  Put(json, "tovalin:noCabe", kMisfitWords, field.misfit, Misfit::Refuse);
  Put(json, "tovalin:marca", field.mark, u'*');
  Json constraints;
  Put(constraints, "required", field.required, false);
  Put(constraints, "enum", field.allowed);
  if (!constraints.IsNull()) json.Add("constraints", std::move(constraints));
  return json;
}

Json WriteFields(const Layout& layout, const RecordLayout& record) {
  Json fields = Json::Array();
  for (const FieldLayout& field : record.fields) fields.Add(WriteField(layout, field));
  return fields;
}

void WriteRecords(const Layout& layout, Json& json) {
  const RecordLayout& first = layout.records.front();
  if (layout.records.size() == 1 && layout.columns.empty() && first.name == u"detalle" &&
      first.when.empty()) {
    json.Add("fields", WriteFields(layout, first));
    return;
  }
  Json columns = Json::Array();
  for (const ColumnLayout& column : layout.columns)
    columns.Add(Json::Object{{"name", ToUtf8(column.name)},
                             {"type", std::string(WordOf<FieldType>(kTypeWords, column.type))}});
  json.Add("fields", std::move(columns));
  Json records = Json::Array();
  for (const RecordLayout& record : layout.records) {
    Json item;
    item.Add("nombre", ToUtf8(record.name));
    Put(item, "papel", kRoleWords, record.role, Role::Detail);
    Put(item, "cuando", record.when);
    item.Add("fields", WriteFields(layout, record));
    records.Add(std::move(item));
  }
  json.Add("tovalin:registros", std::move(records));
}

Json WriteDialect(const Layout& layout) {
  Json json;
  json.Add("delimiter", Utf8Of(layout.delimiter));
  json.Add("quoteChar", layout.quote == 0 ? Json() : Json(Utf8Of(layout.quote)));
  Put(json, "doubleQuote", layout.doubled, true);
  json.Add("header", layout.header_row);
  Put(json, "comillas", kQuoteWords, layout.quotes, QuoteUse::Needed);
  return json;
}

}  // namespace

std::string WriteLayoutJson(const Layout& layout) {
  Json json;
  json.Add("$schema", kSchema);
  json.Add("tovalin:formato", std::string(WordOf<bool>(kFormatWords, layout.fixed)));
  json.Add("tovalin:codificacion", std::string(WordOf<Encoding>(kEncodingWords, layout.encoding)));
  Put(json, "tovalin:sinCaracter", kUnencodableWords, layout.unencodable,
      layout.encoding == Encoding::Ascii ? Unencodable::Unaccent : Unencodable::Refuse);
  Put(json, "tovalin:reemplazo", layout.replacement, u'?');
  Put(json, "tovalin:finLinea", kLineEndWords, layout.line_end, LineEnd::CrLf);
  if (layout.fixed && layout.length != 0) json.Add("tovalin:longitud", layout.length);
  Put(json, "tovalin:separador", layout.separator);
  if (!layout.fixed) json.Add("tovalin:dialecto", WriteDialect(layout));
  Put(json, "tovalin:columnaRegistro", layout.kind_column);
  WriteRecords(layout, json);
  return json.Written() + "\n";
}

}  // namespace tovalin::flat
