#include "tovalin/dispatch.h"
#include "tovalin/lib_fecha.h"

namespace tovalin {
namespace {

constexpr TextView kDate = u"La fecha";
constexpr ErrorInfo kNoDate{13, u"un valor no es una fecha"};
constexpr ErrorInfo kYears{5, u"la fecha no está entre los años 100 y 9999"};

constexpr MemberRow kMembers[] = {
    Method<&LibFecha::MonthBegin>(1, u"MonthBegin", {Unchanged({u"vbdate", kDate})},
                                  u"Devuelve el primer dìa del mes para la fecha indicada")
        .Reference(u"Devuelve el primer día del mes de la fecha, sin hora. Lo que no es una fecha "
                   u"vuelve sin cambio."),
    Method<&LibFecha::DateDiffStr>(
        2, u"DateDiffStr",
        {{u"vvarFechaIni", u"Una fecha"}, {u"vvarFechaFin", u"La otra, anterior o posterior"}},
        u"Devuelve la diferencia en dias entre dos fecha en formato escrito")
        .Reference(u"Devuelve la diferencia entre dos fechas en años, meses y días de calendario: "
                   u"del 15/01/2022 al 18/03/2023, \"1 Año 2 Meses y 3 Días\". La hora no cuenta.")
        .Errors({kNoDate, kYears}),
    Method<&LibFecha::MonthEnd>(3, u"MonthEnd", {{u"vbdate", kDate}},
                                u"Devuelve el ùltimo dìa del mes para la fecha indicada")
        .Reference(u"Devuelve el último día del mes de la fecha, sin hora. Lo que no es una fecha "
                   u"vuelve sin cambio."),
    Method<&LibFecha::cdbDate>(
        4, u"cdbDate",
        {{u"vFecha", u"La fecha; un número se toma como días desde el 30/12/1899"},
         {u"vstrFormat", u"El patrón de fecha, por ejemplo \"dd/mm/yyyy\""}},
        u"Convierte una fecha al formato de fecha de la base de datos")
        .Reference(u"Devuelve la fecha con un patrón y entre comillas sencillas, para el texto de "
                   u"una consulta: '05/02/2024'.")
        .Errors({kNoDate, kYears}),
    Method<&LibFecha::Dias360>(
        5, u"Dias360", {{u"vInicial", u"La primera fecha"}, {u"vFin", u"La segunda fecha"}},
        u"Devuelve la diferencia en dias entre dos fechas en formato de 360 dias ")
        .Reference(u"Devuelve los días entre dos fechas en años de doce meses de 30 días; negativo "
                   u"si la segunda es anterior. El día 31 y el último de febrero cuentan como 30.")
        .Errors({kYears}),
    Method<&LibFecha::DiasSemana>(6, u"DiasSemana", {},
                                  u"Devuelve una coleccion con los dias de la semana, segun el "
                                  u"lenguaje del sistema operacional")
        .Reference(u"Devuelve siempre la misma Collection, con siete textos bajo las claves \"K1\" "
                   u"a \"K7\". Los siete son el nombre corto del lunes."),
    Method<&LibFecha::MesesDelAno>(7, u"MesesDelAno", {},
                                   u"Devuelve una coleccion con el nombre de los meses del año "
                                   u"segun el lenguaje del sistema operativo")
        .Reference(u"Devuelve siempre la misma Collection, con los nombres de los doce meses bajo "
                   u"las claves \"K1\" a \"K12\"."),
    Method<&LibFecha::Date2Julian>(8, u"Date2Julian", {{u"vDate", kDate}})
        .Reference(u"Devuelve el año y el día del año en tres cifras, como un solo número: el 5 de "
                   u"febrero de 2024 da 2024036.")
        .Errors({kYears}),
    Method<&LibFecha::IsLeapYear>(9, u"IsLeapYear",
                                  {Unchanged({u"TestYear",
                                              u"El año; 0 a 29 son 2000 a 2029, y 30 a "
                                              u"99, 1930 a 1999"})})
        .Reference(u"Indica si un año es bisiesto.")
        .Errors({{5, u"el año no es ninguno de esos ni está entre 100 y 9999"}}),
    Method<&LibFecha::Duration>(
        10, u"Duration",
        {Unchanged({u"TotalSeconds", u"Los segundos"}),
         Unchanged({u"UpFormat", u"0 para la forma corta, otro número para la larga"})})
        .Reference(u"Devuelve una duración como texto: \"1d 02h:03m:04s\" en la forma corta, \"1 "
                   u"day, 2 hrs 3 mins 4 secs\" en la larga. Los segundos negativos llevan \"-\" "
                   u"delante."),
};

}  // namespace

constinit const ClassInfo LibFecha::kInfo = DescribeClass<LibFecha, kMembers>(
    u"Fechas: límites del mes, textos para consultas, días de 360, nombres y duraciones");

const ClassInfo& LibFecha::Class() const { return kInfo; }

}  // namespace tovalin
