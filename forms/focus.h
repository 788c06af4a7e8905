#pragma once

#include "tovalin/control.h"

namespace tovalin {

// What happens to a control as the focus comes and goes; see LibGeneral.

bool IsDataEntry(ControlKind kind);

/// The help text in a control's tag.
Text HelpText(Object& control, char16_t separator);

/// Checks the value of a control and writes the mark of a changed one into its tag.
void CheckAndMark(Object& control, char16_t separator, const HostServices& host);

/// Selects the contents of a text control; leaves other kinds alone.
void SelectContents(Object& control);

}  // namespace tovalin
