#include "review/names.h"

#include <algorithm>

namespace tovalin::review {
namespace {

constexpr std::size_t kMany = 255;
constexpr TextView kComma = u",";

// English and Spanish names. ROUND has a formula of its own: it depends on the decimals.
constexpr OtherName kNames[] = {
    {u"IF", 3, 3, u"IIF(", kComma, u")", u"IIF( Condicion , ExprSi , ExprNo )"},
    {u"SI", 3, 3, u"IIF(", kComma, u")", u"IIF( Condicion , ExprSi , ExprNo )"},
    {u"SUM", 1, kMany, u"(", u" + ", u")", u"( A + B )"},
    {u"SUMA", 1, kMany, u"(", u" + ", u")", u"( A + B )"},
    {u"SUMAR", 1, kMany, u"(", u" + ", u")", u"( A + B )"},
    {u"PRODUCT", 1, kMany, u"(", u" * ", u")", u"( A * B )"},
    {u"PRODUCTO", 1, kMany, u"(", u" * ", u")", u"( A * B )"},
    {u"AVERAGE", 1, kMany, u"((", u" + ", u") / {n})", u"( ( A + B ) / 2 )"},
    {u"PROMEDIO", 1, kMany, u"((", u" + ", u") / {n})", u"( ( A + B ) / 2 )"},
    {u"CONCATENATE", 1, kMany, u"(", u" & ", u")", u"( A & B )"},
    {u"CONCATENAR", 1, kMany, u"(", u" & ", u")", u"( A & B )"},
    {u"CONCAT", 1, kMany, u"(", u" & ", u")", u"( A & B )"},
    {u"AND", 2, kMany, u"(", u" AND ", u")", u"( (A > 1) AND (B > 1) )"},
    {u"Y", 2, kMany, u"(", u" AND ", u")", u"( (A > 1) AND (B > 1) )"},
    {u"OR", 2, kMany, u"(", u" OR ", u")", u"( (A > 1) OR (B > 1) )"},
    {u"O", 2, kMany, u"(", u" OR ", u")", u"( (A > 1) OR (B > 1) )"},
    {u"NOT", 1, 1, u"((", kComma, u") = 0)", u"( ( A ) = 0 )"},
    {u"NO", 1, 1, u"((", kComma, u") = 0)", u"( ( A ) = 0 )"},
    {u"POWER", 2, 2, u"((", u")^(", u"))", u"( A ^ B )"},
    {u"POTENCIA", 2, 2, u"((", u")^(", u"))", u"( A ^ B )"},
    {u"SQRT", 1, 1, u"((", kComma, u")^0.5)", u"( A ^ 0.5 )"},
    {u"RAIZ", 1, 1, u"((", kComma, u")^0.5)", u"( A ^ 0.5 )"},
    {u"RAÍZ", 1, 1, u"((", kComma, u")^0.5)", u"( A ^ 0.5 )"},
    {u"PI", 0, 0, u"(3.14159265358979", kComma, u")", u"3.14159265358979"},
    {u"MROUND", 2, 2, u"AjusteMedio(", kComma, u" , 0 )", u"AjusteMedio( A , Factor , 0 )"},
    {u"REDOND.MULT", 2, 2, u"AjusteMedio(", kComma, u" , 0 )", u"AjusteMedio( A , Factor , 0 )"},
    {u"MAXIMO", 2, 2, u"MAX(", kComma, u")", u"MAX( A , B )"},
    {u"MINIMO", 2, 2, u"MIN(", kComma, u")", u"MIN( A , B )"},
    {u"LARGO", 1, 1, u"LEN(", kComma, u")", u"LEN( Expr )"},
    {u"LENGTH", 1, 1, u"LEN(", kComma, u")", u"LEN( Expr )"},
    {u"EXTRAE", 3, 3, u"MEDIO(", kComma, u")", u"MEDIO( Expr , Inicio , Caracteres )"},
    {u"SUBSTRING", 3, 3, u"MEDIO(", kComma, u")", u"MEDIO( Expr , Inicio , Caracteres )"},
    {u"SUBSTR", 3, 3, u"MEDIO(", kComma, u")", u"MEDIO( Expr , Inicio , Caracteres )"},
    {u"SUBSTITUTE", 3, 3, u"ReemplazarCadena(", kComma, u")",
     u"ReemplazarCadena( Expr , Macro , Cadena )"},
    {u"SUSTITUIR", 3, 3, u"ReemplazarCadena(", kComma, u")",
     u"ReemplazarCadena( Expr , Macro , Cadena )"},
    {u"REPLACE", 3, 3, u"ReemplazarCadena(", kComma, u")",
     u"ReemplazarCadena( Expr , Macro , Cadena )"},
    {u"ESPACIOS", 1, 1, u"TRIM(", kComma, u")", u"TRIM( Expr )"},
    {u"LTRIM", 1, 1, u"TRIM(", kComma, u")", u"TRIM( Expr )"},
    {u"RTRIM", 1, 1, u"TRIM(", kComma, u")", u"TRIM( Expr )"},
    {u"UPPER", 1, 1, u"FORMAT(", kComma, u" , '>' )", u"FORMAT( Expr , '>' )"},
    {u"UCASE", 1, 1, u"FORMAT(", kComma, u" , '>' )", u"FORMAT( Expr , '>' )"},
    {u"MAYUSC", 1, 1, u"FORMAT(", kComma, u" , '>' )", u"FORMAT( Expr , '>' )"},
    {u"LOWER", 1, 1, u"FORMAT(", kComma, u" , '<' )", u"FORMAT( Expr , '<' )"},
    {u"LCASE", 1, 1, u"FORMAT(", kComma, u" , '<' )", u"FORMAT( Expr , '<' )"},
    {u"MINUSC", 1, 1, u"FORMAT(", kComma, u" , '<' )", u"FORMAT( Expr , '<' )"},
    {u"TEXT", 2, 2, u"FORMAT(", kComma, u")", u"FORMAT( Expresion , Formato )"},
    {u"TEXTO", 2, 2, u"FORMAT(", kComma, u")", u"FORMAT( Expresion , Formato )"},
    {u"STR", 1, 1, u"(", kComma, u" & \"\")", u"( A & \"\" )"},
    {u"CSTR", 1, 1, u"(", kComma, u" & \"\")", u"( A & \"\" )"},
    {u"VALUE", 1, 1, u"VAL(", kComma, u")", u"VAL( Expr )"},
    {u"VALOR", 1, 1, u"VAL(", kComma, u")", u"VAL( Expr )"},
    {u"CDBL", 1, 1, u"VAL(", kComma, u")", u"VAL( Expr )"},
    {u"CHAR", 1, 1, u"CHR(", kComma, u")", u"CHR( Value )"},
    {u"CARACTER", 1, 1, u"CHR(", kComma, u")", u"CHR( Value )"},
    {u"CODE", 1, 1, u"ASC(", kComma, u")", u"ASC( Value )"},
    {u"CODIGO", 1, 1, u"ASC(", kComma, u")", u"ASC( Value )"},
    {u"CÓDIGO", 1, 1, u"ASC(", kComma, u")", u"ASC( Value )"},
    {u"ISNUMBER", 1, 1, u"ESNUMERO(", kComma, u")", u"ESNUMERO( Expr )"},
    {u"ISDATE", 1, 1, u"ESFECHA(", kComma, u")", u"ESFECHA( Expr )"},
    {u"ISBLANK", 1, 1, u"((", kComma, u") & \"\" = \"\")", u"( A & \"\" = \"\" )"},
    {u"ESBLANCO", 1, 1, u"((", kComma, u") & \"\" = \"\")", u"( A & \"\" = \"\" )"},
    {u"COALESCE", 2, 2, u"NVL(", kComma, u")", u"NVL( Expr , Value )"},
    {u"IFNULL", 2, 2, u"NVL(", kComma, u")", u"NVL( Expr , Value )"},
    {u"NZ", 2, 2, u"NVL(", kComma, u")", u"NVL( Expr , Value )"},
    {u"TODAY", 0, 0, u"DATE(", kComma, u")", u"DATE( )"},
    {u"HOY", 0, 0, u"DATE(", kComma, u")", u"DATE( )"},
    {u"AHORA", 0, 0, u"NOW(", kComma, u")", u"NOW( )"},
    {u"FECHA", 3, 3, u"SERIEFECHA(", kComma, u")", u"SERIEFECHA( Ano , Mes , Dia )"},
    {u"AÑO", 1, 1, u"YEAR(", kComma, u")", u"YEAR( Expr )"},
    {u"ANO", 1, 1, u"YEAR(", kComma, u")", u"YEAR( Expr )"},
    {u"MES", 1, 1, u"MONTH(", kComma, u")", u"MONTH( Expr )"},
    {u"DIA", 1, 1, u"DAY(", kComma, u")", u"DAY( Expr )"},
    {u"DÍA", 1, 1, u"DAY(", kComma, u")", u"DAY( Expr )"},
    {u"DAYS360", 2, 2, u"Dias360(", kComma, u")", u"Dias360( Inicial , Fin )"},
    {u"MONTHNAME", 1, 1, u"NombreMes(", kComma, u")", u"NombreMes( Mes )"},
    {u"ROUND", 1, 2, u"", kComma, u"", u"VAL( FORMAT( x , '0.00' ) )"},
    {u"REDONDEO", 1, 2, u"", kComma, u"", u"VAL( FORMAT( x , '0.00' ) )"},
};

}  // namespace

std::span<const OtherName> OtherNames() { return kNames; }

const OtherName* FindOtherName(TextView name) {
  const auto* row = std::ranges::find_if(
      kNames, [name](const OtherName& each) { return EqualFolded(each.name, name); });
  return row == std::end(kNames) ? nullptr : row;
}

}  // namespace tovalin::review
