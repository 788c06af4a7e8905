#include "tovalin/archivo_plano.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

using Plano = ArchivoPlano;

constexpr auto kWriteTable =
    static_cast<bool (Plano::*)(const Variant&, const Text&, const Text&)>(&Plano::Escribir);
constexpr auto kReadRows = static_cast<bool (Plano::*)(const Text&)>(&Plano::LeerFilas);

constexpr TextView kLayoutDoc = u"El diseño del archivo, como texto JSON (Table Schema)";
constexpr TextView kParameterDoc =
    u"Valor de un encabezado, un cierre o una fórmula, por su nombre";
constexpr TextView kEvaluatorDoc = u"El Evaluador que calcula las fórmulas de los campos";
constexpr TextView kPartialDoc =
    u"Indica si el archivo se publica sin las filas rechazadas, en lugar de no publicarse";
constexpr TextView kLimitDoc = u"Cuántos errores guarda Errores";

constexpr MemberRow kMembers[] = {
    Get<&Plano::Diseno>(1, u"Diseno", kLayoutDoc),
    Let<&Plano::LetDiseno>(1, u"Diseno"),
    Method<&Plano::LeerDiseno>(2, u"LeerDiseno", {{u"vArchivo"}},
                               u"Toma el diseño de un archivo JSON"),
    Method<&Plano::GuardarDiseno>(3, u"GuardarDiseno", {{u"vArchivo"}},
                                  u"Guarda el diseño en un archivo JSON"),
    Method<&Plano::LeerSchemaIni>(4, u"LeerSchemaIni", {{u"vArchivo"}, Optional({u"oSeccion"}, u"")},
                                  u"Toma el diseño de una sección de un schema.ini, o la primera"),
    Method<&Plano::SchemaIni>(5, u"SchemaIni", {{u"vSeccion"}},
                              u"Devuelve el diseño como una sección de schema.ini"),
    Method<&Plano::LeerDescripcion>(
        6, u"LeerDescripcion", {{u"vArchivo"}},
        u"Toma el diseño de la descripción (.ref) que escribió un clsFileExport"),
    Method<&Plano::DesdeExport>(7, u"DesdeExport", {{u"vExport"}, {u"vCampos"}},
                                u"Toma el diseño de lo que escribe un clsFileExport"),
    Get<&Plano::Columnas>(8, u"Columnas", u"Los nombres de las columnas de las filas, en su orden"),
    Method<&Plano::CamposDe>(9, u"CamposDe", {Optional({u"oRegistro"}, u"")},
                             u"Los nombres de los campos de un registro, o del primer detalle"),
    Method<&Plano::ClasesDeRegistro>(
        26, u"ClasesDeRegistro", {Optional({u"oPapel"}, u"")},
        u"Los nombres de las clases de registros: todas, o las de inicio, detalle o fin"),
    Get<&Plano::Parametro>(10, u"Parametro", kParameterDoc, {{u"Nombre"}}),
    Let<&Plano::LetParametro>(10, u"Parametro", {{u"Nombre"}, {u"NewValue"}}),
    Get<&Plano::EvaluadorDeFormulas>(11, u"EvaluadorDeFormulas", kEvaluatorDoc),
    Set<&Plano::SetEvaluadorDeFormulas>(11, u"EvaluadorDeFormulas"),
    Get<&Plano::PermitirParcial>(12, u"PermitirParcial", kPartialDoc),
    Let<&Plano::LetPermitirParcial>(12, u"PermitirParcial"),
    Method<kWriteTable>(13, u"Escribir", {{u"vDatos"}, {u"vArchivo"}, Optional({u"oColumnas"}, u"")},
                        u"Escribe las filas de un arreglo; Verdadero si ninguna fue rechazada"),
    Method<&Plano::EscribirFilas>(14, u"EscribirFilas",
                                  {{u"vArchivo"}, Optional({u"oColumnas"}, u"")},
                                  u"Escribe las filas que da el evento PedirFila"),
    Method<&Plano::Convertir>(
        15, u"Convertir", {{u"vOrigen"}, {u"vEntrada"}, {u"vArchivo"}},
        u"Escribe las filas de otro archivo, leído con el diseño de otro ArchivoPlano"),
    Method<&Plano::Leer>(16, u"Leer", {{u"vArchivo"}, Optional({u"oRegistro"}, u"")},
                         u"Devuelve los registros de un archivo como arreglo (columna, fila)"),
    Method<kReadRows>(17, u"LeerFilas", {{u"vArchivo"}},
                      u"Lee un archivo y da cada registro con el evento FilaLeida"),
    Method<&Plano::Verificar>(18, u"Verificar", {{u"vArchivo"}},
                              u"Indica si un archivo cumple el diseño, con sus cuentas y totales"),
    Get<&Plano::Errores>(19, u"Errores",
                         u"Los errores: Collections con Fila, Registro, Campo, Valor y Motivo"),
    Get<&Plano::NumeroErrores>(20, u"NumeroErrores",
                               u"Cuántos errores hubo, también los que Errores no guarda"),
    Get<&Plano::LimiteErrores>(21, u"LimiteErrores", kLimitDoc),
    Let<&Plano::LetLimiteErrores>(21, u"LimiteErrores"),
    Get<&Plano::FilasRechazadas>(22, u"FilasRechazadas",
                                 u"Cuántas filas (o registros leídos) fueron rechazadas"),
    Get<&Plano::Registros>(23, u"Registros",
                           u"Cuántos registros de una clase, o de todas, se escribieron o leyeron",
                           {Optional({u"oRegistro"}, u"")}),
    Get<&Plano::Publicado>(24, u"Publicado", u"Indica si la última escritura publicó su archivo"),
    Method<&Plano::TipoDeColumna>(25, u"TipoDeColumna", {{u"Nombre"}},
                                  u"El código del tipo de datos de una columna"),
};

constexpr EventRow kEvents[] = {
    DescribeEvent<&Plano::PedirFila>(1, u"PedirFila", {{u"Numero"}, {u"Valores"}, {u"Registro"}, {u"Hay"}}, u""),
    DescribeEvent<&Plano::FilaLeida>(2, u"FilaLeida",
                                     {{u"Numero"}, {u"Registro"}, {u"Valores"}, {u"Cancelar"}}, u""),
};

}  // namespace

constinit const ClassInfo ArchivoPlano::kInfo = DescribeClass<ArchivoPlano, kMembers, kEvents>(u"");

const ClassInfo& ArchivoPlano::Class() const { return kInfo; }

}  // namespace tovalin
