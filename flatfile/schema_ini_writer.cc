#include "flatfile/problem.h"
#include "flatfile/schema_ini.h"
#include "flatfile/schema_ini_words.h"

namespace tovalin::flat {
namespace {

// Writes one section, and refuses what it cannot say.
class SectionWriter {
 public:
  explicit SectionWriter(const Layout& layout) : layout_(layout) {}

  Text Write(TextView section) {
    const auto reject = [](const char* reason) { RaiseFault("schema.ini", reason); };
    if (layout_.records.size() != 1) reject("sólo describe archivos de un registro");
    if (!layout_.separator.empty() || layout_.line_end == LineEnd::None)
      reject("no describe registros sin fin de línea ni con separadores en ancho fijo");
    if (!layout_.fixed && (layout_.delimiter == u' ' || !layout_.doubled))
      reject("no describe este delimitador o las comillas sin doblar");
    Text columns;
    std::size_t number = 0;
    std::size_t end = 0;
    for (const FieldLayout& field : layout_.records.front().fields) {
      CheckField(field, end);
      end += field.width;
      columns += FromUtf8("Col" + std::to_string(++number) + "=") + Column(field) + u"\r\n";
    }
    if (layout_.fixed && layout_.length > end) reject("no describe blancos al final");
    return u"[" + Text(section) + u"]\r\n" + Settings() + columns;
  }

 private:
  void CheckField(const FieldLayout& field, std::size_t end) const {
    const FieldLayout usual;
    const bool logical =
        field.type == FieldType::Logical && (field.true_text != u"1" || field.false_text != u"0");
    const bool number =
        field.IsNumber() && (field.implied || field.sign != Sign::Front || field.plus ||
                             field.group != 0 || !field.pattern.empty());
    if (logical || number || field.fill != u' ' || field.type == FieldType::Time ||
        !field.null_text.empty() || field.alignment != Alignment::Default ||
        (layout_.fixed && (field.start != end + 1 || field.width == 0)))
      RaiseFault("schema.ini", "no describe la forma del campo " + Quoted(field.name));
  }

  Text Column(const FieldLayout& field) {
    const bool amount = field.type == FieldType::Number && field.decimals.has_value();
    const FieldType type = field.type == FieldType::DateTime ? FieldType::Date : field.type;
    const auto fits = [&](const ColumnType& row) {
      return row.type == type && row.amount == amount;
    };
    Text text = u"\"" + field.name + u"\" ";
    if (field.name.find(u'"') != Text::npos)
      RaiseFault("schema.ini", "el nombre " + Quoted(field.name) + " tiene comillas");
    text += std::ranges::find_if(kColumnTypes, fits)->word;
    if (layout_.fixed) text += FromUtf8(" Width " + std::to_string(field.width));
    if (amount) Keep(digits_, FromUtf8(std::to_string(*field.decimals)));
    if (field.IsMoment()) Keep(pattern_, field.pattern);
    if (field.type == FieldType::Number) Keep(point_, Text(1, field.decimal_point));
    return text;
  }

  // A section says these once for all columns.
  static void Keep(Text& kept, const Text& value) {
    if (kept.empty()) kept = value;
    if (kept != value)
      RaiseFault("schema.ini", Quoted(kept) + " y " + Quoted(value) + " no caben en una sección");
  }

  Text Settings() const {
    const Encoding page =
        layout_.encoding == Encoding::Utf8Mark ? Encoding::Utf8 : layout_.encoding;
    Text text = u"Format=";
    if (layout_.fixed)
      text += u"FixedLength";
    else if (layout_.delimiter == u',')
      text += u"CSVDelimited";
    else if (layout_.delimiter == u'\t')
      text += u"TabDelimited";
    else
      text += u"Delimited(" + Text(1, layout_.delimiter) + u")";
    text += layout_.header_row ? u"\r\nColNameHeader=True" : u"\r\nColNameHeader=False";
    text += u"\r\nCharacterSet=" + FromUtf8(WordOf<Encoding>(kCodePages, page)) + u"\r\n";
    if (!layout_.fixed && layout_.quote != u'"')
      text += u"TextDelimiter=" + (layout_.quote == 0 ? Text(u"none") : Text(1, layout_.quote)) +
              u"\r\n";
    if (!pattern_.empty()) text += u"DateTimeFormat=" + pattern_ + u"\r\n";
    if (!point_.empty()) text += u"DecimalSymbol=" + point_ + u"\r\n";
    if (!digits_.empty()) text += u"CurrencyDigits=" + digits_ + u"\r\n";
    return text;
  }

  const Layout& layout_;
  Text pattern_;
  Text point_;
  Text digits_;
};

}  // namespace

Text WriteSchemaIni(const Layout& layout, TextView section) {
  return SectionWriter(layout).Write(section);
}

}  // namespace tovalin::flat
