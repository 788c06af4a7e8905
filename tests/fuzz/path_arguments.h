#pragma once

#include <algorithm>
#include <iterator>
#include <optional>

#include "tovalin/text.h"

namespace tovalin::fuzz {

/// Members that are not called, or with a path of our own.
struct Restriction {
  TextView member;
  int path;  // which argument; -1: not called at all
};
inline constexpr Restriction kRestrictions[] = {
    {u"Ejecutar", -1},                   // runs commands
    {u"FileToText", 0},                  // reads what may have no end, such as /dev/zero
    {u"GenerarArchivoPlanoDesdeBD", 3},  // writes and replaces files
    {u"GuardarDiseno", 0},               // the same, and reads
    {u"LeerDiseno", 0},
    {u"LeerSchemaIni", 0},
    {u"LeerDescripcion", 0},
    {u"Escribir", 1},
    {u"EscribirFilas", 0},
    {u"Convertir", -1},  // two paths
    {u"Leer", 0},
    {u"LeerFilas", 0},
    {u"Verificar", 0},
};

/// Which argument of a member is a path, if it is restricted.
inline std::optional<int> RestrictedPath(TextView member) {
  const auto found = std::ranges::find(kRestrictions, member, &Restriction::member);
  if (found == std::end(kRestrictions)) return std::nullopt;
  return found->path;
}

}  // namespace tovalin::fuzz
