#include "evaluator/vocabulary.h"

#include <cstdlib>

#include "evaluator/text_helpers.h"

namespace tovalin {
namespace {

struct OperatorRow {
  TextView literal;
  std::int16_t priority;
};

// AND and OR deliberately stand at the level of "+", above the comparisons:
// formulas in use are bracketed for that, and would change their values.
constexpr OperatorRow kOperators[] = {
    {u"+", 3}, {u"-", 3},  {u"/", 4},   {u"*", 4},  {u"*-", 4},      {u"-1*", 4}, {u"*-1", 4},
    {u"^", 5}, {u"&", 3},  {u">", 2},   {u">=", 2}, {u"<", 2},       {u"<=", 2},  {u"<>", 2},
    {u"=", 2}, {u"IN", 3}, {u"AND", 3}, {u"OR", 3}, {u"BETWEEN", 3},
};

struct FunctionRow {
  TextView name;
  TextView source_name;
  TextView description;
  TextView syntax;
};

// The spelling of these texts, their blanks at the end and "DesAJUSTAR" are
// deliberate: formula editors of hosts look for them as they stand.
constexpr FunctionRow kFunctions[] = {
    {u"MEDIO(", u"MEDIO", u"Devuelve un determinado numero de caracteres de una cadena",
     u"MEDIO( Expr , Inicio , Caraceres) "},
    {u"DERECHA(", u"DERECHA", u"Devuelve los ultimos n caracteres a la derecha de la cadena",
     u"DERECHA( Expr , Caraceres ) "},
    {u"IZQUIERDA(", u"IZQUIERDA", u"Devuelve los primeros n caracteres a la izquierda de la cadena",
     u"IZQUIERDA( Expr , Caraceres) "},
    {u"AJUSTAR(", u"AJUSTAR",
     u"Ajusta una cadena con un caracter para hasta el numero de caracteres",
     u"AJUSTAR( Expr , Caraceres , Justificado ) "},
    {u"DESAJUSTAR(", u"DesAJUSTAR", u"Elimina los caracteres de ajusta de una cadena",
     u"DESAJUSTAR( Expr , Caracer, Justificado ) "},
    {u"ReemplazarCadena(", u"ReemplazarCadena",
     u"Reemplaza un carater dentro de una cadena por otro",
     u"ReemplazarCadena( Expr ,Macro , Cadena ) "},
    {u"AjustarDigitosGrupo(", u"AjustarDigitosGrupo", u"Ajusta con ceros a la izquierda ",
     u"AjustarDigitosGrupo( Cadena ) "},
    {u"ABS(", u"ABS", u"Devuelve el valor absoluto de un numero", u"ABS( Expr ) "},
    {u"TRIM(", u"TRIM", u"Devuelve una cadena sin espacios", u"TRIM( Expr ) "},
    {u"LEN(", u"LEN", u"Devuelve el numero de caracteres de una cadena", u"LEN( Expr ) "},
    {u"VAL(", u"VAL",
     u"Devuelve los números contenidos en una cadena como un valor numérico del tipo adecuado",
     u"VAL( Expr ) "},
    {u"ESNUMERO(", u"ESNUMERO", u"Devuelve verdadero si el argumento es un numero",
     u"ESNUMERO( Expr ) "},
    {u"IsNumeric(", u"IsNumeric", u"Devuelve verdadero si el argumento es un numero",
     u"IsNumeric( Expr ) "},
    {u"SERIEFECHA(", u"SERIEFECHA", u"Genera ", u"SERIEFECHA( Ano , Mes , Dia ) "},
    {u"DATESERIAL(", u"DATESERIAL", u"Genera ", u"DATESERIAL( Ano , Mes , Dia ) "},
    {u"DATEADD(", u"DATEADD", u"Genera ", u"DATEADD( Intervalo , Numero , Fecha ) "},
    {u"FORMAT(", u"FORMAT", u"Devuelve una expresion formateada", u"FORMAT( Expresion , Formato) "},
    {u"ESFECHA(", u"ESFECHA", u"Devuelve verdadero si el argumento es una Fecha",
     u"ESFECHA( Expr ) "},
    {u"YEAR(", u"YEAR", u"Devuelve el año de una fecha", u"YEAR( Expr ) "},
    {u"MONTH(", u"MONTH", u"Devuelve el mes de una fecha", u"MONTH( Expr ) "},
    {u"DAY(", u"DAY", u"Devuelve el dia de una fecha", u"DAY( Expr ) "},
    {u"DATE(", u"DATE", u"Devuelve la Fecha actual", u"DATE( ) "},
    {u"NOW(", u"NOW", u"Devuelve la Fecha actual, con hora", u"NOW( ) "},
    {u"MAX(", u"MAX", u"Devuelve el máximo entre los dos números", u"MAX( Expr1 , Expr2 ) "},
    {u"MIN(", u"MIN", u"Devuelve el mínimo entre los dos números", u"MIN( Expr1 , Expr2 ) "},
    {u"IIF(", u"IIF", u"", u"IIF( Condicion , ExprSi , ExprNo ) "},
    {u"MID(", u"MID", u"Devuelve un determinado numero de caracteres de una cadena",
     u"MID( Expr , Inicio , Caraceres) "},
    {u"RIGHT(", u"RIGHT", u"Devuelve los ultimos n caracteres a la derecha de la cadena",
     u"RIGHT( Expr , Caraceres ) "},
    {u"LEFT(", u"LEFT", u"Devuelve los primeros n caracteres a la izquierda de la cadena",
     u"LEFT( Expr , Caraceres) "},
    {u"ISNULL(", u"ISNULL", u"Devuelve un valor booleano si la expresion es nula",
     u"ISNULL( Expr ) "},
    {u"NVL(", u"NVL", u"Devuelve Value si la expresion es nula", u"NVL( Expr , Value) "},
    {u"CHR(", u"CHR", u"Devuelve el caracter asociado al codigo ASCII", u"CHR( Value ) "},
    {u"ASC(", u"ASC", u"Devuelve el codigo ASCII asociado al caracter ", u"ASC( Value ) "},
    {u"PrimerNombre(", u"PrimerNombre", u"Devuelve el primer texto de una cadena",
     u"PrimerNombre( Expr ) "},
    {u"SegundoNombre(", u"SegundoNombre", u"Devuelve el segundo texto de una cadena",
     u"SegundoNombre( Expr ) "},
    {u"ExtraerPalabra(", u"ExtraerPalabra", u"Devuelve palabra n de una cadena",
     u"ExtraerPalabra( Expr, Part ) "},
    {u"ExtraeRev(", u"ExtraeRev", u"Devuelve la ultima palabra de una cadena",
     u"ExtraeRev( Expr ) "},
    {u"ExtraerFrase(", u"ExtraerFrase", u"Devuelve la frase n de una cadena",
     u"ExtraerFrase( Expr, Part ) "},
    {u"AjusteMedio(", u"AjusteMedio", u"Ajuste medio",
     u"AjusteMedio( Valor , Factor , Decimales ) "},
    {u"Redondear(", u"Redondear", u"Redondear", u"Redondear( Valor , Decimales ) "},
    {u"NombreMes(", u"NombreMes", u"Nombre del mes", u"NombreMes( Mes ) "},
    {u"MesAbr(", u"MesAbr", u"Mes abreviado", u"MesAbr( Mes ) "},
    {u"StripNit(", u"StripNit", u"Suprimir caracteres especiales en Nit y digito de verificación",
     u"StripNit( Nit ) "},
    {u"RemoveChars(", u"RemoveChars", u"Suprimir caracteres especiales ",
     u"RemoveChars( Cadena ) "},
    {u"DigitoV(", u"DigitoV", u"Devuelve el digito de verificación de un Nit", u"DigitoV( Nit ) "},
    {u"MontoEscrito(", u"MontoEscrito", u"Devuelve el monto escrito de un numero",
     u"MontoEscrito( Valor )"},
    {u"Dias360(", u"Dias360", u"El numero de dias entre dos fechas", u"Dias360( Inicial, Fin )"},
    {u"DoAutoBracket(", u"DoAutoBracket", u"Adiciona los corchetes a una columna",
     u"DoAutoBracket( ColumnName )"},
};

constexpr TextView kSeparators = u"(),";

// ComodinLike is deliberately no constant of the system: hosts change or remove it.
constexpr TextView kSystemConstants =
    u"VERDADERO,FALSO,CIZQUIERDA,CDERECHA,WindowsDirectory,SystemDirectory,TempDirectory,"
    u"ReportDirectory,ProgramFiles";

Text ProgramFilesDirectory() {
#if defined(_WIN32)
  if (const char* directory = std::getenv("ProgramFiles")) return FromUtf8(directory);
#endif
  return {};
}

Ref<Collection> MakeCharacterSet(TextView characters) {
  auto set = Make<Collection>();
  for (std::size_t i = 0; i < characters.size(); ++i) {
    const Variant character(characters.substr(i, 1));
    set->Add(character, character);
  }
  return set;
}

}  // namespace

Ref<Campo> MakeFunction(const Text& name, const Text& source_name, const Text& description,
                        const Text& syntax) {
  auto record = Make<Campo>(name);
  record->LetDescription(description);
  record->LetSourceName(source_name);
  record->LetSintax(syntax);
  return record;
}

Ref<Campo> MakeSymbol(const Text& name, const Variant& value, const Text& description,
                      std::int32_t data_type, const Text& formula) {
  auto record = Make<Campo>(name);
  record->LetValue(value);
  record->LetDescription(description);
  record->LetDataType(data_type);
  record->LetFormula(formula);
  return record;
}

Ref<Campos> MakeOperators() {
  constexpr std::int32_t kOperatorSize = 255;
  auto table = Make<Campos>();
  for (const OperatorRow& row : kOperators) {
    Ref<Campo> record = MakeSymbol(Text(row.literal), row.priority, {}, kLongText);
    record->LetSize(kOperatorSize);
    table->Add(record);
  }
  return table;
}

Ref<Campos> MakeFunctions() {
  auto table = Make<Campos>();
  for (const FunctionRow& row : kFunctions)
    table->Add(MakeFunction(Text(row.name), Text(row.source_name), Text(row.description),
                            Text(row.syntax)));
  return table;
}

Ref<Campos> MakeConstants() {
  struct Row {
    TextView name;
    Variant value;
    TextView description;
    std::int32_t data_type;
  };
  const Row rows[] = {
      {u"VERDADERO", true, u"Verdadero", kLogical},
      {u"FALSO", false, u"Falso", kLogical},
      {u"CIZQUIERDA", std::int32_t{0}, u"Justificar a la izquierda", kWholeNumber},
      {u"CDERECHA", std::int32_t{1}, u"Justificar a la derecha", kWholeNumber},
      {u"WindowsDirectory", u"", u"Directorio de Windows", kLongText},
      {u"SystemDirectory", u"", u"Directorio Sytem de Windows", kLongText},
      {u"TempDirectory", u"", u"Directorio temporal de Windows", kLongText},
      {u"ReportDirectory", u"", u"Directorio para reportes", kLongText},
      {u"ProgramFiles", ProgramFilesDirectory(), u"Directorio Archivos de Programa", kLongText},
      {u"ComodinLike", u"%", u"Comodin Like", kLongText},
  };
  auto table = Make<Campos>();
  for (const Row& row : rows)
    table->Add(MakeSymbol(Text(row.name), row.value, Text(row.description), row.data_type));
  table->LetSystemList(Text(kSystemConstants));
  return table;
}

Ref<Collection> MakeSeparators() { return MakeCharacterSet(kSeparators); }

Ref<Collection> MakeSpecialCharacters() { return MakeCharacterSet(evaluator::kReservedCharacters); }

}  // namespace tovalin
