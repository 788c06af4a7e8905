#include "tovalin/locale.h"

#include <utility>

namespace tovalin {
namespace {

Locale& LocaleInForce() {
  static Locale locale;
  return locale;
}

}  // namespace

const Locale& CurrentLocale() { return LocaleInForce(); }

void SetLocale(Locale locale) { LocaleInForce() = std::move(locale); }

}  // namespace tovalin
