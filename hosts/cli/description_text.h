#pragma once

#include <string>

#include "tovalin/describe.h"

namespace tovalin::tool {

/// The descriptions for people: every class by a line; one class with its members,
/// parameters, errors, events and enumerations; one enumeration.
std::string ClassesText();
std::string ClassText(const ClassInfo& info);
std::string EnumerationText(const EnumInfo& enumeration);

/// The page docs/reference.md.
std::string ReferencePage();

/// What is pinned, a line each: "Campos Method Remove 4", "Evaluador Event Response 2",
/// "DataType Value datTexto 1012".
std::string ListIds();

}  // namespace tovalin::tool
