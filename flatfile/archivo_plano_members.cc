#include "frame/object/enumerations.h"
#include "tovalin/archivo_plano.h"
#include "tovalin/dispatch.h"

namespace tovalin {
namespace {

using Plano = ArchivoPlano;

constexpr auto kWriteTable =
    static_cast<bool (Plano::*)(const Variant&, const Text&, const Text&)>(&Plano::Escribir);
constexpr auto kReadRows = static_cast<bool (Plano::*)(const Text&)>(&Plano::LeerFilas);

constexpr TextView kLayoutFile = u"El archivo del diseño";
constexpr TextView kDataFile = u"El archivo de datos";
constexpr TextView kColumns =
    u"Las columnas del arreglo en su orden, separadas por comas; vacío, las de Columnas";
constexpr TextView kRecord = u"El nombre de la clase de registro; vacío, el primer detalle";
constexpr TextView kParameterName = u"El nombre del parámetro";
constexpr TextView kWritten =
    u"Verdadero si ninguna fila fue rechazada; Falso si las hay: vea Errores";
constexpr TextView kNames = u"Una Collection de textos";

constexpr ErrorInfo kNoLayout{kObjectError, u"no se ha dado el diseño"};
constexpr ErrorInfo kBusy{kObjectError, u"el objeto está escribiendo o leyendo"};
constexpr ErrorInfo kBadLayout{kObjectError,
                               u"el diseño tiene una falta, con su lugar; queda el que había"};
constexpr ErrorInfo kNoFile{53, u"el archivo no existe"};
constexpr ErrorInfo kNoPermission{70, u"no hay permiso para el archivo"};
constexpr ErrorInfo kBadFile{75, u"el archivo no se puede leer o escribir"};
constexpr ErrorInfo kDiskFull{61, u"el disco está lleno"};
constexpr ErrorInfo kNoRecord{5, u"no hay esa clase de registro"};
constexpr ErrorInfo kWrongColumns{kObjectError,
                                  u"no hay un diseño, o no va con las columnas que se dan"};

constexpr MemberRow kMembers[] = {
    Get<&Plano::Diseno>(1, u"Diseno", u"El diseño del archivo, como texto JSON (Table Schema)")
        .Errors({kNoLayout}),
    Let<&Plano::LetDiseno>(1, u"Diseno").Errors({kBadLayout, kBusy}),
    Method<&Plano::LeerDiseno>(2, u"LeerDiseno", {{u"vArchivo", kLayoutFile}},
                               u"Toma el diseño de un archivo JSON")
        .Errors({kBadLayout, kBusy, kNoFile, kNoPermission, kBadFile}),
    Method<&Plano::GuardarDiseno>(3, u"GuardarDiseno", {{u"vArchivo", kLayoutFile}},
                                  u"Guarda el diseño en un archivo JSON")
        .Errors({kNoLayout, kDiskFull, kNoPermission, kBadFile}),
    Method<&Plano::LeerSchemaIni>(4, u"LeerSchemaIni",
                                  {{u"vArchivo", u"El schema.ini"},
                                   Optional({u"oSeccion", u"La sección; vacío, la primera"}, u"")},
                                  u"Toma el diseño de una sección de un schema.ini, o la primera")
        .Errors({kBadLayout, kBusy, kNoFile, kNoPermission, kBadFile}),
    Method<&Plano::SchemaIni>(5, u"SchemaIni", {{u"vSeccion", u"El nombre de la sección"}},
                              u"Devuelve el diseño como una sección de schema.ini")
        .Errors({{kObjectError, u"no hay un diseño, o un schema.ini no puede decir algo de él"}}),
    Method<&Plano::LeerDescripcion>(
        6, u"LeerDescripcion", {{u"vArchivo", u"La descripción, con extensión .ref"}},
        u"Toma el diseño de la descripción (.ref) que escribió un clsFileExport")
        .Reference(
            u"Toma el diseño de la descripción (.ref) que escribió un clsFileExport: nombres "
            u"y lugares. Todos los campos son textos, y el último toma el resto del registro.")
        .Errors({kBadLayout, kBusy, kNoFile, kNoPermission, kBadFile}),
    Method<&Plano::DesdeExport>(7, u"DesdeExport",
                                {{u"vExport", u"El exportador, con sus propiedades"},
                                 {u"vCampos", u"Los campos que exporta"}},
                                u"Toma el diseño de lo que escribe un clsFileExport")
        .Reference(
            u"Toma el diseño de lo que escribe un clsFileExport. En longitud fija los "
            u"archivos son iguales byte por byte mientras los valores quepan; uno delimitado "
            u"lleva el valor de cada campo.")
        .Errors({{91, u"no se da un exportador o una tabla de campos"},
                 {kObjectError, u"un campo no tiene ancho fijo"},
                 kBusy}),
    Get<&Plano::Columnas>(8, u"Columnas", u"Los nombres de las columnas de las filas, en su orden")
        .Result(kNames)
        .Errors({kNoLayout}),
    Method<&Plano::CamposDe>(9, u"CamposDe", {Optional({u"oRegistro", kRecord}, u"")},
                             u"Los nombres de los campos de un registro, o del primer detalle")
        .Result(kNames)
        .Errors({kNoLayout, kNoRecord}),
    Method<&Plano::ClasesDeRegistro>(
        26, u"ClasesDeRegistro",
        {Optional({u"oPapel", u"\"inicio\", \"detalle\" o \"fin\"; vacío, todas"}, u"")},
        u"Los nombres de las clases de registros: todas, o las de inicio, detalle o fin")
        .Result(kNames)
        .Errors({kNoLayout, {5, u"el papel no es ninguno de esos"}}),
    Get<&Plano::Parametro>(10, u"Parametro",
                           u"Valor de un encabezado, un cierre o una fórmula, por su nombre",
                           {{u"Nombre", kParameterName}})
        .Reference(u"El valor que un encabezado, un cierre o una fórmula del diseño toma por su "
                   u"nombre; Vacío (Empty) si no se ha dado."),
    Let<&Plano::LetParametro>(10, u"Parametro", {{u"Nombre"}, {u"NewValue"}})
        .Errors({{13, u"el valor es un objeto o un arreglo"}}),
    Get<&Plano::EvaluadorDeFormulas>(11, u"EvaluadorDeFormulas",
                                     u"El Evaluador que calcula las fórmulas de los campos")
        .Reference(u"El Evaluador que calcula las fórmulas de los campos: con funciones de la "
                   u"aplicación, por ejemplo. Si no se da, uno propio."),
    Set<&Plano::SetEvaluadorDeFormulas>(11, u"EvaluadorDeFormulas"),
    Get<&Plano::PermitirParcial>(
        12, u"PermitirParcial",
        u"Indica si el archivo se publica sin las filas rechazadas, en lugar de no publicarse"),
    Let<&Plano::LetPermitirParcial>(12, u"PermitirParcial"),
    Method<kWriteTable>(13, u"Escribir",
                        {{u"vDatos", u"Un arreglo con índices (columna, fila)"},
                         {u"vArchivo", kDataFile},
                         Optional({u"oColumnas", kColumns}, u"")},
                        u"Escribe las filas de un arreglo; Verdadero si ninguna fue rechazada")
        .Reference(u"Escribe las filas de un arreglo. El archivo aparece entero, o no aparece si "
                   u"alguna fila fue rechazada y PermitirParcial es Falso.")
        .Result(kWritten)
        .Errors({{13, u"no se da un arreglo"},
                 kWrongColumns,
                 kBusy,
                 kDiskFull,
                 kNoPermission,
                 kBadFile}),
    Method<&Plano::EscribirFilas>(
        14, u"EscribirFilas", {{u"vArchivo", kDataFile}, Optional({u"oColumnas", kColumns}, u"")},
        u"Escribe las filas que da el evento PedirFila")
        .Result(kWritten)
        .Errors({kWrongColumns, kBusy, kDiskFull, kNoPermission, kBadFile}),
    Method<&Plano::Convertir>(
        15, u"Convertir",
        {{u"vOrigen", u"El ArchivoPlano con el diseño del archivo que se lee"},
         {u"vEntrada", u"El archivo que se lee"},
         {u"vArchivo", u"El archivo que se escribe"}},
        u"Escribe las filas de otro archivo, leído con el diseño de otro ArchivoPlano")
        .Reference(u"Escribe los registros de detalle de otro archivo, leído con el diseño de otro "
                   u"ArchivoPlano, cuyas faltas quedan también en Errores.")
        .Result(kWritten)
        .Errors({{91, u"no se da un ArchivoPlano"},
                 {5, u"se da el mismo"},
                 kWrongColumns,
                 kBusy,
                 kNoFile,
                 kDiskFull,
                 kNoPermission,
                 kBadFile}),
    Method<&Plano::Leer>(16, u"Leer",
                         {{u"vArchivo", kDataFile}, Optional({u"oRegistro", kRecord}, u"")},
                         u"Devuelve los registros de un archivo como arreglo (columna, fila)")
        .Reference(
            u"Devuelve los registros de una clase de un archivo como arreglo (columna, fila), "
            u"con valores de sus tipos. Lo que no se pudo leer está en Errores.")
        .Errors({kNoLayout, kNoRecord, kBusy, kNoFile, kNoPermission, kBadFile}),
    Method<kReadRows>(17, u"LeerFilas", {{u"vArchivo", kDataFile}},
                      u"Lee un archivo y da cada registro con el evento FilaLeida")
        .Result(u"Verdadero si no hubo errores")
        .Errors({kNoLayout, kBusy, kNoFile, kNoPermission, kBadFile}),
    Method<&Plano::Verificar>(18, u"Verificar", {{u"vArchivo", kDataFile}},
                              u"Indica si un archivo cumple el diseño, con sus cuentas y totales")
        .Errors({kNoLayout, kBusy, kNoFile, kNoPermission, kBadFile}),
    Get<&Plano::Errores>(19, u"Errores",
                         u"Los errores: Collections con Fila, Registro, Campo, Valor y Motivo")
        .Reference(u"Los errores de la última escritura o lectura: una Collection de Collections "
                   u"con los elementos \"Fila\" (desde 1; al leer, el registro), \"Registro\", "
                   u"\"Campo\", \"Valor\" y \"Motivo\"."),
    Get<&Plano::NumeroErrores>(20, u"NumeroErrores",
                               u"Cuántos errores hubo, también los que Errores no guarda"),
    Get<&Plano::LimiteErrores>(21, u"LimiteErrores", u"Cuántos errores guarda Errores")
        .Reference(u"Cuántos errores guarda Errores, 1000 al principio."),
    Let<&Plano::LetLimiteErrores>(21, u"LimiteErrores").Errors({{5, u"el número es negativo"}}),
    Get<&Plano::FilasRechazadas>(22, u"FilasRechazadas",
                                 u"Cuántas filas (o registros leídos) fueron rechazadas"),
    Get<&Plano::Registros>(23, u"Registros",
                           u"Cuántos registros de una clase, o de todas, se escribieron o leyeron",
                           {Optional({u"oRegistro", u"El nombre de la clase; vacío, todas"}, u"")}),
    Get<&Plano::Publicado>(24, u"Publicado", u"Indica si la última escritura publicó su archivo"),
    Method<&Plano::TipoDeColumna>(25, u"TipoDeColumna",
                                  {{u"Nombre", u"El nombre de una columna de Columnas"}},
                                  u"El código del tipo de datos de una columna")
        .Reference(u"El tipo de datos de una columna, para leer sus valores de un texto.")
        .Result(kDataTypeInfo)
        .Errors({kNoLayout, {5, u"no hay una columna con ese nombre"}}),
};

constexpr EventRow kEvents[] = {
    DescribeEvent<&Plano::PedirFila>(
        1, u"PedirFila",
        {{u"Numero", u"El número de la fila, desde 1"},
         {u"Valores", u"Una Collection vacía, que recibe los valores en el orden de Columnas"},
         {u"Registro", u"El manejador pone la clase de registro, si hay varias de detalle"},
         {u"Hay", u"El manejador pone Verdadero si da una fila; Falso termina el archivo"}},
        u"EscribirFilas pide la fila siguiente"),
    DescribeEvent<&Plano::FilaLeida>(
        2, u"FilaLeida",
        {{u"Numero", u"El número del registro, desde 1"},
         {u"Registro", u"Su clase de registro"},
         {u"Valores", u"Sus valores, con los nombres de los campos como claves"},
         {u"Cancelar", u"El manejador pone Verdadero para terminar la lectura"}},
        u"LeerFilas leyó un registro"),
};

}  // namespace

constinit const ClassInfo ArchivoPlano::kInfo = DescribeClass<ArchivoPlano, kMembers, kEvents>(
    u"Escribe, lee y verifica archivos planos según un diseño, sin perder nada en silencio");

const ClassInfo& ArchivoPlano::Class() const { return kInfo; }

}  // namespace tovalin
