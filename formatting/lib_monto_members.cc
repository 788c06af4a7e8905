#include "tovalin/dispatch.h"
#include "tovalin/lib_monto.h"

namespace tovalin {
namespace {

constexpr EnumValueInfo kGenders[] = {
    {u"monMasculino", monMasculino, u"La moneda es masculina: \"veintiún pesos\""},
    {u"monFemenino", monFemenino, u"La moneda es femenina: \"veintiuna libras\""},
};
constexpr EnumInfo kGenderInfo{u"monGenero", u"El género del nombre de una moneda", kGenders};

constexpr EnumValueInfo kStyles[] = {
    {u"monLetras", monLetras, u"\"... pesos con cincuenta centavos\"; sin centavos, nada de ellos"},
    {u"monFraccion", monFraccion, u"\"... pesos con 50/100\""},
    {u"monFraccionMCte", monFraccionMCte, u"\"... pesos con 50/100 M/CTE\""},
    {u"monFraccionMN", monFraccionMN, u"\"... pesos 50/100 M.N.\""},
    {u"monFraccionMoneda", monFraccionMoneda, u"\"... y 50/100 pesos\""},
    {u"monMonedaFraccion", monMonedaFraccion, u"\"pesos ... con 50/100\""},
};
constexpr EnumInfo kStyleInfo{u"monEstilo", u"Las formas de los centavos en un monto en letras",
                              kStyles};

constexpr const EnumInfo* kEnumerations[] = {&kGenderInfo, &kStyleInfo};

constexpr MemberRow kMembers[] = {
    Method<&LibMonto::MontoEscrito>(1, u"MontoEscrito",
                                    {{u"pdblValor",
                                      u"El monto; se redondea a cinco decimales y se "
                                      u"usa su parte entera"}},
                                    u"Devuelve el monto escrito para un valor")
        .Reference(
            u"Devuelve la parte entera de un monto en letras minúsculas, en escala larga (un "
            u"billón es 10^12): 2500000 da \"dos millones quinientos mil \". 0 da \"Cero\", "
            u"los negativos empiezan con \"menos \", y la mayoría de los textos terminan en "
            u"un blanco. Sirve por debajo de 10^18. No provoca errores."),
    Method<&LibMonto::MontoCheque>(
        2, u"MontoCheque",
        {{u"Valor", u"El monto: un número o un texto que se lee como número, exacto en centavos"},
         {u"Moneda",
          u"El nombre de la moneda en singular, \"peso\"; o "
          u"\"singular|plural|centavo|centavos\"; o vacío"},
         {u"Genero", u"El género de la moneda", &kGenderInfo},
         {u"Estilo", u"Cómo se escriben los centavos", &kStyleInfo},
         Optional({u"oAncho", u"Los caracteres de cada línea, hasta 32767; 0, una sola sin partir"},
                  std::int32_t{0}),
         Optional({u"oRelleno", u"Con qué se llena cada línea hasta su ancho; vacío, con nada"},
                  u"*"),
         Optional({u"oMayusculas", u"Verdadero para escribirlo en mayúsculas"}, false)},
        u"Devuelve en letras un valor exacto en centavos, con su moneda, para un cheque")
        .Reference(
            u"Devuelve en letras un valor exacto en centavos, con su moneda, para un cheque. "
            u"Nada se redondea. 1234.5, \"peso\", monMasculino y monFraccionMCte dan \"mil "
            u"doscientos treinta y cuatro pesos con 50/100 M/CTE\".")
        .Errors({{5, u"el monto tiene fracciones de centavo, u otro argumento no sirve"},
                 {6, u"el monto no cabe en Currency"},
                 {13, u"el valor no es un monto"}}),
    Method<&LibMonto::LeerMonto>(
        3, u"LeerMonto", {{u"Texto", u"El monto en letras, sin distinguir mayúsculas ni acentos"}},
        u"Devuelve el valor exacto de un monto en letras")
        .Reference(
            u"Devuelve el valor exacto de un monto en letras: lo que escriben MontoCheque, en "
            u"cualquier estilo, y MontoEscrito. \"veintiún pesos con 05/100\" da 21.05.")
        .Errors({{5, u"el texto no es un monto; la descripción dice la palabra y su lugar"},
                 {6, u"el monto no cabe en Currency"}}),
};

}  // namespace

constinit const ClassInfo LibMonto::kInfo = DescribeClass<LibMonto, kMembers>(
    u"Montos en letras, para cheques y documentos de pago", kEnumerations);

const ClassInfo& LibMonto::Class() const { return kInfo; }

}  // namespace tovalin
