#pragma once

#include <span>

#include "tovalin/text.h"

namespace tovalin::review {

/// A function as spreadsheets and other languages name it, and the formula that does it.
struct OtherName {
  TextView name;
  std::size_t least;  // how many arguments it is mended for
  std::size_t most;
  TextView before;   // in place of the name and its bracket
  TextView between;  // in place of each comma
  TextView after;    // in place of the closing bracket; "{n}" is the number of arguments
  TextView shown;    // the formula as a message shows it
};

/// The function of that name, compared without regard to case, or null.
const OtherName* FindOtherName(TextView name);
std::span<const OtherName> OtherNames();

}  // namespace tovalin::review
