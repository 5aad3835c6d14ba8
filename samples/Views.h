#pragma once

#include "Drawing.h"

#include <vector>

namespace Samples {

/// A small film in the mouth.
struct IntraOralFilm {
    std::vector<int> teeth;  ///< teeth to show; those of both jaws make it a bitewing
    bool portrait = false;
    int bits = 12;
    unsigned seed = 1;  ///< varies noise and the film's slight turn
};

/// Draws the teeth and their surroundings: crowns of both jaws for a bitewing, whole roots for one jaw.
/// 900 x 700 pixels, or 700 x 900.
Picture DrawIntraOral(const IntraOralFilm& film);

/// Both jaws from ear to ear with all 32 teeth. 1600 x 800 pixels.
Picture DrawPanoramic(int bits, unsigned seed);

/// The head from the side, facing to the viewer's right. 1000 x 1200 pixels.
Picture DrawLateralHead(int bits, unsigned seed);

/// The head from the front. 1000 x 1200 pixels.
Picture DrawFrontalHead(int bits, unsigned seed);

}  // namespace Samples
