#pragma once

#include <iterator>
#include <string>

#include "tovalin/text.h"

namespace tovalin::bench {

/// A variable that every engine knows.
struct NumberVariable {
  const char* name;
  double value;
};

inline constexpr NumberVariable kNumbers[] = {
    {"Salario", 2512345.0},
    {"DiasTrabajados", 28.0},
    {"HorasExtra", 12.0},
    {"Comision", 187500.0},
    {"SalarioMinimo", 1423500.0},
    {"Anticipo", 350000.0},
    {"Tasa", 0.0725},
    {"Cuotas", 36.0},
};

struct TextVariable {
  const char* name;
  const char16_t* value;
};

inline constexpr TextVariable kTexts[] = {
    {"Cargo", u"Asesor comercial"}, {"Codigo", u"00187"}, {"Nit", u"800197268"}};

/// One formula in the dialect of each engine; null where an engine has none for it.
/// Each holds the number 1000000 once: FreshText varies it.
struct Sample {
  const char* tovalin;
  const char* muparser;
  const char* lua;
};

/// Three operations.
inline constexpr Sample kShortFormula = {
    "Salario * DiasTrabajados / 30 + 1000000",
    "Salario * DiasTrabajados / 30 + 1000000",
    "Salario * DiasTrabajados / 30 + 1000000",
};

/// Fifteen operations.
inline constexpr Sample kLongFormula = {
    "(Salario * DiasTrabajados / 30 + HorasExtra * Salario * 1.25 / 220 + Comision) * "
    "(1 - Tasa) - Anticipo + (Salario - SalarioMinimo) * 0.04 / Cuotas + 1000000 * 2 - 5",
    "(Salario * DiasTrabajados / 30 + HorasExtra * Salario * 1.25 / 220 + Comision) * "
    "(1 - Tasa) - Anticipo + (Salario - SalarioMinimo) * 0.04 / Cuotas + 1000000 * 2 - 5",
    "(Salario * DiasTrabajados / 30 + HorasExtra * Salario * 1.25 / 220 + Comision) * "
    "(1 - Tasa) - Anticipo + (Salario - SalarioMinimo) * 0.04 / Cuotas + 1000000 * 2 - 5",
};

/// Comparisons and a choice, as a payroll has them.
inline constexpr Sample kChoiceFormula = {
    "IIF((Salario <= 2 * SalarioMinimo) AND (DiasTrabajados > 0), "
    "1000000 * DiasTrabajados / 30, 0)",
    "(Salario <= 2 * SalarioMinimo) && (DiasTrabajados > 0) ? "
    "1000000 * DiasTrabajados / 30 : 0",
    "(Salario <= 2 * SalarioMinimo) and (DiasTrabajados > 0) and "
    "1000000 * DiasTrabajados / 30 or 0",
};

/// Text.
inline constexpr Sample kTextFormula = {
    "IIF(Cargo = \"Asesor comercial\", Codigo & \"-\" & Nit, \"1000000\")",
    nullptr,
    "Cargo == \"Asesor comercial\" and Codigo .. \"-\" .. Nit or \"1000000\"",
};

/// Dates.
inline constexpr Sample kDatesFormula = {
    "Dias360(FechaIngreso, SERIEFECHA(2025, 12, 31)) / 360 + YEAR(FechaIngreso) + 1000000",
    nullptr,
    nullptr,
};

/// A formula whose text is another one at every turn, while its length stays.
template <class String>
class FreshText {
 public:
  explicit FreshText(String text) : text_(std::move(text)) {
    constexpr char kDigits[] = "1000000";
    last_ = text_.find(String(kDigits, std::end(kDigits) - 1)) + 6;
  }

  const String& Next() {
    for (auto place = last_;; --place) {
      if (text_[place] != '9') {
        ++text_[place];
        return text_;
      }
      text_[place] = '0';
    }
  }

 private:
  String text_;
  std::size_t last_ = 0;
};

}  // namespace tovalin::bench
