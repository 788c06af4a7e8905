#pragma once

#include <optional>

#include "review/names.h"
#include "review/repair.h"

namespace tovalin::review {

/// A call of a function of another language as the formula that does it, or none where
/// its arguments do not fit. `start` is where its name stands, `opener` the token of its
/// bracket.
std::optional<Repair> OtherFunctionRepair(const Source& source, const OtherName& row,
                                          std::uint32_t start, std::uint32_t opener);

/// "AND( A , B )": an operator in front of brackets as spreadsheets write it.
std::optional<Repair> LogicalCall(const Source& source, std::uint32_t token);

}  // namespace tovalin::review
