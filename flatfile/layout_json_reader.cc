#include <cmath>
#include <initializer_list>

#include "flatfile/keywords.h"
#include "flatfile/layout_json.h"
#include "flatfile/moment.h"
#include "flatfile/problem.h"
#include "frame/text/json.h"
#include "frame/text/utf8.h"

namespace tovalin::flat {
namespace {

constexpr std::string_view kPrefix = "tovalin:";
constexpr std::size_t kLongestText = std::size_t{1} << 22;

// One object of the JSON text. Asking for a key marks it as known; what has our prefix
// and nobody asked for is a mistake of writing.
class Reader {
 public:
  Reader(const Json& json, std::string place) : json_(json), place_(std::move(place)) {
    if (!json.As<Json::Object>()) Fail("", "debe ser un objeto");
  }

  const Json* Find(std::string_view key) {
    known_.emplace_back(key);
    return json_.Find(key);
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
    const std::string* text = json.As<std::string>();
    if (!text) Fail(key, "debe ser un texto");
    return FromUtf8(*text);
  }
  void Get(std::string_view key, bool& value) {
    const Json* found = Find(key);
    if (!found) return;
    const bool* logical = found->As<bool>();
    if (!logical) Fail(key, "debe ser true o false");
    value = *logical;
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
    const std::optional<std::uint64_t> count = found->AsCount();
    if (!count || *count > most)
      Fail(key, "debe ser un número entero de 0 a " + std::to_string(most));
    return count;
  }
  void Get(std::string_view key, std::size_t& value) {
    value = static_cast<std::size_t>(Whole(key, kLongestRecord).value_or(value));
  }
  void Get(std::string_view key, std::vector<Text>& values) {
    const Json* found = Find(key);
    if (!found) return;
    const Json::Array* items = found->As<Json::Array>();
    if (!items) Fail(key, "debe ser una lista de textos");
    values.clear();
    for (const Json& item : *items) values.push_back(TextOf(item, key));
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
    for (const auto& [key, value] : *json_.As<Json::Object>())
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
  bool bare = true;
  reader.Get("bareNumber", bare);
  if (!bare) reader.Fail("bareNumber", "sólo se admiten números sin otro texto");
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
  const Json::Array* items = json ? json->As<Json::Array>() : nullptr;
  if (!items) owner.Fail("fields", "debe ser una lista de campos");
  std::vector<FieldLayout> fields;
  for (const Json& field : *items)
    fields.push_back(
        ReadField(field, owner.Path("fields") + "/" + std::to_string(fields.size()), null_text));
  return fields;
}

void ReadDialect(Reader& owner, Layout& layout) {
  const Json* json = owner.Find("tovalin:dialecto");
  if (!json) return;
  Reader reader(*json, owner.Path("tovalin:dialecto"));
  reader.Get("delimiter", layout.delimiter);
  if (const Json* quote = reader.Find("quoteChar"); quote && quote->IsNull())
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
  const Json::Array* items = json->As<Json::Array>();
  if (!items) owner.Fail("tovalin:registros", "debe ser una lista");
  for (const Json& item : *items) {
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

// Parsing errors tell a byte, from 0; people look for lines.
std::string PlaceOfByte(std::string_view text, std::size_t byte) {
  const std::string_view before = text.substr(0, byte);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t start = before.rfind('\n');
  const std::size_t column = before.size() - (start == std::string_view::npos ? 0 : start + 1) + 1;
  return "línea " + std::to_string(line) + ", columna " + std::to_string(column);
}

Json Parse(std::string_view utf8) {
  if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
  if (utf8.size() > kLongestText) RaiseFault("Diseño", "es demasiado largo");
  const std::size_t valid = ValidUtf8Length(utf8);
  if (valid != utf8.size()) RaiseFault(PlaceOfByte(utf8, valid), "el texto no es UTF-8");
  std::variant<Json, JsonFault> read = ParseJson(utf8);
  if (Json* json = std::get_if<Json>(&read)) return std::move(*json);
  const std::optional<std::size_t> byte = std::get<JsonFault>(read).byte;
  RaiseFault(byte ? PlaceOfByte(utf8, *byte) : "Diseño", "el texto no es JSON");
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

}  // namespace tovalin::flat
