#pragma once

#include "evaluator/lexer.h"
#include "tovalin/collection.h"

namespace tovalin {

/// Looks up the name that an operand stands for: a local variable, else a variable,
/// else a constant. Where one is found the span becomes that of the name. Returns the
/// name, found or not.
TextView ResolveOperand(TokenList& list, Token& operand, const Symbols& symbols,
                        const Campos* locals);

/// Checks the tokens of a formula: adds a fault for each mistake, and looks up
/// the names, `locals` (null for none) first.
void CheckTokens(TokenList& list, const Symbols& symbols, const Campos* locals);

/// The tokens joined, each followed by a blank; a single token stands alone.
Text NormalisedExpression(const TokenList& list);

/// The faults of one formula with the two texts that their spans lead through.
struct FaultReport {
  Text host_text;  // as the host gave it
  Text text;       // as it was checked
  std::vector<Fault> faults;
};

/// The faults of a report as hosts see them: Collections with the items "Codigo",
/// "Inicio" (from 1), "Largo", "Mensaje" and "Expresion".
void AppendFaultRecords(Collection& records, const FaultReport& report);

/// A numbered line for each fault, counted on from `number`.
void AppendFaultLines(Text& lines, std::size_t& number, const FaultReport& report);

}  // namespace tovalin
