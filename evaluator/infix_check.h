#pragma once

#include "evaluator/symbols.h"
#include "evaluator/token.h"

namespace tovalin {

/// Checks the tokens of a formula: adds a fault for each mistake, and looks up
/// the names, `locals` (null for none) first.
void CheckTokens(TokenList& list, const Symbols& symbols, const Campos* locals);

/// The tokens joined, each followed by a blank; a single token stands alone.
Text NormalisedExpression(const TokenList& list);

/// Moves the spans of `faults` from `text` to the text that the host gave, of
/// which `text` is a copy with some characters left out.
void MoveSpansToHostText(std::vector<Fault>& faults, TextView text, TextView host_text);

}  // namespace tovalin
