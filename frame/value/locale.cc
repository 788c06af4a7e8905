#include <utility>

#include "frame/value/spanish_locale.h"

namespace tovalin {
namespace {

Locale& LocaleInForce() {
  static Locale locale;
  return locale;
}

}  // namespace

const Locale& SpanishLocale() {
  static const Locale locale;
  return locale;
}

const Locale& CurrentLocale() { return LocaleInForce(); }

void SetLocale(Locale locale) { LocaleInForce() = std::move(locale); }

}  // namespace tovalin
