#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

// The fields of a control's tag that the focus handlers use.
inline constexpr std::uint8_t kHelpField = 3;
inline constexpr std::uint8_t kModifiedField = 4;
inline constexpr std::uint8_t kInitialValueField = 5;
inline constexpr std::uint8_t kTypeField = 6;

/// The field `index` of a tag string, a part of `tag` itself; see LibGeneral.
TextView GetTag(TextView tag, std::uint8_t index, char16_t separator);

/// `tag` with `value` in the field `index`; see LibGeneral.
Text LetTag(TextView tag, std::uint8_t index, TextView value, char16_t separator);

}  // namespace tovalin
