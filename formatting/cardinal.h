#pragma once

#include <array>
#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

// The Spanish numerals as they are spelt today, with their accents. Those of
// MontoEscrito are its own and stay as they are.

inline constexpr std::array<TextView, 30> kBelowThirty = {
    u"cero",         u"uno",         u"dos",        u"tres",        u"cuatro",     u"cinco",
    u"seis",         u"siete",       u"ocho",       u"nueve",       u"diez",       u"once",
    u"doce",         u"trece",       u"catorce",    u"quince",      u"dieciséis",  u"diecisiete",
    u"dieciocho",    u"diecinueve",  u"veinte",     u"veintiuno",   u"veintidós",  u"veintitrés",
    u"veinticuatro", u"veinticinco", u"veintiséis", u"veintisiete", u"veintiocho", u"veintinueve"};

inline constexpr std::array<TextView, 10> kTens = {
    u"",          u"",        u"",        u"treinta", u"cuarenta",
    u"cincuenta", u"sesenta", u"setenta", u"ochenta", u"noventa"};

inline constexpr std::array<TextView, 10> kHundreds = {
    u"",           u"ciento",      u"doscientos",  u"trescientos", u"cuatrocientos",
    u"quinientos", u"seiscientos", u"setecientos", u"ochocientos", u"novecientos"};

inline constexpr std::array<TextView, 10> kFeminineHundreds = {
    u"",           u"ciento",      u"doscientas",  u"trescientas", u"cuatrocientas",
    u"quinientas", u"seiscientas", u"setecientas", u"ochocientas", u"novecientas"};

/// How a cardinal agrees with the noun that it counts.
enum class NumeralForm : std::uint8_t {
  Alone,      // no noun follows: "veintiuno", "doscientos"
  Masculine,  // before its noun: "veintiún", "doscientos"
  Feminine,   // "veintiuna", "doscientas"
};

/// 1 and 21 in each form, the only numerals below 30 that change.
inline constexpr std::array<TextView, 3> kOne = {u"uno", u"un", u"una"};
inline constexpr std::array<TextView, 3> kTwentyOne = {u"veintiuno", u"veintiún", u"veintiuna"};

/// Adds a word, with a blank before it when one is missing.
void AppendWord(Text& text, TextView word);

/// Adds `value`, which is below 10^18, in words, on the long scale. Before "mil"
/// 1 is "un" in every form and the hundreds agree ("doscientas veintiún mil
/// libras"); before "millones" and "billones" all is masculine.
/// Example: 1000021 as Masculine gives "un millón veintiún".
void AppendCardinal(Text& text, std::uint64_t value, NumeralForm form);

}  // namespace tovalin
