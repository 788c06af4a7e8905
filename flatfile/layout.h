#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tovalin/text.h"

// The layout of a flat file: a delimited file or one of fixed width, with records of
// one or more kinds. Layouts come from files (see layout_json.h, schema_ini.h,
// export_layout.h) and are checked once, by CheckLayout; what writes and reads takes
// only checked ones.

namespace tovalin::flat {

enum class FieldType { Text, Whole, Number, Logical, Date, Time, DateTime };
enum class Alignment { Default, Left, Right };  // Default: numbers and dates right, texts left
enum class Sign {
  Front,   // "-0005"
  Behind,  // "0005-", with a blank in its place for a positive number
  Zone,    // in the last digit: 15 is "001E", -15 is "001N"
  None,    // negative numbers are refused
};
enum class Misfit { Refuse, CutRight, CutLeft, Mark };
enum class LetterCase { AsIs, Upper, Lower };
enum class TotalKind {
  None,
  Count,    // records of the kinds
  Lines,    // all records of the file, that of the total included
  Sum,      // of a field of the kinds
  Control,  // the digits of a field as one number, added up and reduced by a modulus
};
enum class Role { First, Detail, Last };
enum class QuoteUse { Needed, Texts, Always, Never };
enum class LineEnd { CrLf, Lf, None };
enum class Encoding { CodePage1252, Latin1, Utf8, Utf8Mark, Ascii };
enum class Unencodable { Refuse, Replace, Unaccent };

/// The most decimals of an amount that is exact in Currency, and of any number.
inline constexpr int kCurrencyDecimals = 4;
inline constexpr int kMostDecimals = 15;
/// The longest record that is written or read, in characters.
inline constexpr std::size_t kLongestRecord = std::size_t{1} << 20;

struct Total {
  TotalKind kind = TotalKind::None;
  Text field;               // of Sum and Control
  std::vector<Text> kinds;  // of records; none: every detail
  std::uint64_t modulus = 0;
};

struct FieldLayout {
  Text name;
  FieldType type = FieldType::Text;
  std::size_t start = 0;  // from 1; 0: behind the field before
  std::size_t width = 0;  // characters; 0 in the last field: what is left of the record
  Alignment alignment = Alignment::Default;
  char16_t fill = u' ';
  std::optional<int> decimals;
  bool implied = false;  // the decimal point is not written
  bool rounds = false;   // more decimals than the field has are rounded, not refused
  Sign sign = Sign::Front;
  bool plus = false;  // positive numbers show their sign too
  char16_t decimal_point = u'.';
  char16_t group = 0;  // between thousands, 0 for none
  Text pattern;        // of dates and numbers, as FORMAT( has them
  Text column;         // that gives the value; empty: the field's name
  std::optional<Text> constant;
  Text formula;
  Total total;
  Text null_text;
  bool required = false;
  std::vector<Text> allowed;
  LetterCase letter_case = LetterCase::AsIs;
  Misfit misfit = Misfit::Refuse;
  char16_t mark = u'*';
  Text true_text = u"true";
  Text false_text = u"false";

  bool IsNumber() const { return type == FieldType::Whole || type == FieldType::Number; }
  bool IsMoment() const {
    return type == FieldType::Date || type == FieldType::Time || type == FieldType::DateTime;
  }
  bool IsRight() const {
    if (alignment != Alignment::Default) return alignment == Alignment::Right;
    return type != FieldType::Text && type != FieldType::Logical;
  }
  /// Whether its values come from a column of the rows.
  bool HasColumn() const { return !constant && formula.empty() && total.kind == TotalKind::None; }
  const Text& Column() const { return column.empty() ? name : column; }
  /// The decimals of amounts, which are exact in Currency; none for other fields.
  std::optional<int> AmountDecimals() const {
    if (type == FieldType::Whole) return 0;
    if (type != FieldType::Number || decimals.value_or(kMostDecimals) > kCurrencyDecimals)
      return std::nullopt;
    return decimals;
  }
};

struct RecordLayout {
  Text name;
  Role role = Role::Detail;
  std::vector<Text> when;  // the values of the kind column; none: every row
  std::vector<FieldLayout> fields;
};

/// A column of the rows, for what reads them from text.
struct ColumnLayout {
  Text name;
  FieldType type = FieldType::Text;
};

struct Layout {
  bool fixed = false;
  std::size_t length = 0;     // of fixed records; 0: what the fields take
  Text separator;             // behind each fixed field
  char16_t delimiter = u',';  //
  char16_t quote = u'"';      // 0 for none
  bool doubled = true;        // a quote in a quoted text is doubled, else refused
  QuoteUse quotes = QuoteUse::Needed;
  bool header_row = false;
  LineEnd line_end = LineEnd::CrLf;
  Encoding encoding = Encoding::CodePage1252;
  Unencodable unencodable = Unencodable::Refuse;
  char16_t replacement = u'?';
  Text kind_column;  // whose value chooses the kind of a detail
  std::vector<ColumnLayout> columns;
  std::vector<RecordLayout> records;
};

/// Completes a layout (starts, lengths, patterns) and refuses one with a fault: raises
/// kObjectError with the place, such as "Registro «detalle», campo «Valor»".
void CheckLayout(Layout& layout);

/// The columns that the rows have: those that the layout lists, then those that its
/// detail fields name.
std::vector<ColumnLayout> ColumnsOf(const Layout& layout);

/// The characters that a fixed field takes with the separator behind it.
inline std::size_t StepOf(const Layout& layout, const FieldLayout& field) {
  return field.width + layout.separator.size();
}

/// Whether the records of a kind count in a total.
bool CountsIn(const Total& total, const RecordLayout& record);

bool IsSingleByte(Encoding encoding);

}  // namespace tovalin::flat
