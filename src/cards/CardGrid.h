#pragma once

#include "cards/cImagecardAttribute.h"

namespace OXClass {

/// Sets position and size of an image that has no slot on its card: those of a cell in a grid of five columns
/// that starts at the top left of the canvas. No other member changes.
///
/// `cell` counts from 0, row by row. A cell is 0.2 wide and high, and the image in it 0.19, as fractions of
/// the canvas; the grid has no last row. Raises nothing. The thread that `placed` belongs to may call.
void PlaceInGrid(cImagecardAttribute& placed, Long cell);

}  // namespace OXClass
