#pragma once

#include <cstdint>
#include <optional>

#include "tovalin/text.h"

namespace tovalin {

/// The pattern that a named format ("Standard", "Fecha corta" ... in any case)
/// stands for under the locale, or none when the text is no such name. General
/// Number has no pattern: it gives kGeneralNumber.
std::optional<Text> NamedFormat(TextView name);

/// Not a pattern that anybody can write: a lone zero character.
inline constexpr TextView kGeneralNumber{u"\0", 1};

}  // namespace tovalin
