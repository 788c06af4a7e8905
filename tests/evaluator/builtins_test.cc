#include "evaluator/builtins.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>
#include <vector>

#include "tovalin/convert.h"
#include "tovalin/error.h"

namespace tovalin {
namespace {

using Arguments = std::vector<Variant>;

constexpr Date kNow{45327.75};  // 5 February 2024, 18:00

/// What a function answers: its value, or the number of the error it raises.
struct Answer {
  std::int32_t error = 0;
  Variant value;
};

Answer Call(TextView name, const Arguments& arguments) {
  static const HostClock clock([] { return kNow; });
  const Builtin* builtin = FindBuiltin(name);
  EXPECT_NE(builtin, nullptr) << ToUtf8(name);
  if (!builtin) return {};
  EXPECT_EQ(builtin->pops, arguments.size()) << ToUtf8(name);
  try {
    return {0, builtin->call(arguments, {clock})};
  } catch (const Error& error) {
    return {error.number, {}};
  }
}

std::string Shown(const Answer& answer) {
  if (answer.error != 0) return "Error " + std::to_string(answer.error);
  const std::string kind = ToUtf8(SubtypeName(answer.value.Kind()));
  return answer.value.Is(Subtype::Null) ? kind : kind + " " + ToUtf8(ToText(answer.value));
}

struct Case {
  TextView name;
  Arguments arguments;
  std::string expected;
};

void ExpectAll(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    std::string call = ToUtf8(c.name);
    for (const Variant& argument : c.arguments) call += " " + Shown({0, argument});
    EXPECT_EQ(Shown(Call(c.name, c.arguments)), c.expected) << call;
  }
}

constexpr double kQuarterTurn = std::numbers::pi / 2;
const Variant kNull = Variant::Null();

TEST(BuiltinsTest, AnswersNamesExactly) {
  EXPECT_EQ(FindBuiltin(u"MEDIO")->call, FindBuiltin(u"MID")->call);
  // ISNULL( is the host's.
  for (const TextView name : {u"ISNULL", u"medio", u"MEDIO(", u"", u"NOSUCH"})
    EXPECT_EQ(FindBuiltin(name), nullptr) << ToUtf8(name);
}

TEST(BuiltinsTest, CutText) {
  ExpectAll({
      {u"MEDIO", {u"Contabilidad", 4.0, 4.0}, "String tabi"},
      {u"MID", {u"Contabilidad", 13.0, 4.0}, "String "},
      {u"MID", {u"Contabilidad", 1e9, 1e9}, "String "},
      {u"MID", {u"abc", 2.5, 1.0}, "String b"},
      {u"MID", {12345.0, 2.0, 3.0}, "String 234"},
      {u"MID", {u"abc", 0.0, 1.0}, "Error 5"},
      {u"MID", {u"abc", -1.0, 1.0}, "Error 5"},
      {u"MID", {u"abc", 1.0, -1.0}, "Error 5"},
      {u"MID", {u"abc", u"x", 1.0}, "Error 13"},
      {u"MID", {u"abc", 1e10, 1.0}, "Error 6"},
      {u"MID", {u"abc", 1.0, kNull}, "Error 13"},
      {u"DERECHA", {u"110505", 2.0}, "String 05"},
      {u"RIGHT", {u"abc", 9.0}, "String abc"},
      {u"RIGHT", {u"abc", -1.0}, "Error 5"},
      {u"IZQUIERDA", {u"110505", u"4"}, "String 1105"},
      {u"LEFT", {u"abc", 0.0}, "String "},
      {u"LEFT", {true, 4.0}, "String Verd"},
      {u"LEFT", {u"abc", -1.0}, "Error 5"},
      {u"TRIM", {u"  a b "}, "String a b"},
      {u"TRIM", {Variant()}, "String "},
      {u"LEN", {u"Nómina"}, "Long 6"},
      {u"LEN", {-12.5}, "Long 5"},
      {u"LEN", {Variant()}, "Long 0"},
  });
}

TEST(BuiltinsTest, FillAndReplaceText) {
  ExpectAll({
      {u"AJUSTAR", {u" ab ", 5.0, 0.0}, "String ab   "},
      {u"AJUSTAR", {u" ab ", 5.0, 1.0}, "String    ab"},
      {u"AJUSTAR", {1234.5, 3.0, 1.0}, "String 123"},
      {u"AJUSTAR", {u"ab", -1.0, 0.0}, "Error 5"},
      {u"AJUSTAR", {u"ab", 40000.0, 0.0}, "Error 6"},
      {u"DESAJUSTAR", {u"0000123", u"0", 0.0}, "String 0123"},
      {u"DESAJUSTAR", {u"abc***", u"*", 1.0}, "String abc"},
      {u"DESAJUSTAR", {u"007", 0.0, 0.0}, "String 07"},
      {u"REEMPLAZARCADENA", {u"1-2-3", u"-", 0.0}, "String 10203"},
      {u"REEMPLAZARCADENA", {u"abc", kNull, u"x"}, "Error 13"},
      {u"AJUSTARDIGITOSGRUPO", {u"1.10.300"}, "String 001.010.300"},
      {u"DOAUTOBRACKET", {u"a.[b c]"}, "String [a].[b c]"},
      {u"STRIPNIT", {u"800.197.268-4"}, "String 800197268"},
      {u"REMOVECHARS", {1234.5}, "String 12345"},
      {u"DIGITOV", {u"800197268"}, "String 4"},
      {u"DIGITOV", {800197268.0}, "String 4"},
      {u"DIGITOV", {u""}, "String "},
  });
}

TEST(BuiltinsTest, FindWords) {
  ExpectAll({
      {u"PRIMERNOMBRE", {u"María de los Ángeles Pérez"}, "String María"},
      {u"SEGUNDONOMBRE", {u"María de los Ángeles Pérez"}, "String Ángeles"},
      {u"EXTRAERPALABRA", {u"María de los Ángeles Pérez", 3.0}, "String Pérez"},
      {u"EXTRAERPALABRA", {u"uno dos", 0.0}, "String "},
      {u"EXTRAERPALABRA", {u"uno dos", -1.0}, "Error 6"},
      {u"EXTRAERPALABRA", {u"uno dos", u"dos"}, "Error 13"},
      // Particles count in a phrase.
      {u"EXTRAERFRASE", {u"María de los Ángeles", 2.0}, "String de los Ángeles"},
      {u"EXTRAERFRASE", {u"uno dos", 256.0}, "Error 6"},
      {u"EXTRAEREV", {u"uno dos tres"}, "String tres"},
  });
}

TEST(BuiltinsTest, CodesAreThoseOfTheCodePage) {
  ExpectAll({
      {u"CHR", {65.0}, "String A"},
      {u"CHR", {209.0}, "String Ñ"},
      {u"CHR", {128.0}, "String €"},
      {u"CHR", {256.0}, "Error 5"},
      {u"CHR", {-1.0}, "Error 5"},
      {u"CHR", {kNull}, "Error 13"},
      {u"ASC", {u"Ñandú"}, "Integer 209"},
      {u"ASC", {u"€"}, "Integer 128"},
      {u"ASC", {u"Ω"}, "Integer 937"},
      {u"ASC", {u"\uFF21"}, "Integer -223"},
      {u"ASC", {u""}, "Error 5"},
      {u"ASC", {7.0}, "Integer 55"},
  });
  for (int code = 0; code < 256; ++code) {
    const Variant character = Call(u"CHR", {code}).value;
    EXPECT_EQ(Call(u"ASC", {character}).value.AsInteger(), code);
  }
}

TEST(BuiltinsTest, ComputeNumbers) {
  ExpectAll({
      {u"ABS", {-7.5}, "Double 7.5"},
      {u"ABS", {std::int16_t{-7}}, "Integer 7"},
      {u"ABS", {Currency{-12345}}, "Currency 1.2345"},
      {u"ABS", {u"abc"}, "Error 13"},
      {u"ABS", {kNull}, "Null"},
      {u"VAL", {u" 12 500.5 kg"}, "Double 12500.5"},
      {u"VAL", {u"kg"}, "Double 0"},
      {u"VAL", {u"&HFF"}, "Double 255"},
      {u"ESNUMERO", {u"12.5"}, "Boolean Verdadero"},
      {u"ISNUMERIC", {u"12.5 kg"}, "Boolean Falso"},
      {u"ISNUMERIC", {kNow}, "Boolean Falso"},
      {u"ISNUMERIC", {kNull}, "Boolean Falso"},
      {u"AJUSTEMEDIO", {1275.0, 50.0, 0.0}, "Double 1300"},
      {u"AJUSTEMEDIO", {u"2.675", 1.0, 2.0}, "Double 2.68"},
      {u"AJUSTEMEDIO", {u"x", 1.0, 2.0}, "Error 13"},
      {u"AJUSTEMEDIO", {kNull, 1.0, 2.0}, "Error 13"},
      {u"REDONDEAR", {1234500.0, 3.0}, "Double 1235000"},
      {u"REDONDEAR", {1234500.0, -3.0}, "Error 11"},
      {u"MONTOESCRITO", {2500000.0}, "String dos millones quinientos mil "},
      {u"MONTOESCRITO", {u"21"}, "String veintiun"},
      {u"MONTOESCRITO", {u"x"}, "Error 13"},
      {u"FORMAT", {1234567.5, u"#,##0.00"}, "String 1,234,567.50"},
      {u"FORMAT", {2.675, u"0.00"}, "String 2.68"},
      {u"FORMAT", {kNow, u"yyyy-mm-dd"}, "String 2024-02-05"},
  });
}

TEST(BuiltinsTest, TrigonometryCrossesSecantAndCosecant) {
  ExpectAll({
      {u"SEC", {kQuarterTurn}, "Double 1"},
      {u"CSC", {0.0}, "Double 1"},
      {u"SEC", {0.0}, "Error 11"},
      {u"CTN", {0.0}, "Error 11"},
      {u"CTN", {5e-324}, "Error 6"},
      {u"SIN", {kQuarterTurn}, "Double 1"},
      {u"COS", {0.0}, "Double 1"},
      {u"TAN", {kQuarterTurn / 2}, "Double 1"},
      {u"CTN", {kQuarterTurn / 2}, "Double 1"},
      {u"SIN", {std::numeric_limits<double>::infinity()}, "Error 6"},
      {u"SIN", {u"x"}, "Error 13"},
  });
}

TEST(BuiltinsTest, ComputeDates) {
  const Variant now = kNow;
  ExpectAll({
      {u"DATE", {}, "Date 05/02/2024"},
      {u"NOW", {}, "Date 05/02/2024 18:00:00"},
      {u"YEAR", {now}, "Integer 2024"},
      {u"MONTH", {now}, "Integer 2"},
      {u"DAY", {now}, "Integer 5"},
      {u"YEAR", {u"31/12/1999"}, "Integer 1999"},
      {u"DAY", {45327.0}, "Integer 5"},
      {u"MONTH", {u"febrero"}, "Error 13"},
      {u"YEAR", {u"x"}, "Error 13"},
      {u"SERIEFECHA", {2024.0, 3.0, 0.0}, "Date 29/02/2024"},
      {u"DATESERIAL", {99.0, 13.0, 1.0}, "Date 01/01/2000"},
      {u"DATESERIAL", {29.0, 1.0, 1.0}, "Date 01/01/2029"},
      {u"DATESERIAL", {99999.0, 1.0, 1.0}, "Error 6"},
      {u"DATESERIAL", {9999.0, 13.0, 1.0}, "Error 5"},
      {u"DATEADD", {u"m", 1.0, u"31/01/2024"}, "Date 29/02/2024"},
      {u"DATEADD", {u"YYYY", -1.0, u"29/02/2024"}, "Date 28/02/2023"},
      {u"DATEADD", {u"h", 6.0, now}, "Date 06/02/2024"},
      {u"DATEADD", {u"x", 1.0, now}, "Error 5"},
      {u"DATEADD", {u"d", 1e300, now}, "Error 5"},
      {u"DATEADD", {u"d", u"uno", now}, "Error 13"},
      {u"ESFECHA", {u"29/02/2024"}, "Boolean Verdadero"},
      {u"ESFECHA", {u"30/02/2024"}, "Boolean Falso"},
      {u"ESFECHA", {45327.0}, "Boolean Falso"},
      {u"ESFECHA", {now}, "Boolean Verdadero"},
      {u"DIAS360", {u"15/01/2024", u"31/12/2024"}, "Long 345"},
      {u"DIAS360", {u"01/03/2023", u"28/02/2023"}, "Long -1"},
      {u"DIAS360", {u"ayer", now}, "Error 13"},
      {u"NOMBREMES", {1.0}, "String Enero"},
      {u"NOMBREMES", {13.0}, "Null"},
      {u"NOMBREMES", {1e300}, "Null"},
      {u"MESABR", {u"12"}, "String Dic"},
      {u"MESABR", {0.5}, "Null"},
      {u"MESABR", {u"Dic"}, "Error 13"},
  });
}

TEST(BuiltinsTest, ChooseAndCompare) {
  ExpectAll({
      {u"NVL", {kNull, 5.0}, "Double 5"},
      {u"NVL", {u"", 5.0}, "String "},
      {u"MIN", {9.0, 10.0}, "Double 9"},
      {u"MAX", {9.0, 10.0}, "Double 10"},
      {u"MIN", {u"9", u"10"}, "String 10"},
      {u"MAX", {u"a", u"B"}, "String a"},
      {u"MIN", {kNull, 5.0}, "Double 5"},  // Null is not less: the second one
      {u"MAX", {5.0, kNull}, "Null"},
      {u"MAX", {u"x", u"x"}, "String x"},
      {u"IIF", {true, 10.0, 20.0}, "Double 10"},
      {u"IIF", {0.0, 10.0, 20.0}, "Double 20"},
      {u"IIF", {u"True", 10.0, 20.0}, "Double 10"},
      {u"IIF", {kNull, 10.0, kNull}, "Null"},
      {u"IIF", {u"tal vez", 10.0, 20.0}, "Error 13"},
  });
}

TEST(BuiltinsTest, NullTextGivesNull) {
  ExpectAll({
      {u"MEDIO", {kNull, 1.0, 1.0}, "Null"},
      {u"DERECHA", {kNull, 1.0}, "Null"},
      {u"AJUSTAR", {kNull, 5.0, 0.0}, "Null"},
      {u"REEMPLAZARCADENA", {kNull, u"a", u"b"}, "Null"},
      {u"TRIM", {kNull}, "Null"},
      {u"LEN", {kNull}, "Null"},
      {u"VAL", {kNull}, "Null"},
      {u"ASC", {kNull}, "Null"},
      {u"DIGITOV", {kNull}, "Null"},
      {u"EXTRAERPALABRA", {kNull, 1.0}, "Null"},
      {u"YEAR", {kNull}, "Null"},
      {u"DATEADD", {u"d", 1.0, kNull}, "Null"},
  });
}

// Whatever a host hands in, each function answers or raises.
TEST(BuiltinsTest, EveryFunctionSurvivesEveryValue) {
  const Arguments values = {Variant(),
                            kNull,
                            std::int16_t{-32768},
                            std::numeric_limits<std::int32_t>::min(),
                            -0.0f,
                            std::numeric_limits<double>::quiet_NaN(),
                            -std::numeric_limits<double>::infinity(),
                            1e308,
                            Currency{std::numeric_limits<std::int64_t>::min()},
                            Date{1e300},
                            Date{std::numeric_limits<double>::quiet_NaN()},
                            u"",
                            u"\xD800",
                            u"31/12/9999",
                            true,
                            std::uint8_t{255},
                            Variant::Missing(),
                            Variant(Ref<Object>())};
  for (const Builtin& builtin : Builtins()) {
    std::size_t combinations = 1;
    for (int i = 0; i < builtin.pops; ++i) combinations *= values.size();
    for (std::size_t n = 0; n < combinations; ++n) {
      Arguments arguments;
      for (std::size_t rest = n; arguments.size() < builtin.pops; rest /= values.size())
        arguments.push_back(values[rest % values.size()]);
      static const HostClock clock([] { return kNow; });
      try {
        builtin.call(arguments, {clock});
      } catch (const Error& error) {
        EXPECT_TRUE(error.number == 5 || error.number == 6 || error.number == 7 ||
                    error.number == 11 || error.number == 13)
            << ToUtf8(builtin.name) << ": " << error.number;
      }
    }
  }
}

}  // namespace
}  // namespace tovalin
