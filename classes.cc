#include "frame/object/error_translation.h"
#include "tovalin/archivo_plano.h"
#include "tovalin/campos.h"
#include "tovalin/cls_file_export.h"
#include "tovalin/collection.h"
#include "tovalin/enumerador.h"
#include "tovalin/evaluador.h"
#include "tovalin/factory.h"
#include "tovalin/formula.h"
#include "tovalin/lib_constan.h"
#include "tovalin/lib_fecha.h"
#include "tovalin/lib_file.h"
#include "tovalin/lib_general.h"
#include "tovalin/lib_monto.h"
#include "tovalin/lib_texto.h"

// The one list of the classes that a host meets.

namespace tovalin {
namespace {

constexpr const ClassInfo* kClasses[] = {
    &Evaluador::kInfo, &Formula::kInfo,       &LibMonto::kInfo,     &LibTexto::kInfo,
    &LibFecha::kInfo,  &clsFileExport::kInfo, &ArchivoPlano::kInfo, &LibGeneral::kInfo,
    &LibFile::kInfo,   &LibConstan::kInfo,    &Collection::kInfo,   &Campos::kInfo,
    &Campo::kInfo,     &Enumerador::kInfo,
};

constexpr TextView kLibraryPrefix = u"Tovalin.";

}  // namespace

std::span<const ClassInfo* const> Classes() { return kClasses; }

const ClassInfo* FindClass(TextView class_name) {
  TextView name = class_name;
  if (EqualFolded(name.substr(0, kLibraryPrefix.size()), kLibraryPrefix))
    name.remove_prefix(kLibraryPrefix.size());
  for (const ClassInfo* info : kClasses)
    if (EqualFolded(info->name, name)) return info;
  return nullptr;
}

const EnumInfo* FindEnumeration(TextView name) {
  for (const ClassInfo* info : kClasses)
    for (const EnumInfo* enumeration : info->enumerations)
      if (EqualFolded(enumeration->name, name)) return enumeration;
  return nullptr;
}

Ref<Object> CreateObject(TextView class_name) {
  const ClassInfo* info = FindClass(class_name);
  if (!info || !info->create) throw ErrorAbout(Failure::CannotCreateObject, class_name);
  return RaisingErrors(info->create);
}

}  // namespace tovalin
