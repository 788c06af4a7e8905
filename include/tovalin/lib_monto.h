#pragma once

#include <cstdint>

#include "tovalin/api.h"
#include "tovalin/object.h"
#include "tovalin/variant.h"

namespace tovalin {

/// The gender of the noun that an amount counts.
enum monGenero : std::int32_t {
  monMasculino = 0,  // "veintiún pesos"
  monFemenino = 1,   // "veintiuna libras"
};

/// How an amount of 1234.50 pesos reads.
enum monEstilo : std::int32_t {
  monLetras = 0,          // "... pesos con cincuenta centavos"; no cents, no words for them
  monFraccion = 1,        // "... pesos con 50/100"
  monFraccionMCte = 2,    // "... pesos con 50/100 M/CTE"
  monFraccionMN = 3,      // "... pesos 50/100 M.N."
  monFraccionMoneda = 4,  // "... y 50/100 pesos"
  monMonedaFraccion = 5,  // "pesos ... con 50/100"
};

/// Amounts in Spanish words, as printed on cheques and payment documents.
class TOVALIN_API LibMonto : public Object {
 public:
  static constexpr TextView kClassName = u"LibMonto";

  static const ClassInfo kInfo;
  const ClassInfo& Class() const override;

  /// The whole part of `pdblValor` in words, on the long scale (a "billón" is
  /// 10^12). The value is first rounded to five decimals. 0 gives "Cero"; every
  /// other text is in lower case, most of them end in a blank, and one of a
  /// magnitude below 1 is empty (or "menos "). Meant for magnitudes below 10^18:
  /// beyond, the words do not say the amount. Infinite values and those that are
  /// no number give the empty text. Raises nothing.
  /// Example: 2500000 gives "dos millones quinientos mil ".
  Text MontoEscrito(double pdblValor) const;

  /// An amount with its cents and its currency in words, for a cheque, spelt as the
  /// language is today.
  ///
  /// `Valor` is a Currency, another number or a text that reads as one, and must be
  /// a whole number of cents: nothing is rounded. A Double is the decimal that its
  /// text shows. `Moneda` is the noun in the singular ("peso"), or
  /// "singular|plural|centavo|centavos", or empty. `Genero` is a monGenero, `Estilo`
  /// a monEstilo. With an `oAncho` above 0 the text is broken at words into lines of
  /// that many characters, joined by CR LF, each filled with `oRelleno`, which may
  /// be empty. `oMayusculas` gives capitals, with their accents.
  ///
  /// Raises 5 for an amount that is no whole number of cents and for arguments that
  /// do not serve, 6 for an amount beyond Currency, 13 for what is no amount.
  /// Example: 1234.5, "peso", monMasculino, monFraccionMCte gives
  /// "mil doscientos treinta y cuatro pesos con 50/100 M/CTE".
  Text MontoCheque(const Variant& Valor, const Text& Moneda, std::int32_t Genero,
                   std::int32_t Estilo, std::int32_t oAncho = 0, const Text& oRelleno = u"*",
                   bool oMayusculas = false) const;

  /// The amount that words say: what MontoCheque writes, in every style, and what
  /// MontoEscrito writes, without regard to case and accents. Raises 5, with the
  /// word and its place, for a text that is no amount, and 6 for an amount beyond
  /// Currency. Example: "veintiún pesos con 05/100" gives 21.05.
  Currency LeerMonto(const Text& Texto) const;
};

}  // namespace tovalin
