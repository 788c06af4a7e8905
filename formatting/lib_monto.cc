#include "tovalin/lib_monto.h"

#include "formatting/amount_reading.h"
#include "formatting/argument_error.h"
#include "formatting/cents.h"
#include "formatting/cheque_words.h"
#include "formatting/filled_lines.h"
#include "formatting/words.h"
#include "frame/object/guarded.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

constexpr MemberInfo kMembers[] = {
    Method<&LibMonto::MontoEscrito>(1, u"MontoEscrito", {{u"pdblValor"}},
                                    u"Devuelve el monto escrito para un valor"),
    Method<&LibMonto::MontoCheque>(
        2, u"MontoCheque",
        {{u"Valor"},
         {u"Moneda"},
         {u"Genero"},
         {u"Estilo"},
         Optional(u"oAncho", std::int32_t{0}),
         Optional(u"oRelleno", u"*"),
         Optional(u"oMayusculas", false)},
        u"Devuelve en letras un valor exacto en centavos, con su moneda, para un cheque"),
    Method<&LibMonto::LeerMonto>(3, u"LeerMonto", {{u"Texto"}},
                                 u"Devuelve el valor exacto de un monto en letras"),
};

// Wider than any page, and no width to fill memory with.
constexpr std::int32_t kMostWidth = 32'767;

constexpr ClassInfo kClass{LibMonto::kClassName, kMembers};

}  // namespace

const ClassInfo& LibMonto::Class() const { return kClass; }

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
