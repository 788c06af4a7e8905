#include "frame/format/named_formats.h"

#include <algorithm>
#include <array>

#include "tovalin/locale.h"

namespace tovalin {
namespace {

/// What stands at the braces of a pattern below comes from the locale.
struct Row {
  TextView english;
  TextView spanish;
  TextView unaccented;  // as it is often typed
  TextView pattern;
};

constexpr TextView kCurrency = u"{currency}";
constexpr TextView kTrueFalse = u"{true/false}";
constexpr TextView kShortTime = u"{short time}";

constexpr std::array kRows = {
    Row{u"General Number", u"Número general", u"Numero general", kGeneralNumber},
    Row{u"Currency", u"Moneda", u"", kCurrency},
    Row{u"Fixed", u"Fijo", u"", u"0.00"},
    Row{u"Standard", u"Estándar", u"Estandar", u"#,##0.00"},
    Row{u"Percent", u"Porcentaje", u"", u"0.00%"},
    Row{u"Scientific", u"Científico", u"Cientifico", u"0.00E+00"},
    Row{u"Yes/No", u"Sí/No", u"Si/No", u"\"Sí\";\"Sí\";\"No\""},
    Row{u"True/False", u"Verdadero/Falso", u"", kTrueFalse},
    Row{u"On/Off", u"Activado/Desactivado", u"", u"\"Activado\";\"Activado\";\"Desactivado\""},
    Row{u"General Date", u"Fecha general", u"", u"c"},
    Row{u"Long Date", u"Fecha larga", u"", u"dddddd"},
    Row{u"Medium Date", u"Fecha mediana", u"", u"dd-mmm-yy"},
    Row{u"Short Date", u"Fecha corta", u"", u"ddddd"},
    Row{u"Long Time", u"Hora larga", u"", u"ttttt"},
    Row{u"Medium Time", u"Hora mediana", u"", u"hh:nn AMPM"},
    Row{u"Short Time", u"Hora corta", u"", kShortTime},
};

void AppendEscaped(Text& pattern, TextView literal) {
  for (const char16_t c : literal) {
    pattern += u'\\';
    pattern += c;
  }
}

Text CurrencyPattern() {
  Text pattern;
  AppendEscaped(pattern, CurrentLocale().currency_symbol);
  return pattern += u"#,##0.00";
}

Text TrueFalsePattern() {
  Text truth;
  Text pattern;
  AppendEscaped(truth, CurrentLocale().true_text);
  pattern += truth + u";" + truth + u";";
  AppendEscaped(pattern, CurrentLocale().false_text);
  return pattern;
}

bool IsNamed(const Row& row, TextView name) {
  return EqualFolded(row.english, name) || EqualFolded(row.spanish, name) ||
         EqualFolded(row.unaccented, name);
}

}  // namespace

std::optional<Text> NamedFormat(TextView name) {
  if (name.empty()) return std::nullopt;
  const auto row =
      std::ranges::find_if(kRows, [&](const Row& each) { return IsNamed(each, name); });
  if (row == kRows.end()) return std::nullopt;
  if (row->pattern == kCurrency) return CurrencyPattern();
  if (row->pattern == kTrueFalse) return TrueFalsePattern();
  if (row->pattern == kShortTime) return CurrentLocale().short_time;
  return Text(row->pattern);
}

}  // namespace tovalin
