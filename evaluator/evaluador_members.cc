#include "tovalin/dispatch.h"
#include "tovalin/evaluador.h"

namespace tovalin {
namespace {

using E = Evaluador;

constexpr MemberInfo kMembers[] = {
    Get<&E::Functions>(1, u"Functions", u"La tabla de funciones"),
    Set<&E::SetFunctions>(1, u"Functions"),
    Get<&E::Variables>(2, u"Variables", u"La tabla de variables"),
    Set<&E::SetVariables>(2, u"Variables"),
    Get<&E::Constantes>(3, u"Constantes", u"La tabla de constantes"),
    Set<&E::SetConstantes>(3, u"Constantes"),
    Get<&E::Operadores>(4, u"Operadores", u"La tabla de operadores"),
    Get<&E::Separadores>(5, u"Separadores", u"Los separadores"),
    Get<&E::CaracteresEspeciales>(6, u"CaracteresEspeciales", u"Los caracteres reservados"),
    Get<&E::StringDelimiter>(7, u"StringDelimiter", u"El delimitador de textos"),
    Let<&E::LetStringDelimiter>(7, u"StringDelimiter"),
    Get<&E::ClosePila>(8, u"ClosePila"),
    Let<&E::LetClosePila>(8, u"ClosePila"),
    Get<&E::Description>(9, u"Description", u"Texto libre"),
    Let<&E::LetDescription>(9, u"Description"),
    Get<&E::Expresion>(10, u"Expresion", u"La expresión a evaluar"),
    Let<&E::LetExpresion>(10, u"Expresion"),
    Get<&E::LastError>(11, u"LastError", u"Los mensajes de la última revisión, numerados"),
    Method<&E::ExistVariable>(12, u"ExistVariable", {{u"Name"}}),
    Method<&E::Existconstante>(13, u"Existconstante", {{u"Name"}}),
    Method<&E::GetVariable>(14, u"GetVariable", {{u"Name"}, {u"Default"}}),
    Method<&E::GetVariableDB>(15, u"GetVariableDB", {{u"Name"}, {u"Default"}}),
    Method<&E::GetDataType>(16, u"GetDataType", {{u"Name"}}),
    Method<&E::GetConstante>(17, u"GetConstante", {{u"Name"}, {u"Default"}}),
    Method<&E::SetVariable>(18, u"SetVariable", {{u"Name"}, {u"NewValue"}}),
    Method<&E::SetConstante>(19, u"SetConstante", {{u"Name"}, {u"NewValue"}}),
    Method<&E::ChangeVble>(20, u"ChangeVble", {{u"vValue"}, {u"Name"}}),
    Method<&E::Direction>(21, u"Direction", {{u"vDirection"}}),
    Method<&E::NewVble>(
        22, u"NewVble",
        {{u"Name"}, {u"Value"}, {u"Description"}, {u"vDataType"}, Optional(u"oFormula", u"")}),
    Method<&E::AddVble>(
        23, u"AddVble",
        {{u"Name"}, {u"Value"}, {u"Description"}, {u"vDataType"}, Optional(u"oFormula", u"")}),
    Method<&E::NewConstant>(24, u"NewConstant",
                            {{u"Name"}, {u"Value"}, {u"Description"}, {u"vDataType"}},
                            u"Adiciona una nueva constante al evaluador"),
    Method<&E::AddConstant>(25, u"AddConstant",
                            {{u"Name"}, {u"Value"}, {u"Description"}, {u"vDataType"}},
                            u"Adiciona una constate"),
    Method<&E::AddFunction>(26, u"AddFunction",
                            {{u"Name"}, {u"SourceName"}, {u"Description"}, {u"Sintax"}}),
    Method<&E::AppendsVble>(27, u"AppendsVble",
                            {{u"Campos"}, Optional(u"Before"), Optional(u"After")}),
    Method<&E::RemoveVble>(28, u"RemoveVble", {{u"Index"}}),
    Method<&E::RemoveConts>(29, u"RemoveConts", {{u"Index"}}),
    Method<&E::ClearVbles>(30, u"ClearVbles", {}),
    Method<&E::ClearFunctions>(31, u"ClearFunctions", {}),
    Method<&E::ClearConstants>(32, u"ClearConstants", {}),
    Method<&E::CheckInfijo>(33, u"CheckInfijo", {{u"rExpresion"}, Optional(u"LocalVbles")}),
    Get<&E::Posfijo>(34, u"Posfijo", {},
                     {{u"vcolInfijo"}, Optional(u"rPosfijo"), Optional(u"LocalVbles")}),
    Method<&E::EvaluatePosfijo>(35, u"EvaluatePosfijo",
                                {{u"vExpresion"}, {u"Result"}, Optional(u"LocalVbles")}),
    Method<&E::LoadTopePila>(36, u"LoadTopePila", {{u"rPila"}}),
    Method<&E::CalcularDependencias>(37, u"CalcularDependencias", {{u"Name"}}),
    Method<&E::ReplaceExpresion>(38, u"ReplaceExpresion",
                                 {{u"vExpresion"}, Optional(u"LocalVbles")}),
    Method<&E::VarExpresion>(39, u"VarExpresion", {{u"vExpresion"}}),
    Method<&E::ConstExpresion>(40, u"ConstExpresion", {{u"vExpresion"}}),
    Method<&E::ReplaceWildCards>(41, u"ReplaceWildCards", {{u"vCadena"}}),
    Method<&E::Strip>(42, u"Strip", {{u"vCadena"}, {u"vQuitar"}}),
    Method<&E::CSVNextChar>(43, u"CSVNextChar",
                            {{u"rCadena"}, {u"vDelimitador"}, Optional(u"oComillas", u"")}),
    Method<&E::ReplaceString>(44, u"ReplaceString", {{u"vCadena"}, {u"vMacro"}, {u"vReemplazo"}}),
    Method<&E::CharCount>(45, u"CharCount", {{u"vCadena"}, {u"vCaracter"}}),
    Method<&E::Replicate>(46, u"Replicate", {{u"vCadena"}, {u"vVeces"}}),
    Method<&E::StripNit>(47, u"StripNit", {{u"vNit"}}),
    Method<&E::RemoveChars>(48, u"RemoveChars", {{u"vCadena"}}),
    Method<&E::DigitoV>(49, u"DigitoV", {{u"vNit"}}),
    Method<&E::AjusteMedio>(50, u"AjusteMedio", {{u"vValor"}, {u"vFactor"}, {u"vDecimales"}}),
    Method<&E::Redondear>(51, u"Redondear", {{u"vValor"}, {u"vDecimales"}}),
    Method<&E::nvl>(52, u"nvl", {{u"vValor"}, {u"vDefault"}}),
    Method<&E::ExtraerPalabra>(53, u"ExtraerPalabra", {{u"vData"}, {u"vPart"}}),
    Method<&E::ExtraerFrase>(54, u"ExtraerFrase", {{u"vData"}, {u"vPart"}}),
    Method<&E::ExtraeRev>(55, u"ExtraeRev", {{u"vData"}}),
    Method<&E::MontoEscrito>(56, u"MontoEscrito", {{u"vValor"}}),
    Method<&E::Dias360>(57, u"Dias360", {{u"vInicial"}, {u"vFin"}}),
    Method<&E::Preparar>(59, u"Preparar", {{u"vExpresion"}, Optional(u"LocalVbles")},
                         u"Prepara una fórmula para evaluarla muchas veces"),
    Get<&E::PlanesGuardados>(60, u"PlanesGuardados", u"Cuántas fórmulas guardan su plan"),
    Let<&E::LetPlanesGuardados>(60, u"PlanesGuardados"),
    Get<&E::Errores>(58, u"Errores", u"Las faltas de la última revisión, con su lugar"),
};

constexpr EventInfo kEvents[] = {
    DescribeEvent<&E::Evaluate>(1, u"Evaluate", {u"Macro", u"Result", u"rPila"}),
    DescribeEvent<&E::Response>(2, u"Response", {u"Button", u"Title", u"Prompt", u"Buttons"}),
};

constexpr ClassInfo kClass{Evaluador::kClassName, kMembers, kEvents};

}  // namespace

const ClassInfo& Evaluador::Class() const { return kClass; }

}  // namespace tovalin
