#include "tovalin/cls_file_export.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

constexpr TextView kExportDoc = u"Genera un archivo plano desde un arreglo";
constexpr TextView kPrecisionDoc = u"Presicion utilizada para los tipos de datos numericos";
constexpr TextView kOrderDoc = u"Indica el orden del formato de fecha (AMD,DMA, MDA)";
constexpr TextView kYearDoc =
    u"Indica si el formato de año para la importación o exportación es de 4 digitos o no";
constexpr TextView kDateSeparatorDoc = u"Establece el caracter para separa fechas";
constexpr TextView kTextQualifierDoc = u"Establece el caracter para separar cadenas de texto";
constexpr TextView kFormatDoc =
    u"Indica si el formato del archivo es Texto delimitado (TEXTO_DELIMITADO) o longitud fija "
    u"(LONGITUDFIJA)";

using Export = clsFileExport;

constexpr MemberRow kMembers[] = {
    Method<&Export::GenerarArchivoPlanoDesdeBD>(1, u"GenerarArchivoPlanoDesdeBD",
                                                {{u"rvarDatos"},
                                                 {u"vcolCampos"},
                                                 {u"vlngRows"},
                                                 {u"vstrArchivoSalida"},
                                                 Optional({u"ostrDelimitador"}, u";")},
                                                kExportDoc),
    Get<&Export::Precision>(2, u"Precision", kPrecisionDoc, {{u"vPrecision"}}),
    Let<&Export::LetPrecision>(2, u"Precision", {{u"vPrecision"}, {u"NewValue"}}),
    Get<&Export::OrdenFechas>(3, u"OrdenFechas", kOrderDoc),
    Let<&Export::LetOrdenFechas>(3, u"OrdenFechas"),
    Get<&Export::AnoCompleto>(4, u"AnoCompleto", kYearDoc),
    Let<&Export::LetAnoCompleto>(4, u"AnoCompleto"),
    Get<&Export::SeparadorFecha>(5, u"SeparadorFecha", kDateSeparatorDoc),
    Let<&Export::LetSeparadorFecha>(5, u"SeparadorFecha"),
    Get<&Export::SeparadorCadena>(6, u"SeparadorCadena", kTextQualifierDoc),
    Let<&Export::LetSeparadorCadena>(6, u"SeparadorCadena"),
    Get<&Export::Fomato>(7, u"Fomato", kFormatDoc),
    Let<&Export::LetFomato>(7, u"Fomato"),
};

}  // namespace

constinit const ClassInfo clsFileExport::kInfo = DescribeClass<clsFileExport, kMembers>(u"");

const ClassInfo& clsFileExport::Class() const { return kInfo; }

}  // namespace tovalin
