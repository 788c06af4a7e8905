#include <charconv>
#include <map>

#include "flatfile/encoding.h"
#include "flatfile/moment.h"
#include "flatfile/problem.h"
#include "flatfile/schema_ini.h"
#include "flatfile/schema_ini_words.h"
#include "frame/text/characters.h"
#include "frame/text/utf8.h"

namespace tovalin::flat {
namespace {

/// Keys that say nothing of how a value stands in the file, or how it is guessed.
constexpr TextView kIgnored[] = {
    u"MaxScanRows",       u"NumberLeadingZeros",     u"CurrencySymbol",       u"CurrencyPosFormat",
    u"CurrencyNegFormat", u"CurrencyThousandSymbol", u"CurrencyDecimalSymbol"};

constexpr int kUsualDigits = 2;

struct Entry {
  Text key;
  Text value;
  std::size_t line;
};

[[noreturn]] void Reject(const Entry& entry, const std::string& reason) {
  RaiseFault("línea " + std::to_string(entry.line) + ", " + ToUtf8(entry.key), reason);
}

// The entries of a section, in their order.
std::vector<Entry> EntriesOf(TextView text, TextView section) {
  std::vector<Entry> entries;
  bool inside = false;
  bool found = false;
  std::size_t number = 0;
  while (!text.empty()) {
    ++number;
    const std::size_t end = std::min(text.find_first_of(u"\r\n"), text.size());
    const TextView line = Trim(text.substr(0, end));
    text.remove_prefix(text.substr(end).starts_with(u"\r\n") ? end + 2
                                                             : std::min(end + 1, text.size()));
    if (line.starts_with(u'[')) {
      const TextView name = line.substr(1, line.find(u']') - 1);
      inside = section.empty() ? !found : EqualFolded(name, section);
      found = found || inside;
      continue;
    }
    if (!inside || line.empty() || line.starts_with(u';')) continue;
    const std::size_t equals = line.find(u'=');
    if (equals == TextView::npos)
      RaiseFault("línea " + std::to_string(number), "no dice CLAVE=VALOR");
    entries.push_back(
        {Text(Trim(line.substr(0, equals))), Text(Trim(line.substr(equals + 1))), number});
  }
  if (!found)
    RaiseFault("Diseño",
               section.empty() ? "no tiene secciones" : "no hay una sección " + Quoted(section));
  return entries;
}

int NumberOf(const Entry& entry, TextView text, int least, int most) {
  const std::string digits = ToUtf8(text);
  int number = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (read.ec != std::errc() || read.ptr != digits.data() + digits.size() || number < least ||
      number > most)
    Reject(entry, Quoted(text) + " no es un número de " + std::to_string(least) + " a " +
                      std::to_string(most));
  return number;
}

// Reads one section.
class SectionReader {
 public:
  Layout Read(const std::vector<Entry>& entries) {
    layout_.header_row = true;
    layout_.records.push_back({u"detalle", Role::Detail, {}, {}});
    for (const Entry& entry : entries)
      if (!IsColumn(entry)) ReadSetting(entry);
    if (layout_.fixed) layout_.header_row = layout_.header_row && has_header_;
    std::map<int, FieldLayout> columns;
    for (const Entry& entry : entries)
      if (IsColumn(entry)) {
        const int number = NumberOf(entry, TextView(entry.key).substr(3), 1, 10000);
        if (!columns.emplace(number, Column(entry)).second) Reject(entry, "está repetida");
      }
    for (auto& [number, field] : columns)
      layout_.records.front().fields.push_back(std::move(field));
    CheckLayout(layout_);
    return std::move(layout_);
  }

 private:
  static bool IsColumn(const Entry& entry) {
    return EqualFolded(TextView(entry.key).substr(0, 3), u"Col") && entry.key.size() > 3 &&
           IsDigit(entry.key[3]);
  }

  void ReadSetting(const Entry& entry) {
    const auto is = [&](TextView key) { return EqualFolded(entry.key, key); };
    if (is(u"Format")) return ReadFormat(entry);
    if (is(u"ColNameHeader") || is(u"FirstRowHasNames")) {
      has_header_ = true;
      layout_.header_row = ReadTruth(entry);
    } else if (is(u"CharacterSet")) {
      ReadCodePage(entry);
    } else if (is(u"DateTimeFormat")) {
      pattern_ = entry.value;
    } else if (is(u"DecimalSymbol")) {
      if (entry.value.size() != 1) Reject(entry, "debe ser un carácter");
      point_ = entry.value[0];
    } else if (is(u"NumberDigits")) {
      number_digits_ = NumberOf(entry, entry.value, 0, kMostDecimals);
    } else if (is(u"CurrencyDigits")) {
      currency_digits_ = NumberOf(entry, entry.value, 0, kMostDecimals);
    } else if (is(u"TextDelimiter")) {
      if (entry.value.size() != 1 && !EqualFolded(entry.value, u"none"))
        Reject(entry, "debe ser un carácter");
      layout_.quote = entry.value.size() == 1 ? entry.value[0] : u'\0';
    } else if (std::ranges::none_of(kIgnored, is)) {
      Reject(entry, "no se admite");
    }
  }

  void ReadFormat(const Entry& entry) {
    const TextView value = entry.value;
    if (EqualFolded(value, u"FixedLength")) {
      layout_.fixed = true;
    } else if (EqualFolded(value, u"TabDelimited")) {
      layout_.delimiter = u'\t';
    } else if (value.size() == 12 && EqualFolded(value.substr(0, 10), u"Delimited(") &&
               value[11] == u')') {
      layout_.delimiter = value[10];
    } else if (!EqualFolded(value, u"CSVDelimited")) {
      Reject(entry, Quoted(value) + " no se admite");
    }
  }

  static bool ReadTruth(const Entry& entry) {
    if (EqualFolded(entry.value, u"True") || entry.value == u"1") return true;
    if (EqualFolded(entry.value, u"False") || entry.value == u"0") return false;
    Reject(entry, "debe ser True o False");
  }

  void ReadCodePage(const Entry& entry) {
    const auto page = FindWord<Encoding>(kCodePages, ToUtf8(ToLower(entry.value)));
    if (!page) Reject(entry, Quoted(entry.value) + " no se admite");
    layout_.encoding = *page;
  }

  // NAME or "NAME", TYPE and Width N.
  FieldLayout Column(const Entry& entry) const {
    TextView rest = entry.value;
    FieldLayout field;
    if (rest.starts_with(u'"')) {
      const std::size_t end = rest.find(u'"', 1);
      if (end == TextView::npos) Reject(entry, "la comilla no se cierra");
      field.name = rest.substr(1, end - 1);
      rest = rest.substr(end + 1);
    } else {
      field.name = NextWord(rest);
    }
    ReadType(entry, NextWord(rest), field);
    const TextView width = NextWord(rest);
    if (EqualFolded(width, u"Width"))
      field.width = static_cast<std::size_t>(NumberOf(entry, NextWord(rest), 1, 1 << 20));
    else if (!width.empty())
      Reject(entry, Quoted(width) + " no se admite");
    if (!Trim(rest).empty()) Reject(entry, Quoted(rest) + " no se admite");
    if (layout_.fixed && field.width == 0) Reject(entry, "falta Width");
    return field;
  }

  static TextView NextWord(TextView& rest) {
    rest = Trim(rest);
    const std::size_t end = std::min(rest.find(u' '), rest.size());
    const TextView word = rest.substr(0, end);
    rest.remove_prefix(end);
    return word;
  }

  void ReadType(const Entry& entry, TextView word, FieldLayout& field) const {
    if (word.empty()) return;
    const auto named = [&](const ColumnType& row) { return EqualFolded(row.word, word); };
    const auto row = std::ranges::find_if(kColumnTypes, named);
    if (row == std::end(kColumnTypes)) Reject(entry, Quoted(word) + " no es un tipo");
    field.type = row->type;
    field.decimal_point = point_;
    if (row->amount)
      field.decimals = currency_digits_ >= 0 ? currency_digits_
                       : number_digits_ >= 0 ? number_digits_
                                             : kUsualDigits;
    else if (row->type == FieldType::Number && number_digits_ >= 0)
      field.decimals = number_digits_;
    field.true_text = u"1";
    field.false_text = u"0";
    if (row->type == FieldType::Date && !pattern_.empty()) ReadPattern(field);
  }

  // A pattern with hours makes the column a moment.
  void ReadPattern(FieldLayout& field) const {
    field.pattern = pattern_;
    const DatePattern parsed = ParseDatePattern(pattern_);
    if (!WhyUnreadable(parsed, FieldType::DateTime)) field.type = FieldType::DateTime;
  }

  Layout layout_;
  bool has_header_ = false;
  Text pattern_;
  char16_t point_ = u'.';
  int number_digits_ = -1;
  int currency_digits_ = -1;
};

}  // namespace

Layout ReadSchemaIni(std::string_view bytes, TextView section) {
  const bool utf8 = ValidUtf8Length(bytes) == bytes.size();
  Text text = Decode(bytes, utf8 ? Encoding::Utf8 : Encoding::CodePage1252);
  if (text.starts_with(u'\uFEFF')) text.erase(0, 1);
  return SectionReader().Read(EntriesOf(text, section));
}

}  // namespace tovalin::flat
