#include "tovalin/dispatch.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

constexpr MemberRow kMembers[] = {
    Method<&LibGeneral::CheckNumber>(1, u"CheckNumber", {{u"KeyAscii"}},
                                     u"Acepta solo las teclas de un número"),
    Method<&LibGeneral::CheckDate>(2, u"CheckDate", {{u"KeyAscii"}},
                                   u"Acepta solo las teclas de una fecha"),
    Method<&LibGeneral::CheckTime>(3, u"CheckTime", {{u"KeyAscii"}},
                                   u"Acepta solo las teclas de una hora"),
    Method<&LibGeneral::AddText>(4, u"AddText", {{u"vData"}, {u"KeyAscii"}},
                                 u"Devuelve el texto después de una tecla"),
    Method<&LibGeneral::AddNumber>(5, u"AddNumber", {{u"vData"}, {u"KeyAscii"}},
                                   u"Devuelve el número después de una tecla"),
    Method<&LibGeneral::GotFocus>(
        6, u"GotFocus", {{u"rctrControl"}, Optional({u"ostrTextoBarra"}, u""), Optional({u"rctr"})},
        u"Muestra el texto de ayuda de un control en la barra de estado"),
    Method<&LibGeneral::LostFocus>(7, u"LostFocus", {{u"rctrControl"}, Optional({u"rctr"})},
                                   u"Valida un control que pierde el foco y marca si cambió"),
    Method<&LibGeneral::SelectText>(8, u"SelectText", {Optional({u"oControl"})},
                                    u"Selecciona el texto de un control"),
    Method<&LibGeneral::IsControl>(9, u"IsControl", {{u"ctrControl"}},
                                   u"Indica si un control es de entrada de datos"),

    Method<&LibGeneral::GetTag>(10, u"GetTag", {{u"vstrTag"}, {u"vbytIndice"}},
                                u"Devuelve un campo de un tag"),
    Method<&LibGeneral::LetTag>(11, u"LetTag", {{u"vstrTag"}, {u"vbytIndice"}, {u"vstrNewValue"}},
                                u"Devuelve el tag con un campo cambiado"),
    Method<&LibGeneral::AdicionarParametro>(12, u"AdicionarParametro",
                                            {{u"rstrParametros"},
                                             {u"vstrParametro"},
                                             {u"vstrOperadorUnion"},
                                             {u"vstrOperador"},
                                             {u"vvarValor"},
                                             {u"vintTipo"}},
                                            u"Añade una condición a la selección de un informe"),
    Method<&LibGeneral::StripDelimiter>(13, u"StripDelimiter", {{u"vString"}, {u"vDelimiters"}},
                                        u"Quita de un texto los delimitadores dados"),
    Method<&LibGeneral::Pot>(14, u"Pot", {{u"vvntBase"}, {u"vvntPotencia"}},
                             u"Devuelve una potencia entera"),
    Method<&LibGeneral::EstaVacio>(15, u"EstaVacio", {{u"vStr"}},
                                   u"Indica si un texto está vacío o en blanco"),
    Method<&LibGeneral::nvl>(16, u"nvl", {{u"varValue"}, {u"varDefault"}},
                             u"Devuelve el valor, u otro si es nulo"),
    Method<&LibGeneral::EsNulo>(17, u"EsNulo", {{u"vvarCampo"}},
                                u"Indica si un valor es nulo, vacío o en blanco"),
    Method<&LibGeneral::Check>(18, u"Check", {{u"vvarDato"}, {u"vintType"}},
                               u"Indica si un valor es de un tipo de dato"),
    Get<&LibGeneral::Separador>(19, u"Separador", u"El separador de los campos de un tag"),
    Let<&LibGeneral::LetSeparador>(19, u"Separador"),

    Get<&LibGeneral::gbolCUI>(20, u"gbolCUI", u"Indica si se guarda el diseño de cada usuario"),
    Let<&LibGeneral::LetgbolCUI>(20, u"gbolCUI"),
    Get<&LibGeneral::Aplicacion>(21, u"Aplicacion", u"El nombre de la aplicación"),
    Let<&LibGeneral::LetAplicacion>(21, u"Aplicacion"),
    Method<&LibGeneral::SaveControlProperties>(22, u"SaveControlProperties",
                                               {{u"Section"}, {u"Key"}, {u"ctrl"}},
                                               u"Guarda el tamaño y la posición de un control"),
    Method<&LibGeneral::GetControlProperties>(23, u"GetControlProperties",
                                              {{u"Section"}, {u"Key"}, {u"ctrl"}},
                                              u"Recupera el tamaño y la posición de un control"),

    Method<&LibGeneral::MsgBar>(24, u"MsgBar",
                                {{u"rctr"}, {u"vstrTexto"}, Optional({u"vbolPausa"}, false)},
                                u"Muestra un texto en la barra de estado"),
};

}  // namespace

constinit const ClassInfo LibGeneral::kInfo = DescribeClass<LibGeneral, kMembers>(u"");

const ClassInfo& LibGeneral::Class() const { return kInfo; }

}  // namespace tovalin
