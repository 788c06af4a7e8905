#pragma once

#include <string>
#include <string_view>

#include "flatfile/layout.h"

namespace tovalin::flat {

// Layouts as JSON: a Table Schema of Data Package 2.0, with what it does not have under
// keys that begin with "tovalin:". docs/archivos.md lists the keys.

/// The layout of a JSON text, checked. Raises kObjectError with the place of a fault: line
/// and column, or the path of the value, such as "fields/2/tovalin:ancho".
Layout ReadLayoutJson(std::string_view utf8);

/// The JSON text of a layout: reading it gives the same layout.
std::string WriteLayoutJson(const Layout& layout);

}  // namespace tovalin::flat
