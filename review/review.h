#pragma once

#include "review/findings.h"

namespace tovalin::review {

/// What hosts see of a finding.
struct Report {
  TextView severity;
  TextView code;
  std::size_t start;  // in the text as the host gave it, from 1
  std::size_t length;
  Text message;
  Variant suggestion;  // a text, shared by all that are mended together
};

/// Reviews a formula without evaluating it. The reports stand in the order of their places.
std::vector<Report> ReviewFormula(const Surroundings& surroundings, const Text& formula);

}  // namespace tovalin::review
