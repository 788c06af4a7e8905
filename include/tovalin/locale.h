#pragma once

#include <array>

#include "tovalin/api.h"
#include "tovalin/text.h"

namespace tovalin {

/// What texts of numbers, dates and Booleans look like. The default is the
/// library's own Spanish locale; nothing depends on the C locale or on the
/// environment.
struct Locale {
  char16_t decimal_separator = u'.';
  char16_t thousands_separator = u',';
  char16_t date_separator = u'/';
  char16_t time_separator = u':';
  Text currency_symbol = u"$";
  Text true_text = u"Verdadero";
  Text false_text = u"Falso";
  Text morning = u"a. m.";
  Text afternoon = u"p. m.";
  Text short_date = u"dd/mm/yyyy";
  Text long_date = u"dddd, d \"de\" mmmm \"de\" yyyy";
  Text long_time = u"hh:nn:ss";
  Text short_time = u"hh:nn";
  std::array<Text, 12> months = {u"enero",      u"febrero", u"marzo",     u"abril",
                                 u"mayo",       u"junio",   u"julio",     u"agosto",
                                 u"septiembre", u"octubre", u"noviembre", u"diciembre"};
  std::array<Text, 12> short_months = {u"ene", u"feb", u"mar", u"abr", u"may", u"jun",
                                       u"jul", u"ago", u"sep", u"oct", u"nov", u"dic"};
  /// From Sunday to Saturday.
  std::array<Text, 7> days = {u"domingo", u"lunes",   u"martes", u"miércoles",
                              u"jueves",  u"viernes", u"sábado"};
  std::array<Text, 7> short_days = {u"dom", u"lun", u"mar", u"mié", u"jue", u"vie", u"sáb"};
};

/// The locale in force in the whole process.
TOVALIN_API const Locale& CurrentLocale();

/// Replaces the locale as a whole. Call it before the library is used, from one
/// thread: texts already made and patterns already parsed keep the old one.
TOVALIN_API void SetLocale(Locale locale);

}  // namespace tovalin
