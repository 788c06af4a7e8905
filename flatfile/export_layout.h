#pragma once

#include <string_view>

#include "flatfile/layout.h"
#include "tovalin/cls_file_export.h"

namespace tovalin::flat {

/// The layout of what an export writes. Raises kObjectError for a field of a type that
/// has no fixed width.
Layout LayoutOfExport(const clsFileExport& exporter, const Campos& fields);

/// The layout that the description of an export tells, in code page 1252. Raises
/// kObjectError, with the line, for what is no such description.
Layout ReadDescription(std::string_view bytes);

}  // namespace tovalin::flat
