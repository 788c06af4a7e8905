#pragma once

#include <string_view>

#include "flatfile/layout.h"

namespace tovalin::flat {

/// The layout of a section of a schema.ini (UTF-8, else code page 1252); an empty name is
/// the first one. Raises kObjectError, with the line, for what it cannot be.
Layout ReadSchemaIni(std::string_view bytes, TextView section);

/// A layout as a section. Raises kObjectError for what a schema.ini cannot say.
Text WriteSchemaIni(const Layout& layout, TextView section);

}  // namespace tovalin::flat
