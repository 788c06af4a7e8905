#pragma once

#include <cstdint>

#include "formatting/currency_nouns.h"
#include "tovalin/lib_monto.h"
#include "tovalin/text.h"

namespace tovalin {

/// An amount in words with its currency and cents, in lower case but for what
/// stands in `nouns` and for the mark of the currency ("M/CTE"): see
/// LibMonto::MontoCheque. Raises 5 for a gender or a style that does not exist.
Text ChequeWords(std::int64_t cents, const CurrencyNouns& nouns, std::int32_t gender,
                 std::int32_t style);

}  // namespace tovalin
