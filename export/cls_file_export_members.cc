#include "tovalin/cls_file_export.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

using Export = clsFileExport;

constexpr EnumValueInfo kFormats[] = {
    {u"TEXTO_DELIMITADO", Export::TEXTO_DELIMITADO, u"Texto delimitado por \";\""},
    {u"LONGITUDFIJA", Export::LONGITUDFIJA, u"Longitud fija; lo mismo cualquier otro número"},
};
constexpr EnumInfo kFormatInfo{u"FormatoArchivo", u"Los formatos de un archivo plano", kFormats};
constexpr const EnumInfo* kEnumerations[] = {&kFormatInfo};

constexpr TextView kTypeName =
    u"El nombre del tipo (\"Numeric\", \"Integer\"...), o su posición desde 1";
constexpr ErrorInfo kNoSuchType{5, u"no hay un tipo con ese nombre"};
constexpr ErrorInfo kNoSuchPosition{9, u"no hay un tipo en esa posición"};

constexpr MemberRow kMembers[] = {
    Method<&Export::GenerarArchivoPlanoDesdeBD>(
        1, u"GenerarArchivoPlanoDesdeBD",
        {Unchanged({u"rvarDatos", u"El arreglo de los datos, con índices (columna, fila) desde 0"}),
         {u"vcolCampos", u"Los campos: de cada uno Name, DataType, Size y Position, su columna"},
         {u"vlngRows", u"El número de la última fila; -1 si no hay ninguna"},
         {u"vstrArchivoSalida",
          u"La ruta sin extensión: los datos van a \".txt\" y su descripción "
          u"a \".ref\""},
         Optional({u"ostrDelimitador", u"No se usa: el delimitador es siempre \";\""}, u";")},
        u"Genera un archivo plano desde un arreglo")
        .Reference(
            u"Genera un archivo plano desde un arreglo, y al lado la descripción de sus "
            u"campos; reemplaza los archivos que hubiera. En texto delimitado solo los campos "
            u"de texto llevan su propio valor: los demás repiten el texto anterior. No "
            u"provoca errores: una falla (un valor más ancho que su campo, un disco lleno) "
            u"termina con Falso y deja los registros ya escritos.")
        .Result(u"Verdadero cuando los dos archivos se escribieron"),
    Get<&Export::Precision>(2, u"Precision",
                            u"Presicion utilizada para los tipos de datos numericos",
                            {{u"vPrecision", kTypeName}})
        .Reference(u"El ancho en que se escriben los números de un tipo. No se puede cambiar: "
                   u"asignarlo provoca el error 424.")
        .Errors({kNoSuchType, kNoSuchPosition}),
    Let<&Export::LetPrecision>(2, u"Precision", {{u"vPrecision"}, {u"NewValue"}})
        .Errors({{424, u"siempre: los anchos no se cambian"}, kNoSuchType, kNoSuchPosition}),
    Get<&Export::OrdenFechas>(3, u"OrdenFechas",
                              u"Indica el orden del formato de fecha (AMD,DMA, MDA)")
        .Reference(u"El orden de día, mes y año en las fechas: \"DMY\", \"DYM\", \"MDY\", \"MYD\", "
                   u"\"YDM\" o \"YMD\". Cualquier otro texto queda como \"AMD\", que es año, mes, "
                   u"día. Al asignarlo se toman también AnoCompleto y SeparadorFecha; antes de la "
                   u"primera vez las fechas van en su forma general."),
    Let<&Export::LetOrdenFechas>(3, u"OrdenFechas"),
    Get<&Export::AnoCompleto>(
        4, u"AnoCompleto",
        u"Indica si el formato de año para la importación o exportación es de "
        u"4 digitos o no")
        .Reference(u"Indica si los años se escriben con cuatro cifras; Falso al principio. Vale "
                   u"desde la siguiente asignación de OrdenFechas."),
    Let<&Export::LetAnoCompleto>(4, u"AnoCompleto"),
    Get<&Export::SeparadorFecha>(5, u"SeparadorFecha", u"Establece el caracter para separa fechas")
        .Reference(u"El carácter que separa día, mes y año, \"/\" al principio. Se guarda el "
                   u"primero del texto, o un blanco si es vacío, y vale desde la siguiente "
                   u"asignación de OrdenFechas."),
    Let<&Export::LetSeparadorFecha>(5, u"SeparadorFecha"),
    Get<&Export::SeparadorCadena>(6, u"SeparadorCadena",
                                  u"Establece el caracter para separar cadenas de texto")
        .Reference(
            u"El carácter que encierra los textos en un archivo delimitado, la comilla doble "
            u"al principio. Se guarda el primero del texto, o un blanco si es vacío; dentro "
            u"de un texto no se duplica."),
    Let<&Export::LetSeparadorCadena>(6, u"SeparadorCadena"),
    Get<&Export::Fomato>(
        7, u"Fomato",
        u"Indica si el formato del archivo es Texto delimitado (TEXTO_DELIMITADO) o "
        u"longitud fija (LONGITUDFIJA)")
        .Result(kFormatInfo),
    Let<&Export::LetFomato>(7, u"Fomato"),
};

}  // namespace

constinit const ClassInfo clsFileExport::kInfo = DescribeClass<clsFileExport, kMembers>(
    u"Exporta un arreglo de datos a un archivo plano, delimitado o de longitud fija",
    kEnumerations);

const ClassInfo& clsFileExport::Class() const { return kInfo; }

}  // namespace tovalin
