#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tovalin/cls_file_export.h"

namespace tovalin::tool {

std::string Quoted(std::string_view text);

/// The lines for a person about an export that answered False: where and why, and what
/// the files `output`.txt and `output`.ref hold. `wanted` rows were asked for, `rows`
/// are in the input.
std::string DescribeFailure(const clsFileExport::FailureReport& failure, const std::string& output,
                            std::int32_t wanted, std::size_t rows);

}  // namespace tovalin::tool
