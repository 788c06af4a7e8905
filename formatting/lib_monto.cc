#include "tovalin/lib_monto.h"

#include "formatting/amount_reading.h"
#include "formatting/argument_error.h"
#include "formatting/cents.h"
#include "formatting/cheque_words.h"
#include "formatting/filled_lines.h"
#include "formatting/monto_escrito.h"
#include "frame/object/error_translation.h"

namespace tovalin {
namespace {

// Wider than any page, and no width to fill memory with.
constexpr std::int32_t kMostWidth = 32'767;

}  // namespace

Text LibMonto::MontoEscrito(double pdblValor) const {
  return RaisingErrors([&] { return tovalin::MontoEscrito(pdblValor); });
}

Text LibMonto::MontoCheque(const Variant& Valor, const Text& Moneda, std::int32_t Genero,
                           std::int32_t Estilo, std::int32_t oAncho, const Text& oRelleno,
                           bool oMayusculas) const {
  return RaisingErrors([&] {
    if (oAncho < 0 || oAncho > kMostWidth)
      RaiseInvalidArgument(u"LibMonto.MontoCheque", u"El ancho va de 0 a 32767");
    if (!IsFiller(oRelleno))
      RaiseInvalidArgument(u"LibMonto.MontoCheque",
                           u"El relleno " + Quoted(oRelleno) + u" se podría leer como letras");
    Text words = ChequeWords(CentsOf(Valor), ReadCurrencyNouns(Moneda), Genero, Estilo);
    if (oMayusculas) words = ToUpper(words);
    return oAncho == 0 ? words : FilledLines(words, static_cast<std::size_t>(oAncho), oRelleno);
  });
}

Currency LibMonto::LeerMonto(const Text& Texto) const {
  return RaisingErrors([&] { return Currency{ReadAmount(Texto) * 100}; });
}

}  // namespace tovalin
