#pragma once

#include "tovalin/object.h"
#include "tovalin/text.h"

namespace tovalin {

// The layout of a control as one text: numbers, each followed by ",".
//
//   grid        Width, ColWidth(0) ... ColWidth(Cols - 1)
//   list view   View, ColumnHeaders(1).Width ... ColumnHeaders(Count).Width
//   form        Width, Height, Left, Top, WindowState
//   other       Width, Height, Left, Top

/// The layout of a control, or the empty text when it is not to be saved.
Text LayoutText(Object& control);

/// Gives a control a layout. What fails half-way ends the call quietly, with what
/// was done before kept; only a failure to set a grid's Redraw back is raised.
void ApplyLayout(Object& control, TextView layout);

/// Stretches or shrinks the columns of a grid to its width.
void FitGridColumns(Object& grid);

}  // namespace tovalin
