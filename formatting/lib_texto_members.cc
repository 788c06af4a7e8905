#include "tovalin/dispatch.h"
#include "tovalin/lib_texto.h"

namespace tovalin {
namespace {

constexpr TextView kData = u"El texto; no cuentan los blancos de sus extremos";

constexpr MemberRow kMembers[] = {
    Method<&LibTexto::ExtraerPalabra>(
        1, u"ExtraerPalabra", {{u"vData", kData}, {u"vPart", u"El número de la palabra, desde 1"}},
        u"Devuelve una palabra de un texto")
        .Reference(
            u"Devuelve una palabra de un texto; vacío para 0 o si no hay tantas. Cada blanco "
            u"separa: entre dos seguidos hay una palabra vacía."),
    Method<&LibTexto::ExtraerFrase>(
        2, u"ExtraerFrase",
        {{u"vData", kData}, {u"vPart", u"El número de la primera palabra, desde 1"}},
        u"Devuelve un texto desde una de sus palabras hasta el final")
        .Reference(u"Devuelve un texto desde una de sus palabras hasta el final: \"uno dos tres\" "
                   u"desde la 2 es \"dos tres\". Vacío para 0 o si no hay tantas."),
    Method<&LibTexto::TipoFrase>(3, u"TipoFrase", {{u"vstrWord", u"El texto"}},
                                 u"Devuelve un texto con sus palabras en mayúscula inicial")
        .Reference(u"Devuelve un texto con mayúscula inicial, y el resto en minúsculas, en la "
                   u"primera palabra y en las de más de tres letras: \"calle de la ROSA\" da "
                   u"\"Calle de la Rosa\". Un texto de una o dos letras no cambia."),
};

}  // namespace

constinit const ClassInfo LibTexto::kInfo =
    DescribeClass<LibTexto, kMembers>(u"Palabras y frases de un texto");

const ClassInfo& LibTexto::Class() const { return kInfo; }

}  // namespace tovalin
