#include "frame/object/enumerations.h"
#include "tovalin/campos.h"
#include "tovalin/collection.h"
#include "tovalin/dispatch.h"
#include "tovalin/enumerador.h"

namespace tovalin {
namespace {

constexpr TextView kBefore = u"Posición o nombre delante del cual se pone; no junto con After";
constexpr TextView kAfter = u"Posición o nombre detrás del cual se pone; no junto con Before";
constexpr TextView kEnumeratorDoc = u"Devuelve un enumerador para recorrer los elementos en orden";

constexpr ErrorInfo kNoSuchPosition{9, u"no hay esa posición"};
constexpr ErrorInfo kNoSuchKey{5, u"no hay esa clave"};
constexpr ErrorInfo kNoSuchName{5, u"no hay un registro con ese nombre"};
constexpr ErrorInfo kBadIndex{13, u"el índice no es un número ni un texto"};
constexpr ErrorInfo kBothPlaces{5, u"se dan Before y After a la vez, o uno que no existe"};
constexpr ErrorInfo kNoSuchPlace{9, u"Before o After es una posición que no existe"};

constexpr TextView kKey = u"Posición desde 1, o clave sin distinguir mayúsculas";
constexpr TextView kNameOrPosition = u"Posición desde 1, o nombre sin distinguir mayúsculas";

constexpr MemberRow kCollectionMembers[] = {
    Method<&Collection::Add>(
        1, u"Add",
        {{u"Item", u"El valor u objeto que se añade"},
         Optional({u"Key", u"Texto con el que se busca; único en la Collection"}),
         Optional({u"Before", kBefore}),
         Optional({u"After", kAfter})},
        u"Añade un elemento al final, o delante o detrás de otro")
        .Errors({{457, u"la clave ya existe"},
                 {13, u"la clave no es un texto"},
                 kBothPlaces,
                 kNoSuchPlace}),
    Method<&Collection::Item>(kDefaultMemberId, u"Item", {{u"Index", kKey}},
                              u"Devuelve el elemento de una posición o una clave")
        .Errors({kNoSuchPosition, kNoSuchKey, kBadIndex}),
    Method<&Collection::Remove>(3, u"Remove", {{u"Index", kKey}},
                                u"Quita el elemento de una posición o una clave")
        .Errors({kNoSuchPosition, kNoSuchKey, kBadIndex}),
    Get<&Collection::Count>(4, u"Count", u"El número de elementos"),
    Get<&Collection::Claves>(5, u"Claves", u"Las claves de los elementos, en su orden")
        .Result(u"Una Collection de textos; vacío el de un elemento sin clave"),
    Method<&Collection::NewEnum>(kNewEnumId, u"_NewEnum", {}, kEnumeratorDoc).Hidden(),
};

constexpr MemberRow kCamposMembers[] = {
    Method<&Campos::Add>(1, u"Add",
                         {{u"Campo", u"El registro; entra con el nombre que tiene ahora"},
                          Optional({u"Before", kBefore}),
                          Optional({u"After", kAfter})},
                         u"Añade un registro bajo su nombre, al final, o delante o detrás de otro")
        .Errors({{457, u"ya hay un registro con ese nombre"},
                 {91, u"no se da un registro"},
                 kBothPlaces,
                 kNoSuchPlace}),
    Method<&Campos::Exists>(2, u"Exists", {{u"Name", u"El nombre, sin distinguir mayúsculas"}},
                            u"Indica si la tabla tiene un registro con ese nombre"),
    Method<&Campos::Item>(kDefaultMemberId, u"Item", {{u"Index", kNameOrPosition}},
                          u"Devuelve el registro de una posición o un nombre")
        .Errors({kNoSuchPosition, kNoSuchName, kBadIndex}),
    Method<&Campos::Remove>(4, u"Remove", {{u"Index", kNameOrPosition}},
                            u"Quita el registro de una posición o un nombre")
        .Errors({kNoSuchPosition, kNoSuchName, kBadIndex}),
    Get<&Campos::Count>(5, u"Count", u"El número de registros"),
    Get<&Campos::SystemList>(6, u"SystemList",
                             u"Los nombres que son del sistema, separados por comas"),
    Let<&Campos::LetSystemList>(6, u"SystemList"),
    Get<&Campos::Claves>(7, u"Claves", u"Los nombres de los registros, en su orden")
        .Result(u"Una Collection de textos"),
    Method<&Campos::NewEnum>(kNewEnumId, u"_NewEnum", {}, kEnumeratorDoc).Hidden(),
};

constexpr MemberRow kCampoMembers[] = {
    Get<&Campo::Name>(1, u"Name", u"El nombre, con el que una tabla encuentra el registro")
        .Reference(u"El nombre, con el que una tabla encuentra el registro. Un registro que ya "
                   u"está en una tabla sigue en ella bajo el nombre con que entró."),
    Let<&Campo::LetName>(1, u"Name"),
    Get<&Campo::DataType>(2, u"DataType", u"El código del tipo de datos").Result(kDataTypeInfo),
    Let<&Campo::LetDataType>(2, u"DataType"),
    Get<&Campo::Size>(3, u"Size", u"El ancho de un texto, en caracteres"),
    Let<&Campo::LetSize>(3, u"Size"),
    Get<&Campo::Position>(4, u"Position",
                          u"La columna del arreglo de una exportación que tiene el campo, desde 0"),
    Let<&Campo::LetPosition>(4, u"Position"),
    Get<&Campo::Value>(kDefaultMemberId, u"Value",
                       u"El valor de la variable, la constante o el operador"),
    Let<&Campo::LetValue>(kDefaultMemberId, u"Value"),
    Get<&Campo::Description>(6, u"Description", u"La descripción, para mostrarla"),
    Let<&Campo::LetDescription>(6, u"Description"),
    Get<&Campo::Formula>(7, u"Formula",
                         u"La fórmula que da su valor a la variable; vacía si no la tiene"),
    Let<&Campo::LetFormula>(7, u"Formula"),
    Get<&Campo::SourceName>(8, u"SourceName", u"La palabra de una función, sin el paréntesis"),
    Let<&Campo::LetSourceName>(8, u"SourceName"),
    Get<&Campo::Sintax>(9, u"Sintax", u"La sintaxis de una función, para mostrarla como ayuda"),
    Let<&Campo::LetSintax>(9, u"Sintax"),
    Get<&Campo::Direction>(10, u"Direction",
                           u"Un dato de la aplicación, que Evaluador.Direction asigna a todos"),
    Let<&Campo::LetDirection>(10, u"Direction"),
    Get<&Campo::Status>(11, u"Status", u"El estado del cálculo de una variable con fórmula")
        .Result(kStatusInfo),
    Let<&Campo::LetStatus>(11, u"Status"),
};

constexpr MemberRow kEnumeradorMembers[] = {
    Method<&Enumerador::Siguiente>(1, u"Siguiente",
                                   {Out({u"rElemento", u"Recibe el elemento; no cambia al final"})},
                                   u"Entrega el elemento siguiente; Falso cuando no hay más"),
    Get<&Enumerador::Clave>(2, u"Clave", u"La clave del último elemento entregado")
        .Reference(u"La clave del último elemento entregado; vacía si no tiene, si ya se quitó, o "
                   u"si no se ha entregado ninguno."),
    Method<&Enumerador::Reiniciar>(3, u"Reiniciar", {}, u"Vuelve delante del primer elemento"),
};

constexpr const EnumInfo* kCampoEnumerations[] = {&kDataTypeInfo, &kStatusInfo};

}  // namespace

constinit const ClassInfo Collection::kInfo = DescribeClass<Collection, kCollectionMembers>(
    u"Lista de valores en orden, numerados desde 1, que pueden tener una clave de texto");
constinit const ClassInfo Campos::kInfo = DescribeClass<Campos, kCamposMembers>(
    u"Tabla de registros Campo, en orden y bajo su nombre: variables, constantes, funciones, "
    u"operadores, o los campos de una exportación");
constinit const ClassInfo Campo::kInfo = DescribeClass<Campo, kCampoMembers>(
    u"Un registro de una tabla Campos: una variable, constante, función u operador de un "
    u"Evaluador, o un campo de una exportación",
    kCampoEnumerations);
constinit const ClassInfo Enumerador::kInfo = DescribeClass<Enumerador, kEnumeradorMembers>(
    u"Recorre los elementos de una Collection o los registros de un Campos, aunque entretanto se "
    u"añadan o se quiten");

const ClassInfo& Collection::Class() const { return kInfo; }
const ClassInfo& Campos::Class() const { return kInfo; }
const ClassInfo& Campo::Class() const { return kInfo; }
const ClassInfo& Enumerador::Class() const { return kInfo; }

}  // namespace tovalin
