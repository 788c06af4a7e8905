#include "tovalin/dispatch.h"
#include "tovalin/lib_constan.h"

namespace tovalin {
namespace {

constexpr EnumValueInfo kBoxes[] = {
    {u"icoInformacion", icoInformacion, u"Informa de algo"},
    {u"icoExclamacion", icoExclamacion, u"Advierte de algo"},
    {u"icoError", icoError, u"Avisa de un error"},
    {u"icoPare", icoPare, u"Avisa de que no se puede seguir"},
    {u"icoPregunta", icoPregunta, u"Pregunta algo"},
};
constexpr EnumInfo kBoxInfo{u"icoMsgBox", u"Las clases de cuadros de mensaje", kBoxes};

constexpr EnumValueInfo kTransfers[] = {
    {u"caLocalRemote", caLocalRemote, u"De este equipo al remoto"},
    {u"caRemoteLocal", caRemoteLocal, u"Del equipo remoto a este"},
    {u"caLocalLocal", caLocalLocal, u"Dentro de este equipo"},
};
constexpr EnumInfo kTransferInfo{u"caTransferType",
                                 u"Los sentidos de una transferencia de archivos", kTransfers};

constexpr const EnumInfo* kEnumerations[] = {&kBoxInfo, &kTransferInfo};

}  // namespace

constinit const ClassInfo LibConstan::kInfo = DescribeClass<LibConstan>(
    u"Clase sin miembros, que existe para poder hacer referencia a las enumeraciones",
    kEnumerations);

const ClassInfo& LibConstan::Class() const { return kInfo; }

}  // namespace tovalin
