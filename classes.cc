#include <vector>

#include "frame/object/guarded.h"
#include "tovalin/archivo_plano.h"
#include "tovalin/campos.h"
#include "tovalin/cls_file_export.h"
#include "tovalin/collection.h"
#include "tovalin/evaluador.h"
#include "tovalin/factory.h"
#include "tovalin/lib_constan.h"
#include "tovalin/lib_fecha.h"
#include "tovalin/lib_file.h"
#include "tovalin/lib_general.h"
#include "tovalin/lib_monto.h"
#include "tovalin/lib_texto.h"

// The one list of the classes that a host can create.

namespace tovalin {
namespace {

struct Creatable {
  TextView name;
  Ref<Object> (*make)();
};

template <class T>
constexpr Creatable Row() {
  return {T::kClassName, [] { return Ref<Object>(Make<T>()); }};
}

constexpr Creatable kCreatable[] = {
    Row<Evaluador>(),     Row<LibMonto>(),     Row<LibTexto>(),   Row<LibFecha>(),
    Row<clsFileExport>(), Row<ArchivoPlano>(), Row<LibGeneral>(), Row<LibFile>(),
    Row<LibConstan>(),    Row<Collection>(),   Row<Campos>(),     Row<Campo>(),
};

constexpr TextView kLibraryPrefix = u"Tovalin.";

}  // namespace

Ref<Object> CreateObject(TextView class_name) {
  TextView name = class_name;
  if (EqualFolded(name.substr(0, kLibraryPrefix.size()), kLibraryPrefix))
    name.remove_prefix(kLibraryPrefix.size());
  for (const Creatable& row : kCreatable)
    if (EqualFolded(row.name, name)) return RaisingErrors(row.make);
  throw ErrorAbout(Failure::CannotCreateObject, class_name);
}

std::vector<const ClassInfo*> Classes() {
  return RaisingErrors([&] {
    std::vector<const ClassInfo*> classes;
    for (const Creatable& row : kCreatable) classes.push_back(&row.make()->Class());
    return classes;
  });
}

}  // namespace tovalin
