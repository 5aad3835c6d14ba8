#pragma once

#include "cards/cImagecardAttribute.h"

namespace OXClass {

/// Sets place and size of an image that has no slot on its card: a cell of a grid of five columns, which starts at the
/// top left. `cell` counts from 0, row by row. Sizes and positions are fractions of the canvas. Raises nothing.
void PlaceInGrid(cImagecardAttribute& placed, Long cell);

}  // namespace OXClass
