#pragma once

#include "evaluator/symbols.h"
#include "evaluator/token.h"

// The "@" that a formula may have in front of a name is read here and nowhere else.

namespace tovalin {

/// The name behind the "@" that an operand or a literal begins with, without the
/// quotes around both; empty for any other token. The literal "@" alone is no name.
TextView NameBehindAt(const TokenList& list, const Token& token);

/// The name that an operand stands for, with an "@" in front or without.
TextView NameOf(const TokenList& list, const Token& operand);

/// Looks up the name that an operand stands for: a local variable, else a variable,
/// else a constant. Where one is found the span becomes that of the name. Answers the
/// name, found or not.
TextView ResolveOperand(TokenList& list, Token& operand, const Symbols& symbols,
                        const Campos* locals);

/// A formula as its host gave it, without each "@" in front of a name. `at_signs` are
/// their places in the formula without carriage returns.
Text WithoutAtSigns(TextView formula, const std::vector<std::uint32_t>& at_signs);

}  // namespace tovalin
