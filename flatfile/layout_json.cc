#include "flatfile/layout_json.h"

#include <cmath>
#include <initializer_list>
#include <nlohmann/json.hpp>

#include "flatfile/moment.h"
#include "flatfile/problem.h"
#include "flatfile/words.h"
#include "frame/text/utf8.h"

namespace tovalin::flat {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kPrefix = "tovalin:";
constexpr std::size_t kLongestText = std::size_t{1} << 22;
constexpr const char* kSchema = "https://datapackage.org/profiles/2.0/tableschema.json";

// One object of the JSON text. Asking for a key marks it as known; what has our prefix
// and nobody asked for is a mistake of writing.
class Reader {
 public:
  Reader(const Json& json, std::string place) : json_(json), place_(std::move(place)) {
    if (!json.is_object()) Fail("", "debe ser un objeto");
  }

  const Json* Find(std::string_view key) {
    known_.emplace_back(key);
    const auto found = json_.find(std::string(key));
    return found == json_.end() ? nullptr : &*found;
  }

  [[noreturn]] void Fail(std::string_view key, const std::string& reason) const {
    RaiseFault(Path(key), reason);
  }

  std::string Path(std::string_view key) const {
    if (place_.empty() && key.empty()) return "Diseño";
    return key.empty() || place_.empty() ? place_ + std::string(key)
                                         : place_ + "/" + std::string(key);
  }

  void Get(std::string_view key, Text& value) {
    const Json* found = Find(key);
    if (found) value = TextOf(*found, key);
  }
  Text TextOf(const Json& json, std::string_view key) const {
    if (!json.is_string()) Fail(key, "debe ser un texto");
    return FromUtf8(json.get_ref<const std::string&>());
  }
  void Get(std::string_view key, bool& value) {
    const Json* found = Find(key);
    if (!found) return;
    if (!found->is_boolean()) Fail(key, "debe ser true o false");
    value = found->get<bool>();
  }
  void Get(std::string_view key, char16_t& value) {
    const Json* found = Find(key);
    if (!found) return;
    const Text text = TextOf(*found, key);
    if (text.size() != 1) Fail(key, "debe ser un solo carácter");
    value = text[0];
  }
  std::optional<std::uint64_t> Whole(std::string_view key, std::uint64_t most) {
    const Json* found = Find(key);
    if (!found) return std::nullopt;
    if (!found->is_number_unsigned() || found->get<std::uint64_t>() > most)
      Fail(key, "debe ser un número entero de 0 a " + std::to_string(most));
    return found->get<std::uint64_t>();
  }
  void Get(std::string_view key, std::size_t& value) {
    value = static_cast<std::size_t>(Whole(key, kLongestRecord).value_or(value));
  }
  void Get(std::string_view key, std::vector<Text>& values) {
    const Json* found = Find(key);
    if (!found) return;
    if (!found->is_array()) Fail(key, "debe ser una lista de textos");
    values.clear();
    for (const Json& item : *found) values.push_back(TextOf(item, key));
  }
  template <class Value, std::size_t kCount>
  void Get(std::string_view key, const Word<Value> (&words)[kCount], Value& value) {
    const Json* found = Find(key);
    if (!found) return;
    const std::optional<Value> word = FindWord<Value>(words, ToUtf8(TextOf(*found, key)));
    if (!word) Fail(key, "debe ser uno de " + ListOf<Value>(words));
    value = *word;
  }

  void RequireKnown(bool all = false) const {
    for (const auto& [key, value] : json_.items())
      if ((all || key.starts_with(kPrefix)) &&
          std::find(known_.begin(), known_.end(), key) == known_.end())
        Fail(key, "no se conoce");
  }

 private:
  const Json& json_;
  std::string place_;
  std::vector<std::string> known_;
};

void ReadTotal(Reader& field, Total& total) {
  const Json* json = field.Find("tovalin:total");
  if (!json) return;
  Reader reader(*json, field.Path("tovalin:total"));
  reader.Get("tipo", kTotalWords, total.kind);
  if (total.kind == TotalKind::None) reader.Fail("tipo", "falta");
  reader.Get("campo", total.field);
  reader.Get("registros", total.kinds);
  if (const auto modulus = reader.Whole("modulo", std::uint64_t{1'000'000'000'000'000'000}))
    total.modulus = *modulus;
  reader.RequireKnown(true);
}

// The rules that a field of another origin may have and that would not be kept.
void ReadConstraints(Reader& field, FieldLayout& layout) {
  const Json* json = field.Find("constraints");
  if (!json) return;
  Reader reader(*json, field.Path("constraints"));
  reader.Get("required", layout.required);
  reader.Get("enum", layout.allowed);
  reader.RequireKnown(true);
}

void ReadMomentFormat(Reader& reader, FieldLayout& field) {
  reader.Get("tovalin:patron", field.pattern);
  const Json* json = reader.Find("format");
  if (!json || !field.pattern.empty()) return;
  const Text format = reader.TextOf(*json, "format");
  if (format == u"default") return;
  const std::optional<Text> pattern = FromPercentPattern(format);
  if (!pattern) reader.Fail("format", "el patrón " + Quoted(format) + " no se admite");
  field.pattern = *pattern;
}

void ReadNumberForm(Reader& reader, FieldLayout& field) {
  reader.Get("tovalin:patron", field.pattern);
  reader.Get("decimalChar", field.decimal_point);
  reader.Get("groupChar", field.group);
  if (const auto decimals = reader.Whole("tovalin:decimales", kMostDecimals))
    field.decimals = static_cast<int>(*decimals);
  reader.Get("tovalin:implicito", field.implied);
  reader.Get("tovalin:redondear", field.rounds);
  reader.Get("tovalin:signo", kSignWords, field.sign);
  reader.Get("tovalin:signoMas", field.plus);
  if (const Json* bare = reader.Find("bareNumber"); bare && *bare != Json(true))
    reader.Fail("bareNumber", "sólo se admiten números sin otro texto");
}

void ReadLogicalForm(Reader& reader, FieldLayout& field) {
  std::vector<Text> truths, falsehoods;
  reader.Get("trueValues", truths);
  reader.Get("falseValues", falsehoods);
  if (!truths.empty()) field.true_text = truths.front();
  if (!falsehoods.empty()) field.false_text = falsehoods.front();
}

FieldLayout ReadField(const Json& json, const std::string& place, const Text& null_text) {
  Reader reader(json, place);
  FieldLayout field;
  reader.Get("name", field.name);
  reader.Get("type", kTypeWords, field.type);
  field.null_text = null_text;
  std::vector<Text> missing;
  reader.Get("missingValues", missing);
  if (!missing.empty()) field.null_text = missing.front();
  reader.Get("tovalin:inicio", field.start);
  reader.Get("tovalin:ancho", field.width);
  reader.Get("tovalin:alineacion", kAlignmentWords, field.alignment);
  reader.Get("tovalin:relleno", field.fill);
  reader.Get("tovalin:columna", field.column);
  if (const Json* constant = reader.Find("tovalin:constante"))
    field.constant = reader.TextOf(*constant, "tovalin:constante");
  reader.Get("tovalin:formula", field.formula);
  ReadTotal(reader, field.total);
  reader.Get("tovalin:letras", kCaseWords, field.letter_case);
  reader.Get("tovalin:noCabe", kMisfitWords, field.misfit);
  reader.Get("tovalin:marca", field.mark);
  ReadConstraints(reader, field);
  if (field.IsMoment()) ReadMomentFormat(reader, field);
  if (field.IsNumber()) ReadNumberForm(reader, field);
  if (field.type == FieldType::Logical) ReadLogicalForm(reader, field);
  reader.RequireKnown();
  return field;
}

std::vector<FieldLayout> ReadFields(Reader& owner, const Text& null_text) {
  const Json* json = owner.Find("fields");
  if (!json || !json->is_array()) owner.Fail("fields", "debe ser una lista de campos");
  std::vector<FieldLayout> fields;
  for (const Json& field : *json)
    fields.push_back(
        ReadField(field, owner.Path("fields") + "/" + std::to_string(fields.size()), null_text));
  return fields;
}

void ReadDialect(Reader& owner, Layout& layout) {
  const Json* json = owner.Find("tovalin:dialecto");
  if (!json) return;
  Reader reader(*json, owner.Path("tovalin:dialecto"));
  reader.Get("delimiter", layout.delimiter);
  if (const Json* quote = reader.Find("quoteChar"); quote && quote->is_null())
    layout.quote = 0;
  else
    reader.Get("quoteChar", layout.quote);
  reader.Get("doubleQuote", layout.doubled);
  reader.Get("header", layout.header_row);
  reader.Get("comillas", kQuoteWords, layout.quotes);
  reader.RequireKnown(true);
}

void ReadRecords(Reader& owner, const Text& null_text, Layout& layout) {
  std::vector<FieldLayout> fields = ReadFields(owner, null_text);
  const Json* json = owner.Find("tovalin:registros");
  if (!json) {
    layout.records.push_back({u"detalle", Role::Detail, {}, std::move(fields)});
    return;
  }
  // With several kinds of records the fields of the schema are the columns of the rows.
  for (const FieldLayout& field : fields) layout.columns.push_back({field.name, field.type});
  if (!json->is_array()) owner.Fail("tovalin:registros", "debe ser una lista");
  for (const Json& item : *json) {
    Reader reader(item, "tovalin:registros/" + std::to_string(layout.records.size()));
    RecordLayout record;
    reader.Get("nombre", record.name);
    reader.Get("papel", kRoleWords, record.role);
    reader.Get("cuando", record.when);
    record.fields = ReadFields(reader, null_text);
    reader.RequireKnown(true);
    layout.records.push_back(std::move(record));
  }
}

// Parsing errors tell a byte; people look for lines.
std::string PlaceOfByte(std::string_view text, std::size_t byte) {
  const std::string_view before = text.substr(0, byte > 0 ? byte - 1 : 0);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t start = before.rfind('\n');
  const std::size_t column = before.size() - (start == std::string_view::npos ? 0 : start + 1) + 1;
  return "línea " + std::to_string(line) + ", columna " + std::to_string(column);
}

Json Parse(std::string_view utf8) {
  if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
  if (utf8.size() > kLongestText) RaiseFault("Diseño", "es demasiado largo");
  const std::size_t valid = ValidUtf8Length(utf8);
  if (valid != utf8.size()) RaiseFault(PlaceOfByte(utf8, valid + 1), "el texto no es UTF-8");
  try {
    return Json::parse(utf8);
  } catch (const Json::parse_error& error) {
    RaiseFault(PlaceOfByte(utf8, error.byte), "el texto no es JSON");
  } catch (const Json::exception&) {  // a number beyond all ranges
    RaiseFault("Diseño", "el texto no es JSON");
  }
}

std::string Utf8Of(char16_t c) { return ToUtf8(TextView(&c, 1)); }

template <class Value, std::size_t kCount>
void Put(Json& json, const char* key, const Word<Value> (&words)[kCount], Value value,
         Value omitted) {
  if (value != omitted) json[key] = std::string(WordOf<Value>(words, value));
}
void Put(Json& json, const char* key, const Text& text) {
  if (!text.empty()) json[key] = ToUtf8(text);
}
void Put(Json& json, const char* key, bool value, bool omitted) {
  if (value != omitted) json[key] = value;
}
void Put(Json& json, const char* key, char16_t value, char16_t omitted) {
  if (value != omitted) json[key] = Utf8Of(value);
}
void Put(Json& json, const char* key, const std::vector<Text>& texts) {
  if (texts.empty()) return;
  Json list = Json::array();
  for (const Text& text : texts) list.push_back(ToUtf8(text));
  json[key] = std::move(list);
}

Json WriteTotal(const Total& total) {
  Json json;
  json["tipo"] = std::string(WordOf<TotalKind>(kTotalWords, total.kind));
  Put(json, "campo", total.field);
  Put(json, "registros", total.kinds);
  if (total.modulus != 0) json["modulo"] = total.modulus;
  return json;
}

void WriteForm(const FieldLayout& field, Json& json) {
  const FieldLayout usual;
  if (field.IsMoment() && field.pattern != DefaultPattern(field.type)) {
    const std::optional<Text> percent = ToPercentPattern(field.pattern);
    json[percent ? "format" : "tovalin:patron"] = ToUtf8(percent ? *percent : field.pattern);
  }
  if (field.IsNumber()) {
    Put(json, "tovalin:patron", field.pattern);
    if (field.decimals) json["tovalin:decimales"] = *field.decimals;
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
  json["name"] = ToUtf8(field.name);
  json["type"] = std::string(WordOf<FieldType>(kTypeWords, field.type));
  if (layout.fixed) {
    json["tovalin:inicio"] = field.start;
    if (field.width != 0) json["tovalin:ancho"] = field.width;
  }
  WriteForm(field, json);
  Put(json, "tovalin:alineacion", kAlignmentWords, field.alignment, Alignment::Default);
  Put(json, "tovalin:relleno", field.fill, u' ');
  Put(json, "tovalin:columna", field.column);
  if (field.constant) json["tovalin:constante"] = ToUtf8(*field.constant);
  Put(json, "tovalin:formula", field.formula);
  if (field.total.kind != TotalKind::None) json["tovalin:total"] = WriteTotal(field.total);
  if (!field.null_text.empty()) Put(json, "missingValues", std::vector<Text>{field.null_text});
  Put(json, "tovalin:letras", kCaseWords, field.letter_case, LetterCase::AsIs);
  Put(json, "tovalin:noCabe", kMisfitWords, field.misfit, Misfit::Refuse);
  Put(json, "tovalin:marca", field.mark, u'*');
  Json constraints;
  Put(constraints, "required", field.required, false);
  Put(constraints, "enum", field.allowed);
  if (!constraints.empty()) json["constraints"] = std::move(constraints);
  return json;
}

Json WriteFields(const Layout& layout, const RecordLayout& record) {
  Json fields = Json::array();
  for (const FieldLayout& field : record.fields) fields.push_back(WriteField(layout, field));
  return fields;
}

void WriteRecords(const Layout& layout, Json& json) {
  const RecordLayout& first = layout.records.front();
  if (layout.records.size() == 1 && layout.columns.empty() && first.name == u"detalle" &&
      first.when.empty()) {
    json["fields"] = WriteFields(layout, first);
    return;
  }
  json["fields"] = Json::array();
  for (const ColumnLayout& column : layout.columns)
    json["fields"].push_back({{"name", ToUtf8(column.name)},
                              {"type", std::string(WordOf<FieldType>(kTypeWords, column.type))}});
  json["tovalin:registros"] = Json::array();
  for (const RecordLayout& record : layout.records) {
    Json item;
    item["nombre"] = ToUtf8(record.name);
    Put(item, "papel", kRoleWords, record.role, Role::Detail);
    Put(item, "cuando", record.when);
    item["fields"] = WriteFields(layout, record);
    json["tovalin:registros"].push_back(std::move(item));
  }
}

Json WriteDialect(const Layout& layout) {
  Json json;
  json["delimiter"] = Utf8Of(layout.delimiter);
  json["quoteChar"] = layout.quote == 0 ? Json(nullptr) : Json(Utf8Of(layout.quote));
  Put(json, "doubleQuote", layout.doubled, true);
  json["header"] = layout.header_row;
  Put(json, "comillas", kQuoteWords, layout.quotes, QuoteUse::Needed);
  return json;
}

}  // namespace

Layout ReadLayoutJson(std::string_view utf8) {
  const Json json = Parse(utf8);
  Reader reader(json, "");
  Layout layout;
  reader.Get("tovalin:formato", kFormatWords, layout.fixed);
  reader.Get("tovalin:codificacion", kEncodingWords, layout.encoding);
  if (layout.encoding == Encoding::Ascii) layout.unencodable = Unencodable::Unaccent;
  reader.Get("tovalin:sinCaracter", kUnencodableWords, layout.unencodable);
  reader.Get("tovalin:reemplazo", layout.replacement);
  reader.Get("tovalin:finLinea", kLineEndWords, layout.line_end);
  reader.Get("tovalin:longitud", layout.length);
  reader.Get("tovalin:separador", layout.separator);
  reader.Get("tovalin:columnaRegistro", layout.kind_column);
  ReadDialect(reader, layout);
  std::vector<Text> missing;
  reader.Get("missingValues", missing);
  ReadRecords(reader, missing.empty() ? Text() : missing.front(), layout);
  reader.RequireKnown();
  CheckLayout(layout);
  return layout;
}

std::string WriteLayoutJson(const Layout& layout) {
  Json json;
  json["$schema"] = kSchema;
  json["tovalin:formato"] = std::string(WordOf<bool>(kFormatWords, layout.fixed));
  json["tovalin:codificacion"] = std::string(WordOf<Encoding>(kEncodingWords, layout.encoding));
  Put(json, "tovalin:sinCaracter", kUnencodableWords, layout.unencodable,
      layout.encoding == Encoding::Ascii ? Unencodable::Unaccent : Unencodable::Refuse);
  Put(json, "tovalin:reemplazo", layout.replacement, u'?');
  Put(json, "tovalin:finLinea", kLineEndWords, layout.line_end, LineEnd::CrLf);
  if (layout.fixed && layout.length != 0) json["tovalin:longitud"] = layout.length;
  Put(json, "tovalin:separador", layout.separator);
  if (!layout.fixed) json["tovalin:dialecto"] = WriteDialect(layout);
  Put(json, "tovalin:columnaRegistro", layout.kind_column);
  WriteRecords(layout, json);
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tovalin::flat
