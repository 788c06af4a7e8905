#pragma once

#include <cstdint>
#include <optional>

#include "tovalin/text.h"

namespace tovalin {

// The attributes of a file or directory, added up.
inline constexpr std::uint32_t kReadOnly = 1;
inline constexpr std::uint32_t kHidden = 2;
inline constexpr std::uint32_t kDirectory = 16;
inline constexpr std::uint32_t kArchive = 32;

/// The attributes of what has that name, links followed, or nothing when nothing
/// has it. On a system without them: a directory has kDirectory and any other
/// thing kArchive, one without any write permission kReadOnly, one whose name
/// begins with a dot kHidden. Raises 52 as ToNativePath does.
std::optional<std::uint32_t> FileAttributes(TextView path);

}  // namespace tovalin
