#include <algorithm>

#include "flatfile/encoding.h"
#include "flatfile/layout.h"
#include "flatfile/moment.h"
#include "flatfile/problem.h"
#include "frame/text/characters.h"

namespace tovalin::flat {
namespace {

constexpr std::size_t kMostFields = 10000;
constexpr std::uint64_t kMostNumberModulus = 100'000'000'000'000;
constexpr std::uint64_t kMostModulus = 1'000'000'000'000'000'000;

bool IsAsciiMark(char16_t c) { return c > u' ' && c < 0x7F; }

std::string PlaceOf(const RecordLayout& record) { return "Registro " + Quoted(record.name); }
std::string PlaceOf(const RecordLayout& record, const FieldLayout& field) {
  return PlaceOf(record) + ", campo " + Quoted(field.name);
}

// Checks one layout and completes it as it goes.
class Checker {
 public:
  explicit Checker(Layout& layout) : layout_(layout) {}

  void Check() {
    CheckFile();
    std::size_t longest = 0;
    for (RecordLayout& record : layout_.records) {
      CheckRecord(record);
      longest = std::max(longest, end_);
    }
    if (layout_.fixed && layout_.length == 0 && !has_rest_) layout_.length = longest;
    for (const RecordLayout& record : layout_.records)
      for (const FieldLayout& field : record.fields) CheckTotal(record, field);
    CheckColumns();
  }

 private:
  void CheckFile() {
    // Without quotes on writing there are none on reading either.
    if (layout_.quotes == QuoteUse::Never) layout_.quote = 0;
    const std::string place = "Diseño";
    if (layout_.records.empty()) RaiseFault(place, "no tiene registros");
    if (layout_.length > kLongestRecord) RaiseFault(place, "el registro es demasiado largo");
    if (layout_.fixed) {
      if (layout_.header_row) RaiseFault(place, "un archivo de ancho fijo no lleva títulos");
      if (layout_.line_end == LineEnd::None && !IsSingleByte(layout_.encoding))
        RaiseFault(place, "sin fin de línea los caracteres deben ser de un byte");
    } else {
      if (layout_.line_end == LineEnd::None)
        RaiseFault(place, "un archivo delimitado necesita fin de línea");
      if (layout_.delimiter != u'\t' && !(layout_.delimiter >= u' ' && layout_.delimiter < 0x7F))
        RaiseFault(place, "el delimitador debe ser un carácter ASCII");
      if (layout_.quote != 0 && !IsAsciiMark(layout_.quote))
        RaiseFault(place, "la comilla debe ser un carácter ASCII");
      if (layout_.quote == layout_.delimiter)
        RaiseFault(place, "la comilla y el delimitador son el mismo carácter");
    }
    const bool ascii_separator =
        std::ranges::all_of(layout_.separator, [](char16_t c) { return c >= u' ' && c < 0x7F; });
    if (!ascii_separator) RaiseFault(place, "el separador debe ser ASCII");
    if (layout_.unencodable == Unencodable::Replace && layout_.replacement >= 0x80)
      RaiseFault(place, "el carácter de reemplazo debe ser ASCII");
    const auto is_detail = [](const RecordLayout& r) { return r.role == Role::Detail; };
    if (std::ranges::none_of(layout_.records, is_detail))
      RaiseFault(place, "ningún registro es de detalle");
    if (layout_.header_row && layout_.records.size() > 1)
      RaiseFault(place, "los títulos sólo sirven a un archivo de un registro");
  }

  void CheckRecord(RecordLayout& record) {
    if (record.name.empty()) RaiseFault("Diseño", "un registro no tiene nombre");
    for (const RecordLayout& other : layout_.records)
      if (&other != &record && EqualFolded(other.name, record.name))
        RaiseFault(PlaceOf(record), "el nombre está repetido");
    if (record.fields.empty()) RaiseFault(PlaceOf(record), "no tiene campos");
    if (record.fields.size() > kMostFields) RaiseFault(PlaceOf(record), "tiene demasiados campos");
    if (!record.when.empty() && layout_.kind_column.empty())
      RaiseFault(PlaceOf(record), "tiene valores pero el diseño no dice en qué columna");
    end_ = 0;
    for (FieldLayout& field : record.fields) {
      CheckField(record, field);
      if (layout_.fixed) Place(record, field);
    }
    if (layout_.length != 0 && end_ > layout_.length)
      RaiseFault(PlaceOf(record), "ocupa " + std::to_string(end_) +
                                      " caracteres y el registro es de " +
                                      std::to_string(layout_.length));
  }

  void Place(const RecordLayout& record, FieldLayout& field) {
    const std::string place = PlaceOf(record, field);
    if (field.start == 0) field.start = end_ + 1;
    if (field.start <= end_)
      RaiseFault(place, "comienza en " + std::to_string(field.start) + ", sobre el campo anterior");
    if (field.width == 0) {
      if (&field != &record.fields.back() || layout_.length != 0 ||
          layout_.line_end == LineEnd::None)
        RaiseFault(place, "no tiene ancho");
      has_rest_ = true;
    }
    if (field.start > kLongestRecord || field.width > kLongestRecord)
      RaiseFault(place, "el registro es demasiado largo");
    end_ = field.start - 1 + StepOf(layout_, field);
  }

  void CheckField(const RecordLayout& record, FieldLayout& field) {
    const std::string place = PlaceOf(record, field);
    if (field.name.empty()) RaiseFault(PlaceOf(record), "un campo no tiene nombre");
    for (const FieldLayout& other : record.fields)
      if (&other != &field && EqualFolded(other.name, field.name))
        RaiseFault(place, "el nombre está repetido");
    const int sources = int{field.constant.has_value()} + int{!field.formula.empty()} +
                        int{field.total.kind != TotalKind::None};
    if (sources > 1) RaiseFault(place, "tiene más de uno entre constante, fórmula y total");
    if (sources == 1 && !field.column.empty())
      RaiseFault(place, "tiene columna y también constante, fórmula o total");
    CheckTexts(place, field);
    if (field.IsNumber()) CheckNumber(place, field);
    if (field.IsMoment()) CheckMoment(place, field);
    if (field.type == FieldType::Logical && (field.true_text == field.false_text ||
                                             field.true_text.empty() || field.false_text.empty()))
      RaiseFault(place, "los textos de verdadero y falso deben ser distintos y no vacíos");
    if (field.type != FieldType::Text && field.misfit != Misfit::Refuse &&
        field.misfit != Misfit::Mark)
      RaiseFault(place, "sólo un texto se puede cortar");
    if (layout_.fixed && field.type != FieldType::Text && field.fill != u' ' &&
        !(field.fill == u'0' && field.IsNumber()) && field.fill != 0 && IsAlphanumeric(field.fill))
      RaiseFault(place, "el relleno se confundiría con el valor");
    if (field.fill >= 0x80 || field.fill == u'\n' || field.fill == u'\r' || field.mark >= 0x80)
      RaiseFault(place, "el relleno y la marca deben ser caracteres ASCII");
  }

  void CheckTexts(const std::string& place, const FieldLayout& field) const {
    std::string ignored;
    try {
      for (const Text* text : {&field.null_text, &field.true_text, &field.false_text})
        Encoder(layout_).Append(ignored, *text);
    } catch (const Problem& problem) {
      RaiseFault(place, problem.reason);
    }
  }

  static bool IsAlphanumeric(char16_t c) {
    return IsDigit(c) || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'-' ||
           c == u'+' || c == u'.' || c == u',';
  }

  void CheckNumber(const std::string& place, const FieldLayout& field) {
    const int decimals = field.decimals.value_or(0);
    if (decimals < 0 || decimals > kMostDecimals)
      RaiseFault(place, "los decimales van de 0 a " + std::to_string(kMostDecimals));
    if (field.type == FieldType::Whole && decimals != 0)
      RaiseFault(place, "un entero no tiene decimales");
    if (field.implied && (!field.decimals || field.group != 0 || !field.pattern.empty()))
      RaiseFault(place, "el punto implícito pide decimales, sin separador de miles ni patrón");
    if (!field.pattern.empty() && (field.sign != Sign::Front || field.plus || field.group != 0))
      RaiseFault(place, "con patrón no hay signo ni separador de miles aparte");
    if (!IsAsciiMark(field.decimal_point) || IsDigit(field.decimal_point) ||
        (field.group != 0 && (field.group >= 0x7F || IsDigit(field.group))) ||
        field.group == field.decimal_point)
      RaiseFault(place, "los separadores de decimales y de miles no sirven");
    if (!field.decimals && field.type == FieldType::Number && field.pattern.empty() &&
        (field.sign == Sign::Behind || field.sign == Sign::Zone || field.group != 0 ||
         (layout_.fixed && field.fill == u'0')))
      RaiseFault(place, "sin decimales fijos no hay ceros, miles ni signo detrás");
    if (layout_.fixed && field.fill == u'0' && !field.IsRight())
      RaiseFault(place, "con ceros a la derecha sería otro número");
  }

  void CheckMoment(const std::string& place, FieldLayout& field) {
    if (field.pattern.empty()) field.pattern = DefaultPattern(field.type);
    if (const char* why = WhyUnreadable(ParseDatePattern(field.pattern), field.type))
      RaiseFault(place, why);
  }

  const RecordLayout* FindRecord(TextView name) const {
    const auto named = [&](const RecordLayout& r) { return EqualFolded(r.name, name); };
    const auto found = std::ranges::find_if(layout_.records, named);
    return found == layout_.records.end() ? nullptr : &*found;
  }

  void CheckTotal(const RecordLayout& record, const FieldLayout& field) {
    const Total& total = field.total;
    if (total.kind == TotalKind::None) return;
    const std::string place = PlaceOf(record, field);
    if (record.role == Role::Detail) RaiseFault(place, "un total no va en un registro de detalle");
    if (record.role == Role::First && (!layout_.fixed || field.width == 0))
      RaiseFault(place, "un total al comienzo sólo cabe en un archivo de ancho fijo");
    const bool digits_only = total.kind == TotalKind::Control && field.type == FieldType::Text;
    if (!field.IsNumber() && !digits_only) RaiseFault(place, "el total pide un campo numérico");
    if (field.IsNumber() && !field.AmountDecimals() && field.pattern.empty())
      RaiseFault(place, "el total pide de 0 a 4 decimales");
    if (total.kind == TotalKind::Control && !digits_only && total.modulus > kMostNumberModulus)
      RaiseFault(place, "un total de control de más de 14 dígitos pide un campo de texto");
    for (const Text& kind : total.kinds)
      if (!FindRecord(kind)) RaiseFault(place, "no hay un registro " + Quoted(kind));
    if (total.kind == TotalKind::Sum || total.kind == TotalKind::Control)
      CheckTotalField(place, total);
  }

  void CheckTotalField(const std::string& place, const Total& total) {
    if (total.kind == TotalKind::Control && (total.modulus < 2 || total.modulus > kMostModulus))
      RaiseFault(place, "el módulo del total de control va de 2 a 10^18");
    bool found = false;
    for (const RecordLayout& record : layout_.records) {
      if (!CountsIn(total, record)) continue;
      for (const FieldLayout& field : record.fields) {
        if (!EqualFolded(field.name, total.field)) continue;
        found = true;
        if (total.kind == TotalKind::Sum && !field.AmountDecimals() &&
            !(field.IsNumber() && !field.pattern.empty()))
          RaiseFault(place,
                     "el campo " + Quoted(total.field) + " no es un importe de 0 a 4 decimales");
        if (total.kind == TotalKind::Control && field.sign == Sign::Zone)
          RaiseFault(place, "el campo " + Quoted(total.field) + " lleva el signo en un dígito");
      }
    }
    if (!found) RaiseFault(place, "no hay un campo " + Quoted(total.field) + " que sumar");
  }

  void CheckColumns() {
    for (std::size_t i = 0; i < layout_.columns.size(); ++i)
      for (std::size_t j = 0; j < i; ++j)
        if (EqualFolded(layout_.columns[i].name, layout_.columns[j].name))
          RaiseFault("Columna " + Quoted(layout_.columns[i].name), "el nombre está repetido");
  }

  Layout& layout_;
  std::size_t end_ = 0;  // of the fields placed so far
  bool has_rest_ = false;
};

}  // namespace

bool CountsIn(const Total& total, const RecordLayout& record) {
  if (total.kinds.empty()) return record.role == Role::Detail;
  return std::ranges::any_of(total.kinds,
                             [&](const Text& kind) { return EqualFolded(kind, record.name); });
}

void CheckLayout(Layout& layout) { Checker(layout).Check(); }

std::vector<ColumnLayout> ColumnsOf(const Layout& layout) {
  std::vector<ColumnLayout> columns = layout.columns;
  const auto add = [&columns](const Text& name, FieldType type) {
    const auto named = [&](const ColumnLayout& column) { return EqualFolded(column.name, name); };
    if (std::ranges::none_of(columns, named)) columns.push_back({name, type});
  };
  for (const RecordLayout& record : layout.records)
    if (record.role == Role::Detail)
      for (const FieldLayout& field : record.fields)
        if (field.HasColumn()) add(field.Column(), field.type);
  if (!layout.kind_column.empty()) add(layout.kind_column, FieldType::Text);
  return columns;
}

}  // namespace tovalin::flat
