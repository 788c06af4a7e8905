#include "frame/object/enumerations.h"

#include "tovalin/campos.h"

namespace tovalin {
namespace {

constexpr EnumValueInfo kDataTypes[] = {
    {u"datLogico", kLogical, u"Verdadero o Falso"},
    {u"datEntero", kInteger, u"Número entero"},
    {u"datEnteroLargo", kWholeNumber, u"Número entero de 32 bits"},
    {u"datMoneda", kCurrency, u"Dinero, con cuatro decimales exactos"},
    {u"datDoble", kDouble, u"Número de doble precisión"},
    {u"datFlotante", kFloat, u"Número de coma flotante"},
    {u"datNumerico", kNumeric, u"Número de cualquier clase; también el de un nombre desconocido"},
    {u"datHora", kTime, u"Hora"},
    {u"datFecha", kDate, u"Fecha"},
    {u"datTexto", kText, u"Texto"},
    {u"datHoraDia", kTimeOfDay, u"Hora del día; se exporta igual que datHora"},
    {u"datTextoLargo", kLongText, u"Texto; el de variables y constantes de texto"},
};

constexpr EnumValueInfo kStatuses[] = {
    {u"estListo", Campo::kIdle, u"No se está calculando"},
    {u"estCalculando", Campo::kBeingComputed, u"Su fórmula se está calculando"},
};

constexpr std::int32_t Code(Subtype subtype) { return static_cast<std::int32_t>(subtype); }

constexpr EnumValueInfo kSubtypes[] = {
    {u"subVacio", Code(Subtype::Empty), u"Sin asignar"},
    {u"subNulo", Code(Subtype::Null), u"Nulo: sin dato"},
    {u"subEntero", Code(Subtype::Integer), u"Entero de 16 bits"},
    {u"subLargo", Code(Subtype::Long), u"Entero de 32 bits"},
    {u"subSimple", Code(Subtype::Single), u"Precisión simple"},
    {u"subDoble", Code(Subtype::Double), u"Doble precisión"},
    {u"subMoneda", Code(Subtype::Currency), u"Dinero, con cuatro decimales exactos"},
    {u"subFecha", Code(Subtype::Date), u"Fecha y hora"},
    {u"subTexto", Code(Subtype::String), u"Texto"},
    {u"subObjeto", Code(Subtype::Object), u"Objeto"},
    {u"subError", Code(Subtype::Error), u"Error, o argumento omitido"},
    {u"subLogico", Code(Subtype::Boolean), u"Verdadero o Falso"},
    {u"subByte", Code(Subtype::Byte), u"Entero de 0 a 255"},
};

}  // namespace

constinit const EnumInfo kDataTypeInfo{u"DataType", u"Los tipos de datos de un Campo", kDataTypes};
constinit const EnumInfo kStatusInfo{
    u"EstadoCampo", u"Los estados del cálculo de una variable con fórmula", kStatuses};
constinit const EnumInfo kSubtypeInfo{u"SubTipo", u"Las clases de valores de un Variant",
                                      kSubtypes};

}  // namespace tovalin
