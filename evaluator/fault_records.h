#pragma once

#include "evaluator/engine.h"
#include "tovalin/collection.h"

namespace tovalin {

/// The faults of a report as hosts see them: Collections with the items "Codigo",
/// "Inicio" (from 1), "Largo", "Mensaje" and "Expresion".
void AppendFaultRecords(Collection& records, const FaultReport& report);

/// A numbered line for each fault, counted on from `number`.
void AppendFaultLines(Text& lines, std::size_t& number, const FaultReport& report);

}  // namespace tovalin
