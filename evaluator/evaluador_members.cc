#include "evaluator/lexer.h"
#include "frame/object/enumerations.h"
#include "tovalin/dispatch.h"
#include "tovalin/evaluador.h"

namespace tovalin {
namespace {

using E = Evaluador;

constexpr TextView kName = u"El nombre, sin distinguir mayúsculas";
constexpr TextView kNewName =
    u"El nombre; ni número, ni separador, ni con caracteres reservados, ni de una función o "
    u"constante";
constexpr TextView kOtherwise = u"El valor que se devuelve cuando no existe";
constexpr TextView kSymbolValue = u"El valor";
constexpr TextView kSymbolText = u"Una descripción, para mostrarla";
constexpr TextView kDataTypeDoc = u"El tipo de datos";
constexpr TextView kFormulaDoc = u"La fórmula que dará su valor a la variable; vacía, ninguna";
constexpr TextView kLocals =
    u"Variables solo para esta fórmula, que van antes que las del Evaluador; si no se da una "
    u"tabla, recibe una vacía";
constexpr TextView kExpression = u"El texto de la fórmula";
constexpr TextView kText = u"El texto";
constexpr TextView kFullName = u"El texto, por ejemplo el nombre de una persona";
constexpr TextView kNit = u"El NIT, con puntos o guiones o sin ellos";

constexpr ErrorInfo kNoTable{91, u"no se da una tabla"};
constexpr ErrorInfo kTaken{457, u"el nombre ya existe en la tabla"};
constexpr ErrorInfo kInvalidName{
    kObjectError,
    u"el nombre no es válido; la descripción tiene una línea por cada regla que rompe"};
constexpr ErrorInfo kTooLong{7, u"el texto resultaría demasiado largo"};

constexpr TextView kSameLookup =
    u"Indica si el nombre es de una variable o de una constante. ExistVariable y Existconstante "
    u"hacen lo mismo.";
constexpr TextView kValueLookup =
    u"Devuelve el valor de la variable; si no la hay, el de la constante con ese nombre; si "
    u"tampoco la hay, Default sin cambio. GetVariable y GetVariableDB hacen lo mismo.";

constexpr EnumValueInfo kFaults[] = {
    {u"falFinDeCadena", std::int32_t(FaultCode::UnclosedLiteral), u"Un texto no termina"},
    {u"falOperadorDuplicado", std::int32_t(FaultCode::DuplicateOperator),
     u"Dos operadores seguidos"},
    {u"falParentesis", std::int32_t(FaultCode::BracketMismatch),
     u"No hay tantos paréntesis abiertos como cerrados"},
    {u"falVariableNoDefinida", std::int32_t(FaultCode::UndefinedVariable),
     u"Un nombre que no está definido"},
    {u"falFaltaExpresion", std::int32_t(FaultCode::MissingExpression), u"Falta una expresión"},
};
constexpr EnumInfo kFaultInfo{u"CodigoFalta", u"Las faltas que se hallan al revisar una fórmula",
                              kFaults};
constexpr const EnumInfo* kEnumerations[] = {&kFaultInfo};

constexpr MemberRow kMembers[] = {
    Get<&E::Functions>(1, u"Functions", u"La tabla de funciones")
        .Reference(u"La tabla de funciones: las 48 propias y las que la aplicación añade. Cada "
                   u"una está bajo su palabra con el paréntesis, como \"MEDIO(\"."),
    Set<&E::SetFunctions>(1, u"Functions").Errors({kNoTable}),
    Get<&E::Variables>(2, u"Variables", u"La tabla de variables"),
    Set<&E::SetVariables>(2, u"Variables").Errors({kNoTable}),
    Get<&E::Constantes>(3, u"Constantes", u"La tabla de constantes")
        .Reference(u"La tabla de constantes, vacía hasta que se llama ClearConstants."),
    Set<&E::SetConstantes>(3, u"Constantes").Errors({kNoTable}),
    Get<&E::Operadores>(4, u"Operadores", u"La tabla de operadores")
        .Reference(u"La tabla de operadores; el valor de cada uno es su prioridad: el mayor se "
                   u"aplica primero."),
    Get<&E::Separadores>(5, u"Separadores", u"Los separadores")
        .Reference(u"Los separadores de una fórmula: \"(\", \")\" y \",\"."),
    Get<&E::CaracteresEspeciales>(6, u"CaracteresEspeciales", u"Los caracteres reservados")
        .Reference(u"Los caracteres reservados, que el nombre de una variable o una constante no "
                   u"puede tener."),
    Get<&E::StringDelimiter>(7, u"StringDelimiter", u"El delimitador de textos")
        .Reference(u"El carácter que abre y cierra los textos de una fórmula, \"'\" al principio. "
                   u"Las comillas dobles siempre lo hacen."),
    Let<&E::LetStringDelimiter>(7, u"StringDelimiter"),
    Get<&E::ClosePila>(8, u"ClosePila", u"Indicador para los manejadores del evento Evaluate")
        .Reference(u"Indicador que los manejadores del evento Evaluate pueden usar entre sí; "
                   u"vuelve a Falso después de cada evento."),
    Let<&E::LetClosePila>(8, u"ClosePila"),
    Get<&E::Description>(9, u"Description", u"Texto libre de la aplicación"),
    Let<&E::LetDescription>(9, u"Description"),
    Get<&E::Expresion>(10, u"Expresion", u"La expresión a evaluar")
        .Reference(u"La expresión a evaluar, que se guarda para la aplicación: ningún miembro la "
                   u"lee ni la cambia."),
    Let<&E::LetExpresion>(10, u"Expresion"),
    Get<&E::LastError>(11, u"LastError", u"Los mensajes de la última revisión, numerados")
        .Reference(u"Los mensajes de la última revisión, cada uno en una línea con su número: "
                   u"\"1 - Falta una expresión\". Vacío cuando la fórmula no tiene faltas."),
    Method<&E::ExistVariable>(12, u"ExistVariable", {{u"Name", kName}},
                              u"Indica si existe una variable o una constante con ese nombre")
        .Reference(kSameLookup),
    Method<&E::Existconstante>(13, u"Existconstante", {{u"Name", kName}},
                               u"Indica si existe una variable o una constante con ese nombre")
        .Reference(kSameLookup),
    Method<&E::GetVariable>(14, u"GetVariable", {{u"Name", kName}, {u"Default", kOtherwise}},
                            u"Devuelve el valor de una variable o una constante")
        .Reference(kValueLookup),
    Method<&E::GetVariableDB>(15, u"GetVariableDB", {{u"Name", kName}, {u"Default", kOtherwise}},
                              u"Devuelve el valor de una variable o una constante")
        .Reference(kValueLookup),
    Method<&E::GetDataType>(16, u"GetDataType", {{u"Name", kName}},
                            u"Devuelve el tipo de datos de una variable o una constante")
        .Reference(u"Devuelve el tipo de datos de la variable, o si no la hay de la constante; "
                   u"datNumerico (1009) cuando el nombre no existe.")
        .Result(kDataTypeInfo),
    Method<&E::GetConstante>(17, u"GetConstante", {{u"Name", kName}, {u"Default", kOtherwise}},
                             u"Devuelve el valor de una constante")
        .Reference(u"Devuelve el valor de la constante, o Default si no existe. No mira las "
                   u"variables."),
    Method<&E::SetVariable>(18, u"SetVariable", {{u"Name", kName}, {u"NewValue", kSymbolValue}},
                            u"Asigna el valor de una variable")
        .Reference(u"Asigna el valor de una variable. Si no existe no hace nada; use ChangeVble "
                   u"para enterarse."),
    Method<&E::SetConstante>(19, u"SetConstante", {{u"Name", kName}, {u"NewValue", kSymbolValue}},
                             u"Asigna el valor de una constante")
        .Reference(u"Asigna el valor de una constante. Si no existe no hace nada. Las fórmulas ya "
                   u"preparadas conservan el valor que tenía."),
    Method<&E::ChangeVble>(20, u"ChangeVble",
                           {{u"vValue", u"El número, que se guarda como Double"}, {u"Name", kName}},
                           u"Asigna un número a una variable que debe existir")
        .Errors({{5, u"no hay una variable con ese nombre"}}),
    Method<&E::Direction>(21, u"Direction", {{u"vDirection", u"Un dato de la aplicación"}},
                          u"Asigna el dato Direction de todas las variables y constantes"),
    Method<&E::NewVble>(22, u"NewVble",
                        {{u"Name", kNewName},
                         {u"Value", kSymbolValue},
                         {u"Description", kSymbolText},
                         {u"vDataType", kDataTypeDoc, &kDataTypeInfo},
                         Optional({u"oFormula", kFormulaDoc}, u"")},
                        u"Adiciona una nueva variable al evaluador")
        .Errors({kInvalidName, kTaken}),
    Method<&E::AddVble>(23, u"AddVble",
                        {{u"Name", kNewName},
                         {u"Value", kSymbolValue},
                         {u"Description", kSymbolText},
                         {u"vDataType", kDataTypeDoc, &kDataTypeInfo},
                         Optional({u"oFormula", kFormulaDoc}, u"")},
                        u"Adiciona una variable")
        .Reference(u"Adiciona una variable al evaluador; lo mismo que NewVble.")
        .Errors({kInvalidName, kTaken}),
    Method<&E::NewConstant>(24, u"NewConstant",
                            {{u"Name", kNewName},
                             {u"Value", kSymbolValue},
                             {u"Description", kSymbolText},
                             {u"vDataType", kDataTypeDoc, &kDataTypeInfo}},
                            u"Adiciona una nueva constante al evaluador")
        .Errors({kInvalidName, kTaken}),
    Method<&E::AddConstant>(25, u"AddConstant",
                            {{u"Name", kNewName},
                             {u"Value", kSymbolValue},
                             {u"Description", kSymbolText},
                             {u"vDataType", kDataTypeDoc, &kDataTypeInfo}},
                            u"Adiciona una constate")
        .Reference(u"Adiciona una constante al evaluador; lo mismo que NewConstant.")
        .Errors({kInvalidName, kTaken}),
    Method<&E::AddFunction>(
        26, u"AddFunction",
        {{u"Name", u"La palabra de la función con su paréntesis, como \"DOBLE(\""},
         {u"SourceName", u"La palabra sola, como \"DOBLE\""},
         {u"Description", kSymbolText},
         {u"Sintax", u"La sintaxis, para mostrarla como ayuda"}},
        u"Adiciona una función, que calculará el evento Evaluate")
        .Errors({{457, u"ya hay una función con esa palabra"}}),
    Method<&E::AppendsVble>(27, u"AppendsVble",
                            {{u"Campos", u"Los registros que se añaden"},
                             Optional({u"Before", u"Posición o nombre delante del cual se ponen"}),
                             Optional({u"After",
                                       u"Posición o nombre detrás del cual se ponen; "
                                       u"cuenta si no se da Before"})},
                            u"Adiciona como variables los registros de una tabla")
        .Reference(u"Adiciona como variables los registros de una tabla, en su orden. Los que no "
                   u"tienen un nombre válido, o ya existen, se pasan por alto sin error.")
        .Errors({kNoTable}),
    Method<&E::RemoveVble>(28, u"RemoveVble", {{u"Index", u"Los nombres, separados por comas"}},
                           u"Quita las variables de una lista de nombres")
        .Reference(u"Quita las variables de una lista de nombres, una tras otra. Un nombre que no "
                   u"existe termina la llamada; las anteriores ya se han quitado.")
        .Errors({{5, u"no hay una variable con uno de los nombres"}}),
    Method<&E::RemoveConts>(29, u"RemoveConts", {{u"Index", u"Un solo nombre"}},
                            u"Quita una constante")
        .Errors({{5, u"no hay una constante con ese nombre"},
                 {kObjectError, u"es una constante del sistema"}}),
    Method<&E::ClearVbles>(30, u"ClearVbles", {}, u"Deja el evaluador sin variables"),
    Method<&E::ClearFunctions>(31, u"ClearFunctions", {},
                               u"Deja solo las 48 funciones propias del evaluador"),
    Method<&E::ClearConstants>(32, u"ClearConstants", {},
                               u"Deja solo las diez constantes del sistema"),
    Method<&E::CheckInfijo>(
        33, u"CheckInfijo",
        {{u"rExpresion",
          u"La fórmula; recibe la expresión normalizada, con un blanco entre sus "
          u"elementos"},
         Optional({u"LocalVbles", kLocals})},
        u"Revisa una fórmula y devuelve sus elementos")
        .Reference(u"Revisa una fórmula y devuelve sus elementos. No provoca errores: las faltas "
                   u"quedan en LastError y en Errores, y el resultado es entonces una Collection "
                   u"vacía."),
    Get<&E::Posfijo>(34, u"Posfijo", u"El texto posfijo de los elementos de una fórmula",
                     {{u"vcolInfijo", u"Los elementos, como los da CheckInfijo"},
                      Optional({u"rPosfijo",
                                u"Recibe los elementos en orden posfijo, detrás de "
                                u"los que tenga; si no se da, una Collection nueva"}),
                      Optional({u"LocalVbles", kLocals})})
        .Reference(u"El texto posfijo de los elementos de una fórmula, cada uno seguido de un "
                   u"blanco. No provoca errores."),
    Method<&E::EvaluatePosfijo>(
        35, u"EvaluatePosfijo",
        {{u"vExpresion", u"El texto de la fórmula, o una Collection de elementos posfijos"},
         Out({u"Result", u"Recibe el valor; no cambia si hay un error"}),
         Optional({u"LocalVbles", kLocals})},
        u"Calcula el valor de una fórmula")
        .Reference(u"Calcula el valor de una fórmula. Una fórmula con faltas da 0 y las deja en "
                   u"LastError. Una división por cero da 0. Las funciones que no son propias las "
                   u"calcula la aplicación en el evento Evaluate.")
        .Result(u"Verdadero cuando el cálculo termina")
        .Errors({{13, u"una operación no admite los tipos de sus valores"},
                 {6, u"un resultado es demasiado grande"},
                 {28, u"las fórmulas de las variables se llaman a demasiada profundidad"}}),
    Method<&E::LoadTopePila>(36, u"LoadTopePila", {{u"rPila", u"La pila, que pierde su tope"}},
                             u"Saca el valor del tope de una pila")
        .Reference(
            u"Saca el valor del tope de una pila: los argumentos de una función en el evento "
            u"Evaluate, el último primero. Un texto llega sin comillas dobles. Vacío (Empty) "
            u"si la pila no tiene valores.")
        .Errors({{91, u"no se da una pila"}}),
    Method<&E::CalcularDependencias>(
        37, u"CalcularDependencias", {{u"Name", u"La variable que cambió"}},
        u"Calcula las variables con fórmula que dependen de una variable")
        .Reference(u"Calcula las variables con fórmula que mencionan la variable, directamente o a "
                   u"través de otras, cada una una vez y en el orden en que se construyen. Una que "
                   u"falla conserva su valor; no se provoca un error."),
    Method<&E::ReplaceExpresion>(38, u"ReplaceExpresion",
                                 {{u"vExpresion", kExpression}, Optional({u"LocalVbles", kLocals})},
                                 u"Devuelve la fórmula con los nombres en lugar de sus referencias")
        .Reference(u"Devuelve la fórmula con \"Nombre\" donde decía \"@Nombre\", si existe, fuera "
                   u"de los textos."),
    Method<&E::VarExpresion>(39, u"VarExpresion", {{u"vExpresion", kExpression}},
                             u"Devuelve los nombres de las variables de una fórmula")
        .Result(u"Una Collection de nombres, con el nombre como clave, en orden de aparición"),
    Method<&E::ConstExpresion>(40, u"ConstExpresion", {{u"vExpresion", kExpression}},
                               u"Devuelve los nombres de las constantes de una fórmula")
        .Result(u"Una Collection de nombres, con el nombre como clave, en orden de aparición"),
    Method<&E::ReplaceWildCards>(41, u"ReplaceWildCards",
                                 {{u"vCadena", u"El texto con los comodines \"*\" y \"?\""}},
                                 u"Cambia los comodines por los de la base de datos")
        .Reference(u"Cambia \"*\" por la constante ComodinLike (\"%\" si no existe) y \"?\" por "
                   u"\"_\".")
        .Errors({kTooLong}),
    Method<&E::Strip>(42, u"Strip", {{u"vCadena", kText}, {u"vQuitar", u"Lo que se quita"}},
                      u"Quita de un texto todas las apariciones de otro")
        .Reference(u"Quita de un texto todas las apariciones de otro, distinguiendo mayúsculas."),
    Method<&E::CSVNextChar>(
        43, u"CSVNextChar",
        {{u"rCadena", u"Los campos; pierde el primero con su delimitador"},
         {u"vDelimitador", u"Lo que separa los campos"},
         Optional({u"oComillas",
                   u"Lo que encierra un campo que contiene delimitadores; vacío, "
                   u"nada"},
                  u"")},
        u"Saca el primer campo de un texto con campos separados"),
    Method<&E::ReplaceString>(44, u"ReplaceString",
                              {{u"vCadena", kText},
                               {u"vMacro", u"Lo que se busca, distinguiendo mayúsculas"},
                               {u"vReemplazo", u"Lo que se pone en su lugar"}},
                              u"Reemplaza en un texto todas las apariciones de otro")
        .Errors({kTooLong}),
    Method<&E::CharCount>(45, u"CharCount",
                          {{u"vCadena", kText}, {u"vCaracter", u"Lo que se cuenta"}},
                          u"Cuenta las apariciones de un texto en otro")
        .Reference(u"Cuenta las apariciones de un texto en otro, sin solaparse; 0 si es vacío."),
    Method<&E::Replicate>(46, u"Replicate", {{u"vCadena", kText}, {u"vVeces", u"Cuántas veces"}},
                          u"Repite un texto")
        .Errors({{5, u"las veces son negativas"}, kTooLong}),
    Method<&E::StripNit>(47, u"StripNit", {{u"vNit", kNit}},
                         u"Deja de un NIT sus cifras y letras, sin el dígito de verificación")
        .Reference(u"Deja de un NIT sus cifras y letras, sin el dígito de verificación que sigue "
                   u"al último guión."),
    Method<&E::RemoveChars>(48, u"RemoveChars", {{u"vCadena", kText}},
                            u"Quita de un texto los blancos, las comillas y los caracteres "
                            u"reservados"),
    Method<&E::DigitoV>(49, u"DigitoV", {{u"vNit", u"El número, sin dígito de verificación"}},
                        u"Devuelve el dígito de verificación de un NIT")
        .Reference(u"Devuelve el dígito de verificación de un NIT, como texto; vacío para un texto "
                   u"vacío. Un carácter que no es cifra cuenta como 0.")
        .Errors({{5, u"tiene más de 15 caracteres"}}),
    Method<&E::AjusteMedio>(
        50, u"AjusteMedio",
        {{u"vValor", u"El número"},
         {u"vFactor", u"El múltiplo al que se ajusta"},
         {u"vDecimales", u"Los decimales a los que se redondea cuando el factor es 1"}},
        u"Ajusta un número a un múltiplo")
        .Reference(u"Ajusta un número a un múltiplo. Con factor 1 y 0 decimales lo devuelve sin "
                   u"cambio; con factor 1 redondea los positivos a los decimales, la mitad al par; "
                   u"lo demás va al múltiplo más cercano, los negativos como si no lo fueran. Mira "
                   u"las 15 cifras con que se muestra el número.")
        .Errors({{5, u"los decimales no están entre 0 y 22"},
                 {11, u"el factor es 0"},
                 {6, u"el resultado es demasiado grande"}}),
    Method<&E::Redondear>(
        51, u"Redondear",
        {{u"vValor", u"El número"}, {u"vDecimales", u"La potencia de 10: 0 unidades, 3 miles"}},
        u"Redondea un número a unidades, decenas, centenas, miles...")
        .Reference(u"Redondea un número a un múltiplo de 10 elevado a vDecimales: con 3, a miles.")
        .Errors({{11, u"vDecimales es negativo"}, {6, u"el resultado es demasiado grande"}}),
    Method<&E::nvl>(52, u"nvl",
                    {{u"vValor", u"El valor"}, {u"vDefault", u"Lo que se da en lugar de Nulo"}},
                    u"Devuelve el valor, u otro si es Nulo"),
    Method<&E::ExtraerPalabra>(
        53, u"ExtraerPalabra",
        {{u"vData", kFullName}, {u"vPart", u"El número de la palabra, desde 1"}},
        u"Devuelve una palabra de un texto")
        .Reference(u"Devuelve una palabra de un texto; vacío para 0 o si no hay tantas. Las "
                   u"partículas de, del, la, las, los, y, e no cuentan como palabras."),
    Method<&E::ExtraerFrase>(
        54, u"ExtraerFrase",
        {{u"vData", kText}, {u"vPart", u"El número de la primera palabra, desde 1"}},
        u"Devuelve un texto desde una de sus palabras hasta el final"),
    Method<&E::ExtraeRev>(55, u"ExtraeRev", {{u"vData", kText}},
                          u"Devuelve la última palabra de un texto"),
    Method<&E::MontoEscrito>(56, u"MontoEscrito",
                             {{u"vValor", u"El monto; se usa su parte entera"}},
                             u"Devuelve el monto escrito para un valor")
        .Reference(u"Devuelve la parte entera de un monto en letras: \"dos millones quinientos mil "
                   u"\". Es lo mismo que LibMonto.MontoEscrito."),
    Method<&E::Dias360>(57, u"Dias360",
                        {{u"vInicial", u"La primera fecha"}, {u"vFin", u"La segunda fecha"}},
                        u"Devuelve los días entre dos fechas en años de 360 días")
        .Reference(u"Devuelve los días entre dos fechas en años de doce meses de 30 días; negativo "
                   u"si la segunda es anterior. Es lo mismo que LibFecha.Dias360."),
    Method<&E::Preparar>(59, u"Preparar",
                         {{u"vExpresion", kExpression}, Optional({u"LocalVbles", kLocals})},
                         u"Prepara una fórmula para evaluarla muchas veces")
        .Reference(u"Prepara una fórmula para evaluarla muchas veces. No provoca errores: sus "
                   u"faltas están en Formula.Errores."),
    Get<&E::PlanesGuardados>(60, u"PlanesGuardados", u"Cuántas fórmulas guardan su plan")
        .Reference(u"Cuántos textos de fórmulas, los últimos usados, se conservan analizados para "
                   u"evaluarlos otra vez sin demora: 256 al principio, 0 para ninguno."),
    Let<&E::LetPlanesGuardados>(60, u"PlanesGuardados").Errors({{5, u"el número es negativo"}}),
    Get<&E::Errores>(58, u"Errores", u"Las faltas de la última revisión, con su lugar")
        .Reference(u"Las faltas de la última revisión, con su lugar: una Collection de Collections "
                   u"con los elementos \"Codigo\" (CodigoFalta), \"Inicio\" (desde 1), \"Largo\", "
                   u"\"Mensaje\" y \"Expresion\", el texto en que está la falta."),
    Get<&E::Vocabulario>(69, u"Vocabulario",
                         u"Lo que las fórmulas pueden nombrar, para editores de fórmulas")
        .Reference(u"Los operadores, funciones, constantes y variables que las fórmulas pueden "
                   u"nombrar: una Collection de Collections con los elementos \"Clase\" (operador, "
                   u"funcion, constante, variable), \"Nombre\", \"Grupo\", \"Firma\", "
                   u"\"Parametros\" (una Collection de registros con \"Nombre\", \"Tipo\" y "
                   u"\"Texto\"), \"Resultado\" (numero, texto, fecha, logico, cualquiera), "
                   u"\"Texto\", \"Ejemplo\", \"ValorEjemplo\", \"Prioridad\" y \"Valor\"."),
    Method<&E::Revisar>(61, u"Revisar",
                        {{u"Formula", kExpression}, Optional({u"LocalVbles", kLocals})},
                        u"Revisa una fórmula antes de guardarla, sin evaluarla")
        .Reference(u"Dice antes de guardar una fórmula qué calcula distinto de lo que parece, sin "
                   u"evaluarla: una Collection de Collections con los elementos \"Clase\" (error, "
                   u"advertencia o nota), \"Codigo\" (texto), \"Inicio\" (desde 1), \"Largo\", "
                   u"\"Mensaje\" y \"Sugerencia\", una fórmula lista para pegar o vacío."),
};

constexpr EventRow kEvents[] = {
    DescribeEvent<&E::Evaluate>(
        1, u"Evaluate",
        {{u"Macro", u"La palabra de la función con su paréntesis, como \"DOBLE(\""},
         {u"Result", u"El manejador pone aquí el valor de la función"},
         {u"rPila", u"La pila, de la que LoadTopePila saca los argumentos, el último primero"}},
        u"Una fórmula llama una función que no es propia del evaluador")
        .Reference(u"Una fórmula llama una función que no es propia del evaluador: el manejador "
                   u"saca sus argumentos de la pila con LoadTopePila y pone el valor en Result. Un "
                   u"error del manejador llega a quien evalúa."),
    DescribeEvent<&E::Response>(2, u"Response",
                                {{u"Button", u"El botón que se responde"},
                                 {u"Title", u"El título"},
                                 {u"Prompt", u"La pregunta"},
                                 {u"Buttons", u"Los botones que se ofrecen"}},
                                u"Una pregunta a la aplicación; ninguna evaluación la hace"),
};

}  // namespace

constinit const ClassInfo Evaluador::kInfo = DescribeClass<Evaluador, kMembers, kEvents>(
    u"Evaluador de fórmulas con variables, constantes y funciones de la aplicación", kEnumerations);

const ClassInfo& Evaluador::Class() const { return kInfo; }

}  // namespace tovalin
