#pragma once

#include "evaluator/element_search.h"
#include "evaluator/token.h"

namespace tovalin {

/// Splits the text of `list`, a formula without carriage returns, into tokens.
/// Names are not looked up yet; a literal that does not end is the only fault told
/// here.
void Tokenize(TokenList& list, const ElementSearch& elements, TextView string_delimiter);

/// The token that an item of a host's token Collection stands for, appended to
/// `list` together with its text. An item that is no text has to stay where it is.
void AppendHostToken(TokenList& list, const Variant& value, const ElementSearch& elements,
                     const Symbols& symbols);

}  // namespace tovalin
