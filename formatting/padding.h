#pragma once

#include <cstdint>

#include "tovalin/text.h"

namespace tovalin {

/// The side of the padding helpers that means "at the right"; any other value
/// means "at the left".
inline constexpr std::int32_t kRightSide = 1;

/// `sTexto` without the blanks at its ends, filled with blanks to `nLongitud`
/// characters: justified to the right when `nLado` is kRightSide, else to the
/// left. A longer text is cut at its right end, whatever the side. Raises 5 for
/// a negative length.
Text AjustarTexto(TextView sTexto, std::int16_t nLongitud, std::int32_t nLado);

/// `sTexto` without the blanks at its ends and without the repetitions of
/// `sRelleno` (compared without regard to case) at the right end when `nLado` is
/// kRightSide, else at the left end. An empty fill removes nothing.
///
/// At the left the place of comparison advances by the length of the fill while
/// the text gets shorter, so that a long run is removed in part only: "000123"
/// gives "123" but "0000123" gives "0123". At the right a fill of more than one
/// character is never found.
Text DesajustarTexto(TextView sTexto, TextView sRelleno, std::int32_t nLado);

}  // namespace tovalin
