#pragma once

#include <cstdint>
#include <optional>

namespace tovalin {

/// The product of two amounts, all of them in ten-thousandths: exact up to the fourth
/// decimal, halves to the even neighbour. Nothing when it does not fit.
std::optional<std::int64_t> AmountProduct(std::int64_t left, std::int64_t right);

}  // namespace tovalin
