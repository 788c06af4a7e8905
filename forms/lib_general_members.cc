#include "frame/object/enumerations.h"
#include "tovalin/dispatch.h"
#include "tovalin/lib_general.h"

namespace tovalin {
namespace {

using General = LibGeneral;

constexpr TextView kFilteredKey = u"El código de la tecla; queda en 0 si no se acepta";
constexpr TextView kKey = u"El código de la tecla; 8 borra el último carácter, 0 no hace nada";
constexpr TextView kTextBefore = u"El texto antes de la tecla";
constexpr TextView kControl = u"El control";
constexpr TextView kBar = u"La barra de estado; ninguna si no se da";
constexpr TextView kTag = u"El tag: campos terminados cada uno por Separador";
constexpr TextView kField = u"El número del campo, desde 1";
constexpr TextView kSection = u"La sección, por ejemplo el nombre de la forma";
constexpr TextView kEntry = u"La clave, por ejemplo el nombre del control";

constexpr ErrorInfo kNotConverted{13, u"el valor no se convierte al tipo"};
constexpr ErrorInfo kNoSeparator{5, u"el índice es 0 y el tag no tiene separador"};

constexpr const EnumInfo* kEnumerations[] = {&kSubtypeInfo};

constexpr MemberRow kMembers[] = {
    Method<&General::CheckNumber>(1, u"CheckNumber", {{u"KeyAscii", kFilteredKey}},
                                  u"Acepta solo las teclas de un número")
        .Reference(u"Acepta solo las teclas de un número: cifras, retroceso, \".\", \"-\", y 109 y "
                   u"110, el menos y el punto del teclado numérico."),
    Method<&General::CheckDate>(2, u"CheckDate", {{u"KeyAscii", kFilteredKey}},
                                u"Acepta solo las teclas de una fecha")
        .Reference(u"Acepta solo las teclas de una fecha: cifras, retroceso, \"/\" y \"-\"."),
    Method<&General::CheckTime>(3, u"CheckTime", {{u"KeyAscii", kFilteredKey}},
                                u"Acepta solo las teclas de una hora")
        .Reference(u"Acepta solo las teclas de una hora: cifras, retroceso y \":\"."),
    Method<&General::AddText>(4, u"AddText", {{u"vData", kTextBefore}, {u"KeyAscii", kKey}},
                              u"Devuelve el texto después de una tecla")
        .Reference(u"Devuelve el texto después de una tecla, cuyo carácter de la página de códigos "
                   u"1252 se añade.")
        .Errors({{5, u"el código no está entre 0 y 255"}}),
    Method<&General::AddNumber>(5, u"AddNumber", {{u"vData", kTextBefore}, {u"KeyAscii", kKey}},
                                u"Devuelve el número después de una tecla")
        .Reference(
            u"Devuelve el texto de un número después de una tecla: añade cifras, también las "
            u"del teclado numérico (96 a 105), y un solo \".\" (46 o 110)."),
    Method<&General::GotFocus>(
        6, u"GotFocus",
        {{u"rctrControl", kControl},
         Optional({u"ostrTextoBarra", u"El texto; si es vacío, el campo 3 del tag del control"},
                  u""),
         Optional({u"rctr", kBar})},
        u"Muestra el texto de ayuda de un control en la barra de estado")
        .Reference(u"Muestra el texto de ayuda de un control que recibe el foco en la barra de "
                   u"estado. No provoca errores."),
    Method<&General::LostFocus>(7, u"LostFocus",
                                {{u"rctrControl", kControl}, Optional({u"rctr", kBar})},
                                u"Valida un control que pierde el foco y marca si cambió")
        .Reference(
            u"Valida un control que pierde el foco y marca en el campo 4 de su tag si cambió "
            u"(\"1\") o no (\"0\") frente al campo 5, y limpia la barra de estado. Un texto "
            u"que no es del tipo del campo 6, o que no está en la lista de un combo, muestra "
            u"un mensaje y devuelve el foco al control.")
        .Result(u"Vacío (Empty)")
        .Errors({{424, u"no se da un objeto"},
                 {91, u"no se da un control"},
                 {13, u"el campo 6 del tag no es un número"},
                 {438, u"el control no tiene un miembro que se necesita"}}),
    Method<&General::SelectText>(8, u"SelectText",
                                 {Optional({u"oControl", u"El control; si no se da, el activo"})},
                                 u"Selecciona el texto de un control")
        .Reference(u"Selecciona el texto de un cuadro de texto o de uno con máscara; los demás "
                   u"controles quedan como están."),
    Method<&General::IsControl>(9, u"IsControl", {{u"ctrControl", kControl}},
                                u"Indica si un control es de entrada de datos")
        .Reference(u"Indica si un control es de entrada de datos: texto, máscara, combo, lista, "
                   u"casilla o control con valor."),

    Method<&General::GetTag>(10, u"GetTag", {{u"vstrTag", kTag}, {u"vbytIndice", kField}},
                             u"Devuelve un campo de un tag")
        .Reference(
            u"Devuelve un campo de un tag: el 2 de \"a»b»\" es \"b\". Vacío si no lo hay; lo "
            u"que sigue al último separador no es un campo.")
        .Errors({kNoSeparator}),
    Method<&General::LetTag>(11, u"LetTag",
                             {{u"vstrTag", kTag},
                              {u"vbytIndice", kField},
                              {u"vstrNewValue", u"El texto nuevo del campo"}},
                             u"Devuelve el tag con un campo cambiado")
        .Reference(u"Devuelve el tag con un campo cambiado, o sin cambio si no tiene ese campo.")
        .Errors({kNoSeparator}),
    Method<&General::AdicionarParametro>(
        12, u"AdicionarParametro",
        {{u"rstrParametros", u"La selección, a la que se añade la condición"},
         {u"vstrParametro", u"El campo del informe, como \"{tabla.campo}\""},
         {u"vstrOperadorUnion", u"Lo que une la condición a las anteriores, como \"and\""},
         {u"vstrOperador", u"El operador con sus blancos, como \" = \""},
         {u"vvarValor", u"El valor"},
         {u"vintTipo", u"El tipo con el que se escribe el valor", &kSubtypeInfo}},
        u"Añade una condición a la selección de un informe")
        .Reference(u"Añade una condición a la selección de un informe: \"{t.a} = 5\". Los textos "
                   u"van entre comillas dobles, las fechas como \"Date (2004,3,7)\", y los lógicos "
                   u"como 1 o 0.")
        .Errors({kNotConverted, {6, u"el valor no cabe en el tipo"}}),
    Method<&General::StripDelimiter>(
        13, u"StripDelimiter",
        {{u"vString", u"El texto"}, {u"vDelimiters", u"Los caracteres que se quitan"}},
        u"Quita de un texto los delimitadores dados")
        .Reference(
            u"Quita de un texto los delimitadores dados. El carácter que sigue a uno quitado "
            u"se conserva siempre: \"a,b,c\" da \"abc\", pero \"a,,b\" da \"a,b\"."),
    Method<&General::Pot>(
        14, u"Pot",
        {{u"vvntBase", u"El número"}, {u"vvntPotencia", u"La potencia, redondeada a un entero"}},
        u"Devuelve una potencia entera")
        .Reference(
            u"Devuelve un número multiplicado tantas veces como dice la potencia; 1 para una "
            u"de 0 o menos.")
        .Errors({{13, u"un valor no es un número"}, {6, u"el resultado es demasiado grande"}}),
    Method<&General::EstaVacio>(15, u"EstaVacio", {{u"vStr", u"El texto"}},
                                u"Indica si un texto está vacío o en blanco"),
    Method<&General::nvl>(
        16, u"nvl", {{u"varValue", u"El valor"}, {u"varDefault", u"Lo que se da en lugar de Nulo"}},
        u"Devuelve el valor, u otro si es nulo"),
    Method<&General::EsNulo>(17, u"EsNulo", {{u"vvarCampo", u"El valor"}},
                             u"Indica si un valor es nulo, vacío o en blanco")
        .Errors({{13, u"el valor no tiene texto, como un objeto"}}),
    Method<&General::Check>(18, u"Check",
                            {{u"vvarDato", u"El valor"}, {u"vintType", u"El tipo", &kSubtypeInfo}},
                            u"Indica si un valor es de un tipo de dato")
        .Reference(
            u"Indica si un valor es de un tipo: para 2 a 6, si es o se lee como número; para "
            u"7, si es o se lee como fecha; para los demás, si es justamente de ese tipo. No "
            u"mira si el número cabe."),
    Get<&General::Separador>(19, u"Separador", u"El separador de los campos de un tag")
        .Reference(
            u"El carácter que termina cada campo de un tag, \"»\" al principio. Se guarda el "
            u"primero del valor asignado, o un blanco si es vacío."),
    Let<&General::LetSeparador>(19, u"Separador"),

    Get<&General::gbolCUI>(20, u"gbolCUI", u"Indica si se guarda el diseño de cada usuario")
        .Reference(u"Indica si se guarda y se recupera el diseño de las formas de cada usuario; "
                   u"Falso al principio."),
    Let<&General::LetgbolCUI>(20, u"gbolCUI"),
    Get<&General::Aplicacion>(21, u"Aplicacion", u"El nombre de la aplicación")
        .Reference(u"El nombre de la aplicación, bajo el cual se guardan los diseños."),
    Let<&General::LetAplicacion>(21, u"Aplicacion"),
    Method<&General::SaveControlProperties>(
        22, u"SaveControlProperties",
        {{u"Section", kSection}, {u"Key", kEntry}, {u"ctrl", kControl}},
        u"Guarda el tamaño y la posición de un control")
        .Reference(
            u"Guarda el diseño de un control: tamaño y posición, los anchos de las columnas "
            u"de una rejilla, o la vista de una lista. Una forma se guarda solo en su estado "
            u"normal. No hace nada si gbolCUI es Falso, y no provoca errores."),
    Method<&General::GetControlProperties>(
        23, u"GetControlProperties",
        {{u"Section", kSection}, {u"Key", kEntry}, {u"ctrl", kControl}},
        u"Recupera el tamaño y la posición de un control")
        .Reference(u"Da a un control su diseño guardado; sin él nada cambia. Si gbolCUI es Falso, "
                   u"ajusta las columnas de una rejilla a su ancho. Lo que falla a medias conserva "
                   u"lo hecho y no provoca errores; solo no poder reponer Redraw de una rejilla."),

    Method<&General::MsgBar>(
        24, u"MsgBar",
        {{u"rctr", kBar},
         {u"vstrTexto", u"El texto; vacío para limpiarla"},
         Optional({u"vbolPausa", u"Verdadero para dejar leerlo antes de seguir"}, false)},
        u"Muestra un texto en la barra de estado"),
};

}  // namespace

constinit const ClassInfo LibGeneral::kInfo = DescribeClass<LibGeneral, kMembers>(
    u"Ayudas para formas de captura: teclas, foco, tags, selección de informes y diseños",
    kEnumerations);

const ClassInfo& LibGeneral::Class() const { return kInfo; }

}  // namespace tovalin
