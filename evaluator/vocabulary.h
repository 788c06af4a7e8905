#pragma once

#include "tovalin/campos.h"
#include "tovalin/collection.h"

namespace tovalin {

/// The 19 operators with their priorities.
Ref<Campos> MakeOperators();
/// The 48 built-in functions.
Ref<Campos> MakeFunctions();
/// The ten constants, nine of them in the system list.
Ref<Campos> MakeConstants();
/// "(", ")" and ",".
Ref<Collection> MakeSeparators();
/// The 28 characters that a name must not contain.
Ref<Collection> MakeSpecialCharacters();

/// The record of a function for a table.
Ref<Campo> MakeFunction(const Text& name, const Text& source_name, const Text& description,
                        const Text& syntax);
/// The record of a variable or constant for a table.
Ref<Campo> MakeSymbol(const Text& name, const Variant& value, const Text& description,
                      std::int32_t data_type, const Text& formula = {});

}  // namespace tovalin
